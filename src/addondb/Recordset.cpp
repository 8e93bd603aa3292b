#include "addondb/Recordset.h"

#include "addondb/Schema.h"

#include <QStringEncoder>

#include <cstring>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

int bindValue(sqlite3_stmt* statement, int number, const FieldValue& value)
{
    if (const auto* whole = std::get_if<qint64>(&value.value()))
        return sqlite3_bind_int64(statement, number, *whole);
    if (const auto* text = std::get_if<QString>(&value.value())) {
        const QByteArray utf8 = text->toUtf8();
        return sqlite3_bind_text(
            statement, number, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
    }
    const QByteArray& bytes = std::get<QByteArray>(value.value());
    return sqlite3_bind_blob64(
        statement, number, bytes.constData(), quint64(bytes.size()), SQLITE_TRANSIENT);
}

int bindEmpty(sqlite3_stmt* statement, int number, FieldType type)
{
    switch (type) {
    case FieldType::Long:
    case FieldType::Integer:
    case FieldType::Boolean:
        return sqlite3_bind_int64(statement, number, 0);
    case FieldType::Date:
    case FieldType::Text:
        return sqlite3_bind_text(statement, number, "", 0, SQLITE_STATIC);
    case FieldType::Blob:
        return sqlite3_bind_blob(statement, number, "", 0, SQLITE_STATIC);
    }
    return SQLITE_MISUSE;
}

Index primaryKeyOf(Table table)
{
    for (const IndexInfo& index : allIndexes()) {
        if (index.table == table)
            return index.index;
    }
    Q_UNREACHABLE();
}

} // namespace

FieldValue::FieldValue(const QDateTime& time) : m_value(dateText(time)) {}

QString dateText(const QDateTime& time)
{
    return time.isValid() ? time.toString(u"yyyy-MM-dd HH:mm:ss"_s) : QString();
}

QDateTime dateOf(const QString& text)
{
    return text.isEmpty() ? QDateTime() : QDateTime::fromString(text, u"yyyy-MM-dd HH:mm:ss"_s);
}

Recordset::Recordset(Connection& connection, Table table)
    : m_connection(connection), m_table(table), m_index(primaryKeyOf(table))
{}

void Recordset::setIndex(Index index)
{
    Q_ASSERT(info(index).table == m_table);
    m_index = index;
    m_walk = {};
    m_present = false;
}

// --- finding and moving ---

bool Recordset::failed(int code)
{
    m_error = m_connection.failed(code);
    m_present = false;
    return false;
}

Statement Recordset::prepared(Kind kind, std::size_t keys, const std::function<QByteArray()>& sql)
{
    const quint32 number =
        (quint32(kind) + 1) << 24 | quint32(m_table) << 16 | quint32(m_index) << 8 | quint32(keys);
    return m_connection.statement(number, sql);
}

bool Recordset::start(Kind kind,
                      std::initializer_list<FieldValue> keys,
                      const std::function<QByteArray()>& rest)
{
    Q_ASSERT(m_writing == Writing::No);
    m_error = {};
    m_present = false;
    m_walk = {};
    m_walk = prepared(kind, keys.size(), [&] { return selection() + rest(); });
    if (!m_walk)
        return failed(m_connection.lastError().number);
    int number = 0;
    for (const FieldValue& key : keys)
        bindValue(m_walk.get(), ++number, key);
    return step();
}

bool Recordset::step()
{
    const int code = sqlite3_step(m_walk.get());
    m_present = code == SQLITE_ROW;
    if (m_present)
        return true;
    const bool ended = code == SQLITE_DONE;
    if (!ended)
        failed(code);
    // An ended walk holds the file's present state no longer.
    m_walk = {};
    return false;
}

QByteArray Recordset::selection() const
{
    return "SELECT " + schema::columns(m_table) + " FROM " + schema::quoted(m_table);
}

bool Recordset::seek(std::initializer_list<FieldValue> keys)
{
    return start(Kind::Seek, keys, [&] {
        return " WHERE " + schema::equalTo(m_index, keys.size()) + " ORDER BY " +
               schema::order(m_index, "");
    });
}

