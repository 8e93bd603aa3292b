// The removal wizard from the ticks to the results, through its real windows: what is told before,
// what is asked, what the simulator looks like afterwards.
#include "addondb/AddonDatabase.h"
#include "archive/forms/SelectCommands.h"
#include "demo/DemoAircraft.h"
#include "demo/SampleAddons.h"
#include "install/CAddonInstaller.h"
#include "remove/forms/RemovalCommands.h"
#include "remove/forms/frmRemove_Wizard.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/QtStatus.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "ui/WindowWorld.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

struct Shown
{
    qint64 installFiles(const QString& name, const DemoFiles& files)
    {
        writeHostFile(world.host(name + u".zip"_s), SampleAddon{name, {}, files}.archive());
        world.session->services().files.newOperation();
        CAddonInstallationDetails details(world.context());
        if (!details.prepare(world.windows(name + u".zip"_s), {}))
            return -1;
        CAddonInstaller installer(world.context(), world.database(), details);
        return installer.Install_Begin() ? installer.masterKey() : -1;
    }

    /// Two aircraft, of which Wren uses panel and sound of Owl; the key of Owl.
    qint64 installOwlAndWren()
    {
        const auto aircraft = [](const QString& folder, const QString& from) {
            return aircraftFiles({u"SimObjects/Airplanes/"_s + folder,
                                  folder.toLower(),
                                  u"Nest"_s,
                                  folder,
                                  u"1"_s,
                                  u"Demo_Kestrel"_s,
                                  {u"Airspeed"_s},
                                  from,
                                  u"fx_none"_s,
                                  {{folder + u" White"_s, u"White"_s, {}}}});
        };
        const qint64 owl = installFiles(u"Owl"_s, aircraft(u"Owl"_s, {}));
        return installFiles(u"Wren"_s, aircraft(u"Wren"_s, u"Owl"_s)) > 0 ? owl : -1;
    }

    qint64 installReplacing(const QString& sample)
    {
        InstallOptions options;
        options.replace = ReplacePolicy::Yes;
        return world.install(sample, options);
    }

    void open(const QList<qint64>& keys = {})
    {
        window = new frmRemove_Wizard(*world.session, world.frame, keys);
        window->Form_PrepareToShow();
        window->resize(1000, 640);
        window->show();
        QApplication::setActiveWindow(window);
    }

    ~Shown() { delete window.data(); }

    template <typename Widget> [[nodiscard]] Widget* find(const QString& name) const
    {
        return window->findChild<Widget*>(name);
    }

    void press(const QString& name) const { find<QAbstractButton>(name)->click(); }

    [[nodiscard]] ColumnView* addons() const { return find<ColumnView>(u"tvwAddons"_s); }

    /// The row of that name, below \a parent.
    [[nodiscard]] QModelIndex row(const QString& name, const QModelIndex& parent = {}) const
    {
        QAbstractItemModel& model = *addons()->model();
        if (model.canFetchMore(parent))
            model.fetchMore(parent);
        for (int i = 0; i < model.rowCount(parent); ++i)
            if (model.index(i, 0, parent).data().toString() == name)
                return model.index(i, 0, parent);
        return {};
    }

    /// As a user does: with the space bar.
    void tick(const QModelIndex& index) const
    {
        addons()->setCurrentIndex(index);
        QTest::keyClick(addons(), Qt::Key_Space);
    }

    [[nodiscard]] QString label(const QString& name) const { return find<QLabel>(name)->text(); }

    [[nodiscard]] QStringList column(const QString& list, int column) const
    {
        const QAbstractItemModel* model = find<ColumnView>(list)->model();
        QStringList cells;
        for (int i = 0; i < model->rowCount(); ++i)
            cells.append(model->index(i, column).data().toString());
        return cells;
    }

    [[nodiscard]] TreeSnapshot tree() const { return hashTree(world.host(u"prefix/drive_c"_s)); }

    [[nodiscard]] bool recorded(qint64 key)
    {
        return modDatabase_Addon::addon(world.database(), key).ok();
    }

    WindowWorld world;
    QPointer<frmRemove_Wizard> window;
};

} // namespace

