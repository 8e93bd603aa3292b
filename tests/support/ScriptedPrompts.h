// Answers from a queue; an unexpected question and an unasked one both fail the test.
#pragma once

#include "platform/Prompt.h"

#include <QList>
#include <QTest>

#include <utility>

namespace vt::test {

class ScriptedPrompts final : public Prompts
{
public:
    ~ScriptedPrompts() override;

    /// The next question must hold \a part in its caption or text.
    void expect(const QString& part, Button answer) { m_expected.push_back({part, answer}); }

    void expectText(const QString& part, std::optional<QString> answer)
    {
        m_expectedTexts.push_back({part, std::move(answer)});
    }

    /// A question with a check box, ticked; then the choice that holds \a choice (empty: none).
    void expectTicked(const QString& part, const QString& choice)
    {
        m_expected.push_back({part, Button::Yes});
        m_choices.push_back(choice);
    }

    Button ask(const Prompt& prompt) override;
    CheckedAnswer askChecked(const Prompt& prompt) override;
    std::optional<qsizetype> choose(const ChoicePrompt& prompt) override;
    std::optional<QString> askText(const TextPrompt& prompt) override;

    /// Every question asked so far, in order.
    QList<Prompt> asked;
    /// Questions beyond the queue take their default button instead of failing.
    bool defaultsBeyondQueue = false;

private:
    QList<std::pair<QString, Button>> m_expected;
    QList<std::pair<QString, std::optional<QString>>> m_expectedTexts;
    QStringList m_choices;
};

} // namespace vt::test
