// The groups of an installation: what belongs together (one aircraft, one panel, one repaint, one
// scenery area, ...), with the decisions made for it. Plain data; CAddonInstallationDetails rules
// it.
#pragma once

#include "addondb/CAddon_Item.h"
#include "shell/GlobalRecord.h"
#include "shell/SettingsTable.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace vt {

/// How a group finds its target folder; which ones a family offers is in methodLabels().
enum class InstallationMethod : quint8
{
    Determined,          ///< the folders determined by the program
    ChosenFolder,        ///< an existing or new folder of the family
    GlobalFolder,        ///< the simulator's global sound, texture or scenery folder
    AdventureSounds,     ///< beneath the adventure sound folder
    AddonSceneryTexture, ///< the addon scenery texture folder
    SceneryWorldTexture, ///< the scenery world texture folder
    NewRepaint,          ///< as a new skin of an existing aircraft
    SceneryWorld,        ///< Scenery\World\Scenery
    AddonScenery,        ///< the addon scenery folder
};

struct MethodLabel
{
    InstallationMethod method;
    QString label;
};

/// What is fixed about a family of groups: one row each for those that are decided group by group.
struct FamilyRules
{
    MappedGroup family;
    QStringView prefix; ///< "Panel", as the names of its operations begin
    QStringView problemWord;
    std::optional<SettingKey> defaultMethod; ///< holds the place in methodLabels()
    bool folderBelowMissions = false;        ///< a chosen folder has to lie there
};

/// Null for None and for what no page decides by groups.
[[nodiscard]] const FamilyRules* familyRules(MappedGroup family);
[[nodiscard]] QList<MappedGroup> ruledFamilies();
/// Aircraft, panels, repaints and scenery.
[[nodiscard]] bool takesPicture(MappedGroup family);

/// The families in the order of their pages; flight plans stand for airport files too.
[[nodiscard]] QList<MappedGroup> pageFamilies();
/// "aircraft", "A.I. traffic", as in "Correct the problem with the <word> configuration and try
/// again."
[[nodiscard]] QString problemWord(MappedGroup family);

/// The methods that a family's page offers, in order; the first is the default.
[[nodiscard]] QList<MethodLabel> methodLabels(MappedGroup family, const DisplayNames& names);

/// One short word for a method, unique within its family: "determined", "folder", "global", ...
[[nodiscard]] QString methodWord(InstallationMethod method);
/// The method of that word that the family offers.
[[nodiscard]] std::optional<InstallationMethod> methodOfWord(MappedGroup family,
                                                             const QString& word);

/// The hint under a family's folder choice; empty where a family has none.
[[nodiscard]] QString folderHint(MappedGroup family, const DisplayNames& names, int generation);

/// A new variation of an aircraft that a texture group brings.
struct VariantDetails
{
    QString title;
    QString variation;     ///< ui_variation
    QString texture;       ///< folder suffix: "blue", "Landor\G-CIVB"; empty for plain "texture"
    QString sourceSection; ///< "fltsim.X" in the source file, empty when the add-on brings none
    qint32 sourceItem = 0; ///< key of the item that holds the section, or 0
    QStringList lines;     ///< of the section itself, where they were recorded
};

/// A folder of a repaint that becomes a folder of the aircraft.
struct AircraftPart
{
    QString sourceFolder; ///< as in the items
    QString name;         ///< the aircraft's folder of it: "texture.blue"
    QString wanted;       ///< the name when nobody has taken it
};

/// The picture that the aircraft, panel, repaint or scenery of a group is to get.
struct GroupPicture
{
    enum class Kind : quint8
    {
        None,
        File,      ///< a file of the user's or of the add-on
        Clipboard, ///< what lay in the clipboard
    };

    Kind kind = Kind::None;
    QString file;         ///< full path, when it is one; of the add-on's: as in the source
    QByteArray jpeg;      ///< the preview, made already
    bool cleared = false; ///< the user wants none
};

struct InstallationGroup
{
    MappedGroup family = MappedGroup::None;
    QString name;           ///< as shown on the group's tab
    QString sourceFolder;   ///< folder in the source that the group was made from
    QString targetFolder;   ///< where the group's own folder goes; empty: not selected
    QString proposedFolder; ///< what the analysis chose
    QString aircraftFolder; ///< texture, panel and sound groups: the aircraft they belong to
    QString simName;        ///< name of the flight model ("sim=") of an aircraft or repaint
    InstallationMethod method = InstallationMethod::Determined;
    int aircraftGroup = -1;   ///< index of the aircraft group of this add-on, or -1
    bool repaint = false;     ///< the analysis took the textures for a skin of an aircraft
    bool recorded = false;    ///< made from the record, to be installed again
    bool baseMissing = false; ///< the source names an aircraft that is nowhere
    bool sceneryLibraryUpdate = false;
    QString sceneryTitle;
    QList<VariantDetails> variants;
    QList<AircraftPart> parts; ///< texture groups
    GroupPicture picture;
    QList<qint32> items; ///< keys, in the add-on's order

    /// Installed as a new skin: the group cannot go without an aircraft folder.
    [[nodiscard]] bool asRepaint() const
    {
        return method == InstallationMethod::NewRepaint ||
               (repaint && method == InstallationMethod::Determined);
    }
};

} // namespace vt
