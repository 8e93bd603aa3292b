// One open database file ("Vantrel.mdb"). SQL text stands in Connection.cpp and Recordset.cpp
// alone. A writing connection keeps a write-ahead log while it is open and leaves a single file
// when it is closed; a reading one creates nothing beside the file.
#pragma once

#include "addondb/Tables.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

struct sqlite3;
struct sqlite3_stmt;

namespace vt {

class Connection;
class Files;
class Gate;

enum class OpenMode
{
    ReadOnly,
    ReadWrite,
};

/// Why a database could not be opened.
enum class DatabaseFault
{
    None,
    Missing,    ///< there is no such file
    Unreadable, ///< the file or its folder may not be read or written
    Full,       ///< there is no room on the disk
    Busy,       ///< another program is writing to it
    Foreign,    ///< a sound file, but not one of this program's
    Newer,      ///< written by a later version of this program
    Damaged,    ///< not a database, cut short, or inconsistent
    Refused,    ///< what was asked breaks a rule of the tables
};

/// The engine's error number and text; number 0 for none.
struct DatabaseError
{
    int number = 0;
    QString text;
};

struct OpenedDatabase
{
    std::unique_ptr<Connection> connection; ///< null exactly when fault is not None
    DatabaseFault fault = DatabaseFault::None;
    DatabaseError error;
    Result result; ///< on failure one sentence for people, kind Surroundings
};

/// One sentence for people about a database file; \a cause only where the fault does not say all.
[[nodiscard]] Result
databaseTrouble(DatabaseFault fault, const QString& path, const QString& cause);

/// A table, field or index that an older file does not have, and how it is added.
struct LackingPart
{
    QString what; ///< "the table Addon_Details_Picture"
    Table table = Table::Count_;
    std::optional<Field> field; ///< set when a field is what lacks
    bool whole = false;         ///< the table itself is what lacks
    QByteArray sql;
};

/// A prepared statement on loan from its connection; goes back, reset, when it dies.
class Statement
{
public:
    Statement() = default;
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement& operator=(Statement&& other) noexcept;
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    [[nodiscard]] sqlite3_stmt* get() const { return m_statement; }

    explicit operator bool() const { return m_statement != nullptr; }

private:
    friend class Connection;

    Statement(sqlite3_stmt* statement, QList<sqlite3_stmt*>* home)
        : m_statement(statement), m_home(home)
    {}

    void giveBack();

    sqlite3_stmt* m_statement = nullptr;
    QList<sqlite3_stmt*>* m_home = nullptr; ///< null: ended instead of given back
};

/// Belongs to the thread that opened it.
class Connection
{
public:
    /// \a path is a Windows text. Never creates the file. A reading connection works beside a
    /// writing one and sees what was last committed, also by a process that died. A writing one
    /// compares every page of a file of up to 32 MiB with its checksum, and brings in what a dead
    /// process left in the log.
    [[nodiscard]] static OpenedDatabase
    open(const Files& files, const QString& path, OpenMode mode);
    /// A new, empty database, open for writing. Fails when the file exists; leaves nothing on
    /// failure.
    [[nodiscard]] static OpenedDatabase create(const Gate& gate, const QString& path);

    /// As close().
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Rolls an open transaction back, brings everything into the one file and lets go of it.
    /// Every Recordset must be gone. After a failure the data are whole, in the file and the log
    /// beside it. A second call does nothing.
    Result close();

    /// Called often while the engine works on long statements and after each written record.
    void setBreathing(std::function<void()> breathing);

    void breathe() const
    {
        if (m_breathing)
            m_breathing();
    }

    [[nodiscard]] const QString& path() const { return m_path; }

    [[nodiscard]] bool readOnly() const { return m_readOnly; }

    /// Version of the tables' structure; schema::structureVersion when it is the present one.
    [[nodiscard]] int structure() const { return m_structure; }

    [[nodiscard]] bool isPresentStructure() const;

    /// Transactions do not nest: beginning a second one is a programming error.
    Result begin();
    /// On failure the transaction is rolled back and the file is as before begin().
    Result commit();
    void rollback();

    [[nodiscard]] bool inTransaction() const { return m_inTransaction; }

