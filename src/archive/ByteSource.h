// The bytes of an archive, wherever they lie: a file, memory, or an unnamed temporary file. Reads
// at offsets, never maps. The one place of archive/ that speaks to the operating system.
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QTemporaryFile;

namespace vt {

class ByteSource
{
public:
    /// \a name: what messages call the archive, a Windows text.
    explicit ByteSource(QString name) : m_name(std::move(name)) {}

    virtual ~ByteSource() = default;
    ByteSource(const ByteSource&) = delete;
    ByteSource& operator=(const ByteSource&) = delete;

    [[nodiscard]] const QString& name() const { return m_name; }

    [[nodiscard]] virtual qint64 size() const = 0;
    /// Exactly \a bytes bytes from \a offset; asking beyond size() fails. The text of a failure
    /// names the archive.
    [[nodiscard]] virtual Result read(qint64 offset, char* to, qint64 bytes) const = 0;

protected:
    [[nodiscard]] Result endsEarly() const;

private:
    QString m_name;
};

/// Opens a file for reading. Missing, unreadable, a folder or a device: kind Surroundings.
[[nodiscard]] ResultOf<std::shared_ptr<ByteSource>> openFileSource(const Files& files,
                                                                   const QString& path);

[[nodiscard]] std::shared_ptr<ByteSource> makeMemorySource(QByteArray bytes, QString name);

/// Bytes that are set aside while they are made, and read again meanwhile: in memory up to a limit,
/// beyond it in a temporary file without a name.
class Spool final : public ByteSource
{
public:
    Spool(QString name, qint64 memoryLimit);
    ~Spool() override;

    [[nodiscard]] qint64 size() const override { return m_size; }

    [[nodiscard]] Result read(qint64 offset, char* to, qint64 bytes) const override;
    /// False when the temporary file could not be written; problem() then says why.
    bool append(QByteArrayView piece);
    /// Forgets what lies from \a size on.
    void truncate(qint64 size);

    [[nodiscard]] const Result& problem() const { return m_problem; }

    /// The open file with the bytes, for a program that is given it; -1 when there is none.
    [[nodiscard]] int descriptor();

private:
    bool toFile();

    qint64 m_memoryLimit;
    qint64 m_size = 0;
    QByteArray m_bytes;
    std::unique_ptr<QTemporaryFile> m_file;
    Result m_problem;
};

/// Takes bytes one piece after another and makes a source of them: in memory up to a limit, beyond
/// it in a temporary file without a name, which no crash can leave behind.
class SourceBuilder
{
public:
    SourceBuilder(QString name, qint64 memoryLimit);
    ~SourceBuilder();

    /// False when the temporary file could not be written; finish() then says why.
    bool append(QByteArrayView piece);
    /// Ends the building.
    [[nodiscard]] ResultOf<std::shared_ptr<ByteSource>> finish();

    [[nodiscard]] bool inMemory() const { return !m_file; }

private:
    QString m_name;
    qint64 m_memoryLimit;
    QByteArray m_bytes;
    std::unique_ptr<QTemporaryFile> m_file;
    QString m_problem;
};

} // namespace vt
