#include "shell/forms/ElidedLabel.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace vt {

namespace {

/// How few characters a line may be shortened to.
constexpr int fewestCharacters = 12;

} // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QFrame(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent) : ElidedLabel(parent)
{
    setText(text);
}

void ElidedLabel::setText(const QString& text)
{
    m_text = text;
    setToolTip(text);
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.horizontalAdvance(m_text) + 2, metrics.height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int few = metrics.averageCharWidth() * fewestCharacters;
    return {std::min(few, metrics.horizontalAdvance(m_text) + 2), metrics.height()};
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(m_text, Qt::ElideMiddle, width());
    style()->drawItemText(&painter,
                          rect(),
                          int(Qt::AlignVCenter | Qt::AlignLeft) | Qt::TextSingleLine,
                          palette(),
                          isEnabled(),
                          shown,
                          foregroundRole());
}

} // namespace vt
