#include "cli/TerminalPrompts.h"

#include "cli/Console.h"
#include "platform/Text.h"

#include <array>
#include <cstdio>
#include <termios.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

struct ButtonWord
{
    Button button;
    const char16_t* word;
    const char16_t* key; ///< what is enough to type
};

constexpr std::array buttonWords = {
    ButtonWord{Button::Ok, u"ok", u"o"},
    ButtonWord{Button::Yes, u"yes", u"y"},
    ButtonWord{Button::YesToAll, u"yes to all", u"ya"},
    ButtonWord{Button::No, u"no", u"n"},
    ButtonWord{Button::NoToAll, u"no to all", u"na"},
    ButtonWord{Button::Cancel, u"cancel", u"c"},
};

const ButtonWord& wordOf(Button button)
{
    for (const ButtonWord& word : buttonWords)
        if (word.button == button)
            return word;
    return buttonWords.front();
}

/// While this lives, the terminal does not show what is typed.
class Unseen
{
public:
    Unseen() : m_terminal(tcgetattr(STDIN_FILENO, &m_before) == 0)
    {
        termios quiet = m_before;
        quiet.c_lflag &= ~tcflag_t(ECHO);
        quiet.c_lflag |= ECHONL;
        if (m_terminal)
            tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet);
    }

    ~Unseen()
    {
        if (m_terminal)
            tcsetattr(STDIN_FILENO, TCSANOW, &m_before);
    }

    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;

private:
    termios m_before{};
    bool m_terminal;
};

QString choicesLine(const Prompt& prompt)
{
    QStringList choices;
    for (qsizetype i = 0; i < prompt.buttons.size(); ++i) {
        const ButtonWord& word = wordOf(prompt.buttons[i]);
        QString choice = QString::fromUtf16(word.key) + u" = "_s;
        choice +=
            i < prompt.buttonTexts.size() ? prompt.buttonTexts[i] : QString::fromUtf16(word.word);
        choices.append(choice);
    }
    return choices.join(u", "_s) + u" ["_s + QString::fromUtf16(wordOf(prompt.defaultButton).key) +
           u"]: "_s;
}

std::optional<Button> typedButton(const Prompt& prompt, const QString& typed)
{
    if (typed.isEmpty())
        return prompt.defaultButton;
    for (const Button button : prompt.buttons) {
        const ButtonWord& word = wordOf(button);
        if (equalNoCase(typed, word.key) || equalNoCase(typed, word.word))
            return button;
    }
    return std::nullopt;
}

} // namespace

Button answerFor(const Prompt& prompt, const QString& answer)
{
    const QList<Button> wanted = answer == u"yes" ? QList{Button::Yes, Button::YesToAll, Button::Ok}
                                 : answer == u"no"
                                     ? QList{Button::No, Button::NoToAll, Button::Cancel}
                                     : QList<Button>{};
    for (const Button button : wanted)
        if (prompt.buttons.contains(button))
            return button;
    return prompt.defaultButton;
}

TerminalPrompts::TerminalPrompts(bool terminal, QString answer, std::function<void()> beforeOutput)
    : m_interactive(terminal && answer == u"default"), m_answer(std::move(answer)),
      m_beforeOutput(std::move(beforeOutput))
{}

void TerminalPrompts::show(const QString& caption, const QString& text)
{
    m_beforeOutput();
    if (!caption.isEmpty())
        console::error(caption + u":\n"_s);
    console::error(text + u'\n');
}

Button TerminalPrompts::ask(const Prompt& prompt)
{
    if (prompt.buttons.size() == 1) {
        show(prompt.caption, wholeText(prompt));
        return prompt.buttons.first();
    }
    if (!m_interactive)
        return answerFor(prompt, m_answer);
    show(prompt.caption, wholeText(prompt));
    for (;;) {
        console::error(choicesLine(prompt));
        const std::optional<QString> line = readLine();
        if (!line)
            return prompt.defaultButton;
        if (const std::optional<Button> button = typedButton(prompt, line->trimmed()))
            return *button;
    }
}

CheckedAnswer TerminalPrompts::askChecked(const Prompt& prompt)
{
    CheckedAnswer answer{ask(prompt), false};
    if (!m_interactive || answer.button == Button::No || answer.button == Button::Cancel)
        return answer;
    answer.checked = ask(yesNo({}, prompt.checkBox + u'?', Button::No)) == Button::Yes;
    return answer;
}

std::optional<qsizetype> TerminalPrompts::choose(const ChoicePrompt& prompt)
{
    if (!m_interactive)
        return std::nullopt;
    QStringList lines;
    for (qsizetype i = 0; i < prompt.choices.size(); ++i)
        lines.append(QString::number(i + 1) + u": "_s + prompt.choices[i]);
    show(prompt.caption, lines.join(u'\n'));
    for (;;) {
        console::error(u"number (nothing ends): "_s);
        const std::optional<QString> line = readLine();
        if (!line || line->trimmed().isEmpty())
            return std::nullopt;
        const qsizetype number = line->trimmed().toInt();
        if (number >= 1 && number <= prompt.choices.size())
            return number - 1;
    }
}

std::optional<QString> TerminalPrompts::askText(const TextPrompt& prompt)
{
    if (!m_interactive)
        return std::nullopt;
    show(prompt.caption, prompt.text);
    if (prompt.secret) {
        const Unseen unseen;
        console::error(u"(nothing ends): "_s);
        return readLine();
    }
    console::error(u"("_s + prompt.proposal + u" is usual; nothing ends): "_s);
    return readLine();
}

std::optional<QString> TerminalPrompts::readLine()
{
    QByteArray line;
    for (int c = std::fgetc(stdin); c != EOF; c = std::fgetc(stdin)) {
        if (c == '\n')
            return QString::fromUtf8(line);
        line.append(static_cast<char>(c));
    }
    return line.isEmpty() ? std::nullopt : std::optional(QString::fromUtf8(line));
}

} // namespace vt::cli
