#include "shell/forms/frmSplashFSX.h"

#include "shell/GlobalRecord.h"
#include "shell/Settings.h"
#include "shell/forms/Icons.h"

#include <QEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace vt {

void frmSplashFSX::showOver(QWidget* window, Context& context)
{
    const int seconds = context.settings.number(SettingKey::SplashScreenDelay);
    if (seconds <= 0)
        return;
    auto* splash = new frmSplashFSX(context.global.names, window);
    splash->resize(splash->sizeHint());
    splash->toMiddle();
    window->installEventFilter(splash);
    splash->show();
    splash->raise();
    QTimer::singleShot(seconds * 1000, splash, &QObject::deleteLater);
}

frmSplashFSX::frmSplashFSX(const DisplayNames& names, QWidget* parent)
    : QWidget(parent), m_title(names.productTitle), m_simulator(names.simFullTitle)
{
    setObjectName(u"frmSplashFSX"_s);
    setAccessibleName(m_title);
    setFocusPolicy(Qt::NoFocus);
}

void frmSplashFSX::toMiddle()
{
    move(parentWidget()->rect().center() - rect().center());
}

/// A window that opens maximised gets its size only after it was shown.
bool frmSplashFSX::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == parent() && event->type() == QEvent::Resize)
        toMiddle();
    return QWidget::eventFilter(watched, event);
}

QSize frmSplashFSX::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 100, fontMetrics().lineSpacing() * 22};
}

void frmSplashFSX::mousePressEvent(QMouseEvent*)
{
    deleteLater();
}

/// A sky at dusk, the ground below, a track of light; the name over it.
void frmSplashFSX::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal w = width();
    const qreal h = height();
    QLinearGradient sky(0, 0, 0, h * 0.75);
    sky.setColorAt(0, QColor(0x10, 0x2c, 0x52));
    sky.setColorAt(0.7, QColor(0x2d, 0x6d, 0xa8));
    sky.setColorAt(1, QColor(0xe9, 0xb7, 0x73));
    painter.fillRect(rect(), sky);
    QPainterPath hills(QPointF(0, h * 0.8));
    hills.cubicTo(w * 0.25, h * 0.62, w * 0.4, h * 0.86, w * 0.62, h * 0.74);
    hills.cubicTo(w * 0.78, h * 0.66, w * 0.9, h * 0.72, w, h * 0.7);
    hills.lineTo(w, h);
    hills.lineTo(0, h);
    painter.fillPath(hills, QColor(0x12, 0x22, 0x38));
    QPainterPath track(QPointF(-5, h * 0.72));
    track.cubicTo(w * 0.4, h * 0.7, w * 0.75, h * 0.5, w * 0.93, h * 0.16);
    painter.setPen(QPen(QColor(0xf2, 0xb2, 0x33), h / 90.0));
    painter.drawPath(track);
    const int margin = fontMetrics().lineSpacing() * 3 / 2;
    icons::program().paint(&painter, QRect(margin, margin, margin * 2, margin * 2));
    painter.setPen(Qt::white);
    QFont name = font();
    name.setPointSizeF(name.pointSizeF() * 2);
    name.setBold(true);
    painter.setFont(name);
    const QRect text = rect().adjusted(margin * 7 / 2, margin, -margin, -margin);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignTop, m_title);
    painter.setFont(font());
    painter.drawText(rect().adjusted(margin, 0, -margin, -margin / 2),
                     Qt::AlignLeft | Qt::AlignBottom,
                     u"Add-ons for "_s + m_simulator);
}

} // namespace vt
