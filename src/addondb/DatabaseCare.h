// Care for the database file as a whole: whether it can be used, what start-up asks when it cannot,
// and the file written anew: optimised, repaired, brought up to the present structure. The old file
// stands until the new one was looked through, and is replaced in one step.
#pragma once

#include "addondb/Connection.h"
#include "addondb/Salvage.h"
#include "platform/DirectActions.h"
#include "platform/Files.h"
#include "platform/Prompt.h"
#include "shell/Context.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

struct DatabaseHealth
{
    DatabaseFault fault = DatabaseFault::None;
    DatabaseError error; ///< number 0 when all is well
    Result result;       ///< one sentence for people, kind Surroundings, when it is not
    qint64 bytes = 0;    ///< size of the file; 0 when there is none
    int structure = 0;   ///< 0 when it could not be opened
};

/// Opens the database for reading, looks through it, and closes it; leaves nothing beside it.
/// \a thorough compares the indexes with the rows as well.
[[nodiscard]] DatabaseHealth
databaseHealth(const Files& files, const QString& path, bool thorough = false);

/// The question of the damage check: Yes optimises with repair, No goes on, Cancel ends the
/// program.
[[nodiscard]] Prompt databaseDamagePrompt(const QString& productTitle, const DatabaseError& error);
/// The question before a thorough repair; Yes goes on.
[[nodiscard]] Prompt thoroughRepairPrompt(const QString& productTitle);
/// "Database Optimization Required": the structure is about to be brought up to date.
[[nodiscard]] Prompt upgradePrompt(const QString& productTitle);

/// What became of a file that was cared for.
struct CareReport
{
    Result result;     ///< on failure the stated text, then the cause
    int errorCode = 0; ///< step of the optimisation that failed: 1 repair, 2 compact, 3 copy, 4 the
                       ///< counter of changes
    bool changed = false; ///< the file is another one now
    qint64 bytesBefore = 0;
    qint64 bytesAfter = 0;
    std::optional<SalvageReport> salvage; ///< when rows had to be saved
    QString damagedFile;                  ///< where the damaged file was kept
    QStringList added;                    ///< what an older structure had lacked
};

/// Needs the program folder's lock, and that nobody in this process has the file open.
class DatabaseCare
{
public:
    explicit DatabaseCare(Context& context);

    /// Ends a replacement in whose middle a run died: the new file is looked through and put in its
    /// place, or dropped. To be called before the database is opened for writing.
    Result finishReplacement();

    /// Steps 1 (with \a repair and only where there is damage) to 4. Refused while the journal
    /// holds unfinished work.
    [[nodiscard]] CareReport optimize(bool repair);
    /// Step 1 alone: a damaged file is replaced by one with all rows that can be saved, unfinished
    /// work included, and kept beside it; a sound one stays.
    [[nodiscard]] CareReport repair();
    /// Adds what an older file lacks and fills it from what is there. A file that lacks nothing
    /// stays; nothing is said then. Refused while the journal holds unfinished work.
    [[nodiscard]] CareReport upgrade();

private:
    CareReport begin();
    void end(CareReport& report);
    static void fail(CareReport& report, int code, const Result& why);
    void emptyWork();
    void rewrite(CareReport& report, const QList<LackingPart>& lacking);
    Result supply(const QList<LackingPart>& lacking, QString& source);
    Result compact(const QString& source, const QString& target);
    Result fill(const QString& made, const QList<LackingPart>& lacking);
    Result replace(const QString& made);
    Result putInPlace();
    Result salvage(CareReport& report);
    Result keepDamaged(CareReport& report);
    ResultOf<QString> copyForSalvage(const QString& folder);
    void status(const QString& text);

    Context& m_context;
    DirectActions m_actions;
    QString m_database;
    QString m_next; ///< the new file, whole, before it takes the place of the old one
};

/// Whether so many changes were counted that the end of the program optimises the database.
[[nodiscard]] bool optimizationDue(Settings& settings);

/// Fills the flags and picture rows that \a lacking had no room for from the rows that are there.
Result fillLacking(Connection& database,
                   const Files& files,
                   const QString& imagesFolder,
                   const QList<LackingPart>& lacking);

} // namespace vt
