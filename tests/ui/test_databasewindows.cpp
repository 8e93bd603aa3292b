// The two windows on the records themselves: the history under its filters, and the optimisation
// with its questions.
#include "addondb/AddonDatabase.h"
#include "addondb/forms/DatabaseCommands.h"
#include "addondb/forms/frmAddon_History.h"
#include "addondb/forms/frmDatabase_Optimize.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "support/Rows.h"
#include "support/TestMain.h"
#include "ui/AddonLists.h"
#include "ui/Screenshot.h"
#include "ui/WindowWorld.h"
#include "ui/forms/AddonListCommands.h"
#include "ui/forms/frmWorkWithAddons.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// Four installations of other times, kinds and fates.
struct HistoryWorld : WindowWorld
{
    HistoryWorld()
    {
        const QDateTime now = QDateTime::currentDateTime();
        add(u"Just now"_s, now, Category::Aircraft);
        add(u"Cabinet"_s, now.addMonths(-2), Category::Scenery);
        add(u"Removed"_s, now.addMonths(-5), Category::Scenery);
        add(u"Old"_s, now.addYears(-2), Category::AI_Flight_Plans);
        must(modDatabase_Addon::setStatus(
            database(), keys[u"Cabinet"_s], InstallationStatus::FileCabinet));
        must(modDatabase_Addon::setDateUninstalled(
            database(), keys[u"Removed"_s], dates[u"Removed"_s], now));
        must(modDatabase_Addon::deleteDescription(database(), keys[u"Removed"_s]));
        must(modDatabase_Addon::deleteMaster(database(), keys[u"Removed"_s]));
        window = std::make_unique<frmAddon_History>(*session, frame);
        window->Form_PrepareToShow();
        window->resize(1280, 800);
        window->show();
        list = window->findChild<ColumnView*>(u"lvwHistory"_s);
    }

    void add(const QString& name, const QDateTime& date, Categories categories)
    {
        AddonRecord addon;
        addon.name = name;
        addon.dateInstalled = date;
        addon.categories = categories;
        addon.sourceName = u"C:\\Downloads\\"_s + name + u".zip"_s;
        addon.sourceSize = 4'000'000;
        addon.description = u"About "_s + name;
        must(modDatabase_Addon::createAddon(database(), addon));
        keys.insert(name, addon.key);
        dates.insert(name, addon.dateInstalled);
    }

    static void must(const Result& result) { QVERIFY2(result, qUtf8Printable(result.text)); }

    void choose(const char16_t* box, const QString& text) const
    {
        auto* combo = window->findChild<QComboBox*>(QStringView(box).toString());
        QVERIFY2(combo->findText(text) >= 0, qUtf8Printable(text));
        combo->setCurrentText(text);
    }

    [[nodiscard]] QStringList names() const
    {
        QStringList shown;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            shown.append(list->model()->index(row, 0).data().toString());
        return shown;
    }

    void select(const QString& name) const
    {
        list->clearSelection();
        list->setCurrentIndex(list->model()->index(int(names().indexOf(name)), 0));
    }

    QHash<QString, qint64> keys;
    QHash<QString, QDateTime> dates;
    std::unique_ptr<frmAddon_History> window;
    ColumnView* list = nullptr;
};

} // namespace

class TestDatabaseWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void history_filters()
    {
        HistoryWorld world;
        const Rows<QString, QString, QString, QString> rows = {
            {"all",
             u"Show All Addons"_s,
             u"Show All Categories"_s,
             u"Show All Dates"_s,
             u"Just now|Cabinet|Removed|Old"_s},
            {"installed",
             u"Show Only Installed Addons"_s,
             u"Show All Categories"_s,
             u"Show All Dates"_s,
             u"Just now|Old"_s},
            {"cabinet",
             u"Show Only File Cabinet Addons"_s,
             u"Show All Categories"_s,
             u"Show All Dates"_s,
             u"Cabinet"_s},
            {"removed",
             u"Show Only Removed Addons"_s,
             u"Show All Categories"_s,
             u"Show All Dates"_s,
             u"Removed"_s},
            {"category",
             u"Show All Addons"_s,
             u"Show Only Scenery"_s,
             u"Show All Dates"_s,
             u"Cabinet|Removed"_s},
            {"flight plans",
             u"Show All Addons"_s,
             u"Show Only A.I. Flight Plans"_s,
             u"Show All Dates"_s,
             u"Old"_s},
            {"today",
             u"Show All Addons"_s,
             u"Show All Categories"_s,
             u"Show Addons Installed Today"_s,
             u"Just now"_s},
            {"three months",
             u"Show All Addons"_s,
             u"Show All Categories"_s,
             u"Show Addons Installed Over The Past 3 Months"_s,
             u"Just now|Cabinet"_s},
            {"all three",
             u"Show Only Removed Addons"_s,
             u"Show Only Scenery"_s,
             u"Show Addons Installed Over The Past 6 Months"_s,
             u"Removed"_s},
            {"none",
             u"Show Only Removed Addons"_s,
             u"Show Only Videos"_s,
             u"Show Addons Installed This Week"_s,
             QString()},
        };
        for (const auto& [status, category, date, names] : rows) {
            world.choose(u"cboStatus", status);
            world.choose(u"cboCategory", category);
            world.choose(u"cboDate", date);
            QCOMPARE(world.names(), names.split(u'|', Qt::SkipEmptyParts));
        }
        QVERIFY(world.list->findChild<QPushButton*>(u"cmdEmptyPlace"_s)->isHidden());
        screenshot(*world.window, u"history-nothing-800x600"_s, {780, 480});
    }

    void periods_beginWhere()
    {
        const QDateTime now(QDate(2026, 3, 31), QTime(12, 0)); // a Tuesday
        using historyfilter::Period;
        const Rows<Period, Qt::DayOfWeek, QDate> rows = {
            {"today", Period::Today, Qt::Monday, QDate(2026, 3, 31)},
            {"week from Monday", Period::ThisWeek, Qt::Monday, QDate(2026, 3, 30)},
            {"week from Sunday", Period::ThisWeek, Qt::Sunday, QDate(2026, 3, 29)},
            {"week from Tuesday", Period::ThisWeek, Qt::Tuesday, QDate(2026, 3, 31)},
            {"week from Wednesday", Period::ThisWeek, Qt::Wednesday, QDate(2026, 3, 25)},
            {"month", Period::ThisMonth, Qt::Monday, QDate(2026, 3, 1)},
            {"a shorter month", Period::SixMonths, Qt::Monday, QDate(2025, 9, 30)},
            {"year", Period::Year, Qt::Monday, QDate(2025, 3, 31)},
        };
        for (const auto& [period, firstDay, begin] : rows)
            QCOMPARE(historyfilter::since(period, now, firstDay), begin.startOfDay());
    }

    void history_describesOpensAndForgets()
    {
        HistoryWorld world;
        auto* erase = world.window->findChild<QPushButton*>(u"cmdDelete"_s);
        auto* open = world.window->findChild<QPushButton*>(u"cmdOpen"_s);
        world.select(u"Old"_s);
        QCOMPARE(world.window->findChild<QPlainTextEdit*>(u"txtDescription"_s)->toPlainText(),
                 u"About Old"_s);
        QVERIFY(!erase->isEnabled());
        open->click();
        QCOMPARE(world.frame.calls,
                 QStringList{u"workWithAddons "_s + QString::number(world.keys[u"Old"_s])});
        world.select(u"Removed"_s);
        screenshot(*world.window, u"history"_s, {1280, 800});
        QVERIFY(!open->isEnabled());
        world.prompts.expect(u"delete this entry of the history?"_s, Button::No);
        erase->click();
        QCOMPARE(world.names().size(), 4);
        world.list->selectAll(); // those that are there stay
        world.prompts.expect(u"delete this entry of the history?"_s, Button::Yes);
        erase->click();
        QCOMPARE(world.names(), QStringList({u"Just now"_s, u"Cabinet"_s, u"Old"_s}));
        world.window->recordsChanged();
        QCOMPARE(world.names().size(), 3);
    }

    /// By the real main window: one list under many names, the hook, every tool closed.
    void mainWindow_opensThem()
    {
        WindowWorld world;
        const qint64 gauges = world.install(u"barograph-gauges"_s);
        const qint64 manuals = world.install(u"kestrel-manuals"_s);
        QtStatus status(world.prompts);
        frmControl control(world.context(), status);
        wireAddonLists(control, *world.session);
        wireDatabaseTools(control, *world.session);
        control.showAtStart();
        for (const QString& name : addonListControls())
            QVERIFY2(control.hasCommand(name), qUtf8Printable(name));
        control.command(u"mnuWorkWithPanelAddons"_s);
        control.command(u"mnuAddonHistory"_s);
        control.workWithAddons({manuals});
        QCOMPARE(control.openTools(), 2);
        auto* list = control.findChild<frmWorkWithAddons*>();
        QCOMPARE(list->windowTitle(), u"All Addons"_s);
        QCOMPARE(list->manager().selectedKeys(), QList<qint64>{manuals});
        QVERIFY(modDatabase_Addon::setName(world.database(), gauges, u"Renamed"_s));
        control.recordsChanged();
        QCOMPARE(list->manager().model().at(0).addon.name, u"Renamed"_s);
        control.resize(1280, 800);
        screenshot(control, u"main-with-list"_s, {1280, 800});
        frmDatabase_Optimize window(*world.session, control);
        world.prompts.expect(u"Close open windows?"_s, Button::Ok);
        window.optimize();
        QCOMPARE(control.openTools(), 0);
        QVERIFY(window.findChild<QLabel*>(u"lblSaid"_s)
                    ->text()
                    .startsWith(u"The database was optimized."_s));
    }

    void optimisation_asksAndTells()
    {
        WindowWorld world;
        world.install(u"kestrel-manuals"_s);
        frmDatabase_Optimize window(*world.session, world.frame);
        window.show();
        auto* repair = window.findChild<QCheckBox*>(u"chkRepair"_s);
        auto* ok = window.findChild<QPushButton*>(u"cmdOK"_s);
        const QLabel* said = window.findChild<QLabel*>(u"lblSaid"_s);
        screenshot(window, u"optimize"_s);

        const QString warning =
            u"The thorough repair option should be used only if Vantrel for FS X's database becomes damaged"_s;
        world.prompts.expect(warning, Button::No);
        repair->click();
        QVERIFY(!repair->isChecked());

        world.frame.toolsOpen = 2;
        world.prompts.expect(u"Vantrel for FS X Close open windows?"_s, Button::Cancel);
        ok->click();
        QCOMPARE(world.frame.calls, QStringList());
        QCOMPARE(said->text(), QString());
        QCOMPARE(
            world.prompts.asked.constLast().text,
            u"All other windows must be closed before optimizing the database.\nSelect OK to close them now or select Cancel to abort."_s);

        QVERIFY(world.context().settings.setNumber(SettingKey::DatabaseHistory, 7));
        world.prompts.expect(u"Close open windows?"_s, Button::Ok);
        ok->click();
        QVERIFY2(said->text().startsWith(u"The database was optimized."_s),
                 qUtf8Printable(said->text()));
        QCOMPARE(world.frame.calls, QStringList({u"command mnuCloseAll"_s, u"recordsChanged"_s}));
        QCOMPARE(world.frame.everBegun, 1);
        QCOMPARE(world.context().settings.number(SettingKey::DatabaseHistory), 0);
        QCOMPARE(modDatabase_Addon::addons(world.database())->size(), 1);

        world.prompts.expect(warning, Button::Yes);
        repair->click();
        ok->click();
        QVERIFY2(said->text().startsWith(u"The database was repaired and optimized."_s),
                 qUtf8Printable(said->text()));

        window.findChild<QCheckBox*>(u"chkAutoOptimize"_s)->click();
        QVERIFY(!world.context().settings.flag(SettingKey::AutoOptimize));
    }
};

VT_TEST_CLASS(TestDatabaseWindows)

} // namespace vt::test

#include "test_databasewindows.moc"
