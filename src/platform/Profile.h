// Single values of initialisation files, with the manners of Windows' profile functions for 8-bit
// files. Not the line engine: nothing here keeps comments behind a value that it replaces.
// Bytes that an edit does not concern stay as they are.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/FileActions.h"
#include "platform/Files.h"
#include "platform/Result.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>

namespace vt::profile {

/// The longest buffer that the functions fill.
inline constexpr qsizetype maxBuffer = 32767;

/// What a read put into its buffer.
struct Read
{
    QString text;        ///< without the closing NUL; lists have one NUL behind every name
    qsizetype count = 0; ///< characters in text
};

/// The loaded text of one file; answers many questions without reading or walking it again.
class ProfileFile
{
public:
    /// A missing or unreadable file counts as empty. UTF-16 with a byte-order mark is understood.
    [[nodiscard]] static ProfileFile
    load(const Files& files, QStringView path, const AnsiCodec& ansi);
    [[nodiscard]] static ProfileFile ofBytes(QByteArrayView bytes, const AnsiCodec& ansi);

    /// The first matching key of the first matching section, without regard to case, blanks and one
    /// pair of quotes around the value removed; \a fallback without its trailing blanks when either
    /// is missing. At most \a bufferSize - 1 characters.
    [[nodiscard]] Read value(QStringView section,
                             QStringView key,
                             QStringView fallback,
                             qsizetype bufferSize = maxBuffer) const;
    /// Whether value() would find the key.
    [[nodiscard]] bool has(QStringView section, QStringView key) const;

    [[nodiscard]] bool hasSection(QStringView section) const;

    /// Names in the order of the file, each ended by a NUL, at most \a bufferSize - 2 characters
    /// when they do not fit.
    [[nodiscard]] Read sectionNames(qsizetype bufferSize = maxBuffer) const;
    [[nodiscard]] Read keyNames(QStringView section, qsizetype bufferSize = maxBuffer) const;
    /// The same names as a list.
    [[nodiscard]] QStringList sections() const;
    [[nodiscard]] QStringList keys(QStringView section) const;

    /// The edits; true when the text changed. New lines end as the lines around them do.
    bool setValue(QStringView section, QStringView key, QStringView value);
    bool removeKey(QStringView section, QStringView key);
    bool removeSection(QStringView section);

    [[nodiscard]] const QString& text() const { return m_text; }

private:
    struct Index;
    struct Found;

    [[nodiscard]] const Index* index() const;
    [[nodiscard]] Found find(QStringView section, QStringView key) const;
    void edited();

    QString m_text;
    mutable int m_questions = 0;
    mutable std::shared_ptr<const Index> m_index; ///< made when questions keep coming
};

/// One read straight from a file, as ProfileFile::value().
[[nodiscard]] Read getValue(const Files& files,
                            const AnsiCodec& ansi,
                            QStringView section,
                            QStringView key,
                            QStringView fallback,
                            qsizetype bufferSize,
                            QStringView path);
[[nodiscard]] Read getSectionNames(const Files& files, const AnsiCodec& ansi, QStringView path);

/// Replaces the value of an existing key, or adds the key, the section (at the end of the file) and
/// the file. Fails, leaving the file untouched, on a character that the code page lacks, on line
/// breaks in an argument, on a UTF-16 or binary file, and when the file cannot be written.
Result setValue(FileActions& actions,
                const AnsiCodec& ansi,
                QStringView section,
                QStringView key,
                QStringView value,
                const QString& path);
/// A missing key, section or file is a success.
Result removeKey(FileActions& actions,
                 const AnsiCodec& ansi,
                 QStringView section,
                 QStringView key,
                 const QString& path);
Result removeSection(FileActions& actions,
                     const AnsiCodec& ansi,
                     QStringView section,
                     const QString& path);

} // namespace vt::profile
