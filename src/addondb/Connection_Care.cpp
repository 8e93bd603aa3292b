// What a connection does with its file as a whole: looking for damage, adding what an older file
// lacks, writing it anew.
#include "addondb/Connection.h"
#include "addondb/PageChecks.h"
#include "addondb/Schema.h"

#include <QSet>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString textAt(sqlite3_stmt* row, int column)
{
    return QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(row, column)));
}

/// A name of the engine for a file that is written through the layer of checksums.
QByteArray checkedName(const QByteArray& host)
{
    return "file:" + host.toPercentEncoding("/") + "?vfs=" + pagechecks::fileLayer();
}

} // namespace

Result Connection::scanPages()
{
    if (!m_checked)
        return Result::success();
    const pagechecks::Scan scan = pagechecks::scan(m_hostFile);
    if (scan.readable && scan.broken.isEmpty())
        return Result::success();
    if (!scan.readable)
        return failed(SQLITE_IOERR);
    const QString cause = u"page "_s + QString::number(scan.broken.first()) + u" of "_s +
                          QString::number(scan.pages) + u" is not what was written"_s;
    m_lastError = {SQLITE_CORRUPT, cause};
    m_trouble = databaseTrouble(DatabaseFault::Damaged, m_path, cause);
    return m_trouble;
}

Result Connection::check(bool thorough)
{
    // The engine does not look into pages that nothing uses, and at those that it knows already.
    // While others write, a page may be read in the middle of its change.
    if (!m_writer && !m_shared) {
        if (Result scanned = scanPages(); !scanned)
            return scanned;
    }
    QString found;
    const int code = firstOf(thorough ? "PRAGMA integrity_check(1)" : "PRAGMA quick_check(1)",
                             [&found](sqlite3_stmt* row) { found = textAt(row, 0); });
    if (code == SQLITE_OK && found == u"ok"_s)
        return Result::success();
    const Result failure = failed(code == SQLITE_OK ? int(SQLITE_CORRUPT) : code);
    if (code == SQLITE_OK)
        m_lastError = {SQLITE_CORRUPT, found.simplified()};
    return failure;
}

// --- structure ---

int Connection::eachOf(const QByteArray& sql, const std::function<void(sqlite3_stmt*)>& take)
{
    const Statement rows = statement(sql);
    int code = rows ? SQLITE_ROW : m_lastError.number;
    while (code == SQLITE_ROW) {
        code = sqlite3_step(rows.get());
        if (code == SQLITE_ROW)
            take(rows.get());
    }
    return code == SQLITE_DONE ? SQLITE_OK : code;
}

bool Connection::isPresentStructure() const
{
    return m_structure == schema::structureVersion;
}

ResultOf<QList<LackingPart>> Connection::lacking()
{
    // Name and making text of each table and index; a file of ours has the very same texts.
    QHash<QString, QByteArray> present;
    int code = eachOf("SELECT name, sql FROM sqlite_master", [&](sqlite3_stmt* row) {
        present.insert(textAt(row, 0), textAt(row, 1).toUtf8());
    });
    QList<LackingPart> parts;
    for (const TableInfo& table : allTables()) {
        const QString name = QLatin1StringView(table.name);
        if (!present.contains(name)) {
            parts.push_back(
                {u"the table "_s + name, table.table, {}, true, schema::createTable(table.table)});
            continue;
        }
        if (present.value(name) == schema::createTable(table.table))
            continue;
        QSet<QString> fields;
        if (code == SQLITE_OK) {
            code = eachOf("SELECT name FROM pragma_table_info('" + QByteArray(table.name) + "')",
                          [&](sqlite3_stmt* row) { fields.insert(textAt(row, 0)); });
        }
        for (const Field field : table.fields) {
            const QString fieldName = QLatin1StringView(info(field).name);
            if (!fields.contains(fieldName))
                parts.push_back({u"the field "_s + fieldName + u" of "_s + name,
                                 table.table,
                                 field,
                                 false,
                                 schema::addField(table.table, field)});
        }
    }
    for (const IndexInfo& index : allIndexes()) {
        const QByteArray sql = schema::createIndex(index.index);
        const QString name =
            QLatin1StringView(info(index.table).name) + u"_"_s + QLatin1StringView(index.name);
        if (sql.isEmpty() || present.value(name) == sql)
            continue;
        parts.push_back({u"the index "_s + name,
                         index.table,
                         {},
                         false,
                         "DROP INDEX IF EXISTS \"" + name.toUtf8() + "\";" + sql});
    }
    if (code != SQLITE_OK)
        return failed(code);
    return parts;
}

