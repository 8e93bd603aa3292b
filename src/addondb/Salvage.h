// Saves the rows of a damaged database file into a new one, page by page: what a broken page hides
// is lost, everything else comes along, the journal too.
#pragma once

#include "addondb/Connection.h"

#include <QByteArray>
#include <QDateTime>

namespace vt {

struct SalvageReport
{
    qint64 pages = 0;
    qint64 brokenPages = 0;
    qint64 rows = 0;      ///< saved
    qint64 doubtful = 0;  ///< of these, from pages that are not what was written
    qint64 rebuilt = 0;   ///< rows of add-ons that were made again from other tables
    bool journal = false; ///< there is unfinished work among what was saved
};

/// \a hostFile is a private copy with nothing beside it that belongs to it. \a into is new, empty
/// and open for writing; all is committed together. A row from a broken page is taken where all of
/// it can be read and nothing speaks against it. What add-ons need to be seen is made again from
/// their history where it is lost, and the other way round; \a now is the time for what no table
/// tells.
[[nodiscard]] ResultOf<SalvageReport>
salvageRows(const QByteArray& hostFile, Connection& into, const QDateTime& now);

} // namespace vt
