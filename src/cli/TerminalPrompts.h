// Questions at a terminal. Off a terminal, or when the user gave an answer for all of them, nothing
// is asked: each question gets that answer, or its default button.
#pragma once

#include "platform/Prompt.h"

#include <QString>

#include <functional>

namespace vt::cli {

/// The button that stands for \a answer ("yes", "no" or "default").
[[nodiscard]] Button answerFor(const Prompt& prompt, const QString& answer);

class TerminalPrompts final : public Prompts
{
public:
    /// \a beforeOutput clears the progress bar.
    TerminalPrompts(bool terminal, QString answer, std::function<void()> beforeOutput);

    Button ask(const Prompt& prompt) override;
    /// The box stays unticked with nobody to ask.
    CheckedAnswer askChecked(const Prompt& prompt) override;
    std::optional<qsizetype> choose(const ChoicePrompt& prompt) override;
    std::optional<QString> askText(const TextPrompt& prompt) override;

private:
    /// One line without its end; nothing at the end of the input.
    static std::optional<QString> readLine();
    void show(const QString& caption, const QString& text);

    bool m_interactive;
    QString m_answer;
    std::function<void()> m_beforeOutput;
};

} // namespace vt::cli
