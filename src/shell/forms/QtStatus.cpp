#include "shell/forms/QtStatus.h"

#include <QCoreApplication>
#include <QEventLoop>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 appearsAfterMs = 300;
constexpr qint64 breathEveryMs = 25;
constexpr qint64 estimatesAfterMs = 2000;

Prompt confirmAbort()
{
    return yesNo(u"Confirm Abort"_s, u"Do you really want to abort?"_s, Button::No);
}

} // namespace

void QtStatus::text(const QString& panel, const QString& text)
{
    Q_EMIT panelChanged(panel, text);
    if (text.isEmpty() && m_depth == 0 && panel == u"Primary") {
        m_sinceStart.invalidate();
        Q_EMIT idle();
    } else if (!m_sinceStart.isValid()) {
        m_sinceStart.start();
    }
    breathe();
}

void QtStatus::progress(qint64 done, qint64 total)
{
    if (!m_sinceStart.isValid())
        m_sinceStart.start();
    if (total != m_total || done < m_done) { // another count begins
        m_firstDone = done;
        m_sinceProgress.start();
    }
    m_done = done;
    m_total = total;
    breathe();
}

bool QtStatus::cancelled()
{
    breathe();
    if (!m_cancelRequested || m_cancelled)
        return m_cancelled;
    m_cancelRequested = false;
    m_cancelled = m_prompts.ask(confirmAbort()) == Button::Yes;
    m_sinceProgress.restart(); // the user's time is not the work's
    m_firstDone = m_done;
    return m_cancelled;
}

void QtStatus::breathe()
{
    if (m_breathing || (m_sinceBreath.isValid() && m_sinceBreath.elapsed() < breathEveryMs))
        return;
    m_breathing = true;
    tellProgress();
    QCoreApplication::processEvents(m_depth > 0 ? QEventLoop::AllEvents
                                                : QEventLoop::ExcludeUserInputEvents);
    m_sinceBreath.start();
    m_breathing = false;
}

void QtStatus::tellProgress()
{
    const bool nothingToCount = m_depth == 0 && m_total == 0; // a remark that stays
    if (nothingToCount || !m_sinceStart.isValid() || m_sinceStart.elapsed() < appearsAfterMs)
        return;
    Q_EMIT progressChanged(m_done, m_total);
}

void QtStatus::beginWork()
{
    if (m_depth++ > 0)
        return;
    m_cancelRequested = false;
    m_cancelled = false;
    m_done = 0;
    m_total = 0;
    m_sinceStart.start();
    m_sinceProgress.start();
}

void QtStatus::endWork()
{
    Q_ASSERT(m_depth > 0);
    if (--m_depth > 0)
        return;
    m_cancelRequested = false;
    m_cancelled = false;
    m_done = 0;
    m_total = 0;
    m_sinceStart.invalidate();
    Q_EMIT idle();
}

QString QtStatus::timeLeft() const
{
    const qint64 made = m_done - m_firstDone;
    const qint64 took = m_sinceProgress.isValid() ? m_sinceProgress.elapsed() : 0;
    if (m_total <= 0 || made <= 0 || m_done > m_total || took < estimatesAfterMs)
        return {};
    const qint64 seconds = (took * (m_total - m_done) / made + 999) / 1000;
    if (seconds < 60)
        return u"about "_s + QString::number(qMax<qint64>(1, seconds)) +
               (seconds > 1 ? u" seconds left"_s : u" second left"_s);
    const qint64 minutes = (seconds + 30) / 60;
    return u"about "_s + QString::number(minutes) +
           (minutes > 1 ? u" minutes left"_s : u" minute left"_s);
}

} // namespace vt
