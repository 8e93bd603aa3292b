// The file and folder selection window: going about by keyboard, archives looked into, the two
// lists as they come to the disk.
#include "archive/forms/FolderModel.h"
#include "archive/forms/frmSelectFSO.h"
#include "demo/SampleAddons.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

struct Shown
{
    Shown()
    {
        for (const SampleAddon& sample : sampleAddons())
            writeHostFile(world.host(u"packs/"_s + sample.name + u".zip"_s), sample.archive());
        writeHostFile(world.host(u"packs/Loose/readme.txt"_s), "text");
        writeHostFile(world.host(u"packs/notes.xyz"_s), "text");
        world.session->services().files.newOperation();
        window = std::make_unique<frmSelectFSO>(
            *world.session, &world.frame, frmSelectFSO::Purpose::Browse);
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->Form_PrepareToShow();
        window->resize(1000, 640);
        window->show();
        QApplication::setActiveWindow(window.get());
    }

    template <typename Widget> [[nodiscard]] Widget* find(const QString& name) const
    {
        return window->findChild<Widget*>(name);
    }

    [[nodiscard]] ColumnView* list() const { return find<ColumnView>(u"lvwFiles"_s); }

    [[nodiscard]] QString said() const { return find<QLabel>(u"lblStatus"_s)->text(); }

    [[nodiscard]] QStringList names() const
    {
        QStringList texts;
        for (int row = 0; row < list()->model()->rowCount(); ++row)
            texts.append(list()->model()->index(row, 0).data().toString());
        return texts;
    }

    void type(const QString& place) const
    {
        auto* line = find<QLineEdit>(u"txtPlace"_s);
        line->setText(place);
        QTest::keyClick(line, Qt::Key_Return);
    }

    [[nodiscard]] QByteArray saved(const QString& file) const
    {
        return readHostFile(world.host(u"home/Settings/"_s + file));
    }

    WindowWorld world;
    std::unique_ptr<frmSelectFSO> window;
};

/// Names in a tree, those below another one after it and indented.
QStringList
treeNames(const QAbstractItemModel& model, const QModelIndex& parent = {}, int depth = 0)
{
    QStringList names;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        names.append(QString(depth, u' ') + index.data().toString());
        names += treeNames(model, index, depth + 1);
    }
    return names;
}

/// Once the window that is opened next is there, \a work is done with it.
void whenOpened(const std::function<void(QWidget&)>& work)
{
    QTimer::singleShot(0, qApp, [work] {
        QWidget* window = QApplication::activeModalWidget();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        work(*window);
    });
}

} // namespace

