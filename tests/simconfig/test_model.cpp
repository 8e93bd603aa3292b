// Which shapes a Model.cfg names.
#include "engine/ConfigDisk.h"
#include "simconfig/CModel.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace vt::test {

class TestModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void load_readsEntries_data();
    void load_readsEntries();
    void load_missingFileFails();
};

void TestModel::load_readsEntries_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("alias");
    QTest::newRow("shapes") << QByteArray("[models]\r\nNormal=Plane ; shape\r\ncrash=wreck.MDL\r\n")
                            << QStringList{u"C:\\FSX\\model\\Plane.mdl"_s,
                                           u"C:\\FSX\\model\\wreck.MDL"_s}
                            << QString();
    QTest::newRow("bare LF, same shape twice")
        << QByteArray("[MODELS]\nnormal=plane\ninterior=inside\ncrash=PLANE\n")
        << QStringList{u"C:\\FSX\\model\\plane.mdl"_s, u"C:\\FSX\\model\\inside.mdl"_s}
        << QString();
    QTest::newRow("alias") << QByteArray("[fltsim]\r\nalias=Other\\model\r\n") << QStringList()
                           << u"Other\\model"_s;
    QTest::newRow("nothing") << QByteArray("// empty\r\n") << QStringList() << QString();
}

void TestModel::load_readsEntries()
{
    QFETCH(QByteArray, text);
    AnsiCodec ansi{1252};
    ScriptedPrompts prompts;
    MemoryActions actions;
    const QString file = u"C:\\FSX\\model\\model.cfg"_s;
    QVERIFY(actions.replace(file, text).ok);
    CModel model(ConfigAccess(actions, prompts, ansi));
    QVERIFY(model.Load(file));
    QTEST(model.ModelFiles_Get(), "files");
    QTEST(model.sAlias, "alias");
    QCOMPARE(model.ModelFilename_Crash_Get().isEmpty(), model.sModelEntry_Crash.isEmpty());
}

void TestModel::load_missingFileFails()
{
    AnsiCodec ansi{1252};
    ScriptedPrompts prompts;
    MemoryActions actions;
    CModel model(ConfigAccess(actions, prompts, ansi));
    model.sModelEntry_Normal = u"old"_s;
    QVERIFY(!model.Load(u"C:\\FSX\\model.cfg"_s));
    QVERIFY(model.ModelFilename_Normal_Get().isEmpty());
}

} // namespace vt::test

using vt::test::TestModel;
VT_TEST_CLASS(TestModel)

#include "test_model.moc"
