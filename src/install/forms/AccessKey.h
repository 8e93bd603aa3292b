// Access keys for captions whose words are fixed: the caption stands unbroken beside its use, and
// the key is put in here.
#pragma once

#include <QString>

namespace vt {

/// \a caption with "&" before the first \a key, without regard to case; unchanged without one.
[[nodiscard]] inline QString withAccessKey(const QString& caption, QChar key)
{
    const qsizetype at = caption.indexOf(key, 0, Qt::CaseInsensitive);
    return at < 0 ? caption : QString(caption).insert(at, u'&');
}

} // namespace vt
