#include "platform/Text.h"

#include <QChar>

#include <cstring>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

inline char32_t folded(char16_t unit)
{
    if (unit < 0x80)
        return unit >= u'A' && unit <= u'Z' ? char32_t(unit + 32) : char32_t(unit);
    return QChar::toCaseFolded(char32_t(unit));
}

/// Four units folded, in the lanes of one word.
inline quint64 foldedFour(const char16_t* units)
{
    constexpr quint64 lanes = 0x0001000100010001ULL;
    quint64 word = 0;
    std::memcpy(&word, units, sizeof word);
    if ((word & (lanes * 0xff80)) == 0) {
        const quint64 fromA = word + lanes * (0x80 - u'A');
        const quint64 aboveZ = word + lanes * (0x7f - u'Z');
        return word | ((fromA & ~aboveZ & (lanes * 0x80)) >> 2);
    }
    char16_t four[4];
    for (int lane = 0; lane < 4; ++lane)
        four[lane] = char16_t(folded(units[lane]));
    std::memcpy(&word, four, sizeof word);
    return word;
}

} // namespace

QString foldCase(QStringView text)
{
    for (QChar c : text) {
        if (folded(c.unicode()) == c.unicode())
            continue;
        QString out = text.toString();
        for (QChar& unit : out)
            unit = QChar(char16_t(folded(unit.unicode())));
        return out;
    }
    return text.toString();
}

int compareNoCase(QStringView a, QStringView b)
{
    const qsizetype n = qMin(a.size(), b.size());
    qsizetype i = 0;
    while (n - i >= 8 && std::memcmp(a.utf16() + i, b.utf16() + i, 16) == 0)
        i += 8; // paths share long beginnings
    for (; i < n; ++i) {
        const char16_t x = a[i].unicode();
        const char16_t y = b[i].unicode();
        if (x == y)
            continue;
        const char32_t fx = folded(x);
        const char32_t fy = folded(y);
        if (fx != fy)
            return fx < fy ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool equalNoCase(QStringView a, QStringView b)
{
    return a.size() == b.size() && compareNoCase(a, b) == 0;
}

bool startsWithNoCase(QStringView text, QStringView beginning)
{
    return text.size() >= beginning.size() && equalNoCase(text.first(beginning.size()), beginning);
}

bool endsWithNoCase(QStringView text, QStringView end)
{
    return text.size() >= end.size() && equalNoCase(text.last(end.size()), end);
}

qsizetype indexOfNoCase(QStringView text, QStringView part, qsizetype from)
{
    for (qsizetype i = qMax<qsizetype>(from, 0); i + part.size() <= text.size(); ++i) {
        if (equalNoCase(text.sliced(i, part.size()), part))
            return i;
    }
    return -1;
}

bool containsNoCase(QStringView text, QStringView part)
{
    return indexOfNoCase(text, part) >= 0;
}

size_t hashNoCase(QStringView text, size_t seed)
{
    // Paths differ towards their ends; their common beginnings are not worth the time.
    constexpr qsizetype significant = 48;
    constexpr quint64 factor = 0x9e3779b97f4a7c15ULL;
    quint64 h = seed ^ 0xcbf29ce484222325ULL ^ quint64(text.size());
    const QStringView end = text.size() > significant ? text.last(significant) : text;
    qsizetype i = 0;
    for (; i + 4 <= end.size(); i += 4) {
        h = (h ^ foldedFour(end.utf16() + i)) * factor;
        h ^= h >> 32;
    }
    for (; i < end.size(); ++i)
        h = (h ^ folded(end[i].unicode())) * factor;
    return size_t(h ^ (h >> 29));
}

QString textAbout(const QString& name, const QString& text)
{
    return containsNoCase(text, name) ? text : QString(u"'"_s + name + u"': "_s + text);
}

QString countText(qint64 number, const QString& one, const QString& many)
{
    return QString::number(number) + u' ' + (number == 1 ? one : many);
}

QString sizeText(qint64 bytes)
{
    if (bytes < 1024)
        return countText(bytes, u"byte"_s, u"bytes"_s);
    static constexpr QStringView units[] = {u"KB", u"MB", u"GB", u"TB"};
    double size = double(bytes);
    int unit = -1;
    while (size >= 1024.0 && unit < 3) {
        size /= 1024.0;
        ++unit;
    }
    return QString::number(size, 'f', size < 99.95 ? 1 : 0) + u' ' + units[unit].toString();
}

} // namespace vt
