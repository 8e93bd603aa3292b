// The help: its topics hang together, every window has one, and they are found and left by
// keyboard.
#include "shell/SettingsTable.h"
#include "shell/forms/HelpTopics.h"
#include "shell/forms/frmHelp.h"
#include "support/TestMain.h"
#include "ui/WiredWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QTextBrowser>
#include <QTimer>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

struct Wired : WiredWindow
{
    frmHelp* help() { return qobject_cast<frmHelp*>(window.tool(u"help"_s)); }
};

} // namespace

class TestHelp : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void topics_hangTogether()
    {
        const QList<HelpTopic> topics = helptopics::all();
        QStringList names;
        QStringList titles;
        for (const HelpTopic& topic : topics) {
            names += topic.name + u".md"_s;
            titles += topic.title;
            QVERIFY2(topic.text.startsWith(u"# "_s), qPrintable(topic.name));
        }
        QCOMPARE(QSet<QString>(titles.begin(), titles.end()).size(), titles.size());
        // What lies in the folder is in the list, and the other way round.
        QStringList files =
            QDir(QStringLiteral(VT_TEST_DATA "/../../docs/help")).entryList({u"*.md"_s});
        files.sort();
        QStringList sorted = names;
        sorted.sort();
        QCOMPARE(sorted, files);
        static const QRegularExpression link(u"\\]\\(([^)]+)\\)"_s);
        int links = 0;
        for (const HelpTopic& topic : topics) {
            for (auto it = link.globalMatch(topic.text); it.hasNext(); ++links) {
                const QString to = it.next().captured(1);
                QVERIFY2(names.contains(to), qPrintable(topic.name + u" -> "_s + to));
            }
        }
        QVERIFY(links > 10);
        // The programs' own texts send people to this one.
        QVERIFY(titles.contains(u"Getting Started with Traffic Tools"_s));
    }

    void f1_tellsAboutTheWindowInFront()
    {
        Wired wired;
        const QList<std::pair<QString, QString>> rows{
            {u"mnuFile_InstallAnAddon"_s, u"install"_s},
            {u"mnuFile_RemoveAnAddon"_s, u"remove"_s},
            {u"mnuWorkWithAllAddons"_s, u"addons"_s},
            {u"mnuAddonHistory"_s, u"history"_s},
            {u"mnuFile_FSO_Browse"_s, u"browse"_s},
            {u"mnuFile_ProgramInfo"_s, u"report"_s},
        };
        for (const auto& [entry, topic] : rows) {
            wired.window.command(entry);
            QApplication::processEvents();
            QWidget* focus = QApplication::focusWidget();
            QTest::keyClick(focus ? focus : &wired.window, Qt::Key_F1);
            QVERIFY2(wired.help(), qPrintable(entry));
            QCOMPARE(wired.help()->shownTopic(), topic);
            wired.window.command(u"mnuCloseAll"_s);
            QTRY_VERIFY(wired.window.tools().isEmpty());
        }
        QTest::keyClick(&wired.window, Qt::Key_F1); // nothing open
        QCOMPARE(wired.help()->shownTopic(), u"contents"_s);
    }

    void aboveADialog_itCanBeUsed()
    {
        Wired wired;
        QStringList shown;
        bool itsOwn = false;
        QTimer::singleShot(0, &wired.window, [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            QTest::keyClick(dialog, Qt::Key_F1);
            if (auto* help = dialog->findChild<frmHelp*>()) {
                itsOwn = help->isWindow() && help->isVisible();
                shown += help->shownTopic();
                QTest::keyClick(help->findChild<QListWidget*>(), Qt::Key_Home);
                shown += help->shownTopic();
            }
            dialog->close();
        });
        wired.window.command(u"mnuOptimizeDatabase"_s);
        QVERIFY(itsOwn);
        QCOMPARE(shown, QStringList({u"optimize"_s, u"contents"_s}));
        QVERIFY(wired.window.tools().isEmpty());
    }

    void search_leavesTheTopicsThatHoldTheWords()
    {
        Wired wired;
        wired.window.command(u"mnuHelpTopics"_s);
        auto* search = wired.help()->findChild<QLineEdit*>();
        auto* list = wired.help()->findChild<QListWidget*>();
        auto* text = wired.help()->findChild<QTextBrowser*>();
        auto* back = wired.help()->findChild<QToolButton*>(u"cmdBack"_s);
        QVERIFY(!back->isEnabled());
        const int all = list->count();
        QTest::keySequence(text, QKeySequence::Find);
        QCOMPARE(QApplication::focusWidget(), search);
        QTest::keyClicks(search, u"THOROUGH damaged"_s);
        QCOMPARE(list->count(), 1);
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(wired.help()->shownTopic(), u"optimize"_s);
        QVERIFY(text->extraSelections().size() >= 2);
        QTest::keyClick(text, Qt::Key_Left, Qt::AltModifier);
        QCOMPARE(wired.help()->shownTopic(), u"contents"_s);
        QTest::keyClick(search, Qt::Key_Escape);
        QCOMPARE(list->count(), all);
        QTest::keyClicks(search, u"zzz"_s);
        QVERIFY(!(list->item(0)->flags() & Qt::ItemIsEnabled));
    }

    void looks()
    {
        Wired wired;
        wired.window.showHelp(u"addons"_s);
        qobject_cast<QMdiSubWindow*>(wired.help()->parentWidget())->showMaximized();
        screenshot(wired.window, u"help-addons-1280x800"_s, {1280, 800});
        wired.window.showHelp(u"install"_s);
        wired.help()->findChild<QLineEdit*>()->setText(u"archive"_s);
        const QStringList files = screenshot(wired.window, u"help-install-800x600"_s, {800, 600});
        QCOMPARE(sizeOf(files.value(0)), QSize(800, 600));
        for (const HelpTopic& topic : helptopics::all()) {
            wired.window.showHelp(topic.name);
            QCOMPARE(wired.help()->shownTopic(), topic.name);
            QVERIFY(wired.help()->windowTitle().endsWith(topic.title));
            // No line is wider than the window, not even of a table.
            auto* text = wired.help()->findChild<QTextBrowser*>();
            QVERIFY2(text->document()->idealWidth() <= text->viewport()->width(),
                     qPrintable(topic.name));
        }
    }
};

} // namespace vt::test

using vt::test::TestHelp;
VT_TEST_CLASS(TestHelp)

#include "test_help.moc"
