#include "platform/RegText.h"

#include <cstring>

using namespace Qt::StringLiterals;

namespace vt::regtext {

namespace {

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = char(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

QString fromFileBytes(QByteArrayView bytes)
{
    return bytes.isValidUtf8() ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

/// Up to \a most digits of \a base from \a at on, which moves behind them.
char16_t number(QByteArrayView text, qsizetype& at, int base, int most)
{
    int value = 0;
    for (int digits = 0; digits < most && at < text.size(); ++digits, ++at) {
        const int digit = hexDigit(text[at]);
        if (digit < 0 || digit >= base)
            break;
        value = value * base + digit;
    }
    return char16_t(value);
}

/// One escape; \a at stands behind the backslash and moves behind the escape.
QChar escape(QByteArrayView text, qsizetype& at)
{
    const char c = text[at];
    if (c >= '0' && c <= '7')
        return QChar(number(text, at, 8, 3));
    ++at;
    switch (c) {
    case 'a':
        return u'\a';
    case 'b':
        return u'\b';
    case 'e':
        return QChar(0x1b);
    case 'f':
        return u'\f';
    case 'n':
        return u'\n';
    case 'r':
        return u'\r';
    case 't':
        return u'\t';
    case 'v':
        return u'\v';
    case 'x':
        if (at < text.size() && hexDigit(text[at]) >= 0)
            return QChar(number(text, at, 16, 4));
        return u'x';
    default:
        return QChar(char16_t(quint8(c)));
    }
}

/// Offset of the quote that closes the text begun before \a at, or -1 on this line.
qsizetype closingQuote(QByteArrayView file, qsizetype at, qsizetype end)
{
    for (; at < end; ++at) {
        if (file[at] == '\\')
            ++at;
        else if (file[at] == '"')
            return at;
    }
    return -1;
}

/// "e9,00,41,..." over continued lines; \a at moves to the next line's begin.
QByteArray hexBytes(QByteArrayView file, qsizetype& at)
{
    QByteArray out;
    bool more = true;
    while (more && at < file.size()) {
        const qsizetype end = lineEnd(file, at);
        more = false;
        for (qsizetype i = at; i < end; ++i) {
            const int high = hexDigit(file[i]);
            if (high < 0) {
                more = more || file[i] == '\\';
                continue;
            }
            const int low = i + 1 < end ? hexDigit(file[i + 1]) : -1;
            if (low >= 0)
                ++i;
            out += char(low >= 0 ? high << 4 | low : high);
        }
        at = end + 1;
    }
    return out;
}

QString withoutClosingNuls(QString text)
{
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

QString fromUtf16(const QByteArray& bytes)
{
    QString out;
    for (qsizetype i = 0; i + 1 < bytes.size(); i += 2)
        out += QChar(quint16(quint8(bytes[i]) | quint8(bytes[i + 1]) << 8));
    return withoutClosingNuls(out);
}

QString littleEndianNumber(const QByteArray& bytes)
{
    quint64 value = 0;
    for (qsizetype i = qMin<qsizetype>(bytes.size(), 8) - 1; i >= 0; --i)
        value = value << 8 | quint8(bytes[i]);
    return QString::number(value);
}

/// Data of the form hex(7):...; \a at stands behind "hex".
void readHex(QByteArrayView file, qsizetype at, ValueLine& line)
{
    const qsizetype end = lineEnd(file, at);
    const qsizetype colon = file.first(end).indexOf(':', at);
    if (colon < 0) {
        line.valid = false;
        return;
    }
    QByteArrayView kind = file.sliced(at, colon - at);
    qsizetype next = colon + 1;
    const QByteArray bytes = hexBytes(file, next);
    line.next = next;
    if (kind == "(1)" || kind == "(2)" || kind == "(6)" || kind == "(7)")
        line.text = fromUtf16(bytes);
    else if (kind == "(4)" || kind == "(b)")
        line.text = littleEndianNumber(bytes);
}

void readData(QByteArrayView file, qsizetype at, qsizetype end, ValueLine& line)
{
    const QByteArrayView data = file.sliced(at, end - at);
    line.valid = true;
    if (data.startsWith("hex")) {
        readHex(file, at + 3, line);
        return;
    }
    if (data.startsWith("dword:")) {
        bool ok = false;
        const uint value = data.sliced(6).trimmed().toByteArray().toUInt(&ok, 16);
        line.valid = ok;
        line.text = QString::number(value);
        return;
    }
    // "text", or str(2):"text" of the same kind.
    const qsizetype quote = data.startsWith("str(") ? data.indexOf('"') : 0;
    line.valid = quote >= 0 && data.size() > quote && data[quote] == '"';
    if (!line.valid)
        return;
    const qsizetype close = closingQuote(file, at + quote + 1, end);
    line.valid = close >= 0;
    if (line.valid)
        line.text =
            withoutClosingNuls(unescaped(file.sliced(at + quote + 1, close - at - quote - 1)));
}

bool needsHex(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] < u' ')
            return true;
        if (text[i].isSurrogate()) {
            if (!text[i].isHighSurrogate() || i + 1 == text.size() || !text[i + 1].isLowSurrogate())
                return true;
            ++i;
        }
    }
    return false;
}

QString quoted(const QString& text)
{
    QString out = text;
    out.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s);
    return u'"' + out + u'"';
}

} // namespace

qsizetype lineEnd(QByteArrayView file, qsizetype at)
{
    if (at >= file.size())
        return file.size();
    const void* found = std::memchr(file.data() + at, '\n', size_t(file.size() - at));
    return found ? static_cast<const char*>(found) - file.data() : file.size();
}

QString unescaped(QByteArrayView text)
{
    qsizetype at = text.indexOf('\\');
    if (at < 0)
        return fromFileBytes(text);
    QString out;
    qsizetype from = 0;
    while (at >= 0 && at + 1 < text.size()) {
        out += fromFileBytes(text.sliced(from, at - from));
        ++at;
        out += escape(text, at);
        from = at;
        at = text.indexOf('\\', at);
    }
    return out + fromFileBytes(text.sliced(from));
}

ValueLine readValue(QByteArrayView file, qsizetype at)
{
    qsizetype end = lineEnd(file, at);
    ValueLine line;
    line.next = end + 1;
    if (end > at && file[end - 1] == '\r')
        --end;
    while (at < end && (file[at] == ' ' || file[at] == '\t'))
        ++at;
    qsizetype behindName = -1;
    if (at < end && file[at] == '@') {
        behindName = at + 1;
    } else if (at < end && file[at] == '"') {
        const qsizetype close = closingQuote(file, at + 1, end);
        if (close < 0)
            return line;
        line.name = unescaped(file.sliced(at + 1, close - at - 1));
        behindName = close + 1;
    }
    while (behindName >= 0 && behindName < end && file[behindName] == ' ')
        ++behindName;
    if (behindName < 0 || behindName >= end || file[behindName] != '=')
        return line;
    ++behindName;
    while (behindName < end && file[behindName] == ' ')
        ++behindName;
    readData(file, behindName, end, line);
    return line;
}

QString writtenValue(const QString& name, const QString& text)
{
    QString line = (name.isEmpty() ? u"@"_s : quoted(name)) + u'=';
    if (!needsHex(text))
        return line + quoted(text);
    line += u"hex(1):"_s;
    for (const QChar c : text + QChar(0)) {
        const QString four = QString::number(c.unicode(), 16).rightJustified(4, u'0');
        if (!line.endsWith(u':'))
            line += u',';
        line += four.last(2) + u',' + four.first(2);
    }
    return line;
}

} // namespace vt::regtext
