#include "shell/forms/ListQuestion.h"

#include "shell/forms/PromptLook.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Lines of the list that are in sight at once, at the most.
constexpr qsizetype linesInSight = 10;

QDialogButtonBox::StandardButton boxButtonOf(Button button)
{
    switch (button) {
    case Button::Ok:
        return QDialogButtonBox::Ok;
    case Button::Yes:
        return QDialogButtonBox::Yes;
    case Button::YesToAll:
        return QDialogButtonBox::YesToAll;
    case Button::No:
        return QDialogButtonBox::No;
    case Button::NoToAll:
        return QDialogButtonBox::NoToAll;
    case Button::Cancel:
        break;
    }
    return QDialogButtonBox::Cancel;
}

QLabel* wrapped(const QString& text, const QString& name)
{
    auto* label = new QLabel(text);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

ListQuestion::ListQuestion(const Prompt& prompt, QWidget* parent)
    : QDialog(parent), m_answer(leastAnswer(prompt))
{
    setObjectName(u"prompt"_s);
    setWindowTitle(prompt.caption);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(headline(prompt));
    addList(prompt, layout);
    if (!prompt.advice.isEmpty())
        layout->addWidget(wrapped(prompt.advice, u"lblAdvice"_s));
    if (!prompt.checkBox.isEmpty()) {
        m_check = new QCheckBox(prompt.checkBox);
        m_check->setObjectName(u"chkSecondAnswer"_s);
        layout->addWidget(m_check);
    }
    layout->addLayout(answers(prompt));
    setMinimumWidth(fontMetrics().averageCharWidth() * 60);
    // Only now the buttons know their window, which would make its first one the default.
    if (m_default) {
        m_default->setDefault(true);
        m_default->setFocus();
    }
}

QLayout* ListQuestion::headline(const Prompt& prompt)
{
    auto* icon = new QLabel;
    keepPromptPicture(
        *this, prompt.icon, [icon](const QPixmap& picture) { icon->setPixmap(picture); });
    auto* texts = new QVBoxLayout;
    if (!prompt.heading.isEmpty()) {
        QLabel* heading = wrapped(prompt.heading, u"lblHeading"_s);
        QFont bold = heading->font();
        bold.setBold(true);
        heading->setFont(bold);
        texts->addWidget(heading);
    }
    texts->addWidget(wrapped(prompt.text.trimmed(), u"lblText"_s));
    auto* row = new QHBoxLayout;
    row->setSpacing(row->spacing() * 2);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    return row;
}

void ListQuestion::addList(const Prompt& prompt, QVBoxLayout* layout)
{
    auto* list = new QListWidget;
    list->setObjectName(u"lstNames"_s);
    list->setAccessibleName(prompt.text);
    list->setUniformItemSizes(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->addItems(prompt.list);
    const qsizetype lines = std::clamp(prompt.list.size(), qsizetype(3), linesInSight);
    const int line = list->sizeHintForRow(0) > 0 ? list->sizeHintForRow(0) : fontMetrics().height();
    list->setMinimumHeight(line * 3 + 2 * list->frameWidth());
    const int wanted = line * int(lines) + 2 * list->frameWidth();
    if (lines < linesInSight)
        list->setMaximumHeight(wanted);
    auto* copy = new QAction(u"&Copy"_s, list);
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, [names = prompt.list] {
        QGuiApplication::clipboard()->setText(names.join(u'\n'));
    });
    list->addAction(copy);
    list->setContextMenuPolicy(Qt::ActionsContextMenu);
    layout->addWidget(list, 1);
}

/// What each answer does stands above the buttons, and again at each.
QLayout* ListQuestion::answers(const Prompt& prompt)
{
    auto* column = new QVBoxLayout;
    auto* buttons = new QDialogButtonBox;
    QStringList lines;
    for (qsizetype i = 0; i < prompt.buttons.size(); ++i) {
        const Button answer = prompt.buttons.at(i);
        QPushButton* button = buttons->addButton(boxButtonOf(answer));
        const QString sentence = prompt.buttonTexts.value(i);
        button->setAccessibleDescription(sentence);
        if (!sentence.isEmpty())
            lines.append(button->text().remove(u'&') + u": "_s + sentence);
        connect(button, &QPushButton::clicked, this, [this, answer] {
            m_answer = answer;
            accept();
        });
        if (answer == prompt.defaultButton)
            m_default = button;
    }
    if (!lines.isEmpty())
        column->addWidget(wrapped(lines.join(u'\n'), u"lblAnswers"_s));
    column->addWidget(buttons);
    return column;
}

CheckedAnswer ListQuestion::ask(const Prompt& prompt, QWidget* parent)
{
    ListQuestion window(prompt, parent);
    window.exec();
    return {window.m_answer, window.m_check && window.m_check->isChecked()};
}

} // namespace vt
