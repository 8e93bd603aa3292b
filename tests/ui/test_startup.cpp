// The start of the real program: a second start beside it, what stops it, its first window.
#include "app/StartUp.h"
#include "shell/Settings.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/ToolWindow.h"
#include "shell/forms/WizardFrame.h"
#include "shell/forms/frmHelp.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"
#include "ui/forms/frmWorkWithAddons.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// Program and simulator of a WindowWorld whose own session has ended.
struct Started
{
    Started() { world.session->close(); }

    app::Options options(const QString& file = {}) const
    {
        app::Options options;
        options.session.home = world.host(u"home"_s);
        options.session.prefix = world.host(u"prefix"_s);
        if (!file.isEmpty())
            options.arguments = {u"-file="_s + file};
        return options;
    }

    bool start(const QString& file = {})
    {
        world.session.reset();
        program = std::make_unique<app::StartUp>(options(file));
        program->screenSize = [] { return QSize(1280, 800); }; // whatever the scale
        return program->Main();
    }

    /// A second start of its own process; its exit status.
    int second(const QStringList& more) const
    {
        QProcess process;
        process.start(
            QStringLiteral(VT_BIN "/vantrel"),
            QStringList{
                u"--home"_s, world.host(u"home"_s), u"--prefix"_s, world.host(u"prefix"_s)} +
                more);
        const bool ended =
            QTest::qWaitFor([&] { return process.state() == QProcess::NotRunning; }, 15'000);
        return ended && process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    [[nodiscard]] bool startupFile() const
    {
        return QFile::exists(world.host(u"home/Startup.txt"_s));
    }

    WindowWorld world;
    std::unique_ptr<app::StartUp> program;
};

/// Answers every box that opens by \a button where it has one, else by Ok; keeps their texts.
class Answers
{
public:
    explicit Answers(QMessageBox::StandardButton button)
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            texts.append(box->windowTitle() + u'|' + box->text());
            QAbstractButton* wanted = box->button(button);
            (wanted ? wanted : box->button(QMessageBox::Ok))->click();
        });
        m_timer.start(10);
    }

    QStringList texts;

private:
    QTimer m_timer;
};

} // namespace

class TestStartUp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void secondStart_handsItsFileOver();
    void secondStart_withoutFileOpensTheWizard();
    void heldFolder_isToldAndLeftAlone();
    void missingDatabase_stops();
    void damagedDatabase_isRepairedOrLeft();
    void largeDatabase_isMadeSmallerInALivingWindow();
    void firstWindow_isTheSettings();
    void importAtStartup_asksAndRecords();
    void smallScreen_isWarnedOf();
    void archiveCommands_followTheSetting();
    void everyEnabledEntry_opensSomething();
};

void TestStartUp::secondStart_handsItsFileOver()
{
    Started started;
    const QString sample = started.world.sample(u"swift-aircraft"_s);
    writeHostFile(started.world.host(u"home/Startup.txt"_s),
                  "[STARTUP]\r\nFileToInstall=C:\\x\r\n");
    QVERIFY(started.start());
    QVERIFY(!started.startupFile()); // a leftover is nobody's wish
    frmControl* window = started.program->window();
    QVERIFY(window->tools().isEmpty());
    QVERIFY(window->findChild<ControlStatusBar*>()
                ->panel(u"Primary"_s)
                .startsWith(u"Welcome to Vantrel for FS X!"_s));
    QCOMPARE(started.second({u"-file="_s + started.world.host(u"swift-aircraft.zip"_s)}), 0);
    QTRY_COMPARE(window->tools().size(), 1);
    QTRY_VERIFY(!started.startupFile());
    auto* wizard = qobject_cast<WizardFrame*>(window->tools().first());
    QVERIFY(wizard);
    QVERIFY(window->close());
}

void TestStartUp::secondStart_withoutFileOpensTheWizard()
{
    Started started;
    QVERIFY(started.start());
    QCOMPARE(started.second({}), 0);
    QTRY_COMPARE(started.program->window()->tools().size(), 1);
    QVERIFY(!started.startupFile());
}

