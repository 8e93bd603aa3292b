#include "shell/JsonStream.h"

#include <QJsonArray>
#include <QJsonObject>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype pieceSize = 64 * 1024;

constexpr bool lowFirst = std::endian::native == std::endian::little;
constexpr quint64 lanes = 0x0001000100010001ULL;

/// Whether four UTF-16 units in one word are ASCII that JSON takes as it is.
inline bool arePlain(quint64 word)
{
    const quint64 printable = word + lanes * 0x60;
    const quint64 noQuote = (word ^ (lanes * u'"')) + lanes * 0x7f;
    const quint64 noBackslash = (word ^ (lanes * u'\\')) + lanes * 0x7f;
    return (word & (lanes * 0xff80)) == 0 &&
           (printable & noQuote & noBackslash & (lanes * 0x80)) == lanes * 0x80;
}

/// The low bytes of four units, in their order in memory (of machines that store low bytes first).
inline quint32 narrowed(quint64 word)
{
    word = (word | (word >> 8)) & 0x0000ffff0000ffffULL;
    return quint32(word | (word >> 16));
}

/// Writes the character at \a i; a pair of surrogates moves \a i on to its second half.
inline char* escaped(char* to, QStringView text, qsizetype& i)
{
    static constexpr char hex[] = "0123456789abcdef";
    const char16_t unit = text[i].unicode();
    if (unit < 0x20) {
        *to++ = '\\';
        if (unit == '\n' || unit == '\r' || unit == '\t') {
            *to++ = unit == '\n' ? 'n' : unit == '\r' ? 'r' : 't';
        } else {
            *to++ = 'u';
            *to++ = '0';
            *to++ = '0';
            *to++ = hex[unit >> 4];
            *to++ = hex[unit & 15];
        }
    } else if (unit < 0x80) {
        if (unit == '"' || unit == '\\')
            *to++ = '\\';
        *to++ = static_cast<char>(unit);
    } else if (unit < 0x800) {
        *to++ = static_cast<char>(0xc0 | (unit >> 6));
        *to++ = static_cast<char>(0x80 | (unit & 0x3f));
    } else {
        char32_t code = unit;
        if (QChar::isSurrogate(code)) {
            // A lone half (names from foreign disks can hold one) is no character of UTF-8.
            if (QChar::isHighSurrogate(code) && i + 1 < text.size() && text[i + 1].isLowSurrogate())
                code = QChar::surrogateToUcs4(unit, text[++i].unicode());
            else
                code = QChar::ReplacementCharacter;
        }
        if (code < 0x10000) {
            *to++ = static_cast<char>(0xe0 | (code >> 12));
        } else {
            *to++ = static_cast<char>(0xf0 | (code >> 18));
            *to++ = static_cast<char>(0x80 | ((code >> 12) & 0x3f));
        }
        *to++ = static_cast<char>(0x80 | ((code >> 6) & 0x3f));
        *to++ = static_cast<char>(0x80 | (code & 0x3f));
    }
    return to;
}

} // namespace

JsonStream::JsonStream(Sink sink) : m_sink(std::move(sink))
{
    if (m_sink)
        m_buffer.resize(pieceSize + 4096);
}

JsonStream::~JsonStream()
{
    flush();
}

void JsonStream::flush()
{
    if (m_used > 0)
        m_sink(QByteArrayView(m_buffer.data(), m_used));
    m_used = 0;
}

char* JsonStream::room(qsizetype bytes)
{
    if (m_used + bytes > qsizetype(m_buffer.size()))
        m_buffer.resize(size_t(qMax(m_used + bytes, m_used * 2)));
    return m_buffer.data() + m_used;
}

void JsonStream::put(char c)
{
    if (!m_sink)
        return;
    *room(1) = c;
    ++m_used;
}

void JsonStream::before()
{
    Q_ASSERT(!complete());
    if (!m_afterKey && !m_levels.empty()) {
        Q_ASSERT(!m_levels.back().object);
        if (!m_levels.back().empty)
            put(',');
        m_levels.back().empty = false;
    }
    m_afterKey = false;
    m_begun = true;
    if (m_used >= pieceSize)
        flush();
}

