#include "platform/AnsiCodec.h"

#include <QList>
#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr char16_t noCharacter = 0xffff;
constexpr quint16 noBytes = 0xffff;
/// Private characters that stand for bytes without meaning: this + the byte (0x80 to 0xff). No code
/// page's user-defined area reaches it.
constexpr char16_t escapeBase = 0xf800;

/// 0x80 to 0x9f of code page 1252; everywhere else byte and character are equal. The five undefined
/// bytes stand for the control characters of the same number.
constexpr std::array<char16_t, 32> windows1252 = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

/// The pages made of single bytes, and of single bytes and pairs. Nothing else is a table.
constexpr int singleBytePages[] = {1250, 1251, 1253, 1254, 1255, 1256, 1257, 1258, 437,
                                   720,  737,  775,  850,  852,  855,  857,  858,  860,
                                   861,  862,  863,  864,  865,  866,  869,  874};
constexpr int doubleBytePages[] = {932, 936, 949, 950};

bool isEscape(char16_t character)
{
    return (character & 0xff00) == escapeBase;
}

bool isAscii(QByteArrayView bytes)
{
    const char* at = bytes.data();
    const char* const end = at + bytes.size();
    for (; end - at >= 8; at += 8) {
        quint64 eight;
        std::memcpy(&eight, at, 8);
        if (eight & 0x8080808080808080ULL)
            return false;
    }
    return std::all_of(at, end, [](char c) { return quint8(c) < 0x80; });
}

} // namespace

AnsiCodec::AnsiCodec(int codePage)
{
    m_bytes.assign(0x10000, noBytes);
    if (!build(codePage))
        build(1252);
    for (int byte = 0; byte < 256; ++byte) {
        if (m_single[size_t(byte)] != noCharacter)
            m_bytes[m_single[size_t(byte)]] = quint16(byte);
        else
            m_bytes[escapeBase + byte] = quint16(byte);
    }
}

bool AnsiCodec::build(int codePage)
{
    m_codePage = codePage;
    // IBM's tables turn three control characters round; Windows and every file mean ASCII.
    for (int byte = 0; byte < 256; ++byte)
        m_single[size_t(byte)] = char16_t(byte);
    if (codePage == 1252) {
        std::copy(windows1252.begin(), windows1252.end(), m_single.begin() + 0x80);
        return true;
    }
    const bool doubled = std::ranges::count(doubleBytePages, codePage) > 0;
    if (!doubled && std::ranges::count(singleBytePages, codePage) == 0)
        return false;
    const QByteArray name = "windows-" + QByteArray::number(codePage);
    if (!QStringDecoder(name.constData()).isValid())
        return false;
    for (int byte = 0x80; byte < 256; ++byte) {
        const QByteArray one(1, char(byte));
        QStringDecoder decoder(name.constData());
        const QString text = decoder(one);
        QStringEncoder encoder(name.constData());
        const bool usable = text.size() == 1 && text[0] != QChar::ReplacementCharacter &&
                            !isEscape(text[0].unicode()) && QByteArray(encoder(text)) == one;
        m_single[size_t(byte)] = usable ? text[0].unicode() : noCharacter;
    }
    if (doubled)
        buildPairs(name.constData());
    return true;
}

/// All pairs pass the codec at once, parted by line feeds, which are never the second byte of a
/// pair. A pair is taken when it is the codec's own choice for its character.
void AnsiCodec::buildPairs(const char* name)
{
    m_pairs.assign(0x10000, noCharacter);
    QByteArray candidates;
    for (int lead = 0x80; lead < 256; ++lead) {
        if (m_single[size_t(lead)] != noCharacter)
            continue;
        for (int trail = 0x30; trail < 256; ++trail) {
            candidates += char(lead);
            candidates += char(trail);
            candidates += '\n';
        }
    }
    QStringDecoder decoder(name);
    const QString decoded = decoder(candidates);
    const QList<QStringView> characters = QStringView(decoded).split(u'\n');
    QString joined;
    for (const QStringView character : characters) {
        if (character.size() == 1 && character[0].unicode() >= 0x80)
            joined += character;
        joined += u'\n';
    }
    QStringEncoder encoder(name);
    const QByteArray encoded = encoder(joined);
    const QList<QByteArray> back = encoded.split('\n');
    for (qsizetype i = 0; i * 3 < candidates.size() && i < back.size(); ++i) {
        const QByteArrayView pair = QByteArrayView(candidates).sliced(i * 3, 2);
        if (back[i] != pair || characters[i].size() != 1)
            continue;
        const char16_t character = characters[i][0].unicode();
        const quint16 bytes = quint16(quint8(pair[0]) << 8 | quint8(pair[1]));
        if (isEscape(character) || character == QChar::ReplacementCharacter ||
            m_bytes[character] != noBytes)
            continue;
        m_pairs[bytes] = character;
        m_bytes[character] = bytes;
    }
}

QString AnsiCodec::decode(QByteArrayView bytes) const
{
    if (isAscii(bytes))
        return QString::fromLatin1(bytes);
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* to = out.data();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const quint8 byte = quint8(bytes[i]);
        char16_t character = m_single[byte];
        if (character == noCharacter && !m_pairs.empty() && i + 1 < bytes.size()) {
            character = m_pairs[size_t(byte << 8 | quint8(bytes[i + 1]))];
            if (character != noCharacter)
                ++i;
        }
        *to++ = QChar(character != noCharacter ? character : char16_t(escapeBase + byte));
    }
    out.truncate(to - out.constData());
    return out;
}

ResultOf<QByteArray> AnsiCodec::encode(QStringView text) const
{
    QByteArray out(m_pairs.empty() ? text.size() : text.size() * 2, Qt::Uninitialized);
    char* to = out.data();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const quint16 bytes = m_bytes[text[i].unicode()];
        if (bytes == noBytes) {
            const bool pair = text[i].isHighSurrogate() && i + 1 < text.size();
            const QStringView character = text.sliced(i, pair ? 2 : 1);
            const quint32 number = character.toUcs4().value(0);
            return Result::failure(
                u"The character '"_s + character.toString() + u"' (U+"_s +
                QString::number(number, 16).toUpper().rightJustified(4, u'0') +
                u") cannot be written: the code page "_s + QString::number(m_codePage) +
                u" of the simulator's files has no such character. Please use another spelling."_s);
        }
        if (bytes > 0xff)
            *to++ = char(bytes >> 8);
        *to++ = char(bytes & 0xff);
    }
    out.truncate(to - out.constData());
    return out;
}

bool AnsiCodec::looksLikeUtf16OrBinary(QByteArrayView bytes)
{
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff"))
        return true;
    return bytes.contains('\0');
}

} // namespace vt
