// Files that are no configuration files, or monstrous ones, under every object: nothing crashes or
// hangs, what is refused stays as it was and is told in one text, and an edit keeps every byte.
#include "platform/Processes.h"
#include "shell/ShellFixture.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"
#include "simconfig/CFSCFGManager.h"
#include "simconfig/CModel.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/CSound.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

using namespace Qt::StringLiterals;
using namespace vt;

namespace {

constexpr int large = 10'000'000;

QByteArray garbage(const QByteArray& alphabet = {})
{
    QByteArray bytes(large / 10, Qt::Uninitialized);
    QRandomGenerator random(7);
    for (char& byte : bytes) {
        const quint32 value = random.generate();
        byte = alphabet.isEmpty() ? char(value) : alphabet.at(value % alphabet.size());
    }
    return bytes;
}

QByteArray sections(const QByteArray& stem, int count)
{
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes += '[' + stem + QByteArray::number(i) + "]\r\n";
    return bytes;
}

struct BadWorld : test::ShellFixture
{
    explicit BadWorld(const QByteArray& bytes)
    {
        global.setSimulatorFolder(u"C:\\FSX\\"_s);
        global.simulatorExecutable = u"none.exe"_s;
        global.setConfigFolders(u"C:\\FSX\\All\\"_s, u"C:\\FSX\\"_s, u"C:\\Docs\\"_s, u"FSX"_s);
        write(file, bytes);
    }

    [[nodiscard]] QByteArray stored() const { return read(file); }

    const QString file = u"FSX/Microsoft/FSX/Odd.cfg"_s;
    const QString path = u"C:\\FSX\\Microsoft\\FSX\\Odd.cfg"_s;
    ConfigAccess access{services};
};

} // namespace

class TestBadInput : public QObject
{
    Q_OBJECT

private:
    static void shapes();

private Q_SLOTS:

    void aircraft_data() { shapes(); }

    void aircraft();

    void parts_data() { shapes(); }

    void parts();

    void scenery_data() { shapes(); }

    void scenery();

    void configs_data() { shapes(); }

    void configs();
};

void TestBadInput::shapes()
{
    struct Shape
    {
        const char* name;
        QByteArray bytes;
        bool text;
    };

    static const Shape all[] = {
        {"binary garbage", garbage(), false},
        {"NULs", QByteArray(large, '\0'), false},
        {"UTF-16", "\xff\xfe[\0a\0]\0"_ba, false},
        {"marks and line ends", garbage("[]=/;'\r\n\t a.1"), false},
        {"a line of 10 MB", "[fltsim.0]\r\nsim=" + QByteArray(large, 'x'), true},
        {"10 MB of apostrophes", "[fltsim.0]\r\nsim=" + QByteArray(large, '\''), true},
        {"a million sections", sections("x", 1'000'000), true},
        {"many aircraft", sections("fltsim.", 200'000), true},
        {"many areas", sections("Area.", 200'000), true},
        {"open brackets", QByteArray("[\r\n").repeated(large / 10), true},
        {"brackets in one line", QByteArray(large, '['), true},
        {"CRs", QByteArray(large, '\r'), true},
    };
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("text"); ///< by its bytes a file that may be edited
    for (const Shape& shape : all)
        QTest::newRow(shape.name) << shape.bytes << shape.text;
}

void TestBadInput::aircraft()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, text);
    BadWorld world(bytes);
    CAircraft aircraft(world.access);
    (void)aircraft.Load(world.path, u"fltsim.0"_s);
    AircraftChecks checks(world.access, world.files, world.global);
    QVERIFY(!aircraft.Verify(checks).isEmpty());
    const QStringList names = aircraft.Headers_LoadAll(world.path);
    QVERIFY(!names.isEmpty() || aircraft.State_Get() == CAircraft::NoHeaders);
    if (aircraft.INILines_Load()) {
        const auto renames = aircraft.AircraftMasterSourceTextFile_Reorder();
        QVERIFY(!renames || renames->isEmpty());
    }
    const Result updated = aircraft.PanelOrSound_Entry_Update(CAircraft::Alias::Panel, u"x"_s);
    QCOMPARE(updated.ok, text && names.contains(u"fltsim.0"_s));
    if (updated.ok) {
        const QByteArray lineEnd = bytes.endsWith("\r\n") ? "" : "\r\n";
        QCOMPARE(world.stored(), QByteArray(bytes).insert(12, "panel=x\r\n") + lineEnd);
        return;
    }
    QVERIFY(!updated.text.isEmpty());
    QCOMPARE(world.stored(), bytes);
}

void TestBadInput::parts()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, text);
    BadWorld world(bytes);
    CModel model(world.access);
    (void)model.Load(world.path);
    QVERIFY(model.ModelFiles_Get().isEmpty());
    CPanel panel(world.access, world.files, world.global);
    CSound sound(world.access, world.files, world.global);
    for (AliasConfig* part :
         {static_cast<AliasConfig*>(&panel), static_cast<AliasConfig*>(&sound)}) {
        QVERIFY(!part->Load(world.path));
        const QString problems = part->Verify().problems.join(u'\n');
        QVERIFY2(problems.isEmpty() || problems.contains(u"is not valid."_s), qPrintable(problems));
        (void)part->Repair();
        QVERIFY(world.stored() == bytes || !text); // the form alone is mended
        world.write(world.file, bytes);
    }
}

void TestBadInput::scenery()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, text);
    BadWorld world(bytes);
    CSceneryCfgMgr library(world.access, world.path, world.global.simulatorFolder);
    const Result loaded = library.SceneryCfg_Load();
    QCOMPARE(loaded.ok, text);
    if (!loaded.ok) {
        QVERIFY2(loaded.text.contains(world.path), qPrintable(loaded.text));
        return;
    }
    const QString folder = u"C:\\FSX\\New"_s;
    QVERIFY(library.SceneryCfg_AddArea(u"New"_s, folder, true).added);
    QVERIFY(library.SceneryCfg_Save().ok);
    QVERIFY(world.stored() != bytes);
    QVERIFY(library.SceneryCfg_Load().ok);
    QVERIFY(library.SceneryCfg_RemoveArea(folder, 0));
    QVERIFY(library.SceneryCfg_Save().ok);
    QCOMPARE(world.stored(), bytes);
}

void TestBadInput::configs()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, text);
    BadWorld world(bytes);
    const Processes processes(world.files, {});
    CFSCFGManager manager(world.context, processes);
    QVERIFY(manager.GetFSCFGFiles().ok);
    const bool listed = manager.indexOf(u"Odd.cfg"_s) >= 0;
    const Result described = manager.UpdateFSCFGFileDescription(u"Odd.cfg"_s, u"x"_s);
    QCOMPARE(described.ok, text && listed);
    if (described.ok) {
        const QByteArray added = "[VT_FILE_DETAILS]\r\nDescription=x\r\n";
        QCOMPARE(world.stored(), added + bytes + (bytes.endsWith("\r\n") ? "" : "\r\n"));
        return;
    }
    QVERIFY2(described.text.contains(world.path), qPrintable(described.text));
    QCOMPARE(world.stored(), bytes);
}

VT_TEST_CLASS(TestBadInput)
#include "test_badinput.moc"
