#include "cli/TerminalStatus.h"

#include "cli/Console.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

constexpr qint64 appearsAfterMs = 300;
constexpr qint64 redrawnAfterMs = 100;
constexpr qsizetype barLength = 24;
constexpr qsizetype lineLength = 78;

} // namespace

void TerminalStatus::text(const QString& panel, const QString& text)
{
    if (panel != u"Primary")
        return;
    m_text = text;
    if (text.isEmpty())
        clear();
    else
        draw();
}

void TerminalStatus::progress(qint64 done, qint64 total)
{
    m_done = done;
    m_total = total;
    draw();
}

bool TerminalStatus::cancelled()
{
    return console::stopRequested();
}

void TerminalStatus::draw()
{
    if (!m_visible)
        return;
    if (!m_sinceStart.isValid())
        m_sinceStart.start();
    if (m_sinceStart.elapsed() < appearsAfterMs ||
        (m_sinceDrawn.isValid() && m_sinceDrawn.elapsed() < redrawnAfterMs))
        return;
    QString line;
    if (m_total > 0) {
        const qint64 done = std::clamp<qint64>(m_done, 0, m_total);
        const auto filled = static_cast<qsizetype>(done * barLength / m_total);
        line = u'[' + QString(filled, u'#') + QString(barLength - filled, u'.') + u"] "_s +
               QString::number(done * 100 / m_total).rightJustified(3) + u"% "_s;
    }
    line += m_text;
    console::error(u"\r\x1b[K"_s + line.left(lineLength));
    m_drawn = true;
    m_sinceDrawn.start();
}

void TerminalStatus::clear()
{
    if (m_drawn)
        console::error(u"\r\x1b[K"_s);
    m_drawn = false;
    m_sinceDrawn.invalidate();
}

} // namespace vt::cli
