// Both wizards in the main window: in small windows, and by the keyboard alone.
#include "addondb/AddonDatabase.h"
#include "demo/SampleAddons.h"
#include "demo/StandIns.h"
#include "demo/ZipMaker.h"
#include "install/CAddonInstallationDetails.h"
#include "install/forms/frmInstall_Wizard.h"
#include "remove/forms/frmRemove_Wizard.h"
#include "shell/forms/FolderBox.h"
#include "shell/forms/frmProcessResults.h"
#include "support/TestMain.h"
#include "ui/AccessKeys.h"
#include "ui/WiredWindow.h"

#include <QApplication>
#include <QLineEdit>
#include <QMdiArea>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

/// An add-on with files for every page.
QString everything(const WindowWorld& world)
{
    DemoFiles files;
    for (const QString& name : {u"swift-aircraft"_s,
                                u"harbour-scenery"_s,
                                u"fog-mission"_s,
                                u"kestrel-repaint"_s,
                                u"kestrel-manuals"_s})
        files += {name + u".zip"_s, sampleAddon(name).archive()};
    files +=
        {u"FlightPlans_ZET.txt"_s,
         "AC#1,G-ZET1,10%,WEEK,IFR,1/10:00,1/11:00,200,F,1,EGLL,1/13:00,1/14:00,210,F,2,LKAA\n"};
    files += {u"Aircraft_ZET.txt"_s, "AC#1,250,\"Zeta 5\"\n"};
    writeHostFile(world.host(u"everything.zip"_s), zipOf(files));
    world.session->services().files.newOperation();
    return world.windows(u"everything.zip"_s);
}

QList<StepButton*> openSteps(const WizardFrame& wizard)
{
    QList<StepButton*> steps;
    for (StepButton* step : wizard.findChildren<StepButton*>())
        if (step->isEnabled() && step->isCheckable())
            steps += step;
    return steps;
}

struct Wired : WiredWindow
{
    WizardFrame& install(const QString& source)
    {
        window.installAddon(source);
        return dynamic_cast<WizardFrame&>(*window.tool(u"install"_s));
    }

    WizardFrame& remove(const QList<qint64>& keys)
    {
        window.removeAddons(keys);
        return dynamic_cast<WizardFrame&>(*window.tool(u"remove"_s));
    }
};

/// To whatever has the keyboard now.
void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QWidget* popup = QApplication::activePopupWidget();
    QTest::keyClick(popup ? popup : QApplication::focusWidget(), key, modifiers);
    QApplication::processEvents();
}

bool isControl(const QWidget& part)
{
    return part.isVisible() && part.isEnabled() && (part.focusPolicy() & Qt::TabFocus) != 0 &&
           !part.focusProxy();
}

bool isInView(const QWidget& part)
{
    return part.visibleRegion().boundingRect().height() >=
           qMin(part.height(), part.fontMetrics().height());
}

QString nameOf(const QWidget* part)
{
    return part ? QString::fromLatin1(part->metaObject()->className()) + u' ' + part->objectName()
                : u"nothing"_s;
}

/// Whether a reader comes to \a next after \a part: beside it or below; the column of steps, the
/// page and the row of buttons one after the other, and around.
bool follows(const QWidget& part, const QWidget& next, const WizardFrame& wizard)
{
    const auto area = [&wizard](const QWidget& one) {
        if (qobject_cast<const StepButton*>(&one))
            return 0;
        return one.objectName().startsWith("cmd"_L1) && one.parentWidget() == &wizard ? 2 : 1;
    };
    if (area(part) != area(next))
        return area(next) == (area(part) + 1) % 3;
    const QRect a(part.mapTo(&wizard, QPoint()), part.size());
    const QRect b(next.mapTo(&wizard, QPoint()), next.size());
    return b.top() >= a.bottom() - a.height() / 2 || b.left() >= a.right();
}

} // namespace

class TestWizardKeys : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void accessKeys_clashAsTheCaptionsMust();
    void accessKeys_ofStepsGoBeforeTheMenus();
    void everyControl_isReachedByTab();
    void installation_byKeysAlone();
    void removal_byKeysAlone();
    void secondAddon_seesTheFirst();
    void pages_fitTheMainWindow_data();
    void pages_fitTheMainWindow();
};

