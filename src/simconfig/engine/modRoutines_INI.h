// The one engine through which configuration files are parsed and edited, on arrays of lines.
// Comments, blank lines, unknown sections and their order survive every edit byte for byte; only a
// line that an edit names changes. Names compare without regard to case; a section name has no
// brackets; spaces and tabs inside a key do not count. Positions in comments here are zero-based.
#pragma once

#include "platform/FileActions.h"
#include "platform/Profile.h"
#include "simconfig/engine/LineArray.h"

#include <optional>

namespace vt::modRoutines_INI {

// --- files -------------------------------------------------------------------------------------

/// The raw bytes; fails when the file is missing, unreadable or beyond configFileLimit.
[[nodiscard]] ResultOf<QByteArray> File_ReadAllText(FileActions& actions, const QString& path);

/// \a lines is first made fresh, and stays so on failure. An empty file is a success.
[[nodiscard]] Result File_ReadLines(FileActions& actions, const QString& path, LineArray& lines);

/// Each element followed by CR LF. With \a keepInnerBlankLines every element is written but an
/// empty last one; without it only elements that are not empty. Refuses what checkEditable()
/// refuses; the old file then stands untouched, as after any failure.
[[nodiscard]] Result File_WriteLines(FileActions& actions,
                                     const QString& path,
                                     const LineArray& lines,
                                     bool keepInnerBlankLines);

[[nodiscard]] Result INI_File_Read(FileActions& actions, const QString& path, LineArray& lines);
/// File_WriteLines with the flag true.
[[nodiscard]] Result
INI_File_Write(FileActions& actions, const QString& path, const LineArray& lines);

/// Whether the lines may be edited and written back. Refused, with the file and the cause named:
/// UTF-16, NULs, bare LF line ends (they must be repaired first).
[[nodiscard]] Result checkEditable(const LineArray& lines, const QString& path);
/// The same of a whole file's bytes.
[[nodiscard]] Result checkEditable(const QByteArray& bytes, const QString& path);

// --- lines -------------------------------------------------------------------------------------

/// "/", ";" or "'".
[[nodiscard]] bool INI_Char_IsComment(QStringView character);
/// Whether the first character is "["; nothing is trimmed here.
[[nodiscard]] bool INI_Line_IsSectionHeader(QStringView line);
/// The name of a line that starts with "[" and has a "]" behind it; tabs, brackets and surrounding
/// blanks removed. Text behind the bracket does not count.
[[nodiscard]] std::optional<QString> INI_Line_GetSectionName(QStringView line);

struct Entry
{
    QString key;   ///< without any space or tab
    QString value; ///< surrounding spaces removed
};

/// Nothing when there is no "=" behind the first character.
[[nodiscard]] std::optional<Entry> INI_Line_SplitEntry(QStringView line);

struct StrippedLine
{
    QString data;    ///< without tabs and CRs, trimmed
    QString comment; ///< trimmed; empty unless asked for
};

/// The first "/", ";" or free-standing "'" starts the comment. A slash in first place that has no
/// blank beside it means that the line has no comment at all: paths survive.
[[nodiscard]] StrippedLine INI_Line_StripComment(QStringView line, bool keepComment = false);

/// Without any "[" and "]".
[[nodiscard]] QString INI_Section_NameStrip(const QString& text);
/// In brackets, unless it holds a "[" already.
[[nodiscard]] QString INI_Section_NameBracket(const QString& name);

// --- entries -----------------------------------------------------------------------------------
// With rawLine a line's comment is part of the value and tabs in it survive. Failures that have a
// cause to tell (a character outside the code page, a line break) set the result's text.

/// The value of the first match, later sections of the same name included.
[[nodiscard]] std::optional<QString> INI_Entry_Get(const LineArray& lines,
                                                   const QString& section,
                                                   const QString& key,
                                                   bool rawLine = false);
/// Replaces the first match ("key=value", the file's own key spelling, comment dropped), or appends
/// to a line whose value is empty, or adds the entry directly behind the section's header. A
/// section that does not exist: the entry goes behind the first line of the file.
[[nodiscard]] Result INI_Entry_Update(LineArray& lines,
                                      const QString& section,
                                      const QString& key,
                                      const QString& value,
                                      bool rawLine = false);
/// As INI_Entry_Update, but a missing section is made at the top of the file. Lines without
/// content are left alone and fail.
[[nodiscard]] Result INI_Entry_Set(LineArray& lines,
                                   const QString& section,
                                   const QString& key,
                                   const QString& value,
                                   bool rawLine = false);
/// False when nothing was removed. The very first line of the file is never removed.
bool INI_Entry_Delete(LineArray& lines, const QString& section, const QString& key);

// --- sections ----------------------------------------------------------------------------------

/// The first section of that name, header included, lines as they stand, up to the next header of
/// another name.
[[nodiscard]] std::optional<LineArray> INI_Section_GetLines(const LineArray& lines,
                                                            const QString& section);
/// Every section of that name; false when there was none.
bool INI_Section_Delete(LineArray& lines, const QString& section);
/// Before the header that follows the first section of that name; at the top with an empty name.
/// Nothing happens (false) when that section is missing or the last of the file.
bool INI_Section_InsertAfter(LineArray& lines, const LineArray& newLines, const QString& after);
/// In place of the first section of that name; others of that name go. The first section of a file
/// comes back at the very top.
bool INI_Section_Replace(LineArray& lines, const QString& section, const LineArray& newLines);
/// Changes the first header of that name only. Equal names succeed without a change.
[[nodiscard]] Result
INI_Section_Rename(LineArray& lines, const QString& oldName, const QString& newName);
/// In file order, duplicates kept; empty when there is no header.
[[nodiscard]] QStringList INI_Sections_GetNames(const LineArray& lines);
[[nodiscard]] std::optional<QString> INI_Section_GetFirst(const LineArray& lines);
/// The blank and comment lines before the first header, a fresh array when there are none.
[[nodiscard]] LineArray INI_Header_GetComments(const LineArray& lines);

/// The section name of a header line as every operation above recognises it: comment removed,
/// blanks in front allowed. Cheap for lines that are no headers.
[[nodiscard]] std::optional<QString> sectionOfLine(const LineArray& lines, QByteArrayView line);
/// Whether the line says nothing: it is empty but for blanks, or a comment as a whole.
[[nodiscard]] bool isCommentOrBlank(QByteArrayView line);
/// Key and value as they stand, without comment stripping; the value without surrounding blanks.
/// Nothing for comment lines and headers.
[[nodiscard]] std::optional<Entry> rawEntryOfLine(const LineArray& lines, QByteArrayView line);

// --- single values through the profile functions -----------------------------------------------

struct ProfileValue
{
    QString value;
    qsizetype count = 0; ///< characters that the profile function returned
};

/// Cut at the first NUL; then the comment is removed unless \a rawValue.
[[nodiscard]] ProfileValue INI_Profile_GetValue(const profile::ProfileFile& file,
                                                const QString& section,
                                                const QString& key,
                                                const QString& fallback,
                                                qsizetype bufferSize,
                                                bool rawValue = false);
/// As above straight from a file, staged bytes included; a missing file counts as empty.
[[nodiscard]] ProfileValue INI_Profile_GetValue(FileActions& actions,
                                                const AnsiCodec& ansi,
                                                const QString& section,
                                                const QString& key,
                                                const QString& fallback,
                                                qsizetype bufferSize,
                                                const QString& path);
[[nodiscard]] Result INI_Profile_SetValue(FileActions& actions,
                                          const AnsiCodec& ansi,
                                          const QString& section,
                                          const QString& key,
                                          const QString& value,
                                          const QString& path);
/// Appends every section name in file order, as far as a buffer of 32767 characters reaches.
void INI_Profile_GetSectionNames(FileActions& actions,
                                 const AnsiCodec& ansi,
                                 const QString& path,
                                 QStringList& names);
/// The file as it will be after what \a actions has staged; empty when missing.
[[nodiscard]] profile::ProfileFile
profileOf(FileActions& actions, const AnsiCodec& ansi, const QString& path);

} // namespace vt::modRoutines_INI
