// The installation wizard as its user sees it: steps, pages, the plan, the installation.
#include "addondb/AddonDatabase.h"
#include "demo/ZipMaker.h"
#include "install/CAddonInstaller.h"
#include "install/forms/PlannedFilesModel.h"
#include "install/forms/frmInstall_Wizard.h"
#include "shell/Settings.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "ui/Screenshot.h"
#include "ui/WindowWorld.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTreeView>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::hashTree;
using vt::test::WindowWorld;

namespace {

constexpr int steps = 12;

struct Wizard
{
    explicit Wizard(WindowWorld& world) : window(new frmInstall_Wizard(*world.session, world.frame))
    {
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->resize(1280, 800);
        window->Form_PrepareToShow();
        window->show();
    }

    [[nodiscard]] QAbstractButton* button(const QString& name) const
    {
        return window->findChild<QAbstractButton*>(name);
    }

    void press(const QString& name) const { button(name)->click(); }

    /// As the user would, through the line of the first page.
    void type(const QString& source) const
    {
        auto* line = window->findChild<QLineEdit*>(u"txtSource"_s);
        line->setText(source);
        QTest::keyClick(line, Qt::Key_Return);
    }

    [[nodiscard]] QString text(const QString& label) const
    {
        return window->findChild<QLabel*>(label)->text();
    }

    [[nodiscard]] QStringList enabledSteps() const
    {
        QStringList names;
        for (const StepButton* step : window->findChildren<StepButton*>()) {
            if (step->isEnabled())
                names.append(step->accessibleName());
        }
        return names;
    }

    [[nodiscard]] CAddonInstallationDetails& details() const
    {
        return const_cast<CAddonInstallationDetails&>(*window->details());
    }

    std::unique_ptr<frmInstall_Wizard> window;
};

/// Every file below a model's root as "folder|name|install".
void collect(const QAbstractItemModel& model, const QModelIndex& parent, QStringList& out)
{
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (index.data(FileTreeModel::IdRole).toInt() > 0)
            out.append(index.siblingAtColumn(PlannedFilesModel::FolderColumn).data().toString() +
                       u'|' + index.data().toString() + u'|' +
                       index.siblingAtColumn(PlannedFilesModel::InstallColumn).data().toString());
        collect(model, index, out);
    }
}

QJsonObject planOf(const WindowWorld& world, const QString& source)
{
    QProcess process;
    process.start(QStringLiteral(VT_BIN "/vantrelctl"),
                  {u"--home"_s,
                   world.host(u"home"_s),
                   u"--prefix"_s,
                   world.host(u"prefix"_s),
                   u"--json"_s,
                   u"plan"_s,
                   source});
    process.waitForFinished();
    return QJsonDocument::fromJson(process.readAllStandardOutput()).object();
}

} // namespace

class TestWizard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void installation_endsAsWithoutWindow();
    void summary_tellsThePlan();
    void documentsAlone_enableTheirSteps();
    void nothingMarked_installsNothing();
    void invalidFolder_bringsBackItsPage();
    void badSource_isToldOnThePage();
    void otherSource_startsAnew();
    void cancelAtAQuestion_keepsWhatCameBefore();
    void closing_leavesTheTreeAlone();
    void pictures();
};

