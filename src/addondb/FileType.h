// The closed table of file types: code, display name, families, and the classification of a name.
// Pure text: nothing here opens a file. Codes are stored in the database and never renumbered.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

namespace vt {

/// Codes 1 to 42 as stored; 0 stands for a file that was not classified.
enum class FileType : quint8
{
    Unknown = 0,
    Aircraft = 1,
    AnimatorMovingParts = 2,
    AnimatorModel = 3,
    AircraftModel = 4,
    CachedWeaponDamageProfile = 5,
    GlobalCampaignInformation = 6,
    Adventure = 7,
    AdventureSource = 8,
    BitmapImage = 9,
    Briefing = 10,
    PanelGauge = 11,
    Situation = 12,
    Flight = 13,
    FlightPlan = 14,
    DynamicMissionElements = 15,
    Mission = 16,
    Scenery = 17,
    Sound = 18,
    Video = 19,
    Document = 20,
    Other = 21,
    DynamicLinkLibrary = 22,
    Font = 23,
    CabinetArchive = 24,
    XmlFile = 25,
    WeatherThemeBinary = 26,
    Texture = 27,
    Effects = 28,
    LandingLightsSource = 29,
    WeatherResource = 30,
    WeaponDamageProfile = 31,
    WeatherTheme = 32,
    AircraftTexture = 33,
    AircraftConfiguration = 34,
    ModelConfiguration = 35,
    PanelConfiguration = 36,
    SoundConfiguration = 37,
    Movie = 38,
    SoundAIConfiguration = 39,
    TextureConfiguration = 40,
    SimConfiguration = 41,
    Reward = 42,
};

inline constexpr int fileTypeCount = 42;

/// Item families as bits; a type may belong to several, or to none.
enum FamilyBit : quint8
{
    FamilyAircraft = 1,
    FamilyPanel = 2,
    FamilyTexture = 4,
    FamilyScenery = 8,
    FamilySound = 16,
};

using Families = quint8;

/// How a type's installation folder is found.
enum class TypeGroup : quint8
{
    Single,                ///< each type has a folder of its own
    Texture,               ///< 9, 27, 33, 40
    PanelFile,             ///< 11, 22, 24, 25
    Flight,                ///< 13
    Scenery,               ///< 17
    DocumentAndOther,      ///< 20, 21
    AircraftConfiguration, ///< 34, 41
    PanelConfiguration,    ///< 36
    SoundConfiguration,    ///< 37, 39
    Mission,               ///< 5, 6, 7, 8, 10, 12, 14, 15, 16, 31, 42
};

/// The type of a file by its name alone (without folder). \a generation is the simulator's: rewards
/// are textures for generation 4. Never returns Unknown.
[[nodiscard]] FileType classify(QStringView name, int generation);

/// "Aircraft Model"; "(Unknown)" for a code outside 1 to 42.
[[nodiscard]] QString fileTypeName(int code);

[[nodiscard]] inline QString fileTypeName(FileType type)
{
    return fileTypeName(int(type));
}

[[nodiscard]] Families familiesOf(FileType type);
/// Lower case, in the order of FamilyBit: "aircraft", "panel", "texture", "scenery", "sound".
[[nodiscard]] const QStringList& familyNames(Families families);
[[nodiscard]] TypeGroup typeGroupOf(FileType type);

/// Whether files of this type are configuration files that the simulator reads (34 to 37, 39 to
/// 41).
[[nodiscard]] bool isSimulatorConfiguration(FileType type);

/// Whether the name is one of the fixed list of simulator modules, without regard to case.
[[nodiscard]] bool isSimulatorModule(QStringView name);
/// Whether the name is a picture browser's cache ("thumbs.db", "pspbrwse.jbf").
[[nodiscard]] bool isThumbnailBrowserFile(QStringView name);

} // namespace vt
