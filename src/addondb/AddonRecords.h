// The rows of the add-on database as plain values. Closed code lists (status, source type, picture
// category) are stored in databases: never renumber.
#pragma once

#include "platform/FileActions.h"
#include "platform/Gate.h"

#include <QDateTime>
#include <QFlags>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace vt {

/// Addon_Master.Installation_Status. Removed is never stored there: it is derived from the history.
enum class InstallationStatus : int
{
    Installed = 1,
    FileCabinet = 2,
    Removed = 3,
    Imported = 4,
};

/// Addon_Master.Source_Type.
enum class SourceType : int
{
    Unknown = 0,
    Zip = 1,
    Rar = 2,
    Folder = 3,
    Imported = 4,
};

/// Addon_Details_Picture.AddonTypeCategory.
enum class AddonTypeCategory : int
{
    Addon = 0,
    Aircraft = 1,
    Panel = 2,
    Sound = 3,
    Scenery = 4,
    Texture = 5,
    Mission = 6,
    Other = 7,
};

/// The category flags of a master row, in the order of its fields.
enum class Category : quint16
{
    Adventures = 1 << 0,
    Aircraft = 1 << 1,
    Scenery = 1 << 2,
    Textures = 1 << 3,
    Missions = 1 << 4,
    Videos = 1 << 5,
    Sounds = 1 << 6,
    Panels = 1 << 7,
    Flights = 1 << 8,
    Airport_Facilities_Data = 1 << 9,
    AI_Flight_Plans = 1 << 10,
    Aircraft_Skins_And_Repaints = 1 << 11,
    Movies = 1 << 12,
};
Q_DECLARE_FLAGS(Categories, Category)
Q_DECLARE_OPERATORS_FOR_FLAGS(Categories)

/// Addon_Master with its Addon_Description; a history row carries the same and the removal's time.
struct AddonRecord
{
    qint64 key = 0;
    QString name;
    InstallationStatus status = InstallationStatus::Installed;
    QDateTime dateInstalled; ///< local time, whole seconds
    Categories categories;
    bool original = false; ///< the simulator's own content
    QString authors;
    qint64 rating = 0; ///< 0 none, 1 to 5
    QString sourceName;
    qint64 sourceSize = 0; ///< bytes
    SourceType sourceType = SourceType::Unknown;
    qint64 sourceTotalFiles = 0;
    QString description;
};

struct HistoryRecord
{
    AddonRecord addon;         ///< status: Removed when dateUninstalled is set, else Installed
    QDateTime dateUninstalled; ///< invalid while the add-on is there
};

/// Addon_Details: one file placed by an add-on. Locations are folders that end in "\".
struct DetailRecord
{
    qint64 key = 0;
    qint64 masterKey = 0;
    QString filename; ///< as found in the source
    QString location;
    QString name;
    QString preferredLocation;
    QString preferredName;
};

/// Vantrel_Originals: the file that a detail row's file replaced.
struct OriginalRecord
{
    qint64 detailKey = 0;
    qint64 masterKey = 0;
    QString keptFile; ///< below the Originals folder; empty when nothing had to be kept
};

/// Addon_Details_SceneryLibrary: one area that an add-on added.
struct SceneryAreaRecord
{
    qint64 masterKey = 0;
    qint64 detailKey = 0;
    int area = 0;
    bool enabled = true;
    int layer = 0;
    QString path;
    QString title;
    QString parameters; ///< untrimmed
};

struct PictureRecord
{
    qint64 masterKey = 0;
    qint64 detailKey = 0; ///< 0 when the picture is not one of the add-on's files
    AddonTypeCategory category = AddonTypeCategory::Addon;
    bool primary = false; ///< the one shown for the add-on
};

/// Which of the three tables of an installed item's own remarks.
enum class ItemTable
{
    Aircraft,
    Panel,
    Sound,
};

/// Aircraft_Details, Panel_Details, Sound_Details.
struct ItemDetailRecord
{
    QString item;    ///< stored in lower case
    QString section; ///< aircraft only; stored trimmed, in lower case
    bool suppressErrors = false;
    QDateTime suppressCfgFileDateTime;
    qint64 suppressCfgFileSize = 0;
    std::array<QString, 10> custom;
};

/// Vantrel_ConfigBases: a configuration file as it was before the first edit that is outstanding.
struct ConfigBaseRecord
{
    Place file;
    QString keptFile; ///< below the Originals folder; empty when the file did not exist
    qint64 lastWrittenSize = 0;
    QByteArray lastWrittenHash; ///< XXH3-128, 16 bytes
    qint64 edits = 0;           ///< installations whose entries are in the file
};

/// One word for people and scripts: "installed", "cabinet", "removed", "imported".
[[nodiscard]] QString statusWord(InstallationStatus status);
/// "zip", "rar", "folder", "imported", "unknown".
[[nodiscard]] QString sourceTypeWord(SourceType type);
/// The set categories as words ("Aircraft", "Airport Facilities Data"), in the order of the fields.
[[nodiscard]] QStringList categoryWords(Categories categories);
/// "aircraft", "panel", "sound", "scenery" or "mission", by the first of these that is set; else
/// \a other.
[[nodiscard]] QString kindWord(Categories categories, const QString& other);
/// The category of a word, also in the form of a field name and in that of the history window's
/// filter ("Aircraft Skins/Repaints"), without regard to case.
[[nodiscard]] std::optional<Category> categoryOfWord(const QString& word);

/// The flags that the file categories ("Panel Gauge", "Scenery", ...) of an add-on's files set.
[[nodiscard]] Categories categoriesOfFiles(const QStringList& fileCategories);
/// As categoriesOfFiles(), with those of \a before kept that no file category sets.
[[nodiscard]] Categories recomputedCategories(Categories before, const QStringList& fileCategories);

} // namespace vt
