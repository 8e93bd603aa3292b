// One out of many: a list that is narrowed by typing.
#pragma once

#include "platform/Prompt.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace vt {

class ChoiceQuestion : public QDialog
{
    Q_OBJECT

public:
    explicit ChoiceQuestion(const ChoicePrompt& prompt, QWidget* parent = nullptr);

    /// The index of the choice under the cursor; nothing when none is shown.
    [[nodiscard]] std::optional<qsizetype> chosen() const;

    /// Shows the window and waits.
    [[nodiscard]] static std::optional<qsizetype> ask(const ChoicePrompt& prompt, QWidget* parent);

protected:
    /// Up and Down in the search line move through the list.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void search(const QString& words);

    QLineEdit* m_search;
    QListWidget* m_list;
    QLabel* m_found;
    QPushButton* m_ok = nullptr;
};

} // namespace vt
