// Where long operations say what they do. Only the windows' sink processes events.
#pragma once

#include <QString>

namespace vt {

class StatusSink
{
public:
    virtual ~StatusSink() = default;
    /// Replaces the text of \a panel; the current step's text goes to the panel "Primary".
    virtual void text(const QString& panel, const QString& text) = 0;
    /// \a total 0: the length is not known.
    virtual void progress(qint64 done, qint64 total) = 0;

    /// Whether the user asked to stop; looked at between files only.
    virtual bool cancelled() { return false; }

    /// Lets windows draw themselves and answer. Whoever works or waits long without having anything
    /// to tell (a large file, a child process) calls it often: every 20 ms is not too much, since
    /// most calls cost a look at the clock.
    virtual void breathe() {}

    /// Whether breathe() does anything: then long waits are made in pieces, or beside a child.
    [[nodiscard]] virtual bool breathes() const { return false; }
};

/// Says nothing to nobody.
class SilentStatus final : public StatusSink
{
public:
    void text(const QString&, const QString&) override {}

    void progress(qint64, qint64) override {}
};

} // namespace vt
