#include "shell/ErrorLog.h"

#include "platform/Services.h"
#include "shell/GlobalRecord.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype keptLines = 1000;
constexpr qsizetype writtenAtOnce = 4 * 1024;

QString logFile(const GlobalRecord& global)
{
    return global.programFile(u"ERROR.LOG"_s);
}

} // namespace

ErrorLog::ErrorLog(Services& services, const GlobalRecord& global)
    : m_services(services), m_global(global)
{}

ErrorLog::~ErrorLog()
{
    flush();
}

void ErrorLog::startWriting()
{
    m_writing = true;
    m_onDisk = 0;
    if (m_services.files.isFile(logFile(m_global)))
        (void)m_services.actions.remove(logFile(m_global));
    flush();
}

void ErrorLog::report(const QString& error)
{
    report(m_global.currentProcedure, error);
}

void ErrorLog::report(const QString& procedure, const QString& error)
{
    const QString line = m_services.clock.now().toString(u"yyyy-MM-dd HH:mm:ss"_s) + u"  "_s +
                         procedure + u": "_s + error;
    if (m_lines.size() < keptLines)
        m_lines.append(line);
    m_content += line.toUtf8() + "\r\n";
    // The file is written whole and synced each time; a long one only when it has grown by a third.
    if (m_content.size() < writtenAtOnce || m_content.size() > m_onDisk + m_onDisk / 3)
        flush();
}

void ErrorLog::flush()
{
    if (!m_writing || m_content.size() == m_onDisk)
        return;
    if (m_services.actions.replace(logFile(m_global), m_content))
        m_onDisk = m_content.size();
    else
        m_writing = false;
}

} // namespace vt