void TestWizard::installation_endsAsWithoutWindow()
{
    WindowWorld plain;
    QVERIFY(plain.install(u"kestrel-repaint"_s) > 0);

    WindowWorld world;
    const auto before = hashTree(world.demo.simulatorHost);
    Wizard wizard(world);
    wizard.type(world.sample(u"kestrel-repaint"_s));
    QCOMPARE(wizard.text(u"lblHeader"_s),
             u"Customize the configuration then press Finish to install the addon."_s);
    for (int i = 0; i < steps && wizard.button(u"cmdNext"_s)->isVisible(); ++i)
        wizard.press(u"cmdNext"_s);
    QCOMPARE(wizard.text(u"lblHeader"_s), u"Review installation summary."_s);
    QVERIFY(wizard.text(u"lblFooter"_s).endsWith(u"Nothing has been written yet."_s));
    QCOMPARE(test::differences(before, hashTree(world.demo.simulatorHost)), QStringList());

    wizard.press(u"cmdOK"_s);
    QVERIFY(!wizard.window->isVisible());
    QCOMPARE(
        test::differences(hashTree(plain.demo.simulatorHost), hashTree(world.demo.simulatorHost)),
        QStringList());
    QCOMPARE(world.frame.calls,
             (QStringList{u"recordsChanged"_s,
                          u"showResults Installation Results - 'kestrel-repaint'"_s}));
    QVERIFY(world.status.texts.contains(u"Primary|The addon was installed."_s));
    QCOMPARE(world.frame.working, 0);
}

void TestWizard::summary_tellsThePlan()
{
    WindowWorld world;
    QVERIFY(world.install(u"kestrel-repaint"_s) > 0); // the second time it replaces
    const QString source = world.sample(u"kestrel-repaint"_s);
    Wizard wizard(world);
    QVERIFY(wizard.window->choose(source));
    QVERIFY(wizard.window->SubForm_InstallationSummary_Show());
    const QJsonObject plan = planOf(world, source);
    QStringList planned;
    for (const QJsonValue& item : plan[u"items"].toArray())
        planned.append(item[u"targetFolder"].toString() + u'|' + item[u"targetName"].toString() +
                       (item[u"install"].toBool() ? u"|Install"_s : u"|Do not install"_s));
    QStringList shown;
    auto* view = wizard.window->findChild<QTreeView*>(u"lvwSummary"_s);
    collect(*view->model(), {}, shown);
    planned.sort();
    shown.sort();
    QVERIFY(!shown.isEmpty());
    QCOMPARE(shown, planned);

    const QJsonArray changes = plan[u"configChanges"].toArray();
    auto* files = wizard.window->findChild<QListWidget*>(u"lstConfigFiles"_s);
    QCOMPARE(files->count(), int(changes.size()));
    for (int row = 0; row < files->count(); ++row) {
        files->setCurrentRow(row);
        QStringList lines;
        for (const QJsonValue& line : changes[row][u"removed"].toArray())
            lines.append(u"- "_s + line.toString());
        for (const QJsonValue& line : changes[row][u"added"].toArray())
            lines.append(u"+ "_s + line.toString());
        QCOMPARE(wizard.window->findChild<QPlainTextEdit*>(u"txtConfigLines"_s)->toPlainText(),
                 lines.join(u'\n'));
    }
}

void TestWizard::documentsAlone_enableTheirSteps()
{
    WindowWorld world;
    test::writeHostFile(world.host(u"papers/readme.txt"_s), "read");
    test::writeHostFile(world.host(u"papers/manual.pdf"_s), "more");
    Wizard wizard(world);
    QCOMPARE(wizard.window->findChildren<StepButton*>().size(), steps);
    QCOMPARE(wizard.enabledSteps(), QStringList{u"Select Addon Files"_s});
    QVERIFY(wizard.window->choose(world.windows(u"papers"_s)));
    QCOMPARE(wizard.enabledSteps(),
             (QStringList{u"Select Addon Files"_s,
                          u"Configure Other"_s,
                          u"Installation Options"_s,
                          u"Installation Summary"_s,
                          u"Finish"_s}));
}

void TestWizard::nothingMarked_installsNothing()
{
    WindowWorld world;
    Wizard wizard(world);
    QVERIFY(wizard.window->choose(world.sample(u"kestrel-repaint"_s)));
    const auto before = hashTree(world.dir.path());
    wizard.details().addon().AddonItems_SetProcessFlagForAllItems(false);
    world.prompts.expect(u"Nothing to install. All addon files are marked 'Do Not Install'."_s,
                         Button::Ok);
    wizard.press(u"cmdFinish"_s);
    QVERIFY(wizard.window->isVisible());
    QCOMPARE(test::differences(before, hashTree(world.dir.path())), QStringList());
}

