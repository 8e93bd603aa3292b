#include "simconfig/engine/modRoutines_INI.h"

#include "platform/Text.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/INI_Lines.h"

using namespace Qt::StringLiterals;

namespace vt::modRoutines_INI {

namespace {

using ByteLines = QList<QByteArray>;

/// Where an entry stands and what it says.
struct Located
{
    qsizetype line = -1;  ///< -1: not found
    qsizetype header = 0; ///< the section's first line; 0 when the section was never met
    QByteArray key;       ///< without blanks
    QByteArray value;
    bool hasComment = false;
};

/// A header as the walk sees it: of a raw line only the surrounding blanks are removed.
std::optional<QString> headerName(const LineArray& lines, const QByteArray& line, bool rawLine)
{
    if (!mayBeHeader(line))
        return std::nullopt;
    if (!rawLine)
        return sectionOfLine(lines, line);
    return INI_Line_GetSectionName(lines.decoded(trimmedBlanks(line)));
}

Located locate(const LineArray& lines, const QString& section, const QString& key, bool rawLine)
{
    const WantedKey wanted(key);
    Located result;
    QByteArray room;
    bool inside = section.isEmpty();
    bool met = false;
    for (qsizetype i = 0; i < lines.lines.size(); ++i) {
        const QByteArray& line = lines.lines.at(i);
        if (const std::optional<QString> name = headerName(lines, line, rawLine))
            inside = equalNoCase(*name, section);
        if (!inside)
            continue;
        if (!met) {
            met = true;
            result.header = i;
        }
        if (!line.contains('='))
            continue;
        const StrippedView stripped =
            rawLine ? StrippedView{line, false} : strippedView(line, room);
        const std::optional<EntryView> entry = splitView(stripped.data);
        if (!entry || !wanted.matches(entry->key, lines))
            continue;
        result.line = i;
        result.key = keyBytes(entry->key);
        result.value = entry->value.toByteArray();
        result.hasComment = stripped.hasComment;
        return result;
    }
    return result;
}

/// A key that would not be read back as one must not be written.
Result checkKey(const QString& key)
{
    const QString trimmed = keyOf(key);
    if (trimmed.isEmpty() || trimmed.contains(u'=') || trimmed.startsWith(u'[') ||
        INI_Char_IsComment(QStringView(trimmed).first(1)))
        return Result::failure(u"'"_s + key +
                               u"' cannot be the name of an entry in a configuration file."_s);
    return Result::success();
}

ResultOf<QByteArray> entryLine(const LineArray& lines, const QString& key, const QString& value)
{
    if (const Result checked = checkKey(key); !checked)
        return checked;
    return lines.encoded(key + u'=' + value);
}

enum class Unfit
{
    Utf16,
    Nul,
    BareLineFeed,
};

Result notEditable(Unfit why, const QString& path)
{
    QString cause;
    switch (why) {
    case Unfit::Utf16:
        cause = u"is a UTF-16 text and is not edited. Save it as ANSI text, then try again."_s;
        break;
    case Unfit::Nul:
        cause = u"holds NUL characters, so it is no ANSI text and is not edited."_s;
        break;
    case Unfit::BareLineFeed:
        cause =
            u"has lines that end in LF alone and is not edited. Repair its line ends to CR LF, then try again."_s;
        break;
    }
    return Result::failure(u"'"_s + path + u"' "_s + cause);
}

bool hasUtf16Mark(const QByteArray& bytes)
{
    return bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff");
}

Result noContent()
{
    return Result::failure(u"The configuration file has no content."_s);
}

} // namespace

// --- files -------------------------------------------------------------------------------------

ResultOf<QByteArray> File_ReadAllText(FileActions& actions, const QString& path)
{
    return actions.read(path, configFileLimit);
}

Result File_ReadLines(FileActions& actions, const QString& path, LineArray& lines)
{
    lines.clear();
    const ResultOf<QByteArray> bytes = File_ReadAllText(actions, path);
    if (!bytes)
        return bytes.error();
    lines = LineArray::ofBytes(*bytes, lines.ansi());
    return Result::success();
}

Result File_WriteLines(FileActions& actions,
                       const QString& path,
                       const LineArray& lines,
                       bool keepInnerBlankLines)
{
    if (const Result editable = checkEditable(lines, path); !editable)
        return editable;
    qsizetype total = 0;
    for (const QByteArray& line : lines.lines)
        total += line.size() + 2;
    QByteArray bytes;
    bytes.reserve(total);
    for (qsizetype i = 0; i < lines.lines.size(); ++i) {
        const QByteArray& line = lines.lines.at(i);
        const bool keepsEmpty = keepInnerBlankLines && i + 1 < lines.lines.size();
        if (!line.isEmpty() || keepsEmpty)
            bytes.append(line).append("\r\n", 2);
    }
    return actions.replace(path, bytes);
}

Result INI_File_Read(FileActions& actions, const QString& path, LineArray& lines)
{
    return File_ReadLines(actions, path, lines);
}

Result INI_File_Write(FileActions& actions, const QString& path, const LineArray& lines)
{
    return File_WriteLines(actions, path, lines, true);
}

Result checkEditable(const LineArray& lines, const QString& path)
{
    if (hasUtf16Mark(lines.lines.constFirst()))
        return notEditable(Unfit::Utf16, path);
    bool bareLineFeed = false;
    for (const QByteArray& line : lines.lines) {
        if (line.contains('\0'))
            return notEditable(Unfit::Nul, path);
        bareLineFeed = bareLineFeed || line.contains('\n');
    }
    return bareLineFeed ? notEditable(Unfit::BareLineFeed, path) : Result::success();
}

Result checkEditable(const QByteArray& bytes, const QString& path)
{
    if (hasUtf16Mark(bytes))
        return notEditable(Unfit::Utf16, path);
    if (bytes.contains('\0'))
        return notEditable(Unfit::Nul, path);
    for (qsizetype at = bytes.indexOf('\n'); at >= 0; at = bytes.indexOf('\n', at + 1)) {
        if (at == 0 || bytes.at(at - 1) != '\r')
            return notEditable(Unfit::BareLineFeed, path);
    }
    return Result::success();
}

// --- entries -----------------------------------------------------------------------------------

std::optional<QString>
INI_Entry_Get(const LineArray& lines, const QString& section, const QString& key, bool rawLine)
{
    if (!lines.hasContent())
        return std::nullopt;
    const Located found = locate(lines, section, key, rawLine);
    if (found.line < 0)
        return std::nullopt;
    return lines.decoded(found.value);
}

Result INI_Entry_Update(LineArray& lines,
                        const QString& section,
                        const QString& key,
                        const QString& value,
                        bool rawLine)
{
    if (!lines.hasContent())
        return noContent();
    const ResultOf<QByteArray> bytes = lines.encoded(value);
    if (!bytes)
        return bytes.error();
    const Located found = locate(lines, section, key, rawLine);
    if (found.line < 0) {
        const ResultOf<QByteArray> line = entryLine(lines, key, value);
        if (!line)
            return line.error();
        lines.lines.insert(found.header + 1, *line);
        return Result::success();
    }
    QByteArray& line = lines.lines[found.line];
    // Appending behind a comment would hide the new value in it.
    if (found.value.isEmpty() && !found.hasComment)
        line.append(*bytes);
    else
        line = found.key + '=' + *bytes;
    return Result::success();
}

Result INI_Entry_Set(LineArray& lines,
                     const QString& section,
                     const QString& key,
                     const QString& value,
                     bool rawLine)
{
    if (!lines.hasContent())
        return noContent();
    if (section.isEmpty())
        return Result::failure(u"An entry needs the name of a section."_s);
    if (INI_Section_GetLines(lines, section))
        return INI_Entry_Update(lines, section, key, value, rawLine);

    const ResultOf<QByteArray> headerBytes = lines.encoded(INI_Section_NameBracket(section));
    if (!headerBytes)
        return headerBytes.error();
    const std::optional<QString> name = sectionOfLine(lines, *headerBytes);
    if (!name || !equalNoCase(*name, section))
        return Result::failure(u"'"_s + section +
                               u"' cannot be the name of a section in a configuration file."_s);
    const ResultOf<QByteArray> entryBytes = entryLine(lines, key, value);
    if (!entryBytes)
        return entryBytes.error();
    LineArray block(lines.ansi());
    block.lines = {*headerBytes, *entryBytes};
    INI_Section_InsertAfter(lines, block, QString());
    return Result::success();
}

bool INI_Entry_Delete(LineArray& lines, const QString& section, const QString& key)
{
    if (!lines.hasContent() || section.isEmpty() || key.isEmpty())
        return false;
    const Located found = locate(lines, section, key, false);
    if (found.line <= 0)
        return false;
    lines.lines.removeAt(found.line);
    return true;
}

// --- sections ----------------------------------------------------------------------------------

std::optional<LineArray> INI_Section_GetLines(const LineArray& lines, const QString& section)
{
    if (!lines.hasContent() || section.isEmpty())
        return std::nullopt;
    qsizetype first = -1;
    qsizetype end = lines.lines.size();
    for (qsizetype i = 0; i < lines.lines.size(); ++i) {
        const std::optional<QString> name = sectionOfLine(lines, lines.lines.at(i));
        if (!name)
            continue;
        const bool wanted = equalNoCase(*name, section);
        if (wanted && first < 0)
            first = i;
        if (!wanted && first >= 0) {
            end = i;
            break;
        }
    }
    if (first < 0)
        return std::nullopt;
    LineArray result(lines.ansi());
    result.lines = lines.lines.sliced(first, end - first);
    return result;
}

bool INI_Section_Delete(LineArray& lines, const QString& section)
{
    if (!lines.hasContent() || section.isEmpty())
        return false;
    ByteLines kept;
    kept.reserve(lines.lines.size());
    bool inside = false;
    bool found = false;
    for (const QByteArray& line : std::as_const(lines.lines)) {
        if (const std::optional<QString> name = sectionOfLine(lines, line))
            inside = equalNoCase(*name, section);
        found = found || inside;
        if (!inside)
            kept.push_back(line);
    }
    if (!found)
        return false;
    lines.lines = kept.isEmpty() ? ByteLines{QByteArray()} : kept;
    return true;
}

bool INI_Section_InsertAfter(LineArray& lines, const LineArray& newLines, const QString& after)
{
    if (!lines.hasContent() || !newLines.hasContent())
        return false;
    if (after.isEmpty()) {
        lines.lines = newLines.lines + lines.lines;
        return true;
    }
    bool met = false;
    for (qsizetype i = 0; i < lines.lines.size(); ++i) {
        const std::optional<QString> name = sectionOfLine(lines, lines.lines.at(i));
        if (!name)
            continue;
        if (met) {
            lines.lines = lines.lines.first(i) + newLines.lines + lines.lines.sliced(i);
            return true;
        }
        met = equalNoCase(*name, after);
    }
    return false;
}

bool INI_Section_Replace(LineArray& lines, const QString& section, const LineArray& newLines)
{
    const QStringList names = INI_Sections_GetNames(lines);
    qsizetype place = 0; // sections before the wanted one
    while (place < names.size() && !equalNoCase(names.at(place), section))
        ++place;
    if (place == names.size() || !INI_Section_Delete(lines, section))
        return false;
    if (place == 0) {
        lines.lines = newLines.lines + (lines.hasContent() ? lines.lines : ByteLines());
        return true;
    }
    // Counted, not looked up by name: the section before may share its name with an earlier one.
    qsizetype headers = 0;
    qsizetype at = 0;
    for (; at < lines.lines.size(); ++at) {
        if (sectionOfLine(lines, lines.lines.at(at)) && ++headers > place)
            break;
    }
    lines.lines = lines.lines.first(at) + newLines.lines + lines.lines.sliced(at);
    return true;
}

Result INI_Section_Rename(LineArray& lines, const QString& oldName, const QString& newName)
{
    if (!lines.hasContent())
        return noContent();
    if (equalNoCase(oldName, newName))
        return Result::success();
    if (oldName.isEmpty() || newName.isEmpty())
        return Result::failure(u"A section cannot be renamed without its old and its new name."_s);
    for (QByteArray& line : lines.lines) {
        const std::optional<QString> name = sectionOfLine(lines, line);
        if (!name || !equalNoCase(*name, oldName))
            continue;
        QString text = lines.decoded(line);
        qsizetype at = indexOfNoCase(text, oldName);
        if (at < 0) // a tab inside the name: the brackets as a whole
            text.replace(0, text.indexOf(u']') + 1, INI_Section_NameBracket(newName));
        for (; at >= 0; at = indexOfNoCase(text, oldName, at + newName.size()))
            text.replace(at, oldName.size(), newName);
        const ResultOf<QByteArray> bytes = lines.encoded(text);
        if (!bytes)
            return bytes.error();
        line = *bytes;
        return Result::success();
    }
    return Result::failure(u"The configuration file has no section '"_s + oldName + u"'."_s);
}

QStringList INI_Sections_GetNames(const LineArray& lines)
{
    QStringList names;
    if (!lines.hasContent())
        return names;
    for (const QByteArray& line : lines.lines) {
        if (const std::optional<QString> name = sectionOfLine(lines, line))
            names.push_back(*name);
    }
    return names;
}

std::optional<QString> INI_Section_GetFirst(const LineArray& lines)
{
    for (const QByteArray& line : lines.lines) {
        if (const std::optional<QString> name = sectionOfLine(lines, line))
            return name;
    }
    return std::nullopt;
}

LineArray INI_Header_GetComments(const LineArray& lines)
{
    LineArray result(lines.ansi());
    if (!lines.hasContent())
        return result;
    ByteLines collected;
    for (const QByteArray& line : lines.lines) {
        if (sectionOfLine(lines, line))
            break;
        if (isCommentOrBlank(line))
            collected.push_back(line);
    }
    if (!collected.isEmpty())
        result.lines = collected;
    return result;
}

// --- single values through the profile functions -----------------------------------------------

ProfileValue INI_Profile_GetValue(const profile::ProfileFile& file,
                                  const QString& section,
                                  const QString& key,
                                  const QString& fallback,
                                  qsizetype bufferSize,
                                  bool rawValue)
{
    const profile::Read read = file.value(section, key, fallback, bufferSize);
    const qsizetype nul = read.text.indexOf(QChar(u'\0'));
    const QString text = nul >= 0 ? read.text.first(nul) : read.text;
    return {rawValue ? text : INI_Line_StripComment(text).data, read.count};
}

ProfileValue INI_Profile_GetValue(FileActions& actions,
                                  const AnsiCodec& ansi,
                                  const QString& section,
                                  const QString& key,
                                  const QString& fallback,
                                  qsizetype bufferSize,
                                  const QString& path)
{
    return INI_Profile_GetValue(profileOf(actions, ansi, path), section, key, fallback, bufferSize);
}

Result INI_Profile_SetValue(FileActions& actions,
                            const AnsiCodec& ansi,
                            const QString& section,
                            const QString& key,
                            const QString& value,
                            const QString& path)
{
    return profile::setValue(actions, ansi, section, key, value, path);
}

void INI_Profile_GetSectionNames(FileActions& actions,
                                 const AnsiCodec& ansi,
                                 const QString& path,
                                 QStringList& names)
{
    const profile::Read read = profileOf(actions, ansi, path).sectionNames(profile::maxBuffer);
    names += read.text.first(read.count).split(QChar(u'\0'), Qt::SkipEmptyParts);
}

profile::ProfileFile profileOf(FileActions& actions, const AnsiCodec& ansi, const QString& path)
{
    const ResultOf<QByteArray> bytes = File_ReadAllText(actions, path);
    return profile::ProfileFile::ofBytes(bytes ? *bytes : QByteArray(), ansi);
}

} // namespace vt::modRoutines_INI
