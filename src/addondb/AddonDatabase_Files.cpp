// The files of add-ons: detail rows, checks, and what was kept for them.
#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseSteps.h"

#include <QHash>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::modDatabase_Addon {

namespace {

/// With fewer files in a folder each is looked up by itself: others may have thousands there.
constexpr qsizetype oneByOne = 16;

DetailRecord readDetail(Recordset& rows)
{
    DetailRecord detail;
    detail.key = rows.number(Field::Addon_Details_Key);
    detail.masterKey = rows.number(Field::Addon_Master_Key);
    detail.filename = rows.text(Field::Filename);
    detail.location = rows.sharedText(Field::Installed_To_Location);
    const auto textOf = [&rows](Field field, Field other, const QString& otherText) {
        return rows.sameText(field, other) ? otherText : rows.text(field);
    };
    using F = Field;
    detail.name = textOf(F::Installed_To_FileName, F::Filename, detail.filename);
    detail.preferredLocation =
        textOf(F::Preferred_Install_To_Location, F::Installed_To_Location, detail.location);
    detail.preferredName =
        textOf(F::Preferred_Install_To_Filename, F::Installed_To_FileName, detail.name);
    return detail;
}

// Names and folders are written as they are: a file's name may begin with a blank.
void writeDetail(Recordset& rows, const DetailRecord& detail)
{
    rows.set(Field::Addon_Master_Key, detail.masterKey);
    rows.set(Field::Filename, detail.filename);
    rows.set(Field::Installed_To_Location, detail.location);
    rows.set(Field::Installed_To_FileName, detail.name);
    rows.set(Field::Preferred_Install_To_Location, detail.preferredLocation);
    rows.set(Field::Preferred_Install_To_Filename, detail.preferredName);
}

/// The rows from the present one on, as far as the walk goes.
Result collect(QList<DetailRecord>& details, Recordset& rows, bool any)
{
    for (bool more = any; more; more = rows.moveNext())
        details.push_back(readDetail(rows));
    return rows.error() ? Result::success()
                        : databaseFailure(u"Could not open the addon details table."_s);
}

ResultOf<QList<DetailRecord>> collected(Recordset& rows, bool any)
{
    QList<DetailRecord> details;
    if (Result done = collect(details, rows, any); !done)
        return done;
    return details;
}

ResultOf<QList<RowRun>> runsOf(Connection& database, qint64 masterKey)
{
    Recordset rows(database, Table::Addon_Details);
    rows.setIndex(Index::Addon_Details_Addon_Master_Key);
    return rows.runsMatching({masterKey});
}

QList<RowRun> runsOf(const QList<DetailRecord>& details)
{
    QList<RowRun> runs;
    for (const DetailRecord& detail : details)
        addToRuns(runs, detail.key);
    return runs;
}

ResultOf<QList<DetailRecord>>
detailsBy(Connection& database, Index index, std::initializer_list<FieldValue> keys)
{
    Recordset rows(database, Table::Addon_Details);
    rows.setIndex(index);
    const bool any = rows.seek(keys);
    return collected(rows, any);
}

void writeCheck(Recordset& rows, const Fingerprint& check)
{
    rows.set(Field::Size, check.size);
    rows.set(Field::ModifiedNs, check.modifiedNs);
    rows.set(Field::Hash, check.xxh3);
}

Fingerprint readCheck(const Recordset& rows)
{
    return {rows.number(Field::Size), rows.number(Field::ModifiedNs), rows.blob(Field::Hash)};
}

OriginalRecord readOriginal(const Recordset& rows)
{
    return {rows.number(Field::Addon_Details_Key),
            rows.number(Field::Addon_Master_Key),
            rows.text(Field::KeptFile)};
}

void writeOriginal(Recordset& rows, const OriginalRecord& original)
{
    rows.set(Field::Addon_Details_Key, original.detailKey);
    rows.set(Field::Addon_Master_Key, original.masterKey);
    rows.set(Field::KeptFile, original.keptFile);
}

Result keptNotRecorded()
{
    return databaseFailure(u"Could not update the records of the addon's kept files."_s);
}

Result foldersNotRecorded()
{
    return databaseFailure(u"Could not update the records of the addon's folders."_s);
}

Result
addAllDetails(Connection& database, qint64 masterKey, qint64 first, QList<DetailRecord>& details)
{
    Recordset rows(database, Table::Addon_Details);
    qint64 key = first;
    for (DetailRecord& detail : details) {
        detail.key = key++;
        detail.masterKey = masterKey;
        rows.addNew();
        rows.set(Field::Addon_Details_Key, detail.key);
        writeDetail(rows, detail);
        if (!rows.update())
            return databaseFailure(u"Could not create addon details record."_s);
    }
    return Result::success();
}

Result addAllChecks(Connection& database, qint64 first, const QList<Fingerprint>& checks)
{
    Recordset rows(database, Table::Vantrel_Checks);
    qint64 key = first;
    for (const Fingerprint& check : checks) {
        const qint64 own = key++;
        if (check.size < 0)
            continue;
        rows.addNew();
        rows.set(Field::Addon_Details_Key, own);
        writeCheck(rows, check);
        if (!rows.update())
            return databaseFailure(u"Could not create addon details record."_s);
    }
    return Result::success();
}

QHash<NoCase, QList<const DetailRecord*>> byFolder(const QList<DetailRecord>& details)
{
    QHash<NoCase, QList<const DetailRecord*>> folders;
    QList<const DetailRecord*>* neighbours = nullptr;
    QString last;
    for (const DetailRecord& detail : details) {
        if (!neighbours || detail.location != last) {
            last = detail.location;
            neighbours = &folders[NoCase{last}];
        }
        neighbours->append(&detail);
    }
    return folders;
}

/// The rows of whatever add-on at the places of these.
Result collectAtPlaces(QList<DetailRecord>& found,
                       Recordset& rows,
                       const QList<const DetailRecord*>& neighbours)
{
    rows.setIndex(Index::Addon_Details_Installed_To);
    for (const DetailRecord* detail : neighbours) {
        const bool any = rows.seek({detail->location, detail->name});
        if (Result done = collect(found, rows, any); !done)
            return done;
    }
    return Result::success();
}

/// The same for many files of one folder, in one walk over its part of the index; the rows of
/// \a own are not looked at, as they are this add-on's.
Result collectInFolder(QList<DetailRecord>& found,
                       Recordset& rows,
                       const QList<const DetailRecord*>& neighbours,
                       RowRun own)
{
    QList<DetailRecord> others;
    const bool any = rows.seekInFolder(neighbours.constFirst()->location, own);
    if (Result done = collect(others, rows, any); !done || others.isEmpty())
        return done;
    QSet<NoCase> names;
    for (const DetailRecord* detail : neighbours)
        names.insert(NoCase{detail->name});
    others.removeIf([&](const DetailRecord& row) { return !names.contains(NoCase{row.name}); });
    found += others;
    return Result::success();
}

/// One above every key that a detail row ever had.
ResultOf<qint64> nextDetailKey(Connection& database)
{
    qint64 key = counter(database, u"Addon_Details_Key"_s);
    Recordset rows(database, Table::Addon_Details);
    if (rows.moveLast())
        key = qMax(key, rows.number(Field::Addon_Details_Key));
    else if (!rows.error())
        return databaseFailure(u"Could not open the addon details table."_s);
    return key + 1;
}

} // namespace