/// The captions of the steps are fixed, with letters that the main menu has too and one that two of
/// them have. Nothing else may clash.
void TestWizardKeys::accessKeys_clashAsTheCaptionsMust()
{
    Wired wired;
    (void)wired.world.install(u"heron-h2-main"_s);
    (void)wired.world.install(u"nested-set"_s);
    const auto clashesOf = [](WizardFrame& wizard) {
        QStringList clashes;
        for (StepButton* step : openSteps(wizard)) {
            step->click();
            for (const QString& clash : accessKeyClashes(wizard))
                if (!clashes.contains(clash))
                    clashes += clash;
        }
        return clashes;
    };
    QCOMPARE(clashesOf(wired.install(everything(wired.world))),
             (QStringList{u"&Addons / Configure &Aircraft"_s,
                          u"Configure Sc&enery / Configure Oth&er"_s,
                          u"&Options / Installation &Options"_s,
                          u"&Tools / Configure &Textures"_s}));
    QCOMPARE(clashesOf(wired.remove({1, 2})),
             (QStringList{u"&Addons / Select &Addons"_s, u"&Options / Removal &Options"_s}));
}

void TestWizardKeys::accessKeys_ofStepsGoBeforeTheMenus()
{
    Wired wired;
    WizardFrame& wizard = wired.install(everything(wired.world));
    const auto stepAfter = [&](Qt::Key key) {
        press(key, Qt::AltModifier);
        return wizard.cmdCurrentStep()->accessibleName();
    };
    // From a line that must not take the letter for text.
    const QString source = qobject_cast<QLineEdit*>(QApplication::focusWidget())->text();
    QCOMPARE(stepAfter(Qt::Key_O), u"Installation Options"_s);
    QCOMPARE(wizard.findChild<QLineEdit*>(u"txtSource"_s)->text(), source);
    QCOMPARE(stepAfter(Qt::Key_A), u"Configure Aircraft"_s);
    QCOMPARE(stepAfter(Qt::Key_E), u"Configure Scenery"_s);
    QCOMPARE(stepAfter(Qt::Key_E), u"Configure Other"_s);
    QCOMPARE(stepAfter(Qt::Key_E), u"Configure Scenery"_s);
    QVERIFY(!QApplication::activePopupWidget());
    // A step that there is none of leaves its letter to the menu.
    WizardFrame& removal = wired.remove({});
    QCOMPARE(removal.findChild<StepButton*>(u"cmdConfigureOptions"_s)->state(), StepState::Off);
    press(Qt::Key_O, Qt::AltModifier);
    QVERIFY(QApplication::activePopupWidget());
    press(Qt::Key_Escape);
}

/// And in the order of reading, from where the focus is when the page comes.
void TestWizardKeys::everyControl_isReachedByTab()
{
    Wired wired;
    wired.window.resize(1024, 768);
    (void)wired.world.install(u"heron-h2-main"_s);
    (void)wired.world.install(u"nested-set"_s);
    QStringList wrong;
    const auto walk = [&](WizardFrame& wizard) {
        for (StepButton* step : openSteps(wizard)) {
            step->click();
            QApplication::processEvents();
            QWidget* const first = QApplication::focusWidget();
            const QString page = step->accessibleName() + u": "_s;
            if (!first || qobject_cast<QAbstractButton*>(first) == step || !isControl(*first) ||
                !isInView(*first))
                wrong += page + u"begins at "_s + nameOf(first);
            QList<QWidget*> reached;
            do {
                reached += QApplication::focusWidget();
                press(Qt::Key_Tab);
                if (!isInView(*QApplication::focusWidget()))
                    wrong += page + nameOf(QApplication::focusWidget()) + u" is out of view"_s;
            } while (QApplication::focusWidget() != first && reached.size() < 100);
            for (QWidget* part : wizard.findChildren<QWidget*>())
                if (isControl(*part) && !reached.contains(part))
                    wrong += page + nameOf(part) + u" is not reached"_s;
            for (qsizetype i = 1; i < reached.size(); ++i)
                if (!follows(*reached[i - 1], *reached[i], wizard))
                    wrong += page + nameOf(reached[i]) + u" after "_s + nameOf(reached[i - 1]);
        }
    };
    walk(wired.install(everything(wired.world)));
    walk(wired.remove({1, 2}));
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.join(u'\n')));
}

