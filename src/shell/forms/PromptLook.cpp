#include "shell/forms/PromptLook.h"

#include "shell/forms/Icons.h"

#include <QEvent>
#include <QStyle>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QIcon iconOf(Icon icon)
{
    switch (icon) {
    case Icon::Warning:
        return QIcon::fromTheme(u"dialog-warning"_s, icons::state(icons::State::Attention));
    case Icon::Critical:
        return QIcon::fromTheme(u"dialog-error"_s, icons::state(icons::State::Problem));
    case Icon::Question:
        return QIcon::fromTheme(u"dialog-question"_s, icons::command(u"help"_s));
    default:
        return QIcon::fromTheme(u"dialog-information"_s, icons::command(u"info"_s));
    }
}

/// Belongs to the window that it watches.
class PictureKeeper final : public QObject
{
public:
    PictureKeeper(QWidget& window, Icon icon, std::function<void(const QPixmap&)> show)
        : QObject(&window), m_window(window), m_icon(icon), m_show(std::move(show))
    {
        window.installEventFilter(this);
        draw();
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::PaletteChange)
            draw();
        return QObject::eventFilter(watched, event);
    }

private:
    void draw()
    {
        const int side = m_window.style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
        m_show(iconOf(m_icon).pixmap(QSize(side, side), m_window.devicePixelRatio()));
    }

    QWidget& m_window;
    Icon m_icon;
    std::function<void(const QPixmap&)> m_show;
};

} // namespace

void keepPromptPicture(QWidget& window, Icon icon, const std::function<void(const QPixmap&)>& show)
{
    new PictureKeeper(window, icon, show);
}

} // namespace vt