void TestStartUp::heldFolder_isToldAndLeftAlone()
{
    WindowWorld world; // holds the folder, and has no window to answer
    app::Options options;
    options.session.home = world.host(u"home"_s);
    options.session.prefix = world.host(u"prefix"_s);
    options.arguments = {u"-file="_s + world.host(u"a.zip"_s)};
    app::StartUp other(options);
    const Answers answers(QMessageBox::Ok);
    QVERIFY(!other.Main());
    const QString told = answers.texts.join(u'\n');
    QCOMPARE(other.exitStatus(), 3);
    QVERIFY2(told.contains(u"in use by another Vantrel"_s) && told.contains(u"process"_s),
             qPrintable(told));
    QVERIFY(!QFile::exists(world.host(u"home/Startup.txt"_s)));
}

void TestStartUp::missingDatabase_stops()
{
    Started started;
    started.world.session.reset();
    for (const QString& name : {u"home/Vantrel.mdb"_s, u"home/Vantrel.mdb-wal"_s})
        QFile::remove(started.world.host(name));
    const Answers answers(QMessageBox::Ok);
    QVERIFY(!started.start());
    const QString told = answers.texts.join(u'\n');
    QCOMPARE(started.program->exitStatus(), 3);
    QVERIFY2(told.startsWith(u"Vantrel for FS X Database File Error|The addon database, '"_s),
             qPrintable(told));
}

void TestStartUp::damagedDatabase_isRepairedOrLeft()
{
    Started started;
    started.world.restart();
    (void)started.world.install(u"swift-aircraft"_s);
    started.world.session->close();
    started.world.session.reset();
    QFile file(started.world.host(u"home/Vantrel.mdb"_s));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(4096 * 6)); // one page in the midst of the tables
    file.write(QByteArray(4096, '\x55'));
    file.close();
    const QByteArray damaged = readHostFile(file.fileName());
    {
        const Answers answers(QMessageBox::Cancel);
        QVERIFY(!started.start());
        QCOMPARE(answers.texts.size(), 1);
        QCOMPARE(readHostFile(file.fileName()), damaged);
        started.program.reset();
    }
    const Answers answers(QMessageBox::Yes);
    QVERIFY2(started.start(), qPrintable(answers.texts.join(u'\n')));
    QVERIFY(started.program->window()->isVisible());
}

void TestStartUp::largeDatabase_isMadeSmallerInALivingWindow()
{
    Started started;
    const QString file = started.world.host(u"home/Vantrel.mdb"_s);
    const qint64 before = QFileInfo(file).size();
    constexpr qint64 large = 950'000'001;
    QVERIFY(QFile::resize(file, large)); // sparse
    Answers answers(QMessageBox::Yes);
    int beats = 0; // once it is small again, and before the start is over
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, &heart, [&] {
        beats += QFileInfo(file).size() < large && started.program->window()->isVisible() ? 1 : 0;
    });
    heart.start(20);
    QVERIFY(started.start());
    QCOMPARE(answers.texts.size(), 1);
    QVERIFY2(answers.texts.constFirst().startsWith(u"Database Warning|"_s),
             qPrintable(answers.texts.constFirst()));
    QVERIFY(QFileInfo(file).size() <= 2 * before);
    QVERIFY2(beats > 10, qPrintable(QString::number(beats)));
    QVERIFY(started.program->window()->close());
}

void TestStartUp::firstWindow_isTheSettings()
{
    Started started;
    started.world.restart();
    QVERIFY(started.world.context().settings.setNumber(SettingKey::OpenWith, 1));
    started.world.session->close();
    QVERIFY(started.start());
    frmControl* window = started.program->window();
    QCOMPARE(window->tools().size(), 1);
    QCOMPARE(window->findChild<ControlStatusBar*>()->panel(u"Primary"_s),
             u"Opening Install An Addon..."_s);
}

void TestStartUp::importAtStartup_asksAndRecords()
{
    Started started;
    started.world.restart();
    Settings& settings = started.world.context().settings;
    QVERIFY(settings.setFlag(SettingKey::SearchForNewAddonsDuringStartup, true));
    QVERIFY(settings.setNumber(SettingKey::OpenWith, 3)); // the list, which shows what came
    started.world.session->close();
    {
        const Answers answers(QMessageBox::No);
        QVERIFY(started.start());
        QCOMPARE(answers.texts.size(), 1);
        QCOMPARE(started.program->window()->tools().size(), 1);
        QVERIFY(started.program->window()->close());
        started.program.reset();
    }
    const Answers answers(QMessageBox::Yes);
    QVERIFY(started.start());
    QVERIFY2(!answers.texts.isEmpty() && answers.texts.constFirst().contains(u"mport"_s),
             qPrintable(answers.texts.join(u'\n')));
    frmControl* window = started.program->window();
    auto* list = qobject_cast<frmWorkWithAddons*>(window->tool(u"addons"_s));
    QVERIFY(list);
    QVERIFY(list->manager().model().rowCount() > 0);
    QCOMPARE(window->tools().size(), 2); // the results as well
}

