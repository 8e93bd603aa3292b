#include "support/ScriptedPrompts.h"

namespace vt::test {

ScriptedPrompts::~ScriptedPrompts()
{
    for (const auto& [part, answer] : m_expected)
        QTest::qFail(qPrintable(QStringLiteral("never asked: ") + part), __FILE__, __LINE__);
    for (const auto& [part, answer] : m_expectedTexts)
        QTest::qFail(qPrintable(QStringLiteral("never asked: ") + part), __FILE__, __LINE__);
}

Button ScriptedPrompts::ask(const Prompt& prompt)
{
    asked.push_back(prompt);
    if (m_expected.isEmpty()) {
        if (!defaultsBeyondQueue)
            QTest::qFail(qPrintable(QStringLiteral("unexpected question: ") + prompt.caption +
                                    QStringLiteral(": ") + prompt.text),
                         __FILE__,
                         __LINE__);
        return prompt.defaultButton;
    }
    const auto [part, answer] = m_expected.takeFirst();
    if (!prompt.caption.contains(part) && !wholeText(prompt).contains(part))
        QTest::qFail(qPrintable(QStringLiteral("expected '") + part + QStringLiteral("', asked: ") +
                                prompt.caption + QStringLiteral(": ") + wholeText(prompt)),
                     __FILE__,
                     __LINE__);
    if (!prompt.buttons.contains(answer))
        QTest::qFail("the answer is not among the buttons", __FILE__, __LINE__);
    return answer;
}

CheckedAnswer ScriptedPrompts::askChecked(const Prompt& prompt)
{
    if (prompt.checkBox.isEmpty())
        QTest::qFail("a question without a check box", __FILE__, __LINE__);
    const Button button = ask(prompt);
    return {button, button == Button::Yes && !m_choices.isEmpty()};
}

std::optional<qsizetype> ScriptedPrompts::choose(const ChoicePrompt& prompt)
{
    const QString wanted = m_choices.isEmpty() ? QString() : m_choices.takeFirst();
    if (wanted.isEmpty())
        return std::nullopt;
    for (qsizetype i = 0; i < prompt.choices.size(); ++i)
        if (prompt.choices[i].contains(wanted))
            return i;
    QTest::qFail(qPrintable(QStringLiteral("no such choice: ") + wanted + QStringLiteral(" in ") +
                            prompt.choices.join(QStringLiteral(", "))),
                 __FILE__,
                 __LINE__);
    return std::nullopt;
}

std::optional<QString> ScriptedPrompts::askText(const TextPrompt& prompt)
{
    if (m_expectedTexts.isEmpty()) {
        QTest::qFail(qPrintable(QStringLiteral("unexpected question: ") + prompt.caption),
                     __FILE__,
                     __LINE__);
        return std::nullopt;
    }
    auto [part, answer] = m_expectedTexts.takeFirst();
    if (!prompt.caption.contains(part) && !prompt.text.contains(part))
        QTest::qFail(qPrintable(QStringLiteral("expected '") + part + QStringLiteral("'")),
                     __FILE__,
                     __LINE__);
    return answer;
}

} // namespace vt::test