void JsonStream::raw(QByteArrayView bytes)
{
    before();
    if (!m_sink)
        return;
    std::memcpy(room(bytes.size()), bytes.data(), size_t(bytes.size()));
    m_used += bytes.size();
    if (m_levels.empty())
        put('\n');
}

void JsonStream::beginObject()
{
    before();
    put('{');
    m_levels.push_back({true});
}

void JsonStream::beginArray()
{
    before();
    put('[');
    m_levels.push_back({false});
}

void JsonStream::end([[maybe_unused]] bool object, char closing)
{
    Q_ASSERT(!m_levels.empty() && m_levels.back().object == object && !m_afterKey);
    m_levels.pop_back();
    put(closing);
    if (m_levels.empty())
        put('\n');
}

void JsonStream::endObject()
{
    end(true, '}');
}

void JsonStream::endArray()
{
    end(false, ']');
}

void JsonStream::key(QStringView name)
{
    Q_ASSERT(!m_levels.empty() && m_levels.back().object && !m_afterKey);
    if (!m_levels.back().empty)
        put(',');
    m_levels.back().empty = false;
    quoted(name);
    put(':');
    m_afterKey = true;
}

void JsonStream::value(QStringView text)
{
    before();
    quoted(text);
    if (m_levels.empty())
        put('\n');
}

void JsonStream::value(const QStringList& texts)
{
    beginArray();
    for (const QString& text : texts)
        value(QStringView(text));
    endArray();
}

void JsonStream::value(double number)
{
    if (!std::isfinite(number))
        return null();
    raw(QByteArray::number(number, 'g', 17));
}

void JsonStream::null()
{
    raw("null");
}

void JsonStream::integer(qint64 number)
{
    char digits[24];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, number);
    raw(QByteArrayView(digits, end.ptr - digits));
}

void JsonStream::value(const QJsonValue& content)
{
    tree(content);
}

void JsonStream::tree(const QJsonValue& content)
{
    switch (content.type()) {
    case QJsonValue::Object: {
        const QJsonObject object = content.toObject();
        beginObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            key(member.key());
            tree(member.value());
        }
        endObject();
        break;
    }
    case QJsonValue::Array: {
        const QJsonArray array = content.toArray();
        beginArray();
        for (const QJsonValue& element : array)
            tree(element);
        endArray();
        break;
    }
    case QJsonValue::String:
        value(QStringView(content.toString()));
        break;
    case QJsonValue::Bool:
        value(content.toBool());
        break;
    case QJsonValue::Double: {
        const qint64 whole = content.toInteger(-1);
        if (whole != -1 || content.toDouble() == -1.0)
            integer(whole);
        else
            value(content.toDouble());
        break;
    }
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        null();
        break;
    }
}

void JsonStream::quoted(QStringView text)
{
    if (!m_sink)
        return;
    // Room for the worst case once, so that the loop only stores: six bytes a UTF-16 unit.
    char* const first = room(text.size() * 6 + 2);
    char* to = first;
    *to++ = '"';
    const qsizetype size = text.size();
    for (qsizetype i = 0; i < size;) {
        for (quint64 word = 0; lowFirst && size - i >= 4; i += 4) {
            std::memcpy(&word, text.utf16() + i, sizeof word);
            if (!arePlain(word))
                break;
            const quint32 four = narrowed(word);
            std::memcpy(to, &four, sizeof four);
            to += 4;
        }
        for (const qsizetype end = qMin(size, i + 4); i < end; ++i)
            to = escaped(to, text, i);
    }
    *to++ = '"';
    m_used += to - first;
}

void JsonStream::error(const QString& text, const QString& kind)
{
    beginObject(u"error");
    field(u"text", text);
    field(u"kind", kind);
    endObject();
}

bool JsonStream::close(const QString& errorText, const QString& errorKind)
{
    if (!m_begun || m_levels.empty())
        return false;
    if (m_afterKey)
        null();
    while (m_levels.size() > 1)
        m_levels.back().object ? endObject() : endArray();
    const bool withError = m_levels.back().object && !errorText.isEmpty();
    if (withError)
        error(errorText, errorKind);
    m_levels.back().object ? endObject() : endArray();
    return withError;
}

} // namespace vt
