// Parsing of single lines: comments, headers, entries. The array operations stand in
// modRoutines_INI.cpp.
#include "simconfig/engine/INI_Lines.h"

#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace vt::modRoutines_INI {

namespace {

bool isBlankByte(char c)
{
    return c == ' ' || c == '\t';
}

/// 1-based position of \a mark at or after the 1-based \a from, 0 for none.
qsizetype positionOf(QStringView line, char16_t mark, qsizetype from)
{
    return from > line.size() ? 0 : line.indexOf(mark, from - 1) + 1;
}

qsizetype positionOf(QByteArrayView line, char mark, qsizetype from)
{
    if (from > line.size())
        return 0;
    const void* found = std::memchr(line.data() + from - 1, mark, size_t(line.size() - from + 1));
    return found ? static_cast<const char*>(found) - line.data() + 1 : 0;
}

/// The position of an apostrophe that starts a comment: one in first place, or behind a space and
/// without a partner. 0 for none.
template <typename View, typename Char>
qsizetype apostropheMark(View line, Char apostrophe, Char space)
{
    qsizetype start = 1;
    for (;;) {
        qsizetype at = positionOf(line, apostrophe, start);
        qsizetype mark = at;
        const qsizetype partner = at > 1 ? positionOf(line, apostrophe, at + 1) : 0;
        if (partner > 0) {
            // A quoted piece is no comment; the mark behind it only tells where to go on.
            start = partner + 1;
            mark = 0;
            at = positionOf(line, apostrophe, start);
        }
        if (at < 2 || line[at - 2] == space)
            return mark;
        start = at + 1;
    }
}

/// Zero-based index of the comment's first character, -1 for none.
template <typename View, typename Char>
qsizetype commentIndex(View line, Char slash, Char semicolon, Char apostrophe, Char space, Char tab)
{
    const qsizetype slashAt = positionOf(line, slash, 1);
    qsizetype comment = 0;
    for (const qsizetype candidate :
         {slashAt, positionOf(line, semicolon, 1), apostropheMark(line, apostrophe, space)}) {
        if (candidate > 0 && (comment == 0 || candidate < comment))
            comment = candidate;
    }
    if (comment > 1 && comment == slashAt) {
        const auto isBlank = [&](qsizetype index) {
            return index < line.size() && (line[index] == space || line[index] == tab);
        };
        // A slash inside a path hides whatever mark comes later.
        if (!isBlank(comment - 2) && !isBlank(comment))
            comment = 0;
    }
    return comment - 1;
}

/// \a text without a character, in \a room.
QByteArrayView withoutByte(QByteArrayView text, char removed, char* room)
{
    char* to = room;
    for (;;) {
        const qsizetype at = positionOf(text, removed, 1);
        const qsizetype kept = at > 0 ? at - 1 : text.size();
        std::memmove(to, text.data(), size_t(kept));
        to += kept;
        if (at == 0)
            return {room, to - room};
        text = text.sliced(at);
    }
}

} // namespace

QByteArrayView trimmedSpaces(QByteArrayView text)
{
    const char* from = text.data();
    const char* to = from + text.size();
    while (from < to && *from == ' ')
        ++from;
    while (from < to && to[-1] == ' ')
        --to;
    return {from, to - from};
}

QByteArrayView trimmedBlanks(QByteArrayView text)
{
    const char* from = text.data();
    const char* to = from + text.size();
    while (from < to && isBlankByte(*from))
        ++from;
    while (from < to && isBlankByte(to[-1]))
        --to;
    return {from, to - from};
}

QStringView trimmedSpaces(QStringView text)
{
    while (!text.isEmpty() && text.front() == u' ')
        text = text.sliced(1);
    while (!text.isEmpty() && text.back() == u' ')
        text.chop(1);
    return text;
}

qsizetype commentStart(QByteArrayView line)
{
    return commentIndex(line, '/', ';', '\'', ' ', '\t');
}

StrippedView strippedView(QByteArrayView line, QByteArray& room)
{
    const qsizetype comment = commentStart(line);
    QByteArrayView data = comment >= 0 ? line.first(comment) : line;
    if (positionOf(data, '\t', 1) > 0) {
        room.resize(data.size());
        data = withoutByte(data, '\t', room.data());
    }
    data = trimmedSpaces(data);
    // Only now, so that blanks in front of a CR stay.
    if (positionOf(data, '\r', 1) > 0) {
        QByteArray without(data.size(), Qt::Uninitialized);
        without.truncate(withoutByte(data, '\r', without.data()).size());
        room = without;
        data = room;
    }
    return {data, comment >= 0};
}

std::optional<EntryView> splitView(QByteArrayView line)
{
    const qsizetype equals = positionOf(line, '=', 2) - 1;
    if (equals < 1)
        return std::nullopt;
    return EntryView{line.first(equals), trimmedSpaces(line.sliced(equals + 1))};
}

