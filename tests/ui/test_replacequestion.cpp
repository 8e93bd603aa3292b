// The replace question inside a real installation, answered in its window, and what it shows.
#include "archive/CZIP.h"
#include "demo/SampleAddons.h"
#include "install/CAddonInstaller.h"
#include "shell/ErrorLog.h"
#include "shell/forms/frmYesYesToAllNoNoToAllCancel.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// Opens the window for each question and types the next answer's keys into it.
class WindowPrompts final : public Prompts
{
public:
    Button ask(const Prompt& prompt) override
    {
        asked.append(prompt);
        QTimer::singleShot(0, qApp, [this] { type(); });
        return frmYesYesToAllNoNoToAllCancel::ask(prompt, nullptr);
    }

    CheckedAnswer askChecked(const Prompt& prompt) override { return {ask(prompt), false}; }

    std::optional<qsizetype> choose(const ChoicePrompt&) override { return std::nullopt; }

    std::optional<QString> askText(const TextPrompt&) override { return std::nullopt; }

    QList<QKeySequence> keys; ///< of one answer each; the last one serves all that follow
    QList<Prompt> asked;

private:
    void type()
    {
        QWidget* window = QApplication::activeModalWidget();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QTest::keySequence(window, keys.size() > 1 ? keys.takeFirst() : keys.value(0));
        QTimer::singleShot(5000, window, [window] {
            QTest::qFail("the keys did not answer the question", __FILE__, __LINE__);
            window->close();
        });
    }
};

ReplaceQuestion question(int olderByDays)
{
    ReplaceQuestion files;
    files.target = u"C:\\FSX\\SimObjects\\Airplanes\\Kestrel_K2\\texture.blue\\fuselage_t.dds"_s;
    files.existingSize = 42'188;
    files.newSize = 1'398'256;
    files.newDate = {{2026, 11, 18}, {20, 15}};
    files.existingDate = files.newDate.addDays(-olderByDays);
    return files;
}

QString labelText(const QWidget& window, const QString& name)
{
    return window.findChild<QLabel*>(name)->text();
}

} // namespace