class TestSelectFSO : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void goingAbout_byKeyboard()
    {
        const Shown shown;
        QCOMPARE(shown.window->windowTitle(), u"Browse Folders"_s);
        shown.type(shown.world.host(u"packs"_s)); // a path of the host
        const QString packs = shown.world.windows(u"packs"_s) + u'\\';
        QCOMPARE(shown.find<QLineEdit>(u"txtPlace"_s)->text(), packs);
        QVERIFY(shown.list()->hasFocus());
        QCOMPARE(shown.names().first(), u"Loose"_s);
        QVERIFY(!shown.names().contains(u"notes.xyz"_s));
        QTest::keyClick(shown.list(), Qt::Key_Return);
        QCOMPARE(shown.names(), QStringList(u"readme.txt"_s));
        QTest::keyClick(shown.list(), Qt::Key_Backspace);
        QCOMPARE(shown.window->selectedPath(), packs + u"Loose\\"_s);
        shown.type(packs + u"NOTES.xyz"_s); // shown although the filter leaves it out
        QCOMPARE(shown.window->selectedPath(), packs + u"notes.xyz"_s);
        shown.type(packs + u"nothing"_s);
        QCOMPARE(shown.said(), u"'"_s + packs + u"nothing' was not found."_s);
        QCOMPARE(shown.window->selectedPath(), packs + u"notes.xyz"_s);
        shown.find<QComboBox>(u"cboFilter"_s)->setCurrentIndex(1);
        QCOMPARE(shown.names().size(), sampleAddons().size() + 1);
    }

    void archives_areLookedInto()
    {
        const Shown shown;
        shown.type(shown.world.windows(u"packs/nested-set.zip"_s));
        const QAbstractItemModel& entries = *shown.find<ColumnView>(u"tvwContents"_s)->model();
        QTRY_VERIFY(entries.rowCount() > 0);
        const QStringList names = treeNames(entries);
        const qsizetype inner =
            names.indexOf(QRegularExpression(u"^ *.*\\.zip$"_s)); // an archive is a folder
        QVERIFY2(inner >= 0 && names.value(inner + 1).startsWith(u' '),
                 qPrintable(names.join(u'\n')));
        QVERIFY(shown.find<QLabel>(u"lblContents"_s)->text().contains(u" unpacked."_s));
        QCOMPARE(entries.data(entries.index(0, 1), Qt::TextAlignmentRole).toInt(),
                 int(Qt::AlignRight | Qt::AlignVCenter));

        writeHostFile(shown.world.host(u"packs/broken.zip"_s), "no archive");
        shown.type(shown.world.windows(u"packs/broken.zip"_s));
        QTRY_VERIFY(shown.find<QLabel>(u"lblContents"_s)->text().contains(u"broken.zip"_s));
        QCOMPARE(entries.rowCount(), 0);
    }

    void sorting_keepsTheCursor_andFoldersFirst()
    {
        const Shown shown;
        shown.type(shown.world.windows(u"packs/fog-mission.zip"_s));
        for (const Qt::SortOrder order : {Qt::DescendingOrder, Qt::AscendingOrder}) {
            for (const int column : {FolderModel::SizeColumn, FolderModel::NameColumn}) {
                shown.list()->sortByColumn(column, order);
                QVERIFY(shown.window->selectedPath().endsWith(u"\\fog-mission.zip"_s));
                QCOMPARE(shown.names().first(), u"Loose"_s);
            }
            QStringList files = shown.names().mid(1);
            QVERIFY(std::is_sorted(files.begin(), files.end()) == (order == Qt::AscendingOrder));
        }
    }

    void recentItems_comeToTheDisk()
    {
        Shown shown;
        const QString first = shown.world.windows(u"packs/swift-aircraft.zip"_s);
        for (const QString& name : {u"swift-aircraft.zip"_s, u"fog-mission.zip"_s}) {
            shown.type(shown.world.windows(u"packs/"_s + name));
            QTest::keyClick(shown.list(), Qt::Key_Return);
        }
        QCOMPARE(shown.world.frame.calls.value(0), u"installAddon "_s + first);
        QCOMPARE(shown.saved(u"ISF_SEL.RIL"_s).count("\r\n"), 2);
        QVERIFY(shown.saved(u"ISF_SEL.RIL"_s).contains("fog-mission.zip\",#"));
        // With room for one, the older goes.
        shown.find<QComboBox>(u"cboRecentItemsList_MaxItems"_s)->setCurrentText(u"1"_s);
        QCOMPARE(shown.saved(u"ISF_SEL.RIL"_s).count("\r\n"), 1);
        auto* recent = shown.find<ColumnView>(u"lvwRecentItems"_s);
        QCOMPARE(recent->model()->rowCount(), 1);
        recent->setCurrentIndex(recent->model()->index(0, 0));
        shown.type(shown.world.windows(u"home"_s));
        QTest::keyClick(recent, Qt::Key_Return);
        QVERIFY(shown.window->selectedPath().endsWith(u".zip"_s));
        shown.find<QPushButton>(u"cmdRecent_ClearAll"_s)->click();
        QCOMPARE(shown.said(), u"All items were removed."_s);
        QCOMPARE(shown.saved(u"ISF_SEL.RIL"_s), QByteArray());
    }

    void favorites_comeToTheDisk()
    {
        Shown shown;
        shown.find<QTabWidget>(u"tabItems"_s)->setCurrentIndex(1);
        const QString loose = shown.world.windows(u"packs/Loose"_s) + u'\\';
        const auto add = [&] {
            whenOpened([&](QWidget& chooser) {
                QCOMPARE(chooser.windowTitle(), u"Select a favorite file or folder"_s);
                auto* line = chooser.findChild<QLineEdit*>(u"txtPlace"_s);
                line->setText(loose);
                QTest::keyClick(line, Qt::Key_Return);
                chooser.findChild<ColumnView*>(u"lvwFiles"_s)->setCurrentIndex({});
                chooser.findChild<QPushButton*>(u"cmdOK"_s)->click();
            });
            shown.find<QPushButton>(u"cmdFavorite_Add"_s)->click();
        };
        add();
        QCOMPARE(shown.said(), u"Item was added."_s);
        add();
        QCOMPARE(shown.said(), u"Item was NOT added."_s);
        shown.type(shown.world.windows(u"packs/fog-mission.zip"_s));
        QApplication::setActiveWindow(shown.window.get());
        QTest::keySequence(shown.list(), QKeySequence(u"Ctrl+D"_s));
        QCOMPARE(shown.saved(u"FSO_FAV.FIL"_s).count("\r\n"), 2);
        QVERIFY(QFile::remove(shown.world.host(u"packs/Loose/readme.txt"_s)));
        QVERIFY(QDir().rmdir(shown.world.host(u"packs/Loose"_s)));
        shown.find<QPushButton>(u"cmdFavorite_ClearInvalid"_s)->click();
        QCOMPARE(shown.said(), u"Invalid items were removed."_s);
        QCOMPARE(shown.saved(u"FSO_FAV.FIL"_s).count("\r\n"), 1);
        auto* favorites = shown.find<ColumnView>(u"lvwFavoriteItems"_s);
        screenshot(*shown.window, u"select-favorites"_s, {1000, 640});
        favorites->setCurrentIndex(favorites->model()->index(0, 0));
        shown.find<QPushButton>(u"cmdFavorite_Remove"_s)->click();
        QCOMPARE(shown.said(), u"Item was removed."_s);
        shown.find<QPushButton>(u"cmdFavorite_Remove"_s)->click();
        QCOMPARE(shown.said(), u"Item was NOT removed."_s);
        QCOMPARE(shown.saved(u"FSO_FAV.FIL"_s), QByteArray());
    }

    void chooser_remembersWhatWasChosen_andWhere()
    {
        Shown shown;
        const QString pack = shown.world.windows(u"packs/fog-mission.zip"_s);
        whenOpened([&](QWidget& chooser) {
            auto* line = chooser.findChild<QLineEdit*>(u"txtPlace"_s);
            line->setText(pack);
            QTest::keyClick(line, Qt::Key_Return);
            QTest::keyClick(chooser.findChild<ColumnView*>(u"lvwFiles"_s), Qt::Key_Return);
        });
        QCOMPARE(frmSelectFSO::choose(nullptr, *shown.world.session, u"Select Addon"_s), pack);
        QVERIFY(shown.saved(u"ISF_SEL.RIL"_s).contains("fog-mission.zip"));
        QString place;
        whenOpened([&](QWidget& chooser) {
            place = chooser.findChild<QLineEdit*>(u"txtPlace"_s)->text();
            QTest::keyClick(&chooser, Qt::Key_Escape);
        });
        QCOMPARE(frmSelectFSO::choose(nullptr, *shown.world.session, u"Select Addon"_s),
                 std::nullopt);
        QCOMPARE(place, shown.world.windows(u"packs"_s) + u'\\');
    }

    void pictures()
    {
        Shown shown;
        for (const QString& name : {u"fog-mission.zip"_s, u"nested-set.zip"_s}) {
            shown.type(shown.world.windows(u"packs/"_s + name));
            shown.find<QPushButton>(u"cmdOK"_s)->click();
        }
        QTRY_VERIFY(shown.find<ColumnView>(u"tvwContents"_s)->model()->rowCount() > 0);
        screenshot(*shown.window, u"select-1280x800"_s, {1280, 800});
        screenshot(*shown.window, u"select-800x600"_s, {800, 600});
    }
};

VT_TEST_CLASS(TestSelectFSO)

} // namespace vt::test

#include "test_selectfso.moc"
