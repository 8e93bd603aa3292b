// What all windows of questions have in common: the picture for a question's kind, and what Escape
// means.
#pragma once

#include "platform/Prompt.h"

#include <QPixmap>

#include <functional>

class QWidget;

namespace vt {

/// Gives \a show the picture for a question in \a window, now and whenever the palette changes: the
/// desktop's where its theme has one, else the program's own, as that of the style is of 32 pixels,
/// whatever the scale.
void keepPromptPicture(QWidget& window, Icon icon, const std::function<void(const QPixmap&)>& show);

/// What Escape and a closed window stand for: the answer that does the least.
[[nodiscard]] inline Button leastAnswer(const Prompt& prompt)
{
    for (const Button button : {Button::Cancel, Button::No, Button::Ok})
        if (prompt.buttons.contains(button))
            return button;
    return prompt.defaultButton;
}

} // namespace vt
