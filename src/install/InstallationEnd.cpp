#include "install/InstallationEnd.h"

#include "install/RecordedAddon.h"

using namespace Qt::StringLiterals;

namespace vt {

InstallationEnd InstallationEnd::of(const CAddonInstaller& installer, bool reached)
{
    return {true,
            reached,
            installer.outcome(),
            installer.record(),
            installer.results(),
            installer.movieToPlay()};
}

InstallationEnd reinstallAddon(Context& context,
                               Connection& database,
                               qint64 masterKey,
                               const QString& source,
                               const InstallOptions& options,
                               const std::function<bool()>& simulatorIsRunning)
{
    InstallationEnd end;
    end.results = Results::forInstallation();
    ResultOf<RecordedAddon> recorded = RecordedAddon::load(database, masterKey);
    end.result = recorded.error();
    if (!recorded)
        return end;
    end.record = recorded->record;
    const ResultOf<QString> found = reinstallationSource(context, *recorded, source);
    end.result = found.error();
    if (!found)
        return end;
    CAddonInstallationDetails details(context);
    end.result = details.prepareAgain(*recorded, *found, options);
    if (!end.result)
        return end;
    CAddonInstaller installer(context, database, details);
    installer.simulatorIsRunning = simulatorIsRunning;
    const bool reached = installer.Reinstall_Begin();
    return InstallationEnd::of(installer, reached);
}

} // namespace vt
