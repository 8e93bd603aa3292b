#include "Disk.h"
#include "platform/Processes.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QProcess>

#include <csignal>

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

class TestProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitStatusAndOutput();
    void argumentsArriveAsGiven();
    void environmentAndFolder();
    void launcherRunsWindowsPrograms();
    void windowsProgramsAreRecognised_data();
    void windowsProgramsAreRecognised();
    void timeOutEndsChildrenToo();
    void stubbornProgramIsKilled();
    void cancelEnds();
    void notStarted_data();
    void notStarted();
    void crashIsTold();
    void longOutputIsCut();
    void detachedOutlives();
    void running_data();
    void running();
    void commandLines_data();
    void commandLines();

private:
    static Processes::Setup setup()
    {
        Processes::Setup out;
        out.launcher = {u"no such launcher"_s};
        return out;
    }

    static void script(Disk& disk, const QString& relative, const QByteArray& body)
    {
        disk.write(relative, "#!/bin/sh\n" + body);
        QVERIFY(QFile::setPermissions(disk.host(relative),
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    static bool waitFor(const std::function<bool()>& condition)
    {
        return QTest::qWaitFor(condition, 5000);
    }
};

void TestProcesses::exitStatusAndOutput()
{
    Disk disk;
    script(disk, u"FSX/Tool"_s, "echo out; echo err >&2; exit 7\n");
    const ProcessEnd end = Processes(disk.files, setup()).run({.program = u"c:\\fsx\\TOOL"_s});
    QCOMPARE(end.how, ProcessEnd::How::Exited);
    QCOMPARE(end.exitCode, 7);
    QCOMPARE(end.output, QByteArray("out\nerr\n"));
    QVERIFY(!end.succeeded());
    QVERIFY(end.text.isEmpty());
}

void TestProcesses::argumentsArriveAsGiven()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "for a in \"$@\"; do printf '<%s>' \"$a\"; done\n");
    ProcessCall call{.program = u"C:\\FSX\\tool"_s};
    call.arguments = {u"a b"_s, u""_s, u"$HOME \"q\" é"_s};
    call.commandLine = u"-c \"C:\\a b\\\\\" ''"_s;
    QCOMPARE(Processes(disk.files, setup()).run(call).output,
             u"<a b><><$HOME \"q\" é><-c><C:\\a b\\><''>"_s.toUtf8());
}

void TestProcesses::environmentAndFolder()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "pwd -P; echo $WINEPREFIX; echo $EXTRA\n");
    Processes::Setup by = setup();
    by.hostPrefix = u"/some/prefix"_s;
    ProcessCall call{.program = u"C:\\FSX\\tool"_s};
    call.environment.insert(u"EXTRA"_s, u"x y"_s);
    const QByteArray rest = "\n/some/prefix\nx y\n";
    QCOMPARE(Processes(disk.files, by).run(call).output,
             QFileInfo(disk.host(u"FSX"_s)).canonicalFilePath().toUtf8() + rest);
    call.workingFolder = u"C:\\vantrel\\"_s;
    QCOMPARE(Processes(disk.files, by).run(call).output,
             QFileInfo(disk.host(u"Vantrel"_s)).canonicalFilePath().toUtf8() + rest);
}

void TestProcesses::launcherRunsWindowsPrograms()
{
    Disk disk;
    script(disk, u"launcher"_s, "printf '%s\\n' \"$*\"\n");
    disk.write(u"FSX/fsx.exe"_s, "MZ...");
    Processes::Setup by = setup();
    by.launcher = {disk.host(u"launcher"_s), u"--quiet"_s};
    ProcessCall call{.program = u"C:\\FSX\\FSX.EXE"_s};
    call.arguments = {u"-flt:C:\\a.flt"_s};
    QCOMPARE(Processes(disk.files, by).run(call).output,
             "--quiet " + disk.host(u"FSX/fsx.exe"_s).toUtf8() + " -flt:C:\\a.flt\n");

    const ProcessEnd end = Processes(disk.files, setup()).run(call);
    QCOMPARE(end.how, ProcessEnd::How::NotStarted);
    QVERIFY2(end.text.contains(u"'no such launcher'"_s) && end.text.contains(u"FSX.EXE"_s),
             qPrintable(end.text));
}

