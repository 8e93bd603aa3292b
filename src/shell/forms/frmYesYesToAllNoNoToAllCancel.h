// The question whether a file replaces another: both side by side, and five answers with what each
// of them does. Knows no rule of an installation: it shows a prompt and returns its button.
#pragma once

#include "platform/Prompt.h"

#include <QDialog>

class QGridLayout;
class QLayout;
class QPushButton;

namespace vt {

class frmYesYesToAllNoNoToAllCancel : public QDialog
{
    Q_OBJECT

public:
    /// \a prompt has the two files (`replacing`) and a sentence for each button.
    explicit frmYesYesToAllNoNoToAllCancel(const Prompt& prompt, QWidget* parent = nullptr);

    /// Closed without an answer, it is Cancel.
    [[nodiscard]] Button answer() const { return m_answer; }

    /// Shows the window and waits for the answer.
    [[nodiscard]] static Button ask(const Prompt& prompt, QWidget* parent);

private:
    QLayout* headline(const Prompt& prompt);
    QLayout* comparison(const ReplaceQuestion& files);
    QLayout* answers(const Prompt& prompt);
    void addAnswer(QGridLayout* grid, const Prompt& prompt, qsizetype number);

    Button m_answer = Button::Cancel;
    QPushButton* m_default = nullptr;
};

} // namespace vt
