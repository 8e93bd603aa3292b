// The aircraft sections of an aircraft.cfg as blocks of lines: putting them in order, adding,
// taking out, hiding. Works on the lines alone; what an edit does not concern stays byte for byte,
// and adding and then taking out gives the same lines again.
#pragma once

#include "platform/Result.h"
#include "simconfig/engine/LineArray.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt::aircraftsections {

/// A section that bears another name now; what is recorded under the old one has to follow.
struct Rename
{
    QString before;
    QString after;

    friend bool operator==(const Rename&, const Rename&) = default;
};

using Renames = QList<Rename>;

/// \a section bears its new name afterwards.
void follow(QString& section, const Renames& renames);

/// Sections become fltsim.0, 1, 2, ... by ascending number, in front of all others; what stood
/// before the first section stays there. Nothing happens when they are continuous already.
[[nodiscard]] ResultOf<Renames> reorder(LineArray& lines);

/// Where a file has no aircraft section: those that were meant as one ("fltsim", "fltsim.X", with a
/// title or a flight model) become fltsim.0, 1, ... in file order.
[[nodiscard]] ResultOf<Renames> numberMeantOnes(LineArray& lines);

/// The section's lines from its header to its last entry. Nothing when there is none of that name.
[[nodiscard]] std::optional<LineArray> ownLines(const LineArray& lines, const QString& section);

/// Puts the blocks behind the last aircraft section (hidden ones count), an empty line before each.
void append(LineArray& lines, const QList<LineArray>& blocks);

/// Takes the sections out, each with one empty line that set it off. Those that do not exist are
/// left out of account; false when none did.
bool take(LineArray& lines, const QStringList& sections);

/// The section gets a name that the simulator does not look at, and those behind it close the gap.
/// show() undoes it byte for byte, in any order of hiding and showing. Both refuse a file whose
/// sections are out of order.
[[nodiscard]] ResultOf<Renames> hide(LineArray& lines, const QString& section);
[[nodiscard]] ResultOf<Renames> show(LineArray& lines, const QString& section);

/// Where a block comes from.
enum class Source
{
    Configuration, ///< an aircraft.cfg: lines as they stand
    Prose,         ///< a text with instructions around: only entries are taken, tidied
};

/// Every section "fltsim." + anything of \a bytes, in any encoding and with any line ends. Fails
/// when a character is missing in the code page.
[[nodiscard]] ResultOf<QList<LineArray>>
blocksIn(const QByteArray& bytes, const AnsiCodec& ansi, Source source);

} // namespace vt::aircraftsections
