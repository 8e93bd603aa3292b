#include "engine/ConfigDisk.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vt;

namespace {

const QString libraryPath = u"C:\\FSX\\Config\\Scenery.cfg"_s;
const QString libraryHost = u"FSX/Config/Scenery.cfg"_s;

const QByteArray head = "[General]\r\nTitle=FSX World Scenery\r\nClean_on_Exit=TRUE\r\n\r\n";

QByteArray plainArea(int number, int layer, const QByteArray& local)
{
    return "[Area." + QByteArray::number(number).rightJustified(3, '0') + "]\r\nTitle=T " +
           QByteArray::number(number) + "\r\nTexture_ID=1\r\nLocal=" + local +
           "\r\nRemote=\r\nActive=TRUE\r\nRequired=FALSE\r\nLayer=" + QByteArray::number(layer) +
           "\r\n\r\n";
}

/// As the library writes an area itself.
QByteArray ownArea(int number, int layer, const QByteArray& title, const QByteArray& local)
{
    return "[Area." + QByteArray::number(number).rightJustified(3, '0') + "]\r\nTitle=" + title +
           "\r\nActive=TRUE\r\nLayer=" + QByteArray::number(layer) +
           "\r\nRequired=FALSE\r\nLocal=" + local + "\r\n\r\n";
}

struct Library : test::ConfigDisk
{
    explicit Library(const QByteArray& bytes) { store(bytes); }

    void store(const QByteArray& bytes) { write(libraryHost, bytes); }

    [[nodiscard]] QByteArray stored() const { return read(libraryHost); }

    [[nodiscard]] QByteArray backup(const QString& extension) const
    {
        return read(u"FSX/Config/Scenery"_s + extension);
    }

    CSceneryCfgMgr manager{access, libraryPath, u"C:\\FSX\\"_s};
};

/// A library file of random shape: dense or spaced, with or without ends, sections of all kinds.
QByteArray randomLibrary(QRandomGenerator& random)
{
    const auto pick = [&](const QList<QByteArray>& from) {
        return from.at(random.bounded(from.size()));
    };
    QByteArray bytes = pick({"", "", "; my library\r\n", "\r\n"});
    if (random.bounded(4) != 0)
        bytes += pick({"[General]\r\nTitle=W\r\n", "[GENERAL]\r\n\r\n", "[general]\r\n"});
    for (int i = random.bounded(4); i > 0; --i) {
        switch (random.bounded(4)) {
        case 0:
            bytes += "[cache.0]\r\nx=1\r\n";
            break;
        case 1:
            bytes += "; remark\r\n[Other]\r\njunk\r\n";
            break;
        default:
            bytes += plainArea(random.bounded(9) + 1, random.bounded(9), "Scenery\\A");
            break;
        }
        bytes += pick({"", "", "\r\n", "; tail\r\n", "\r\n\r\n"});
    }
    for (int i = random.bounded(5); i > 0 && bytes.endsWith("\r\n"); --i)
        bytes.chop(2);
    return bytes + pick({"", "", "\r\n", "\r\n\r\n", "\r\n\r\n\r\n"});
}

} // namespace

class TestScenery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void load_readsAreasInFileOrder();
    void load_failures_data();
    void load_failures();
    void add_goesAboveAllOthers_data();
    void add_goesAboveAllOthers();
    void add_keepsTheRest_data();
    void add_keepsTheRest();
    void add_asksWhenCovered();
    void add_refuses_data();
    void add_refuses();
    void addAndRemove_inAnyOrder_givesTheFileBack();
    void remove_byFolder();
    void remove_leavesRemarks();
    void edit_writesInOrder_unknownFollow();
    void enable_ofAnEnabledArea_writesNothing();
    void general_values();
    void changes_showWhatSaveWrites();
    void save_keepsTwoBackups();
    void save_afterAnotherChange();
    void save_readOnly();
    void save_failed_data();
    void save_failed();
    void restore();
    void validate_data();
    void validate();
    void editChecks();
    void bigLibrary();
};

