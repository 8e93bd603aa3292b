#include "ShellFixture.h"
#include "shell/startup/Preparation.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ShellFixture;

class TestPreparation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folders_areMadeWhenMissing();
    void folders_failureNamesTheFolder();
    void originals_areKeptOnceAndNeverRefreshed();
    void originals_dependOnTheGeneration();
    void freshFolder_holdsNothingRecorded();
    void databaseSize_asksAboveTheLimit_data();
    void databaseSize_asksAboveTheLimit();
    void openWith_hasAStatusTextForEachWindow();
    void explorerVerbs_standUnderTheFilesTypes();
    void missingDatabase_namesTheFile();
};

namespace {

/// A simulator with everything that is kept; the shell's folders lie below drive C:.
void makeSimulator(ShellFixture& shell)
{
    for (const QString& file : {u"Sim/SunEffect.cfg"_s,
                                u"Sim/terrain.cfg"_s,
                                u"Sim/Scenery.cfg"_s,
                                u"r/Microsoft/FSX/Devices.cfg"_s,
                                u"r/Microsoft/FS9/Devices.cfg"_s,
                                u"a/Microsoft/FSX/Scenery.cfg"_s})
        shell.write(file, file.toLatin1());
    shell.global.setSimulatorFolder(u"C:\\Sim\\"_s);
    shell.global.setConfigFolders(u"C:\\a\\"_s, u"C:\\r\\"_s, u"C:\\d\\"_s, u"FSX"_s);
}

} // namespace

void TestPreparation::folders_areMadeWhenMissing()
{
    ShellFixture shell;
    shell.write(u"Vantrel/addons/mine.txt"_s, "kept");
    QVERIFY(createProgramFolders(shell.context));
    QDir home(shell.dir.filePath(u"Vantrel"_s));
    QCOMPARE(home.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase),
             (QStringList{u"addons"_s,
                          u"Backups"_s,
                          u"Cabinet"_s,
                          u"Images"_s,
                          u"Originals"_s,
                          u"Settings"_s,
                          u"Temp"_s}));
    QCOMPARE(
        QDir(home.filePath(u"Temp"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name),
        (QStringList{u"GFO"_s, u"IFO"_s, u"INA"_s, u"RA"_s}));
    QCOMPARE(shell.read(u"Vantrel/addons/mine.txt"_s), QByteArray("kept"));
}

void TestPreparation::folders_failureNamesTheFolder()
{
    ShellFixture shell;
    shell.write(u"Vantrel/Cabinet"_s, "a file");
    const Result made = createProgramFolders(shell.context);
    QVERIFY(!made);
    QCOMPARE(made.kind, ErrorKind::Surroundings);
    QVERIFY2(made.text.contains(u"C:\\Vantrel\\Cabinet"_s), qPrintable(made.text));
}

void TestPreparation::originals_areKeptOnceAndNeverRefreshed()
{
    ShellFixture shell;
    makeSimulator(shell);
    shell.write(u"Vantrel/Originals/terrain.cfg"_s, "first copy");
    QVERIFY(keepOriginals(shell.context));
    QCOMPARE(shell.read(u"Vantrel/Originals/terrain.cfg"_s), QByteArray("first copy"));
    QCOMPARE(shell.read(u"Vantrel/Originals/Devices.cfg"_s),
             QByteArray("r/Microsoft/FSX/Devices.cfg"));
    QCOMPARE(shell.read(u"Vantrel/Originals/Scenery.cfg"_s),
             QByteArray("a/Microsoft/FSX/Scenery.cfg"));
    QVERIFY(shell.files.isFile(u"C:\\Vantrel\\Originals\\suneffect.cfg"));

    shell.write(u"a/Microsoft/FSX/Scenery.cfg"_s, "changed");
    QVERIFY(keepOriginals(shell.context));
    QCOMPARE(shell.read(u"Vantrel/Originals/Scenery.cfg"_s),
             QByteArray("a/Microsoft/FSX/Scenery.cfg"));
}

void TestPreparation::originals_dependOnTheGeneration()
{
    ShellFixture fs2004(FS2004);
    makeSimulator(fs2004);
    QVERIFY(keepOriginals(fs2004.context));
    QCOMPARE(fs2004.read(u"Vantrel/Originals/Scenery.cfg"_s), QByteArray("Sim/Scenery.cfg"));
    QCOMPARE(fs2004.read(u"Vantrel/Originals/Devices.cfg"_s),
             QByteArray("r/Microsoft/FS9/Devices.cfg"));
    ShellFixture fs2002(FS2002);
    makeSimulator(fs2002);
    QVERIFY(keepOriginals(fs2002.context));
    QVERIFY(!fs2002.exists(u"Vantrel/Originals"_s));
}

