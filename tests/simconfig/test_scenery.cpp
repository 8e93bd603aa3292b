// The scenery library: areas read, added, taken out and edited; every other byte stays.
#include "engine/ConfigDisk.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

const QString libraryPath = u"C:\\FSX\\Config\\Scenery.cfg"_s;
const QString libraryHost = u"FSX/Config/Scenery.cfg"_s;

const QByteArray head = "[General]\r\nTitle=FSX World Scenery\r\nClean_on_Exit=TRUE\r\n\r\n";

QByteArray header(int number)
{
    return "[Area." + QByteArray::number(number).rightJustified(3, '0') + "]\r\n";
}

QByteArray plainArea(int number, int layer, const QByteArray& local)
{
    return header(number) + "Title=T " + QByteArray::number(number) +
           "\r\nTexture_ID=1\r\nLocal=" + local +
           "\r\nRemote=\r\nActive=TRUE\r\nRequired=FALSE\r\nLayer=" + QByteArray::number(layer) +
           "\r\n\r\n";
}

/// As the library writes an area itself.
QByteArray ownArea(int number, int layer, const QByteArray& title, const QByteArray& local)
{
    return header(number) + "Title=" + title +
           "\r\nActive=TRUE\r\nLayer=" + QByteArray::number(layer) +
           "\r\nRequired=FALSE\r\nLocal=" + local + "\r\n\r\n";
}

const QByteArray oneArea = head + plainArea(1, 1, "x");

/// A library file and its manager, which has loaded it.
struct Library : ConfigDisk
{
    explicit Library(const QByteArray& bytes = oneArea)
    {
        store(bytes);
        loaded = manager.SceneryCfg_Load();
    }

    void store(const QByteArray& bytes) { write(libraryHost, bytes); }

    [[nodiscard]] QByteArray stored() const { return read(libraryHost); }

    [[nodiscard]] QByteArray backup(const QString& extension) const
    {
        return read(u"FSX/Config/Scenery"_s + extension);
    }

    /// Without a question; "C:\FSX\" and \a name.
    bool add(const QString& name)
    {
        return manager.SceneryCfg_AddArea(name, u"C:\\FSX\\"_s + name, false).added;
    }

    bool save() { return manager.SceneryCfg_Save().ok; }

    CSceneryCfgMgr manager{access, libraryPath, u"C:\\FSX\\"_s};
    Result loaded;
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
        const QByteArray area = plainArea(random.bounded(9) + 1, random.bounded(9), "Scenery\\A");
        bytes += pick({"[cache.0]\r\nx=1\r\n", "; remark\r\n[Other]\r\njunk\r\n", area, area});
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

    void load_readsAreasInFileOrder()
    {
        const Library library(
            head + "[AREA.012] ; x\r\nTITLE = Paris / Orly // City \r\nlocal=Scenery\\Paris's\r\n"
                   "remote=D:\\r\r\nactive=false ; off\r\nrequired=true\r\nlayer=7\r\nlayer=9\r\n"
                   "[cache.1]\r\nlocal=no\r\n[Area.1000]\r\n;title=no\r\n");
        QVERIFY(library.loaded.ok);
        const CSceneryCfgItem paris = {
            12, u"Paris / Orly // City"_s, u"Scenery\\Paris's"_s, u"D:\\r"_s, false, true, 7};
        QCOMPARE(library.manager.areas(),
                 (QList<CSceneryCfgItem>{paris, {1000, {}, {}, {}, true, false, 0}}));
        QCOMPARE(library.manager.highestArea(), 1000);
        QCOMPARE(library.manager.highestLayer(), 7);
        QCOMPARE(library.manager.lines().joined(), library.stored());
        QVERIFY(!library.manager.modified());
    }

    void load_failures()
    {
        const QString none = u"Scenery configuration file does not have any scenery areas."_s;
        const Rows<QByteArray, bool, QString> rows = {
            {"no areas", head, true, none},
            {"empty", "", true, none},
            {"bare LF", "[Area.001]\nTitle=x\n", false, u"LF alone"_s},
            {"UTF-16", "\xff\xfe[\0A\0"_ba, false, u"UTF-16"_s},
            {"binary", "\0\0\0"_ba, false, u"NUL"_s},
        };
        for (const auto& [bytes, ok, text] : rows) {
            Library library(bytes);
            QCOMPARE(library.loaded.ok, ok);
            QVERIFY2(library.loaded.text.contains(text), qPrintable(library.loaded.text));
            CSceneryCfgMgr missing(library.access, u"C:\\FSX\\none.cfg"_s, u"C:\\FSX\\"_s);
            QCOMPARE(missing.SceneryCfg_Load().text,
                     u"Scenery configuration file 'C:\\FSX\\none.cfg' was not found."_s);
        }
    }