void TestWizardKeys::installation_byKeysAlone()
{
    Wired wired;
    const QString source = wired.world.sample(u"kestrel-repaint"_s);
    press(Qt::Key_F, Qt::AltModifier);
    press(Qt::Key_I);
    QTRY_VERIFY(wired.window.tool(u"install"_s));
    const auto& wizard = dynamic_cast<WizardFrame&>(*wired.window.tool(u"install"_s));
    QTest::keyClicks(QApplication::focusWidget(), source);
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    QCOMPARE(wizard.cmdCurrentStep()->accessibleName(), u"Configure Textures"_s);
    // The thumbnail is not wanted: the list by its key, its row, and the command's.
    press(Qt::Key_K, Qt::AltModifier);
    QCOMPARE(QApplication::focusWidget()->objectName(), u"lvwItems"_s);
    press(Qt::Key_End);
    press(Qt::Key_Delete);
    press(Qt::Key_N, Qt::AltModifier);
    QTRY_COMPARE(wizard.cmdCurrentStep()->accessibleName(), u"Configure Other"_s);
    press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(QApplication::focusWidget()->objectName(), u"txtAddonName"_s);
    press(Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), u"By keys"_s);
    press(Qt::Key_G, Qt::AltModifier); // the rating
    press(Qt::Key_Down);
    press(Qt::Key_U, Qt::AltModifier);
    QCOMPARE(wizard.cmdCurrentStep()->accessibleName(), u"Installation Summary"_s);
    press(Qt::Key_I, Qt::AltModifier);
    QTRY_VERIFY(!wired.window.tool(u"install"_s));
    const auto addon = modDatabase_Addon::addon(wired.world.database(), 1);
    QVERIFY(addon);
    QCOMPARE(addon->name, u"By keys"_s);
    QCOMPARE(addon->rating, 1);
    QVERIFY(!QFile::exists(wired.world.demo.simulatorHost +
                           u"/SimObjects/Airplanes/Kestrel_K2/texture.lakeside/thumbnail.jpg"_s));
    // The results are in front and take keys.
    QVERIFY(qobject_cast<frmProcessResults*>(wired.window.tools().constFirst()));
    QVERIFY(wired.window.tools().constFirst()->isAncestorOf(QApplication::focusWidget()));
}

void TestWizardKeys::removal_byKeysAlone()
{
    Wired wired;
    (void)wired.world.install(u"heron-h2-main"_s);
    (void)wired.world.install(u"nested-set"_s);
    press(Qt::Key_F, Qt::AltModifier);
    press(Qt::Key_R);
    QTRY_VERIFY(wired.window.tool(u"remove"_s));
    const auto& wizard = dynamic_cast<WizardFrame&>(*wired.window.tool(u"remove"_s));
    QCOMPARE(QApplication::focusWidget()->objectName(), u"tvwAddons"_s);
    press(Qt::Key_Home);
    press(Qt::Key_Space); // heron-h2
    press(Qt::Key_N, Qt::AltModifier);
    QTRY_COMPARE(wizard.cmdCurrentStep()->accessibleName(), u"Removal Options"_s);
    QCOMPARE(QApplication::focusWidget()->objectName(), u"optRemovalMethod1"_s);
    press(Qt::Key_Down); // moving it to the File Cabinet
    press(Qt::Key_Return);
    QCOMPARE(wizard.cmdCurrentStep()->accessibleName(), u"Removal Summary"_s);
    wired.world.prompts.expect(u"Are you sure you want to remove this addon?"_s, Button::Yes);
    press(Qt::Key_Tab); // out of the list, whose row Return would open
    press(Qt::Key_I, Qt::AltModifier);
    QTRY_VERIFY(!wired.window.tool(u"remove"_s));
    QCOMPARE(modDatabase_Addon::addon(wired.world.database(), 1)->status,
             InstallationStatus::FileCabinet);
    QCOMPARE(modDatabase_Addon::addon(wired.world.database(), 2)->status,
             InstallationStatus::Installed);
}

/// Two installations of one window: the repaint's base is what the first one brought.
void TestWizardKeys::secondAddon_seesTheFirst()
{
    Wired wired;
    const auto finish = [&] {
        press(Qt::Key_I, Qt::AltModifier);
        QTRY_VERIFY(!wired.window.tool(u"install"_s));
    };
    // A repaint looked at before, so that the session knows the simulator without the aircraft.
    (void)wired.install(wired.world.sample(u"kestrel-repaint"_s));
    finish();
    (void)wired.install(wired.world.sample(u"swift-aircraft"_s));
    finish();
    const QByteArray block = "[fltsim.x]\r\ntitle=Swift S1 Regatta\r\nsim=swift_s1\r\nmodel=\r\n"
                             "panel=\r\nsound=\r\ntexture=regatta\r\nui_variation=Regatta\r\n";
    writeHostFile(wired.world.host(u"regatta.zip"_s),
                  zipOf({{u"install.txt"_s, "Copy this into your aircraft.cfg:\r\n\r\n" + block},
                         {u"texture.regatta/swift_s1_t.bmp"_s, standins::picture(64, 64, 1)}}));
    WizardFrame& wizard = wired.install(wired.world.windows(u"regatta.zip"_s));
    press(Qt::Key_T, Qt::AltModifier);
    const GlobalRecord& global = wired.world.context().global;
    const QString swift = global.aircraftFolder + u"Swift_S1\\"_s;
    QCOMPARE(wizard.findChild<QLineEdit*>(u"txtFolder"_s)->text(), swift);
    const auto offered = dynamic_cast<frmInstall_Wizard&>(wizard).details()->aircraftToChooseFrom();
    QVERIFY(std::any_of(offered.begin(), offered.end(), [&](const auto& aircraft) {
        return aircraft.first == swift;
    }));
    finish();
    QVERIFY(readHostFile(wired.world.demo.simulatorHost +
                         u"/SimObjects/Airplanes/Swift_S1/aircraft.cfg"_s)
                .contains("title=Swift S1 Regatta"));
}

