// What a tool asks of the main window around it. Tools know this interface alone, so that each can
// be built and tested without the others.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace vt {

class Results;

/// Where one goes from the results of an operation.
struct AfterResults
{
    QList<qint64> addons = {};           ///< that "Show Addons" selects in the list
    std::function<void()> tryAgain = {}; ///< what failed, once more; unset: it cannot be
};

/// What a recorded add-on lacks of its source.
struct InstallationRest
{
    qint64 masterKey = 0;   ///< of the add-on; 0: a new one is installed
    QStringList files = {}; ///< places in the source, as CAddonInstaller::notInstalled() gives them
};

/// Property of a dialog: the topic that F1 shows while it is open.
inline constexpr const char* helpTopicProperty = "helpTopic";

class Frame
{
public:
    virtual ~Frame() = default;

    /// Does what the menu entry of that control name does ("mnuFileCabinet").
    virtual void command(const QString& controlName) = 0;
    /// Opens the installation wizard; \a source: a Windows path, empty: the user chooses there.
    /// \a rest: what a recorded add-on still lacks of it.
    virtual void installAddon(const QString& source, const InstallationRest& rest = {}) = 0;
    /// Opens the removal wizard with these add-ons ticked.
    virtual void removeAddons(const QList<qint64>& masterKeys) = 0;
    /// Opens the list of all add-ons and selects these.
    virtual void workWithAddons(const QList<qint64>& masterKeys) = 0;
    /// Opens the results of an operation as a window of its own.
    virtual void
    showResults(const QString& caption, const Results& results, const AfterResults& after = {}) = 0;
    /// Asks and starts the simulator, with \a file when there is one. \a afterChange: called after
    /// an installation or removal; a simulator that runs is then told of instead.
    virtual void startFlying(const QString& file = {}, bool afterChange = false) = 0;
    /// Records changed: every open tool is told.
    virtual void recordsChanged() = 0;
    /// How many tools are open; "mnuCloseAll" closes them.
    [[nodiscard]] virtual int openTools() const = 0;
    /// Opens a topic of the help.
    virtual void showHelp(const QString& topic = {}) = 0;

    /// Between these two a long operation runs: everything but its cancel button is disabled, so
    /// that no command can begin inside another. Calls nest.
    virtual void beginWork() = 0;
    virtual void endWork() = 0;
};

/// A long operation, for as long as this lives.
class Working
{
public:
    explicit Working(Frame& frame) : m_frame(frame) { m_frame.beginWork(); }

    ~Working() { m_frame.endWork(); }

    Working(const Working&) = delete;
    Working& operator=(const Working&) = delete;

private:
    Frame& m_frame;
};

} // namespace vt
