// Questions as message boxes over the window that is in use: the only place where such boxes are
// made. A question that has a window of its own is handed to it.
#pragma once

#include "platform/Prompt.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QMessageBox;

namespace vt {

class QtPrompts final : public Prompts
{
public:
    /// Where boxes lie when no window is active; may be set late and go early.
    void setMainWindow(QWidget* window) { m_main = window; }

    /// Opens a window of its own for some questions (those whose buttons have texts, say); nothing:
    /// this one is not such a question.
    std::function<std::optional<Button>(QWidget* parent, const Prompt& prompt)> ownWindow;

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
