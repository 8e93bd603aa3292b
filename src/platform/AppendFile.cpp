#include "platform/AppendFile.h"

#include "platform/Utf8.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype flushAt = 256 * 1024;

} // namespace

AppendFile::~AppendFile()
{
    flush();
}

Result AppendFile::open(Gate& gate, const QString& path)
{
    const ResultOf<QByteArray> host = gate.hostPath(path);
    if (!host)
        return host.error();
    m_file = hostfile::Descriptor(
        ::open(host->constData(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, 0644));
    if (!m_file.valid())
        return Result::failure(u"'"_s + path + u"' could not be written: "_s +
                               hostfile::errorText(errno));
    m_buffer.reserve(flushAt + 1024);
    return Result::success();
}

void AppendFile::line(std::initializer_list<QStringView> pieces)
{
    if (!m_file.valid())
        return;
    for (const QStringView piece : pieces)
        appendUtf8(m_buffer, piece);
    raw("\r\n");
}

void AppendFile::raw(QByteArrayView lines)
{
    if (!m_file.valid())
        return;
    m_buffer.append(lines.data(), lines.size());
    if (m_buffer.size() >= flushAt)
        flush();
}

void AppendFile::flush()
{
    qsizetype written = 0;
    while (m_file.valid() && written < m_buffer.size()) {
        const ssize_t n =
            write(m_file.get(), m_buffer.constData() + written, size_t(m_buffer.size() - written));
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            m_file.reset();
        else
            written += n;
    }
    m_buffer.resize(0);
}

} // namespace vt
