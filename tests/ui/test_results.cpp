// The results window: tens of thousands of entries, problems alone, the filter, copying, reports.
#include "shell/Settings.h"
#include "shell/forms/frmProcessResults.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

Results manyResults(int files)
{
    Results results = Results::forInstallation();
    const QString phrase = u" was installed."_s;
    for (int i = 0; i < files; ++i)
        results.add(resultgroup::installed,
                    u"C:\\FSX\\Addon Scenery\\Harbour\\texture\\tile_"_s + QString::number(i) +
                        u".bmp"_s,
                    phrase);
    results.add(resultgroup::notInstalled,
                u"C:\\FSX\\Effects\\fx_a.fx"_s,
                u" was NOT installed because the existing file was more recent."_s);
    results.add(resultgroup::specialActions, u"Scenery library was updated."_s);
    results.add(resultgroup::failedSpecialActions,
                u"Could not setup a picture for the addon <&>"_s);
    return results;
}

struct Shown
{
    explicit Shown(int files, const QList<NextStep>& steps = {})
        : window(world.context(), u"Installation Results - 'Harbour'"_s, manyResults(files), steps)
    {
        window.Form_PrepareToShow();
        window.resize(1000, 560);
        window.show();
        QApplication::setActiveWindow(&window);
    }

    [[nodiscard]] QStringList groups() const
    {
        QStringList names;
        for (int i = 0; i < list()->model()->rowCount(); ++i)
            names.append(list()->model()->index(i, 0).data().toString());
        return names;
    }

    [[nodiscard]] QTreeView* list() const { return window.findChild<QTreeView*>(u"tvwResults"_s); }

    template <typename Widget> [[nodiscard]] Widget* find(const QString& name) const
    {
        return window.findChild<Widget*>(name);
    }

    WindowWorld world;
    frmProcessResults window;
};

/// Takes what would be opened on the desktop.
class Opened : public QObject
{
    Q_OBJECT

public:
    Opened() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }

    ~Opened() override { QDesktopServices::unsetUrlHandler(u"file"_s); }

    Q_INVOKABLE void open(const QUrl& url) { paths.append(url.toLocalFile()); }

    QStringList paths;
};

} // namespace

