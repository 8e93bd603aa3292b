#include "platform/Profile.h"

#include "platform/Text.h"

#include <QHash>
#include <QStringDecoder>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace vt::profile {

namespace {

constexpr qint64 profileFileLimit = 16LL * 1024 * 1024;

/// One line of a text: [start, end) without its end, the next begins at next.
struct Line
{
    qsizetype start = 0;
    qsizetype end = 0;
    qsizetype next = 0;
};

Line lineAt(QStringView text, qsizetype start)
{
    const qsizetype feed = text.indexOf(u'\n', start);
    if (feed < 0)
        return {start, text.size(), text.size()};
    const bool cr = feed > start && text[feed - 1] == u'\r';
    return {start, cr ? feed - 1 : feed, feed + 1};
}

QStringView contentOf(QStringView text, const Line& line)
{
    return text.sliced(line.start, line.end - line.start).trimmed();
}

/// The name in "[name]", or nothing when the line is no header.
std::optional<QStringView> headerName(QStringView content)
{
    const qsizetype close = content.indexOf(u']');
    if (!content.startsWith(u'[') || close < 0)
        return std::nullopt;
    return content.sliced(1, close - 1).trimmed();
}

/// Index of the "=" of a line that holds a key, or -1.
qsizetype equalsOf(QStringView content)
{
    if (content.startsWith(u';') || content.startsWith(u'['))
        return -1;
    const qsizetype equals = content.indexOf(u'=');
    return equals > 0 ? equals : -1;
}

/// A byte-order mark of UTF-8, as the code page shows it, is no part of the first line.
qsizetype textStart(QStringView text)
{
    return text.startsWith(u"\u00ef\u00bb\u00bf") ? 3 : 0;
}

struct SectionSpan
{
    bool found = false;
    Line header;
    qsizetype end = 0; ///< begin of the next header, or the text's size
};

SectionSpan sectionSpan(QStringView text, QStringView section)
{
    SectionSpan span;
    for (qsizetype at = textStart(text); at < text.size();) {
        const Line line = lineAt(text, at);
        const auto name = headerName(contentOf(text, line));
        if (name && span.found) {
            span.end = line.start;
            return span;
        }
        if (name && equalNoCase(*name, section.trimmed())) {
            span.found = true;
            span.header = line;
        }
        at = line.next;
    }
    span.end = text.size();
    return span;
}

struct KeyLine
{
    bool found = false;
    Line line;
    qsizetype value = 0; ///< behind the "="
};

KeyLine keyLine(QStringView text, const SectionSpan& span, QStringView key)
{
    if (!span.found)
        return {};
    for (qsizetype at = span.header.next; at < span.end;) {
        const Line line = lineAt(text, at);
        const QStringView content = contentOf(text, line);
        const qsizetype equals = equalsOf(content);
        if (equals > 0 && equalNoCase(content.first(equals).trimmed(), key.trimmed()))
            return {true, line, text.indexOf(u'=', line.start) + 1};
        at = line.next;
    }
    return {};
}

/// The end of line \a line; where it has none, that of the file's first line.
QString endLike(QStringView text, const Line& line)
{
    if (line.next > line.end)
        return text.sliced(line.end, line.next - line.end).toString();
    const Line first = lineAt(text, 0);
    if (first.next > first.end)
        return text.sliced(first.end, first.next - first.end).toString();
    return u"\r\n"_s;
}

QStringView withoutQuotes(QStringView value)
{
    const bool quoted = value.size() > 1 && value.front() == value.back() &&
                        (value.front() == u'"' || value.front() == u'\'');
    return quoted ? value.sliced(1, value.size() - 2) : value;
}

Read clipped(QStringView value, qsizetype bufferSize)
{
    const qsizetype count = qBound<qsizetype>(0, bufferSize - 1, value.size());
    return {value.first(count).toString(), count};
}

Read asList(const QStringList& names, qsizetype bufferSize)
{
    Read out;
    for (const QString& name : names)
        out.text += name + QChar(0);
    if (out.text.size() + 1 > bufferSize)
        out.text.truncate(qMax<qsizetype>(0, bufferSize - 2));
    out.count = out.text.size();
    return out;
}

Result checkNames(QStringView section, QStringView key)
{
    const auto has = [](QStringView text, QChar c) { return text.contains(c); };
    const bool sectionBad = section.trimmed().isEmpty() || has(section, u']') ||
                            has(section, u'\n') || has(section, u'\r');
    const bool keyBad = key.trimmed().isEmpty() || has(key, u'=') || has(key, u'\n') ||
                        has(key, u'\r') || key.trimmed().startsWith(u'[') ||
                        key.trimmed().startsWith(u';');
    if (!sectionBad && !keyBad)
        return Result::success();
    return Result::failure(u"'"_s + (sectionBad ? section : key).toString() +
                           u"' cannot be the name of a "_s +
                           (sectionBad ? u"section."_s : u"key."_s));
}

/// Reads the file, lets \a edit change it and writes it back when it did.
template <typename Edit>
Result editFile(FileActions& actions, const AnsiCodec& ansi, const QString& path, Edit edit)
{
    QByteArray bytes;
    if (actions.info(path)) {
        ResultOf<QByteArray> read = actions.read(path, profileFileLimit);
        if (!read)
            return read.error();
        bytes = *read;
    }
    if (AnsiCodec::looksLikeUtf16OrBinary(bytes))
        return Result::failure(
            u"'"_s + path +
            u"' was not changed: it is no 8-bit text (UTF-16 or binary). Please save it as ANSI text first."_s);
    ProfileFile file = ProfileFile::ofBytes(bytes, ansi);
    if (!edit(file))
        return Result::success();
    const ResultOf<QByteArray> encoded = ansi.encode(file.text());
    if (!encoded)
        return Result::failure(u"'"_s + path + u"' was not changed. "_s + encoded.text);
    return actions.replace(path, *encoded);
}

} // namespace

