#include "shell/SettingsTable.h"

#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr const char16_t* sectionNames[] = {
    u"Addon Installation",
    u"Addon Removal",
    u"Database",
    u"Display",
    u"File Related",
    u"Flight Simulator",
    u"Startup",
    u"Toolbar",
    u"Addon Repair",
    u"Scenery Parameters",
    u"Buttons",
    u"Program Identity",
    u"Reporting",
    u"A.I. Traffic Management",
    u"View Image",
    u"Select FSO",
    u"Install - Configure Aircraft",
    u"Install - Configure Panel",
    u"Install - Configure Sound",
    u"Install - Configure Scenery",
    u"Install - Configure Textures",
    u"Install - Configure AI Traffic",
    u"Install - Configure Missions",
    u"Install - Configure Other",
    u"Install - Resolve Conflicts",
    u"Install - Set Options",
    u"Install - Set Picture",
    u"Install - Summary",
    u"Install - Select Addon Files",
    u"Remove - Set Options",
    u"Remove - Summary",
    u"Remove - Select Addon",
    u"Item Rename",
    u"Work With Zip",
    u"Edit Aircraft",
    u"Edit Panels",
    u"Edit Sounds",
    u"Edit Scenery",
    u"Repair Items",
    u"Manage FS Configuration Files",
    u"A.I. Traffic Manager",
    u"Add Aircraft Variant",
    u"Import Addons",
    u"Work With Addons",
    u"Addon History",
    u"Installation Wizard",
    u"Addon Wizard",
    u"Removal Wizard",
    u"Program Info",
    u"Select Sound",
    u"Select Panel",
    u"Process Results",
    u"Help",
    u"Windows Explorer Context Menu",
};

static_assert(std::size(sectionNames) == static_cast<size_t>(Section::Count));

constexpr SettingRow flagRow(Section section, const char16_t* name, bool on, const char* meaning)
{
    const char16_t* text = on ? u"True" : u"False";
    return {section, name, SettingType::Boolean, text, nullptr, nullptr, {}, meaning};
}

constexpr SettingRow numberRow(Section section,
                               const char16_t* name,
                               const char16_t* defaultText,
                               std::optional<SettingRange> range,
                               const char* meaning)
{
    return {section, name, SettingType::Integer, defaultText, nullptr, nullptr, range, meaning};
}

constexpr SettingRow
textRow(Section section, const char16_t* name, const char16_t* defaultText, const char* meaning)
{
    return {section, name, SettingType::Text, defaultText, nullptr, nullptr, {}, meaning};
}

constexpr SettingRange upTo(qint32 most)
{
    return {0, most, 0};
}

constexpr qint32 colourMost = 0xffffff;