QByteArray keyBytes(QByteArrayView key)
{
    QByteArray bytes(key.size(), Qt::Uninitialized);
    const char* end = std::remove_copy_if(key.cbegin(), key.cend(), bytes.begin(), isBlankByte);
    bytes.truncate(end - bytes.constData());
    return bytes;
}

bool isKey(QByteArrayView key, QByteArrayView lowerCase)
{
    qsizetype at = 0;
    for (const char c : key) {
        if (isBlankByte(c))
            continue;
        const char lower = c >= 'A' && c <= 'Z' ? char(c + 32) : c;
        if (at == lowerCase.size() || lower != lowerCase[at++])
            return false;
    }
    return at == lowerCase.size();
}

bool mayBeHeader(QByteArrayView line)
{
    for (const char c : line) {
        if (c != ' ' && c != '\t' && c != '\r')
            return c == '[';
    }
    return false;
}

WantedKey::WantedKey(QStringView name) : m_text(keyOf(name))
{
    if (std::all_of(m_text.cbegin(), m_text.cend(), [](QChar c) { return c.unicode() < 0x80; }))
        m_lowerCase = m_text.toLatin1().toLower();
}

bool WantedKey::matches(QByteArrayView key, const LineArray& lines) const
{
    if (!m_lowerCase.isEmpty())
        return isKey(key, m_lowerCase);
    return equalNoCase(lines.decoded(keyBytes(key)), m_text);
}

bool INI_Char_IsComment(QStringView character)
{
    return character.size() == 1 &&
           (character[0] == u'/' || character[0] == u';' || character[0] == u'\'');
}

bool INI_Line_IsSectionHeader(QStringView line)
{
    return line.startsWith(u'[');
}

std::optional<QString> INI_Line_GetSectionName(QStringView line)
{
    const qsizetype closing = line.startsWith(u'[') ? line.indexOf(u']', 1) : -1;
    if (closing < 0)
        return std::nullopt;
    QString name = line.first(closing).toString();
    name.remove(u'\t').remove(u'[').remove(u']');
    return trimmedSpaces(QStringView(name)).toString();
}

std::optional<Entry> INI_Line_SplitEntry(QStringView line)
{
    const qsizetype equals = line.indexOf(u'=', 1);
    if (equals < 1)
        return std::nullopt;
    return Entry{keyOf(line.first(equals)), trimmedSpaces(line.sliced(equals + 1)).toString()};
}

StrippedLine INI_Line_StripComment(QStringView line, bool keepComment)
{
    const qsizetype comment = commentIndex(line, u'/', u';', u'\'', u' ', u'\t');
    StrippedLine result;
    QString data = (comment >= 0 ? line.first(comment) : line).toString();
    data.remove(u'\t');
    result.data = trimmedSpaces(QStringView(data)).toString().remove(u'\r');
    if (keepComment && comment >= 0)
        result.comment = trimmedSpaces(line.sliced(comment)).toString();
    return result;
}

QString INI_Section_NameStrip(const QString& text)
{
    QString name = text;
    return name.remove(u'[').remove(u']');
}

QString INI_Section_NameBracket(const QString& name)
{
    return name.contains(u'[') ? name : u'[' + name + u']';
}

bool isCommentOrBlank(QByteArrayView line)
{
    const QByteArrayView text = trimmedBlanks(line);
    return text.isEmpty() || text.front() == '/' || text.front() == ';' || text.front() == '\'';
}

QString keyOf(QStringView text)
{
    QString key = text.toString();
    return key.remove(u'\t').remove(u' ');
}

std::optional<QString> sectionOfLine(const LineArray& lines, QByteArrayView line)
{
    if (!mayBeHeader(line))
        return std::nullopt;
    // Nearly every header is plain ASCII without a comment, a tab or a second bracket.
    if (line.front() == '[') {
        const auto special = [](char c) {
            return c < ' ' || c == '/' || c == ';' || c == '\'' || c == '[' || c == ']';
        };
        const auto end = std::find_if(line.cbegin() + 1, line.cend(), special);
        if (end != line.cend() && *end == ']' && std::none_of(end + 1, line.cend(), special))
            return QString::fromLatin1(
                trimmedSpaces(line.sliced(1, std::distance(line.cbegin(), end) - 1)));
    }
    QByteArray room;
    return INI_Line_GetSectionName(lines.decoded(strippedView(line, room).data));
}

std::optional<Entry> rawEntryOfLine(const LineArray& lines, QByteArrayView line)
{
    const QByteArrayView text = trimmedBlanks(line);
    if (text.isEmpty() || text.front() == '[' || text.front() == '/' || text.front() == ';' ||
        text.front() == '\'')
        return std::nullopt;
    const std::optional<EntryView> entry = splitView(text);
    if (!entry)
        return std::nullopt;
    return Entry{lines.decoded(keyBytes(entry->key)), lines.decoded(trimmedBlanks(entry->value))};
}

} // namespace vt::modRoutines_INI