class TestResults : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void groups_keepTheirOrder_andFilter()
    {
        const Shown shown(5);
        QCOMPARE(shown.groups(),
                 QStringList({u"Installed (5)"_s,
                              u"Not Installed (1)"_s,
                              u"Special Actions (1)"_s,
                              u"Failed Special Actions (1)"_s}));
        shown.find<QLineEdit>(u"txtFilter"_s)->setText(u"TILE_3 installed"_s);
        QCOMPARE(shown.groups(), QStringList({u"Installed (1 of 5)"_s}));
        shown.find<QLineEdit>(u"txtFilter"_s)->clear();
        shown.find<QCheckBox>(u"chkProblemsOnly"_s)->click();
        QCOMPARE(shown.groups(),
                 QStringList({u"Not Installed (1)"_s, u"Failed Special Actions (1)"_s}));
    }

    void report_asPageAndText()
    {
        Shown shown(3);
        const Opened opened;
        shown.find<QCheckBox>(u"chkProblemsOnly"_s)->click();
        QVERIFY(QDir().mkpath(shown.world.host(u"reports"_s)));
        shown.window.saveReport(shown.world.windows(u"reports/first.htm"_s));
        const QByteArray page = readHostFile(shown.world.host(u"reports/first.htm"_s));
        QVERIFY2(page.contains("Could not setup a picture for the addon &lt;&amp;&gt;"), page);
        QVERIFY2(page.contains("Total: 2 items") && !page.contains("tile_1"), page);
        QCOMPARE(opened.paths, QStringList({shown.world.host(u"reports/first.htm"_s)}));

        Settings& settings = shown.world.context().settings;
        QVERIFY(settings.setFlag(SettingKey::ReportAutoOpen, false));
        QVERIFY(settings.setFlag(SettingKey::ReportPromptForPath, false));
        QVERIFY(settings.setNumber(SettingKey::ReportMethod, 1));
        shown.find<QCheckBox>(u"chkProblemsOnly"_s)->click();
        shown.find<QPushButton>(u"cmdSave"_s)->click();
        const QByteArray text = readHostFile(shown.world.host(u"reports/Report.txt"_s));
        QVERIFY2(text.contains("tile_2.bmp was installed.") && text.contains("Total: 6 items"),
                 text);
        QCOMPARE(opened.paths.size(), 1);
        QVERIFY(shown.find<QLabel>(u"lblSaid"_s)->text().startsWith(u"Report saved to '"_s));
    }

    void entries_areCopied_andTheirFolderOpened()
    {
        const Shown shown(3);
        const Opened opened;
        const QAbstractItemModel* model = shown.list()->model();
        const QModelIndex group = model->index(0, 0);
        shown.list()->setCurrentIndex(model->index(1, 0, group));
        QTest::keySequence(shown.list(), QKeySequence::Copy);
        QCOMPARE(QApplication::clipboard()->text(),
                 u"C:\\FSX\\Addon Scenery\\Harbour\\texture\\tile_1.bmp was installed."_s);
        // The folder itself is not there: the nearest one above it opens.
        shown.find<QPushButton>(u"cmdOpenFolder"_s)->click();
        QCOMPARE(opened.paths.size(), 1);
        QVERIFY2(opened.paths[0].startsWith(shown.world.host(u"prefix/drive_c"_s)),
                 qPrintable(opened.paths[0]));
        shown.list()->selectionModel()->setCurrentIndex(
            group, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        QVERIFY(!shown.find<QPushButton>(u"cmdOpenFolder"_s)->isEnabled());
        QTest::keySequence(shown.list(), QKeySequence::Copy);
        QCOMPARE(QApplication::clipboard()->text().count(u'\n'), 3);
    }

    void sorting_staysWithinGroups()
    {
        const Shown shown(3);
        shown.list()->sortByColumn(ResultsModel::FileColumn, Qt::DescendingOrder);
        const QModelIndex installed = shown.list()->model()->index(0, 0);
        QCOMPARE(installed.data().toString(), u"Installed (3)"_s);
        QCOMPARE(shown.list()->model()->index(0, 0, installed).data().toString(), u"tile_2.bmp"_s);
        shown.list()->setCurrentIndex(shown.list()->model()->index(0, 0, installed));
        shown.list()->sortByColumn(ResultsModel::FileColumn, Qt::AscendingOrder);
        QCOMPARE(shown.list()->currentIndex().row(), 2);
        shown.find<QLineEdit>(u"txtFilter"_s)->setText(u"nothing like it"_s);
        shown.find<QPushButton>(u"cmdEmptyPlace"_s)->click();
        QCOMPARE(shown.groups().size(), 4);
    }

    void nextSteps_areButtons()
    {
        int flown = 0;
        int again = 0;
        const Shown shown(1,
                          {{u"cmdStartFlying"_s, u"Start Fl&ying"_s, [&flown] { ++flown; }},
                           {u"tryAgain"_s, u"&Try Failed Again"_s, [&again] { ++again; }, true}});
        QTest::keySequence(shown.list(), QKeySequence(u"Alt+Y"_s));
        QTRY_COMPARE(flown, 1);
        shown.find<QPushButton>(u"tryAgain"_s)->click();
        shown.find<QPushButton>(u"tryAgain"_s)->click();
        QCOMPARE(again, 1);
    }

    /// In relation to the ready-made model, in the same run.
    void manyEntries_stayFluent()
    {
        constexpr int many = 50'000;
        QElapsedTimer clock;
        clock.start();
        QStandardItemModel ready;
        const Results results = manyResults(many);
        for (const Results::Group& group : results.groups()) {
            auto* parent = new QStandardItem(group.name);
            for (const Results::Entry& entry : group.entries)
                parent->appendRow({new QStandardItem(entry.subject),
                                   new QStandardItem(entry.phrase),
                                   new QStandardItem(entry.text())});
            ready.appendRow(parent);
        }
        const qint64 readyMade = clock.restart();
        ResultsModel model(results);
        for (const QString& typed : {u"t"_s, u"ti"_s, u"tile_4"_s, QString()})
            model.setFilter(typed, false);
        const qint64 own = clock.elapsed();
        qInfo(
            "50,000 entries: filled and filtered four times in %lld ms, ready-made filled in %lld ms",
            own,
            readyMade);
        QVERIFY(own <= readyMade);
        QCOMPARE(model.entryCount(), many + 3);
    }

    void pictures()
    {
        Shown shown(50'000,
                    {{u"tryAgain"_s, u"&Try Failed Again"_s, [] {}, true},
                     {u"startFlying"_s, u"Start Fl&ying"_s, [] {}},
                     {u"showAddons"_s, u"Show A&ddons"_s, [] {}}});
        screenshot(shown.window, u"results-1280x800"_s, {1280, 800});
        shown.find<QCheckBox>(u"chkProblemsOnly"_s)->click();
        shown.list()->setCurrentIndex(shown.list()->model()->index(0, 0).model()->index(
            0, 0, shown.list()->model()->index(0, 0)));
        screenshot(shown.window, u"results-problems-800x600"_s, {800, 600});
        shown.find<QLineEdit>(u"txtFilter"_s)->setText(u"nothing like it"_s);
        screenshot(shown.window, u"results-nothing"_s, {800, 400});
    }
};

VT_TEST_CLASS(TestResults)

} // namespace vt::test

#include "test_results.moc"
