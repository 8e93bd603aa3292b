// Writes one ZIP archive front to back: entries of an older archive with their packed bytes as they
// are, new ones packed here. Knows no file: it only speaks to a sink, so that whoever places the
// archive (CZIP::Add() through FileActions) decides how it gets to the disk.
#pragma once

#include "archive/ZipDirectory.h"
#include "platform/FileActions.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QString>

#include <memory>

struct libdeflate_compressor;

namespace vt {

class ZipWriter
{
public:
    /// \a level: 0 stores, 1 is fastest, 9 packs best.
    ZipWriter(Content::Sink sink, int level);
    ~ZipWriter();
    ZipWriter(const ZipWriter&) = delete;
    ZipWriter& operator=(const ZipWriter&) = delete;

    /// What stands before the first entry of \a from (a self-extractor's program). Only at the
    /// beginning.
    [[nodiscard]] Result copyPrefix(const ZipDirectory& from);
    /// An entry as it is: header, packed bytes, directory record.
    [[nodiscard]] Result copy(const ZipDirectory& from, const ZipEntry& entry);
    /// A new file, "\" or "/" between folders; a name that ends in one is an empty folder, whose
    /// content is not looked at. Up to 32 MiB are packed whole. Larger content is packed piece by
    /// piece, and stored where packing saves nothing; its transfer may run up to three times and
    /// must give the same bytes. A failure tells what was wrong with the content.
    [[nodiscard]] Result add(const QString& name, const Content& content, bool readOnly = false);
    /// The directory. Nothing may follow.
    [[nodiscard]] Result finish(QByteArrayView comment = {});

    [[nodiscard]] qint64 entries() const { return m_entries; }

private:
    struct Header;

    bool put(QByteArrayView bytes);
    bool flush();
    [[nodiscard]] Result ended() const;
    Result addWhole(Header& header, const Content& content);
    Result addStored(Header& header, const Content& content);
    Result addStreamed(Header& header, const Content& content);
    bool worthPacking(const Content& content);
    void record(const Header& header);
    Result countOne();

    Content::Sink m_sink;
    int m_level;
    libdeflate_compressor* m_compressor = nullptr;
    QByteArray m_buffer;    ///< what is small waits here
    QByteArray m_directory; ///< records of what was written
    QByteArray m_content;   ///< one whole file
    QByteArray m_packed;
    qint64 m_offset = 0;
    qint64 m_entries = 0;
    bool m_refused = false; ///< the sink took no more
};

} // namespace vt