ResultOf<qint64> addDetails(Connection& database,
                            qint64 masterKey,
                            QList<DetailRecord>& details,
                            const QList<Fingerprint>& checks)
{
    Q_ASSERT(checks.isEmpty() || checks.size() == details.size());
    qint64 first = 0;
    const Result done = database.together([&]() -> Result {
        const ResultOf<qint64> next = nextDetailKey(database);
        if (!next)
            return next.error();
        first = *next;
        if (Result added = addAllDetails(database, masterKey, first, details); !added)
            return added;
        if (Result added = addAllChecks(database, first, checks); !added)
            return added;
        return setCounter(database, u"Addon_Details_Key"_s, first + details.size() - 1);
    });
    if (!done)
        return done;
    return first;
}

std::optional<DetailRecord> detail(Connection& database, qint64 detailKey)
{
    Recordset rows(database, Table::Addon_Details);
    if (!rows.seek({detailKey}))
        return std::nullopt;
    return readDetail(rows);
}

ResultOf<QList<DetailRecord>> detailsOf(Connection& database, qint64 masterKey)
{
    const ResultOf<QList<RowRun>> runs = runsOf(database, masterKey);
    if (!runs)
        return databaseFailure(u"Could not open the addon details table."_s);
    QList<DetailRecord> details;
    Recordset rows(database, Table::Addon_Details);
    for (const RowRun& run : *runs) {
        details.reserve(details.size() + run.size());
        const bool any = rows.seekRun(run);
        if (Result done = collect(details, rows, any); !done)
            return done;
    }
    return details;
}

ResultOf<QList<DetailRecord>>
ownersOf(Connection& database, const QString& location, const QString& name)
{
    ResultOf<QList<DetailRecord>> rows =
        detailsBy(database, Index::Addon_Details_Installed_To, {location, name});
    if (!rows)
        return rows;
    rows->removeIf([&](const DetailRecord& row) {
        const ResultOf<AddonRecord> owner = addon(database, row.masterKey);
        return owner && owner->status == InstallationStatus::FileCabinet;
    });
    return rows;
}

