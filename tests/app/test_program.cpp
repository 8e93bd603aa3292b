// The real program on a real display: it starts on a fresh home, a second start hands its file
// over, and a log-off ends it in order. The display is an X server of this test's own.
#include "demo/DemoSimulator.h"
#include "demo/SampleAddons.h"
#include "support/Disk.h"
#include "support/TestMain.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

constexpr int patienceMs = 30'000;

/// Ends with the object.
struct Child : QProcess
{
    ~Child() override
    {
        if (state() == NotRunning)
            return;
        kill();
        waitForFinished();
    }
};

bool ended(QProcess& process)
{
    return QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, patienceMs);
}

} // namespace

class TestProgram : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    Child m_server;
    QProcessEnvironment m_environment;

    /// Players of sounds that are found before those of the machine: the first has no server, the
    /// second keeps what it plays, and plays until "playing" is gone.
    void writePlayers() const
    {
        const QByteArray log = m_dir.filePath(u"played"_s).toUtf8();
        const QByteArray until = m_dir.filePath(u"playing"_s).toUtf8();
        writeHostFile(m_dir.filePath(u"players/pw-play"_s),
                      "#!/bin/sh\necho pw-play \"$1\" >>" + log + "\nexit 1\n");
        writeHostFile(m_dir.filePath(u"players/paplay"_s),
                      "#!/bin/sh\ncp \"$1\" " + log + ".wav\necho paplay \"$1\" >>" + log +
                          "\nwhile [ -e " + until + " ]; do sleep 0.05; done\n");
        for (const QString& player : {u"players/pw-play"_s, u"players/paplay"_s})
            QVERIFY(QFile(m_dir.filePath(player))
                        .setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        writeHostFile(m_dir.filePath(u"playing"_s), {});
    }

    [[nodiscard]] QStringList played() const
    {
        QFile log(m_dir.filePath(u"played"_s));
        return log.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(log.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }

    void startVantrel(QProcess& process, const QStringList& more = {}) const
    {
        process.setProcessEnvironment(m_environment);
        process.start(QStringLiteral(VT_BIN "/vantrel"),
                      QStringList{u"--home"_s,
                                  m_dir.filePath(u"home"_s),
                                  u"--prefix"_s,
                                  m_dir.filePath(u"prefix"_s)} +
                          more);
    }

    /// The titles of all windows on the display.
    [[nodiscard]] QString windows() const
    {
        QProcess tree;
        tree.setProcessEnvironment(m_environment);
        tree.start(u"xwininfo"_s, {u"-root"_s, u"-tree"_s});
        return tree.waitForFinished() ? QString::fromLocal8Bit(tree.readAllStandardOutput())
                                      : QString();
    }

private Q_SLOTS:

    void initTestCase()
    {
        for (const QString& program : {u"Xvfb"_s, u"xwininfo"_s})
            QVERIFY2(!QStandardPaths::findExecutable(program).isEmpty(),
                     qPrintable(program + u" is not installed; 'tools/setup --tests' does it."_s));
        // The server names the display that it took, which is a free one.
        m_server.start(u"Xvfb"_s,
                       {u"-displayfd"_s,
                        u"1"_s,
                        u"-screen"_s,
                        u"0"_s,
                        u"1280x800x24"_s,
                        u"-nolisten"_s,
                        u"tcp"_s});
        QVERIFY2(QTest::qWaitFor([&] { return m_server.canReadLine(); }, patienceMs),
                 m_server.readAllStandardError().constData());
        m_environment = QProcessEnvironment::systemEnvironment();
        m_environment.insert(u"DISPLAY"_s,
                             u':' + QString::fromLatin1(m_server.readLine().trimmed()));
        m_environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
        m_environment.insert(u"PATH"_s,
                             m_dir.filePath(u"players"_s) + u':' + m_environment.value(u"PATH"_s));
        m_environment.insert(u"HOME"_s, m_dir.path());
        m_environment.insert(u"XDG_RUNTIME_DIR"_s, m_dir.path());
        for (const QString& name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"WAYLAND_DISPLAY"_s})
            m_environment.remove(name);
        QVERIFY(writeDemoSimulator(m_dir.filePath(u"prefix"_s)));
        writeHostFile(m_dir.filePath(u"swift.zip"_s), sampleAddon(u"swift-aircraft"_s).archive());
    }

    /// All of it while the sound is still played.
    void startsTakesAFileAndEnds()
    {
        writePlayers();
        Child first;
        first.setProcessChannelMode(QProcess::MergedChannels);
        startVantrel(first);
        const bool shown = QTest::qWaitFor(
            [&] { return windows().contains(u"\"Vantrel for FS X\""_s); }, patienceMs);
        QVERIFY2(shown && first.state() == QProcess::Running, first.readAll().constData());
        QTRY_COMPARE_WITH_TIMEOUT(played().size(), 2, patienceMs);
        const QString sound = m_dir.filePath(u"home/Temp/Start.wav"_s);
        QCOMPARE(played(), QStringList({u"pw-play "_s + sound, u"paplay "_s + sound}));
        QFile wave(m_dir.filePath(u"played.wav"_s));
        QVERIFY(wave.open(QIODevice::ReadOnly));
        QVERIFY(wave.read(4) == "RIFF" && wave.size() > 40'000);

        QProcess second;
        startVantrel(second, {u"-file="_s + m_dir.filePath(u"swift.zip"_s)});
        QVERIFY(ended(second));
        QCOMPARE(second.exitCode(), 0);
        // The running window has taken the file, and no second window came.
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(m_dir.filePath(u"home/Startup.txt"_s)), patienceMs);
        QCOMPARE(windows().count(u"\"Vantrel for FS X\""_s), 1);

        first.terminate(); // as a log-off does
        QVERIFY(ended(first));
        QVERIFY2(first.exitStatus() == QProcess::NormalExit && first.exitCode() == 0,
                 first.readAll().constData());
        QVERIFY(!QFile::exists(m_dir.filePath(u"home/Vantrel.mdb-wal"_s)));
        // What a start without options alone may do.
        QVERIFY(
            !QFile::exists(m_dir.filePath(u".local/share/applications/vantrel-install.desktop"_s)));
        QFile errors(m_dir.filePath(u"home/ERROR.LOG"_s));
        QVERIFY2(!errors.open(QIODevice::ReadOnly), errors.readAll().constData());
        QCOMPARE(played().size(), 2);
        QVERIFY(QFile::remove(m_dir.filePath(u"playing"_s)));
    }

    void withoutItsSound_startsTheSame_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("setting");
        QTest::newRow("no player on the machine") << m_dir.filePath(u"nothing"_s) << u"True"_s;
        QTest::newRow("switched off") << m_environment.value(u"PATH"_s) << u"False"_s;
    }

    void withoutItsSound_startsTheSame()
    {
        QFETCH(QString, path);
        QFETCH(QString, setting);
        QFile::remove(m_dir.filePath(u"played"_s));
        QCOMPARE(QProcess::execute(QStringLiteral(VT_BIN "/vantrelctl"),
                                   {u"--home"_s,
                                    m_dir.filePath(u"home"_s),
                                    u"--prefix"_s,
                                    m_dir.filePath(u"prefix"_s),
                                    u"settings"_s,
                                    u"set"_s,
                                    u"Startup"_s,
                                    u"Play Splash Sound"_s,
                                    setting}),
                 0);
        const QString before = m_environment.value(u"PATH"_s);
        m_environment.insert(u"PATH"_s, path);
        Child program;
        program.setProcessChannelMode(QProcess::MergedChannels);
        startVantrel(program);
        m_environment.insert(u"PATH"_s, before);
        QVERIFY2(QTest::qWaitFor([&] { return windows().contains(u"\"Vantrel for FS X\""_s); },
                                 patienceMs),
                 program.readAll().constData());
        program.terminate();
        QVERIFY(ended(program));
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(played(), QStringList());
        QVERIFY(!QFile::exists(m_dir.filePath(u"home/ERROR.LOG"_s)));
    }
};

} // namespace vt::test

using vt::test::TestProgram;
VT_TEST_CLASS(TestProgram)

#include "test_program.moc"
