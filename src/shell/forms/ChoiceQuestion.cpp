#include "shell/forms/ChoiceQuestion.h"

#include "platform/Text.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

ChoiceQuestion::ChoiceQuestion(const ChoicePrompt& prompt, QWidget* parent)
    : QDialog(parent), m_search(new QLineEdit), m_list(new QListWidget), m_found(new QLabel)
{
    setObjectName(u"prompt"_s);
    setWindowTitle(prompt.caption);
    m_search->setObjectName(u"txtSearch"_s);
    m_search->setClearButtonEnabled(true);
    m_search->installEventFilter(this);
    auto* label = new QLabel(u"&Search:"_s);
    label->setBuddy(m_search);
    m_list->setAccessibleName(prompt.caption);
    m_list->setUniformItemSizes(true);
    m_list->addItems(prompt.choices);
    m_found->setObjectName(u"lblFound"_s);
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(m_search, 1);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(line);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_found);
    layout->addWidget(buttons);
    connect(m_search, &QLineEdit::textChanged, this, &ChoiceQuestion::search);
    connect(m_list, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    resize(fontMetrics().averageCharWidth() * 64, fontMetrics().lineSpacing() * 20);
    search({});
    m_search->setFocus();
}

/// Shows the choices that hold every word; the first of them is under the cursor then.
void ChoiceQuestion::search(const QString& words)
{
    const QStringList wanted = words.split(u' ', Qt::SkipEmptyParts);
    int first = -1;
    int found = 0;
    for (int row = 0; row < m_list->count(); ++row) {
        const QString text = m_list->item(row)->text();
        const bool fits = std::all_of(wanted.begin(), wanted.end(), [&text](const QString& word) {
            return containsNoCase(text, word);
        });
        m_list->setRowHidden(row, !fits);
        found += fits ? 1 : 0;
        if (fits && first < 0)
            first = row;
    }
    m_list->setCurrentRow(first);
    m_found->setText(m_list->count() == 0 ? u"There is nothing to choose from."_s
                     : found == 0
                         ? u"None of them fits."_s
                         : QString::number(found) + u" of "_s + QString::number(m_list->count()));
    m_ok->setEnabled(first >= 0);
}

std::optional<qsizetype> ChoiceQuestion::chosen() const
{
    const int row = m_list->currentRow();
    return row < 0 || m_list->isRowHidden(row) ? std::nullopt : std::optional<qsizetype>(row);
}

bool ChoiceQuestion::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp ||
            key == Qt::Key_PageDown) {
            QApplication::sendEvent(m_list, event);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

std::optional<qsizetype> ChoiceQuestion::ask(const ChoicePrompt& prompt, QWidget* parent)
{
    ChoiceQuestion window(prompt, parent);
    return window.exec() == Accepted ? window.chosen() : std::nullopt;
}

} // namespace vt
