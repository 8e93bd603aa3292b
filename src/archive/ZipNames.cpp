#include "archive/ZipNames.h"

#include <QDateTime>
#include <QStringDecoder>
#include <QtEndian>

#include <libdeflate.h>

using namespace Qt::StringLiterals;

namespace vt {

qint64 CZIPFileItem::modifiedNs() const
{
    if (!dteDate.isValid())
        return -1;
    const qint64 ms = QDateTime(dteDate, dteTime).toMSecsSinceEpoch();
    return ms < 0 ? -1 : ms * 1'000'000;
}

} // namespace vt

namespace vt::zipnames {

namespace {

// The upper halves of the two pages, which every system must read alike.
constexpr char16_t upper437[129] =
    u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒáíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
    u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00a0";
constexpr char16_t upper1252[33] = u"€\u0081‚ƒ„…†‡ˆ‰Š‹Œ\u008dŽ\u008f\u0090‘’“”•–—˜™š›œ\u009džŸ";

bool isAscii(QByteArrayView bytes)
{
    for (const char c : bytes) {
        if (static_cast<signed char>(c) < 0)
            return false;
    }
    return true;
}

bool isUtf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    return !decoder.hasError() && !text.contains(QChar::ReplacementCharacter);
}

} // namespace

Page pageOf(QByteArrayView name, quint16 madeBy, quint16 flags)
{
    // Told apart by nothing, and the most common by far.
    if (isAscii(name))
        return Page::Utf8;
    const int host = madeBy >> 8;
    const int version = madeBy & 0xFF;
    const bool unixLike = host == 3 || host == 7 || host == 19;
    if (((flags & 0x0800) != 0 || unixLike) && isUtf8(name))
        return Page::Utf8;
    if (host == 0)
        return version == 25 || version == 26 || version == 40 ? Page::Ansi1252 : Page::Oem437;
    if (host == 6)
        return Page::Oem437;
    return host == 10 && version == 50 ? Page::Oem437 : Page::Ansi1252;
}

QString decode(QByteArrayView bytes, Page page)
{
    if (page == Page::Utf8)
        return isAscii(bytes) ? QString::fromLatin1(bytes) : QString::fromUtf8(bytes);
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* to = text.data();
    for (const char c : bytes) {
        const auto byte = static_cast<uchar>(c);
        if (byte < 0x80)
            *to++ = QChar(char16_t(byte));
        else if (page == Page::Oem437)
            *to++ = QChar(upper437[byte - 0x80]);
        else
            *to++ = QChar(byte < 0xA0 ? upper1252[byte - 0x80] : char16_t(byte));
    }
    return text;
}

QByteArrayView unicodePath(QByteArrayView extra, QByteArrayView name)
{
    while (extra.size() >= 4) {
        const quint16 id = qFromLittleEndian<quint16>(extra.data());
        const qsizetype length = qFromLittleEndian<quint16>(extra.data() + 2);
        if (length > extra.size() - 4)
            break;
        const QByteArrayView field = extra.sliced(4, length);
        extra = extra.sliced(4 + length);
        if (id != 0x7075 || length <= 5 || field[0] != 1)
            continue;
        // A tool that renamed the entry without knowing the field left it behind.
        const quint32 crc = qFromLittleEndian<quint32>(field.data() + 1);
        if (crc == libdeflate_crc32(0, name.data(), size_t(name.size())) && isUtf8(field.sliced(5)))
            return field.sliced(5);
    }
    return {};
}

QString folderText(const QString& decoded)
{
    QString text = decoded;
    text.replace(u'/', u'\\');
    if (!text.startsWith(u".\\"_s) && !text.contains(u"\\.\\"_s) && !text.contains(u"\\\\"_s))
        return text;
    QString clean;
    bool first = true;
    for (const QStringView part : QStringView(text).chopped(1).split(u'\\')) {
        if (part != u"." && (!part.isEmpty() || first)) {
            clean += part;
            clean += u'\\';
        }
        first = false;
    }
    return clean;
}

void Splitter::split(QByteArrayView bytes, Page page, QString& folder, QString& name)
{
    // The entry of a folder ends in a separator, which is not between folder and name.
    if (bytes.endsWith('/') || bytes.endsWith('\\'))
        bytes = bytes.chopped(1);
    qsizetype cut = bytes.size();
    while (cut > 0 && bytes[cut - 1] != '/' && bytes[cut - 1] != '\\')
        --cut;
    name = decode(bytes.sliced(cut), page);
    const Key key{bytes.first(cut), page};
    if (cut == 0) {
        folder.clear();
        return;
    }
    if (!(key == m_last)) {
        const auto known = m_folders.constFind(key);
        m_lastText = known != m_folders.constEnd()
                         ? *known
                         : *m_folders.insert(key, folderText(decode(key.bytes, page)));
        m_last = key;
    }
    folder = m_lastText;
}

void stampOf(quint32 stamp, QDate& date, QTime& time)
{
    const quint32 day = stamp >> 16;
    const quint32 seconds = stamp & 0xFFFF;
    date = QDate(1980 + int(day >> 9), int(day >> 5 & 15), int(day & 31));
    time = QTime(int(seconds >> 11), int(seconds >> 5 & 63), int(seconds & 31) * 2);
    if (!date.isValid() || !time.isValid()) {
        date = {};
        time = {};
    }
}

} // namespace vt::zipnames