ResultOf<QList<DetailRecord>> sharersOf(Connection& database, const QList<DetailRecord>& details)
{
    if (details.isEmpty())
        return QList<DetailRecord>();
    const QList<RowRun> runs = runsOf(details);
    const RowRun longest = *std::max_element(
        runs.cbegin(), runs.cend(), [](RowRun a, RowRun b) { return a.size() < b.size(); });
    QList<DetailRecord> sharers;
    Recordset rows(database, Table::Addon_Details);
    for (const QList<const DetailRecord*>& neighbours : byFolder(details)) {
        const Result found = neighbours.size() < oneByOne
                                 ? collectAtPlaces(sharers, rows, neighbours)
                                 : collectInFolder(sharers, rows, neighbours, longest);
        if (!found)
            return found;
    }
    sharers.removeIf([own = details.constFirst().masterKey](const DetailRecord& row) {
        return row.masterKey == own;
    });
    std::sort(sharers.begin(), sharers.end(), [](const DetailRecord& a, const DetailRecord& b) {
        return a.key < b.key;
    });
    return sharers;
}

ResultOf<QList<DetailRecord>>
byPreferredPlace(Connection& database, const QString& location, const QString& name)
{
    return detailsBy(database, Index::Addon_Details_Preferred_Install_To, {location, name});
}

ResultOf<QList<DetailRecord>> byInstalledName(Connection& database, const QString& name)
{
    return detailsBy(database, Index::Addon_Details_Installed_To_FileName, {name});
}

Result updateDetail(Connection& database, const DetailRecord& detail)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Addon_Details);
        bool done = rows.seek({detail.key});
        if (done) {
            rows.edit();
            writeDetail(rows, detail);
            done = rows.update().ok;
        }
        return done ? Result::success()
                    : databaseFailure(u"Could not update the addon details record."_s);
    });
}

Result deleteDetail(Connection& database, qint64 detailKey)
{
    return database.together([&]() -> Result {
        Recordset checks(database, Table::Vantrel_Checks);
        Recordset rows(database, Table::Addon_Details);
        if (!checks.deleteAllMatching({detailKey}) || !rows.deleteAllMatching({detailKey}))
            return databaseFailure(u"Could not delete the addon details record."_s);
        return Result::success();
    });
}

Result deleteDetailsOf(Connection& database, qint64 masterKey)
{
    return database.together([&]() -> Result {
        Recordset checks(database, Table::Vantrel_Checks);
        Recordset rows(database, Table::Addon_Details);
        const ResultOf<QList<RowRun>> runs = runsOf(database, masterKey);
        bool deleted = runs.ok();
        for (const RowRun& run : deleted ? *runs : QList<RowRun>())
            deleted = deleted && checks.deleteRun(run) && rows.deleteRun(run);
        return deleted ? Result::success()
                       : databaseFailure(u"Could not delete the addon details record."_s);
    });
}

// --- checks ---

Result setCheck(Connection& database, qint64 detailKey, const Fingerprint& check)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Checks);
        if (rows.seek({detailKey})) {
            rows.edit();
        } else {
            if (!rows.error())
                return rows.error();
            rows.addNew();
            rows.set(Field::Addon_Details_Key, detailKey);
        }
        writeCheck(rows, check);
        if (!rows.update())
            return databaseFailure(u"Could not update the addon details record."_s);
        return Result::success();
    });
}

std::optional<Fingerprint> checkOf(Connection& database, qint64 detailKey)
{
    Recordset rows(database, Table::Vantrel_Checks);
    if (!rows.seek({detailKey}))
        return std::nullopt;
    return readCheck(rows);
}

ResultOf<QHash<qint64, Fingerprint>> checksOf(Connection& database,
                                              const QList<DetailRecord>& details)
{
    QHash<qint64, Fingerprint> checks;
    checks.reserve(details.size());
    Recordset rows(database, Table::Vantrel_Checks);
    for (const RowRun& run : runsOf(details)) {
        for (bool more = rows.seekRun(run); more; more = rows.moveNext())
            checks.insert(rows.number(Field::Addon_Details_Key), readCheck(rows));
        if (!rows.error())
            return databaseFailure(u"Could not open the addon details table."_s);
    }
    return checks;
}

// --- what was kept ---

Result addOriginals(Connection& database, const QList<OriginalRecord>& originals)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Originals);
        for (const OriginalRecord& original : originals) {
            rows.addNew();
            writeOriginal(rows, original);
            if (!rows.update())
                return keptNotRecorded();
        }
        return Result::success();
    });
}

