#include "addondb/Connection.h"

#include "addondb/Collation.h"
#include "addondb/PageChecks.h"
#include "addondb/Schema.h"
#include "platform/Files.h"
#include "platform/Gate.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <cerrno>
#include <memory>
#include <sqlite3.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int waitMs = 5000;

/// A file of up to this size is compared with its checksums before it is written to.
constexpr qint64 scanLimit = 32LL * 1024 * 1024;

QString hostText(const QByteArray& host)
{
    return QFile::decodeName(host);
}

/// What the first bytes of a file say about it, before the engine looks at it.
struct FileHeader
{
    DatabaseFault fault = DatabaseFault::None;
    QString text;
    bool writeAhead = false; ///< was left in the mode in which a log stands beside it
    bool checked = false;    ///< its pages have checksums
};

/// Format of the header: sqlite.org/fileformat.html, "The Database Header".
FileHeader readFileHeader(const QByteArray& host)
{
    QFile file(hostText(host));
    if (!file.open(QIODevice::ReadOnly))
        return {DatabaseFault::Unreadable, file.errorString()};
    const QByteArray bytes = file.read(schema::pageSize);
    const auto number32 = [&bytes](qsizetype at) {
        return qFromBigEndian<qint32>(bytes.constData() + at);
    };
    if (bytes.isEmpty())
        return {DatabaseFault::Damaged, u"the file is empty"_s};
    if (bytes.startsWith(QByteArrayView("\0\1\0\0Standard ", 13)))
        return {DatabaseFault::Foreign, u"the file belongs to another database program"_s};
    if (bytes.size() < 100 || !bytes.startsWith(QByteArrayView("SQLite format 3\0", 16)))
        return {DatabaseFault::Damaged, u"the file does not begin as a database"_s};
    if (number32(68) != schema::applicationId) {
        // One of ours shows its tables even when its mark is gone.
        if (bytes.contains(schema::quoted(Table::Addon_Details_SceneryLibrary)))
            return {DatabaseFault::Damaged, u"the beginning of the file was changed"_s};
        return {DatabaseFault::Foreign, u"the file holds something else"_s};
    }
    const bool checked = bytes[20] == pagechecks::reservedBytes;
    const bool ofThisSize = qFromBigEndian<quint16>(bytes.constData() + 16) == schema::pageSize;
    if (checked ? !ofThisSize : bytes[20] != 0 || number32(60) == schema::structureVersion)
        return {DatabaseFault::Damaged, u"the beginning of the file was changed"_s};
    return {DatabaseFault::None, {}, bytes[18] == 2 || bytes[19] == 2, checked};
}

QString columnText(sqlite3_stmt* row, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
}

DatabaseFault faultOf(int code)
{
    switch (code & 0xff) {
    case SQLITE_OK:
        return DatabaseFault::None;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return DatabaseFault::Busy;
    case SQLITE_FULL:
        return DatabaseFault::Full;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
    case SQLITE_AUTH:
    case SQLITE_READONLY:
    case SQLITE_NOMEM:
        return DatabaseFault::Unreadable;
    case SQLITE_IOERR:
        return code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_DATA
                   ? DatabaseFault::Damaged
                   : DatabaseFault::Unreadable;
    case SQLITE_CONSTRAINT:
    case SQLITE_MISUSE:
    case SQLITE_RANGE:
    case SQLITE_TOOBIG:
    case SQLITE_MISMATCH:
        return DatabaseFault::Refused;
    default:
        return DatabaseFault::Damaged;
    }
}

/// Our words for what the engine says in its own.
QString causeOf(int code)
{
    switch (code & 0xff) {
    case SQLITE_READONLY:
        return u"the file may not be written"_s;
    case SQLITE_NOMEM:
        return u"the memory does not suffice"_s;
    case SQLITE_CONSTRAINT:
        return u"there is such a row already"_s;
    case SQLITE_NOTADB:
        return u"it is not a database"_s;
    case SQLITE_CORRUPT:
    case SQLITE_IOERR:
        return u"some of it is not what was written"_s;
    case SQLITE_ERROR:
    case SQLITE_SCHEMA:
        return u"its tables are not those of this program"_s;
    default:
        return u"it cannot be used"_s;
    }
}

