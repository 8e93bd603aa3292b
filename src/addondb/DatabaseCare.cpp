#include "addondb/DatabaseCare.h"

#include "addondb/JournalTable.h"
#include "addondb/PageChecks.h"
#include "addondb/RawPages.h"
#include "addondb/Schema.h"
#include "platform/TempFolder.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <QtEndian>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// By "Optimization Factor": changes after which the end of the program optimises; 0 never.
constexpr std::array dueAfter = {0, 14, 9, 3};

/// Beside a database file; they belong to it.
constexpr std::array besides = {u"-wal", u"-shm", u"-journal"};

QString beside(const QString& database, const char16_t* suffix)
{
    return database + QString::fromUtf16(suffix);
}

constexpr qint64 largestDatabase = 1 << 30;

bool hasChecksums(const QByteArray& host)
{
    rawpages::RawPages pages;
    return pages.open(host) && pages.checked();
}

/// The first page of a database without tables. Format: sqlite.org/fileformat.html.
QByteArray emptyBeginning()
{
    QByteArray page(schema::pageSize, '\0');
    const auto put16 = [&page](qsizetype at, int number) {
        qToBigEndian(quint16(number), page.data() + at);
    };
    page.replace(0, 16, QByteArrayView("SQLite format 3\0", 16));
    put16(16, schema::pageSize);
    page.replace(18, 6, QByteArrayView("\2\2\10\100\40\40", 6)); // with a log, 8 bytes reserved
    page[47] = 4;                                                // format of the list of tables
    page[59] = 1;                                                // UTF-8
    page[100] = 0x0d;                                            // a list without entries
    put16(105, schema::pageSize - pagechecks::reservedBytes);
    pagechecks::seal(reinterpret_cast<unsigned char*>(page.data()), 1);
    return page;
}

/// Nothing may be written anew while an operation has not ended.
Result checkJournal(Connection& database, const Gate& gate)
{
    JournalTable journal(database, gate);
    const ResultOf<QList<JournalOperation>> unfinished = journal.unfinished();
    if (!unfinished)
        return unfinished.error();
    if (unfinished->isEmpty())
        return Result::success();
    return Result::failure(u"The operation on '"_s + unfinished->first().label +
                               u"' was interrupted and has to be finished first."_s,
                           ErrorKind::Surroundings);
}

} // namespace

DatabaseHealth databaseHealth(const Files& files, const QString& path, bool thorough)
{
    DatabaseHealth health;
    if (const std::optional<FileInfo> info = files.info(path))
        health.bytes = info->size;
    OpenedDatabase opened = Connection::open(files, path, OpenMode::ReadOnly);
    health.fault = opened.fault;
    health.error = opened.error;
    health.result = opened.result;
    if (!opened.connection)
        return health;
    health.structure = opened.connection->structure();
    health.result = opened.connection->check(thorough);
    if (!health.result) {
        health.fault = DatabaseFault::Damaged;
        health.error = opened.connection->lastError();
    }
    return health;
}

Prompt databaseDamagePrompt(const QString& productTitle, const DatabaseError& error)
{
    return yesNoCancel(
        u"Database Error"_s,
        productTitle +
            u"'s database appears to be damaged. This can happen when the program's database engine was improperly shut down during the process of writing to disk. Would you like to try to fix the problems?"_s +
            u"\nError #"_s + QString::number(error.number) + u": "_s + error.text + u"\n\n"_s +
            u"Select Yes to attempt to optimize the database to repair the damage (recommended). Select No to continue loading Vantrel. Select Cancel to quit the program."_s,
        Button::Yes,
        Icon::Warning);
}

Prompt thoroughRepairPrompt(const QString& productTitle)
{
    return yesNo(
        u"Warning"_s,
        u"The thorough repair option should be used only if "_s + productTitle + u"'s "_s +
            u"database becomes damaged and its self-repair mechanism is unable to correct the problem. Are you sure you wish to perform a thorough repair?"_s,
        Button::No,
        Icon::Warning);
}