void TestWizardKeys::pages_fitTheMainWindow_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("640") << QSize(640, 480);
    QTest::newRow("800") << QSize(800, 600);
    QTest::newRow("1024") << QSize(1024, 768);
}

/// Nothing is out of sight from 800x600 on; below that there are scroll bars, and nothing overlaps.
void TestWizardKeys::pages_fitTheMainWindow()
{
    QFETCH(const QSize, size);
    Wired wired;
    (void)wired.world.install(u"heron-h2-main"_s);
    wired.window.resize(size);
    QStringList hidden;
    const auto look = [&](const WizardFrame& wizard, const QString& name) {
        QApplication::processEvents();
        const QString what = name + u'-' + QString::number(size.width());
        const auto needScrolling = [&] {
            for (const auto* area : wizard.findChildren<QScrollArea*>())
                if (area->isVisible() && (area->widget()->width() > area->viewport()->width() ||
                                          area->widget()->height() > area->viewport()->height()))
                    hidden += what + u" in "_s +
                              QString::fromLatin1(area->parentWidget()->metaObject()->className());
        };
        needScrolling();
        for (const QAbstractScrollArea* area : wizard.window()->findChildren<QMdiArea*>())
            if (area->horizontalScrollBar()->isVisible() || area->verticalScrollBar()->isVisible())
                hidden += what + u" in the main window"_s;
        const QWidget* body = wizard.findChild<QScrollArea*>(u"WizardBody"_s)->widget();
        QVERIFY2(body->width() >= body->minimumSizeHint().width() &&
                     body->height() >= body->minimumSizeHint().height(),
                 qPrintable(what));
        if (size.width() >= 800)
            QCOMPARE(screenshot(wired.window, u"main-"_s + what).size(), 2);
        needScrolling(); // with everything laid out once more
    };
    const QRegularExpression aMethod(u"^opt.*Method$"_s);
    wired.world.prompts.expect(u"also defines one or more other aircraft"_s, Button::No);
    WizardFrame* wizard = &wired.install(everything(wired.world));
    for (StepButton* step : openSteps(*wizard)) {
        step->click();
        QCOMPARE(wizard->cmdCurrentStep(), step);
        look(*wizard, step->objectName().mid(3));
    }
    for (StepButton* step : openSteps(*wizard)) {
        step->click();
        QCOMPARE(wizard->cmdCurrentStep(), step);
        QList<QRadioButton*> methods;
        for (auto* method : wizard->findChildren<QRadioButton*>(aMethod))
            if (method->isVisible())
                methods += method;
        if (methods.size() > 1)
            methods[1]->click(); // takes a folder on every page
        for (auto* box : wizard->findChildren<FolderBox*>())
            if (box->isVisible() && box->isEnabled() && !box->give(u"D:\\nowhere"_s)) {
                QTRY_COMPARE(step->state(), StepState::NeedsAttention); // whatever is said then
                look(*wizard, step->objectName().mid(3) + u"-refused"_s);
            }
        if (!methods.isEmpty())
            methods[0]->click();
        else
            for (auto* box : wizard->findChildren<FolderBox*>())
                box->setFolder({});
    }
    wired.window.command(u"mnuCloseAll"_s);
    QTRY_VERIFY(wired.window.tools().isEmpty());
    wizard = &wired.remove({1});
    for (StepButton* step : openSteps(*wizard)) {
        step->click();
        look(*wizard, u"Removal-"_s + step->objectName().mid(3));
    }
    if (size.width() >= 800)
        QCOMPARE(hidden, QStringList());
}

} // namespace vt::test

using vt::test::TestWizardKeys;
VT_TEST_CLASS(TestWizardKeys)

#include "test_wizardkeys.moc"
