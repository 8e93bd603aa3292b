#include "simconfig/engine/ConfigNormalizer.h"

#include <QStringDecoder>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

enum class Encoding
{
    Ansi,
    Utf8Marked,
    Utf16Little,
    Utf16Big,
    Binary,
};

/// UTF-16 without its mark: every other byte of an ASCII-like text is a NUL.
bool mostlyNul(const QByteArray& bytes, qsizetype from)
{
    qsizetype nuls = 0;
    qsizetype all = 0;
    for (qsizetype i = from; i < bytes.size(); i += 2, ++all)
        nuls += bytes.at(i) == '\0';
    return all > 1 && nuls * 10 >= all * 9;
}

Encoding encodingOf(const QByteArray& bytes)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return Encoding::Utf8Marked;
    if (bytes.startsWith("\xFF\xFE"))
        return Encoding::Utf16Little;
    if (bytes.startsWith("\xFE\xFF"))
        return Encoding::Utf16Big;
    if (!bytes.contains('\0'))
        return Encoding::Ansi;
    if (bytes.size() % 2 == 0 && mostlyNul(bytes, 1) && !mostlyNul(bytes, 0))
        return Encoding::Utf16Little;
    if (bytes.size() % 2 == 0 && mostlyNul(bytes, 0) && !mostlyNul(bytes, 1))
        return Encoding::Utf16Big;
    return Encoding::Binary;
}

QString decoded(const QByteArray& bytes, Encoding encoding)
{
    if (encoding == Encoding::Utf8Marked)
        return QString::fromUtf8(QByteArrayView(bytes).sliced(3));
    QStringDecoder decoder(encoding == Encoding::Utf16Little ? QStringDecoder::Utf16LE
                                                             : QStringDecoder::Utf16BE);
    QString text = decoder.decode(bytes);
    if (text.startsWith(QChar(0xFEFF)))
        text.remove(0, 1);
    return text;
}

/// Whether any line end is not CR LF.
bool hasOtherLineEnds(const QByteArray& bytes)
{
    qsizetype ends = 0;
    for (qsizetype at = bytes.indexOf('\n'); at >= 0; at = bytes.indexOf('\n', at + 1), ++ends) {
        if (at == 0 || bytes.at(at - 1) != '\r')
            return true;
    }
    return bytes.count('\r') != ends;
}

QByteArray withCrLf(const QByteArray& bytes)
{
    QByteArray out;
    out.reserve(bytes.size() + bytes.size() / 16);
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const char c = bytes.at(i);
        if (c != '\r' && c != '\n') {
            out += c;
            continue;
        }
        if (c == '\r' && i + 1 < bytes.size() && bytes.at(i + 1) == '\n')
            ++i;
        out += "\r\n";
    }
    return out;
}

} // namespace

ResultOf<NormalizedConfig> normalizeConfig(const QByteArray& bytes, const AnsiCodec& ansi)
{
    NormalizedConfig result;
    result.bytes = bytes;
    QStringList done;
    const Encoding encoding = encodingOf(bytes);
    if (encoding == Encoding::Binary) {
        return Result::failure(
            u"The file holds binary data where a configuration text was expected."_s);
    }
    if (encoding != Encoding::Ansi) {
        ResultOf<QByteArray> encoded = ansi.encode(decoded(bytes, encoding));
        if (!encoded)
            return encoded.error();
        result.bytes = std::move(*encoded);
        done.append(encoding == Encoding::Utf8Marked
                        ? u"converted from UTF-8 to the simulator's code page"_s
                        : u"converted from UTF-16 to the simulator's code page"_s);
    }
    if (hasOtherLineEnds(result.bytes)) {
        result.bytes = withCrLf(result.bytes);
        done.append(u"line ends brought to CR LF"_s);
    }
    result.changed = !done.isEmpty();
    result.done = done.join(u", "_s);
    return result;
}

QString
formProblem(const QByteArray& bytes, const ResultOf<NormalizedConfig>& normal, const QString& kind)
{
    if (normal && !normal->changed)
        return {};
    const QString file = u"- The "_s + kind + u" configuration file"_s;
    if (bytes.startsWith("\xef\xbb\xbf"))
        return file +
               u" begins with a UTF-8 mark, which hides its first section. It has to be an ANSI text."_s;
    if (AnsiCodec::looksLikeUtf16OrBinary(bytes))
        return normal ? file + u" is a UTF-16 text. It has to be an ANSI text."_s
                      : file + u" is not an ANSI text. "_s + normal.text;
    return file +
           u" has line ends other than CR LF. It cannot be changed until they are corrected."_s;
}

} // namespace vt
