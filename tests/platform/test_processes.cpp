#include "platform/Processes.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

namespace {

Processes::Setup setup()
{
    Processes::Setup out;
    out.launcher = {u"no such launcher"_s};
    return out;
}

/// A script at C:\\FSX\\Tool and the call that runs it.
struct Tool : Disk
{
    explicit Tool(const QByteArray& body) { script(u"FSX/Tool"_s, body); }

    void script(const QString& path, const QByteArray& body)
    {
        write(path, "#!/bin/sh\n" + body);
        QVERIFY(QFile::setPermissions(host(path),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    [[nodiscard]] ProcessEnd run() const { return Processes(files, by).run(call); }

    Processes::Setup by = setup();
    ProcessCall call{.program = u"c:\\fsx\\TOOL"_s};
};

bool ends(int pid)
{
    return pid > 1 && QTest::qWaitFor([&] { return kill(pid, 0) != 0; }, 5000);
}

} // namespace

class TestProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void exitStatusAndOutput()
    {
        const ProcessEnd end = Tool("echo out; echo err >&2; exit 7\n").run();
        QCOMPARE(end.how, ProcessEnd::How::Exited);
        QCOMPARE(end.exitCode, 7);
        QCOMPARE(end.output, QByteArray("out\nerr\n"));
        QVERIFY(!end.succeeded());
        QVERIFY(end.text.isEmpty());
    }

    void argumentsArriveAsGiven()
    {
        Tool tool("for a in \"$@\"; do printf '<%s>' \"$a\"; done\n");
        tool.call.arguments = {u"a b"_s, u""_s, u"$HOME \"q\" é"_s};
        tool.call.commandLine = u"-c \"C:\\a b\\\\\" ''"_s;
        QCOMPARE(tool.run().output, u"<a b><><$HOME \"q\" é><-c><C:\\a b\\><''>"_s.toUtf8());
    }

    void environmentAndFolder()
    {
        Tool tool("pwd -P; echo $WINEPREFIX; echo $EXTRA\n");
        tool.by.hostPrefix = u"/some/prefix"_s;
        tool.call.environment.insert(u"EXTRA"_s, u"x y"_s);
        const auto told = [&](const QString& folder) {
            return QFileInfo(tool.host(folder)).canonicalFilePath().toUtf8() +
                   "\n/some/prefix\nx y\n";
        };
        QCOMPARE(tool.run().output, told(u"FSX"_s));
        tool.call.workingFolder = u"C:\\vantrel\\"_s;
        QCOMPARE(tool.run().output, told(u"Vantrel"_s));
    }

    void launcherRunsWindowsPrograms()
    {
        Tool tool("MZ...");
        tool.write(u"FSX/fsx.exe"_s, "MZ...");
        tool.call.program = u"C:\\FSX\\FSX.EXE"_s;
        tool.call.arguments = {u"-flt:C:\\a.flt"_s};
        const ProcessEnd end = tool.run();
        QCOMPARE(end.how, ProcessEnd::How::NotStarted);
        QVERIFY2(end.text.contains(u"'no such launcher'"_s) && end.text.contains(u"FSX.EXE"_s),
                 qPrintable(end.text));

        tool.script(u"launcher"_s, "printf '%s\\n' \"$*\"\n");
        tool.by.launcher = {tool.host(u"launcher"_s), u"--quiet"_s};
        QCOMPARE(tool.run().output,
                 "--quiet " + tool.host(u"FSX/fsx.exe"_s).toUtf8() + " -flt:C:\\a.flt\n");
    }

    void windowsProgramsAreRecognised()
    {
        const QByteArray elf = QByteArray("\x7f") + "ELF\2";
        const Rows<QString, QByteArray, bool> rows = {
            {"by content", u"tool"_s, "MZ\x90", true},
            {"by name", u"Tool.EXE"_s, "other", true},
            {"batch", u"run.bat"_s, "@echo off", true},
            {"script under a Windows name", u"tool.exe"_s, "#!/bin/sh", false},
            {"host program under a Windows name", u"tool.exe"_s, elf, false},
            {"host program", u"tool"_s, elf, false},
            {"missing", u"gone.txt"_s, {}, false},
        };
        for (const auto& [name, bytes, windows] : rows) {
            Disk disk;
            if (!bytes.isEmpty())
                disk.write(u"FSX/"_s + name, bytes);
            QCOMPARE(Processes(disk.files, setup()).isWindowsProgram(u"C:\\FSX\\"_s + name),
                     windows);
        }
    }

    void timeOutEndsChildrenToo()
    {
        Tool tool("echo $$\nsleep 300 & echo $!\n(sleep 300 & echo $!; wait) &\nwait\n");
        tool.call.timeoutMs = 400;
        QElapsedTimer timer;
        timer.start();
        const ProcessEnd end = tool.run();
        QVERIFY(timer.elapsed() < 5000);
        QCOMPARE(end.how, ProcessEnd::How::TimedOut);
        QVERIFY2(end.text.contains(u"400 milliseconds"_s), qPrintable(end.text));
        const QList<QByteArray> pids = end.output.simplified().split(' ');
        QCOMPARE(pids.size(), 3);
        for (const QByteArray& pid : pids)
            QVERIFY2(ends(pid.toInt()), pid.constData());
    }

    void stubbornProgramIsKilled()
    {
        Tool tool("trap '' TERM\necho $$\nwhile :; do sleep 1; done\n");
        tool.call.timeoutMs = 300;
        const ProcessEnd end = tool.run();
        QCOMPARE(end.how, ProcessEnd::How::TimedOut);
        QVERIFY(ends(end.output.trimmed().toInt()));
    }

    void cancelEnds()
    {
        Tool tool("sleep 300\n");
        int asked = 0;
        tool.call.keepWaiting = [&] { return ++asked < 3; };
        QCOMPARE(tool.run().how, ProcessEnd::How::Cancelled);
        QCOMPARE(asked, 3);
    }

    void notStarted()
    {
        const Rows<QString, QString, QString> rows = {
            {"missing", u"C:\\FSX\\gone.exe"_s, u""_s, u"does not exist"_s},
            {"a folder", u"C:\\FSX"_s, u""_s, u"does not exist"_s},
            {"no drive", u"Q:\\gone.exe"_s, u""_s, u"does not exist"_s},
            {"not executable", u"C:\\FSX\\notes.txt"_s, u""_s, u"neither a Windows program"_s},
            {"folder", u"C:\\FSX\\notes.txt"_s, u"C:\\gone\\"_s, u"working folder 'C:\\gone\\'"_s},
        };
        for (const auto& [program, folder, told] : rows) {
            Disk disk;
            disk.write(u"FSX/notes.txt"_s, "text");
            const Processes processes(disk.files, setup());
            const ProcessCall call{.program = program, .workingFolder = folder};
            const ProcessEnd end = processes.run(call);
            QCOMPARE(end.how, ProcessEnd::How::NotStarted);
            QVERIFY2(end.text.contains(told) && end.text.contains(program), qPrintable(end.text));
            QCOMPARE(processes.startDetached(call).text, end.text);
        }
    }

    void crashIsTold()
    {
        const ProcessEnd end = Tool("kill -SEGV $$\n").run();
        QCOMPARE(end.how, ProcessEnd::How::Crashed);
        QVERIFY2(end.text.contains(u"c:\\fsx\\TOOL"_s), qPrintable(end.text));
    }

    void longOutputIsCut()
    {
        const ProcessEnd end = Tool("head -c 3000000 /dev/zero\n").run();
        QVERIFY(end.succeeded());
        QCOMPARE(end.output.size(), 1024 * 1024);
    }

    void detachedOutlives()
    {
        Tool tool("echo \"$1\" > result.part && mv result.part result\n");
        tool.call.arguments = {u"done"_s};
        const Result started = Processes(tool.files, tool.by).startDetached(tool.call);
        QVERIFY2(started.ok, qPrintable(started.text));
        QVERIFY(QTest::qWaitFor([&] { return tool.exists(u"FSX/result"_s); }, 5000));
        QCOMPARE(tool.read(u"FSX/result"_s), QByteArray("done\n"));
    }

    void running()
    {
        // ending: behind the name of the program's file
        // loader: is started with the file behind it; empty: the file
        const Rows<QString, QString, QString, bool> rows = {
            {"itself", u".exe"_s, u""_s, u"own"_s, true},
            {"prefix by a link", u".EXE"_s, u""_s, u"link"_s, true},
            {"another prefix", u".exe"_s, u""_s, u"other"_s, false},
            {"no prefix told", u".exe"_s, u""_s, u""_s, true},
            {"longer name", u".exe.old"_s, u""_s, u"own"_s, false},
            {"by the loader", u".exe"_s, u"wine64"_s, u"own"_s, true},
            {"looked at", u".exe"_s, u"editor"_s, u"own"_s, false},
        };
        for (const auto& [ending, loader, prefix, running] : rows) {
            Tool disk("");
            disk.makeFolder(u"own"_s);
            disk.makeFolder(u"other"_s);
            QVERIFY(QFile::link(disk.host(u"own"_s), disk.host(u"link"_s)));
            // Other runs of this test on the same host have other names.
            const QString name = u"sim"_s + QString::number(QCoreApplication::applicationPid());
            disk.script(u"FSX/"_s + name + ending, "echo\nread end\n");
            QString program = disk.host(u"FSX/"_s + name + ending);
            QStringList arguments;
            if (!loader.isEmpty()) {
                arguments = {program};
                program = disk.host(loader);
                QVERIFY(QFile::copy(QFileInfo(u"/bin/sh"_s).canonicalFilePath(), program));
            }
            QProcess process;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.remove(u"WINEPREFIX"_s);
            if (!prefix.isEmpty())
                environment.insert(u"WINEPREFIX"_s, disk.host(prefix));
            process.setProcessEnvironment(environment);
            process.start(program, arguments);
            QVERIFY(process.waitForReadyRead());
            disk.by.hostPrefix = disk.host(u"own"_s);
            const Processes processes(disk.files, disk.by);
            QCOMPARE(processes.isRunning(name.toUpper() + u".Exe"_s), running);
            process.closeWriteChannel();
            QVERIFY(process.waitForFinished());
            QVERIFY(!processes.isRunning(name + u".exe"_s));
        }
    }

    void commandLines()
    {
        const Rows<QString, QStringList> rows = {
            {"empty", u" \t "_s, {}},
            {"plain", u"a  b\tc "_s, {u"a"_s, u"b"_s, u"c"_s}},
            {"quoted", u"\"a b\" c\" \"d \"\""_s, {u"a b"_s, u"c d"_s, u""_s}},
            {"backslashes", u"C:\\a\\b\\ \\\\x"_s, {u"C:\\a\\b\\"_s, u"\\\\x"_s}},
            {"backslashes before quotes",
             u"\"C:\\a\\\\\" a\\\"b \\\\\\\"c"_s,
             {u"C:\\a\\"_s, u"a\"b"_s, u"\\\"c"_s}},
            {"doubled quote inside", u"\"a\"\"b\""_s, {u"a\"b"_s}},
            {"open quote", u"\"a b"_s, {u"a b"_s}},
        };
        for (const auto& [line, arguments] : rows)
            QCOMPARE(splitWindowsCommandLine(line), arguments);
    }
};

VT_TEST_CLASS(TestProcesses)
#include "test_processes.moc"
