#include "shell/JsonStream.h"

#include <QJsonArray>
#include <QJsonObject>

#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype pieceSize = 64 * 1024;

} // namespace

JsonStream::JsonStream(Sink sink) : m_sink(std::move(sink))
{
    m_buffer.reserve(pieceSize + 4096);
}

JsonStream::~JsonStream()
{
    flush();
}

void JsonStream::flush()
{
    if (!m_buffer.isEmpty())
        m_sink(m_buffer);
    m_buffer.resize(0);
}

void JsonStream::before()
{
    Q_ASSERT(!complete());
    if (!m_afterKey && !m_levels.empty()) {
        Q_ASSERT(!m_levels.back().object);
        if (!m_levels.back().empty)
            m_buffer.append(',');
        m_levels.back().empty = false;
    }
    m_afterKey = false;
    m_begun = true;
    if (m_buffer.size() >= pieceSize)
        flush();
}

void JsonStream::raw(QByteArrayView bytes)
{
    before();
    m_buffer.append(bytes);
    if (m_levels.empty())
        m_buffer.append('\n');
}

void JsonStream::beginObject()
{
    before();
    m_buffer.append('{');
    m_levels.push_back({true});
}

void JsonStream::beginArray()
{
    before();
    m_buffer.append('[');
    m_levels.push_back({false});
}

void JsonStream::end([[maybe_unused]] bool object, char closing)
{
    Q_ASSERT(!m_levels.empty() && m_levels.back().object == object && !m_afterKey);
    m_levels.pop_back();
    m_buffer.append(closing);
    if (m_levels.empty())
        m_buffer.append('\n');
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
        m_buffer.append(',');
    m_levels.back().empty = false;
    quoted(name);
    m_buffer.append(':');
    m_afterKey = true;
}

void JsonStream::value(QStringView text)
{
    before();
    quoted(text);
    if (m_levels.empty())
        m_buffer.append('\n');
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
    // Room for the worst case once, so that the loop only stores: six bytes a UTF-16 unit.
    const qsizetype start = m_buffer.size();
    m_buffer.resize(start + text.size() * 6 + 2);
    char* const first = m_buffer.data() + start;
    char* to = first;
    static constexpr char hex[] = "0123456789abcdef";
    *to++ = '"';
    for (qsizetype i = 0; i < text.size(); ++i) {
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
                if (QChar::isHighSurrogate(code) && i + 1 < text.size() &&
                    text[i + 1].isLowSurrogate())
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
    }
    *to++ = '"';
    m_buffer.resize(start + (to - first));
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
