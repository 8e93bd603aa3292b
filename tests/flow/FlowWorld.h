// A demonstration simulator, a program folder and the real objects over them, for whole
// installations and removals. Several worlds may be built one after the other over one folder, as
// several runs of the program would be.
#pragma once

#include "addondb/Connection.h"
#include "demo/DemoAircraft.h"
#include "demo/DemoSimulator.h"
#include "install/CAddonInstallationDetails.h"
#include "install/CAddonInstaller.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Journal.h"
#include "platform/RegistryStore.h"
#include "remove/CAddonRemover.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "support/ScriptedPrompts.h"
#include "support/TreeSnapshot.h"

#include <memory>

namespace vt::test {

/// How many cases of a long row are left out for one that is tried: none, but under a sanitizer,
/// where every process and every step takes many times as long.
#ifdef __SANITIZE_ADDRESS__
inline constexpr int stride = 7;
#else
inline constexpr int stride = 1;
#endif

/// A folder for a test on a memory file system where there is one.
[[nodiscard]] QString temporaryTemplate();

/// Stops after some looks, as a user would between two files.
class StoppingStatus final : public StatusSink
{
public:
    void text(const QString&, const QString&) override {}

    void progress(qint64, qint64) override {}

    bool cancelled() override { return looksUntilStop >= 0 && --looksUntilStop < 0; }

    int looksUntilStop = -1; ///< negative: never
};

class FlowWorld
{
public:
    /// \a folder holds "prefix" and "program"; both are made when missing.
    explicit FlowWorld(const QString& folder);
    ~FlowWorld();

    /// Opens (or makes) the database and finishes interrupted work.
    Result start();
    void stop();

    /// The key of the new add-on, or why there is none. installed and failure are set as well.
    ResultOf<qint64> install(const QString& hostSource, const InstallOptions& options = {});
    /// What the add-on lacks of the source; nothing in \a onlyFiles: all of it.
    Result complete(qint64 key, const QString& hostSource, const QStringList& onlyFiles = {});
    Result remove(qint64 key, const RemovalOptions& options = {});
    /// From the File Cabinet, the recorded source or \a hostSource.
    Result
    reinstall(qint64 key, const InstallOptions& options = {}, const QString& hostSource = {});

    /// The folder as one that the user chose for the next operation.
    QString choose(const QString& hostFolder);

    /// The simulator's folders as they are now, without the program folder.
    [[nodiscard]] TreeSnapshot tree() const;
    [[nodiscard]] QString simulatorPath(const QString& relative) const;
    [[nodiscard]] QString hostPath(const QString& relative) const;

    DemoSimulator demo;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate};
    ScriptedPrompts prompts;
    StoppingStatus status;
    Clock clock;
    AnsiCodec ansi;
    RegistryStore registry;
    CRegistry_Manipulation registryClass{
        registry, prompts, QStringLiteral("Vantrel for Flight Simulator X")};
    GlobalRecord global;
    Services services{files, gate, actions, prompts, status, clock, ansi};
    Settings settings{registryClass, global};
    ErrorLog errors{services, global};
    Context context{services, global, settings, errors};
    std::unique_ptr<Connection> database;
    QList<Recovery> recoveries;
    Results results;        ///< of the last operation
    bool anyFailed = false; ///< of the last removal or reinstallation
    bool simulatorRuns = false;
};

/// How many fault points \a work passes.
int countPoints(FlowWorld& world, const std::function<void(FlowWorld&)>& work);
/// Runs \a work on the world at \a folder in a process of its own that ends at fault point \a n (1
/// is the first); true when it was ended. \a before is called at each point.
bool runAndEnd(const QString& folder,
               int n,
               const std::function<void(FlowWorld&)>& work,
               const std::function<void(const char* action)>& before = {});
/// A start that is itself ended at its n-th fault point.
bool startAndEnd(const QString& folder, int n);
/// What staging left behind.
[[nodiscard]] QStringList strayStaging(const TreeSnapshot& tree);

/// An archive of these files at a host path.
[[nodiscard]] QString
writePack(const QString& hostFolder, const QString& name, const DemoFiles& files);

/// A copy of a folder with everything in it, times included.
void copyTree(const QString& from, const QString& to);

} // namespace vt::test