    void add_goesAboveAllOthers()
    {
        // numbers, layers: of the areas that are there; the new one's number and layer
        const Rows<QList<int>, QList<int>, int, int> rows = {
            {"six areas", {1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6}, 7, 7},
            {"a thousandth", {999}, {5}, 1000, 6},
            {"gaps are not filled", {9, 2}, {3, 40}, 10, 41},
            {"none yet", {}, {}, 1, 1},
        };
        for (const auto& [numbers, layers, number, layer] : rows) {
            QByteArray bytes = head;
            for (qsizetype i = 0; i < numbers.size(); ++i)
                bytes +=
                    plainArea(numbers.at(i), layers.at(i), "Scenery\\" + QByteArray::number(i));
            Library library(bytes);
            const auto added =
                library.manager.SceneryCfg_AddArea(u"New"_s, u"c:/fsx/Addon Scenery/New/"_s, true);
            QVERIFY(added.added && library.save());
            QCOMPARE(added.layer, layer);
            QCOMPARE(library.stored(), bytes + ownArea(number, layer, "New", "Addon Scenery\\New"));
        }
    }

    void add_keepsTheRest()
    {
        const QByteArray dense = "[Area.001]\r\nLocal=x\r\nLayer=1\r\n";
        const QByteArray first = ownArea(1, 1, "N", "N");
        const QByteArray second = ownArea(2, 2, "N", "N");
        const QByteArray cache = "[Cache.1]\r\nx\r\n";
        const Rows<QByteArray, QByteArray> rows = {
            {"spaced", dense + "\r\n", dense + "\r\n" + second},
            {"dense", dense, dense + "\r\n" + second.chopped(2)},
            {"no final line end", dense.chopped(2), dense + second.chopped(2)},
            {"cache behind", dense + "; c\r\n" + cache, dense + "; c\r\n" + second + cache},
            {"empty file", "", first.chopped(2)},
            {"no general section", "; c\r\n\r\n", "; c\r\n\r\n" + first},
        };
        for (const auto& [before, after] : rows) {
            Library library(before);
            QVERIFY(library.add(u"N"_s) && library.save());
            QCOMPARE(library.stored(), after);
        }
    }

    void add_asksWhenCovered()
    {
        Library library(head + plainArea(1, 1, "addon scenery/new\\"));
        const QString folder = u"C:\\FSX\\Addon Scenery\\New\\"_s;
        const auto add = [&](const QString& below, bool ask) {
            return library.manager.SceneryCfg_AddArea(u"New"_s, folder + below, ask);
        };
        library.prompts.expect(u"Confirm Scenery Area Update"_s, Button::No);
        const auto declined = add({}, true);
        QVERIFY(!declined.added && !library.manager.modified());
        QCOMPARE(declined.code, 1);
        const Prompt asked = library.prompts.asked.constFirst();
        QCOMPARE(asked.defaultButton, Button::No);
        QCOMPARE(
            asked.text,
            u"An existing scenery area already covers the path of the files you are adding. Add the scenery area anyway?\n\n"
            "Existing area:\n\tArea=1\n\tTitle=T 1\n\tLocal=addon scenery/new\\\n\tActive=TRUE\n\tRequired=FALSE\n\tLayer=1\n\n"
            "Proposed new area:\n\tArea=2\n\tTitle=New\n\tLocal=Addon Scenery\\New\n\tActive=TRUE\n\tRequired=FALSE\n\tLayer=2\n\n"
            "Press Yes to add the proposed new scenery area or press No to leave the scenery library configuration as it is."_s);

        library.prompts.expect(u"Confirm Scenery Area Update"_s, Button::Yes);
        QVERIFY(add({}, true).added && add({}, false).added);
        QCOMPARE(library.manager.areasOfFolder(folder), (QList<qsizetype>{0, 1, 2}));
        QVERIFY(add(u"Sub"_s, true).added); // a folder below is not covered
    }