void TestPreparation::freshFolder_holdsNothingRecorded()
{
    for (const QString& trace : {u"Vantrel/Vantrel.mdb"_s,
                                 u"Vantrel/Settings/Vantrel.reg"_s,
                                 u"Vantrel/Originals/x.cfg"_s}) {
        ShellFixture shell;
        QVERIFY(programFolderIsFresh(shell.files, shell.global));
        QVERIFY(createProgramFolders(shell.context));
        QVERIFY(programFolderIsFresh(shell.files, shell.global));
        shell.write(trace);
        QVERIFY2(!programFolderIsFresh(shell.files, shell.global), qPrintable(trace));
    }
}

void TestPreparation::databaseSize_asksAboveTheLimit_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<int>("buttons");
    QTest::addColumn<QString>("text");
    const QString reaching =
        u"Vantrel for FS X's database is reaching its maximum size of 1 GB. Optimizing should reduce the database size."_s;
    const QString full =
        u"Vantrel for FS X's database is at its maximum size of 1 GB. You may experience errors"_s;
    QTest::newRow("small") << qint64(949'999'999) << 0 << QString();
    QTest::newRow("exactly") << qint64(950'000'000) << 1 << reaching;
    QTest::newRow("above") << qint64(950'000'001) << 3 << reaching;
    QTest::newRow("nearly full") << qint64(990'000'000) << 3 << reaching;
    QTest::newRow("full") << qint64(990'000'001) << 3 << full;
}

void TestPreparation::databaseSize_asksAboveTheLimit()
{
    QFETCH(qint64, bytes);
    QFETCH(int, buttons);
    QFETCH(QString, text);
    const std::optional<Prompt> prompt = databaseSizePrompt(displayNames(FSX), bytes);
    QCOMPARE(prompt.has_value(), buttons > 0);
    if (!prompt)
        return;
    QCOMPARE(prompt->caption, u"Database Warning"_s);
    QVERIFY(prompt->text.startsWith(text));
    QCOMPARE(prompt->buttons.size(), buttons);
    QCOMPARE(prompt->text.contains(u"Select Yes to attempt to optimize the database"_s),
             buttons == 3);
}

void TestPreparation::openWith_hasAStatusTextForEachWindow()
{
    const QString title = u"FSX Configuration Files"_s;
    QCOMPARE(openWithStatus(0, FSX, title), u"Opening the Addon Wizard..."_s);
    QCOMPARE(openWithStatus(10, FSX, title), u"Opening Addon History..."_s);
    QCOMPARE(openWithStatus(11, FSX, title), u"Opening FSX Configuration Files..."_s);
    QCOMPARE(openWithStatus(12, FSX, title), QString());
    QCOMPARE(openWithStatus(12, FS2004, title), u"Opening A.I. Traffic Manager..."_s);
    QCOMPARE(openWithStatus(13, FS2004, title), QString());
    QCOMPARE(openWithStatus(-1, FSX, title), QString());
}

void TestPreparation::explorerVerbs_standUnderTheFilesTypes()
{
    ShellFixture shell;
    QVERIFY(shell.store.setValue(Hive::ClassesRoot, u".zip"_s, u""_s, u"CompressedFolder"_s));
    QVERIFY(registerExplorerVerbs(shell.registry, shell.global));
    const QString verb = u"\\shell\\Install to FSX using Vantrel\\command"_s;
    const QString command = u"C:\\Vantrel\\Vantrel.exe -file=\"%1\""_s;
    QCOMPARE(shell.store.value(Hive::ClassesRoot, u"CompressedFolder"_s + verb, u""_s), command);
    QCOMPARE(shell.store.value(Hive::ClassesRoot, u".rar"_s + verb, u""_s), command);
    ShellFixture older(FS2004);
    QVERIFY(registerExplorerVerbs(older.registry, older.global));
    QVERIFY(older.store.hasKey(Hive::ClassesRoot,
                               u".zip\\shell\\Install to FS 2004 using Vantrel\\command"_s));
}

void TestPreparation::missingDatabase_namesTheFile()
{
    ShellFixture shell;
    const Prompt prompt = missingDatabase(shell.global);
    QCOMPARE(prompt.caption, u"Vantrel for FS X Database File Error"_s);
    QCOMPARE(
        prompt.text,
        u"The addon database, 'C:\\Vantrel\\Vantrel.mdb', could not be loaded. The file itself is missing or the database is corrupt. "_s);
}

VT_TEST_CLASS(TestPreparation)

#include "test_preparation.moc"