Result Connection::supply(const QList<LackingPart>& parts)
{
    return together([&] {
        for (const LackingPart& part : parts) {
            if (Result added = execute(part.sql.constData()); !added)
                return added;
        }
        return Result::success();
    });
}

Result Connection::compactInto(const QByteArray& hostFile)
{
    Q_ASSERT(!m_inTransaction);
    const QByteArray pageSize = "PRAGMA page_size=" + QByteArray::number(schema::pageSize);
    // What is forbidden to a reader is to change its own file.
    sqlite3_exec(m_handle, "PRAGMA query_only=0", nullptr, nullptr, nullptr);
    int code = sqlite3_exec(m_handle, pageSize.constData(), nullptr, nullptr, nullptr);
    // After the size of pages, which forgets it.
    int reserved = pagechecks::reservedBytes;
    sqlite3_file_control(m_handle, "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved);
    const QByteArray name = checkedName(hostFile);
    if (code == SQLITE_OK) {
        const Statement vacuum = statement("VACUUM INTO ?1");
        code = m_lastError.number;
        if (vacuum) {
            sqlite3_bind_text(
                vacuum.get(), 1, name.constData(), int(name.size()), SQLITE_TRANSIENT);
            code = sqlite3_step(vacuum.get());
        }
    }
    if (m_readOnly)
        sqlite3_exec(m_handle, "PRAGMA query_only=1", nullptr, nullptr, nullptr);
    if (code != SQLITE_DONE)
        return failed(code);
    Connection made(m_path, false);
    return made.markStructure(hostFile);
}

void Connection::setBreathing(std::function<void()> breathing)
{
    constexpr int steps = 10'000; // of the engine's machine, some tenths of a millisecond
    m_breathing = std::move(breathing);
    const auto tell = [](void* connection) {
        static_cast<const Connection*>(connection)->breathe();
        return 0;
    };
    sqlite3_progress_handler(m_handle, steps, m_breathing ? +tell : nullptr, this);
}

/// The file was written anew and has the present structure.
Result Connection::markStructure(const QByteArray& hostFile)
{
    const int code = sqlite3_open_v2(
        hostFile.constData(), &m_handle, SQLITE_OPEN_READWRITE, pagechecks::fileLayer());
    if (code != SQLITE_OK)
        return failed(code);
    sqlite3_exec(m_handle, "PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
    for (const QByteArray& sql : schema::marks()) {
        if (Result done = execute(sql.constData()); !done)
            return done;
    }
    return Result::success();
}

bool Connection::bringIn(const QByteArray& hostFile, bool checked)
{
    Connection connection({}, false);
    const char* layer = checked ? pagechecks::fileLayer() : nullptr;
    sqlite3*& handle = connection.m_handle;
    if (sqlite3_open_v2(hostFile.constData(), &handle, SQLITE_OPEN_READWRITE, layer) != SQLITE_OK)
        return false;
    // The first reading rolls an old journal back, or finds the log.
    return sqlite3_exec(handle, "PRAGMA user_version", nullptr, nullptr, nullptr) == SQLITE_OK &&
           sqlite3_wal_checkpoint_v2(
               handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) == SQLITE_OK;
}

} // namespace vt
