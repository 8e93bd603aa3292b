#include "shell/forms/StepButton.h"

#include "shell/forms/Icons.h"

#include <QEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// A transparent icon of the others' size, so that captions stand below each other.
QIcon emptyIcon(int extent)
{
    QPixmap pixmap(extent, extent);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

} // namespace

StepButton::StepButton(const QString& caption, QWidget* parent) : QToolButton(parent)
{
    setText(caption);
    setAccessibleName(QString(caption).remove(u'&'));
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    setAutoRaise(true);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    refresh();
}

void StepButton::setState(StepState state, const QString& why)
{
    m_state = state;
    m_why = why;
    setEnabled(state != StepState::Off && state != StepState::Later);
    refresh();
}

void StepButton::setCurrent(bool current)
{
    setChecked(current);
    refresh();
}

void StepButton::setHint(const QString& hint)
{
    m_hint = hint;
    refresh();
}

QString StepButton::stateWord() const
{
    if (m_state == StepState::NeedsAttention)
        return u"attention"_s;
    if (isChecked())
        return u"here"_s;
    if (m_state == StepState::Done)
        return u"done"_s;
    return m_state == StepState::Off ? u"none"_s : QString();
}

void StepButton::refresh()
{
    if (m_state == StepState::NeedsAttention)
        setIcon(icons::state(icons::State::Attention));
    else if (isChecked())
        setIcon(icons::state(icons::State::Here));
    else if (m_state == StepState::Open || m_state == StepState::Later)
        setIcon(emptyIcon(iconSize().width()));
    else
        setIcon(
            icons::state(m_state == StepState::Done ? icons::State::Done : icons::State::Nothing));
    const QString state = m_why.isEmpty() ? stateWord() : stateWord() + u": "_s + m_why;
    setAccessibleDescription(state);
    QStringList lines = {m_hint, m_why};
    lines.removeAll(QString());
    setToolTip(lines.join(u'\n'));
    updateGeometry();
    update();
}

QSize StepButton::sizeHint() const
{
    // Room for the longest word, so that the column keeps its width.
    QSize size = QToolButton::sizeHint();
    size.rwidth() += fontMetrics().horizontalAdvance(u"  attention  "_s);
    size.setHeight(qMax(size.height(), fontMetrics().height() * 3 / 2));
    return size;
}

void StepButton::paintEvent(QPaintEvent* event)
{
    QToolButton::paintEvent(event);
    QPainter painter(this);
    const int margin = fontMetrics().averageCharWidth();
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
    painter.drawText(
        rect().adjusted(margin, 0, -margin, 0), Qt::AlignRight | Qt::AlignVCenter, stateWord());
}

void StepButton::changeEvent(QEvent* event)
{
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::PaletteChange)
        refresh();
}

} // namespace vt
