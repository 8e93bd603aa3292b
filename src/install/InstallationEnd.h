// The end of an installation as every front end tells it, and a recorded add-on installed again.
#pragma once

#include "install/CAddonInstaller.h"

#include <functional>

namespace vt {

struct InstallationEnd
{
    /// The installer ran. False: the source cannot be used, and there are no results.
    bool begun = false;
    /// The add-on is recorded, whole or not. False: nothing was installed.
    bool recorded = false;
    /// Failure: not recorded, ended early by the user (kind Declined), or not whole; says why.
    Result result;
    AddonRecord record;
    Results results; ///< by the groups of an installation
    QString movieToPlay;

    /// Of an installer whose Install_Begin() or Reinstall_Begin() gave \a reached.
    [[nodiscard]] static InstallationEnd of(const CAddonInstaller& installer, bool reached);
};

/// The whole reinstallation of a recorded add-on. \a source: as given by the user, or empty for the
/// File Cabinet or the source of before. Of a key that nobody recorded: the result alone.
[[nodiscard]] InstallationEnd reinstallAddon(Context& context,
                                             Connection& database,
                                             qint64 masterKey,
                                             const QString& source,
                                             const InstallOptions& options,
                                             const std::function<bool()>& simulatorIsRunning);

} // namespace vt
