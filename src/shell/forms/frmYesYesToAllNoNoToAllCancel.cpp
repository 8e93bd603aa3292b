#include "shell/forms/frmYesYesToAllNoNoToAllCancel.h"

#include "platform/Text.h"
#include "shell/forms/ElidedLabel.h"
#include "shell/forms/PromptLook.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct AnswerButton
{
    Button button;
    QString name;
    QString text;
};

AnswerButton answerButton(Button button)
{
    switch (button) {
    case Button::Ok:
    case Button::Yes:
        return {button, u"cmdYes"_s, u"&Yes"_s};
    case Button::YesToAll:
        return {button, u"cmdYesToAll"_s, u"Yes to &All"_s};
    case Button::No:
        return {button, u"cmdNo"_s, u"&No"_s};
    case Button::NoToAll:
        return {button, u"cmdNoToAll"_s, u"N&o to All"_s};
    case Button::Cancel:
        break;
    }
    return {Button::Cancel, u"cmdCancel"_s, u"&Cancel"_s};
}

QString sizeOf(qint64 bytes)
{
    const QString exact = QLocale().toString(bytes) + (bytes == 1 ? u" byte"_s : u" bytes"_s);
    return bytes < 1024 ? exact : sizeText(bytes) + u" ("_s + exact + u')';
}

QString dateOf(const QDateTime& date)
{
    return date.isValid() ? QLocale().toString(date, QLocale::ShortFormat) : u"unknown"_s;
}

/// What one file is beside the other; empty when one of the dates is unknown.
QString ageOf(const QDateTime& own, const QDateTime& other)
{
    if (!own.isValid() || !other.isValid())
        return {};
    // Archives keep dates to two seconds.
    const qint64 seconds = other.secsTo(own);
    if (qAbs(seconds) < 2)
        return u"Same date"_s;
    return seconds > 0 ? u"Newer"_s : u"Older"_s;
}

QLabel* boldLabel(const QString& text)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setBold(true);
    label->setFont(font);
    return label;
}

} // namespace

frmYesYesToAllNoNoToAllCancel::frmYesYesToAllNoNoToAllCancel(const Prompt& prompt, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(u"frmYesYesToAllNoNoToAllCancel"_s);
    setWindowTitle(prompt.caption);
    const int gap = style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing) * 2;
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(headline(prompt));
    layout->addSpacing(gap);
    if (prompt.replacing)
        layout->addLayout(comparison(*prompt.replacing));
    if (!prompt.advice.isEmpty()) {
        auto* advice = new QLabel(prompt.advice);
        advice->setObjectName(u"lblAdvice"_s);
        advice->setWordWrap(true);
        layout->addSpacing(gap / 2);
        layout->addWidget(advice);
    }
    layout->addSpacing(gap);
    layout->addLayout(answers(prompt));
    layout->addStretch();
    setMinimumWidth(fontMetrics().averageCharWidth() * 68);
    // Only now the buttons know their window.
    if (m_default) {
        m_default->setDefault(true);
        m_default->setFocus();
    }
}

/// The icon, what is the matter, and the file's place.
QLayout* frmYesYesToAllNoNoToAllCancel::headline(const Prompt& prompt)
{
    auto* icon = new QLabel;
    keepPromptPicture(
        *this, prompt.icon, [icon](const QPixmap& picture) { icon->setPixmap(picture); });
    auto* texts = new QVBoxLayout;
    // The first line of the text says what is the matter; the rest is shown side by side.
    const QString matter = prompt.replacing ? prompt.text.section(u":\n"_s, 0, 0) : prompt.text;
    auto* heading = boldLabel(matter);
    heading->setObjectName(u"lblHeading"_s);
    heading->setWordWrap(true);
    texts->addWidget(heading);
    if (prompt.replacing) {
        auto* target = new ElidedLabel(prompt.replacing->target);
        target->setObjectName(u"lblTarget"_s);
        texts->addWidget(target);
    }
    auto* row = new QHBoxLayout;
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    row->setSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) * 2);
    return row;
}

QLayout* frmYesYesToAllNoNoToAllCancel::comparison(const ReplaceQuestion& files)
{
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(fontMetrics().averageCharWidth() * 3);
    const auto column = [&](int number,
                            const QString& heading,
                            qint64 size,
                            const QDateTime& date,
                            const QDateTime& other) {
        grid->addWidget(boldLabel(heading), 0, number);
        grid->addWidget(new QLabel(sizeOf(size)), 1, number);
        grid->addWidget(new QLabel(dateOf(date)), 2, number);
        const QString age = ageOf(date, other);
        auto* state = age == u"Newer"_s ? boldLabel(age) : new QLabel(age);
        state->setObjectName(number == 1 ? u"lblExistingAge"_s : u"lblNewAge"_s);
        grid->addWidget(state, 3, number);
        grid->setColumnStretch(number, 1);
    };
    grid->addWidget(new QLabel(u"Size:"_s), 1, 0);
    grid->addWidget(new QLabel(u"Date:"_s), 2, 0);
    column(1, u"Existing file"_s, files.existingSize, files.existingDate, files.newDate);
    column(2, u"New file"_s, files.newSize, files.newDate, files.existingDate);
    return grid;
}

QLayout* frmYesYesToAllNoNoToAllCancel::answers(const Prompt& prompt)
{
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 1);
    grid->setHorizontalSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) * 2);
    for (qsizetype i = 0; i < prompt.buttons.size(); ++i)
        addAnswer(grid, prompt, i);
    return grid;
}

void frmYesYesToAllNoNoToAllCancel::addAnswer(QGridLayout* grid,
                                              const Prompt& prompt,
                                              qsizetype number)
{
    const AnswerButton answer = answerButton(prompt.buttons.at(number));
    const QString sentence = prompt.buttonTexts.value(number);
    auto* button = new QPushButton(answer.text);
    button->setObjectName(answer.name);
    button->setAccessibleDescription(sentence);
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, [this, chosen = answer.button] {
        m_answer = chosen;
        done(chosen == Button::Cancel ? Rejected : Accepted);
    });
    if (answer.button == prompt.defaultButton)
        m_default = button;
    auto* label = new QLabel(sentence);
    label->setWordWrap(true);
    grid->addWidget(button, int(number), 0);
    grid->addWidget(label, int(number), 1);
}

Button frmYesYesToAllNoNoToAllCancel::ask(const Prompt& prompt, QWidget* parent)
{
    frmYesYesToAllNoNoToAllCancel window(prompt, parent);
    window.exec();
    return window.answer();
}

} // namespace vt