void TestScenery::load_readsAreasInFileOrder()
{
    Library library(head +
                    "[AREA.012] ; x\r\nTITLE = Paris / Orly // City \r\nlocal=Scenery\\Paris's\r\n"
                    "remote=D:\\r\r\nactive=false ; off\r\nrequired=true\r\nlayer=7\r\nlayer=9\r\n"
                    "[cache.1]\r\nlocal=no\r\n[Area.1000]\r\n;title=no\r\n");
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    const QList<CSceneryCfgItem>& areas = library.manager.areas();
    QCOMPARE(areas.size(), 2);
    QCOMPARE(
        areas.at(0),
        (CSceneryCfgItem{
            12, u"Paris / Orly // City"_s, u"Scenery\\Paris's"_s, u"D:\\r"_s, false, true, 7}));
    QCOMPARE(areas.at(1), (CSceneryCfgItem{1000, {}, {}, {}, true, false, 0}));
    QCOMPARE(library.manager.highestArea(), 1000);
    QCOMPARE(library.manager.highestLayer(), 7);
    QCOMPARE(library.manager.lines().joined(), library.stored());
    QVERIFY(!library.manager.modified());
}

void TestScenery::load_failures_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("text");

    QTest::newRow("no areas") << head << true
                              << u"Scenery configuration file does not have any scenery areas."_s;
    QTest::newRow("empty") << ""_ba << true
                           << u"Scenery configuration file does not have any scenery areas."_s;
    QTest::newRow("bare LF") << "[Area.001]\nTitle=x\n"_ba << false << u"LF alone"_s;
    QTest::newRow("UTF-16") << "\xff\xfe[\0A\0"_ba << false << u"UTF-16"_s;
    QTest::newRow("binary") << "\0\0\0"_ba << false << u"NUL"_s;
}

void TestScenery::load_failures()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, ok);
    QFETCH(QString, text);
    Library library(bytes);
    const Result loaded = library.manager.SceneryCfg_Load();
    QCOMPARE(loaded.ok, ok);
    QVERIFY2(loaded.text.contains(text), qPrintable(loaded.text));
    CSceneryCfgMgr missing(library.access, u"C:\\FSX\\none.cfg"_s, u"C:\\FSX\\"_s);
    QCOMPARE(missing.SceneryCfg_Load().text,
             u"Scenery configuration file 'C:\\FSX\\none.cfg' was not found."_s);
}

void TestScenery::add_goesAboveAllOthers_data()
{
    QTest::addColumn<QList<int>>("numbers");
    QTest::addColumn<QList<int>>("layers");
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<int>("layer");

    QList<int> to120;
    for (int i = 1; i <= 120; ++i)
        to120.push_back(i);
    QTest::newRow("120 areas") << to120 << to120 << "[Area.121]"_ba << 121;
    QTest::newRow("six areas") << QList<int>{1, 2, 3, 4, 5, 6} << QList<int>{1, 2, 3, 4, 5, 6}
                               << "[Area.007]"_ba << 7;
    QTest::newRow("a thousandth") << QList<int>{999} << QList<int>{5} << "[Area.1000]"_ba << 6;
    QTest::newRow("gaps are not filled")
        << QList<int>{9, 2} << QList<int>{3, 40} << "[Area.010]"_ba << 41;
    QTest::newRow("none yet") << QList<int>{} << QList<int>{} << "[Area.001]"_ba << 1;
}

void TestScenery::add_goesAboveAllOthers()
{
    QFETCH(QList<int>, numbers);
    QFETCH(QList<int>, layers);
    QFETCH(QByteArray, header);
    QFETCH(int, layer);
    QByteArray bytes = head;
    for (qsizetype i = 0; i < numbers.size(); ++i)
        bytes += plainArea(numbers.at(i), layers.at(i), "Scenery\\" + QByteArray::number(i));
    Library library(bytes);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    const auto added =
        library.manager.SceneryCfg_AddArea(u"New"_s, u"c:/fsx/Addon Scenery/New/"_s, true);
    QVERIFY(added.added);
    QCOMPARE(added.layer, layer);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(),
             bytes + header + "\r\nTitle=New\r\nActive=TRUE\r\nLayer=" + QByteArray::number(layer) +
                 "\r\nRequired=FALSE\r\nLocal=Addon Scenery\\New\r\n\r\n");
}

