// Questions as message boxes over the window that is in use: the only place where such boxes are
// made. A replaced file, questions with lists, and choices have windows of their own.
#pragma once

#include "platform/Prompt.h"

#include <QPointer>
#include <QWidget>

class QMessageBox;

namespace vt {

class QtPrompts final : public Prompts
{
public:
    /// Where boxes lie when no window is active; may be set late and go early.
    void setMainWindow(QWidget* window) { m_main = window; }

    Button ask(const Prompt& prompt) override;
    CheckedAnswer askChecked(const Prompt& prompt) override;
    std::optional<qsizetype> choose(const ChoicePrompt& prompt) override;
    std::optional<QString> askText(const TextPrompt& prompt) override;

private:
    [[nodiscard]] QWidget* parent() const;
    CheckedAnswer show(const Prompt& prompt);

    QPointer<QWidget> m_main;
};

} // namespace vt