class TestReplaceQuestion : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void answers_inAnInstallation_data()
    {
        QTest::addColumn<QList<QKeySequence>>("keys");
        QTest::addColumn<int>("questions");
        QTest::addColumn<int>("replaced");
        QTest::addColumn<bool>("cancelled");
        using Keys = QList<QKeySequence>;
        const QKeySequence yes(u"Alt+Y"_s);
        const QKeySequence no(u"Alt+N"_s);
        QTest::newRow("Yes each time") << Keys{yes} << 3 << 3 << false;
        QTest::newRow("the default is Yes") << Keys{Qt::Key_Return} << 3 << 3 << false;
        QTest::newRow("No, then Yes") << Keys{no, yes} << 3 << 2 << false;
        QTest::newRow("Yes to All") << Keys{QKeySequence(u"Alt+A"_s)} << 1 << 3 << false;
        QTest::newRow("Yes, then No to All")
            << Keys{yes, QKeySequence(u"Alt+O"_s)} << 2 << 1 << false;
        QTest::newRow("Yes, then Cancel") << Keys{yes, QKeySequence(u"Alt+C"_s)} << 2 << 1 << true;
        QTest::newRow("Escape") << Keys{Qt::Key_Escape} << 1 << 0 << true;
    }

    void answers_inAnInstallation()
    {
        QFETCH(const QList<QKeySequence>, keys);
        QFETCH(const int, questions);
        QFETCH(const int, replaced);
        QFETCH(const bool, cancelled);
        WindowWorld world;
        const QString effects = world.context().global.simulatorFolder + u"Effects\\"_s;
        DemoFiles files;
        for (const QString& name : {u"fx_1.fx"_s, u"fx_2.fx"_s, u"fx_3.fx"_s}) {
            files.append({u"Effects/"_s + name, "new"});
            QVERIFY(world.session->services().actions.replace(effects + name, "old"));
        }
        writeHostFile(world.host(u"pack.zip"_s), SampleAddon{u"pack"_s, {}, files}.archive());
        WindowPrompts prompts;
        prompts.keys = keys;
        const Services& real = world.session->services();
        Services services{
            real.files, real.gate, real.actions, prompts, real.status, real.clock, real.ansi};
        Context context{
            services, world.context().global, world.context().settings, world.context().errors};

        CAddonInstallationDetails details(context);
        QVERIFY(details.prepare(world.windows(u"pack.zip"_s), {}));
        CAddonInstaller installer(context, world.database(), details);
        (void)installer.Install_Begin();
        QCOMPARE(prompts.asked.size(), questions);
        QCOMPARE(installer.wasCancelled(), cancelled);
        int now = 0;
        for (const QString& name : {u"fx_1.fx"_s, u"fx_2.fx"_s, u"fx_3.fx"_s})
            now += *real.files.read(effects + name, 100) == "new" ? 1 : 0;
        QCOMPARE(now, replaced);
    }

    void extraction_asksTheSameWay()
    {
        WindowWorld world;
        const QString effects = world.context().global.simulatorFolder + u"Effects\\"_s;
        for (const QString& name : {u"fx_1.fx"_s, u"fx_2.fx"_s})
            QVERIFY(world.session->services().actions.replace(effects + name, "old"));
        writeHostFile(
            world.host(u"pack.zip"_s),
            SampleAddon{u"pack"_s, {}, {{u"fx_1.fx"_s, "new"}, {u"fx_2.fx"_s, "new"}}}.archive());
        WindowPrompts prompts;
        prompts.keys = {QKeySequence(u"Alt+N"_s), QKeySequence(u"Alt+Y"_s)};
        const Services& real = world.session->services();
        Services services{
            real.files, real.gate, real.actions, prompts, real.status, real.clock, real.ansi};
        CZIP zip(services);
        zip.sZIPFile = world.windows(u"pack.zip"_s);
        zip.sExtract_Folder = effects;
        zip.boolExtract_All = true;
        zip.boolExtract_ConfirmOverwrite = true;
        QVERIFY2(zip.Extract(), qPrintable(zip.resultText()));
        QCOMPARE(*real.files.read(effects + u"fx_1.fx"_s, 100), "old");
        QCOMPARE(*real.files.read(effects + u"fx_2.fx"_s, 100), "new");
        const frmYesYesToAllNoNoToAllCancel window(prompts.asked.first());
        QCOMPARE(labelText(window, u"lblHeading"_s),
                 u"'"_s + effects + u"fx_1.fx' already exists. Do you want to overwrite it?"_s);
        QCOMPARE(prompts.asked.first().replacing->newSize, 3);
    }

    void newerFile_isNamed_data()
    {
        QTest::addColumn<int>("olderByDays");
        QTest::addColumn<QString>("existing");
        QTest::addColumn<QString>("fresh");
        QTest::newRow("new one") << 1 << u"Older"_s << u"Newer"_s;
        QTest::newRow("existing one") << -1 << u"Newer"_s << u"Older"_s;
        QTest::newRow("neither") << 0 << u"Same date"_s << u"Same date"_s;
    }

    void newerFile_isNamed()
    {
        QFETCH(const int, olderByDays);
        const frmYesYesToAllNoNoToAllCancel window(confirmFileReplace(question(olderByDays)));
        QTEST(labelText(window, u"lblExistingAge"_s), "existing");
        QTEST(labelText(window, u"lblNewAge"_s), "fresh");
    }

    void readOnlyFile_isAnnounced()
    {
        ReplaceQuestion files = question(40);
        files.changed = true;
        frmYesYesToAllNoNoToAllCancel window(confirmFileReplace(files));
        screenshot(window, u"replace"_s);
        files.readOnly = true;
        files.newDate = {};
        frmYesYesToAllNoNoToAllCancel readOnly(confirmFileReplace(files));
        QCOMPARE(labelText(readOnly, u"lblHeading"_s),
                 u"The following read-only file already exists"_s);
        QCOMPARE(labelText(readOnly, u"lblNewAge"_s), QString());
        screenshot(readOnly, u"replace-read-only"_s);
    }
};

VT_TEST_CLASS(TestReplaceQuestion)

} // namespace vt::test

#include "test_replacequestion.moc"
