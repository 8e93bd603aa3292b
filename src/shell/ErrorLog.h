// The common error reporter: each error goes to "ERROR.LOG" in the program folder under the name of
// the procedure that was running. A call that only reads the program's data writes no log; its
// errors are still kept in memory.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vt {

struct GlobalRecord;
struct Services;

class ErrorLog
{
public:
    /// Both must outlive this.
    ErrorLog(Services& services, const GlobalRecord& global);
    ~ErrorLog();
    ErrorLog(const ErrorLog&) = delete;
    ErrorLog& operator=(const ErrorLog&) = delete;

    /// Deletes the old log and lets this one write. To be called at the start of a call that
    /// writes, with the program folder a root of the gate.
    void startWriting();

    /// One error under the current procedure's name. Never fails: a log that cannot be written is
    /// given up.
    void report(const QString& error);
    /// As above, under \a procedure.
    void report(const QString& procedure, const QString& error);
    /// What is not yet on the disk goes there.
    void flush();

    /// Lines reported so far, at most the first thousand.
    [[nodiscard]] const QStringList& lines() const { return m_lines; }

private:
    Services& m_services;
    const GlobalRecord& m_global;
    QStringList m_lines;
    QByteArray m_content;
    qsizetype m_onDisk = 0;
    bool m_writing = false;
};

} // namespace vt
