// The one table of settings: section, value name, type, default, range, meaning. No other place
// spells a section or a value name. Pure data: reading and writing is Settings' matter.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <span>

namespace vt {

/// Sections of the store, in the order of their names' table.
enum class Section : quint8
{
    AddonInstallation,
    AddonRemoval,
    Database,
    Display,
    FileRelated,
    FlightSimulator,
    Startup,
    Toolbar,
    AddonRepair,
    SceneryParameters,
    Buttons,
    ProgramIdentity,
    Reporting,
    AITrafficManagement,
    ViewImage,
    // Sections of windows; each may hold every layout value.
    SelectFSO,
    InstallConfigureAircraft,
    InstallConfigurePanel,
    InstallConfigureSound,
    InstallConfigureScenery,
    InstallConfigureTextures,
    InstallConfigureAITraffic,
    InstallConfigureMissions,
    InstallConfigureOther,
    InstallResolveConflicts,
    InstallSetOptions,
    InstallSetPicture,
    InstallSummary,
    InstallSelectAddonFiles,
    RemoveSetOptions,
    RemoveSummary,
    RemoveSelectAddon,
    ItemRename,
    WorkWithZip,
    EditAircraft,
    EditPanels,
    EditSounds,
    EditScenery,
    RepairItems,
    ManageFSConfigurationFiles,
    AITrafficManager,
    AddAircraftVariant,
    ImportAddons,
    WorkWithAddons,
    AddonHistory,
    InstallationWizard,
    AddonWizard,
    RemovalWizard,
    ProgramInfo,
    SelectSound,
    SelectPanel,
    ProcessResults,
    Help,
    WindowsExplorerContextMenu,
    Count,
};

/// Every setting with a section of its own. Those up to ToolbarCaptions are the program-wide ones,
/// in the order in which they are loaded at start.
enum class SettingKey : quint8
{
    DeleteSourceFilesAfterInstallation,
    StartFlightSimulatorAfterInstallation,
    WarnAboutProgramFiles,
    WarnAboutArchiveFiles,
    InstallShowReport,
    ConfirmReinstall,
    ShowReinstallReport,
    ConfirmFullExtraction,
    ThumbnailMaxWidth,
    RemovalConfirm,
    RemovalShowReport,
    ShowRunningFSWarnings,
    AutoOptimize,
    OptimizationFactor,
    DatabaseHistory,
    HighlightTextColor,
    MDIBackgroundColor,
    ActiveTooltips,
    MDIOpenMaximized,
    Font,
    FileOpenType,
    ConfirmStart,
    ShowSplashScreen,
    PlaySplashSound,
    OpenWith,
    ToolbarOn,
    ToolbarCaptions,
    // Read and written when needed.
    UsePreviousFS,
    InstallViewType,
    InstallViewStyle,
    AutomaticallyRename,
    ZipViewMode,
    ZipCompressionLevel,
    ArchiveAddonZipFile,
    ArchiveAddonZipFileFolder,
    AircraftTitleChecks,
    YesFileReplacementMethod,
    NeverInstallThumbnailBrowserFiles,
    NeverInstallSceneryDatFiles,
    ShowAllTabFirst,
    AutoAssignPicturesToAircraft,
    AutoAssignPicturesToPanels,
    AutoAssignPicturesToScenery,
    NameAddonUsingFileIdDiz,
    DescribeAddonUsingFileIdDiz,
    AdvanceWizardStepsAutomatically,
    SynchronizeWizardSizes,
    AutoPlacePanelsInSubfolder,
    AutoPlaceSoundsInSubfolder,
    AutoPlaceSceneryInFolder,
    AutoPlacePanelsFolderName,
    AutoPlaceSoundsFolderName,
    AutoPlaceSceneryFolderName,
    RepairConfigurationLineEnds,
    InstallTo,
    PanelInstallationMethod,
    SoundInstallationMethod,
    SceneryInstallationMethod,
    TextureInstallationMethod,
    MissionInstallationMethod,
    DropIdenticalFiles,
    PreferPatches,
    SeparateDocuments,
    ImportAircraft,
    GroupNamingOption,
    ImportPanels,
    ImportSounds,
    ImportScenery,
    ImportMissions,
    ImportOnlyStandalonePanels,
    ImportOnlyStandaloneSounds,
    IncludeAllFoldersAndFiles,
    DoNotIncludePreviouslyImportedAddons,
    ShowImportOptionsWindow,
    ShowImportReport,
    SearchForNewAddonsDuringStartup,
    ImportSearchType,
    RecreateLastFolder,
    RecreateToAZipFile,
    RecreateIncludeAddonPictures,
    PicturePresentation,
    PictureFilter,
    ConfirmActionsOnMultipleItems,
    PersistentItemHighlighting,
    ShowToolbarSubmenus,
    StandardToolbarStyle,
    SplashScreenDelay,
    DefaultPicturesLoaded,
    CheckScreenRes,
    ProgramOptionsCategory,
    WindowsExplorerContextMenuOn,
    LastExtractionFolder,
    LastBrowseFolder,
    LastFolder,
    ViewImageFolder,
    AFCADFolder,
    TrafficToolsFolder,
    Version,
    WindowPrompting,
    ReportFolder,
    ReportAutoOpen,
    ReportMethod,
    ReportPromptForPath,
    ConfirmedLinks,
    MainWindowPlace,
    WebSite,
    SimulatorWebSite,
    BugReportAddress,
    Count,
};

inline constexpr int programWideSettingCount = static_cast<int>(SettingKey::ToolbarCaptions) + 1;

/// Values that every window section may hold.
enum class LayoutValue : quint8
{
    WindowState,
    FirstPaneWidth,
    SecondPaneWidth,
    SecondPaneHeight,
    ThirdPaneWidth,
    NewFirstPaneWidth,
    ItemFilter,
    FlipBar,
    PreviewImages,
    RecentMaximumItems,
    FilesDefaultSelectAll,
    ZipDefaultSelectAll,
    WindowPlace,
    // List-view values: formed with a view's prefix.
    CurrentColumns,
    ViewType,
    SortBy,
    SortDescending,
    ShowIcons,
    Count,
};

/// The list inside a window that a list-view value belongs to.
enum class ViewPrefix : quint8
{
    None,
    Files,    ///< "Files - "
    Zip,      ///< "Zip - "
    Recent,   ///< "Recent - "
    Favorite, ///< "Favorite - "
    Count,
};

enum class SettingType : quint8
{
    Boolean, ///< "True" or "False"
    Integer, ///< 16-bit
    Long,    ///< 32-bit
    Colour,  ///< 24-bit, red in the low byte
    Text,
};

/// A number outside the range is corrected when it is read: below \a least becomes \a belowBecomes,
/// above \a most becomes \a most.
struct SettingRange
{
    qint32 least;
    qint32 most;
    qint32 belowBecomes;
};

struct SettingRow
{
    Section section; ///< Section::Count in layout rows: any window's section
    const char16_t* name;
    SettingType type;
    const char16_t* defaultText;       ///< as stored; generation 5
    const char16_t* defaultFs2004;     ///< nullptr: as generation 5
    const char16_t* defaultFs2002;     ///< nullptr: as generation 5
    std::optional<SettingRange> range; ///< numbers only
    const char* meaning;               ///< one phrase for "settings list"
};

[[nodiscard]] QString sectionName(Section section);
/// Without regard to case.
[[nodiscard]] std::optional<Section> sectionNamed(QStringView name);
/// Whether the section may hold layout values.
[[nodiscard]] bool isWindowSection(Section section);

[[nodiscard]] const SettingRow& settingRow(SettingKey key);
[[nodiscard]] QString settingName(SettingKey key);
/// The default as it would be stored.
[[nodiscard]] QString settingDefault(const SettingRow& row, int generation);
/// Without regard to case.
[[nodiscard]] std::optional<SettingKey> settingNamed(Section section, QStringView name);

[[nodiscard]] const SettingRow& layoutRow(LayoutValue value);
/// The value's name with the view's prefix where it is a list-view value.
[[nodiscard]] QString layoutName(LayoutValue value, ViewPrefix prefix = ViewPrefix::None);

/// A layout value as addressed by its name.
struct LayoutName
{
    LayoutValue value;
    ViewPrefix prefix;
};

[[nodiscard]] std::optional<LayoutName> layoutNamed(QStringView name);

/// The text as the setting's type stores it ("true" becomes "True", " 7 " becomes "7"), or nothing
/// when it is no value of that type.
[[nodiscard]] std::optional<QString> canonicalSetting(SettingType type, QStringView text);

} // namespace vt