Prompt upgradePrompt(const QString& productTitle)
{
    return announcement(u"Database Optimization Required"_s,
                        productTitle + u" must optimize its database. "_s +
                            u"This process may take a while. Please wait for it to complete."_s,
                        Icon::Information);
}

bool optimizationDue(Settings& settings)
{
    const int after = dueAfter[size_t(settings.number(SettingKey::OptimizationFactor))];
    return settings.flag(SettingKey::AutoOptimize) && after > 0 &&
           settings.number(SettingKey::DatabaseHistory) >= after;
}

DatabaseCare::DatabaseCare(Context& context)
    : m_context(context), m_actions(context.services.gate), m_database(context.global.databaseFile),
      m_next(m_database + u".next"_s)
{}

void DatabaseCare::status(const QString& text)
{
    m_context.services.status.text(u"Primary"_s, text);
}

CareReport DatabaseCare::begin()
{
    m_context.services.files.newOperation();
    emptyWork();
    CareReport report;
    report.bytesBefore = m_context.services.files.info(m_database).value_or(FileInfo{}).size;
    report.bytesAfter = report.bytesBefore;
    return report;
}

void DatabaseCare::fail(CareReport& report, int code, const Result& why)
{
    report.errorCode = code;
    report.result = Result::failure(u"An error occurred during optimization. Error code: "_s +
                                        QString::number(code) + u". "_s + why.text,
                                    why.kind);
}

/// What dead runs left of their work.
void DatabaseCare::emptyWork()
{
    const TempFolder temporary(m_context.services.gate, m_context.global.tempFolder);
    for (const FileInfo& entry : m_context.services.files.list(m_context.global.tempFolder)) {
        if (!entry.name.startsWith(u"DB") || !entry.name.endsWith(u".tmp"))
            continue;
        const QString path = m_context.global.tempFolder + entry.name;
        (void)(entry.folder ? temporary.remove(path) : m_actions.remove(path));
    }
}

// --- replacing the file ---

/// \a made becomes the database. From the copy on, a run that dies is completed by the next one.
Result DatabaseCare::replace(const QString& made)
{
    Result done = m_actions.copy(made, m_next);
    if (done)
        done = databaseHealth(m_context.services.files, m_next, true).result;
    if (done)
        return putInPlace();
    (void)m_actions.remove(m_next);
    return done;
}

Result DatabaseCare::putInPlace()
{
    // A log that is left belongs to the old file, and would be brought into the new one.
    for (const char16_t* suffix : besides) {
        if (Result gone = m_actions.remove(beside(m_database, suffix)); !gone)
            return gone;
    }
    return m_actions.moveOver(m_next, m_database);
}

Result DatabaseCare::finishReplacement()
{
    const Files& files = m_context.services.files;
    const std::optional<FileInfo> next = files.info(m_next);
    if (!next)
        return Result::success();
    // A database that somebody put there since is not the one that was written anew.
    const std::optional<FileInfo> present = files.info(m_database);
    if (present && present->modifiedNs > next->modifiedNs)
        return m_actions.remove(m_next);
    const DatabaseHealth health = databaseHealth(files, m_next, true);
    return health.fault == DatabaseFault::None ? putInPlace() : m_actions.remove(m_next);
}

// --- optimisation ---

Result DatabaseCare::compact(const QString& source, const QString& target)
{
    const ResultOf<QByteArray> host = m_context.services.gate.hostPath(target);
    if (!host)
        return host.error();
    // Only read: should anything fail, the old file is as it was.
    OpenedDatabase opened = Connection::open(m_context.services.files, source, OpenMode::ReadOnly);
    if (!opened.connection)
        return opened.result;
    if (Result idle = checkJournal(*opened.connection, m_context.services.gate); !idle)
        return idle;
    opened.connection->setBreathing(m_context.services.gate.breathing);
    const Result compacted = opened.connection->compactInto(*host);
    m_context.services.files.noteChanged(target);
    return compacted;
}

