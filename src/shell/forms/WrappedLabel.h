// Labels of several lines: without a least height of their own they claim, wherever they may be
// scrolled, the height that their text would have in the narrowest column.
#pragma once

#include <QLabel>

namespace vt {

/// Wraps the label's words; its height follows the width that it gets.
inline void wrap(QLabel* label)
{
    label->setWordWrap(true);
    label->setMinimumHeight(label->fontMetrics().lineSpacing());
}

} // namespace vt