bool Recordset::seekFrom(std::initializer_list<FieldValue> keys)
{
    return start(Kind::SeekFrom, keys, [&] {
        return " WHERE " + schema::atOrAfter(m_index, keys.size()) + " ORDER BY " +
               schema::order(m_index, "");
    });
}

bool Recordset::seekRun(RowRun run)
{
    m_index = primaryKeyOf(m_table);
    return start(Kind::Run, {run.first, run.last}, [] {
        return QByteArray(" WHERE rowid BETWEEN ?1 AND ?2 ORDER BY rowid");
    });
}

bool Recordset::seekInFolder(const QString& location, RowRun without)
{
    setIndex(Index::Addon_Details_Installed_To);
    return start(Kind::Folder, {location, without.first, without.last}, [&] {
        return " WHERE " + schema::equalTo(m_index, 1) +
               " AND rowid NOT BETWEEN ?2 AND ?3 ORDER BY rowid";
    });
}

bool Recordset::moveFirst()
{
    return start(Kind::First, {}, [&] { return " ORDER BY " + schema::order(m_index, ""); });
}

bool Recordset::moveLast()
{
    return start(Kind::Last, {}, [&] {
        return " ORDER BY " + schema::order(m_index, " DESC") + " LIMIT 1";
    });
}

bool Recordset::moveNext()
{
    Q_ASSERT(m_writing == Writing::No);
    m_error = {};
    if (!m_walk) {
        m_present = false;
        return false;
    }
    return step();
}

// --- reading ---

int Recordset::column(Field field) const
{
    const int position = columnOf(m_table, field);
    Q_ASSERT_X(position >= 0, "Recordset", info(field).name);
    return position + 1; // "rowid" stands before the fields
}

qint64 Recordset::number(Field field) const
{
    Q_ASSERT(m_present);
    return sqlite3_column_int64(m_walk.get(), column(field));
}

bool Recordset::flag(Field field) const
{
    return number(field) != 0;
}

QString Recordset::text(Field field) const
{
    Q_ASSERT(m_present);
    const unsigned char* utf8 = sqlite3_column_text(m_walk.get(), column(field));
    return QString::fromUtf8(reinterpret_cast<const char*>(utf8),
                             sqlite3_column_bytes(m_walk.get(), column(field)));
}

QString Recordset::sharedText(Field field)
{
    Q_ASSERT(m_present);
    const int number = column(field);
    const auto* utf8 = reinterpret_cast<const char*>(sqlite3_column_text(m_walk.get(), number));
    const QByteArray key =
        QByteArray::fromRawData(utf8, sqlite3_column_bytes(m_walk.get(), number));
    if (const auto known = m_shared.constFind(key); known != m_shared.cend())
        return *known;
    return *m_shared.insert(QByteArray(key.constData(), key.size()), QString::fromUtf8(key));
}

bool Recordset::sameText(Field first, Field second) const
{
    Q_ASSERT(m_present);
    const int one = column(first);
    const int other = column(second);
    const unsigned char* text = sqlite3_column_text(m_walk.get(), one);
    const unsigned char* otherText = sqlite3_column_text(m_walk.get(), other);
    const int size = sqlite3_column_bytes(m_walk.get(), one);
    return size == sqlite3_column_bytes(m_walk.get(), other) &&
           std::memcmp(text, otherText, std::size_t(size)) == 0;
}

QDateTime Recordset::date(Field field) const
{
    return dateOf(text(field));
}

QByteArray Recordset::blob(Field field) const
{
    Q_ASSERT(m_present);
    const void* bytes = sqlite3_column_blob(m_walk.get(), column(field));
    return {static_cast<const char*>(bytes), sqlite3_column_bytes(m_walk.get(), column(field))};
}

// --- writing ---

void Recordset::addNew()
{
    Q_ASSERT(m_writing == Writing::No);
    m_writing = Writing::Adding;
    if (m_slots.empty())
        m_slots.resize(info(m_table).fields.size());
    for (Slot& slot : m_slots)
        slot.set = false;
    if (m_insert)
        return;
    m_insert = prepared(Kind::Insert, 0, [this] {
        QByteArray sql = "INSERT INTO " + schema::quoted(m_table) + " (" + schema::fields(m_table) +
                         ") VALUES (";
        for (std::size_t i = 0; i < m_slots.size(); ++i)
            sql += i == 0 ? "?" : ", ?";
        return sql + ")";
    });
}