    void add_refuses()
    {
        const QString x = u"C:\\FSX\\x"_s;
        const Rows<QString, QString, QString> rows = {
            {"no title", u" "_s, x, u"Please provide a title for this scenery area."_s},
            {"no folder", u"x"_s, {}, u"Please provide a location for this scenery area."_s},
            {"character outside the page", u"\u4e2d"_s, x, u"\u4e2d"_s},
            {"line break", u"x\r\n[Area.9]"_s, x, u"line break"_s},
        };
        for (const auto& [title, folder, text] : rows) {
            Library library;
            const auto result = library.manager.SceneryCfg_AddArea(title, folder, false);
            QVERIFY(!result.added && !library.manager.modified());
            QCOMPARE(result.code, int(CSceneryCfgMgr::NotAdded));
            QVERIFY2(result.text.contains(text), qPrintable(result.text));
        }
    }

    void addAndRemove_inAnyOrder_givesTheFileBack()
    {
        QRandomGenerator random(42);
        MemoryActions memory;
        ScriptedPrompts nobody;
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

    void remove_byFolder()
    {
        const QByteArray last = plainArea(3, 3, "B");
        Library library(head + plainArea(1, 1, "A") + plainArea(2, 2, "c:\\fsx\\a\\") + last);
        QCOMPARE(library.manager.areaForFolder(u"C:\\FSX\\A"_s), qsizetype(1));
        QCOMPARE(library.manager.areaForFolder(u"a/"_s, 1), qsizetype(0));
        QCOMPARE(library.manager.areaForFolder(u"A"_s, 3), qsizetype(1));
        QVERIFY(!library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\C"_s, 1));
        for (const bool there : {true, true, false})
            QCOMPARE(library.manager.SceneryCfg_RemoveArea(u"C:\\FSX\\A"_s, 1), there);
        QVERIFY(library.save());
        QCOMPARE(library.stored(), head + last);
    }

    void remove_leavesRemarks()
    {
        const QByteArray remark = "; --- next region\r\n\r\n" + plainArea(2, 2, "y");
        Library library(head + "[Area.001]\r\n; inside\r\nLocal=x\r\n\r\n" + remark);
        QVERIFY(library.manager.SceneryCfg_RemoveArea(0) && library.save());
        QCOMPARE(library.stored(), head + remark);
    }

    void edit_writesInOrder_unknownFollow()
    {
        const QByteArray other = plainArea(2, 2, "y");
        Library library(head +
                        "[Area.001] ; mine\r\nTexture_ID=1\r\nLocal=x\r\n; note\r\nLayer=1\r\n"
                        "Title=T\r\nMaximum_Altitude=9\r\n\r\n" +
                        other);
        CSceneryCfgMgr& manager = library.manager;
        QVERIFY(manager.setActive(0, true).ok);
        QCOMPARE(manager.SceneryCfg_Save().text,
                 u"Nothing to write to scenery configuration file."_s);
        QVERIFY(!library.exists(u"FSX/Config/Scenery.vtb"_s));
        QVERIFY(manager.setActive(0, false).ok && !manager.setActive(5, false).ok);
        QVERIFY(library.save());
        QCOMPARE(library.stored(),
                 head +
                     "[Area.001]\r\nTitle=T\r\nActive=FALSE\r\nLayer=1\r\nRequired=FALSE\r\n"
                     "Local=x\r\nTexture_ID=1\r\n; note\r\nMaximum_Altitude=9\r\n\r\n" +
                     other);
        CSceneryCfgItem item = manager.areas().at(0);
        item.sRemote = u"D:\\r"_s;
        item.sLocal = u"C:\\elsewhere"_s;
        QVERIFY(manager.setArea(0, item).ok);
        QCOMPARE(manager.areaForFolder(u"C:\\Elsewhere\\"_s), qsizetype(0));
        item.sTitle = u"\u4e2d"_s;
        QVERIFY(!manager.setArea(0, item).ok && library.save());
        QVERIFY(
            library.stored().contains("Required=FALSE\r\nRemote=D:\\r\r\nLocal=C:\\elsewhere\r\n"));
    }

    void general_values()
    {
        Library library;
        CSceneryCfgMgr& manager = library.manager;
        QCOMPARE(manager.General_Get(u"clean_on_exit"_s), std::optional(u"TRUE"_s));
        QVERIFY(!manager.General_Get(u"Description"_s));
        QVERIFY(manager.General_Set(u"Clean_on_Exit"_s, u"FALSE"_s).ok && library.save());
        QCOMPARE(library.stored(), QByteArray(oneArea).replace("Exit=TRUE", "Exit=FALSE"));

        CSceneryCfgMgr::SceneryWorld world = manager.General_World();
        QCOMPARE(world, (CSceneryCfgMgr::SceneryWorld{u"FSX World Scenery"_s, {}, false}));
        QCOMPARE(manager.General_SetWorld(world).text,
                 u"Please provide a description for the scenery world."_s);
        world.sTitle.clear();
        QCOMPARE(manager.General_SetWorld(world).text,
                 u"Please provide a title for the scenery world."_s);
        QVERIFY(!manager.modified());
        world = {u"FSX World Scenery"_s, u"Mine // all; of it"_s, true};
        QVERIFY(manager.General_SetWorld(world).ok);
        QCOMPARE(manager.General_World(), world);
        QVERIFY(library.save());
        QCOMPARE(
            library.stored(),
            QByteArray(oneArea).replace("al]\r\n", "al]\r\nDescription=Mine // all; of it\r\n"));
    }

    void save_writesWhatChangesShow_andKeepsTwoBackups()
    {
        Library library;
        QList<QByteArray> states;
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s}) {
            QVERIFY(library.add(name));
            const ConfigChange change = library.manager.changes();
            QCOMPARE(change.file, libraryPath);
            QVERIFY(change.lines.removed.isEmpty());
            states.push_back(library.stored());
            QCOMPARE(library.manager.SceneryCfg_Save().text,
                     u"Scenery configuration file was updated."_s);
            const QByteArray added = change.lines.added.join(u"\r\n"_s).toLatin1();
            QCOMPARE(library.stored(), states.constLast() + added + "\r\n");
        }
        QCOMPARE(library.backup(u".vtb"_s), states.at(2));
        QCOMPARE(library.backup(u".vt2"_s), states.at(1));
    }

