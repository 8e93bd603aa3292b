#include "archive/RarSignature.h"

#include "platform/Text.h"

namespace vt::rarsignature {

namespace {

constexpr qint64 searched = 1 << 20;
constexpr QByteArrayView common("Rar!\x1a\x07", 6);

Found foundIn(QByteArrayView bytes, qsizetype from)
{
    for (qsizetype at = bytes.indexOf(common, from); at >= 0; at = bytes.indexOf(common, at + 1)) {
        const QByteArrayView rest = bytes.sliced(at + common.size());
        if (rest.startsWith('\0'))
            return {Format::Rar4, at, common.size() + 1};
        if (rest.startsWith(QByteArrayView("\x01\x00", 2)))
            return {Format::Rar5, at, common.size() + 2};
    }
    return {};
}

QByteArray head(const ByteSource& source, qint64 bytes)
{
    QByteArray read(qMin(source.size(), bytes), Qt::Uninitialized);
    return source.read(0, read.data(), read.size()) ? read : QByteArray();
}

} // namespace

Found atBeginning(const ByteSource& source)
{
    const QByteArray bytes = head(source, common.size() + 2);
    return bytes.startsWith(common) ? foundIn(bytes, 0) : Found();
}

Found find(const ByteSource& source)
{
    if (const Found first = atBeginning(source); first.format != Format::None)
        return first;
    const QByteArray start = head(source, 4);
    if (!start.startsWith("MZ") && !start.startsWith("\x7f"
                                                     "ELF"))
        return {};
    return foundIn(head(source, searched), 0);
}

bool isRar(const Files& files, const QString& path)
{
    if (endsWithNoCase(path, u".rar"))
        return true;
    const auto source = openFileSource(files, path);
    return source && atBeginning(**source).format != Format::None;
}

} // namespace vt::rarsignature