void TestWizard::invalidFolder_bringsBackItsPage()
{
    WindowWorld world;
    const QByteArray archive =
        zipOf({{u"Zeta/aircraft.cfg"_s, "[fltsim.0]\r\ntitle=Zeta\r\nsim=zeta\r\n"},
               {u"Zeta/zeta.air"_s, "air"},
               {u"Zeta/sound/sound.cfg"_s, "[SOUND_ENGINE]\r\n"}});
    test::writeHostFile(world.host(u"zeta.zip"_s), archive);
    Wizard wizard(world);
    QVERIFY(wizard.window->choose(world.windows(u"zeta.zip"_s)));
    for (CAddon_Item& item : wizard.details().addon().colAddonItems_Edit()) {
        if (item.IsMappedToSound())
            item.sFolder_Installation.clear();
    }
    world.prompts.expect(u"Correct the problem with the sound configuration and try again."_s,
                         Button::Ok);
    wizard.press(u"cmdFinish"_s);
    QCOMPARE(wizard.window->currentStep(), int(InstallStep::Sound));
    QCOMPARE(wizard.window->cmdCurrentStep()->state(), StepState::NeedsAttention);
    QVERIFY(wizard.text(u"lblNotice"_s)
                .startsWith(u"A file you are installing does not have a valid target folder."_s));
}

void TestWizard::badSource_isToldOnThePage()
{
    WindowWorld world;
    test::writeHostFile(world.host(u"bad.zip"_s), "PK no archive at all");
    Wizard wizard(world);
    wizard.type(world.windows(u"bad.zip"_s));
    QVERIFY(wizard.text(u"lblProblem"_s).contains(u"bad.zip"_s));
    QVERIFY(!wizard.window->details());
    QCOMPARE(wizard.window->currentStep(), int(InstallStep::SelectFiles));
    wizard.type(world.sample(u"kestrel-repaint"_s));
    QVERIFY(wizard.text(u"lblProblem"_s).isEmpty());
    QVERIFY(wizard.window->details());
}

void TestWizard::otherSource_startsAnew()
{
    WindowWorld world;
    Wizard wizard(world);
    QVERIFY(wizard.window->choose(world.sample(u"kestrel-repaint"_s)));
    QVERIFY(wizard.window->SubForm_ConfigureOptions_Show());
    auto* name = wizard.window->findChild<QLineEdit*>(u"txtAddonName"_s);
    name->setText(u"Mine"_s);
    QCOMPARE(wizard.details().addon().sGroupName, u"Mine"_s);
    name->clear();
    QVERIFY(!wizard.window->SubForm_InstallationSummary_Show());
    QCOMPARE(wizard.text(u"lblNotice"_s), u"Enter a name for this addon."_s);
    name->setText(u"Mine"_s);

    QVERIFY(wizard.window->SubForm_SelectFiles_Show());
    test::writeHostFile(world.host(u"papers/readme.txt"_s), "read");
    QVERIFY(wizard.window->choose(world.windows(u"papers"_s)));
    QVERIFY(wizard.window->SubForm_ConfigureOptions_Show());
    QCOMPARE(wizard.window->findChild<QLineEdit*>(u"txtAddonName"_s)->text(), u"papers"_s);
    // Coming back shows what was chosen.
    QVERIFY(wizard.window->SubForm_SelectFiles_Show());
    QCOMPARE(wizard.window->findChild<QLineEdit*>(u"txtSource"_s)->text(),
             world.windows(u"papers"_s) + u'\\');
}

