#include "addondb/Tables.h"

#include <array>

namespace vt {

namespace {

constexpr std::array<FieldInfo, 76> fieldTable{{
    {Field::Addon_Master_Key, "Addon_Master_Key", FieldType::Long},
    {Field::Addon_Name, "Addon_Name", FieldType::Text},
    {Field::Installation_Status, "Installation_Status", FieldType::Long},
    {Field::Date_Installed, "Date_Installed", FieldType::Date},
    {Field::Adventures, "Adventures", FieldType::Boolean},
    {Field::Aircraft_Flag, "Aircraft", FieldType::Boolean},
    {Field::Scenery, "Scenery", FieldType::Boolean},
    {Field::Textures, "Textures", FieldType::Boolean},
    {Field::Missions, "Missions", FieldType::Boolean},
    {Field::Videos, "Videos", FieldType::Boolean},
    {Field::Sounds, "Sounds", FieldType::Boolean},
    {Field::Panels, "Panels", FieldType::Boolean},
    {Field::Flights, "Flights", FieldType::Boolean},
    {Field::Airport_Facilities_Data, "Airport_Facilities_Data", FieldType::Boolean},
    {Field::AI_Flight_Plans, "AI_Flight_Plans", FieldType::Boolean},
    {Field::Aircraft_Skins_And_Repaints, "Aircraft_Skins_And_Repaints", FieldType::Boolean},
    {Field::Movies, "Movies", FieldType::Boolean},
    {Field::Original_Addon, "Original_Addon", FieldType::Boolean},
    {Field::Authors, "Authors", FieldType::Text},
    {Field::Rating, "Rating", FieldType::Long},
    {Field::Source_Name, "Source_Name", FieldType::Text},
    {Field::Source_Size, "Source_Size", FieldType::Long},
    {Field::Source_Type, "Source_Type", FieldType::Long},
    {Field::Source_Total_Files, "Source_Total_Files", FieldType::Long},
    {Field::Date_Uninstalled, "Date_Uninstalled", FieldType::Date},
    {Field::Description, "Description", FieldType::Text},
    {Field::Addon_Details_Key, "Addon_Details_Key", FieldType::Long},
    {Field::Filename, "Filename", FieldType::Text},
    {Field::Installed_To_Location, "Installed_To_Location", FieldType::Text},
    {Field::Installed_To_FileName, "Installed_To_FileName", FieldType::Text},
    {Field::Preferred_Install_To_Location, "Preferred_Install_To_Location", FieldType::Text},
    {Field::Preferred_Install_To_Filename, "Preferred_Install_To_Filename", FieldType::Text},
    {Field::AddonTypeCategory, "AddonTypeCategory", FieldType::Long},
    {Field::PrimaryAddonPicture, "PrimaryAddonPicture", FieldType::Boolean},
    {Field::Area, "Area", FieldType::Integer},
    {Field::Enabled, "Enabled", FieldType::Boolean},
    {Field::Layer, "Layer", FieldType::Integer},
    {Field::Path, "Path", FieldType::Text},
    {Field::Title, "Title", FieldType::Text},
    {Field::Parameters, "Parameters", FieldType::Text},
    {Field::Aircraft, "Aircraft", FieldType::Text},
    {Field::Panel, "Panel", FieldType::Text},
    {Field::Sound, "Sound", FieldType::Text},
    {Field::Section, "Section", FieldType::Text},
    {Field::SuppressErrors, "SuppressErrors", FieldType::Boolean},
    {Field::SuppressCfgFileDateTime, "SuppressCfgFileDateTime", FieldType::Date},
    {Field::SuppressCfgFileSize, "SuppressCfgFileSize", FieldType::Long},
    {Field::Custom1, "Custom1", FieldType::Text},
    {Field::Custom2, "Custom2", FieldType::Text},
    {Field::Custom3, "Custom3", FieldType::Text},
    {Field::Custom4, "Custom4", FieldType::Text},
    {Field::Custom5, "Custom5", FieldType::Text},
    {Field::Custom6, "Custom6", FieldType::Text},
    {Field::Custom7, "Custom7", FieldType::Text},
    {Field::Custom8, "Custom8", FieldType::Text},
    {Field::Custom9, "Custom9", FieldType::Text},
    {Field::Custom10, "Custom10", FieldType::Text},
    {Field::KeptFile, "KeptFile", FieldType::Text},
    {Field::Size, "Size", FieldType::Long},
    {Field::ModifiedNs, "ModifiedNs", FieldType::Long},
    {Field::Hash, "Hash", FieldType::Blob},
    {Field::Root, "Root", FieldType::Long},
    {Field::Relative, "Relative", FieldType::Text},
    {Field::LastWrittenSize, "LastWrittenSize", FieldType::Long},
    {Field::LastWrittenHash, "LastWrittenHash", FieldType::Blob},
    {Field::Edits, "Edits", FieldType::Long},
    {Field::Name, "Name", FieldType::Text},
    {Field::Value, "Value", FieldType::Long},
    {Field::Operation, "Operation", FieldType::Long},
    {Field::Kind, "Kind", FieldType::Long},
    {Field::State, "State", FieldType::Long},
    {Field::Label, "Label", FieldType::Text},
    {Field::Started, "Started", FieldType::Date},
    {Field::Closing, "Closing", FieldType::Blob},
    {Field::Chunk, "Chunk", FieldType::Long},
    {Field::Steps, "Steps", FieldType::Blob},
}};
static_assert(fieldTable.size() == std::size_t(Field::Count_));

constexpr std::array fieldsOf_Addon_Master{
    Field::Addon_Master_Key,
    Field::Addon_Name,
    Field::Installation_Status,
    Field::Date_Installed,
    Field::Adventures,
    Field::Aircraft_Flag,
    Field::Scenery,
    Field::Textures,
    Field::Missions,
    Field::Videos,
    Field::Sounds,
    Field::Panels,
    Field::Flights,
    Field::Airport_Facilities_Data,
    Field::AI_Flight_Plans,
    Field::Aircraft_Skins_And_Repaints,
    Field::Movies,
    Field::Original_Addon,
    Field::Authors,
    Field::Rating,
    Field::Source_Name,
    Field::Source_Size,
    Field::Source_Type,
    Field::Source_Total_Files,
};
constexpr std::array fieldsOf_Addon_Description{
    Field::Addon_Master_Key,
    Field::Description,
};
constexpr std::array fieldsOf_Addon_Details{
    Field::Addon_Details_Key,
    Field::Addon_Master_Key,
    Field::Filename,
    Field::Installed_To_Location,
    Field::Installed_To_FileName,
    Field::Preferred_Install_To_Location,
    Field::Preferred_Install_To_Filename,
};
constexpr std::array fieldsOf_Addon_Details_Picture{
    Field::Addon_Master_Key,
    Field::Addon_Details_Key,
    Field::AddonTypeCategory,
    Field::PrimaryAddonPicture,
};
constexpr std::array fieldsOf_Addon_Details_SceneryLibrary{
    Field::Addon_Master_Key,
    Field::Addon_Details_Key,
    Field::Area,
    Field::Enabled,
    Field::Layer,
    Field::Path,
    Field::Title,
    Field::Parameters,
};
constexpr std::array fieldsOf_Aircraft_Details{
    Field::Aircraft,
    Field::Section,
    Field::SuppressErrors,
    Field::SuppressCfgFileDateTime,
    Field::SuppressCfgFileSize,
    Field::Custom1,
    Field::Custom2,
    Field::Custom3,
    Field::Custom4,
    Field::Custom5,
    Field::Custom6,
    Field::Custom7,
    Field::Custom8,
    Field::Custom9,
    Field::Custom10,
};
constexpr std::array fieldsOf_Panel_Details{
    Field::Panel,
    Field::SuppressErrors,
    Field::SuppressCfgFileDateTime,
    Field::SuppressCfgFileSize,
    Field::Custom1,
    Field::Custom2,
    Field::Custom3,
    Field::Custom4,
    Field::Custom5,
    Field::Custom6,
    Field::Custom7,
    Field::Custom8,
    Field::Custom9,
    Field::Custom10,
};
constexpr std::array fieldsOf_Sound_Details{
    Field::Sound,
    Field::SuppressErrors,
    Field::SuppressCfgFileDateTime,
    Field::SuppressCfgFileSize,
    Field::Custom1,
    Field::Custom2,
    Field::Custom3,
    Field::Custom4,
    Field::Custom5,
    Field::Custom6,
    Field::Custom7,
    Field::Custom8,
    Field::Custom9,
    Field::Custom10,
};
constexpr std::array fieldsOf_Addon_History{
    Field::Addon_Master_Key,
    Field::Addon_Name,
    Field::Date_Installed,
    Field::Adventures,
    Field::Aircraft_Flag,
    Field::Scenery,
    Field::Textures,
    Field::Missions,
    Field::Videos,
    Field::Sounds,
    Field::Panels,
    Field::Flights,
    Field::Airport_Facilities_Data,
    Field::AI_Flight_Plans,
    Field::Aircraft_Skins_And_Repaints,
    Field::Movies,
    Field::Authors,
    Field::Rating,
    Field::Source_Name,
    Field::Source_Size,
    Field::Source_Type,
    Field::Source_Total_Files,
    Field::Date_Uninstalled,
};
constexpr std::array fieldsOf_Addon_History_Description{
    Field::Description,
    Field::Addon_Master_Key,
    Field::Date_Installed,
};
constexpr std::array fieldsOf_Vantrel_Originals{
    Field::Addon_Details_Key,
    Field::Addon_Master_Key,
    Field::KeptFile,
};
constexpr std::array fieldsOf_Vantrel_Checks{
    Field::Addon_Details_Key,
    Field::Size,
    Field::ModifiedNs,
    Field::Hash,
};
constexpr std::array fieldsOf_Vantrel_Folders{
    Field::Root,
    Field::Relative,
};
constexpr std::array fieldsOf_Vantrel_ConfigBases{
    Field::Root,
    Field::Relative,
    Field::KeptFile,
    Field::LastWrittenSize,
    Field::LastWrittenHash,
    Field::Edits,
};
constexpr std::array fieldsOf_Vantrel_Counters{
    Field::Name,
    Field::Value,
};
constexpr std::array fieldsOf_Vantrel_Journal{
    Field::Operation,
    Field::Kind,
    Field::State,
    Field::Label,
    Field::Started,
    Field::Closing,
};
constexpr std::array fieldsOf_Vantrel_JournalSteps{
    Field::Operation,
    Field::Chunk,
    Field::Steps,
};

constexpr std::array<TableInfo, 17> tableTable{{
    {Table::Addon_Master, "Addon_Master", fieldsOf_Addon_Master},
    {Table::Addon_Description, "Addon_Description", fieldsOf_Addon_Description},
    {Table::Addon_Details, "Addon_Details", fieldsOf_Addon_Details},
    {Table::Addon_Details_Picture, "Addon_Details_Picture", fieldsOf_Addon_Details_Picture},
    {Table::Addon_Details_SceneryLibrary,
     "Addon_Details_SceneryLibrary",
     fieldsOf_Addon_Details_SceneryLibrary},
    {Table::Aircraft_Details, "Aircraft_Details", fieldsOf_Aircraft_Details},
    {Table::Panel_Details, "Panel_Details", fieldsOf_Panel_Details},
    {Table::Sound_Details, "Sound_Details", fieldsOf_Sound_Details},
    {Table::Addon_History, "Addon_History", fieldsOf_Addon_History},
    {Table::Addon_History_Description,
     "Addon_History_Description",
     fieldsOf_Addon_History_Description},
    {Table::Vantrel_Originals, "Vantrel_Originals", fieldsOf_Vantrel_Originals},
    {Table::Vantrel_Checks, "Vantrel_Checks", fieldsOf_Vantrel_Checks},
    {Table::Vantrel_Folders, "Vantrel_Folders", fieldsOf_Vantrel_Folders},
    {Table::Vantrel_ConfigBases, "Vantrel_ConfigBases", fieldsOf_Vantrel_ConfigBases},
    {Table::Vantrel_Counters, "Vantrel_Counters", fieldsOf_Vantrel_Counters},
    {Table::Vantrel_Journal, "Vantrel_Journal", fieldsOf_Vantrel_Journal},
    {Table::Vantrel_JournalSteps, "Vantrel_JournalSteps", fieldsOf_Vantrel_JournalSteps},
}};
static_assert(tableTable.size() == std::size_t(Table::Count_));

constexpr std::array keysOf_Addon_Master_PrimaryKey{Field::Addon_Master_Key};
constexpr std::array keysOf_Addon_Description_PrimaryKey{Field::Addon_Master_Key};
constexpr std::array keysOf_Addon_Details_PrimaryKey{Field::Addon_Details_Key};
constexpr std::array keysOf_Addon_Details_Addon_Master_Key{Field::Addon_Master_Key};
constexpr std::array keysOf_Addon_Details_Installed_To{Field::Installed_To_Location,
                                                       Field::Installed_To_FileName};
constexpr std::array keysOf_Addon_Details_Preferred_Install_To{
    Field::Preferred_Install_To_Location, Field::Preferred_Install_To_Filename};
constexpr std::array keysOf_Addon_Details_Installed_To_FileName{Field::Installed_To_FileName};
constexpr std::array keysOf_Addon_Details_Picture_PrimaryKey{
    Field::Addon_Master_Key, Field::Addon_Details_Key, Field::AddonTypeCategory};
constexpr std::array keysOf_Addon_Details_SceneryLibrary_PrimaryKey{
    Field::Addon_Master_Key, Field::Addon_Details_Key, Field::Area};
constexpr std::array keysOf_Aircraft_Details_PrimaryKey{Field::Aircraft, Field::Section};
constexpr std::array keysOf_Panel_Details_PrimaryKey{Field::Panel};
constexpr std::array keysOf_Sound_Details_PrimaryKey{Field::Sound};
constexpr std::array keysOf_Addon_History_PrimaryKey{Field::Addon_Master_Key,
                                                     Field::Date_Installed};
constexpr std::array keysOf_Addon_History_Description_PrimaryKey{Field::Addon_Master_Key,
                                                                 Field::Date_Installed};
constexpr std::array keysOf_Vantrel_Originals_PrimaryKey{Field::Addon_Details_Key};
constexpr std::array keysOf_Vantrel_Originals_Addon_Master_Key{Field::Addon_Master_Key};
constexpr std::array keysOf_Vantrel_Checks_PrimaryKey{Field::Addon_Details_Key};
constexpr std::array keysOf_Vantrel_Folders_PrimaryKey{Field::Root, Field::Relative};
constexpr std::array keysOf_Vantrel_ConfigBases_PrimaryKey{Field::Root, Field::Relative};
constexpr std::array keysOf_Vantrel_Counters_PrimaryKey{Field::Name};
constexpr std::array keysOf_Vantrel_Journal_PrimaryKey{Field::Operation};
constexpr std::array keysOf_Vantrel_JournalSteps_PrimaryKey{Field::Operation, Field::Chunk};

constexpr std::array<IndexInfo, 22> indexTable{{
    {Index::Addon_Master_PrimaryKey,
     Table::Addon_Master,
     "PrimaryKey",
     keysOf_Addon_Master_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Addon_Description_PrimaryKey,
     Table::Addon_Description,
     "PrimaryKey",
     keysOf_Addon_Description_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Addon_Details_PrimaryKey,
     Table::Addon_Details,
     "PrimaryKey",
     keysOf_Addon_Details_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Addon_Details_Addon_Master_Key,
     Table::Addon_Details,
     "Addon_Master_Key",
     keysOf_Addon_Details_Addon_Master_Key,
     false,
     IndexForm::Ordered},
    {Index::Addon_Details_Installed_To,
     Table::Addon_Details,
     "Installed_To",
     keysOf_Addon_Details_Installed_To,
     false,
     IndexForm::InstalledPlace},
    {Index::Addon_Details_Preferred_Install_To,
     Table::Addon_Details,
     "Preferred_Install_To",
     keysOf_Addon_Details_Preferred_Install_To,
     false,
     IndexForm::PreferredPlace},
    {Index::Addon_Details_Installed_To_FileName,
     Table::Addon_Details,
     "Installed_To_FileName",
     keysOf_Addon_Details_Installed_To_FileName,
     false,
     IndexForm::InstalledName},
    {Index::Addon_Details_Picture_PrimaryKey,
     Table::Addon_Details_Picture,
     "PrimaryKey",
     keysOf_Addon_Details_Picture_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Addon_Details_SceneryLibrary_PrimaryKey,
     Table::Addon_Details_SceneryLibrary,
     "PrimaryKey",
     keysOf_Addon_Details_SceneryLibrary_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Aircraft_Details_PrimaryKey,
     Table::Aircraft_Details,
     "PrimaryKey",
     keysOf_Aircraft_Details_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Panel_Details_PrimaryKey,
     Table::Panel_Details,
     "PrimaryKey",
     keysOf_Panel_Details_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Sound_Details_PrimaryKey,
     Table::Sound_Details,
     "PrimaryKey",
     keysOf_Sound_Details_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Addon_History_PrimaryKey,
     Table::Addon_History,
     "PrimaryKey",
     keysOf_Addon_History_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Addon_History_Description_PrimaryKey,
     Table::Addon_History_Description,
     "PrimaryKey",
     keysOf_Addon_History_Description_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Vantrel_Originals_PrimaryKey,
     Table::Vantrel_Originals,
     "PrimaryKey",
     keysOf_Vantrel_Originals_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Vantrel_Originals_Addon_Master_Key,
     Table::Vantrel_Originals,
     "Addon_Master_Key",
     keysOf_Vantrel_Originals_Addon_Master_Key,
     false,
     IndexForm::Ordered},
    {Index::Vantrel_Checks_PrimaryKey,
     Table::Vantrel_Checks,
     "PrimaryKey",
     keysOf_Vantrel_Checks_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Vantrel_Folders_PrimaryKey,
     Table::Vantrel_Folders,
     "PrimaryKey",
     keysOf_Vantrel_Folders_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Vantrel_ConfigBases_PrimaryKey,
     Table::Vantrel_ConfigBases,
     "PrimaryKey",
     keysOf_Vantrel_ConfigBases_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Vantrel_Counters_PrimaryKey,
     Table::Vantrel_Counters,
     "PrimaryKey",
     keysOf_Vantrel_Counters_PrimaryKey,
     true,
     IndexForm::Ordered},
    {Index::Vantrel_Journal_PrimaryKey,
     Table::Vantrel_Journal,
     "PrimaryKey",
     keysOf_Vantrel_Journal_PrimaryKey,
     true,
     IndexForm::RowKey},
    {Index::Vantrel_JournalSteps_PrimaryKey,
     Table::Vantrel_JournalSteps,
     "PrimaryKey",
     keysOf_Vantrel_JournalSteps_PrimaryKey,
     true,
     IndexForm::Ordered},
}};
static_assert(indexTable.size() == std::size_t(Index::Count_));

// Each list stands in the order of its enumeration, so that a look-up is an index.
constexpr bool inOrder()
{
    for (std::size_t i = 0; i < fieldTable.size(); ++i) {
        if (std::size_t(fieldTable[i].field) != i)
            return false;
    }
    for (std::size_t i = 0; i < tableTable.size(); ++i) {
        if (std::size_t(tableTable[i].table) != i)
            return false;
    }
    for (std::size_t i = 0; i < indexTable.size(); ++i) {
        if (std::size_t(indexTable[i].index) != i)
            return false;
    }
    return true;
}

static_assert(inOrder());

using ColumnTable =
    std::array<std::array<signed char, std::size_t(Field::Count_)>, std::size_t(Table::Count_)>;

constexpr ColumnTable columnTable = [] {
    ColumnTable columns{};
    for (auto& row : columns)
        row.fill(-1);
    for (const TableInfo& table : tableTable) {
        for (std::size_t i = 0; i < table.fields.size(); ++i)
            columns[std::size_t(table.table)][std::size_t(table.fields[i])] =
                static_cast<signed char>(i);
    }
    return columns;
}();

} // namespace

const FieldInfo& info(Field field)
{
    return fieldTable[std::size_t(field)];
}

const TableInfo& info(Table table)
{
    return tableTable[std::size_t(table)];
}

const IndexInfo& info(Index index)
{
    return indexTable[std::size_t(index)];
}

std::span<const TableInfo> allTables()
{
    return tableTable;
}

std::span<const IndexInfo> allIndexes()
{
    return indexTable;
}

int columnOf(Table table, Field field)
{
    return columnTable[std::size_t(table)][std::size_t(field)];
}

} // namespace vt
