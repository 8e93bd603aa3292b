// Reads the headers of one volume of a RAR archive; one class a format, for RarDirectory alone.
#pragma once

#include "archive/RarDirectory.h"

namespace vt {

/// What both formats share.
class RarDirectory::Reader
{
public:
    Reader(RarDirectory& directory, int volume);
    virtual ~Reader() = default;
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    /// From the byte behind the signature to the end; false when the directory has failed.
    virtual bool read(qint64 at) = 0;

    bool moreVolumes = false;
    bool numberedNames = false; ///< "name.part2.rar"
    bool first = true;          ///< as far as its main header tells

protected:
    /// \a bytes at \a at of the volume; false when they are not all there, and the directory fails.
    bool take(qint64 at, qint64 bytes, QByteArray& to);
    bool truncated();
    bool damaged(const QString& why);
    bool encryptedHeaders();
    /// Takes the entry, or joins it to the one whose further part it is. False for a limit.
    bool add(RarEntry entry, bool splitBefore, bool splitAfter);
    /// A size from an archive, refused when it cannot be one.
    bool checkSizes(const RarEntry& entry);

    RarDirectory& m_d;
    const ByteSource& m_source;
    int m_volume;
};

class RarDirectory::Reader4 final : public Reader
{
public:
    using Reader::Reader;
    bool read(qint64 at) override;

private:
    bool checkHeader(quint8 type, quint16 flags, QByteArrayView header);
    bool readEntry(quint8 type, quint16 flags, QByteArrayView header, qint64 at, qint64& next);

    quint16 m_mainFlags = 0;
};

class RarDirectory::Reader5 final : public Reader
{
public:
    using Reader::Reader;
    bool read(qint64 at) override;

private:
    class Fields;
    bool readMain(Fields& fields);
    bool readEntry(Fields& fields,
                   quint64 type,
                   quint64 flags,
                   QByteArrayView extra,
                   qint64 data,
                   qint64 dataBytes);
    bool readExtra(QByteArrayView extra, RarEntry& entry, QString& copied);
};

} // namespace vt
