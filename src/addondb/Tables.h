// Every table, field and index of the add-on database: the one accessor of their names. The
// creation of a database is derived from these lists. Fields are named in code as
// Field::Addon_Master_Key; a field of one name has one type wherever it occurs.
#pragma once

#include <span>

namespace vt {

enum class FieldType
{
    Long,    ///< whole number (64 bits in the file)
    Integer, ///< small whole number
    Boolean, ///< 0 or 1
    Date,    ///< local time as text "yyyy-MM-dd HH:mm:ss"; empty for none
    Text,    ///< UTF-8, compared without regard to case
    Blob,
};

enum class Field
{
    // Addon_Master, Addon_History
    Addon_Master_Key,
    Addon_Name,
    Installation_Status,
    Date_Installed,
    Adventures,
    Aircraft_Flag, ///< the Boolean field "Aircraft" of Addon_Master and Addon_History
    Scenery,
    Textures,
    Missions,
    Videos,
    Sounds,
    Panels,
    Flights,
    Airport_Facilities_Data,
    AI_Flight_Plans,
    Aircraft_Skins_And_Repaints,
    Movies,
    Original_Addon,
    Authors,
    Rating,
    Source_Name,
    Source_Size,
    Source_Type,
    Source_Total_Files,
    Date_Uninstalled,
    // Addon_Description, Addon_History_Description
    Description,
    // Addon_Details
    Addon_Details_Key,
    Filename,
    Installed_To_Location,
    Installed_To_FileName,
    Preferred_Install_To_Location,
    Preferred_Install_To_Filename,
    // Addon_Details_Picture
    AddonTypeCategory,
    PrimaryAddonPicture,
    // Addon_Details_SceneryLibrary
    Area,
    Enabled,
    Layer,
    Path,
    Title,
    Parameters,
    // Aircraft_Details, Panel_Details, Sound_Details
    Aircraft, ///< the text field of Aircraft_Details
    Panel,
    Sound,
    Section,
    SuppressErrors,
    SuppressCfgFileDateTime,
    SuppressCfgFileSize,
    Custom1,
    Custom2,
    Custom3,
    Custom4,
    Custom5,
    Custom6,
    Custom7,
    Custom8,
    Custom9,
    Custom10,
    // The program's own tables
    KeptFile,
    Size,
    ModifiedNs,
    Hash,
    Root,
    Relative,
    LastWrittenSize,
    LastWrittenHash,
    Edits,
    Name,
    Value,
    Operation,
    Kind,
    State,
    Label,
    Started,
    Closing,
    Chunk,
    Steps,
    Count_,
};

enum class Table
{
    Addon_Master,
    Addon_Description,
    Addon_Details,
    Addon_Details_Picture,
    Addon_Details_SceneryLibrary,
    Aircraft_Details,
    Panel_Details,
    Sound_Details,
    Addon_History,
    Addon_History_Description,
    Vantrel_Originals,    ///< file kept for a detail row that replaced one
    Vantrel_Checks,       ///< size, time and hash of an installed file, by detail row
    Vantrel_Folders,      ///< folders that installations made
    Vantrel_ConfigBases,  ///< configuration files as they were before the first outstanding edit
    Vantrel_Counters,     ///< highest key ever given, by name
    Vantrel_Journal,      ///< unfinished operations
    Vantrel_JournalSteps, ///< their steps, in chunks
    Count_,
};

enum class Index
{
    Addon_Master_PrimaryKey,
    Addon_Description_PrimaryKey,
    Addon_Details_PrimaryKey,
    Addon_Details_Addon_Master_Key,
    Addon_Details_Installed_To,         ///< location, file name
    Addon_Details_Preferred_Install_To, ///< location, file name
    Addon_Details_Installed_To_FileName,
    Addon_Details_Picture_PrimaryKey,        ///< add-on, detail row, category
    Addon_Details_SceneryLibrary_PrimaryKey, ///< add-on, detail row, area
    Aircraft_Details_PrimaryKey,             ///< aircraft, section
    Panel_Details_PrimaryKey,
    Sound_Details_PrimaryKey,
    Addon_History_PrimaryKey,             ///< add-on, date installed
    Addon_History_Description_PrimaryKey, ///< add-on, date installed
    Vantrel_Originals_PrimaryKey,
    Vantrel_Originals_Addon_Master_Key,
    Vantrel_Checks_PrimaryKey,
    Vantrel_Folders_PrimaryKey,     ///< root, relative
    Vantrel_ConfigBases_PrimaryKey, ///< root, relative
    Vantrel_Counters_PrimaryKey,
    Vantrel_Journal_PrimaryKey,
    Vantrel_JournalSteps_PrimaryKey, ///< operation, chunk
    Count_,
};

struct FieldInfo
{
    Field field;
    const char* name;
    FieldType type;
};

struct TableInfo
{
    Table table;
    const char* name;
    std::span<const Field> fields; ///< in the order of the file
};

/// How an index is kept in the file (docs/formats/database.md).
enum class IndexForm
{
    RowKey,         ///< the field is the row's own number: nothing is kept beside the table
    Ordered,        ///< by the fields themselves: finds equal rows and first rows, walks in order
    InstalledPlace, ///< by hashes of location and name; as the next two, finds equal rows only
    PreferredPlace, ///< the same; a row that prefers the place it has stands in InstalledPlace
                    ///< alone
    InstalledName,  ///< by a hash of the name
};

struct IndexInfo
{
    Index index;
    Table table;
    const char* name; ///< as it is spoken of: "PrimaryKey", "Installed_To"
    std::span<const Field> fields;
    bool unique;
    IndexForm form;
};

[[nodiscard]] const FieldInfo& info(Field field);
[[nodiscard]] const TableInfo& info(Table table);
[[nodiscard]] const IndexInfo& info(Index index);
[[nodiscard]] std::span<const TableInfo> allTables();
[[nodiscard]] std::span<const IndexInfo> allIndexes();
/// Position of the field in the table, or -1.
[[nodiscard]] int columnOf(Table table, Field field);

} // namespace vt