    void save_afterAnotherChange()
    {
        Library library;
        QVERIFY(library.add(u"N"_s));
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
        QVERIFY(library.save());
        QCOMPARE(library.backup(u".vtb"_s), "[Other]\r\n"_ba);
        QVERIFY(library.stored().contains("[Area.002]"));
    }

    void save_readOnly()
    {
        Library library;
        QCOMPARE(chmod(library.host(libraryHost).toUtf8().constData(), 0444), 0);
        library.files.newOperation();
        QVERIFY(library.manager.SceneryCfg_Load().ok && library.add(u"N"_s));
        library.prompts.expect(
            u"The scenery configuration file 'C:\\FSX\\Config\\Scenery.cfg' is marked read-only. Update it anyway?"_s,
            Button::No);
        QCOMPARE(library.manager.SceneryCfg_Save().kind, ErrorKind::Declined);
        QCOMPARE(library.stored(), oneArea);
        library.prompts.expect(u"is marked read-only"_s, Button::Yes);
        QList<QByteArray> seen; // whenever the process might end
        library.gate.faultHook = [&](const char*, const QByteArray&) {
            seen.append(library.stored());
            return 0;
        };
        QVERIFY(library.save());
        library.gate.faultHook = {};
        QVERIFY(seen.size() >= 2);
        for (const QByteArray& bytes : std::as_const(seen))
            QVERIFY2(bytes == oneArea || bytes == library.stored(), bytes.constData());
        QCOMPARE(library.prompts.asked.constLast().icon, Icon::Warning);
        QCOMPARE(library.backup(u".vtb"_s), oneArea);
        QVERIFY(library.stored().contains("[Area.002]"));
        QVERIFY(!library.files.info(libraryPath)->readOnly);
    }

    void save_failed()
    {
        const QString notUpdated = u"Scenery configuration file was not updated"_s;
        const Rows<QByteArray, bool, QString> rows = {
            {"writing", "Scenery.cfg", true, notUpdated + u" properly. Backup restored."_s},
            {"backup", "Scenery.vtb", false, notUpdated + u'.'},
        };
        for (const auto& [failing, asked, text] : rows) {
            Library library;
            QVERIFY(library.add(u"N"_s));
            library.failOnce(failing);
            if (asked)
                library.prompts.expect(u"Would you like to restore the last backup?"_s,
                                       Button::Yes);
            const Result saved = library.manager.SceneryCfg_Save();
            QVERIFY2(!saved.ok && saved.text.startsWith(text), qPrintable(saved.text));
            QCOMPARE(library.stored(), oneArea);
            QVERIFY(library.manager.modified());
        }
    }

    void restore()
    {
        Library library;
        QVERIFY(!library.manager.SceneryCfg_Backup_Restore(false).ok);
        QVERIFY(library.manager.SceneryCfg_RemoveArea(0) && library.save());
        library.prompts.expect(u"Any changes you made will be lost."_s, Button::No);
        QCOMPARE(library.manager.SceneryCfg_Backup_Restore(true).kind, ErrorKind::Declined);
        QCOMPARE(library.stored(), head);
        QCOMPARE(library.manager.SceneryCfg_Backup_Restore(false).text,
                 u"'"_s + libraryPath + u"' was restored."_s);
        QCOMPARE(library.stored(), oneArea);
    }