/// Steps 2 to 4.
void DatabaseCare::rewrite(CareReport& report, const QList<LackingPart>& lacking)
{
    const TempFolder temporary(m_context.services.gate, m_context.global.tempFolder);
    const ResultOf<QString> made = temporary.makeUniqueFile(m_context.global.tempFolder, u"DB"_s);
    QString source = m_database;
    const auto step = [&](int code, const Result& done) {
        if (!done)
            fail(report, code, done);
        return done.ok;
    };
    if (step(2, made.error()) && step(2, supply(lacking, source)) &&
        step(2, compact(source, *made)) && step(2, fill(*made, lacking)) &&
        step(3, replace(*made))) {
        report.changed = true;
        step(4,
             m_context.settings.setNumber(SettingKey::DatabaseHistory, 0)
                 ? Result::success()
                 : Result::failure(u"The counter of changes could not be written."_s));
    }
}

void DatabaseCare::end(CareReport& report)
{
    emptyWork();
    report.bytesAfter = m_context.services.files.info(m_database).value_or(FileInfo{}).size;
    status(report.result.text);
}

CareReport DatabaseCare::optimize(bool repair)
{
    CareReport report = begin();
    status(u"Please wait while the database is optimized. This may take a while..."_s);
    if (repair) {
        if (const Result saved = salvage(report); !saved)
            fail(report, 1, saved);
    }
    if (report.result)
        rewrite(report, {});
    if (report.result)
        report.result = Result::success(repair ? u"The database was repaired and optimized."_s
                                               : u"The database was optimized."_s);
    end(report);
    return report;
}

// --- repair ---

CareReport DatabaseCare::repair()
{
    CareReport report = begin();
    status(u"Please wait while the database is optimized. This may take a while..."_s);
    report.result = salvage(report);
    end(report);
    return report;
}

/// A private copy of the damaged file, with what stands in its log; the host's path.
ResultOf<QString> DatabaseCare::copyForSalvage(const QString& folder)
{
    const QString copy = folder + u"damaged"_s;
    if (Result copied = m_actions.copy(m_database, copy); !copied)
        return copied;
    bool any = false;
    for (const char16_t* suffix : besides) {
        const bool index = QStringView(suffix) == u"-shm"; // made anew from the log
        if (index || !m_context.services.files.isFile(beside(m_database, suffix)))
            continue;
        any = true;
        if (Result copied = m_actions.copy(beside(m_database, suffix), beside(copy, suffix));
            !copied)
            return copied;
    }
    const ResultOf<QByteArray> host = m_context.services.gate.hostPath(copy);
    if (!host)
        return host.error();
    const bool checked = hasChecksums(*host);
    if (any && !Connection::bringIn(*host, checked) && checked) {
        // The engine wants a beginning that it knows; the log may bring in the right one.
        const ResultOf<QByteArray> bytes = m_actions.read(copy, largestDatabase);
        if (!bytes)
            return bytes.error();
        if (Result begun = m_actions.replace(copy, emptyBeginning() + bytes->mid(schema::pageSize));
            !begun)
            return begun;
        (void)Connection::bringIn(*host, checked);
    }
    return copy;
}

Result DatabaseCare::salvage(CareReport& report)
{
    Services& services = m_context.services;
    const DatabaseHealth health = databaseHealth(services.files, m_database, true);
    if (health.fault != DatabaseFault::Damaged)
        return health.result;
    const TempFolder temporary(services.gate, m_context.global.tempFolder);
    const ResultOf<QString> folder = temporary.makeUnique(m_context.global.tempFolder, u"DBR"_s);
    if (!folder)
        return folder.error();
    const ResultOf<QString> copy = copyForSalvage(*folder);
    if (!copy)
        return copy.error();
    const ResultOf<QByteArray> host = services.gate.hostPath(*copy);
    if (!host)
        return host.error();
    const QString saved = *folder + u"saved"_s;
    OpenedDatabase made = Connection::create(services.gate, saved);
    if (!made.connection)
        return made.result;
    ResultOf<SalvageReport> rows = salvageRows(*host, *made.connection, services.clock.now());
    if (!rows)
        return rows.error();
    if (rows->rows == 0)
        return Result::failure(u"Nothing in '"_s + m_database +
                                   u"' could be saved; move it away to begin a new database."_s,
                               ErrorKind::Surroundings);
    if (Result closed = made.connection->close(); !closed)
        return closed;
    if (Result kept = keepDamaged(report); !kept)
        return kept;
    if (Result replaced = replace(saved); !replaced)
        return replaced;
    report.salvage = *rows;
    report.changed = true;
    return Result::success();
}

