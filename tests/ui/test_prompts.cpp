// What a message box shows, and what each way out of it answers.
#include "install/CAddonInstaller.h"
#include "remove/PartReferences.h"
#include "shell/forms/QtPrompts.h"
#include "support/TestMain.h"
#include "ui/Screenshot.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;
using namespace vt;

class TestPrompts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keys_answer_data();
    void keys_answer();
    void everything_isShown();
    void checkBox_isASecondAnswer();
    void list_standsInAWindowOfItsOwn();
    void replacedFile_isShownSideBySide();
    void choice_isSearched();
    void choice_andText();
};

namespace {

/// Once a dialog is open, \a act is called with it.
void whenOpen(const std::function<void(QWidget*)>& act)
{
    QTimer::singleShot(0, qApp, [act] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog)
            act(dialog);
        else
            whenOpen(act);
    });
}

} // namespace

void TestPrompts::keys_answer_data()
{
    QTest::addColumn<QList<Button>>("buttons");
    QTest::addColumn<Button>("standard");
    QTest::addColumn<int>("key");
    QTest::addColumn<Button>("answer");
    const QList<Button> yesNo{Button::Yes, Button::No};
    const QList<Button> three{Button::Yes, Button::No, Button::Cancel};
    QTest::newRow("enter takes the default")
        << yesNo << Button::No << int(Qt::Key_Return) << Button::No;
    QTest::newRow("another default") << three << Button::Yes << int(Qt::Key_Return) << Button::Yes;
    QTest::newRow("escape is no") << yesNo << Button::Yes << int(Qt::Key_Escape) << Button::No;
    QTest::newRow("escape cancels")
        << three << Button::Yes << int(Qt::Key_Escape) << Button::Cancel;
    QTest::newRow("escape of an announcement")
        << QList<Button>{Button::Ok} << Button::Ok << int(Qt::Key_Escape) << Button::Ok;
}

void TestPrompts::keys_answer()
{
    QFETCH(QList<Button>, buttons);
    QFETCH(Button, standard);
    QFETCH(int, key);
    Prompt prompt;
    prompt.caption = u"Caption"_s;
    prompt.buttons = buttons;
    prompt.defaultButton = standard;
    whenOpen([key](QWidget* box) { QTest::keyClick(box, Qt::Key(key)); });
    QtPrompts prompts;
    QTEST(prompts.ask(prompt), "answer");
}

void TestPrompts::everything_isShown()
{
    Prompt prompt;
    prompt.caption = u"Confirm File Replace"_s;
    prompt.heading = u"One or more addons depend on the addon you are removing..."_s;
    prompt.text = u"<b>a & b</b>"_s;
    prompt.buttons = {Button::Yes, Button::YesToAll, Button::No, Button::NoToAll, Button::Cancel};
    prompt.buttonTexts = {u"First."_s, u"Second."_s, u"Third."_s, u"Fourth."_s, u"Fifth."_s};
    prompt.advice = u"Advice"_s;
    whenOpen([](QWidget* widget) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        QVERIFY(box);
        QCOMPARE(box->windowTitle(), u"Confirm File Replace"_s);
        QCOMPARE(box->buttons().size(), 5);
        const auto* below = box->findChild<QLabel*>(u"qt_msgbox_informativelabel"_s);
        QCOMPARE(below->textFormat(), Qt::PlainText);
        const QString shown = box->text() + below->text();
        for (const QString& part : {u"depend on"_s, u"<b>a & b</b>"_s, u"Advice"_s, u"Fifth."_s})
            QVERIFY2(shown.contains(part), qPrintable(shown));
        test::screenshot(*box, u"prompt"_s);
        box->button(QMessageBox::NoToAll)->click();
    });
    QtPrompts prompts;
    QCOMPARE(prompts.ask(prompt), Button::NoToAll);
}

void TestPrompts::checkBox_isASecondAnswer()
{
    Prompt prompt = yesNo(u"Caption"_s, u"Text"_s, Button::No);
    prompt.checkBox = u"Assign another one"_s;
    whenOpen([](QWidget* widget) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        QVERIFY(!box->checkBox()->isChecked());
        box->checkBox()->click();
        box->button(QMessageBox::Yes)->click();
    });
    QtPrompts prompts;
    const CheckedAnswer answer = prompts.askChecked(prompt);
    QCOMPARE(answer.button, Button::Yes);
    QVERIFY(answer.checked);
}