void TestProcesses::windowsProgramsAreRecognised_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("windows");
    QTest::newRow("by content") << u"tool"_s << QByteArray("MZ\x90") << true;
    QTest::newRow("by name") << u"Tool.EXE"_s << QByteArray("other") << true;
    QTest::newRow("batch") << u"run.bat"_s << QByteArray("@echo off") << true;
    QTest::newRow("script under a Windows name")
        << u"tool.exe"_s << QByteArray("#!/bin/sh") << false;
    QTest::newRow("host program under a Windows name") << u"tool.exe"_s
                                                       << QByteArray("\x7f"
                                                                     "ELF\2")
                                                       << false;
    QTest::newRow("host program") << u"tool"_s
                                  << QByteArray("\x7f"
                                                "ELF\2")
                                  << false;
    QTest::newRow("missing") << u"gone.txt"_s << QByteArray() << false;
}

void TestProcesses::windowsProgramsAreRecognised()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, windows);
    Disk disk;
    if (!bytes.isEmpty())
        disk.write(u"FSX/"_s + name, bytes);
    QCOMPARE(Processes(disk.files, setup()).isWindowsProgram(u"C:\\FSX\\"_s + name), windows);
}

void TestProcesses::timeOutEndsChildrenToo()
{
    Disk disk;
    script(
        disk, u"FSX/tool"_s, "echo $$\nsleep 300 & echo $!\n(sleep 300 & echo $!; wait) &\nwait\n");
    ProcessCall call{.program = u"C:\\FSX\\tool"_s, .timeoutMs = 400};
    QElapsedTimer timer;
    timer.start();
    const ProcessEnd end = Processes(disk.files, setup()).run(call);
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(end.how, ProcessEnd::How::TimedOut);
    QVERIFY2(end.text.contains(u"400 milliseconds"_s), qPrintable(end.text));
    const QList<QByteArray> pids = end.output.simplified().split(' ');
    QCOMPARE(pids.size(), 3);
    for (const QByteArray& pid : pids) {
        QVERIFY(pid.toInt() > 1);
        QVERIFY2(waitFor([&] { return kill(pid.toInt(), 0) != 0; }), pid.constData());
    }
}

void TestProcesses::stubbornProgramIsKilled()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "trap '' TERM\necho $$\nwhile :; do sleep 1; done\n");
    ProcessCall call{.program = u"C:\\FSX\\tool"_s, .timeoutMs = 300};
    const ProcessEnd end = Processes(disk.files, setup()).run(call);
    QCOMPARE(end.how, ProcessEnd::How::TimedOut);
    const int pid = end.output.trimmed().toInt();
    QVERIFY(pid > 1);
    QVERIFY(waitFor([&] { return kill(pid, 0) != 0; }));
}

void TestProcesses::cancelEnds()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "sleep 300\n");
    int asked = 0;
    ProcessCall call{.program = u"C:\\FSX\\tool"_s};
    call.keepWaiting = [&] { return ++asked < 3; };
    QCOMPARE(Processes(disk.files, setup()).run(call).how, ProcessEnd::How::Cancelled);
    QCOMPARE(asked, 3);
}

void TestProcesses::notStarted_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("told");
    QTest::newRow("missing") << u"C:\\FSX\\gone.exe"_s << u""_s << u"does not exist"_s;
    QTest::newRow("a folder") << u"C:\\FSX"_s << u""_s << u"does not exist"_s;
    QTest::newRow("no drive") << u"Q:\\gone.exe"_s << u""_s << u"does not exist"_s;
    QTest::newRow("not executable")
        << u"C:\\FSX\\notes.txt"_s << u""_s << u"neither a Windows program"_s;
    QTest::newRow("working folder")
        << u"C:\\FSX\\notes.txt"_s << u"C:\\gone\\"_s << u"working folder 'C:\\gone\\'"_s;
}

void TestProcesses::notStarted()
{
    QFETCH(QString, program);
    QFETCH(QString, folder);
    QFETCH(QString, told);
    Disk disk;
    disk.write(u"FSX/notes.txt"_s, "text");
    const Processes processes(disk.files, setup());
    const ProcessCall call{.program = program, .workingFolder = folder};
    const ProcessEnd end = processes.run(call);
    QCOMPARE(end.how, ProcessEnd::How::NotStarted);
    QVERIFY2(end.text.contains(told) && end.text.contains(program), qPrintable(end.text));
    QCOMPARE(processes.startDetached(call).text, end.text);
}

