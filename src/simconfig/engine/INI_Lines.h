// The byte side of line parsing, for the engine itself and for scans over many files. Every mark
// that the rules look for is below 0x40 and so never the second byte of a double-byte character;
// brackets are not, which is why section names are taken from decoded text.
#pragma once

#include "platform/Text.h"
#include "simconfig/engine/LineArray.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

namespace vt::modRoutines_INI {

struct StrippedBytes
{
    QByteArray data; ///< without comment, tabs and CRs, trimmed
    bool hasComment = false;
};

/// Both point into the line; the key with its blanks.
struct EntryView
{
    QByteArrayView key;
    QByteArrayView value;
};

struct EntryBytes
{
    QByteArray key; ///< without spaces and tabs
    QByteArray value;
};

[[nodiscard]] QByteArrayView trimmedSpaces(QByteArrayView text);
[[nodiscard]] QStringView trimmedSpaces(QStringView text);
/// Spaces and tabs.
[[nodiscard]] QByteArrayView trimmedBlanks(QByteArrayView text);
[[nodiscard]] StrippedBytes strippedBytes(QByteArrayView line);
/// Zero-based index of the first character of the line's comment, -1 for none.
[[nodiscard]] qsizetype commentStart(QByteArrayView line);
[[nodiscard]] std::optional<EntryView> splitView(QByteArrayView line);
[[nodiscard]] std::optional<EntryBytes> splitBytes(QByteArrayView line);
/// Whether a key, its blanks left out, is \a lowerCase (ASCII) without regard to case.
[[nodiscard]] bool isKey(QByteArrayView key, const char* lowerCase);
/// False for nearly every line that is no header; true still needs a look at the name.
[[nodiscard]] bool mayBeHeader(QByteArrayView line);
/// Without spaces and tabs.
[[nodiscard]] QString keyOf(QStringView text);

/// A name to be found among undecoded ones; decodes only where characters beyond ASCII meet.
class WantedName
{
public:
    explicit WantedName(QStringView name);

    [[nodiscard]] bool matches(QByteArrayView bytes, const LineArray& lines) const;

private:
    QString m_text;
    QByteArray m_bytes;
    bool m_ascii = false;
};

} // namespace vt::modRoutines_INI
