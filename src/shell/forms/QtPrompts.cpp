#include "shell/forms/QtPrompts.h"

#include "shell/forms/ChoiceQuestion.h"
#include "shell/forms/ListQuestion.h"
#include "shell/forms/PromptLook.h"
#include "shell/forms/frmYesYesToAllNoNoToAllCancel.h"

#include <QApplication>
#include <QCheckBox>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct ButtonRow
{
    Button button;
    QMessageBox::StandardButton standard;
};

constexpr std::array<ButtonRow, 6> buttonRows = {{
    {Button::Ok, QMessageBox::Ok},
    {Button::Yes, QMessageBox::Yes},
    {Button::YesToAll, QMessageBox::YesToAll},
    {Button::No, QMessageBox::No},
    {Button::NoToAll, QMessageBox::NoToAll},
    {Button::Cancel, QMessageBox::Cancel},
}};

QMessageBox::StandardButton standardOf(Button button)
{
    return buttonRows[static_cast<size_t>(button)].standard;
}

Button buttonOf(int standard)
{
    for (const ButtonRow& row : buttonRows)
        if (row.standard == standard)
            return row.button;
    return Button::Cancel;
}

void addTexts(QMessageBox& box, const Prompt& prompt)
{
    QStringList below;
    if (prompt.heading.isEmpty()) {
        box.setText(prompt.text.trimmed());
    } else {
        box.setText(prompt.heading);
        below.append(prompt.text);
    }
    below.append(prompt.advice);
    below.removeAll(QString());
    box.setInformativeText(below.join(u"\n\n"_s));
}

void addButtons(QMessageBox& box, const Prompt& prompt)
{
    for (const Button button : prompt.buttons)
        box.addButton(standardOf(button));
    box.setDefaultButton(standardOf(prompt.defaultButton));
    box.setEscapeButton(standardOf(leastAnswer(prompt)));
    // What each answer does stands beside its name, and again at the button.
    QStringList lines;
    for (qsizetype i = 0; i < prompt.buttonTexts.size() && i < prompt.buttons.size(); ++i) {
        QAbstractButton* button = box.button(standardOf(prompt.buttons[i]));
        button->setToolTip(prompt.buttonTexts[i]);
        button->setAccessibleDescription(prompt.buttonTexts[i]);
        lines.append(button->text().remove(u'&') + u": "_s + prompt.buttonTexts[i]);
    }
    if (!lines.isEmpty())
        box.setInformativeText((box.informativeText() + u"\n\n"_s + lines.join(u'\n')).trimmed());
}

} // namespace

QWidget* QtPrompts::parent() const
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* active = QApplication::activeWindow())
        return active;
    return m_main;
}

CheckedAnswer QtPrompts::show(const Prompt& prompt)
{
    QMessageBox box(QMessageBox::NoIcon, prompt.caption, {}, QMessageBox::NoButton, parent());
    box.setObjectName(u"prompt"_s);
    if (prompt.icon != Icon::None)
        keepPromptPicture(
            box, prompt.icon, [&box](const QPixmap& picture) { box.setIconPixmap(picture); });
    box.setTextFormat(Qt::PlainText);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse);
    addTexts(box, prompt);
    addButtons(box, prompt);
    QCheckBox* check = nullptr;
    if (!prompt.checkBox.isEmpty()) {
        check = new QCheckBox(prompt.checkBox);
        box.setCheckBox(check);
    }
    // The box itself takes this one for rich text where it looks like it.
    if (auto* below = box.findChild<QLabel*>(u"qt_msgbox_informativelabel"_s))
        below->setTextFormat(Qt::PlainText);
    const Button answer = buttonOf(box.exec());
    return {answer, check && check->isChecked()};
}

Button QtPrompts::ask(const Prompt& prompt)
{
    if (prompt.replacing)
        return frmYesYesToAllNoNoToAllCancel::ask(prompt, parent());
    return askChecked(prompt).button;
}

CheckedAnswer QtPrompts::askChecked(const Prompt& prompt)
{
    return prompt.list.isEmpty() ? show(prompt) : ListQuestion::ask(prompt, parent());
}

std::optional<qsizetype> QtPrompts::choose(const ChoicePrompt& prompt)
{
    return ChoiceQuestion::ask(prompt, parent());
}

std::optional<QString> QtPrompts::askText(const TextPrompt& prompt)
{
    QInputDialog dialog(parent());
    dialog.setObjectName(u"prompt"_s);
    dialog.setWindowTitle(prompt.caption);
    dialog.setLabelText(prompt.text);
    dialog.setTextValue(prompt.proposal);
    if (prompt.secret)
        dialog.setTextEchoMode(QLineEdit::Password);
    // Paths are proposed here: room for one.
    dialog.resize(dialog.fontMetrics().averageCharWidth() * 72, dialog.sizeHint().height());
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.textValue();
}

} // namespace vt