/// Where the value of a key stands in the text.
struct ProfileFile::Found
{
    bool found = false;
    qsizetype value = 0;
    qsizetype end = 0;
};

/// Every key of the first section of each name, by position: what keyLine() finds by walking.
struct ProfileFile::Index
{
    struct Entry
    {
        qsizetype key = 0;
        qsizetype keySize = 0;
        Found value;
    };

    struct Section
    {
        qsizetype name = 0;
        qsizetype nameSize = 0;
        size_t first = 0; ///< of entries
        size_t count = 0;
    };

    explicit Index(QStringView text)
    {
        for (qsizetype at = textStart(text); at < text.size();) {
            const Line line = lineAt(text, at);
            const QStringView content = contentOf(text, line);
            if (const auto name = headerName(content))
                addSection(text, *name);
            else if (const qsizetype equals = equalsOf(content); equals > 0 && open)
                addEntry(text, line, content.first(equals).trimmed());
            at = line.next;
        }
    }

    const Section* section(QStringView text, QStringView name) const
    {
        for (auto it = byName.constFind(hashNoCase(name)); it != byName.cend(); ++it) {
            if (it.key() != hashNoCase(name))
                break;
            const Section& candidate = sections[*it];
            if (equalNoCase(text.sliced(candidate.name, candidate.nameSize), name))
                return &candidate;
        }
        return nullptr;
    }

    Found find(QStringView text, QStringView sectionName, QStringView key) const
    {
        const Section* const inside = section(text, sectionName);
        for (size_t i = 0; inside && i < inside->count; ++i) {
            const Entry& entry = entries[inside->first + i];
            if (equalNoCase(text.sliced(entry.key, entry.keySize), key))
                return entry.value;
        }
        return {};
    }

    std::vector<Entry> entries;

private:
    /// A later section of the same name is never asked for.
    void addSection(QStringView text, QStringView name)
    {
        open = !section(text, name);
        if (!open)
            return;
        byName.insert(hashNoCase(name), sections.size());
        sections.push_back({name.begin() - text.begin(), name.size(), entries.size(), 0});
    }

    void addEntry(QStringView text, const Line& line, QStringView key)
    {
        const qsizetype value = text.indexOf(u'=', line.start) + 1;
        entries.push_back({key.begin() - text.begin(), key.size(), {true, value, line.end}});
        ++sections.back().count;
    }

    std::vector<Section> sections;
    QMultiHash<size_t, size_t> byName;
    bool open = false; ///< entries belong to the last of sections
};

/// Null while the text is still walked for each question.
const ProfileFile::Index* ProfileFile::index() const
{
    constexpr int walks = 2;
    if (!m_index && ++m_questions > walks)
        m_index = std::make_shared<const Index>(m_text);
    return m_index.get();
}

ProfileFile::Found ProfileFile::find(QStringView section, QStringView key) const
{
    if (const Index* const known = index())
        return known->find(m_text, section.trimmed(), key.trimmed());
    const KeyLine line = keyLine(m_text, sectionSpan(m_text, section), key);
    return {line.found, line.value, line.line.end};
}

void ProfileFile::edited()
{
    m_index.reset();
    m_questions = 0;
}

ProfileFile ProfileFile::load(const Files& files, QStringView path, const AnsiCodec& ansi)
{
    const ResultOf<QByteArray> bytes = files.read(path, profileFileLimit);
    return bytes ? ofBytes(*bytes, ansi) : ProfileFile();
}

ProfileFile ProfileFile::ofBytes(QByteArrayView bytes, const AnsiCodec& ansi)
{
    ProfileFile file;
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff")) {
        QStringDecoder decoder(QStringDecoder::Utf16);
        file.m_text = decoder(bytes);
    } else {
        file.m_text = ansi.decode(bytes);
    }
    return file;
}

Read ProfileFile::value(QStringView section,
                        QStringView key,
                        QStringView fallback,
                        qsizetype bufferSize) const
{
    const Found found = find(section, key);
    if (!found.found) {
        while (fallback.endsWith(u' '))
            fallback.chop(1);
        return clipped(fallback, bufferSize);
    }
    const QStringView value =
        QStringView(m_text).sliced(found.value, found.end - found.value).trimmed();
    return clipped(withoutQuotes(value), bufferSize);
}

