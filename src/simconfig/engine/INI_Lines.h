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

/// What a line says in front of its comment.
struct StrippedView
{
    QByteArrayView data; ///< without tabs and CRs, trimmed
    bool hasComment = false;
};

/// Both point into the line; the key with its blanks.
struct EntryView
{
    QByteArrayView key;
    QByteArrayView value;
};

[[nodiscard]] QByteArrayView trimmedSpaces(QByteArrayView text);
[[nodiscard]] QStringView trimmedSpaces(QStringView text);
/// Spaces and tabs.
[[nodiscard]] QByteArrayView trimmedBlanks(QByteArrayView text);
/// Zero-based index of the first character of the line's comment, -1 for none.
[[nodiscard]] qsizetype commentStart(QByteArrayView line);
/// Points into the line, or into \a room where tabs or CRs had to go.
[[nodiscard]] StrippedView strippedView(QByteArrayView line, QByteArray& room);
[[nodiscard]] std::optional<EntryView> splitView(QByteArrayView line);
/// Without any space and tab, as keys are written and compared.
[[nodiscard]] QByteArray keyBytes(QByteArrayView key);
/// Whether a key, its blanks left out, is \a lowerCase (ASCII) without regard to case.
[[nodiscard]] bool isKey(QByteArrayView key, QByteArrayView lowerCase);
/// False for nearly every line that is no header; true still needs a look at the name.
[[nodiscard]] bool mayBeHeader(QByteArrayView line);
/// Without spaces and tabs.
[[nodiscard]] QString keyOf(QStringView text);

/// A key to be found among undecoded ones; decodes only when it goes beyond ASCII itself.
class WantedKey
{
public:
    explicit WantedKey(QStringView name);

    /// Blanks in either do not count.
    [[nodiscard]] bool matches(QByteArrayView key, const LineArray& lines) const;

private:
    QString m_text;
    QByteArray m_lowerCase; ///< empty when the key goes beyond ASCII
};

} // namespace vt::modRoutines_INI