// In the order of SettingKey. The defaults of colours are red + 256 * green + 65536 * blue.
constexpr SettingRow settingRows[] = {
    flagRow(Section::AddonInstallation,
            u"Delete Source Files After Installation",
            false,
            "delete an add-on's archive or folder once it is installed"),
    flagRow(Section::AddonInstallation,
            u"Start Flight Simulator After Installation",
            false,
            "start the simulator after an installation"),
    flagRow(Section::AddonInstallation,
            u"Warn About Program Files",
            true,
            "warn when an add-on brings programs"),
    flagRow(Section::AddonInstallation,
            u"Warn About Archive Files",
            true,
            "warn when an add-on brings archives that stay packed"),
    flagRow(
        Section::AddonInstallation, u"Show Report", true, "show the results of an installation"),
    flagRow(Section::AddonInstallation,
            u"Confirm Reinstall",
            true,
            "ask before an add-on is installed again"),
    flagRow(Section::AddonInstallation,
            u"Show Reinstall Report",
            true,
            "show the results of a reinstallation"),
    flagRow(Section::AddonInstallation,
            u"Confirm Full Extraction",
            true,
            "ask before a whole archive is extracted"),
    numberRow(Section::AddonInstallation,
              u"Thumbnail Max Width",
              u"320",
              SettingRange{16, 4096, 16},
              "widest picture kept of an add-on, in pixels; not used with FS 2004"),
    flagRow(Section::AddonRemoval, u"Confirm", true, "ask before an add-on is removed"),
    flagRow(Section::AddonRemoval, u"Show Report", true, "show the results of a removal"),
    flagRow(Section::AddonRemoval,
            u"Show Running FS Warnings",
            true,
            "warn when the simulator runs during a removal"),
    flagRow(Section::Database,
            u"Auto Optimize",
            true,
            "optimize the database at the end after enough removals"),
    numberRow(Section::Database,
              u"Optimization Factor",
              u"1",
              SettingRange{0, 3, 1},
              "how soon: 0 never, 1 after 14 changes, 2 after 9, 3 after 3"),
    numberRow(Section::Database,
              u"History",
              u"0",
              SettingRange{0, 32767, 0},
              "changes since the database was last optimized"),
    {Section::Display,
     u"Highlight Text Color",
     SettingType::Colour,
     u"-1",
     nullptr,
     nullptr,
     SettingRange{-1, colourMost, -1},
     "colour of highlighted text; -1: the desktop's highlight"},
    {Section::Display,
     u"MDI Background Color",
     SettingType::Colour,
     u"14675963",
     u"15780518",
     u"12615808",
     SettingRange{0, colourMost, 0},
     "background of the main window"},
    flagRow(Section::Display, u"Active Tooltips", true, "show tool tips"),
    flagRow(Section::Display, u"MDI Open Maximized", false, "open the main window maximized"),
    {Section::Display,
     u"Font",
     SettingType::Text,
     u"Tahoma",
     u"Arial",
     nullptr,
     {},
     "font of the windows; one that is not installed is replaced by the default"},
    numberRow(Section::FileRelated,
              u"File Open Type",
              u"0",
              {},
              "how a file of an add-on is opened: 1 by the system, else by the built-in viewer"),
    flagRow(
        Section::FlightSimulator, u"Confirm Start", true, "ask before the simulator is started"),
    flagRow(Section::Startup, u"Show Splash Screen", true, "show the splash window at start"),
    flagRow(Section::Startup, u"Play Splash Sound", true, "play a sound with the splash window"),
    numberRow(Section::Startup,
              u"Open With",
              u"0",
              {},
              "first window: 0 add-on wizard, 1 install, 2 remove, 3 to 5 add-on lists, 6 to 9 "
              "editors, 10 history, 11 configuration files, 12 AI traffic (FS 2004), above: none"),
    flagRow(Section::Toolbar, u"On", true, "show the tool bar"),
    flagRow(Section::Toolbar, u"Captions", true, "show captions below the tool bar's pictures"),

    flagRow(Section::FileRelated,
            u"Use Previous FS",
            true,
            "begin choosing files where the last choice was made"),
    numberRow(Section::FileRelated,
              u"View Type",
              u"0",
              upTo(3),
              "list of files: 0 details, 1 list, 2 small icons, 3 large icons"),
    numberRow(Section::FileRelated,
              u"View Style",
              u"0",
              upTo(1),
              "what is chosen from: 0 archives and files, 1 folders"),
    flagRow(Section::AddonInstallation,
            u"Automatically Rename",
            false,
            "give an item another name by itself where its name is taken"),
    numberRow(Section::WorkWithZip,
              u"Zip - View Mode",
              u"0",
              upTo(1),
              "archive window: 0 all entries in one list, 1 by folders"),
    numberRow(Section::WorkWithZip,
              u"Zip Compression Level",
              u"6",
              upTo(9),
              "0 stores, 1 is fastest, 9 packs best"),
    flagRow(Section::AddonInstallation,
            u"Archive Addon Zip File",
            false,
            "move an add-on's archive to a folder of archives once it is installed"),
    textRow(Section::AddonInstallation,
            u"Archive Addon Zip File Folder",
            u"",
            "that folder of archives"),
    flagRow(Section::AddonInstallation,
            u"Aircraft Title Checks",
            true,
            "check that aircraft titles are not used twice"),
    numberRow(
        Section::AddonInstallation,
        u"Yes File Replacement Method",
        u"0",
        upTo(1),
        "0: Unconditionally replace existing file; 1: Replace only if source file is more recent"),
    flagRow(Section::AddonInstallation,
            u"Never Install Thumbnail Browser Files",
            true,
            "leave out \"Thumbs.db\" and its like"),
    flagRow(Section::AddonInstallation,
            u"Never Install Scenery.dat Files",
            true,
            "leave out \"Scenery.dat\", which the simulator makes itself"),
    flagRow(Section::AddonInstallation,
            u"Show All Tab First",
            false,
            "begin a wizard page with the tab of all files"),
    flagRow(Section::AddonInstallation,
            u"Auto Assign Pictures To Aircraft",
            true,
            "give a new aircraft a picture found in its add-on"),
    flagRow(Section::AddonInstallation,
            u"Auto Assign Pictures To Panels",
            true,
            "give a new panel a picture found in its add-on"),
    flagRow(Section::AddonInstallation,
            u"Auto Assign Pictures To Scenery",
            true,
            "give new scenery a picture found in its add-on"),
    flagRow(Section::AddonInstallation,
            u"Name Addon Using File_ID.diz",
            true,
            "propose the first line of \"File_ID.diz\" as the add-on's name"),
    flagRow(Section::AddonInstallation,
            u"Describe Addon Using File_ID.diz",
            true,
            "propose the text of \"File_ID.diz\" as the add-on's description"),
    flagRow(Section::AddonInstallation,
            u"Advance Addon Installation Wizard steps automatically",
            false,
            "go to the wizard's next step once a step is complete"),
    flagRow(Section::InstallationWizard,
            u"Synchronize all Install Wizard window sizes",
            true,
            "all pages of the wizard have one size; off: each has its own"),
    flagRow(Section::AddonInstallation,
            u"Auto Place Panels in Subfolder",
            false,
            "put panels of their own into a sub-folder"),
    flagRow(Section::AddonInstallation,
            u"Auto Place Sounds in Subfolder",
            false,
            "put sounds of their own into a sub-folder"),
    flagRow(Section::AddonInstallation,
            u"Auto Place Scenery in Folder",
            true,
            "put scenery into a folder below the scenery add-on folder"),
    textRow(Section::AddonInstallation,
            u"Auto Place Panels Folder Name",
            u"",
            "name of the sub-folder for panels; empty: the add-on's name"),
    textRow(Section::AddonInstallation,
            u"Auto Place Sounds Folder Name",
            u"",
            "name of the sub-folder for sounds; empty: the add-on's name"),
    textRow(Section::AddonInstallation,
            u"Auto Place Scenery Folder Name",
            u"",
            "name of the folder for scenery; empty: the add-on's name"),
    flagRow(Section::AddonInstallation,
            u"Repair Configuration Line Ends",
            true,
            "bring an add-on's configuration files to the simulator's line ends and code page"),
    numberRow(Section::InstallSetOptions,
              u"Install To",
              u"0",
              upTo(1),
              "where add-ons are installed: 0 the simulator, 1 the File Cabinet"),
    numberRow(Section::InstallConfigurePanel,
              u"Installation Method",
              u"0",
              upTo(1),
              "folder of panels: 0 as determined, 1 a chosen one"),
    numberRow(Section::InstallConfigureSound,
              u"Installation Method",
              u"0",
              upTo(3),
              "folder of sounds: 0 as determined, 1 a chosen one, 2 global, 3 adventure sounds"),
    numberRow(
        Section::InstallConfigureScenery,
        u"Installation Method",
        u"0",
        upTo(4),
        "folder of sceneries: 0 as determined, 1 a chosen one, 2 world, 3 global, 4 addon scenery"),
    numberRow(
        Section::InstallConfigureTextures,
        u"Installation Method",
        u"0",
        upTo(5),
        "folder of textures: 0 as determined, 1 a chosen one, 2 global, 3 addon scenery, 4 world, 5 a repaint"),
    numberRow(Section::InstallConfigureMissions,
              u"Installation Method",
              u"0",
              upTo(1),
              "folder of missions: 0 as determined, 1 a chosen one"),
    flagRow(Section::InstallResolveConflicts,
            u"Drop Identical Files",
            true,
            "of files with one target and the same content, install one"),
    flagRow(Section::InstallResolveConflicts,
            u"Prefer Patches",
            true,
            "of files with one target, install the one in a folder of patches or updates"),
    flagRow(Section::InstallResolveConflicts,
            u"Separate Documents",
            true,
            "give documents with one target a folder each"),
    flagRow(Section::ImportAddons, u"Import Aircraft", true, "import installed aircraft"),
    numberRow(
        Section::ImportAddons,
        u"Group Naming Option",
        u"0",
        upTo(1),
        "imported add-ons are named after: 0 date and time, 1 their own names where possible"),
    flagRow(Section::ImportAddons, u"Import Panels", true, "import installed panels"),
    flagRow(Section::ImportAddons, u"Import Sounds", true, "import installed sounds"),
    flagRow(Section::ImportAddons, u"Import Scenery", true, "import installed scenery"),
    flagRow(Section::ImportAddons, u"Import Missions", true, "import installed missions"),
    flagRow(Section::ImportAddons,
            u"Import Only Standalone Panels",
            true,
            "import only panels that belong to no aircraft's folder"),
    flagRow(Section::ImportAddons,
            u"Import Only Standalone Sounds",
            true,
            "import only sounds that belong to no aircraft's folder"),
    flagRow(Section::ImportAddons,
            u"Include All Folders And Files",
            true,
            "import everything that lies in an add-on's folder"),
    flagRow(Section::ImportAddons,
            u"Do Not Include Previously Imported Addons",
            true,
            "leave out what was imported before"),
    flagRow(Section::ImportAddons,
            u"Show Import Options Window Before Import Addons Window",
            true,
            "ask for the options before an import"),
    flagRow(Section::ImportAddons, u"Show Import Report", true, "show the results of an import"),
    flagRow(Section::ImportAddons,
            u"Search For New Addons During Startup",
            false,
            "look at start for add-ons that are not recorded"),
    numberRow(Section::ImportAddons,
              u"Import Search Type",
              u"0",
              upTo(1),
              "look for: 0 all add-ons, 1 new ones only"),
    textRow(Section::RemoveSetOptions,
            u"Recreate Last Folder",
            u"",
            "folder in which add-ons were last recreated"),
    flagRow(Section::RemoveSetOptions,
            u"Recreate To A Zip File",
            true,
            "recreate an add-on as an archive"),
    flagRow(Section::RemoveSetOptions,
            u"Recreate - Include Addon Pictures",
            true,
            "take an add-on's pictures along when it is recreated"),
    numberRow(Section::ViewImage,
              u"Picture Presentation",
              u"0",
              upTo(2),
              "a picture is shown: 0 fitted, 1 in its own size, 2 stretched"),
    numberRow(Section::ViewImage,
              u"Picture Filter",
              u"0",
              upTo(3),
              "smoothing of scaled pictures: 0 best to 3 none"),
    flagRow(Section::Display,
            u"Confirm Actions On Multiple Items",
            true,
            "ask before something is done to several items"),
    flagRow(Section::Display,
            u"Persistent item highlighting",
            true,
            "keep items highlighted when a list loses the focus"),
    flagRow(Section::Toolbar, u"Show Toolbar Submenus", true, "show sub-menus of the tool bar"),
    numberRow(Section::Toolbar,
              u"Standard Toolbar Style",
              u"0",
              upTo(1),
              "look of the tool bar: 0 flat, 1 raised"),
    numberRow(Section::Startup,
              u"Splash Screen Delay",
              u"3",
              upTo(60),
              "seconds for which the splash window stays"),
    flagRow(
        Section::Startup, u"Default Pictures Loaded", false, "default pictures were assigned once"),
    flagRow(Section::Startup, u"Check Screen Res", true, "warn about a small screen at start"),
    numberRow(Section::Startup,
              u"Program Options Category",
              u"0",
              upTo(32767),
              "page of the options window that was last open"),
    flagRow(Section::WindowsExplorerContextMenu,
            u"On",
            true,
            "offer installation in the context menu of archives"),
    textRow(Section::FileRelated,
            u"Last Extaction Folder",
            u"",
            "folder to which files were last extracted"),
    textRow(
        Section::FileRelated, u"Last Browse Folder", u"", "folder in which files were last chosen"),
    textRow(
        Section::FileRelated, u"Last Folder", u"", "folder that was last open in the file list"),
    textRow(Section::ViewImage, u"Folder", u"", "folder from which a picture was last loaded"),
    textRow(Section::ProgramIdentity, u"AFCAD Folder", u"", "folder of the airport editor"),
    textRow(Section::ProgramIdentity, u"Traffic Tools Folder", u"", "folder of Traffic Tools"),
    textRow(Section::ProgramIdentity, u"Version", u"", "version that last ran"),
    flagRow(Section::AITrafficManagement,
            u"Window Prompting",
            true,
            "let the airport editor ask in its window"),
    textRow(Section::Reporting, u"Report Folder", u"", "folder in which reports were last saved"),
    flagRow(Section::Reporting, u"Auto Open", true, "open a report once it is saved"),
    numberRow(Section::Reporting, u"Method", u"0", upTo(1), "form of reports: 0 HTML, 1 text"),
    flagRow(Section::Reporting, u"Prompt For Path", true, "ask where a report is to be saved"),
    textRow(Section::FlightSimulator,
            u"Confirmed Links",
            u"",
            "links out of the simulator's folder that may be used: link|where it leads|..."),
    textRow(Section::Display,
            u"Main Window Place",
            u"",
            "\"left,top,width,height\" of the main window on the screen"),
    textRow(Section::ProgramIdentity, u"Web Site", u"", "address of the maker's web site"),
    textRow(Section::ProgramIdentity,
            u"Simulator Web Site",
            u"",
            "address of the simulator's web site"),
    textRow(Section::ProgramIdentity,
            u"Bug Report Address",
            u"",
            "web or mail address that bug reports go to"),
};