/// The damaged file and its log stay under another name.
Result DatabaseCare::keepDamaged(CareReport& report)
{
    const QString time = m_context.services.clock.now().toString(u"yyyyMMdd-HHmmss"_s);
    const QString base = m_context.global.programFolder + u"Vantrel.damaged-"_s + time;
    QString kept = base + u".mdb"_s;
    for (int n = 2; m_context.services.files.exists(kept); ++n)
        kept = base + u'-' + QString::number(n) + u".mdb"_s;
    for (const char16_t* suffix : {u"", u"-wal", u"-journal"}) {
        if (!m_context.services.files.isFile(beside(m_database, suffix)))
            continue;
        if (Result done = m_actions.keep(beside(m_database, suffix), beside(kept, suffix)); !done)
            return done;
    }
    report.damagedFile = kept;
    return Result::success();
}

// --- structure ---

CareReport DatabaseCare::upgrade()
{
    CareReport report = begin();
    QList<LackingPart> lacking;
    {
        OpenedDatabase opened =
            Connection::open(m_context.services.files, m_database, OpenMode::ReadOnly);
        report.result = opened.result;
        if (!opened.connection)
            return report;
        const ResultOf<QList<LackingPart>> parts = opened.connection->lacking();
        report.result =
            parts ? checkJournal(*opened.connection, m_context.services.gate) : parts.error();
        if (!report.result || (parts->isEmpty() && opened.connection->isPresentStructure()))
            return report;
        lacking = *parts;
    }
    for (const LackingPart& part : std::as_const(lacking))
        report.added.push_back(part.what);
    m_context.services.prompts.ask(upgradePrompt(m_context.global.names.productTitle));
    status(u"Please wait while the database is optimized. This may take a while..."_s);
    rewrite(report, lacking);
    if (report.result)
        report.result = Result::success(u"The database was optimized."_s);
    end(report);
    return report;
}

/// What lacks is added to a copy, which \a source then names: until the replacement the old file
/// stays what it was.
Result DatabaseCare::supply(const QList<LackingPart>& lacking, QString& source)
{
    if (lacking.isEmpty())
        return Result::success();
    const TempFolder temporary(m_context.services.gate, m_context.global.tempFolder);
    const ResultOf<QString> copy = temporary.makeUniqueFile(m_context.global.tempFolder, u"DB"_s);
    if (!copy)
        return copy.error();
    if (Result copied = m_actions.copy(source, *copy); !copied)
        return copied;
    source = *copy;
    OpenedDatabase opened = Connection::open(m_context.services.files, source, OpenMode::ReadWrite);
    if (!opened.connection)
        return opened.result;
    if (Result supplied = opened.connection->supply(lacking); !supplied)
        return supplied;
    return opened.connection->close();
}

/// Into the new file, once it has room for it.
Result DatabaseCare::fill(const QString& made, const QList<LackingPart>& lacking)
{
    if (lacking.isEmpty())
        return Result::success();
    status(u"Updating database, please wait..."_s);
    OpenedDatabase opened = Connection::open(m_context.services.files, made, OpenMode::ReadWrite);
    if (!opened.connection)
        return opened.result;
    const QString images = m_context.global.imagesFolder;
    if (Result filled = fillLacking(*opened.connection, m_context.services.files, images, lacking);
        !filled)
        return filled;
    return opened.connection->close();
}

} // namespace vt
