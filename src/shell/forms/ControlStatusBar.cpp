#include "shell/forms/ControlStatusBar.h"

#include "shell/forms/ElidedLabel.h"
#include "shell/forms/Icons.h"

#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int progressSteps = 1000;

} // namespace

ControlStatusBar::ControlStatusBar(QWidget* parent)
    : QStatusBar(parent), m_primary(new ElidedLabel), m_secondary(new QLabel),
      m_timeLeft(new QLabel), m_progress(new QProgressBar), m_cancel(new QToolButton)
{
    setObjectName(u"ControlStatusBar"_s);
    m_primary->setObjectName(u"Primary"_s);
    m_primary->setAccessibleName(u"Status"_s);
    m_secondary->setObjectName(u"Secondary"_s);
    m_secondary->setAccessibleName(u"Totals"_s);
    m_secondary->setTextFormat(Qt::PlainText);
    m_progress->setObjectName(u"picControlProgressBar"_s);
    m_progress->setAccessibleName(u"Progress"_s);
    m_progress->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
    m_cancel->setObjectName(u"cancelWork"_s);
    m_cancel->setText(u"Click here to cancel."_s);
    m_cancel->setToolTip(u"Stops before the next file. Escape does the same."_s);
    m_cancel->setIcon(icons::state(icons::State::Problem));
    m_cancel->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_cancel->setFocusPolicy(Qt::StrongFocus);
    addPermanentWidget(m_primary, 1);
    addPermanentWidget(m_timeLeft);
    addPermanentWidget(m_progress);
    addPermanentWidget(m_cancel);
    addPermanentWidget(m_secondary);
    connect(m_cancel, &QToolButton::clicked, this, &ControlStatusBar::cancelClicked);
    hideProgress();
}

void ControlStatusBar::setPanel(const QString& panel, const QString& text)
{
    if (panel == u"Primary")
        m_primary->setText(text);
    else if (panel == u"Secondary")
        m_secondary->setText(text);
}

QString ControlStatusBar::panel(const QString& panel) const
{
    return panel == u"Primary" ? m_primary->text() : m_secondary->text();
}

void ControlStatusBar::showProgress(qint64 done, qint64 total, const QString& timeLeft)
{
    m_progress->setRange(0, total > 0 ? progressSteps : 0);
    if (total > 0)
        m_progress->setValue(
            int(double(qBound<qint64>(0, done, total)) / double(total) * progressSteps));
    m_timeLeft->setText(timeLeft);
    m_timeLeft->setVisible(!timeLeft.isEmpty());
    m_progress->show();
    m_cancel->setVisible(m_mayCancel);
}

void ControlStatusBar::hideProgress()
{
    m_timeLeft->hide();
    m_progress->hide();
    m_cancel->hide();
}

void ControlStatusBar::offerCancel(bool on)
{
    m_mayCancel = on;
    if (!on)
        m_cancel->hide();
}

} // namespace vt