void Recordset::edit()
{
    Q_ASSERT(m_writing == Writing::No && m_present);
    m_writing = Writing::Editing;
    m_changes.clear();
}

void Recordset::set(Field field, const FieldValue& value)
{
    Q_ASSERT(m_writing != Writing::No);
    if (m_writing == Writing::Editing)
        m_changes.push_back({field, value});
    else if (m_insert)
        setAdded(column(field), value);
}

/// Texts stay bound from row to row in a buffer of their column: files come folder by folder, and a
/// text that is the same object as before costs nothing.
void Recordset::setAdded(int number, const FieldValue& value)
{
    Slot& slot = m_slots[std::size_t(number - 1)];
    slot.set = true;
    slot.empty = false;
    const auto* text = std::get_if<QString>(&value.value());
    if (text == nullptr) {
        slot.text = QString();
        bindValue(m_insert.get(), number, value);
        return;
    }
    if (!slot.text.isNull() && text->constData() == slot.text.constData() &&
        text->size() == slot.text.size())
        return;
    slot.text = *text;
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    // At least one byte: an empty text must not become no value at all.
    const std::size_t space = std::size_t(encoder.requiredSpace(text->size())) + 1;
    if (slot.bytes.size() < space)
        slot.bytes.resize(space);
    const char* end = encoder.appendToBuffer(slot.bytes.data(), *text);
    sqlite3_bind_text(
        m_insert.get(), number, slot.bytes.data(), int(end - slot.bytes.data()), SQLITE_STATIC);
}

Result Recordset::update()
{
    Q_ASSERT(m_writing != Writing::No);
    m_error = {};
    const bool adding = m_writing == Writing::Adding;
    m_writing = Writing::No;
    m_connection.breathe();
    return adding ? updateAdded() : updateEdited();
}

void Recordset::cancelUpdate()
{
    m_writing = Writing::No;
    m_changes.clear();
}

Result Recordset::updateAdded()
{
    if (!m_insert) {
        failed(m_connection.lastError().number);
        return m_error;
    }
    const std::span<const Field> fields = info(m_table).fields;
    const IndexInfo& primary = info(primaryKeyOf(m_table));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        Slot& slot = m_slots[i];
        if (slot.set || slot.empty)
            continue;
        slot.empty = true;
        slot.text = QString();
        if (primary.form == IndexForm::RowKey && primary.fields[0] == fields[i])
            sqlite3_bind_null(m_insert.get(), int(i) + 1); // the engine gives the next number
        else
            bindEmpty(m_insert.get(), int(i) + 1, info(fields[i]).type);
    }
    const int code = sqlite3_step(m_insert.get());
    if (code == SQLITE_DONE)
        m_lastKey = sqlite3_last_insert_rowid(m_connection.handle());
    else
        failed(code);
    sqlite3_reset(m_insert.get());
    return m_error;
}

Result Recordset::updateEdited()
{
    if (m_changes.isEmpty())
        return {};
    QByteArray sql = "UPDATE " + schema::quoted(m_table) + " SET ";
    for (qsizetype i = 0; i < m_changes.size(); ++i) {
        sql += (i > 0 ? ", " : "") + schema::quoted(m_changes[i].first) + " = ?" +
               QByteArray::number(i + 2);
    }
    const Statement change = m_connection.statement(sql + " WHERE rowid = ?1");
    if (change) {
        bindValue(change.get(), 1, FieldValue(rowNumber()));
        int number = 1;
        for (const auto& [field, value] : std::as_const(m_changes))
            bindValue(change.get(), ++number, value);
    }
    m_changes.clear();
    return run(change);
}

qint64 Recordset::rowNumber() const
{
    return sqlite3_column_int64(m_walk.get(), 0);
}

Result Recordset::run(const Statement& statement)
{
    m_error = {};
    const int code = statement ? sqlite3_step(statement.get()) : m_connection.lastError().number;
    if (code != SQLITE_DONE) {
        const bool present = m_present;
        failed(code);
        m_present = present;
    }
    return m_error;
}

