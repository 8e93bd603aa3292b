// The help: its topics hang together, every window has one, and they are found and left by
// keyboard.
#include "install/forms/frmInstall_Wizard.h"
#include "shell/SettingsTable.h"
#include "shell/forms/HelpTopics.h"
#include "shell/forms/StepButton.h"
#include "shell/forms/frmHelp.h"
#include "shell/startup/Preparation.h"
#include "support/TestMain.h"
#include "ui/WiredWindow.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QShortcut>
#include <QTabBar>
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

/// As help writes it: without access key, colon and count.
QString caption(QString text)
{
    static const QRegularExpression after(u"(:| \\([0-9,]+\\))$"_s);
    return text.replace(u"&&"_s, u"\n"_s).remove(u'&').replace(u'\n', u'&').remove(after);
}

/// What can be read and pressed in a window: captions, and the keys of its commands.
struct Readable
{
    void add(const QWidget& window)
    {
        for (const QWidget* widget : window.findChildren<QWidget*>()) {
            if (qobject_cast<const frmHelp*>(widget))
                continue;
            if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
                captions.insert(caption(button->text()));
            else if (const auto* label = qobject_cast<const QLabel*>(widget))
                captions.insert(caption(label->text()));
            else if (const auto* tabs = qobject_cast<const QTabBar*>(widget))
                for (int tab = 0; tab < tabs->count(); ++tab)
                    captions.insert(caption(tabs->tabText(tab)));
        }
        for (const QAction* action : window.findChildren<QAction*>()) {
            captions.insert(caption(action->text()));
            for (const QKeySequence& sequence : action->shortcuts())
                keys.insert(sequence.toString());
        }
        for (const QShortcut* shortcut : window.findChildren<QShortcut*>())
            keys.insert(shortcut->key().toString());
    }

    QSet<QString> captions;
    QSet<QString> keys;
};

/// Every window that help speaks of, one after the other.
Readable everyWindow(Wired& wired)
{
    Readable readable;
    const auto read = [&] {
        QApplication::processEvents();
        readable.add(wired.window);
        wired.window.command(u"mnuCloseAll"_s);
        QApplication::processEvents();
    };
    wired.world.install(u"harbour-scenery"_s);
    for (const QString& entry : {u"mnuWorkWithAllAddons"_s,
                                 u"mnuAddonHistory"_s,
                                 u"mnuFile_FSO_Browse"_s,
                                 u"mnuFile_ProgramInfo"_s,
                                 u"mnuFile_RemoveAnAddon"_s,
                                 u"mnuHelpTopics"_s}) {
        wired.window.command(entry);
        read();
    }
    wired.window.installAddon(wired.world.sample(u"kestrel-repaint"_s));
    auto* wizard = wired.window.findChild<frmInstall_Wizard*>();
    for (const auto show : {&frmInstall_Wizard::SubForm_ConfigureTextures_Show,
                            &frmInstall_Wizard::SubForm_ConfigureOptions_Show,
                            &frmInstall_Wizard::SubForm_InstallationSummary_Show})
        (wizard->*show)();
    read();
    wired.window.showResults(u"Results"_s, Results::forInstallation());
    read();
    QTimer::singleShot(0, &wired.window, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        readable.add(*dialog);
        dialog->close();
    });
    wired.window.command(u"mnuOptimizeDatabase"_s);
    readable.captions.insert(explorerVerb(wired.world.context().global));
    return readable;
}

/// What stands between two pairs of asterisks, in one line.
QStringList bold(const QString& text)
{
    static const QRegularExpression between(u"\\*\\*(.+?)\\*\\*"_s,
                                            QRegularExpression::DotMatchesEverythingOption);
    QStringList out;
    for (auto it = between.globalMatch(text); it.hasNext();)
        out.append(it.next().captured(1).simplified());
    return out;
}

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

    /// Bold is what stands in a window, letter by letter; the keys are those of its commands.
    void captionsAndKeys_areThoseOfTheWindows()
    {
        Wired wired;
        const Readable readable = everyWindow(wired);
        int captions = 0;
        for (const HelpTopic& topic : helptopics::all()) {
            for (const QString& text : bold(topic.text)) {
                QVERIFY2(readable.captions.contains(text), qPrintable(topic.name + u": "_s + text));
                ++captions;
            }
        }
        QVERIFY(captions > 80);

        // Those of Qt, of the main window's event filter, and of each list by itself.
        const QStringList elsewhere{
            u"F1"_s, u"Alt and an underlined letter"_s, u"Enter"_s, u"Esc"_s, u"Ctrl+Tab"_s};
        static const QRegularExpression row(u"^\\| (?!Keys|---)(.+?) \\|"_s,
                                            QRegularExpression::MultilineOption);
        QFile keyboard(QStringLiteral(VT_TEST_DATA "/../../docs/help/keyboard.md"));
        QVERIFY(keyboard.open(QIODevice::ReadOnly));
        int keys = 0;
        for (auto it = row.globalMatch(QString::fromUtf8(keyboard.readAll())); it.hasNext();) {
            for (const QString& key : it.next().captured(1).split(u", "_s)) {
                if (elsewhere.contains(key))
                    continue;
                const QString sequence = QKeySequence(QString(key)
                                                          .replace(u"Page Up"_s, u"PgUp"_s)
                                                          .replace(u"Page Down"_s, u"PgDown"_s))
                                             .toString()
                                             .replace(u"Delete"_s, u"Del"_s);
                QVERIFY2(!sequence.isEmpty() && readable.keys.contains(sequence), qPrintable(key));
                ++keys;
            }
        }
        QVERIFY(keys >= 10);
    }

    /// The lists of steps name the wizards' buttons in their order.
    void steps_standInTheirOrder()
    {
        Wired wired;
        for (const auto& [entry, name] : {std::pair{u"mnuFile_InstallAnAddon"_s, u"install"_s},
                                          std::pair{u"mnuFile_RemoveAnAddon"_s, u"remove"_s}}) {
            wired.window.command(entry);
            QApplication::processEvents(); // laid out
            QMap<int, QString> buttons;    // from above
            for (const StepButton* button : wired.window.findChildren<StepButton*>())
                buttons.insert(button->mapTo(&wired.window, QPoint()).y(), caption(button->text()));
            QString text;
            for (const HelpTopic& topic : helptopics::all())
                if (topic.name == name)
                    text = topic.text;
            static const QRegularExpression step(u"^\\d+\\. \\*\\*(.+?)\\*\\*"_s,
                                                 QRegularExpression::MultilineOption);
            qsizetype before = -1;
            int steps = 0;
            for (auto it = step.globalMatch(text); it.hasNext(); ++steps) {
                const QString named = it.next().captured(1);
                const qsizetype place = buttons.values().indexOf(named);
                QVERIFY2(place > before, qPrintable(named));
                before = place;
            }
            QVERIFY2(steps >= 4 && before == buttons.size() - 1, qPrintable(name));
            wired.window.command(u"mnuCloseAll"_s);
            QTRY_VERIFY(wired.window.tools().isEmpty());
        }
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
