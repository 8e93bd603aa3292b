// Windows paths as texts ("C:\Games\FSX\Effects\fx_a.fx"). Every path inside the program has this
// form; a folder ends in "\". Pure text: nothing here looks at a disk.
#pragma once

#include "platform/Result.h"

#include <QString>
#include <QStringList>
#include <QStringView>

namespace vt::winpath {

/// "/" turned into "\", doubled separators and "." parts dropped, ".." resolved where it can be.
[[nodiscard]] QString normalised(QStringView path);
/// As normalised(), ending in "\"; empty stays empty.
[[nodiscard]] QString asFolder(QStringView path);
/// Without one trailing "\" ("C:\" stays).
[[nodiscard]] QString withoutTrailing(QStringView folder);
/// \a folder (with or without trailing "\") + \a relative.
[[nodiscard]] QString join(QStringView folder, QStringView relative);
/// "C:\a\b.txt" gives "C:\a\"; "C:\a\b\" gives "C:\a\"; "b.txt" gives "".
[[nodiscard]] QString parent(QStringView path);
/// Last component, trailing "\" ignored: "C:\a\b\" gives "b".
[[nodiscard]] QString name(QStringView path);
/// Name without its last ".ext": "a.b.cfg" gives "a.b".
[[nodiscard]] QString baseName(QStringView path);
/// Extension without the point, as written; empty when there is none.
[[nodiscard]] QString extension(QStringView path);
/// True for "X:\..." (and "X:").
[[nodiscard]] bool isAbsolute(QStringView path);
/// The components between separators, empty ones left out.
[[nodiscard]] QStringList components(QStringView path);
/// True when \a path lies below (or is) \a folder, without regard to case.
[[nodiscard]] bool isBelow(QStringView path, QStringView folder);
/// The part of \a path below \a folder, or \a path unchanged when it does not lie there.
[[nodiscard]] QString relativeTo(QStringView path, QStringView folder);
/// Equal without regard to case, separators and one trailing "\".
[[nodiscard]] bool same(QStringView a, QStringView b);

/// Whether one path component may be written to a Windows disk: not empty, no "..", no separators,
/// colons, wildcards or control characters, no reserved device name, no trailing blank or point,
/// at most 255 characters. The text of a failure names the component and the cause.
[[nodiscard]] Result checkComponent(QStringView component);
/// checkComponent() for each part of a relative path; an absolute path is refused.
[[nodiscard]] Result checkRelative(QStringView relative);
/// \a text with every character that a name may not hold left out; may come out empty.
[[nodiscard]] QString safeName(QStringView text);

} // namespace vt::winpath
