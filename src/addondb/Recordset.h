// One table, opened as its rows: choose an index, seek, move, read, add, edit, delete. It shows the
// present row; nothing is written before update() or deleteRow(). Rows that are changed while one
// walks over them may be met twice when the change moves them along the chosen index.
#pragma once

#include "addondb/Connection.h"
#include "addondb/Tables.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <initializer_list>
#include <utility>
#include <variant>
#include <vector>

namespace vt {

/// What is sought or written. Texts are written as given (trimming is the caller's).
class FieldValue
{
public:
    FieldValue(qint64 number) : m_value(number) {} // NOLINT: meant to convert

    FieldValue(int number) : m_value(qint64(number)) {} // NOLINT

    FieldValue(bool flag) : m_value(qint64(flag ? 1 : 0)) {} // NOLINT

    FieldValue(QString text) : m_value(std::move(text)) {} // NOLINT

    FieldValue(const QDateTime& time); // NOLINT

    FieldValue(QByteArray bytes) : m_value(std::move(bytes)) {} // NOLINT

    [[nodiscard]] const std::variant<qint64, QString, QByteArray>& value() const { return m_value; }

private:
    std::variant<qint64, QString, QByteArray> m_value;
};

/// The form in which dates are stored and compared: "yyyy-MM-dd HH:mm:ss", empty for an invalid
/// one.
[[nodiscard]] QString dateText(const QDateTime& time);
[[nodiscard]] QDateTime dateOf(const QString& text);

/// Rows whose own keys are these and all between.
struct RowRun
{
    qint64 first = 0;
    qint64 last = 0;

    [[nodiscard]] qint64 size() const { return last - first + 1; }
};

/// Takes up one more key, which lies above those of the \a runs.
void addToRuns(QList<RowRun>& runs, qint64 key);

class Recordset
{
public:
    /// Rows are in the order of the index "PrimaryKey" until another is chosen. No present row yet.
    Recordset(Connection& connection, Table table);
    ~Recordset() = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    /// An index of this table, for the next seek or move. Ends the present walk.
    void setIndex(Index index);

    /// The first row whose leading index fields equal \a keys (texts without regard to case);
    /// moveNext() then stays among the equal ones. False: no such row (or error()).
    bool seek(std::initializer_list<FieldValue> keys);
    /// The first row at or after \a keys; moveNext() then goes on to the end of the table.
    bool seekFrom(std::initializer_list<FieldValue> keys);
    /// The first row of the run; moveNext() stays in it.
    bool seekRun(RowRun run);
    /// Addon_Details only: the rows of files installed to a folder, but for those of the run.
    bool seekInFolder(const QString& location, RowRun without);
    bool moveFirst();
    /// The last row; moveNext() after it ends the walk.
    bool moveLast();
    bool moveNext();

    /// No present row: before the first seek or move, after the last row, or nothing found.
    [[nodiscard]] bool eof() const { return !m_present; }

    [[nodiscard]] qint64 number(Field field) const;
    [[nodiscard]] bool flag(Field field) const;
    [[nodiscard]] QString text(Field field) const;
    /// As text(), one object for all rows of equal text: for what repeats, such as folders.
    [[nodiscard]] QString sharedText(Field field);
    /// Whether two fields of the row hold the same text, of which one object then does for both.
    [[nodiscard]] bool sameText(Field first, Field second) const;
    [[nodiscard]] QDateTime date(Field field) const;
    [[nodiscard]] QByteArray blob(Field field) const;

    /// Begins a new row, all fields empty, or the change of the present one; set() fills in, and
    /// update() writes. cancelUpdate() forgets. A table's own key left unset is given by the
    /// engine. The present row goes on showing what it held before it was changed.
    void addNew();
    void edit();
    void set(Field field, const FieldValue& value);
    Result update();
    void cancelUpdate();

    /// The key that update() gave to the last added row.
    [[nodiscard]] qint64 lastKey() const { return m_lastKey; }

    /// Deletes the present row; moveNext() goes on behind it.
    Result deleteRow();

    [[nodiscard]] qint64 count();
    /// Rows whose leading index fields equal \a keys.
    [[nodiscard]] qint64 countMatching(std::initializer_list<FieldValue> keys);
    /// How many rows there are of each value of the chosen index's first field, a number. One walk
    /// over the index.
    [[nodiscard]] QHash<qint64, qint64> countsOfEach();
    /// Deletes every row whose leading fields of the chosen index equal \a keys, at once.
    Result deleteAllMatching(std::initializer_list<FieldValue> keys);
    /// The own keys of the rows whose leading index fields equal \a keys, in ascending order. What
    /// was written together has neighbouring keys, so that a few runs say it all, also of tables
    /// that share the keys (the checks of an add-on's detail rows, say).
    [[nodiscard]] ResultOf<QList<RowRun>> runsMatching(std::initializer_list<FieldValue> keys);
    /// Deletes the rows of the run, at once.
    Result deleteRun(RowRun run);

    /// Why the last call returned false, when it was not for want of a row.
    [[nodiscard]] const Result& error() const { return m_error; }

private:
    enum class Writing
    {
        No,
        Adding,
        Editing,
    };

    /// What is bound to one column of the inserting statement.
    struct Slot
    {
        bool set = false;   ///< for the row now being added
        bool empty = false; ///< the empty value is bound
        QString text;       ///< the text that is bound; null when another kind of value is
        std::vector<char> bytes;
    };

    /// Which statement of a table and index.
    enum class Kind
    {
        Seek,
        SeekFrom,
        Folder,
        First,
        Last,
        Insert,
        DeleteRow,
        DeleteMatching,
        Count,
        CountMatching,
        CountEach,
        RowsMatching,
        Run,
        DeleteRun,
    };

    Statement prepared(Kind kind, std::size_t keys, const std::function<QByteArray()>& sql);
    bool start(Kind kind,
               std::initializer_list<FieldValue> keys,
               const std::function<QByteArray()>& rest);
    bool step();
    bool failed(int code);
    Result run(const Statement& statement);
    [[nodiscard]] QByteArray selection() const;
    [[nodiscard]] int column(Field field) const;
    [[nodiscard]] qint64 rowNumber() const;
    void setAdded(int number, const FieldValue& value);
    Result updateAdded();
    Result updateEdited();
    qint64 counted(Kind kind,
                   std::initializer_list<FieldValue> keys,
                   const std::function<QByteArray()>& condition);
    Result deleteAll(Kind kind,
                     std::initializer_list<FieldValue> keys,
                     const std::function<QByteArray()>& condition);

    Connection& m_connection;
    Table m_table;
    Index m_index;
    Statement m_walk;
    QHash<QByteArray, QString> m_shared; ///< by their UTF-8
    std::vector<Slot> m_slots;           ///< outlives the statement that points into it
    Statement m_insert;
    bool m_present = false;
    Writing m_writing = Writing::No;
    QList<std::pair<Field, FieldValue>> m_changes;
    qint64 m_lastKey = 0;
    Result m_error;
};

} // namespace vt
