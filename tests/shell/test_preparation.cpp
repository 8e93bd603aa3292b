#include "ShellFixture.h"
#include "shell/startup/DesktopEntry.h"
#include "shell/startup/Preparation.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::Rows;
using vt::test::ShellFixture;

namespace {

/// A simulator with everything that is kept; the shell's folders lie below drive C:.
void makeSimulator(ShellFixture& shell)
{
    for (const QString& file : u"Sim/SunEffect.cfg|Sim/terrain.cfg|Sim/Scenery.cfg|"
                               "r/Microsoft/FSX/Devices.cfg|r/Microsoft/FS9/Devices.cfg|"
                               "a/Microsoft/FSX/Scenery.cfg"_s.split(u'|'))
        shell.write(file, file.toLatin1());
    shell.global.setSimulatorFolder(u"C:\\Sim\\"_s);
    shell.global.setConfigFolders(u"C:\\a\\"_s, u"C:\\r\\"_s, u"C:\\d\\"_s, u"FSX"_s);
}

} // namespace

class TestPreparation : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void folders_areMadeWhenMissing()
    {
        ShellFixture shell;
        shell.write(u"Vantrel/addons/mine.txt"_s, "kept");
        QVERIFY(createProgramFolders(shell.context));
        QCOMPARE(shell.names(u"Vantrel"_s).join(u' '),
                 u"addons Backups Cabinet Images Originals Settings Temp"_s);
        QCOMPARE(shell.names(u"Vantrel/Temp"_s).join(u' '), u"GFO IFO INA RA"_s);
        QCOMPARE(shell.read(u"Vantrel/addons/mine.txt"_s), QByteArray("kept"));
    }

    void originals_areKeptOnceAndNeverRefreshed()
    {
        ShellFixture shell;
        makeSimulator(shell);
        shell.write(u"Vantrel/Originals/terrain.cfg"_s, "first copy");
        QVERIFY(keepOriginals(shell.context));
        QCOMPARE(shell.read(u"Vantrel/Originals/Devices.cfg"_s), "r/Microsoft/FSX/Devices.cfg"_ba);
        QVERIFY(shell.files.isFile(u"C:\\Vantrel\\Originals\\suneffect.cfg"));
        shell.write(u"a/Microsoft/FSX/Scenery.cfg"_s, "changed");
        QVERIFY(keepOriginals(shell.context));
        QCOMPARE(shell.read(u"Vantrel/Originals/Scenery.cfg"_s), "a/Microsoft/FSX/Scenery.cfg"_ba);
        QCOMPARE(shell.read(u"Vantrel/Originals/terrain.cfg"_s), "first copy"_ba);

        ShellFixture fs2004(FS2004);
        makeSimulator(fs2004);
        QVERIFY(keepOriginals(fs2004.context));
        QCOMPARE(fs2004.read(u"Vantrel/Originals/Scenery.cfg"_s), "Sim/Scenery.cfg"_ba);
        QCOMPARE(fs2004.read(u"Vantrel/Originals/Devices.cfg"_s), "r/Microsoft/FS9/Devices.cfg"_ba);
        ShellFixture fs2002(FS2002);
        makeSimulator(fs2002);
        QVERIFY(keepOriginals(fs2002.context));
        QVERIFY(!fs2002.exists(u"Vantrel/Originals"_s));
    }

    void freshFolder_holdsNothingRecorded()
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

    void databaseSize_asksAboveTheLimit()
    {
        const QString reaching =
            u"Vantrel for FS X's database is reaching its maximum size of 1 GB. Optimizing should reduce the database size."_s;
        const QString full =
            u"Vantrel for FS X's database is at its maximum size of 1 GB. You may experience errors"_s;
        const Rows<qint64, int, QString> rows = {
            {"small", qint64(949'999'999), 0, {}},
            {"exactly", qint64(950'000'000), 1, reaching},
            {"above", qint64(950'000'001), 3, reaching},
            {"nearly full", qint64(990'000'000), 3, reaching},
            {"full", qint64(990'000'001), 3, full},
        };
        for (const auto& [bytes, buttons, text] : rows) {
            const std::optional<Prompt> prompt = databaseSizePrompt(displayNames(FSX), bytes);
            QCOMPARE(prompt.has_value(), buttons > 0);
            if (!prompt)
                continue;
            QCOMPARE(prompt->caption, u"Database Warning"_s);
            QVERIFY(prompt->text.startsWith(text));
            QCOMPARE(prompt->buttons.size(), buttons);
            QCOMPARE(prompt->text.contains(u"Select Yes to attempt to optimize the database"_s),
                     buttons == 3);
        }
    }

    void openWith_hasAStatusTextForEachWindow()
    {
        const Rows<int, int, QString> rows = {
            {"first", 0, FSX, u"Opening the Addon Wizard..."_s},
            {"titled", 11, FSX, u"Opening FSX Configuration Files..."_s},
            {"not in FSX", 12, FSX, {}},
            {"last", 12, FS2004, u"Opening A.I. Traffic Manager..."_s},
            {"beyond", 13, FS2004, {}},
            {"before", -1, FSX, {}},
        };
        for (const auto& [window, generation, text] : rows)
            QCOMPARE(openWithStatus(window, generation, u"FSX Configuration Files"_s), text);
    }

    void explorerVerbs_standUnderTheFilesTypes()
    {
        ShellFixture shell;
        QVERIFY(shell.store.setValue(Hive::ClassesRoot, u".zip"_s, u""_s, u"CompressedFolder"_s));
        QVERIFY(registerExplorerVerbs(shell.registry, shell.global));
        const QString verb = u"\\shell\\Install to FSX using Vantrel\\command"_s;
        const QString command = u"C:\\Vantrel\\Vantrel.exe -file=\"%1\""_s;
        QCOMPARE(shell.store.value(Hive::ClassesRoot, u"CompressedFolder"_s + verb, u""_s),
                 command);
        QCOMPARE(shell.store.value(Hive::ClassesRoot, u".rar"_s + verb, u""_s), command);
        QVERIFY(removeExplorerVerbs(shell.registry, shell.global));
        QVERIFY(!shell.store.hasKey(Hive::ClassesRoot,
                                    u"CompressedFolder\\shell\\Install to FSX using Vantrel"_s));
        QCOMPARE(shell.store.value(Hive::ClassesRoot, u".zip"_s, u""_s), u"CompressedFolder"_s);
        ShellFixture older(FS2004);
        QVERIFY(registerExplorerVerbs(older.registry, older.global));
        QVERIFY(older.store.hasKey(Hive::ClassesRoot,
                                   u".zip\\shell\\Install to FS 2004 using Vantrel\\command"_s));
    }

    void desktopEntry_isWrittenOnceAndTakenBack()
    {
        ShellFixture shell;
        const desktopentry::Surroundings user{
            shell.host(u"data"_s), u"/opt/van \"trel\"/bin/vantrel"_s, "<svg/>"};
        const QString file = shell.host(u"data/applications/vantrel-install.desktop"_s);
        shell.write(u"data/applications/other.desktop"_s, "of somebody else");
        const ResultOf<bool> written = desktopentry::apply(shell.context, user);
        QVERIFY2(written && *written, qPrintable(written.text));
        const QByteArray text = vt::test::readHostFile(file);
        QVERIFY(text.contains("\nName=Install to FSX using Vantrel\n"));
        QVERIFY(text.contains("\nExec=\"/opt/van \\\\\"trel\\\\\"/bin/vantrel\" -file %f\n"));
        QVERIFY(text.contains("\nMimeType=application/zip;"));
        shell.files.newOperation();
        const ResultOf<bool> again = desktopentry::apply(shell.context, user);
        QVERIFY(again && !*again);
        QVERIFY(shell.settings.setFlag(SettingKey::WindowsExplorerContextMenuOn, false));
        shell.files.newOperation();
        const ResultOf<bool> gone = desktopentry::apply(shell.context, user);
        QVERIFY(gone && *gone);
        QVERIFY(!QFile::exists(file));
        QVERIFY(!QFile::exists(shell.host(u"data/icons/hicolor/scalable/apps/vantrel.svg"_s)));
        QVERIFY(QFile::exists(shell.host(u"data/applications/other.desktop"_s)));
    }

    void missingDatabase_namesTheFile()
    {
        ShellFixture shell;
        const Prompt prompt = missingDatabase(shell.global);
        QCOMPARE(prompt.caption, u"Vantrel for FS X Database File Error"_s);
        QCOMPARE(
            prompt.text,
            u"The addon database, 'C:\\Vantrel\\Vantrel.mdb', could not be loaded. The file itself is missing or the database is corrupt. "_s);
    }
};

VT_TEST_CLASS(TestPreparation)

#include "test_preparation.moc"
