// The progress bar on standard error: what is being done, and how far it is. Shown only at a
// terminal, and only once the work has taken a while.
#pragma once

#include "platform/Status.h"

#include <QElapsedTimer>

namespace vt::cli {

class TerminalStatus final : public StatusSink
{
public:
    explicit TerminalStatus(bool visible) : m_visible(visible) {}

    void text(const QString& panel, const QString& text) override;
    void progress(qint64 done, qint64 total) override;
    bool cancelled() override;

    /// Takes the bar off the screen; it comes back with the next progress.
    void clear();

private:
    void draw();

    bool m_visible;
    bool m_drawn = false;
    QString m_text;
    qint64 m_done = 0;
    qint64 m_total = 0;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_sinceDrawn;
};

} // namespace vt::cli