class TestRemovalWizard : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void addon_goes_asToldBefore()
    {
        Shown shown;
        const TreeSnapshot before = shown.tree();
        const qint64 key = shown.installReplacing(u"pack-update"_s);
        shown.open();
        QCOMPARE(shown.label(u"lblHeader"_s), u"Select addons to remove."_s);
        QVERIFY(!shown.find<QAbstractButton>(u"cmdFinish"_s)->isEnabled());
        shown.press(u"cmdNext"_s); // off: nothing is ticked
        QCOMPARE(shown.window->currentStep(), 0);
        shown.tick(shown.row(u"pack-update"_s));
        shown.press(u"cmdNext"_s);
        QCOMPARE(shown.label(u"lblHeader"_s), u"Set removal options."_s);
        QCOMPARE(shown.find<QAbstractButton>(u"optRemovalMethod1"_s)->text(),
                 u"&Deleting the addon"_s);
        shown.press(u"cmdNext"_s);
        QCOMPARE(shown.label(u"lblHeader"_s), u"Review removal summary."_s);
        QCOMPARE(shown.column(u"lvwAddonRemovalDetails"_s, 2), QStringList(u"Delete"_s));
        const qsizetype back = shown.column(u"lvwAddonItems"_s, 1)
                                   .filter(u"the file that it had replaced comes back"_s)
                                   .size();
        QVERIFY(back > 0);
        QVERIFY(shown.label(u"lblFooter"_s).endsWith(u"Nothing has been removed yet."_s));

        shown.world.prompts.expect(u"Are you sure you want to remove this addon?"_s, Button::No);
        shown.press(u"cmdOK"_s);
        QVERIFY(shown.window->isVisible() && shown.recorded(key));
        shown.world.prompts.expect(u"Are you sure you want to remove this addon?"_s, Button::Yes);
        shown.press(u"cmdOK"_s);
        QTRY_VERIFY(!shown.window);
        QCOMPARE(
            shown.world.frame.calls,
            QStringList({u"recordsChanged"_s, u"showResults Removal Results - 'pack-update'"_s}));
        QVERIFY(shown.world.frame.results.count(resultgroup::processed) > 0);
        QCOMPARE(shown.world.frame.working, 0);
        QCOMPARE(differences(before, shown.tree(), Backups::Ignore), QStringList());
    }

    void otherTicks_resetTheWizard()
    {
        Shown shown;
        shown.world.install(u"barograph-gauges"_s);
        const qint64 second = shown.world.install(u"kestrel-manuals"_s);
        shown.open({second});
        QCOMPARE(shown.row(u"kestrel-manuals"_s).data(Qt::CheckStateRole).toInt(),
                 int(Qt::Checked));
        shown.press(u"cmdConfigureOptions"_s);
        shown.press(u"optRemovalMethod4"_s);
        shown.press(u"cmdRemovalSummary"_s);
        shown.press(u"cmdSelectAddons"_s);
        shown.press(u"cmdRemovalSummary"_s); // the same ticks: nothing is lost
        QCOMPARE(shown.column(u"lvwAddonRemovalDetails"_s, 2), QStringList(u"Remove records"_s));
        shown.press(u"cmdSelectAddons"_s);
        shown.tick(shown.row(u"barograph-gauges"_s));
        shown.press(u"cmdRemovalSummary"_s);
        QCOMPARE(shown.label(u"lblNotice"_s), u"Selections have changed. Wizard has been reset."_s);
        QCOMPARE(shown.column(u"lvwAddonRemovalDetails"_s, 2),
                 QStringList({u"Delete"_s, u"Delete"_s}));
    }

    void recordsAlone_leaveTheFiles()
    {
        Shown shown;
        const qint64 key = shown.world.install(u"harbour-scenery"_s);
        const TreeSnapshot installed = shown.tree();
        shown.open({key});
        shown.press(u"cmdConfigureOptions"_s);
        shown.press(u"optRemovalMethod4"_s);
        shown.press(u"cmdRemovalSummary"_s);
        for (const QString& fate : shown.column(u"lvwAddonItems"_s, 1))
            QCOMPARE(fate, u"stays; only its record goes"_s);
        shown.world.prompts.expect(u"Confirm Removal"_s, Button::Yes);
        shown.press(u"cmdFinish"_s);
        QTRY_VERIFY(!shown.window);
        QVERIFY(!shown.recorded(key));
        QCOMPARE(differences(installed, shown.tree(), Backups::Ignore), QStringList());
    }

    void singleFile_goesAlone()
    {
        Shown shown;
        const qint64 key = shown.world.install(u"kestrel-manuals"_s);
        const auto files = modDatabase_Addon::detailsOf(shown.world.database(), key);
        shown.open();
        const QModelIndex addon = shown.row(u"kestrel-manuals"_s);
        shown.addons()->expand(addon);
        shown.tick(shown.row(files->first().name, addon));
        QCOMPARE(addon.data(Qt::CheckStateRole).toInt(), int(Qt::PartiallyChecked));
        shown.world.prompts.expect(u"Confirm Removal"_s, Button::Yes);
        shown.press(u"cmdFinish"_s);
        QTRY_VERIFY(!shown.window);
        QVERIFY(shown.recorded(key));
        QCOMPARE(modDatabase_Addon::detailsOf(shown.world.database(), key)->size(),
                 files->size() - 1);
        QVERIFY(!shown.world.session->services().files.exists(files->first().location +
                                                              files->first().name));
    }

    void recreation_needsAFolder()
    {
        Shown shown;
        const qint64 first = shown.world.install(u"kestrel-manuals"_s);
        const qint64 second = shown.world.install(u"barograph-gauges"_s);
        shown.open({first, second});
        shown.press(u"cmdConfigureOptions"_s);
        QCOMPARE(shown.label(u"lblIntro"_s),
                 u"Customize the way the addons will be removed by making changes below."_s);
        shown.find<QComboBox>(u"cboAppliesTo"_s)->setCurrentIndex(1);
        shown.press(u"optRemovalMethod3"_s);
        QCOMPARE(shown.window->stepState(1), StepState::NeedsAttention);
        shown.press(u"cmdRemovalSummary"_s);
        QCOMPARE(shown.window->currentStep(), 1);
        QVERIFY(shown.label(u"lblNotice"_s).startsWith(u"Choose the folder"_s));
        delete shown.window.data();

        QVERIFY(QDir().mkpath(shown.world.host(u"kept"_s)));
        const QString kept = shown.world.windows(u"kept"_s) + u'\\';
        QVERIFY(shown.world.context().settings.setText(SettingKey::RecreateLastFolder, kept));
        shown.open({first, second});
        shown.press(u"cmdConfigureOptions"_s);
        shown.find<QComboBox>(u"cboAppliesTo"_s)->setCurrentIndex(1);
        shown.press(u"optRemovalMethod3"_s);
        if (!shown.find<QAbstractButton>(u"chkZipRecreatedFiles"_s)->isChecked())
            shown.press(u"chkZipRecreatedFiles"_s);
        shown.find<QComboBox>(u"cboAppliesTo"_s)->setCurrentIndex(0);
        QVERIFY(shown.find<QLabel>(u"lblMixed"_s)->isVisible());
        shown.press(u"cmdRemovalSummary"_s);
        QStringList actions = shown.column(u"lvwAddonRemovalDetails"_s, 2);
        actions.sort();
        QCOMPARE(actions,
                 QStringList({u"Delete"_s, u"Move to "_s + kept + u"kestrel-manuals - 1.zip"_s}));
        shown.world.prompts.expect(u"Are you sure you want to remove these addons?"_s, Button::Yes);
        shown.press(u"cmdFinish"_s);
        QTRY_VERIFY(!shown.window);
        QVERIFY(!shown.recorded(first) && !shown.recorded(second));
        QVERIFY(QFile::exists(shown.world.host(u"kept/kestrel-manuals - 1.zip"_s)));
    }

    void soundOfOthers_isAskedAbout_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QByteArray>("alias");
        QTest::newRow("No") << u"no"_s << QByteArray("alias=Owl\\sound");
        QTest::newRow("Yes") << u"yes"_s << QByteArray("alias=Owl\\sound");
        QTest::newRow("Yes with a new one") << u"new"_s << QByteArray("alias=Kestrel_K2\\sound");
    }

    void soundOfOthers_isAskedAbout()
    {
        QFETCH(const QString, answer);
        QFETCH(const QByteArray, alias);
        Shown shown;
        const qint64 owl = shown.installOwlAndWren();
        QVERIFY(owl > 0);
        shown.open({owl});
        ScriptedPrompts& prompts = shown.world.prompts;
        prompts.expect(u"Confirm Removal"_s, Button::Yes);
        if (answer == u"no") {
            prompts.expect(u"Confirm Sound Removal"_s, Button::No);
            prompts.expect(u"The addon was not removed properly."_s, Button::Ok);
        } else if (answer == u"yes") {
            prompts.expect(u"Nest Wren (sound)"_s, Button::Yes);
            prompts.expect(u"Confirm Panel Removal"_s, Button::Yes);
        } else {
            prompts.expectTicked(u"Confirm Sound Removal"_s, u"Kestrel K2"_s);
            prompts.expect(u"Confirm Panel Removal"_s, Button::Yes);
        }
        shown.press(u"cmdFinish"_s);
        QCOMPARE(shown.recorded(owl), answer == u"no");
        const QString sound = shown.world.context().global.simulatorFolder +
                              u"SimObjects\\Airplanes\\Wren\\sound\\sound.cfg"_s;
        QVERIFY(shown.world.session->services().files.read(sound, 1 << 16)->contains(alias));
        QCOMPARE(
            shown.world.frame.results.texts(resultgroup::specialActions)
                .contains(
                    u"Dependent sounds were updated to reference the replacement sound you selected."_s),
            answer == u"new");
    }

    void failedRemoval_isTriedAgain_fromItsResults()
    {
        Shown shown;
        const qint64 owl = shown.installOwlAndWren();
        QtStatus status(shown.world.prompts);
        frmControl control(shown.world.context(), status);
        wireRemoval(control, *shown.world.session);
        control.show();
        control.removeAddons({owl});
        const auto wizard = [&] {
            shown.window = qobject_cast<frmRemove_Wizard*>(control.tool(u"remove"_s));
            return shown.window.data();
        };
        const auto groups = [&](const QString& key) {
            QStringList names;
            const auto* list = control.tool(key)->findChild<ColumnView*>(u"tvwResults"_s);
            for (int row = 0; row < list->model()->rowCount(); ++row)
                names.append(list->model()->index(row, 0).data().toString());
            return names;
        };
        ScriptedPrompts& prompts = shown.world.prompts;
        prompts.expect(u"Confirm Removal"_s, Button::Yes);
        prompts.expect(u"Confirm Sound Removal"_s, Button::No);
        prompts.expect(u"The addon was not removed properly."_s, Button::Ok);
        QVERIFY(wizard());
        shown.press(u"cmdFinish"_s);
        QTRY_VERIFY(!control.tool(u"remove"_s));
        QVERIFY(shown.recorded(owl));
        QVERIFY(groups(u"results 1"_s).contains(u"Processed (0)"_s));

        control.tool(u"results 1"_s)->findChild<QAbstractButton*>(u"tryAgain"_s)->click();
        QVERIFY(wizard());
        QCOMPARE(shown.row(u"Owl"_s).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        prompts.expect(u"Confirm Removal"_s, Button::Yes);
        prompts.expectTicked(u"Confirm Sound Removal"_s, u"Kestrel K2"_s);
        prompts.expect(u"Confirm Panel Removal"_s, Button::Yes);
        shown.press(u"cmdFinish"_s);
        QTRY_VERIFY(!control.tool(u"remove"_s));
        QVERIFY(!shown.recorded(owl));
        QVERIFY(groups(u"results 2"_s).contains(u"Not Processed (0)"_s));
        QVERIFY(!control.tool(u"results 2"_s)->findChild<QAbstractButton*>(u"tryAgain"_s));
    }

    void mainWindow_opensOneWizard()
    {
        Shown shown;
        const qint64 key = shown.world.install(u"kestrel-manuals"_s);
        QtStatus status(shown.world.prompts);
        frmControl control(shown.world.context(), status);
        wireRemoval(control, *shown.world.session);
        wireBrowseFolders(control, *shown.world.session);
        control.show();
        control.command(u"mnuFile_RemoveAnAddon"_s);
        control.removeAddons({key});
        QCOMPARE(control.tools().size(), 1);
        shown.window = qobject_cast<frmRemove_Wizard*>(control.tools().constFirst());
        QCOMPARE(shown.row(u"kestrel-manuals"_s).data(Qt::CheckStateRole).toInt(),
                 int(Qt::Checked));
        control.command(u"mnuFile_FSO_Browse"_s);
        QCOMPARE(control.tools().size(), 2);
        QCOMPARE(control.tool(u"browse"_s)->windowTitle(), u"Browse Folders"_s);
    }

    void pictures()
    {
        Shown shown;
        QList<qint64> keys;
        for (const QString& name : {u"swift-aircraft"_s, u"harbour-scenery"_s, u"pack-update"_s})
            keys.append(shown.installReplacing(name));
        shown.open({keys[2]});
        shown.addons()->expand(shown.row(u"pack-update"_s));
        screenshot(*shown.window, u"remove-select-1280x800"_s, {1280, 800});
        screenshot(*shown.window, u"remove-select-800x600"_s, {800, 600});
        shown.tick(shown.row(u"harbour-scenery"_s));
        shown.press(u"cmdNext"_s);
        shown.press(u"optRemovalMethod3"_s);
        screenshot(*shown.window, u"remove-options-1280x800"_s, {1280, 800});
        shown.press(u"optRemovalMethod2"_s);
        screenshot(*shown.window, u"remove-options-800x600"_s, {800, 600});
        shown.press(u"cmdNext"_s);
        screenshot(*shown.window, u"remove-summary-1280x800"_s, {1280, 800});
        screenshot(*shown.window, u"remove-summary-800x600"_s, {800, 600});
    }
};

VT_TEST_CLASS(TestRemovalWizard)

} // namespace vt::test

#include "test_removalwizard.moc"
