// Writes a demonstration simulator: a small Wine-like prefix with registry, drives and a simulator
// folder whose files are all made up here. For people without the real one at hand, and for tests.
// Every call writes the same bytes and the same file times.
#pragma once

#include "platform/Result.h"

#include <QString>

namespace vt {

/// Where the parts of a demonstration simulator lie. Hosts are absolute host paths without a
/// trailing "/"; folders are Windows texts that end in "\".
struct DemoSimulator
{
    QString prefixHost;
    QString user; ///< the Windows user, "pilot"

    QString simulatorHost;
    QString simulatorFolder; ///< "C:\Program Files (x86)\...\Microsoft Flight Simulator X\"

    QString allUsersHost;
    QString allUsersFolder; ///< "C:\ProgramData\Microsoft\FSX\", holds Scenery.cfg

    QString userDataHost;
    QString userDataFolder; ///< "C:\users\pilot\AppData\Roaming\Microsoft\FSX\", holds fsx.cfg

    QString documentsHost;
    QString documentsFolder; ///< "C:\users\pilot\Documents\Flight Simulator X Files\"
};

/// \a hostFolder becomes the prefix; it must be missing or empty. A failure leaves it so.
[[nodiscard]] ResultOf<DemoSimulator> writeDemoSimulator(const QString& hostFolder);

/// The same places without writing anything, for a prefix that was written before.
[[nodiscard]] DemoSimulator demoSimulatorAt(const QString& hostFolder);

} // namespace vt