    void validate()
    {
        const QString noFolder = u"The scenery area folder does not exist."_s;
        const QString noScenery = u"The scenery area's 'Scenery' subfolder does not exist."_s;
        const QString noFiles =
            u"The scenery area's 'Scenery' subfolder does not contain any scenery files."_s;
        const QString hidden =
            u" It will not appear in FS X until it is enabled in the Configuration tab."_s;
        const QString disabled = u"This scenery layer is disabled."_s + hidden;
        // file: made below C:\FSX; ends in "/" for a folder
        const Rows<QString, bool, int, QString> rows = {
            {"no folder", u"other/"_s, true, 1, noFolder},
            {"no subfolder", u"x/"_s, true, 2, noScenery},
            {"no files", u"x/scenery/readme.txt"_s, true, 3, noFiles},
            {"inactive and no files", u"x/scenery/"_s, false, 3, noFiles + hidden},
            {"disabled", u"x/scenery/a.BGL"_s, false, 4, disabled},
            {"good", u"x/scenery/a.BGL"_s, true, 0, {}},
        };
        for (const auto& [file, active, code, text] : rows) {
            Library library;
            if (file.endsWith(u'/'))
                library.makeFolder(u"FSX/"_s + file);
            else
                library.write(u"FSX/"_s + file);
            const CSceneryCfgItem item{1, u"X"_s, u"X"_s, {}, active, false, 1};
            QCOMPARE(int(library.manager.SceneryCfg_Validate(item, library.files)), code);
            QCOMPARE(CSceneryCfgMgr::problemText(code, active, u"FS X"_s), text);
            QCOMPARE(library.manager.SceneryCfg_Validate_Report(item, library.files, u"FS X"_s),
                     u"Scenery Area Configuration Report\n\n"_s +
                         (code == 0 ? u"No scenery area configuration problems were detected."_s
                                    : text));
        }
        QCOMPARE(CSceneryCfgMgr::problemText(9, true, u"FS X"_s),
                 u"Unknown scenery area error. Error code = 9"_s);
    }

    void editChecks()
    {
        Library library(head + plainArea(1, 3, "A") + plainArea(2, 4, "B"));
        CSceneryCfgItem item = library.manager.areas().at(0);
        const auto check = [&] { return library.manager.checkArea(item, 0, 4, library.files); };
        QVERIFY(check().error.isEmpty());
        QCOMPARE(check().notes, QStringList{u"Note: scenery location does not exist."_s});
        item.sTitle = u"t 2"_s;
        item.sLocal = u"C:\\FSX\\b"_s;
        item.intLayer = 4;
        library.makeFolder(u"FSX/B"_s);
        QVERIFY(check().error.isEmpty());
        QCOMPARE(check().notes,
                 (QStringList{u"Note: scenery area 2 (priority 4) also has this title."_s,
                              u"Note: scenery area 2 (priority 4) also covers this location."_s}));
        for (const int layer : {0, 5}) {
            item.intLayer = layer;
            QCOMPARE(
                check().error,
                u"Please specify layer value, a number between 1 and 4, for this scenery area."_s);
        }
        item.sLocal.clear();
        QCOMPARE(check().error, u"Please provide a location for this scenery area."_s);
        item.sTitle.clear();
        QCOMPARE(check().error, u"Please provide a title for this scenery area."_s);
    }

    void bigLibrary()
    {
        QByteArray bytes = head;
        for (int i = 1; i <= 5'000; ++i)
            bytes += plainArea(i, i, "Scenery\\Region" + QByteArray::number(i));
        Library library(bytes);
        const auto name = [](int number) { return u"A"_s + QString::number(number); };
        for (int i = 0; i < 1'000; ++i)
            QVERIFY(library.add(name(i)));
        QVERIFY(library.save());
        QCOMPARE(library.manager.highestArea(), 6'000);
        for (int i = 999; i >= 0; --i)
            QVERIFY(library.manager.SceneryCfg_RemoveArea(name((i * 7) % 1'000), 0));
        QVERIFY(library.save());
        QCOMPARE(library.stored(), bytes);
    }
};

VT_TEST_CLASS(TestScenery)
#include "test_scenery.moc"
