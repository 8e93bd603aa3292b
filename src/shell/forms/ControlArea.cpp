#include "shell/forms/ControlArea.h"

#include "shell/forms/Icons.h"

#include <QEvent>
#include <QMdiSubWindow>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int darkBelow = 128; ///< lightness

} // namespace

ControlArea::ControlArea(QWidget* parent) : QMdiArea(parent)
{
    setObjectName(u"ControlArea"_s);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setActivationOrder(QMdiArea::ActivationHistoryOrder);
    setAccessibleName(u"Tools"_s);
}

void ControlArea::setGround(const QColor& colour, bool isDefault)
{
    m_colour = colour;
    m_isDefault = isDefault;
    applyGround();
}

void ControlArea::applyGround()
{
    const QColor own = palette().color(QPalette::Window);
    const QColor ground = m_isDefault && own.lightness() < darkBelow ? own.darker(130) : m_colour;
    if (background() != QBrush(ground))
        setBackground(ground);
}

void ControlArea::changeEvent(QEvent* event)
{
    QMdiArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_colour.isValid())
        applyGround();
}

void ControlArea::paintEvent(QPaintEvent* event)
{
    QMdiArea::paintEvent(event);
    for (const QMdiSubWindow* child : subWindowList())
        if (!child->isHidden())
            return;
    paintHelp();
}

void ControlArea::paintHelp()
{
    QPainter painter(viewport());
    const QColor ground = background().color();
    QColor ink = ground.lightness() < darkBelow ? Qt::white : Qt::black;
    ink.setAlphaF(0.7f);
    const int line = fontMetrics().lineSpacing();
    const int icon = 4 * line;
    QRect place = viewport()->rect().adjusted(line, line, -line, -line);
    place.setTop(qMax(place.top(), place.center().y() - 5 * line));
    icons::program().paint(&painter, QRect(place.left(), place.top(), place.width(), icon));
    place.setTop(place.top() + icon + line);
    painter.setPen(ink);
    QFont heading = font();
    heading.setPointSizeF(heading.pointSizeF() * 1.3);
    painter.setFont(heading);
    painter.drawText(
        place, Qt::AlignHCenter | Qt::AlignTop, u"Drop an add-on here to install it"_s);
    painter.setFont(font());
    place.setTop(place.top() + 2 * line);
    painter.drawText(
        place,
        Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap,
        u"An archive (ZIP or RAR) or a folder. All add-ons that are installed are listed in the menu Addons."_s);
}

} // namespace vt
