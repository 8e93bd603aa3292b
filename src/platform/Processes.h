// Child processes: outside tools and the simulator. Each runs in a session of its own, so that a
// time-out ends its children too. Windows programs go through a launcher where the host is not
// Windows; any other file runs directly.
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QMap>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>

class QProcess;

namespace vt {

/// One program to be started.
struct ProcessCall
{
    QString program = {};       ///< Windows text of the file
    QStringList arguments = {}; ///< handed over as they are
    /// More arguments as one Windows command line, split by its quoting rules.
    QString commandLine = {};
    QString workingFolder = {};              ///< Windows text; empty: the program's own folder
    QMap<QString, QString> environment = {}; ///< additions and replacements
    int timeoutMs = -1;                      ///< -1: none
    /// Called about ten times a second while waiting; false ends the process as cancelled.
    std::function<bool()> keepWaiting = {};
};

struct ProcessEnd
{
    enum class How : quint8
    {
        Exited,    ///< by itself; exitCode is valid
        Crashed,   ///< by a signal
        TimedOut,  ///< ended by us, children included
        Cancelled, ///< as TimedOut, by keepWaiting
        NotStarted,
    };

    How how = How::NotStarted;
    int exitCode = -1;
    QByteArray output; ///< standard output and error together, the first MiB
    QString text;      ///< one sentence unless Exited

    [[nodiscard]] bool succeeded() const { return how == How::Exited && exitCode == 0; }
};

class Processes
{
public:
    struct Setup
    {
        QStringList launcher = {QStringLiteral("wine")}; ///< program and leading arguments
        QString hostPrefix;                              ///< becomes WINEPREFIX when not empty
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    };

    /// \a files must outlive this.
    Processes(const Files& files, Setup setup) : m_files(files), m_setup(std::move(setup)) {}

    /// Starts the program and waits for its end.
    [[nodiscard]] ProcessEnd run(const ProcessCall& call) const;
    /// Starts the program and leaves it alone; it outlives this process. Output is thrown away.
    [[nodiscard]] Result startDetached(const ProcessCall& call) const;

    /// Whether the file is started through the launcher: it begins with "MZ", or is named as a
    /// Windows program and is neither a script ("#!") nor a program of this host (ELF).
    [[nodiscard]] bool isWindowsProgram(const QString& program) const;

    /// Whether a program of that file name ("fsx.exe", without regard to case) runs on this host,
    /// by whomever it was started. One that is known to run in another prefix does not count.
    [[nodiscard]] bool isRunning(QStringView program) const;

private:
    struct Prepared
    {
        QString program;
        QStringList arguments;
        QString folder;
        QProcessEnvironment environment;
    };

    ResultOf<Prepared> prepare(const ProcessCall& call) const;
    void wait(QProcess& process, const ProcessCall& call, ProcessEnd& end) const;

    const Files& m_files;
    Setup m_setup;
};

/// A Windows command line as its arguments (quotes, doubled quotes, backslashes before quotes).
[[nodiscard]] QStringList splitWindowsCommandLine(QStringView commandLine);

} // namespace vt