bool ProfileFile::has(QStringView section, QStringView key) const
{
    return find(section, key).found;
}

bool ProfileFile::hasSection(QStringView section) const
{
    if (const Index* const known = index())
        return known->section(m_text, section.trimmed()) != nullptr;
    return sectionSpan(m_text, section).found;
}

QStringList ProfileFile::sections() const
{
    QStringList names;
    for (qsizetype at = textStart(m_text); at < m_text.size();) {
        const Line line = lineAt(m_text, at);
        if (const auto name = headerName(contentOf(m_text, line)))
            names += name->toString();
        at = line.next;
    }
    return names;
}

QStringList ProfileFile::keys(QStringView section) const
{
    QStringList names;
    if (const Index* const known = index()) {
        const Index::Section* const inside = known->section(m_text, section.trimmed());
        for (size_t i = 0; inside && i < inside->count; ++i) {
            const Index::Entry& entry = known->entries[inside->first + i];
            names += m_text.sliced(entry.key, entry.keySize);
        }
        return names;
    }
    const SectionSpan span = sectionSpan(m_text, section);
    for (qsizetype at = span.header.next; span.found && at < span.end;) {
        const Line line = lineAt(m_text, at);
        const QStringView content = contentOf(m_text, line);
        if (const qsizetype equals = equalsOf(content); equals > 0)
            names += content.first(equals).trimmed().toString();
        at = line.next;
    }
    return names;
}

Read ProfileFile::sectionNames(qsizetype bufferSize) const
{
    return asList(sections(), bufferSize);
}

Read ProfileFile::keyNames(QStringView section, qsizetype bufferSize) const
{
    return asList(keys(section), bufferSize);
}

bool ProfileFile::setValue(QStringView section, QStringView key, QStringView value)
{
    edited();
    const SectionSpan span = sectionSpan(m_text, section);
    const KeyLine known = keyLine(m_text, span, key);
    if (known.found) {
        const qsizetype length = known.line.end - known.value;
        if (QStringView(m_text).sliced(known.value, length) == value)
            return false;
        m_text.replace(known.value, length, value.toString());
        return true;
    }
    const QString entry = key.trimmed().toString() + u'=' + value.toString();
    if (!span.found) {
        const QString end = endLike(m_text, lineAt(m_text, m_text.size()));
        if (!m_text.isEmpty() && !m_text.endsWith(u'\n'))
            m_text += end;
        m_text += u'[' + section.trimmed().toString() + u']' + end + entry + end;
        return true;
    }
    // Behind the section's last line that says something.
    Line last = span.header;
    for (qsizetype at = span.header.next; at < span.end;) {
        const Line line = lineAt(m_text, at);
        if (!contentOf(m_text, line).isEmpty())
            last = line;
        at = line.next;
    }
    const QString end = endLike(m_text, last);
    const bool closed = last.next > last.end;
    m_text.insert(last.next, (closed ? QString() : end) + entry + end);
    return true;
}

bool ProfileFile::removeKey(QStringView section, QStringView key)
{
    edited();
    const KeyLine known = keyLine(m_text, sectionSpan(m_text, section), key);
    if (known.found)
        m_text.remove(known.line.start, known.line.next - known.line.start);
    return known.found;
}

bool ProfileFile::removeSection(QStringView section)
{
    edited();
    const SectionSpan span = sectionSpan(m_text, section);
    if (span.found)
        m_text.remove(span.header.start, span.end - span.header.start);
    return span.found;
}

Read getValue(const Files& files,
              const AnsiCodec& ansi,
              QStringView section,
              QStringView key,
              QStringView fallback,
              qsizetype bufferSize,
              QStringView path)
{
    return ProfileFile::load(files, path, ansi).value(section, key, fallback, bufferSize);
}

Read getSectionNames(const Files& files, const AnsiCodec& ansi, QStringView path)
{
    return ProfileFile::load(files, path, ansi).sectionNames();
}

Result setValue(FileActions& actions,
                const AnsiCodec& ansi,
                QStringView section,
                QStringView key,
                QStringView value,
                const QString& path)
{
    if (Result names = checkNames(section, key); !names)
        return names;
    if (value.contains(u'\n') || value.contains(u'\r') || value.contains(QChar(0)))
        return Result::failure(u"The value of '"_s + key.toString() + u"' in '"_s + path +
                               u"' cannot hold a line break."_s);
    return editFile(
        actions, ansi, path, [&](ProfileFile& file) { return file.setValue(section, key, value); });
}

Result removeKey(FileActions& actions,
                 const AnsiCodec& ansi,
                 QStringView section,
                 QStringView key,
                 const QString& path)
{
    return editFile(
        actions, ansi, path, [&](ProfileFile& file) { return file.removeKey(section, key); });
}

Result
removeSection(FileActions& actions, const AnsiCodec& ansi, QStringView section, const QString& path)
{
    return editFile(
        actions, ansi, path, [&](ProfileFile& file) { return file.removeSection(section); });
}

} // namespace vt::profile
