// The list of add-ons over a real database and simulator: filters, sorting, every command of its
// menu, search, layout.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "shell/Settings.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "ui/AddonLists.h"
#include "ui/Screenshot.h"
#include "ui/WindowWorld.h"
#include "ui/forms/frmAddon_Edit.h"
#include "ui/forms/frmWorkWithAddons.h"

#include <QApplication>
#include <QBuffer>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

const QStringList samples{u"harbour-scenery"_s,
                          u"barograph-gauges"_s,
                          u"kestrel-repaint"_s,
                          u"kestrel-manuals"_s,
                          u"swift-aircraft"_s};

/// The list as the main window shows it, over as many samples as are asked for.
struct ListWorld : WindowWorld
{
    explicit ListWorld(qsizetype addons = samples.size())
    {
        before = hashTree(demo.simulatorHost);
        for (const QString& name : samples.first(addons))
            keys.append(install(name));
        open();
    }

    void open()
    {
        window = std::make_unique<frmWorkWithAddons>(*session, frame);
        window->Form_PrepareToShow();
        window->resize(1280, 800);
        window->show();
        QApplication::setActiveWindow(window.get());
        window->manager().chooseFolder = [this](const QString& caption, const QString&) {
            folderCaption = caption;
            return windows(u"chosen"_s) + u'\\';
        };
        QApplication::processEvents();
    }

    template <typename T> [[nodiscard]] T* child(const char16_t* name) const
    {
        return window->findChild<T*>(QStringView(name).toString());
    }

    [[nodiscard]] QList<qint64> shownKeys() const
    {
        const AddonTableModel& model = window->manager().model();
        QList<qint64> shown;
        for (int row = 0; row < model.rowCount(); ++row)
            shown.append(model.at(row).addon.key);
        return shown;
    }

    /// The context menu, as the menu key opens it.
    [[nodiscard]] QMenu* menu()
    {
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {5, 5}, {5, 5});
        QApplication::sendEvent(window->list().viewport(), &event);
        const auto menus = window->list().findChildren<QMenu*>();
        return menus.isEmpty() ? nullptr : menus.last();
    }

    void choose(const QString& caption)
    {
        QMenu* shown = menu();
        QVERIFY(shown);
        for (QAction* action : shown->actions()) {
            if (action->text() != caption)
                continue;
            QVERIFY2(action->isEnabled(), qUtf8Printable(caption));
            action->trigger();
            shown->close();
            return;
        }
        QFAIL(qUtf8Printable(u"no entry "_s + caption));
    }

    TreeSnapshot before; ///< the simulator before anything was installed
    QList<qint64> keys;
    std::unique_ptr<frmWorkWithAddons> window;
    QString folderCaption;
};

} // namespace

class TestAddonListWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void menuEntries_showTheirRecords()
    {
        ListWorld world;
        QVERIFY(modDatabase_Addon::setStatus(
            world.database(), world.keys[3], InstallationStatus::FileCabinet));
        world.window->recordsChanged();
        for (const QString& control : {u"mnuInstalledAddons"_s,
                                       u"mnuFileCabinet"_s,
                                       u"mnuAddons_WorkWithAircraftAddons"_s,
                                       u"mnuAircraftSkinsAndRepaints"_s,
                                       u"mnuWorkWithPanelAddons"_s,
                                       u"mnuSceneryWorkWith"_s,
                                       u"mnuWorkWithSoundAddons"_s,
                                       u"mnuVideos"_s,
                                       u"mnuWorkWithAllAddons"_s}) {
            QVERIFY(world.window->showList(control));
            QList<qint64> expected;
            const auto rows = addonRows(world.database(), addonListOf(control)->filter);
            for (const AddonRow& row : *rows)
                expected.append(row.addon.key);
            QList<qint64> shown = world.shownKeys();
            std::sort(shown.begin(), shown.end());
            QCOMPARE(shown, expected);
            QCOMPARE(world.child<QLabel>(u"lblCount")->text(),
                     QString::number(expected.size()) + u" of 5"_s);
        }
        QCOMPARE(world.shownKeys().size(), 5);
        QVERIFY(!world.window->showList(u"mnuFile_MainExit"_s));
    }

    void everyColumn_isSorted()
    {
        ListWorld world;
        ColumnView& list = world.window->list();
        const AddonTableModel& model = world.window->manager().model();
        for (int column = 1; column < int(AddonColumn::Count); ++column) {
            for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                list.sortByColumn(column, order);
                QList<QVariant> keys;
                for (int row = 0; row < model.rowCount(); ++row)
                    keys.append(model.index(row, column).data(Qt::EditRole));
                const auto inOrder =
                    CSuperSort::Order(keys,
                                      addonColumnDataType(static_cast<AddonColumn>(column)),
                                      order == Qt::AscendingOrder ? SortDirection::Ascending
                                                                  : SortDirection::Descending);
                for (size_t i = 0; i < inOrder.size(); ++i)
                    QCOMPARE(keys[inOrder[i]], keys[qsizetype(i)]);
            }
        }
        list.sortByColumn(int(AddonColumn::Size), Qt::DescendingOrder);
        const qint64 largest = model.at(0).addon.key;
        list.setCurrentIndex(model.index(0, 1));
        list.sortByColumn(int(AddonColumn::Order), Qt::AscendingOrder);
        QCOMPARE(world.shownKeys(), world.keys);
        QCOMPARE(world.window->manager().selectedKeys(), QList<qint64>{largest});
    }

    void menu_inItsOrder()
    {
        ListWorld world(1);
        QStringList texts;
        for (const QAction* action : world.menu()->actions())
            if (!action->isSeparator())
                texts.append(action->text());
        QCOMPARE(texts.join(u'|'),
                 u"&Delete|Move to File &Cabinet|Move to Folder...|Move to Zip File...|"
                 u"Copy to &Folder...|Copy to &Zip File...|Remove Addon Record&s|&Reinstall|"
                 u"Validate|Rena&me...|Remove Selected Grou&p(s)|Wor&k With Addon(s)|Select &All|"
                 u"Select &None|In&vert Selection|A&uto-size Columns|Customize Co&lumns...|"
                 u"Sho&w Icons"_s);
    }

    void removal_untilAllIsAsBefore_data()
    {
        QTest::addColumn<QStringList>("commands"); ///< one after the other, on every add-on
        QTest::addColumn<QString>("left");         ///< below "chosen"
        const QString erase = u"&Delete"_s;
        QTest::newRow("delete") << QStringList{erase} << QString();
        QTest::newRow("cabinet, then delete")
            << QStringList{u"Move to File &Cabinet"_s, erase} << QString();
        QTest::newRow("move to folder") << QStringList{u"Move to Folder..."_s} << u"folder"_s;
        QTest::newRow("move to zip") << QStringList{u"Move to Zip File..."_s} << u"zip"_s;
        QTest::newRow("copy, then delete")
            << QStringList{u"Copy to &Folder..."_s, erase} << u"folder"_s;
        QTest::newRow("copy to zip, then delete")
            << QStringList{u"Copy to &Zip File..."_s, erase} << u"zip"_s;
    }

    void removal_untilAllIsAsBefore()
    {
        QFETCH(const QStringList, commands);
        QFETCH(const QString, left);
        ListWorld world(2);
        for (const QString& command : commands) {
            world.window->list().selectAll();
            world.prompts.expect(command.startsWith(u"Copy"_s) ? u"want to copy these addons?"_s
                                                               : u"want to remove these addons?"_s,
                                 Button::Yes);
            world.choose(command);
            world.window->recordsChanged();
        }
        QCOMPARE(world.window->manager().model().total(), 0);
        QCOMPARE(differences(world.before, hashTree(world.demo.simulatorHost), Backups::Ignore),
                 QStringList());
        QCOMPARE(world.frame.calls.filter(u"recordsChanged"_s).size(),
                 1 + (commands.size() > 1 && left.isEmpty()));
        QCOMPARE(world.frame.working, 0);
        const QStringList made =
            QDir(world.host(u"chosen"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
        QCOMPARE(made.size(), left.isEmpty() ? 0 : 2);
        QCOMPARE(made.filter(u".zip"_s).size(), left == u"zip"_s ? 2 : 0);
    }

    void recordsAlone_andDeclined()
    {
        ListWorld world(1);
        const TreeSnapshot installed = hashTree(world.demo.simulatorHost);
        world.prompts.expect(u"want to remove this addon?"_s, Button::No);
        QTest::keyClick(&world.window->list(), Qt::Key_Delete);
        QCOMPARE(world.frame.calls, QStringList());
        world.prompts.expect(u"The files stay in the simulator"_s, Button::Yes);
        world.choose(u"Remove Addon Record&s"_s);
        QCOMPARE(differences(installed, hashTree(world.demo.simulatorHost)), QStringList());
        QCOMPARE(world.frame.calls.size(), 2); // told, results
        QVERIFY(!modDatabase_Addon::addon(world.database(), world.keys[0]));
    }

    void rename_withF2()
    {
        ListWorld world(2);
        ColumnView& list = world.window->list();
        QTRY_VERIFY(list.hasFocus());
        QTest::keyClick(&list, Qt::Key_F2);
        auto* editor = list.viewport()->findChild<QLineEdit*>();
        QVERIFY(editor);
        editor->setText(u"Another Name"_s);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(world.frame.calls, QStringList{u"recordsChanged"_s});
        QCOMPARE(modDatabase_Addon::addon(world.database(), world.keys[0])->name,
                 u"Another Name"_s);
        world.window->recordsChanged();
        QCOMPARE(world.window->manager().selectedKeys(), QList<qint64>{world.keys[0]});
    }

    void search_narrowsAsYouType()
    {
        ListWorld world;
        auto* search = world.child<QLineEdit>(u"txtSearch");
        QTest::keyClick(world.window.get(), Qt::Key_F, Qt::ControlModifier);
        QTRY_VERIFY(search->hasFocus());
        QTest::keyClicks(search, u"KESTREL"_s);
        QCOMPARE(world.child<QLabel>(u"lblCount")->text(), u"2 of 5"_s);
        QTest::keyClicks(search, u" nowhere"_s);
        auto* all = world.window->list().findChild<QPushButton*>(u"cmdEmptyPlace"_s);
        QVERIFY(all->isVisible());
        all->click();
        QCOMPARE(world.shownKeys().size(), 5);
        QVERIFY(search->text().isEmpty());
    }

    void emptyList_offersToInstall()
    {
        ListWorld world(0);
        auto* install = world.window->list().findChild<QPushButton*>(u"cmdEmptyPlace"_s);
        QVERIFY(install->isVisible());
        install->click();
        QCOMPARE(world.frame.calls, QStringList{u"installAddon "_s});
        screenshot(*world.window, u"addons-empty"_s, {800, 600});
    }

    void droppedFile_isInstalled()
    {
        ListWorld world(0);
        const QString archive = world.sample(u"kestrel-manuals"_s);
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(world.host(u"kestrel-manuals.zip"_s))});
        QDropEvent drop({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject*>(world.window.get())->event(&drop);
        QTRY_COMPARE(world.frame.calls, QStringList{u"installAddon "_s + archive});
    }

    void details_tellFilesAndTotals()
    {
        ListWorld world;
        QVERIFY(QFile::remove(world.demo.simulatorHost + u"/Gauges/Turnrate.gau"_s));
        world.window->selectAddons({world.keys[1]});
        auto* files = world.child<ColumnView>(u"lvwAddonFiles");
        const auto missing = [&] {
            QStringList names;
            for (int row = 0; row < files->model()->rowCount(); ++row)
                if (files->model()->index(row, 1).data().toString() == "missing"_L1)
                    names.append(files->model()->index(row, 0).data().toString());
            return names;
        };
        QTRY_COMPARE(missing(), QStringList{u"Turnrate.gau"_s});
        world.window->list().selectAll();
        QTRY_COMPARE(world.child<QLabel>(u"lblAddonName")->text(), u"5 add-ons selected"_s);
        QVERIFY(world.status.texts.constLast().startsWith(u"Secondary|5 add-ons, "_s));
    }

    /// A click while rows are loaded, a click inside a click, an analysis inside an analysis.
    void analysis_isNotEnteredAgain()
    {
        ListWorld world(2);
        CControlMgr_lvwAddons& manager = world.window->manager();
        ColumnView& list = world.window->list();
        int analyses = 0;
        QObject::connect(&manager, &CControlMgr_lvwAddons::analyzed, world.window.get(), [&] {
            ++analyses;
            manager.lvwAddons_Analyze();
            Q_EMIT list.clicked(list.currentIndex());
        });
        QTest::mouseClick(list.viewport(),
                          Qt::LeftButton,
                          {},
                          list.visualRect(list.model()->index(1, 1)).center());
        QCOMPARE(analyses, 2); // of the other selection, and of the click
        bool loading = false;
        int whileLoading = 0;
        world.status.told = [&](const QString& text) {
            if (text != "Building display..."_L1 || loading)
                return;
            loading = true;
            const int before = analyses;
            list.selectAll();
            Q_EMIT list.clicked(list.currentIndex());
            world.window->recordsChanged(); // would load in the midst of loading
            whileLoading = analyses - before;
        };
        world.window->recordsChanged();
        world.status.told = {};
        QVERIFY(loading);
        QCOMPARE(whileLoading, 0);
        QCOMPARE(world.shownKeys().size(), 2);
        QCOMPARE(manager.selectedKeys().size(), 2);
    }

    void edit_changesTheRecord()
    {
        ListWorld world(1);
        QTRY_VERIFY(world.child<QPushButton>(u"cmdEdit")->isVisible());
        world.child<QPushButton>(u"cmdEdit")->click();
        auto* dialog = world.window->findChild<frmAddon_Edit*>();
        QVERIFY(dialog);
        dialog->findChild<QLineEdit*>(u"txtName"_s)->setText(u"  "_s);
        QCOMPARE(dialog->findChild<QLabel*>(u"lblProblem"_s)->text(), u"An add-on needs a name."_s);
        dialog->findChild<QLineEdit*>(u"txtName"_s)->setText(u"Harbours"_s);
        dialog->findChild<QComboBox*>(u"cboRating"_s)->setCurrentIndex(4);
        dialog->findChild<QPlainTextEdit*>(u"txtDescription"_s)->setPlainText(u"Two bays."_s);
        screenshot(*dialog, u"addon-edit"_s);
        dialog->accept();
        const auto addon = modDatabase_Addon::addon(world.database(), world.keys[0]);
        QCOMPARE(addon->name, u"Harbours"_s);
        QCOMPARE(addon->rating, 4);
        QCOMPARE(addon->description, u"Two bays."_s);
    }

    void layout_comesBack()
    {
        ListWorld world;
        ColumnView& list = world.window->list();
        list.arrange({{{int(AddonColumn::Size), true}, {int(AddonColumn::AddonName), true}},
                      int(AddonColumn::Size),
                      true});
        list.setColumnHidden(int(AddonColumn::Authors), true);
        world.child<QToolButton>(u"cmdDetails")->setChecked(false);
        const QList<qint64> order = world.shownKeys();
        world.window->close();
        world.restart();
        (void)world.window.release(); // deleted by its closing
        world.open();
        QCOMPARE(world.shownKeys(), order);
        QVERIFY(world.window->list().isColumnHidden(int(AddonColumn::Authors)));
        QVERIFY(!world.child<QToolButton>(u"cmdDetails")->isChecked());
    }

    void pictures()
    {
        ListWorld world;
        QVERIFY(modDatabase_Addon::setAuthors(world.database(), world.keys[0], u"A. Mason"_s));
        QVERIFY(modDatabase_Addon::setRating(world.database(), world.keys[0], 4));
        QVERIFY(modDatabase_Addon::setDescription(
            world.database(),
            world.keys[0],
            u"Two harbours with their breakwaters, cranes and ferries, and night lights."_s));
        QImage picture(320, 180, QImage::Format_RGB32);
        picture.fill(QColor(70, 110, 160));
        QBuffer bytes;
        QVERIFY(picture.save(&bytes, "JPG"));
        writeHostFile(QString::fromUtf8(world.context().services.files.hostPath(
                          pictures::addonPicture(world.context().global, world.keys[0]))),
                      bytes.data());
        world.context().services.files.newOperation();
        world.window->recordsChanged();
        world.window->selectAddons({world.keys[0]});
        QTRY_VERIFY(world.child<QTabWidget>(u"tabDetails")->isVisible());
        QTRY_VERIFY(world.child<QLabel>(u"picAddon")->isVisible());
        screenshot(*world.window, u"addons"_s, {1280, 800});
        screenshot(*world.window, u"addons-800x600"_s, {780, 480});
        QMenu* menu = world.menu();
        QCOMPARE(screenshot(*menu, u"addons-menu"_s).size(), 2);
        menu->close();
    }
};

VT_TEST_CLASS(TestAddonListWindow)

} // namespace vt::test

#include "test_addonlist.moc"
