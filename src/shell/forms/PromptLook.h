// What all windows of questions have in common: the picture for a question's kind, and what Escape
// means.
#pragma once

#include "platform/Prompt.h"
#include "shell/forms/Icons.h"

#include <QStyle>
#include <QWidget>

namespace vt {

/// The desktop's picture where its theme has one; the program's own otherwise, as that of the style
/// is of 32 pixels, whatever the scale.
[[nodiscard]] inline QIcon promptIcon(Icon icon)
{
    const auto themed = [](const char16_t* name, const QIcon& own) {
        return QIcon::fromTheme(QString::fromUtf16(name), own);
    };
    switch (icon) {
    case Icon::Warning:
        return themed(u"dialog-warning", icons::state(icons::State::Attention));
    case Icon::Critical:
        return themed(u"dialog-error", icons::state(icons::State::Problem));
    case Icon::Question:
        return themed(u"dialog-question", icons::command(QStringLiteral("help")));
    default:
        return themed(u"dialog-information", icons::command(QStringLiteral("info")));
    }
}

[[nodiscard]] inline QPixmap promptPicture(Icon icon, const QWidget& window)
{
    const int side = window.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &window);
    return promptIcon(icon).pixmap(QSize(side, side), window.devicePixelRatio());
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
