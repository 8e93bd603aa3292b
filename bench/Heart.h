// A timer that beats whenever events are processed. The gaps between beats are what the user of a
// window would feel; the longest are told with what the program was saying.
#pragma once

#include "shell/forms/QtStatus.h"

#include <QElapsedTimer>
#include <QTextStream>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace bench {

constexpr int beatMs = 5;
constexpr qsizetype toldGaps = 8;

struct Gap
{
    double ms = 0;
    double atMs = 0; ///< since the phase began
    QString said;    ///< the last text of the status bar before its end
};

/// Beats whenever events are processed.
class Heart
{
public:
    explicit Heart(vt::QtStatus& status)
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.setInterval(beatMs);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
        QObject::connect(&status,
                         &vt::QtStatus::panelChanged,
                         [this](const QString&, const QString& text) { m_said = text; });
    }

    void begin()
    {
        m_gaps.clear();
        m_said.clear();
        m_timer.start();
        m_clock.start();
        m_last = 0;
    }

    /// Tells the phase's longest gaps; the longest of them in milliseconds.
    double end(const QString& phase)
    {
        beat();
        m_timer.stop();
        std::sort(
            m_gaps.begin(), m_gaps.end(), [](const Gap& a, const Gap& b) { return a.ms > b.ms; });
        QTextStream out(stdout);
        out << phase << ": " << qRound(m_last) << " ms, " << m_gaps.size()
            << " beats, the longest gaps:\n";
        for (const Gap& gap : m_gaps.first(qMin(toldGaps, m_gaps.size())))
            out << "  " << QString::number(gap.ms, 'f', 1).rightJustified(8) << " ms at "
                << qRound(gap.atMs) << " ms: " << gap.said << '\n';
        return m_gaps.isEmpty() ? m_last : m_gaps.constFirst().ms;
    }

private:
    void beat()
    {
        const double now = double(m_clock.nsecsElapsed()) / 1e6;
        m_gaps.append({now - m_last, m_last, m_said});
        m_last = now;
    }

    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_last = 0;
    QString m_said;
    QList<Gap> m_gaps;
};

} // namespace bench
