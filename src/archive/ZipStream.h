// Unpacks one entry's bytes through libzip, for methods and sizes that ZipReader does not inflate
// itself. libzip sees a small archive made up around the entry, never the real one: so neither a
// prefix nor 50,000 neighbours nor a lying header can disturb it.
#pragma once

#include "archive/ZipDirectory.h"
#include "platform/FileActions.h"
#include "platform/Result.h"

namespace vt {

/// Whether the library can unpack \a method.
[[nodiscard]] bool canStreamMethod(int method);

/// Whether the library can decrypt and unpack an encrypted entry, given its password.
[[nodiscard]] bool canDecrypt(const ZipEntry& entry);

/// How a streamed reading ended: \a code 0 is whole and right, else libzip's number, and \a why
/// its sentence.
struct StreamEnd
{
    int code = 0;
    QString why;
    bool sinkRefused = false;
};

/// Unpacks \a entry, whose packed bytes begin at \a dataOffset of \a source. \a password: of an
/// encrypted one, as bytes.
[[nodiscard]] StreamEnd streamEntry(const ByteSource& source,
                                    const ZipEntry& entry,
                                    qint64 dataOffset,
                                    const QByteArray& password,
                                    const Content::Sink& sink);

/// As streamEntry(), up to where the first byte would come: of an encrypted entry, whether its
/// header lets \a password pass (ZIP_ER_WRONGPASSWD when not).
[[nodiscard]] StreamEnd streamBeginning(const ByteSource& source,
                                        const ZipEntry& entry,
                                        qint64 dataOffset,
                                        const QByteArray& password);

} // namespace vt