QString databaseSentence(DatabaseFault fault, const QString& path, const QString& cause)
{
    const QString database = u"The add-on database '"_s + path;
    switch (fault) {
    case DatabaseFault::None:
        return {};
    case DatabaseFault::Missing:
        return database + u"' does not exist."_s;
    case DatabaseFault::Unreadable:
    case DatabaseFault::Refused:
        return database + u"' could not be used: "_s + cause + u"."_s;
    case DatabaseFault::Full:
        return database +
               u"' could not be written because the disk is full; make room and try again."_s;
    case DatabaseFault::Busy:
        return database + u"' is in use by another program; try again when that has ended."_s;
    case DatabaseFault::Foreign:
        return database + u"' was not made by this program: "_s + cause +
               u". Move it away to begin a new one."_s;
    case DatabaseFault::Newer:
        return database +
               u"' was made by a later version of this program, which is needed to open it."_s;
    case DatabaseFault::Damaged:
        return database + u"' is damaged: "_s + cause +
               u"; 'vantrelctl database check --repair' saves what can be read."_s;
    }
    return {};
}

OpenedDatabase refusedOpening(DatabaseFault fault,
                              const QString& path,
                              const QString& cause,
                              int number = SQLITE_CANTOPEN)
{
    OpenedDatabase opened;
    opened.fault = fault;
    opened.error = {number, cause};
    opened.result = databaseTrouble(fault, path, cause);
    return opened;
}

/// A folder of one's own with copies of the file and of the log and journal that belong to it, so
/// that unfinished work of a dead process can be read without touching anything beside the file.
QByteArray copyAside(const QByteArray& host)
{
    QByteArray folder = QFile::encodeName(QDir::tempPath()) + "/vantrel-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        return {};
    for (const char* suffix : {"", "-wal", "-journal"}) {
        const QString from = hostText(host + suffix);
        const bool needed = *suffix == 0;
        if (!needed && !QFile::exists(from))
            continue;
        if (!QFile::copy(from, hostText(folder + "/database" + suffix))) {
            QDir(hostText(folder)).removeRecursively();
            return {};
        }
        // The engine brings the copies in order, so they must be its own to write.
        QFile::setPermissions(hostText(folder + "/database" + suffix),
                              QFile::ReadOwner | QFile::WriteOwner);
    }
    return folder;
}

QByteArray immutableName(const QByteArray& host)
{
    return "file:" + host.toPercentEncoding("/") + "?immutable=1";
}

} // namespace

Result databaseTrouble(DatabaseFault fault, const QString& path, const QString& cause)
{
    return Result::failure(databaseSentence(fault, path, cause),
                           fault == DatabaseFault::Full      ? ErrorKind::DiskFull
                           : fault == DatabaseFault::Refused ? ErrorKind::Failed
                                                             : ErrorKind::Surroundings);
}

// --- statements ---

Statement::~Statement()
{
    giveBack();
}

Statement::Statement(Statement&& other) noexcept
    : m_statement(std::exchange(other.m_statement, nullptr)), m_home(other.m_home)
{}

Statement& Statement::operator=(Statement&& other) noexcept
{
    if (this != &other) {
        giveBack();
        m_statement = std::exchange(other.m_statement, nullptr);
        m_home = other.m_home;
    }
    return *this;
}

void Statement::giveBack()
{
    if (m_statement == nullptr)
        return;
    if (m_home != nullptr) {
        sqlite3_reset(m_statement);
        sqlite3_clear_bindings(m_statement);
        m_home->push_back(m_statement);
    } else {
        sqlite3_finalize(m_statement);
    }
    m_statement = nullptr;
}

sqlite3_stmt* Connection::prepare(const QByteArray& sql, unsigned traits)
{
    sqlite3_stmt* made = nullptr;
    const int code =
        sqlite3_prepare_v3(m_handle, sql.constData(), int(sql.size()) + 1, traits, &made, nullptr);
    if (code != SQLITE_OK)
        noteError(code);
    return made;
}

Statement Connection::lend(Pool& pool)
{
    if (!pool.idle.isEmpty())
        return {pool.idle.takeLast(), &pool.idle};
    return {prepare(pool.sql, SQLITE_PREPARE_PERSISTENT), &pool.idle};
}

Statement Connection::statement(const QByteArray& sql)
{
    return {prepare(sql, 0), nullptr};
}

