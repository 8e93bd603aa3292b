#include "shell/forms/DarkMarks.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int darkBelow = 128; ///< lightness
constexpr float lineOverGround = 0.5F;
constexpr qreal boxRadius = 2;

} // namespace

DarkMarks::DarkMarks() : QProxyStyle(u"fusion"_s) {}

void DarkMarks::install()
{
    const QStyle* style = QApplication::style();
    if (!qobject_cast<const DarkMarks*>(style) && style->name() == u"fusion")
        QApplication::setStyle(new DarkMarks);
}

void DarkMarks::drawPrimitive(PrimitiveElement element,
                              const QStyleOption* option,
                              QPainter* painter,
                              const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool round = element == PE_IndicatorRadioButton;
    if (!round && element != PE_IndicatorCheckBox && element != PE_IndicatorItemViewItemCheck)
        return;
    const QPalette::ColorGroup group =
        option->state & State_Enabled ? QPalette::Active : QPalette::Disabled;
    if (option->palette.color(group, QPalette::Base).lightness() >= darkBelow)
        return;
    QColor line = option->palette.color(group, QPalette::Text);
    line.setAlphaF(lineOverGround);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(line);
    painter->setBrush(Qt::NoBrush);
    const QRectF place = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
    if (round)
        painter->drawEllipse(place);
    else
        painter->drawRoundedRect(place, boxRadius, boxRadius);
    painter->restore();
}

} // namespace vt
