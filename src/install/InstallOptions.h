// What a front end passes to an installation: answers given beforehand. Shared by plan and install,
// so that both see the same proposal.
#pragma once

#include "install/InstallationGroup.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

enum class InstallTo : quint8
{
    Simulator,
    Cabinet, ///< kept in the File Cabinet without being installed
};

enum class ReplacePolicy : quint8
{
    Ask,
    Yes,
    No,
    Newer, ///< only when the source's file is more recent
};

/// A folder chosen for the items of that name (or source path, or source folder with its "\").
struct TargetChoice
{
    QString name;
    QString folder; ///< a Windows text, or relative to the simulator's folder
};

/// How the groups of a family find their folders, and with which folder.
struct MethodChoice
{
    MappedGroup family = MappedGroup::None;
    InstallationMethod method = InstallationMethod::Determined;
    /// For a chosen folder (several groups get a folder each below it) and for the aircraft of
    /// repaints; a Windows text, or relative to the simulator's folder.
    QString folder;
};

/// Another name on installation for the items of that name (or source path).
struct Renaming
{
    QString name;
    QString installedName;
};

/// A picture for every group of a family.
struct PictureChoice
{
    MappedGroup family = MappedGroup::None;
    QString file; ///< full path
};

struct InstallOptions
{
    std::optional<QString> name;
    std::optional<QString> description;
    std::optional<QString> authors;
    std::optional<int> rating;   ///< 0 none, 1 to 5
    std::optional<InstallTo> to; ///< not given: as the settings say
    ReplacePolicy replace = ReplacePolicy::Ask;
    QStringList skip; ///< names, source paths, source folders (ending in "\") or "*.ext"
    QList<MethodChoice> methods;
    QList<TargetChoice> targets;
    QList<Renaming> renamings;
    QString aircraftFolder; ///< for textures, panels and sounds without an aircraft; or empty
    /// What the panels and sounds that the add-on's aircraft name but do not bring are to refer to:
    /// a folder as typed, then the alias; empty: nothing is made for them.
    QString panelFrom;
    QString soundFrom;
    bool noSceneryLibrary = false;
    std::optional<QString> sceneryTitle; ///< of every area that the add-on adds
    /// The question whether a read-only Scenery.cfg may be updated will be answered with Yes; only
    /// a plan asks this, so that it tells what will happen.
    bool updateReadOnlyLibrary = false;
    /// Questions about links that lead out of the simulator's folder will be answered with Yes; for
    /// what a plan tells.
    bool linksConfirmed = false;
    /// The key that the add-on will get, so that a plan shows the very lines; 0: not known.
    qint64 masterKey = 0;
    QString pictureFile; ///< of the add-on, a file of the user's; or empty
    QList<PictureChoice> pictures;
    bool startSimulator = false; ///< afterwards; for the front end, which asks
    QString archiveSourceFolder; ///< the source archive goes there afterwards; empty: stays
    bool deleteSource = false;
    /// Ask before the source is moved or deleted; off where naming the option was the confirmation.
    bool confirmSourceHandling = false;
};

struct Context;

/// What a wizard begins with for that source: the settings' wishes, as far as they fit it, and
/// every question asked.
[[nodiscard]] InstallOptions installOptionsFromSettings(Context& context, const QString& source);

} // namespace vt
