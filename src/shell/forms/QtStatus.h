// Where long operations tell windows what they do. While one runs, this keeps the windows drawn and
// takes the click that cancels it; everything else is the main window's to disable.
#pragma once

#include "platform/Prompt.h"
#include "platform/Status.h"

#include <QElapsedTimer>
#include <QObject>

namespace vt {

class QtStatus final : public QObject, public StatusSink
{
    Q_OBJECT

public:
    /// \a prompts asks whether to abort; must outlive this.
    explicit QtStatus(Prompts& prompts) : m_prompts(prompts) {}

    void text(const QString& panel, const QString& text) override;
    void progress(qint64 done, qint64 total) override;
    /// Asks for confirmation once after each requestCancel().
    bool cancelled() override;
    void breathe() override;

    [[nodiscard]] bool breathes() const override { return true; }

    /// Between these two a long operation runs that may be cancelled; calls nest. Outside of them
    /// windows are drawn, but take no input while something works.
    void beginWork();
    void endWork();

    [[nodiscard]] bool working() const { return m_depth > 0; }

    /// The user wants to stop; the operation asks at its next file.
    void requestCancel() { m_cancelRequested = true; }

    /// "about 2 minutes left"; empty while nothing can be said.
    [[nodiscard]] QString timeLeft() const;

Q_SIGNALS:
    /// The text of a panel, "Primary" or "Secondary".
    void panelChanged(const QString& panel, const QString& text);
    /// From 0.3 s of work on. \a total 0: the length is not known.
    void progressChanged(qint64 done, qint64 total);
    /// The work is over; there is no progress any more.
    void idle();

private:
    void tellProgress();

    Prompts& m_prompts;
    int m_depth = 0;
    bool m_breathing = false;
    bool m_cancelRequested = false;
    bool m_cancelled = false;
    qint64 m_done = 0;
    qint64 m_total = 0;
    qint64 m_firstDone = 0;
    QElapsedTimer m_sinceStart;    ///< of this work
    QElapsedTimer m_sinceProgress; ///< of the present count
    QElapsedTimer m_sinceBreath;
};

} // namespace vt