std::optional<OriginalRecord> originalOf(Connection& database, qint64 detailKey)
{
    Recordset rows(database, Table::Vantrel_Originals);
    if (!rows.seek({detailKey}))
        return std::nullopt;
    return readOriginal(rows);
}

ResultOf<QList<OriginalRecord>> originalsOf(Connection& database, qint64 masterKey)
{
    QList<OriginalRecord> originals;
    Recordset rows(database, Table::Vantrel_Originals);
    rows.setIndex(Index::Vantrel_Originals_Addon_Master_Key);
    for (bool more = rows.seek({masterKey}); more; more = rows.moveNext())
        originals.push_back(readOriginal(rows));
    if (!rows.error())
        return databaseFailure(u"Could not read the records of the addon's kept files."_s);
    return originals;
}

Result setOriginal(Connection& database, const OriginalRecord& original)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Originals);
        if (rows.seek({original.detailKey}))
            rows.edit();
        else
            rows.addNew();
        writeOriginal(rows, original);
        return rows.update() ? Result::success() : keptNotRecorded();
    });
}

Result deleteOriginal(Connection& database, qint64 detailKey)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Originals);
        return rows.deleteAllMatching({detailKey}) ? Result::success() : keptNotRecorded();
    });
}

Result deleteOriginalsOf(Connection& database, qint64 masterKey)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Originals);
        rows.setIndex(Index::Vantrel_Originals_Addon_Master_Key);
        return rows.deleteAllMatching({masterKey}) ? Result::success() : keptNotRecorded();
    });
}

Result addFolders(Connection& database, const QList<Place>& folders)
{
    return database.together([&]() -> Result {
        Recordset seeking(database, Table::Vantrel_Folders);
        Recordset adding(database, Table::Vantrel_Folders);
        for (const Place& folder : folders) {
            if (seeking.seek({int(folder.root), folder.relative}))
                continue;
            adding.addNew();
            adding.set(Field::Root, int(folder.root));
            adding.set(Field::Relative, folder.relative);
            if (!adding.update())
                return foldersNotRecorded();
        }
        return Result::success();
    });
}

bool isOwnFolder(Connection& database, const Place& folder)
{
    Recordset rows(database, Table::Vantrel_Folders);
    return rows.seek({int(folder.root), folder.relative});
}

ResultOf<QList<Place>> ownFolders(Connection& database)
{
    QList<Place> folders;
    Recordset rows(database, Table::Vantrel_Folders);
    for (bool more = rows.moveFirst(); more; more = rows.moveNext())
        folders.push_back({RootId(rows.number(Field::Root)), rows.text(Field::Relative)});
    if (!rows.error())
        return databaseFailure(u"Could not read the records of the addon's folders."_s);
    return folders;
}

Result deleteFolders(Connection& database, const QList<Place>& folders)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_Folders);
        for (const Place& folder : folders) {
            if (!rows.deleteAllMatching({int(folder.root), folder.relative}))
                return foldersNotRecorded();
        }
        return Result::success();
    });
}

std::optional<ConfigBaseRecord> configBase(Connection& database, const Place& file)
{
    Recordset rows(database, Table::Vantrel_ConfigBases);
    if (!rows.seek({int(file.root), file.relative}))
        return std::nullopt;
    return ConfigBaseRecord{{RootId(rows.number(Field::Root)), rows.text(Field::Relative)},
                            rows.text(Field::KeptFile),
                            rows.number(Field::LastWrittenSize),
                            rows.blob(Field::LastWrittenHash),
                            rows.number(Field::Edits)};
}

Result setConfigBase(Connection& database, const ConfigBaseRecord& base)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_ConfigBases);
        if (rows.seek({int(base.file.root), base.file.relative}))
            rows.edit();
        else
            rows.addNew();
        rows.set(Field::Root, int(base.file.root));
        rows.set(Field::Relative, base.file.relative);
        rows.set(Field::KeptFile, base.keptFile);
        rows.set(Field::LastWrittenSize, base.lastWrittenSize);
        rows.set(Field::LastWrittenHash, base.lastWrittenHash);
        rows.set(Field::Edits, base.edits);
        return rows.update() ? Result::success() : keptNotRecorded();
    });
}

Result deleteConfigBase(Connection& database, const Place& file)
{
    return database.together([&]() -> Result {
        Recordset rows(database, Table::Vantrel_ConfigBases);
        return rows.deleteAllMatching({int(file.root), file.relative}) ? Result::success()
                                                                       : keptNotRecorded();
    });
}

} // namespace vt::modDatabase_Addon
