// Where the Windows world of the simulator lies on this host: the Wine or Proton prefix, its drive
// letters, its code page. Reads only.
#pragma once

#include "platform/DriveTable.h"
#include "platform/Result.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

namespace vt {

class RegistryStore;

/// A prefix's folder on the host; empty when there is none.
struct Prefix
{
    QString hostFolder;
    QString foundBy; ///< "option", "WINEPREFIX", "home" or "Steam"

    [[nodiscard]] bool exists() const { return !hostFolder.isEmpty(); }
};

/// What a search for the prefix goes by.
struct PrefixSearch
{
    QString explicitFolder; ///< host path given by the user, relative ones from the current folder
    QProcessEnvironment environment; ///< WINEPREFIX, HOME
    QString currentFolder;           ///< host folder, for relative paths
};

/// In this order: the explicit folder, WINEPREFIX, "~/.wine", the Steam Edition's prefix below the
/// usual Steam folders and their libraries. None is a success. Fails only when the explicit folder
/// is no prefix. A WINEPREFIX that is set but holds no prefix means none: another one is not
/// touched instead.
[[nodiscard]] ResultOf<Prefix> findPrefix(const PrefixSearch& search);

/// Host folders in which Steam keeps its games, each with a "steamapps" folder.
[[nodiscard]] QStringList steamLibraries(const QString& hostHome);

/// The prefix's drives (C: at the least when there is a prefix) and those of \a extraDrives
/// ("X=DIR", host folders, relative ones from \a currentFolder), which go before.
[[nodiscard]] ResultOf<DriveTable>
driveTableOf(const Prefix& prefix, const QStringList& extraDrives, const QString& currentFolder);

/// The ANSI code page that the prefix's programs use; 1252 when it is not recorded.
[[nodiscard]] int ansiCodePage(const RegistryStore& registry);

} // namespace vt