void TestScenery::add_keepsTheRest_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const QByteArray dense = "[Area.001]\r\nLocal=x\r\nLayer=1\r\n";
    const QByteArray added = ownArea(2, 2, "N", "N");
    QTest::newRow("spaced") << dense + "\r\n" << dense + "\r\n" + added;
    QTest::newRow("dense") << dense << dense + "\r\n" + added.chopped(2);
    QTest::newRow("no final line end") << dense.chopped(2) << dense + added.chopped(2);
    QTest::newRow("cache sections behind") << dense + "; c\r\n[Cache.1]\r\nx\r\n"
                                           << dense + "; c\r\n" + added + "[Cache.1]\r\nx\r\n";
    QTest::newRow("empty file") << ""_ba << ownArea(1, 1, "N", "N").chopped(2);
    QTest::newRow("no general section") << "; c\r\n\r\n"_ba
                                        << "; c\r\n\r\n" + ownArea(1, 1, "N", "N");
}

void TestScenery::add_keepsTheRest()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    Library library(before);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"N"_s, u"C:\\FSX\\N"_s, false).added);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(), after);
}

void TestScenery::add_asksWhenCovered()
{
    Library library(head + plainArea(1, 1, "addon scenery/new\\"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    const QString folder = u"C:\\FSX\\Addon Scenery\\New\\"_s;
    library.prompts.expect(u"Confirm Scenery Area Update"_s, Button::No);
    const auto declined = library.manager.SceneryCfg_AddArea(u"New"_s, folder, true);
    QVERIFY(!declined.added);
    QCOMPARE(declined.code, 1);
    QCOMPARE(library.manager.areas().size(), 1);
    QVERIFY(!library.manager.modified());
    const Prompt asked = library.prompts.asked.constFirst();
    QCOMPARE(asked.defaultButton, Button::No);
    QCOMPARE(
        asked.text,
        u"An existing scenery area already covers the path of the files you are adding. Add the scenery area anyway?\n\n"
        "Existing area:\n\tArea=1\n\tTitle=T 1\n\tLocal=addon scenery/new\\\n\tActive=TRUE\n\tRequired=FALSE\n\tLayer=1\n\n"
        "Proposed new area:\n\tArea=2\n\tTitle=New\n\tLocal=Addon Scenery\\New\n\tActive=TRUE\n\tRequired=FALSE\n\tLayer=2\n\n"
        "Press Yes to add the proposed new scenery area or press No to leave the scenery library configuration as it is."_s);

    library.prompts.expect(u"Confirm Scenery Area Update"_s, Button::Yes);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"New"_s, folder, true).added);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"New"_s, folder, false).added);
    QCOMPARE(library.manager.areasOfFolder(folder), (QList<qsizetype>{0, 1, 2}));
    // A folder below the area's own is not covered by it.
    QVERIFY(library.manager.SceneryCfg_AddArea(u"Sub"_s, folder + u"Sub"_s, true).added);
}

void TestScenery::add_refuses_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("text");

    QTest::newRow("no title") << u" "_s << u"C:\\FSX\\x"_s
                              << u"Please provide a title for this scenery area."_s;
    QTest::newRow("no folder") << u"x"_s << u""_s
                               << u"Please provide a location for this scenery area."_s;
    QTest::newRow("character outside the page") << u"\u4e2d"_s << u"C:\\FSX\\x"_s << u"\u4e2d"_s;
    QTest::newRow("line break") << u"x\r\n[Area.9]"_s << u"C:\\FSX\\x"_s << u"line break"_s;
}