void TestWizard::cancelAtAQuestion_keepsWhatCameBefore()
{
    WindowWorld world;
    test::writeHostFile(world.demo.simulatorHost + u"/Effects/b.fx"_s, "old");
    test::writeHostFile(world.host(u"more/Effects/a.fx"_s), "new a");
    test::writeHostFile(world.host(u"more/Effects/b.fx"_s), "new b");
    Wizard wizard(world);
    QVERIFY(wizard.window->choose(world.windows(u"more"_s)));
    world.prompts.expect(u"b.fx"_s, Button::Cancel);
    wizard.press(u"cmdFinish"_s);
    QVERIFY(!wizard.window->isVisible());
    QCOMPARE(test::readHostFile(world.demo.simulatorHost + u"/Effects/a.fx"_s), "new a");
    QCOMPARE(test::readHostFile(world.demo.simulatorHost + u"/Effects/b.fx"_s), "old");
    QVERIFY(world.status.texts.last().contains(u"was ended early; 1 file is installed"_s));
    QCOMPARE(world.frame.results.count(resultgroup::installed), 1);

    // What was left out can be tried again; it is marked alone then and comes to the same record.
    QCOMPARE(world.frame.after.addons, QList<qint64>{1});
    world.frame.after.tryAgain();
    const QStringList left{u"Effects\\b.fx"_s};
    QCOMPARE(world.frame.calls.last(),
             u"installAddon "_s + world.windows(u"more"_s) + u"\\ rest of 1 "_s + left.first());
    Wizard again(world);
    QVERIFY(again.window->choose(world.windows(u"more"_s), {1, left}));
    QCOMPARE(again.text(u"lblNotice"_s),
             u"Only what 'more' lacks is marked, and it comes to that addon: 1 file."_s);
    world.prompts.expect(u"b.fx"_s, Button::Yes);
    again.press(u"cmdFinish"_s);
    QCOMPARE(test::readHostFile(world.demo.simulatorHost + u"/Effects/b.fx"_s), "new b");
    QCOMPARE(world.frame.results.count(resultgroup::installed), 1);
    QVERIFY(!world.frame.after.tryAgain);
    QCOMPARE(world.frame.after.addons, QList<qint64>{1});
    QCOMPARE(modDatabase_Addon::addons(*world.session->database())->size(), 1);
    QCOMPARE(modDatabase_Addon::detailsOf(*world.session->database(), 1)->size(), 2);
}

void TestWizard::closing_leavesTheTreeAlone()
{
    WindowWorld world;
    const auto before = hashTree(world.demo.prefixHost);
    {
        Wizard wizard(world);
        QVERIFY(wizard.window->choose(world.sample(u"kestrel-repaint"_s)));
        QVERIFY(wizard.window->SubForm_ConfigureOptions_Show());
        wizard.window->findChild<QRadioButton*>(u"optInstallToFileCabinet"_s)->click();
        QVERIFY(wizard.window->SubForm_InstallationSummary_Show());
        wizard.press(u"cmdCancel"_s);
        QVERIFY(!wizard.window->isVisible());
    }
    QCOMPARE(test::differences(before, hashTree(world.demo.prefixHost)), QStringList());
    const auto addons = modDatabase_Addon::addon(world.database(), 1);
    QVERIFY(!addons);
}

void TestWizard::pictures()
{
    WindowWorld world;
    Wizard wizard(world);
    const auto take = [&](const QString& name) {
        for (const QSize& size : {QSize(1280, 800), QSize(800, 600)})
            test::screenshot(
                *wizard.window, u"wizard-"_s + name + u'-' + QString::number(size.width()), size);
    };
    take(u"begin"_s);
    wizard.type(world.host(u"nothing.zip"_s));
    take(u"problem"_s);
    QVERIFY(wizard.window->choose(world.sample(u"kestrel-repaint"_s)));
    take(u"select"_s);
    for (int step = int(InstallStep::Aircraft); step < installStepCount; ++step) {
        auto* shown = wizard.window->findChildren<StepButton*>().at(step);
        if (!shown->isEnabled())
            continue;
        shown->click();
        take(shown->objectName().mid(3).toLower());
    }
}

VT_TEST_CLASS(TestWizard)

#include "test_wizard.moc"
