// A question about named things: the names in a list of their own, the advice below it, and a
// second answer as a check box. Shows a prompt and returns its answer.
#pragma once

#include "platform/Prompt.h"

#include <QDialog>

class QCheckBox;
class QLayout;
class QPushButton;
class QVBoxLayout;

namespace vt {

class ListQuestion : public QDialog
{
    Q_OBJECT

public:
    explicit ListQuestion(const Prompt& prompt, QWidget* parent = nullptr);

    /// Shows the window and waits for the answer. Closed without one, it is the answer that does
    /// the least.
    [[nodiscard]] static CheckedAnswer ask(const Prompt& prompt, QWidget* parent);

private:
    QLayout* headline(const Prompt& prompt);
    void addList(const Prompt& prompt, QVBoxLayout* layout);
    QLayout* answers(const Prompt& prompt);

    Button m_answer;
    QCheckBox* m_check = nullptr;
    QPushButton* m_default = nullptr;
};

} // namespace vt
