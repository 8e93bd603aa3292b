// The list of every window: what is remembered of its columns, the dialog that arranges them, the
// text of its selection.
#include "shell/ShellFixture.h"
#include "shell/forms/ColumnDialog.h"
#include "shell/forms/ColumnView.h"
#include "support/TestMain.h"
#include "ui/Screenshot.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QStandardItemModel>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

struct Shown
{
    explicit Shown(int rows = 3)
    {
        model.setHorizontalHeaderLabels({u"Name"_s, u"Size"_s, u"Folder"_s});
        for (int row = 0; row < rows; ++row)
            model.appendRow({new QStandardItem(u"Row "_s + QString::number(row)),
                             new QStandardItem(QString::number(100 - row)),
                             new QStandardItem(u"C:\\A\\\tB\n"_s)});
        view.setModel(&model);
        view.setHiddenAtFirst({2});
        view.resize(600, 300);
        view.show();
    }

    void restore() { view.restoreLayout(shell.settings, Section::WorkWithAddons); }

    [[nodiscard]] QString stored(const QString& name) const
    {
        return shell.settings.stored(Section::WorkWithAddons, name).value_or(u"(nothing)"_s);
    }

    [[nodiscard]] QStringList shownTitles() const
    {
        QStringList titles;
        for (const ColumnArrangement::Column& column : view.arrangement().columns)
            if (column.shown)
                titles.append(model.horizontalHeaderItem(column.column)->text());
        return titles;
    }

    mutable ShellFixture shell;
    QStandardItemModel model;
    ColumnView view;
};

} // namespace

