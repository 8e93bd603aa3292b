// Reads entries of one ZIP archive. The hot path of every installation: an entry costs at most one
// read of the source, neighbouring small ones share it, and nothing is allocated once warm.
#pragma once

#include "archive/ArchiveReader.h"
#include "archive/ZipDirectory.h"

#include <QByteArrayView>
#include <QList>

#include <memory>

struct libdeflate_decompressor;

namespace vt {

/// Buffers that all readers of one manipulator share: one reads at a time.
struct ZipScratch
{
    ZipScratch();
    ~ZipScratch();
    ZipScratch(const ZipScratch&) = delete;
    ZipScratch& operator=(const ZipScratch&) = delete;

    /// A part of a source kept in memory, so that the next small entry is already there.
    struct Window
    {
        const ByteSource* source = nullptr;
        qint64 offset = 0;
        qint64 bytes = 0;
        qint64 room = 0;
        qint64 ahead = 0; ///< bytes to read ahead at the next miss; grows while reading in order
        std::unique_ptr<char[]> data;
    };

    Window window;
    std::unique_ptr<char[]> output;
    qint64 outputRoom = 0;
    libdeflate_decompressor* decompressor = nullptr;
};

class ZipReader final : public ArchiveReader
{
public:
    ZipReader(std::shared_ptr<const ZipDirectory> directory, std::shared_ptr<ZipScratch> scratch);
    ~ZipReader() override;

    [[nodiscard]] Result readable(int key) const override;

    /// Key k is entry k - 1 of the directory. A folder has no bytes; what is not readable() is
    /// refused.
    Result read(int key, const Content::Sink& sink) override;

    [[nodiscard]] QList<int> locked() const override { return m_locked; }

    bool tryPassword(const QByteArray& password,
                     const std::function<bool(qint64 done)>& goOn) override;

    [[nodiscard]] int lastCode() const override { return m_code; }

    [[nodiscard]] const ZipDirectory& directory() const { return *m_directory; }

private:
    /// Why the entry cannot be read, by its header alone; success when nothing is known.
    Result check(int key, int& code) const;
    [[nodiscard]] Result told(const ZipEntry& entry, const QString& why) const;
    Result failed(const ZipEntry& entry, int code, const QString& why);
    Result wrongCrc(const ZipEntry& entry);
    /// \a bytes from \a offset, valid until the next call.
    Result view(qint64 offset, qint64 bytes, QByteArrayView& data);
    Result checkLocal(const ZipEntry& entry, QByteArrayView header);
    Result findData(const ZipEntry& entry, qint64& offset);
    Result readWhole(const ZipEntry& entry, const Content::Sink& sink);
    Result inflate(const ZipEntry& entry, QByteArrayView packed, QByteArrayView& data);
    Result streamStored(const ZipEntry& entry, const Content::Sink& sink);
    Result streamPacked(const ZipEntry& entry, const Content::Sink& sink);
    [[nodiscard]] const ZipEntry& entryOf(int key) const;
    // ZipReader_Passwords.cpp
    Result decrypt(const ZipEntry& entry, bool whole, const Content::Sink& sink);
    [[nodiscard]] int headerCode(const ZipEntry& entry, const QByteArray& password);
    [[nodiscard]] bool confirmed(QList<int> keys, const QByteArray& password);
    Result streamWith(const ZipEntry& entry, const QByteArray& password, const Content::Sink& sink);
    [[nodiscard]] QByteArray passwordOf(const ZipEntry& entry);

    std::shared_ptr<const ZipDirectory> m_directory;
    std::shared_ptr<ZipScratch> m_scratch;
    QList<QByteArray> m_passwords; ///< those that opened entries
    QList<int> m_locked;           ///< keys, ascending
    int m_code = 0;
};

} // namespace vt
