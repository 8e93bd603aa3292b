// Questions to the user as plain values, and the one interface that answers them. What can be asked
// before an operation is asked by the front end and passed as an option; this is for the rest.
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

enum class Button
{
    Ok,
    Yes,
    YesToAll,
    No,
    NoToAll,
    Cancel,
};

enum class Icon
{
    None,
    Information,
    Question,
    Warning,
    Critical,
};

/// Facts of the two files that a question about replacing one is about.
struct ReplaceQuestion
{
    QString target;
    bool readOnly = false; ///< the existing one
    bool changed = false;  ///< by somebody else than us since it was installed
    qint64 existingSize = 0;
    QDateTime existingDate = {};
    qint64 newSize = 0;
    QDateTime newDate = {}; ///< invalid when unknown

    friend bool operator==(const ReplaceQuestion&, const ReplaceQuestion&) = default;
};

/// One question or announcement. Comparable, so that tests can expect it.
struct Prompt
{
    QString caption;
    QString text;
    Icon icon = Icon::Question;
    QList<Button> buttons = {Button::Ok};
    Button defaultButton = Button::Ok;
    QStringList buttonTexts; ///< empty, or one sentence for each button, in the order of buttons
    QString heading = {};    ///< a line above the text; may be empty
    QStringList list = {};   ///< names below the text
    QString advice = {};     ///< below the list
    QString checkBox = {};   ///< a second answer, unticked at first; empty: there is none
    /// What the text says of two files, for a window that shows them side by side.
    std::optional<ReplaceQuestion> replacing = {};

    friend bool operator==(const Prompt&, const Prompt&) = default;
};

/// The answer to a question with a check box.
struct CheckedAnswer
{
    Button button = Button::Ok;
    bool checked = false;
};

/// A list out of which one is to be chosen.
struct ChoicePrompt
{
    QString caption;
    QStringList choices;

    friend bool operator==(const ChoicePrompt&, const ChoicePrompt&) = default;
};

/// A request for one line of text.
struct TextPrompt
{
    QString caption;
    QString text;
    QString proposal;
    bool secret = false; ///< what is entered is not shown

    friend bool operator==(const TextPrompt&, const TextPrompt&) = default;
};

/// Answers questions: message boxes, a terminal, or a script in tests.
class Prompts
{
public:
    virtual ~Prompts() = default;
    /// One of \a prompt's buttons.
    virtual Button ask(const Prompt& prompt) = 0;
    /// As ask(), for a prompt with a check box.
    virtual CheckedAnswer askChecked(const Prompt& prompt) = 0;
    /// An index into the choices; nothing when the user chose none.
    virtual std::optional<qsizetype> choose(const ChoicePrompt& prompt) = 0;
    /// The text entered; empty optional or empty text when the user gave none.
    virtual std::optional<QString> askText(const TextPrompt& prompt) = 0;
};

/// Everything that a prompt says, below its caption.
[[nodiscard]] inline QString wholeText(const Prompt& prompt)
{
    QStringList paragraphs = {prompt.heading, prompt.text};
    if (!prompt.list.isEmpty())
        paragraphs.append(QStringLiteral("    ") + prompt.list.join(QStringLiteral("\n    ")));
    paragraphs.append(prompt.advice);
    paragraphs.removeAll(QString());
    return paragraphs.join(prompt.list.isEmpty() && prompt.advice.isEmpty()
                               ? QStringLiteral("\n")
                               : QStringLiteral("\n\n"));
}

/// An announcement with an Ok button.
[[nodiscard]] inline Prompt announcement(QString caption, QString text, Icon icon)
{
    return {std::move(caption), std::move(text), icon, {Button::Ok}, Button::Ok, {}};
}

[[nodiscard]] inline Prompt
yesNo(QString caption, QString text, Button defaultButton, Icon icon = Icon::Question)
{
    return {
        std::move(caption), std::move(text), icon, {Button::Yes, Button::No}, defaultButton, {}};
}

[[nodiscard]] inline Prompt
yesNoCancel(QString caption, QString text, Button defaultButton, Icon icon = Icon::Question)
{
    return {std::move(caption),
            std::move(text),
            icon,
            {Button::Yes, Button::No, Button::Cancel},
            defaultButton,
            {}};
}

} // namespace vt