class TestColumnView : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void arrangement_comesBack()
    {
        Shown first;
        first.restore();
        QCOMPARE(first.shownTitles(), QStringList({u"Name"_s, u"Size"_s}));
        first.view.arrange({{{2, true}, {0, true}, {1, false}}, 1, true});
        first.view.setColumnWidth(2, 123);
        first.view.setShowsIcons(false);
        first.view.saveLayout(first.shell.settings, Section::WorkWithAddons);
        QVERIFY2(first.stored(u"Current Columns"_s).startsWith(u"Folder:123|Name:"_s),
                 qUtf8Printable(first.stored(u"Current Columns"_s)));

        Shown again;
        for (const QString& name : {u"Current Columns"_s,
                                    u"Sort By"_s,
                                    u"Sort Descending"_s,
                                    u"Show Icons"_s,
                                    u"View Type"_s})
            QVERIFY(
                again.shell.registry.SaveSetting(u"Work With Addons"_s, name, first.stored(name)));
        again.restore();
        QCOMPARE(again.shownTitles(), QStringList({u"Folder"_s, u"Name"_s}));
        QCOMPARE(again.view.columnWidth(2), 123);
        QVERIFY(!again.view.showsIcons());
        QCOMPARE(again.model.item(0, 1)->text(), u"99"_s); // texts, from the greatest on
    }

    void columnsOfAnother_areNotTaken_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("nonsense") << u"||:|x:y"_s << QStringList({u"Name"_s, u"Size"_s});
        QTest::newRow("other case, no width, twice, unknown")
            << u"SIZE|Size:4|Weight:10"_s << QStringList({u"Size"_s, u"Name"_s});
    }

    /// The column that names the rows stays.
    void columnsOfAnother_areNotTaken()
    {
        QFETCH(const QString, text);
        QFETCH(const QStringList, shown);
        Shown list;
        QVERIFY(list.shell.settings.setLayoutText(
            Section::WorkWithAddons, LayoutValue::CurrentColumns, text));
        list.restore();
        QCOMPARE(list.shownTitles(), shown);
    }

    /// Numbers beside a long path stay in sight; what the user sizes stays as it is.
    void pathColumns_giveWayToTheOthers()
    {
        Shown list;
        list.model.item(0, 0)->setText(QString(60, u'p'));
        list.view.setPathColumns({0});
        list.restore();
        const auto overflow = [&] {
            return list.view.header()->length() - list.view.viewport()->width();
        };
        const int wide = list.view.columnWidth(0);
        list.view.resize(wide, 300);
        QApplication::processEvents();
        QVERIFY(overflow() <= 0);
        QVERIFY(list.view.columnWidth(0) < wide);
        list.view.resize(900, 300);
        QApplication::processEvents();
        QCOMPARE(list.view.columnWidth(0), wide);
        list.view.setColumnWidth(1, 200);
        list.view.resize(wide, 300);
        QApplication::processEvents();
        QCOMPARE(list.view.columnWidth(0), wide);
    }

    void dialog_byKeyboardAlone()
    {
        const ColumnArrangement before{{{0, true}, {1, true}, {2, false}}, 0, false};
        ColumnDialog dialog({u"Name"_s, u"Size"_s, u"Folder"_s}, 0);
        dialog.setArrangement(before);
        dialog.setFirstArrangement(before);
        dialog.show();
        auto* columns = dialog.findChild<QListWidget*>(u"lstColumns"_s);
        QTRY_VERIFY(columns->hasFocus());
        QTest::keyClick(columns, Qt::Key_Space); // names the rows
        QTest::keyClick(columns, Qt::Key_End);
        QTest::keyClick(columns, Qt::Key_Space);
        QTest::keyClick(columns, Qt::Key_Up, Qt::ControlModifier);
        QTest::keyClick(columns, Qt::Key_Up, Qt::ControlModifier);
        dialog.findChild<QComboBox*>(u"cboSortBy"_s)->setCurrentText(u"Size"_s);
        const ColumnArrangement after = dialog.arrangement();
        QList<std::pair<int, bool>> columnsAfter;
        for (const ColumnArrangement::Column& column : after.columns)
            columnsAfter.append({column.column, column.shown});
        QCOMPARE(columnsAfter, (QList<std::pair<int, bool>>{{2, true}, {0, true}, {1, true}}));
        QCOMPARE(after.sortBy, 1);
    }

    void selection_asText()
    {
        Shown list;
        list.restore();
        list.view.setColumnHidden(2, false);
        QApplication::setActiveWindow(&list.view);
        QTRY_VERIFY(list.view.hasFocus());
        QTest::keyClick(&list.view, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(list.view.selectedRowNumbers(), QList<int>({0, 1, 2}));
        list.view.selectionModel()->select(list.model.index(1, 0),
                                           QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
        QTest::keyClick(&list.view, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(),
                 u"Row 0\t100\tC:\\A\\ B \nRow 2\t98\tC:\\A\\ B \n"_s);
        list.view.invertSelectionAction()->trigger();
        QCOMPARE(list.view.selectedRowNumbers(), QList<int>({1}));
    }

    void emptyList_helps()
    {
        Shown list(0);
        list.view.setEmptyText(u"No rows yet."_s, u"&Make One"_s);
        list.restore();
        auto* button = list.view.findChild<QPushButton*>(u"cmdEmptyPlace"_s);
        QVERIFY(button->isVisible());
        const QSignalSpy wanted(&list.view, &ColumnView::emptyButtonClicked);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(wanted.size(), 1);
        list.model.appendRow(new QStandardItem(u"Row"_s));
        QVERIFY(!button->isVisible());
    }

    void pictures()
    {
        ColumnDialog dialog({u"Name"_s, u"Size"_s, u"Folder"_s}, 0);
        dialog.setArrangement({{{0, true}, {2, true}, {1, false}}, 2, true});
        QCOMPARE(screenshot(dialog, u"columns"_s).size(), 2);
    }

    void menu_endsWithColumns()
    {
        Shown list;
        list.restore();
        connect(&list.view, &ColumnView::menuWanted, &list.view, [](QMenu* menu) {
            menu->addAction(u"&Own"_s);
        });
        QContextMenuEvent event(QContextMenuEvent::Keyboard, {5, 5}, {5, 5});
        QApplication::sendEvent(list.view.viewport(), &event);
        auto* menu = list.view.findChild<QMenu*>();
        QVERIFY(menu);
        QStringList entries;
        for (const QAction* action : menu->actions())
            entries.append(action->isSeparator() ? u"-"_s : action->text());
        QCOMPARE(entries,
                 QStringList({u"&Own"_s,
                              u"-"_s,
                              u"A&uto-size Columns"_s,
                              u"Customize Co&lumns..."_s,
                              u"Sho&w Icons"_s}));
        menu->close();
    }
};

VT_TEST_CLASS(TestColumnView)

} // namespace vt::test

#include "test_columnview.moc"