void TestStartUp::smallScreen_isWarnedOf()
{
    Started started;
    const auto startOn = [&](QSize screen) {
        started.world.session.reset();
        started.program.reset();
        started.program = std::make_unique<app::StartUp>(started.options());
        started.program->screenSize = [screen] { return screen; };
        return started.program->Main();
    };
    const Answers answers(QMessageBox::Yes);
    QVERIFY(startOn({800, 600}));
    QCOMPARE(answers.texts, QStringList());
    QVERIFY(startOn({1024, 599}));
    QCOMPARE(answers.texts.size(), 1);
    QVERIFY(answers.texts.constFirst().startsWith(u"Warning:  Small Screen Resolution|"_s));
    const auto* help = qobject_cast<frmHelp*>(started.program->window()->tool(u"help"_s));
    QVERIFY(help);
    QCOMPARE(help->shownTopic(), u"screen"_s);
    started.program.reset();
    started.world.restart();
    QVERIFY(started.world.context().settings.setFlag(SettingKey::CheckScreenRes, false));
    started.world.session->close();
    QVERIFY(startOn({640, 480}));
    QCOMPARE(answers.texts.size(), 1);
}

void TestStartUp::archiveCommands_followTheSetting()
{
    // Nothing of this comes to the user's own desktop: the start names its program folder.
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    const QString entry = data + u"/applications/vantrel-install.desktop"_s;
    const bool before = QFile::exists(entry);
    Started started;
    const auto verbs = [&] {
        return readHostFile(started.world.host(u"home/Settings/Vantrel.reg"_s))
            .count("Install to FSX using Vantrel");
    };
    QVERIFY(started.start());
    QVERIFY(started.program->window()->close());
    started.program.reset();
    const auto there = verbs();
    QVERIFY(there >= 2);
    started.world.restart();
    QVERIFY(
        started.world.context().settings.setFlag(SettingKey::WindowsExplorerContextMenuOn, false));
    started.world.session->close();
    QVERIFY(started.start());
    QVERIFY(started.program->window()->close());
    started.program.reset();
    QCOMPARE(verbs(), 0);
    QCOMPARE(QFile::exists(entry), before);
}

void TestStartUp::everyEnabledEntry_opensSomething()
{
    const QStringList others{u"mnuFile_MainExit"_s,
                             u"mnuStartFlying"_s,
                             u"mnuCascade"_s,
                             u"mnuTile"_s,
                             u"mnuCloseAll"_s,
                             u"mnuOpenMaximized"_s,
                             u"mnuToolbar"_s,
                             u"mnuClearDefaultPictures"_s,
                             u"mnuRunAFCAD"_s};
    Started started;
    QVERIFY(started.start());
    frmControl* window = started.program->window();
    window->resize(1280, 800);
    QPointer<QWidget> splash = window->findChild<QWidget*>(u"frmSplashFSX"_s);
    QVERIFY(splash);
    screenshot(*window, u"splash-1280x800"_s);
    QTest::mouseClick(splash, Qt::LeftButton);
    QTRY_VERIFY(!splash);
    int opened = 0;
    for (QAction* action : window->findChildren<QAction*>()) {
        if (!action->objectName().startsWith(u"mnu"_s) || !action->isEnabled() || action->menu() ||
            others.contains(action->objectName()))
            continue;
        window->command(u"mnuCloseAll"_s);
        QTRY_VERIFY(window->tools().isEmpty());
        bool dialog = false;
        QTimer close;
        QObject::connect(&close, &QTimer::timeout, &close, [&] {
            QWidget* modal = QApplication::activeModalWidget();
            if (!modal)
                return;
            close.stop();
            if (!std::exchange(dialog, true))
                screenshot(*modal, action->objectName());
            modal->close();
            close.start();
        });
        close.start(20);
        action->trigger();
        QVERIFY2(dialog || window->tools().size() == 1, qPrintable(action->objectName()));
        if (!window->tools().isEmpty())
            screenshot(*window, action->objectName() + u"-1280x800"_s);
        ++opened;
    }
    QVERIFY(opened >= 4);
}

} // namespace vt::test

using vt::test::TestStartUp;
VT_TEST_CLASS(TestStartUp)

#include "test_startup.moc"