static_assert(std::size(settingRows) == static_cast<size_t>(SettingKey::Count));

constexpr Section anyWindow = Section::Count;

// In the order of LayoutValue.
constexpr SettingRow layoutRows[] = {
    numberRow(anyWindow, u"Window State", u"0", upTo(2), "0 normal, 1 minimized, 2 maximized"),
    {anyWindow,
     u"First Pane Width",
     SettingType::Long,
     u"0",
     nullptr,
     nullptr,
     upTo(100'000),
     "pixels; 0: the window's own choice"},
    {anyWindow,
     u"Second Pane Width",
     SettingType::Long,
     u"0",
     nullptr,
     nullptr,
     upTo(100'000),
     "pixels; 0: the window's own choice"},
    {anyWindow,
     u"Second Pane Height",
     SettingType::Long,
     u"0",
     nullptr,
     nullptr,
     upTo(100'000),
     "pixels; 0: the window's own choice"},
    {anyWindow,
     u"Third Pane Width",
     SettingType::Long,
     u"0",
     nullptr,
     nullptr,
     upTo(100'000),
     "pixels; 0: the window's own choice"},
    {anyWindow,
     u"New - First Pane Width",
     SettingType::Long,
     u"0",
     nullptr,
     nullptr,
     upTo(100'000),
     "pixels; 0: the window's own choice"},
    numberRow(anyWindow, u"Item Filter", u"0", upTo(32767), "which of the window's filters is on"),
    flagRow(anyWindow, u"Flip Bar", false, "the bar stands on the other side"),
    flagRow(anyWindow, u"Preview Images", true, "show pictures of the selected item"),
    numberRow(anyWindow,
              u"Recent - Maximum Items",
              u"10",
              upTo(50),
              "recent items kept: 1, 3, 5, 10, 30 or 50"),
    flagRow(anyWindow, u"Files - Default Select All", true, "files begin selected"),
    flagRow(anyWindow, u"Zip - Default Select All", true, "archive entries begin selected"),
    textRow(anyWindow, u"Window Place", u"", "\"left,top,width,height\" in the main window"),
    textRow(anyWindow, u"Current Columns", u"", "\"name:width\" of each column, joined by \"|\""),
    numberRow(
        anyWindow, u"View Type", u"0", upTo(3), "0 details, 1 list, 2 small icons, 3 large icons"),
    numberRow(anyWindow, u"Sort By", u"0", upTo(32767), "zero-based column by which is sorted"),
    flagRow(anyWindow, u"Sort Descending", false, "sort from the greatest to the least"),
    flagRow(anyWindow, u"Show Icons", true, "show icons in the list"),
};

static_assert(std::size(layoutRows) == static_cast<size_t>(LayoutValue::Count));

constexpr const char16_t* viewPrefixes[] = {
    u"", u"Files - ", u"Zip - ", u"Recent - ", u"Favorite - "};

static_assert(std::size(viewPrefixes) == static_cast<size_t>(ViewPrefix::Count));

QString textOf(const char16_t* text)
{
    return QString::fromUtf16(text);
}

bool isListViewValue(LayoutValue value)
{
    return value >= LayoutValue::CurrentColumns;
}

} // namespace

QString sectionName(Section section)
{
    return textOf(sectionNames[static_cast<size_t>(section)]);
}

std::optional<Section> sectionNamed(QStringView name)
{
    for (size_t i = 0; i < std::size(sectionNames); ++i)
        if (equalNoCase(QStringView(sectionNames[i]), name))
            return static_cast<Section>(i);
    return std::nullopt;
}

bool isWindowSection(Section section)
{
    return section >= Section::SelectFSO && section < Section::WindowsExplorerContextMenu;
}

const SettingRow& settingRow(SettingKey key)
{
    return settingRows[static_cast<size_t>(key)];
}

QString settingName(SettingKey key)
{
    return textOf(settingRow(key).name);
}

QString settingDefault(const SettingRow& row, int generation)
{
    // The generations are those of the simulator: 2, 4 and 5.
    if (generation == 4 && row.defaultFs2004)
        return textOf(row.defaultFs2004);
    if (generation == 2 && row.defaultFs2002)
        return textOf(row.defaultFs2002);
    return textOf(row.defaultText);
}

std::optional<SettingKey> settingNamed(Section section, QStringView name)
{
    for (size_t i = 0; i < std::size(settingRows); ++i)
        if (settingRows[i].section == section &&
            equalNoCase(QStringView(settingRows[i].name), name))
            return static_cast<SettingKey>(i);
    return std::nullopt;
}

const SettingRow& layoutRow(LayoutValue value)
{
    return layoutRows[static_cast<size_t>(value)];
}

QString layoutName(LayoutValue value, ViewPrefix prefix)
{
    const QString base = textOf(layoutRow(value).name);
    return isListViewValue(value) ? textOf(viewPrefixes[static_cast<size_t>(prefix)]) + base : base;
}

std::optional<LayoutName> layoutNamed(QStringView name)
{
    for (size_t value = 0; value < std::size(layoutRows); ++value) {
        const auto known = static_cast<LayoutValue>(value);
        const size_t prefixes = isListViewValue(known) ? std::size(viewPrefixes) : 1;
        for (size_t prefix = 0; prefix < prefixes; ++prefix) {
            const auto view = static_cast<ViewPrefix>(prefix);
            if (equalNoCase(layoutName(known, view), name))
                return LayoutName{known, view};
        }
    }
    return std::nullopt;
}

std::optional<QString> canonicalSetting(SettingType type, QStringView text)
{
    if (type == SettingType::Text)
        return text.toString();
    const QStringView word = text.trimmed();
    if (type == SettingType::Boolean) {
        if (equalNoCase(word, u"True"))
            return u"True"_s;
        if (equalNoCase(word, u"False"))
            return u"False"_s;
        return std::nullopt;
    }
    bool ok = false;
    const int number = type == SettingType::Integer ? word.toShort(&ok) : word.toInt(&ok);
    if (!ok)
        return std::nullopt;
    return QString::number(number);
}

} // namespace vt
