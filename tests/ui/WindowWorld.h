// What a window stands on: the demonstration simulator in a temporary folder, a real session over
// it, scripted answers and a frame that notes what was asked of it.
#pragma once

#include "addondb/Connection.h"
#include "demo/DemoSimulator.h"
#include "install/CAddonInstallationDetails.h"
#include "session/Session.h"
#include "shell/Results.h"
#include "shell/forms/Frame.h"
#include "support/Disk.h"
#include "support/ScriptedPrompts.h"
#include "ui/Screenshot.h"

#include <QTemporaryDir>

#include <memory>

namespace vt::test {

/// Notes each call as one text: "command mnuFileCabinet", "installAddon C:\a.zip" (and after
/// " rest of " the key of an add-on and what it lacks),
/// "removeAddons 3 4", "workWithAddons 3", "showResults <caption>", "startFlying <file>",
/// "startFlying <file> after change", "recordsChanged", "showHelp <topic>".
class RecordingFrame final : public Frame
{
public:
    void command(const QString& controlName) override;
    void installAddon(const QString& source, const InstallationRest& rest) override;
    void removeAddons(const QList<qint64>& masterKeys) override;
    void workWithAddons(const QList<qint64>& masterKeys) override;
    void
    showResults(const QString& caption, const Results& results, const AfterResults& after) override;
    void startFlying(const QString& file, bool afterChange) override;
    void recordsChanged() override;

    [[nodiscard]] int openTools() const override { return toolsOpen; }

    void showHelp(const QString& topic) override;
    void beginWork() override;
    void endWork() override;

    QStringList calls;
    Results results; ///< the last that were to be shown
    AfterResults after;
    int toolsOpen = 0; ///< until "mnuCloseAll" is commanded
    int working = 0;   ///< begun and not ended
    int everBegun = 0; ///< how often work was begun
};

class WindowWorld
{
public:
    /// Simulator located, database made and open for writing.
    WindowWorld();
    ~WindowWorld();

    /// Ends the session as an end of the program would, and begins another one over the same
    /// folders.
    void restart();

    [[nodiscard]] Context& context() { return session->context(); }

    [[nodiscard]] Connection& database() { return *session->database(); }

    /// Writes a sample add-on as "<name>.zip"; its Windows path.
    QString sample(const QString& name) const;
    /// Installs a sample; its master key.
    qint64 install(const QString& sampleName, const InstallOptions& options = {});

    /// A path below the temporary folder as a host path, and as a Windows text.
    [[nodiscard]] QString host(const QString& relative) const { return dir.filePath(relative); }

    [[nodiscard]] QString windows(const QString& relative) const;

    QTemporaryDir dir; ///< holds "prefix" and "home"
    DemoSimulator demo;
    ScriptedPrompts prompts;
    TestStatus status;
    RecordingFrame frame;
    std::unique_ptr<Session> session;
};

} // namespace vt::test