void TestPrompts::list_standsInAWindowOfItsOwn()
{
    QStringList aircraft;
    for (int i = 1; i <= 30; ++i)
        aircraft.append(u"Nest Wren "_s + QString::number(i) + u" (sound)"_s);
    const Prompt prompt = partreferences::confirmRemoval(Catalogue::Kind::Sound, aircraft, true);
    whenOpen([&](QWidget* dialog) {
        QCOMPARE(dialog->windowTitle(), u"Confirm Sound Removal"_s);
        QCOMPARE(dialog->findChild<QListWidget*>(u"lstNames"_s)->count(), 30);
        QVERIFY(dialog->findChild<QLabel*>(u"lblAdvice"_s)
                    ->text()
                    .endsWith(u"Select Yes to remove the sound addon. Select No to abort."_s));
        auto* check = dialog->findChild<QCheckBox*>();
        QCOMPARE(check->text(), u"Assign new sound references now"_s);
        test::screenshot(*dialog, u"prompt-sound-removal"_s);
        check->click();
        QTest::keyClick(dialog, Qt::Key_Return); // the default is No
    });
    QtPrompts prompts;
    CheckedAnswer answer = prompts.askChecked(prompt);
    QVERIFY(answer.button == Button::No && answer.checked);
    whenOpen([](QWidget* dialog) {
        dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Yes)->click();
    });
    answer = prompts.askChecked(prompt);
    QVERIFY(answer.button == Button::Yes && !answer.checked);
    whenOpen([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QCOMPARE(prompts.ask(prompt), Button::No);
}

void TestPrompts::replacedFile_isShownSideBySide()
{
    whenOpen([](QWidget* dialog) { dialog->findChild<QPushButton*>(u"cmdNoToAll"_s)->click(); });
    QtPrompts prompts;
    QCOMPARE(prompts.ask(confirmFileReplace({u"C:\\FSX\\a.txt"_s})), Button::NoToAll);
}

void TestPrompts::choice_isSearched()
{
    QList<partreferences::StandIn> sounds;
    for (int i = 0; i < 200; ++i)
        sounds.append({u"Demo Kestrel K"_s + QString::number(i), {}});
    const ChoicePrompt prompt =
        partreferences::selectStandIn(Catalogue::Kind::Sound, u"Nest Owl"_s, sounds);
    QtPrompts prompts;
    whenOpen([](QWidget* dialog) {
        QCOMPARE(dialog->windowTitle(), u"Select a sound to replace 'Nest Owl'"_s);
        auto* search = dialog->findChild<QLineEdit*>(u"txtSearch"_s);
        QTest::keyClicks(search, u"k19 DEMO"_s);
        test::screenshot(*dialog, u"prompt-choose-sound"_s);
        QTest::keyClick(search, Qt::Key_Down);
        QTest::keyClick(search, Qt::Key_Return);
    });
    QCOMPARE(prompts.choose(prompt), std::optional<qsizetype>(190));
    whenOpen([](QWidget* dialog) {
        QTest::keyClicks(dialog->findChild<QLineEdit*>(u"txtSearch"_s), u"none of these"_s);
        QVERIFY(!dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    QCOMPARE(prompts.choose(prompt), std::nullopt);
}

void TestPrompts::choice_andText()
{
    QtPrompts prompts;
    whenOpen([](QWidget* dialog) {
        dialog->findChild<QListWidget*>()->setCurrentRow(1);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    QCOMPARE(prompts.choose({u"Select"_s, {u"a"_s, u"b"_s}}), std::optional<qsizetype>(1));
    whenOpen([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QVERIFY(!prompts.choose({u"Select"_s, {u"a"_s}}));
    whenOpen([](QWidget* dialog) {
        QCOMPARE(dialog->findChild<QLineEdit*>()->text(), u"C:\\old\\"_s);
        QTest::keyClicks(dialog->findChild<QLineEdit*>(), u"new"_s);
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    QCOMPARE(prompts.askText({u"Folder"_s, u"Which?"_s, u"C:\\old\\"_s}),
             std::optional<QString>(u"new"_s));
    whenOpen([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    QVERIFY(!prompts.askText({u"Folder"_s, u"Which?"_s, {}}));
}

VT_TEST_CLASS(TestPrompts)

#include "test_prompts.moc"