void TestProcesses::crashIsTold()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "kill -SEGV $$\n");
    const ProcessEnd end = Processes(disk.files, setup()).run({.program = u"C:\\FSX\\tool"_s});
    QCOMPARE(end.how, ProcessEnd::How::Crashed);
    QVERIFY2(end.text.contains(u"C:\\FSX\\tool"_s), qPrintable(end.text));
}

void TestProcesses::longOutputIsCut()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "head -c 3000000 /dev/zero\n");
    const ProcessEnd end = Processes(disk.files, setup()).run({.program = u"C:\\FSX\\tool"_s});
    QVERIFY(end.succeeded());
    QCOMPARE(end.output.size(), 1024 * 1024);
}

void TestProcesses::detachedOutlives()
{
    Disk disk;
    script(disk, u"FSX/tool"_s, "echo \"$1\" > result.part && mv result.part result\n");
    {
        ProcessCall call{.program = u"C:\\FSX\\tool"_s};
        call.arguments = {u"done"_s};
        const Result started = Processes(disk.files, setup()).startDetached(call);
        QVERIFY2(started.ok, qPrintable(started.text));
    }
    QVERIFY(waitFor([&] { return QFile::exists(disk.host(u"FSX/result"_s)); }));
    QCOMPARE(disk.read(u"FSX/result"_s), QByteArray("done\n"));
}

void TestProcesses::running_data()
{
    QTest::addColumn<QString>("ending"); ///< behind the name of the program's file
    QTest::addColumn<QString>("loader"); ///< is started with the file behind it; empty: the file
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<bool>("running");
    QTest::newRow("itself") << u".exe"_s << u""_s << u"own"_s << true;
    QTest::newRow("prefix by a link") << u".EXE"_s << u""_s << u"link"_s << true;
    QTest::newRow("another prefix") << u".exe"_s << u""_s << u"other"_s << false;
    QTest::newRow("no prefix told") << u".exe"_s << u""_s << u""_s << true;
    QTest::newRow("longer name") << u".exe.old"_s << u""_s << u"own"_s << false;
    QTest::newRow("by the loader") << u".exe"_s << u"wine64"_s << u"own"_s << true;
    QTest::newRow("looked at") << u".exe"_s << u"editor"_s << u"own"_s << false;
}

void TestProcesses::running()
{
    QFETCH(QString, ending);
    QFETCH(QString, loader);
    QFETCH(QString, prefix);
    QFETCH(bool, running);
    Disk disk;
    QDir(disk.folder.path()).mkpath(u"own"_s);
    QDir(disk.folder.path()).mkpath(u"other"_s);
    QVERIFY(QFile::link(disk.host(u"own"_s), disk.host(u"link"_s)));
    // Other runs of this test on the same host have other names.
    const QString name = u"sim"_s + QString::number(QCoreApplication::applicationPid());
    script(disk, u"FSX/"_s + name + ending, "echo\nread end\n");
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
    Processes::Setup by = setup();
    by.hostPrefix = disk.host(u"own"_s);
    const Processes processes(disk.files, by);
    QCOMPARE(processes.isRunning(name.toUpper() + u".Exe"_s), running);
    process.closeWriteChannel();
    QVERIFY(process.waitForFinished());
    QVERIFY(!processes.isRunning(name + u".exe"_s));
}

void TestProcesses::commandLines_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("empty") << u" \t "_s << QStringList{};
    QTest::newRow("plain") << u"a  b\tc "_s << QStringList{u"a"_s, u"b"_s, u"c"_s};
    QTest::newRow("quoted") << u"\"a b\" c\" \"d \"\""_s << QStringList{u"a b"_s, u"c d"_s, u""_s};
    QTest::newRow("backslashes") << u"C:\\a\\b\\ \\\\x"_s
                                 << QStringList{u"C:\\a\\b\\"_s, u"\\\\x"_s};
    QTest::newRow("backslashes before quotes")
        << u"\"C:\\a\\\\\" a\\\"b \\\\\\\"c"_s << QStringList{u"C:\\a\\"_s, u"a\"b"_s, u"\\\"c"_s};
    QTest::newRow("doubled quote inside") << u"\"a\"\"b\""_s << QStringList{u"a\"b"_s};
    QTest::newRow("open quote") << u"\"a b"_s << QStringList{u"a b"_s};
}

void TestProcesses::commandLines()
{
    QFETCH(QString, line);
    QFETCH(QStringList, arguments);
    QCOMPARE(splitWindowsCommandLine(line), arguments);
}

VT_TEST_CLASS(TestProcesses)
#include "test_processes.moc"