    /// Runs \a work inside the transaction that is open, or else in one of its own, which is
    /// committed when the work succeeds and rolled back when it fails.
    Result together(const std::function<Result()>& work);
    /// Inside the transaction that is open: what \a work wrote is taken back when it fails, and the
    /// transaction goes on.
    Result attempt(const std::function<Result()>& work);

    /// Looks through the whole file: every page with its checksum, every row; \a thorough compares
    /// the indexes with the rows as well. Failure: the first problem found, lastError() with the
    /// engine's words.
    Result check(bool thorough = false);

    /// What this structure has and the file has not, in the order in which it can be added.
    [[nodiscard]] ResultOf<QList<LackingPart>> lacking();
    /// Adds it, in the transaction that is open or in one of its own.
    Result supply(const QList<LackingPart>& parts);
    /// Writes everything anew, without gaps, into \a hostFile (missing or empty): a whole database
    /// of the present structure with checksums. No transaction may be open.
    Result compactInto(const QByteArray& hostFile);
    /// Brings the log or journal beside the file, where there is one, into it; for a private copy
    /// of a damaged file; \a checked: its pages have checksums. False when the engine does not even
    /// open it.
    static bool bringIn(const QByteArray& hostFile, bool checked);

    /// What the engine said last, for the error log; the stated texts do not carry it.
    [[nodiscard]] const DatabaseError& lastError() const { return m_lastError; }

    /// The first damage, full disk or the like that any call met, as one sentence: what a person
    /// needs to know beside the stated texts. Success while all is well.
    [[nodiscard]] const Result& trouble() const { return m_trouble; }

    // For Recordset.

    /// The statement of that number (above 0); \a sql makes its text the first time.
    template <typename MakeSql>
    [[nodiscard]] Statement statement(quint32 number, const MakeSql& sql)
    {
        Pool& pool = m_pools[number];
        if (pool.sql.isEmpty())
            pool.sql = sql();
        return lend(pool);
    }

    /// A statement that is not used again.
    [[nodiscard]] Statement statement(const QByteArray& sql);
    /// Stores the engine's present error and makes a sentence of it; for use right after a failed
    /// call.
    Result failed(int code);

    [[nodiscard]] sqlite3* handle() const { return m_handle; }

private:
    /// Prepared statements of one text; those on loan come back here.
    struct Pool
    {
        QByteArray sql;
        QList<sqlite3_stmt*> idle;
    };

    Connection(QString path, bool readOnly);

    void noteError(int code);
    Statement lend(Pool& pool);
    sqlite3_stmt* prepare(const QByteArray& sql, unsigned traits);
    OpenedDatabase openFile(const QByteArray& hostFile, int flags);
    /// Of the file that is open, which nobody is writing.
    Result scanPages();
    OpenedDatabase becomeWriter();
    OpenedDatabase refusedByEngine(int code);
    Result makeFile(const QByteArray& hostFile);
    Result leaveOneFile();
    Result markStructure(const QByteArray& hostFile);
    Result execute(const char* sql);
    /// Hands the first row of an answer to \a take; the engine's code.
    int firstOf(const char* sql, const std::function<void(sqlite3_stmt*)>& take);
    /// The same for every row.
    int eachOf(const QByteArray& sql, const std::function<void(sqlite3_stmt*)>& take);

    sqlite3* m_handle = nullptr;
    std::function<void()> m_breathing;
    QString m_path;
    QByteArray m_hostFile;
    QByteArray m_privateCopy; ///< host folder of a private copy that is being read, or empty
    bool m_checked = false;   ///< its pages have checksums
    bool m_shared = false;    ///< read beside somebody's log
    bool m_readOnly = false;
    bool m_writer = false; ///< open with a log, to be left as one file
    bool m_inTransaction = false;
    int m_structure = 0;
    DatabaseError m_lastError;
    Result m_trouble;
    std::unordered_map<quint32, Pool> m_pools; ///< its elements never move
};

/// Rolled back on leaving its scope unless it was committed.
class Transaction
{
public:
    explicit Transaction(Connection& connection) : m_connection(connection) {}

    ~Transaction()
    {
        if (m_open)
            m_connection.rollback();
    }

    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    Result begin()
    {
        Result begun = m_connection.begin();
        m_open = begun.ok;
        return begun;
    }

    Result commit()
    {
        m_open = false;
        return m_connection.commit();
    }

private:
    Connection& m_connection;
    bool m_open = false;
};

} // namespace vt