void Connection::noteError(int code)
{
    m_lastError.number = code;
    m_lastError.text = m_handle != nullptr ? QString::fromUtf8(sqlite3_errmsg(m_handle))
                                           : QString::fromUtf8(sqlite3_errstr(code));
}

// --- opening ---

Connection::Connection(QString path, bool readOnly) : m_path(std::move(path)), m_readOnly(readOnly)
{}

OpenedDatabase Connection::open(const Files& files, const QString& path, OpenMode mode)
{
    const std::optional<FileInfo> found = files.info(path);
    if (!found)
        return refusedOpening(DatabaseFault::Missing, path, u"the file does not exist"_s);
    if (found->folder)
        return refusedOpening(DatabaseFault::Unreadable, path, u"a folder has that name"_s);
    const QByteArray host = files.hostPath(path);
    const FileHeader header = readFileHeader(host);
    if (header.fault != DatabaseFault::None) {
        return refusedOpening(header.fault,
                              path,
                              header.text,
                              header.fault == DatabaseFault::Unreadable ? SQLITE_CANTOPEN
                                                                        : SQLITE_NOTADB);
    }

    std::unique_ptr<Connection> made(new Connection(path, mode == OpenMode::ReadOnly));
    Connection& connection = *made;
    connection.m_checked = header.checked;
    OpenedDatabase opened;
    if (mode == OpenMode::ReadWrite) {
        opened = connection.openFile(host, SQLITE_OPEN_READWRITE);
    } else {
        const bool log = QFileInfo(hostText(host + "-wal")).size() > 0;
        const bool shared = QFile::exists(hostText(host + "-shm"));
        connection.m_shared = shared;
        if (header.writeAhead && !log && !shared)
            opened =
                connection.openFile(immutableName(host), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
        else if (!log || shared)
            opened = connection.openFile(host, SQLITE_OPEN_READONLY);
        const bool needsWriting = !connection.m_handle || opened.fault == DatabaseFault::Unreadable;
        if (needsWriting) {
            connection.m_privateCopy = copyAside(host);
            if (connection.m_privateCopy.isEmpty()) {
                return refusedOpening(
                    DatabaseFault::Unreadable,
                    path,
                    u"it holds unfinished work and no copy could be made to read it"_s);
            }
            connection.m_shared = false;
            opened =
                connection.openFile(connection.m_privateCopy + "/database", SQLITE_OPEN_READWRITE);
        }
    }
    if (opened.fault == DatabaseFault::None)
        opened.connection = std::move(made);
    return opened;
}

OpenedDatabase Connection::create(const Gate& gate, const QString& path)
{
    if (gate.files().exists(path)) {
        return refusedOpening(
            DatabaseFault::Unreadable, path, u"a new one was to be made, but the file exists"_s);
    }
    const ResultOf<QByteArray> host = gate.hostPath(path);
    if (!host)
        return refusedOpening(DatabaseFault::Unreadable, path, host.text);
    // Made whole under another name: a run that dies meanwhile leaves no half database.
    const QByteArray making = *host + ".new";
    for (const char* suffix : {"", "-wal", "-shm", "-journal"})
        QFile::remove(hostText(making + suffix));
    Result made;
    {
        Connection connection(path, false);
        made = connection.makeFile(making);
    }
    gate.files().noteChanged(path);
    if (made.ok && !QFile::rename(hostText(making), hostText(*host)))
        made = databaseTrouble(
            DatabaseFault::Unreadable, path, u"the new file could not be given its name"_s);
    if (!made.ok) {
        for (const char* suffix : {"", "-wal", "-shm", "-journal"})
            QFile::remove(hostText(making + suffix));
        OpenedDatabase refused = refusedOpening(DatabaseFault::Unreadable, path, {});
        refused.result = made;
        return refused;
    }
    gate.files().noteChanged(path);
    return open(gate.files(), path, OpenMode::ReadWrite);
}

Result Connection::makeFile(const QByteArray& hostFile)
{
    const int code = sqlite3_open_v2(hostFile.constData(),
                                     &m_handle,
                                     SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                                     pagechecks::fileLayer());
    if (code != SQLITE_OK || collation::registerOn(m_handle) != SQLITE_OK)
        return failed(code);
    sqlite3_extended_result_codes(m_handle, 1);
    int reserved = pagechecks::reservedBytes;
    sqlite3_file_control(m_handle, "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved);
    sqlite3_exec(m_handle, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    QByteArrayList statements{"PRAGMA page_size=" + QByteArray::number(schema::pageSize),
                              "BEGIN IMMEDIATE"};
    statements += schema::creation();
    statements.push_back("COMMIT");
    for (const QByteArray& sql : std::as_const(statements)) {
        if (Result done = execute(sql.constData()); !done.ok)
            return done;
    }
    return Result::success();
}

OpenedDatabase Connection::openFile(const QByteArray& hostFile, int flags)
{
    sqlite3_close(m_handle);
    m_handle = nullptr;
    m_hostFile = hostFile;
    // A connection belongs to one thread, so the engine need not lock itself.
    int code = sqlite3_open_v2(hostFile.constData(),
                               &m_handle,
                               flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI,
                               m_checked ? pagechecks::fileLayer() : nullptr);
    if (code == SQLITE_OK) {
        sqlite3_extended_result_codes(m_handle, 1);
        sqlite3_busy_timeout(m_handle, waitMs);
        code = collation::registerOn(m_handle);
    }
    if (code == SQLITE_OK)
        code = firstOf("PRAGMA user_version",
                       [this](sqlite3_stmt* row) { m_structure = sqlite3_column_int(row, 0); });
    // The schema is read here, and with it the pages that every later call depends on.
    if (code == SQLITE_OK)
        code = sqlite3_exec(
            m_handle, "SELECT 1 FROM sqlite_master LIMIT 1", nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        return refusedByEngine(code);
    if (m_structure > schema::structureVersion)
        return refusedOpening(
            DatabaseFault::Newer, m_path, u"its structure is unknown"_s, SQLITE_SCHEMA);
    sqlite3_exec(m_handle, "PRAGMA cache_size=-16384", nullptr, nullptr, nullptr);
    sqlite3_exec(m_handle, "PRAGMA temp_store=MEMORY", nullptr, nullptr, nullptr);
    // Some builds of the engine wipe what is deleted; nothing here is secret.
    sqlite3_exec(m_handle, "PRAGMA secure_delete=OFF", nullptr, nullptr, nullptr);
    if (!m_readOnly)
        return becomeWriter();
    sqlite3_exec(m_handle, "PRAGMA query_only=1", nullptr, nullptr, nullptr);
    return {};
}

OpenedDatabase Connection::becomeWriter()
{
    if (sqlite3_db_readonly(m_handle, "main") == 1) {
        return refusedOpening(
            DatabaseFault::Unreadable, m_path, u"the file may not be written"_s, SQLITE_READONLY);
    }
    // A change of mode is a transaction of its own, whose journal must be gone for good before the
    // log takes over.
    sqlite3_exec(m_handle, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    // What a dead process left in the log comes in first: pages that it was writing into the file
    // may be half of the one and half of the other.
    const QFileInfo log(hostText(m_hostFile + "-wal"));
    bool settled = log.size() == 0;
    if (!settled)
        settled = sqlite3_wal_checkpoint_v2(
                      m_handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) == SQLITE_OK;
    if (settled && QFileInfo(hostText(m_hostFile)).size() <= scanLimit) {
        if (Result scanned = scanPages(); !scanned) {
            OpenedDatabase refused =
                refusedOpening(DatabaseFault::Damaged, m_path, {}, SQLITE_CORRUPT);
            refused.error = m_lastError;
            refused.result = scanned;
            return refused;
        }
    }
    QString mode;
    const int code = firstOf("PRAGMA journal_mode=WAL",
                             [&mode](sqlite3_stmt* row) { mode = columnText(row, 0); });
    if (code != SQLITE_OK)
        return refusedByEngine(code);
    if (mode != u"wal"_s)
        return refusedOpening(DatabaseFault::Busy, m_path, u"database is locked"_s, SQLITE_BUSY);
    sqlite3_exec(m_handle, "PRAGMA synchronous=FULL", nullptr, nullptr, nullptr);
    m_writer = true;
    return {};
}

OpenedDatabase Connection::refusedByEngine(int code)
{
    OpenedDatabase refused;
    refused.result = failed(code);
    refused.fault = faultOf(code);
    refused.error = {code & 0xff, m_lastError.text};
    return refused;
}

int Connection::firstOf(const char* sql, const std::function<void(sqlite3_stmt*)>& take)
{
    sqlite3_stmt* statement = nullptr;
    int code = sqlite3_prepare_v2(m_handle, sql, -1, &statement, nullptr);
    if (code == SQLITE_OK) {
        code = sqlite3_step(statement);
        if (code == SQLITE_ROW) {
            take(statement);
            code = SQLITE_OK;
        }
    }
    if (code != SQLITE_OK)
        noteError(code);
    sqlite3_finalize(statement);
    return code;
}

// --- closing ---

Connection::~Connection()
{
    // Whoever wants to know asks close() himself.
    (void)close();
}

Result Connection::close()
{
    if (m_handle == nullptr)
        return Result::success();
    if (m_inTransaction)
        rollback();
    for (const auto& [number, pool] : m_pools) {
        for (sqlite3_stmt* statement : pool.idle)
            sqlite3_finalize(statement);
    }
    m_pools.clear();
    Result done;
    if (m_writer)
        done = leaveOneFile();
    const int code = sqlite3_close(m_handle);
    Q_ASSERT_X(code == SQLITE_OK, "Connection::close", "a recordset is still open");
    Q_UNUSED(code)
    m_handle = nullptr;
    m_writer = false;
    if (!m_privateCopy.isEmpty())
        QDir(hostText(m_privateCopy)).removeRecursively();
    m_privateCopy.clear();
    return done;
}

Result Connection::leaveOneFile()
{
    // While a reader is busy, the log stays beside the file and the next writer brings it in.
    sqlite3_busy_timeout(m_handle, 0);
    sqlite3_exec(m_handle, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    const int code =
        sqlite3_exec(m_handle, "PRAGMA journal_mode=DELETE", nullptr, nullptr, nullptr);
    if (code == SQLITE_OK || faultOf(code) == DatabaseFault::Busy)
        return Result::success();
    return failed(code);
}

// --- transactions ---

Result Connection::execute(const char* sql)
{
    const int code = sqlite3_exec(m_handle, sql, nullptr, nullptr, nullptr);
    return code == SQLITE_OK ? Result::success() : failed(code);
}

Result Connection::failed(int code)
{
    noteError(code);
    DatabaseFault fault = faultOf(code);
    QString cause = causeOf(code);
    if (fault == DatabaseFault::Unreadable && m_handle != nullptr) {
        const int systemError = sqlite3_system_errno(m_handle);
        if (systemError == ENOSPC || systemError == EDQUOT)
            fault = DatabaseFault::Full;
        else if (systemError != 0)
            cause = qt_error_string(systemError);
    }
    Result failure = databaseTrouble(fault, m_path, cause);
    if (m_trouble.ok && fault != DatabaseFault::Refused)
        m_trouble = failure;
    return failure;
}

Result Connection::begin()
{
    Q_ASSERT(!m_inTransaction);
    Result begun = execute("BEGIN IMMEDIATE");
    m_inTransaction = begun.ok;
    return begun;
}

Result Connection::commit()
{
    Q_ASSERT(m_inTransaction);
    Result done = execute("COMMIT");
    if (done.ok)
        m_inTransaction = false;
    else
        rollback();
    return done;
}

void Connection::rollback()
{
    Q_ASSERT(m_inTransaction);
    m_inTransaction = false;
    // The engine may have rolled back by itself after a failure; then there is nothing left to do.
    if (sqlite3_get_autocommit(m_handle) == 0)
        sqlite3_exec(m_handle, "ROLLBACK", nullptr, nullptr, nullptr);
}

Result Connection::together(const std::function<Result()>& work)
{
    if (m_inTransaction)
        return work();
    if (Result begun = begin(); !begun.ok)
        return begun;
    Result done = work();
    if (!done.ok) {
        rollback();
        return done;
    }
    return commit();
}

Result Connection::attempt(const std::function<Result()>& work)
{
    Q_ASSERT(m_inTransaction);
    if (Result begun = execute("SAVEPOINT attempt"); !begun)
        return begun;
    Result done = work();
    if (!done) {
        (void)execute("ROLLBACK TO attempt");
        (void)execute("RELEASE attempt");
        return done;
    }
    return execute("RELEASE attempt");
}

} // namespace vt