Result Recordset::deleteRow()
{
    Q_ASSERT(m_writing == Writing::No && m_present);
    const Statement deletion =
        m_connection.statement("DELETE FROM " + schema::quoted(m_table) + " WHERE rowid = ?1");
    if (deletion)
        bindValue(deletion.get(), 1, FieldValue(rowNumber()));
    return run(deletion);
}

// --- many rows at once ---

qint64 Recordset::count()
{
    return counted(Kind::Count, {}, [] { return QByteArray(); });
}

qint64 Recordset::countMatching(std::initializer_list<FieldValue> keys)
{
    return counted(Kind::CountMatching, keys, [&] {
        return " WHERE " + schema::equalTo(m_index, keys.size());
    });
}

qint64 Recordset::counted(Kind kind,
                          std::initializer_list<FieldValue> keys,
                          const std::function<QByteArray()>& condition)
{
    m_error = {};
    const Statement counting = prepared(kind, keys.size(), [&] {
        return "SELECT count(*) FROM " + schema::quoted(m_table) + condition();
    });
    int number = 0;
    int code = counting ? SQLITE_OK : m_connection.lastError().number;
    if (counting) {
        for (const FieldValue& key : keys)
            bindValue(counting.get(), ++number, key);
        code = sqlite3_step(counting.get());
    }
    if (code == SQLITE_ROW)
        return sqlite3_column_int64(counting.get(), 0);
    failed(code);
    return 0;
}

QHash<qint64, qint64> Recordset::countsOfEach()
{
    m_error = {};
    QHash<qint64, qint64> counts;
    const Statement counting = prepared(Kind::CountEach, 0, [&] {
        const QByteArray field = schema::quoted(info(m_index).fields.front());
        return "SELECT " + field + ", count(*) FROM " + schema::quoted(m_table) + " GROUP BY " +
               field;
    });
    int code = counting ? SQLITE_ROW : m_connection.lastError().number;
    while (counting && (code = sqlite3_step(counting.get())) == SQLITE_ROW)
        counts.insert(sqlite3_column_int64(counting.get(), 0),
                      sqlite3_column_int64(counting.get(), 1));
    if (code != SQLITE_DONE)
        failed(code);
    return counts;
}

Result Recordset::deleteAll(Kind kind,
                            std::initializer_list<FieldValue> keys,
                            const std::function<QByteArray()>& condition)
{
    m_walk = {};
    m_present = false;
    const Statement deletion = prepared(kind, keys.size(), [&] {
        return "DELETE FROM " + schema::quoted(m_table) + " WHERE " + condition();
    });
    int number = 0;
    if (deletion) {
        for (const FieldValue& key : keys)
            bindValue(deletion.get(), ++number, key);
    }
    return run(deletion);
}

Result Recordset::deleteAllMatching(std::initializer_list<FieldValue> keys)
{
    return deleteAll(
        Kind::DeleteMatching, keys, [&] { return schema::equalTo(m_index, keys.size()); });
}

void addToRuns(QList<RowRun>& runs, qint64 key)
{
    if (!runs.isEmpty() && runs.constLast().last + 1 == key)
        runs.last().last = key;
    else
        runs.push_back({key, key});
}

ResultOf<QList<RowRun>> Recordset::runsMatching(std::initializer_list<FieldValue> keys)
{
    m_error = {};
    const Statement rows = prepared(Kind::RowsMatching, keys.size(), [&] {
        return "SELECT rowid FROM " + schema::quoted(m_table) + " WHERE " +
               schema::equalTo(m_index, keys.size()) + " ORDER BY rowid";
    });
    QList<RowRun> runs;
    int number = 0;
    int code = rows ? SQLITE_OK : m_connection.lastError().number;
    if (rows) {
        for (const FieldValue& key : keys)
            bindValue(rows.get(), ++number, key);
        code = sqlite3_step(rows.get());
    }
    for (; code == SQLITE_ROW; code = sqlite3_step(rows.get())) {
        addToRuns(runs, sqlite3_column_int64(rows.get(), 0));
    }
    if (code == SQLITE_DONE)
        return runs;
    failed(code);
    return m_error;
}

Result Recordset::deleteRun(RowRun run)
{
    return deleteAll(Kind::DeleteRun, {run.first, run.last}, [] {
        return QByteArray("rowid BETWEEN ?1 AND ?2");
    });
}

} // namespace vt
