// What all windows of questions have in common: the style's picture for a question's kind, and what
// Escape means.
#pragma once

#include "platform/Prompt.h"

#include <QStyle>

namespace vt {

[[nodiscard]] inline QStyle::StandardPixmap promptIcon(Icon icon)
{
    switch (icon) {
    case Icon::Warning:
        return QStyle::SP_MessageBoxWarning;
    case Icon::Critical:
        return QStyle::SP_MessageBoxCritical;
    case Icon::Question:
        return QStyle::SP_MessageBoxQuestion;
    default:
        return QStyle::SP_MessageBoxInformation;
    }
}

/// What Escape and a closed window stand for: the answer that does the least.
[[nodiscard]] inline Button leastAnswer(const Prompt& prompt)
{
    for (const Button button : {Button::Cancel, Button::No, Button::Ok})
        if (prompt.buttons.contains(button))
            return button;
    return prompt.defaultButton;
}

} // namespace vt