void TestScenery::add_refuses()
{
    QFETCH(QString, title);
    QFETCH(QString, folder);
    QFETCH(QString, text);
    Library library(head + plainArea(1, 1, "x"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    const auto result = library.manager.SceneryCfg_AddArea(title, folder, false);
    QVERIFY(!result.added);
    QCOMPARE(result.code, int(CSceneryCfgMgr::NotAdded));
    QVERIFY2(result.text.contains(text), qPrintable(result.text));
    QVERIFY(!library.manager.modified());
}

void TestScenery::addAndRemove_inAnyOrder_givesTheFileBack()
{
    QRandomGenerator random(42);
    test::MemoryActions memory;
    test::ScriptedPrompts nobody;
    const AnsiCodec ansi(1252);
    const ConfigAccess access(memory, nobody, ansi);
    for (int round = 0; round < 1'500; ++round) {
        const QByteArray before = randomLibrary(random);
        QVERIFY(memory.replace(libraryPath, before).ok);
        QStringList added;
        int next = 0;
        // Several steps between load and save, or one; all are gone at the end.
        for (int step = 0; step < 7 || !added.isEmpty(); ++step) {
            CSceneryCfgMgr manager(access, libraryPath, u"C:\\FSX\\"_s);
            QVERIFY(manager.SceneryCfg_Load().ok);
            for (int within = random.bounded(3); within >= 0; --within) {
                if (step < 7 && (added.isEmpty() || random.bounded(3) != 0)) {
                    const QString folder = u"C:\\FSX\\New "_s + QString::number(next++);
                    QVERIFY(manager.SceneryCfg_AddArea(u"N"_s, folder, false).added);
                    added.push_back(folder);
                } else if (!added.isEmpty()) {
                    const QString folder = added.takeAt(random.bounded(added.size()));
                    QVERIFY(manager.SceneryCfg_RemoveArea(folder, 0));
                }
            }
            for (const QString& folder : added)
                QCOMPARE(manager.areasOfFolder(folder).size(), 1);
            const Result saved = manager.SceneryCfg_Save();
            QVERIFY2(saved.ok, qPrintable(saved.text));
        }
        QCOMPARE(memory.bytes.value(NoCase{libraryPath}), before);
    }
}

void TestScenery::remove_byFolder()
{
    Library library(head + plainArea(1, 1, "A") + plainArea(2, 2, "c:\\fsx\\a\\") +
                    plainArea(3, 3, "B"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QCOMPARE(library.manager.areaForFolder(u"C:\\FSX\\A"_s), qsizetype(1));
    QCOMPARE(library.manager.areaForFolder(u"a/"_s, 1), qsizetype(0));
    QCOMPARE(library.manager.areaForFolder(u"A"_s, 3), qsizetype(1));
    QVERIFY(!library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\C"_s, 1));
    QVERIFY(library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\A"_s, 1));
    QVERIFY(library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\A"_s, 1));
    QVERIFY(!library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\A"_s, 1));
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(), head + plainArea(3, 3, "B"));
}

void TestScenery::remove_leavesRemarks()
{
    const QByteArray area = "[Area.001]\r\n; inside\r\nLocal=x\r\n\r\n; --- next region\r\n\r\n";
    Library library(head + area + plainArea(2, 2, "y"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_RemoveArea(0));
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(), head + "; --- next region\r\n\r\n" + plainArea(2, 2, "y"));
}

void TestScenery::edit_writesInOrder_unknownFollow()
{
    const QByteArray other = plainArea(2, 2, "y");
    Library library(head +
                    "[Area.001] ; mine\r\nTexture_ID=1\r\nLocal=x\r\n; note\r\nLayer=1\r\n"
                    "Title=T\r\nMaximum_Altitude=9\r\n\r\n" +
                    other);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.setActive(0, false).ok);
    QVERIFY(!library.manager.setActive(5, false).ok);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(),
             head +
                 "[Area.001]\r\nTitle=T\r\nActive=FALSE\r\nLayer=1\r\nRequired=FALSE\r\nLocal=x\r\n"
                 "Texture_ID=1\r\n; note\r\nMaximum_Altitude=9\r\n\r\n" +
                 other);
    CSceneryCfgItem item = library.manager.areas().at(0);
    item.sRemote = u"D:\\r"_s;
    item.sLocal = u"C:\\elsewhere"_s;
    QVERIFY(library.manager.setArea(0, item).ok);
    QCOMPARE(library.manager.areaForFolder(u"C:\\Elsewhere\\"_s), qsizetype(0));
    item.sTitle = u"\u4e2d"_s;
    QVERIFY(!library.manager.setArea(0, item).ok);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QVERIFY(library.stored().contains("Required=FALSE\r\nRemote=D:\\r\r\nLocal=C:\\elsewhere\r\n"));
}

void TestScenery::enable_ofAnEnabledArea_writesNothing()
{
    Library library(head + plainArea(1, 1, "x"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.setActive(0, true).ok);
    const Result saved = library.manager.SceneryCfg_Save();
    QVERIFY(saved.ok);
    QCOMPARE(saved.text, u"Nothing to write to scenery configuration file."_s);
    QVERIFY(!QFile::exists(library.host(u"FSX/Config/Scenery.vtb"_s)));
}

void TestScenery::general_values()
{
    Library library(head + plainArea(1, 1, "x"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QCOMPARE(library.manager.General_Get(u"clean_on_exit"_s), std::optional(u"TRUE"_s));
    QVERIFY(!library.manager.General_Get(u"Description"_s));
    QVERIFY(library.manager.General_Set(u"Clean_on_Exit"_s, u"FALSE"_s).ok);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(),
             QByteArray(head).replace("Exit=TRUE", "Exit=FALSE") + plainArea(1, 1, "x"));
    QCOMPARE(library.manager.areas().size(), 1);

    CSceneryCfgMgr::SceneryWorld world = library.manager.General_World();
    QCOMPARE(world, (CSceneryCfgMgr::SceneryWorld{u"FSX World Scenery"_s, {}, false}));
    QCOMPARE(library.manager.General_SetWorld(world).text,
             u"Please provide a description for the scenery world."_s);
    QVERIFY(!library.manager.modified());
    world.sDescription = u"Mine // all; of it"_s;
    world.boolClean_on_Exit = true;
    QVERIFY(library.manager.General_SetWorld(world).ok);
    QCOMPARE(library.manager.General_World(), world);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(),
             QByteArray(head).replace("]\r\n", "]\r\nDescription=Mine // all; of it\r\n") +
                 plainArea(1, 1, "x"));
}

void TestScenery::changes_showWhatSaveWrites()
{
    Library library(head + plainArea(1, 1, "x"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"N"_s, u"C:\\FSX\\N"_s, false).added);
    const ConfigChange change = library.manager.changes();
    QCOMPARE(change.file, libraryPath);
    QVERIFY(change.lines.removed.isEmpty());
    QCOMPARE(change.lines.added.mid(0, 6),
             (QStringList{u"[Area.002]"_s,
                          u"Title=N"_s,
                          u"Active=TRUE"_s,
                          u"Layer=2"_s,
                          u"Required=FALSE"_s,
                          u"Local=N"_s}));
    QCOMPARE(library.stored(), head + plainArea(1, 1, "x"));
}

void TestScenery::save_keepsTwoBackups()
{
    const QByteArray first = head + plainArea(1, 1, "x");
    Library library(first);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QList<QByteArray> states;
    for (const QString& name : {u"A"_s, u"B"_s, u"C"_s}) {
        QVERIFY(library.manager.SceneryCfg_AddArea(name, u"C:\\FSX\\"_s + name, false).added);
        QCOMPARE(library.manager.SceneryCfg_Save().text,
                 u"Scenery configuration file was updated."_s);
        states.push_back(library.stored());
    }
    QCOMPARE(library.backup(u".vtb"_s), states.at(1));
    QCOMPARE(library.backup(u".vt2"_s), states.at(0));
}

void TestScenery::save_afterAnotherChange()
{
    Library library(head + plainArea(1, 1, "x"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"N"_s, u"C:\\FSX\\N"_s, false).added);
    library.store("[Other]\r\n");
    library.prompts.expect(u"Confirm Update"_s, Button::No);
    const Result declined = library.manager.SceneryCfg_Save();
    QCOMPARE(declined.kind, ErrorKind::Declined);
    QCOMPARE(declined.text, u"Scenery configuration file was not updated."_s);
    QCOMPARE(library.stored(), "[Other]\r\n"_ba);
    const Prompt asked = library.prompts.asked.constFirst();
    QCOMPARE(
        asked.text,
        u"Another process has modified the scenery configuration file. Would you still like to update it?\n\n"
        "Select Yes to update the configuration file. The existing file will be backed up as 'C:\\FSX\\Config\\Scenery.vtb'. Or select No to abort."_s);
    QCOMPARE(asked.defaultButton, Button::No);
    library.prompts.expect(u"Confirm Update"_s, Button::Yes);
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.backup(u".vtb"_s), "[Other]\r\n"_ba);
    QVERIFY(library.stored().contains("[Area.002]"));
}

void TestScenery::save_readOnly()
{
    const QByteArray before = head + plainArea(1, 1, "x");
    Library library(before);
    const QByteArray host = library.host(libraryHost).toUtf8();
    QCOMPARE(chmod(host.constData(), 0444), 0);
    library.files.newOperation();
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_AddArea(u"N"_s, u"C:\\FSX\\N"_s, false).added);
    library.prompts.expect(
        u"The scenery configuration file 'C:\\FSX\\Config\\Scenery.cfg' is marked read-only. Update it anyway?"_s,
        Button::No);
    QCOMPARE(library.manager.SceneryCfg_Save().kind, ErrorKind::Declined);
    QCOMPARE(library.stored(), before);
    library.prompts.expect(u"is marked read-only"_s, Button::Yes);
    int looks = 0;
    QList<QByteArray> seen; // whenever the process might end
    library.gate.faultHook = [&](const char*, const QByteArray&) {
        ++looks;
        if (const QByteArray now = library.stored(); !seen.contains(now))
            seen.append(now);
        return 0;
    };
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    library.gate.faultHook = {};
    QVERIFY(looks >= 2);
    for (const QByteArray& bytes : std::as_const(seen))
        QVERIFY2(bytes == before || bytes == library.stored(), bytes.constData());
    QCOMPARE(library.prompts.asked.constLast().icon, Icon::Warning);
    QCOMPARE(library.backup(u".vtb"_s), before);
    QVERIFY(library.stored().contains("[Area.002]"));
    QVERIFY(!library.files.info(libraryPath)->readOnly);
}

void TestScenery::save_failed_data()
{
    QTest::addColumn<QString>("failReplace");
    QTest::addColumn<QString>("failCopyTo");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<QString>("text");

    QTest::newRow("writing")
        << libraryPath << QString() << true
        << u"Scenery configuration file was not updated properly. Backup restored."_s;
    QTest::newRow("backup") << QString() << u"C:\\FSX\\Config\\Scenery.vtb"_s << false
                            << u"Scenery configuration file was not updated."_s;
}

void TestScenery::save_failed()
{
    QFETCH(QString, failReplace);
    QFETCH(QString, failCopyTo);
    QFETCH(bool, asked);
    QFETCH(QString, text);
    const QByteArray before = head + plainArea(1, 1, "x");
    Library library(before);
    test::FailingActions failing(library.actions);
    failing.failReplace = failReplace;
    failing.failCopyTo = failCopyTo;
    CSceneryCfgMgr manager(
        ConfigAccess(failing, library.prompts, library.ansi), libraryPath, u"C:\\FSX\\"_s);
    QVERIFY(manager.SceneryCfg_Load().ok);
    QVERIFY(manager.SceneryCfg_AddArea(u"N"_s, u"C:\\FSX\\N"_s, false).added);
    if (asked)
        library.prompts.expect(u"Would you like to restore the last backup?"_s, Button::Yes);
    const Result saved = manager.SceneryCfg_Save();
    QVERIFY(!saved.ok);
    QVERIFY2(saved.text.startsWith(text), qPrintable(saved.text));
    QCOMPARE(library.stored(), before);
    QVERIFY(manager.modified());
}

void TestScenery::restore()
{
    const QByteArray before = head + plainArea(1, 1, "x");
    Library library(before);
    QVERIFY(!library.manager.SceneryCfg_Backup_Restore(false).ok);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    QVERIFY(library.manager.SceneryCfg_RemoveArea(0));
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    library.prompts.expect(u"Any changes you made will be lost."_s, Button::No);
    QCOMPARE(library.manager.SceneryCfg_Backup_Restore(true).kind, ErrorKind::Declined);
    QCOMPARE(library.stored(), head);
    const Result restored = library.manager.SceneryCfg_Backup_Restore(false);
    QCOMPARE(restored.text, u"'"_s + libraryPath + u"' was restored."_s);
    QCOMPARE(library.stored(), before);
}

void TestScenery::validate_data()
{
    QTest::addColumn<QString>("file"); ///< made below C:\FSX; ends in "/" for a folder
    QTest::addColumn<bool>("active");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("text");

    const QString hidden =
        u" It will not appear in FS X until it is enabled in the Configuration tab."_s;
    QTest::newRow("no folder") << u"other/"_s << true << 1
                               << u"The scenery area folder does not exist."_s;
    QTest::newRow("no subfolder") << u"x/"_s << true << 2
                                  << u"The scenery area's 'Scenery' subfolder does not exist."_s;
    QTest::newRow("no files")
        << u"x/scenery/readme.txt"_s << true << 3
        << u"The scenery area's 'Scenery' subfolder does not contain any scenery files."_s;
    QTest::newRow("inactive and no files")
        << u"x/scenery/"_s << false << 3
        << u"The scenery area's 'Scenery' subfolder does not contain any scenery files."_s + hidden;
    QTest::newRow("disabled") << u"x/scenery/a.BGL"_s << false << 4
                              << u"This scenery layer is disabled."_s + hidden;
    QTest::newRow("good") << u"x/scenery/a.BGL"_s << true << 0 << QString();
}

void TestScenery::validate()
{
    QFETCH(QString, file);
    QFETCH(bool, active);
    QFETCH(int, code);
    QFETCH(QString, text);
    Library library(head);
    if (file.endsWith(u'/'))
        QDir().mkpath(library.host(u"FSX/"_s + file));
    else
        library.write(u"FSX/"_s + file, "x");
    library.files.newOperation();
    const CSceneryCfgItem item{1, u"X"_s, u"X"_s, {}, active, false, 1};
    QCOMPARE(int(library.manager.SceneryCfg_Validate(item, library.files)), code);
    QCOMPARE(CSceneryCfgMgr::problemText(code, active, u"FS X"_s), text);
    QCOMPARE(library.manager.SceneryCfg_Validate_Report(item, library.files, u"FS X"_s),
             u"Scenery Area Configuration Report\n\n"_s +
                 (code == 0 ? u"No scenery area configuration problems were detected."_s : text));
    QCOMPARE(CSceneryCfgMgr::problemText(9, true, u"FS X"_s),
             u"Unknown scenery area error. Error code = 9"_s);
}

void TestScenery::editChecks()
{
    Library library(head + plainArea(1, 3, "A") + plainArea(2, 4, "B"));
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    const auto check = [&](const CSceneryCfgItem& item, qsizetype index) {
        return library.manager.checkArea(item, index, 4, library.files);
    };
    CSceneryCfgItem item = library.manager.areas().at(0);
    QVERIFY(check(item, 0).error.isEmpty());
    QCOMPARE(check(item, 0).notes, QStringList{u"Note: scenery location does not exist."_s});
    item.sTitle = u"t 2"_s;
    item.sLocal = u"C:\\FSX\\b"_s;
    QDir().mkpath(library.host(u"FSX/B"_s));
    library.files.newOperation();
    QCOMPARE(check(item, 0).notes,
             (QStringList{u"Note: scenery area 2 (priority 4) also has this title."_s,
                          u"Note: scenery area 2 (priority 4) also covers this location."_s}));
    item.intLayer = 5;
    QCOMPARE(check(item, 0).error,
             u"Please specify layer value, a number between 1 and 4, for this scenery area."_s);
    item.sLocal.clear();
    QCOMPARE(check(item, 0).error, u"Please provide a location for this scenery area."_s);
    item.sTitle.clear();
    QCOMPARE(check(item, 0).error, u"Please provide a title for this scenery area."_s);
    QCOMPARE(CSceneryCfgMgr::checkGeneral(u" "_s, u"d"_s).error,
             u"Please provide a title for the scenery world."_s);
    QCOMPARE(CSceneryCfgMgr::checkGeneral(u"t"_s, u""_s).error,
             u"Please provide a description for the scenery world."_s);
}

void TestScenery::bigLibrary()
{
    QByteArray bytes = head;
    for (int i = 1; i <= 5'000; ++i)
        bytes += plainArea(i, i, "Scenery\\Region" + QByteArray::number(i));
    Library library(bytes);
    QVERIFY(library.manager.SceneryCfg_Load().ok);
    for (int i = 0; i < 1'000; ++i) {
        const QString folder = u"C:\\FSX\\Addon Scenery\\A"_s + QString::number(i);
        QVERIFY(library.manager.SceneryCfg_AddArea(u"T"_s, folder, true).added);
    }
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.manager.highestArea(), 6'000);
    for (int i = 999; i >= 0; --i) {
        const QString folder = u"C:\\FSX\\Addon Scenery\\A"_s + QString::number((i * 7) % 1'000);
        QVERIFY(library.manager.SceneryCfg_RemoveArea(folder, 0));
    }
    QVERIFY(library.manager.SceneryCfg_Save().ok);
    QCOMPARE(library.stored(), bytes);
}

VT_TEST_CLASS(TestScenery)
#include "test_scenery.moc"
