// Helpers that the files of the data layer share: the stated failures, trimming, one-row look-ups.
#pragma once

#include "addondb/Connection.h"
#include "addondb/Recordset.h"

#include <QString>

namespace vt {

/// A failure of the database itself; the cause stays in Connection::lastError().
[[nodiscard]] inline Result databaseFailure(QString text)
{
    return Result::failure(std::move(text), ErrorKind::Surroundings);
}

/// Without the blanks at both ends; the same text (shared) when there are none.
[[nodiscard]] inline QString trimmedBlanks(const QString& text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return begin == 0 && end == text.size() ? text : text.sliced(begin, end - begin);
}

} // namespace vt
