#include "archive/ByteSource.h"

#include <QTemporaryFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Result unreadable(const QString& path, const QString& why)
{
    return Result::failure(u"The archive '"_s + path + u"' cannot be read: "_s + why,
                           ErrorKind::Surroundings);
}

Result unreadable(const QString& path, int error)
{
    return unreadable(path, QString::fromLocal8Bit(std::strerror(error)) + u'.');
}

class FileSource final : public ByteSource
{
public:
    FileSource(QString name, int fd, qint64 size)
        : ByteSource(std::move(name)), m_fd(fd), m_size(size)
    {}

    ~FileSource() override { close(m_fd); }

    [[nodiscard]] qint64 size() const override { return m_size; }

    [[nodiscard]] Result read(qint64 offset, char* to, qint64 bytes) const override
    {
        if (offset < 0 || bytes < 0 || offset > m_size - bytes)
            return endsEarly();
        while (bytes > 0) {
            const ssize_t n = pread(m_fd, to, size_t(bytes), offset);
            if (n < 0 && errno == EINTR)
                continue;
            if (n < 0)
                return unreadable(name(), errno);
            if (n == 0)
                return endsEarly();
            to += n;
            offset += n;
            bytes -= n;
        }
        return Result::success();
    }

private:
    int m_fd;
    qint64 m_size;
};

class MemorySource final : public ByteSource
{
public:
    MemorySource(QByteArray bytes, QString name)
        : ByteSource(std::move(name)), m_bytes(std::move(bytes))
    {}

    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }

    [[nodiscard]] Result read(qint64 offset, char* to, qint64 bytes) const override
    {
        if (offset < 0 || bytes < 0 || offset > m_bytes.size() - bytes)
            return endsEarly();
        std::memcpy(to, m_bytes.constData() + offset, size_t(bytes));
        return Result::success();
    }

private:
    QByteArray m_bytes;
};

} // namespace

Result ByteSource::endsEarly() const
{
    return Result::failure(u"The archive '"_s + m_name +
                               u"' is truncated: it ends before the data that it announces."_s,
                           ErrorKind::Surroundings);
}

ResultOf<std::shared_ptr<ByteSource>> openFileSource(const Files& files, const QString& path)
{
    const QByteArray host = files.hostPath(path);
    if (host.isEmpty())
        return unreadable(path, u"its drive is not known."_s);
    // A pipe in the archive's place must not hold everything up.
    const int fd = open(host.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return unreadable(path,
                          errno == ENOENT ? u"it does not exist."_s
                                          : QString::fromLocal8Bit(std::strerror(errno)) + u'.');

    struct stat st
    {};

    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        return unreadable(path,
                          S_ISDIR(st.st_mode) ? u"it is a folder."_s : u"it is not a file."_s);
    }
    return std::shared_ptr<ByteSource>(std::make_shared<FileSource>(path, fd, st.st_size));
}

std::shared_ptr<ByteSource> makeMemorySource(QByteArray bytes, QString name)
{
    return std::make_shared<MemorySource>(std::move(bytes), std::move(name));
}

Spool::Spool(QString name, qint64 memoryLimit)
    : ByteSource(std::move(name)), m_memoryLimit(memoryLimit)
{}

Spool::~Spool() = default;

Result Spool::read(qint64 offset, char* to, qint64 bytes) const
{
    if (offset < 0 || bytes < 0 || offset > m_size - bytes)
        return endsEarly();
    if (!m_file) {
        std::memcpy(to, m_bytes.constData() + offset, size_t(bytes));
        return Result::success();
    }
    while (bytes > 0) {
        const ssize_t n = pread(m_file->handle(), to, size_t(bytes), offset);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n < 0 ? unreadable(name(), errno) : endsEarly();
        to += n;
        offset += n;
        bytes -= n;
    }
    return Result::success();
}

bool Spool::toFile()
{
    m_file = std::make_unique<QTemporaryFile>();
    if (!m_file->open()) {
        m_problem = Result::failure(u"A temporary file could not be made: "_s +
                                    m_file->errorString() + u'.');
        return false;
    }
    const QByteArray bytes = std::exchange(m_bytes, {});
    m_size = 0;
    return append(bytes);
}

bool Spool::append(QByteArrayView piece)
{
    if (!m_problem)
        return false;
    if (!m_file && m_size + piece.size() <= m_memoryLimit) {
        m_bytes.append(piece);
        m_size += piece.size();
        return true;
    }
    if (!m_file && !toFile())
        return false;
    while (!piece.isEmpty()) {
        const ssize_t n = pwrite(m_file->handle(), piece.data(), size_t(piece.size()), m_size);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0) {
            m_problem = Result::failure(u"The archive '"_s + name() +
                                            u"' could not be unpacked for reading: "_s +
                                            QString::fromLocal8Bit(std::strerror(errno)) + u'.',
                                        errno == ENOSPC ? ErrorKind::DiskFull : ErrorKind::Failed);
            return false;
        }
        m_size += n;
        piece = piece.sliced(n);
    }
    return true;
}

void Spool::truncate(qint64 size)
{
    m_size = qMin(m_size, size);
    if (!m_file)
        m_bytes.truncate(m_size);
}

int Spool::descriptor()
{
    return m_file || toFile() ? m_file->handle() : -1;
}

SourceBuilder::SourceBuilder(QString name, qint64 memoryLimit)
    : m_name(std::move(name)), m_memoryLimit(memoryLimit)
{}

SourceBuilder::~SourceBuilder() = default;

bool SourceBuilder::append(QByteArrayView piece)
{
    if (!m_file && m_bytes.size() + piece.size() > m_memoryLimit) {
        m_file = std::make_unique<QTemporaryFile>();
        if (!m_file->open() || m_file->write(m_bytes) != m_bytes.size())
            m_problem = m_file->errorString();
        m_bytes = {};
    }
    if (!m_problem.isEmpty())
        return false;
    if (!m_file) {
        m_bytes.append(piece);
        return true;
    }
    if (m_file->write(piece.data(), piece.size()) != piece.size())
        m_problem = m_file->errorString();
    return m_problem.isEmpty();
}

ResultOf<std::shared_ptr<ByteSource>> SourceBuilder::finish()
{
    if (m_file && m_problem.isEmpty() && !m_file->flush())
        m_problem = m_file->errorString();
    const int fd = m_file && m_problem.isEmpty() ? fcntl(m_file->handle(), F_DUPFD_CLOEXEC, 3) : -1;
    if (m_file && m_problem.isEmpty() && fd < 0)
        m_problem = QString::fromLocal8Bit(std::strerror(errno));
    if (!m_problem.isEmpty())
        return Result::failure(u"The archive '"_s + m_name +
                                   u"' could not be unpacked for reading: "_s + m_problem,
                               ErrorKind::Surroundings);
    if (!m_file)
        return makeMemorySource(std::move(m_bytes), m_name);
    return std::shared_ptr<ByteSource>(std::make_shared<FileSource>(m_name, fd, m_file->size()));
}

} // namespace vt
