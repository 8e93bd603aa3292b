// The journal of operations that change many files together, as seen by FileTransaction. Kept by
// the add-on database, so that records and journal end in one commit (addondb/JournalTable).
#pragma once

#include "platform/FileActions.h"
#include "platform/Gate.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

namespace vt {

/// Stored: never renumber.
enum class OperationKind : quint8
{
    Installation = 1,
    Removal = 2,
    Configuration = 3,
    Repair = 4,
};

/// Stored: never renumber.
enum class OperationState : quint8
{
    Staging = 1, ///< nothing that the simulator sees has changed; a dead run is undone
    Applying =
        2, ///< everything is on the disk, the changes are carried out; a dead run is completed
    Cleaning = 3, ///< carried out and recorded; what could not be placed is being deleted
};

/// Stored: never renumber.
enum class StepKind : quint8
{
    StagingFolder =
        1,           ///< target: a folder that may hold files and folders named "~vt<operation>-*"
    KeptFolder = 2,  ///< target: a folder made for this operation alone, deleted when it is undone
    PlaceFile = 3,   ///< staged name beside the target becomes the target
    PlaceFolder = 4, ///< staged folder beside the target becomes the target, new as a whole
    Move = 5,        ///< source becomes target, both on one file system
    RemoveFile = 6,
    RemoveFolder = 7, ///< only when it is empty
    RemoveSource = 8, ///< source goes, once the target is what it became
    PlaceFirst = 9,   ///< as PlaceFile; nothing behind it is carried out when it fails
};

/// One step. Paths are (root, relative); no host path is ever stored.
struct JournalStep
{
    StepKind kind = StepKind::StagingFolder;
    Place target;
    Place source;       ///< Move, RemoveSource
    QString stagedName; ///< PlaceFile, PlaceFolder
    Fingerprint before; ///< what the target must be now; size -1: nothing; xxh3 may be empty
    Fingerprint after;  ///< PlaceFile, Move: what it becomes

    friend bool operator==(const JournalStep&, const JournalStep&) = default;
};

/// An operation that has not ended.
struct JournalOperation
{
    qint64 id = 0;
    OperationKind kind = OperationKind::Installation;
    OperationState state = OperationState::Staging;
    QString label;      ///< the add-on's name, for messages
    QByteArray closing; ///< what the end of the operation does to the records, by its writer's form
};

class Journal
{
public:
    virtual ~Journal() = default;

    /// A new operation in the state Staging with its first steps; committed. Its number is never
    /// used again.
    virtual ResultOf<qint64>
    begin(OperationKind kind, const QString& label, const QList<JournalStep>& steps) = 0;
    /// More folders to look into when the operation is undone; committed.
    virtual Result extend(qint64 operation, const QList<JournalStep>& steps) = 0;
    /// In one commit: \a records runs inside the transaction, the steps replace what was there, the
    /// state becomes Applying.
    virtual Result apply(qint64 operation,
                         const QList<JournalStep>& steps,
                         const QByteArray& closing,
                         const std::function<Result()>& records) = 0;
    /// In one commit: the records are closed (those of \a failed targets as not done) and the
    /// operation's rows go; or, when staged files may be left in the folders of \a rest, the state
    /// becomes Cleaning and these steps replace the others.
    virtual Result
    end(qint64 operation, const QList<Place>& failed, const QList<JournalStep>& rest) = 0;
    /// After an undone or cleaned operation: its rows go, records untouched.
    virtual Result forget(qint64 operation) = 0;

    [[nodiscard]] virtual ResultOf<QList<JournalOperation>> unfinished() = 0;
    [[nodiscard]] virtual ResultOf<QList<JournalStep>> steps(qint64 operation) = 0;
};

/// The stored form of steps: see docs/formats/journal.md.
[[nodiscard]] QByteArray
packSteps(const QList<JournalStep>& steps, qsizetype from, qsizetype count);
/// Appends to \a steps; false when the bytes are damaged.
[[nodiscard]] bool unpackSteps(const QByteArray& bytes, QList<JournalStep>& steps);

/// The folders that these steps work in, neighbours once.
[[nodiscard]] QStringList foldersOf(const Gate& gate, const QList<JournalStep>& steps);

/// What recover() did with one unfinished operation.
struct Recovery
{
    JournalOperation operation;
    QString outcome;   ///< "undone", "completed" or "failed"
    QStringList texts; ///< files that were left alone, and why
};

/// Ends every unfinished operation: undoes what was only staged, completes what had begun to be
/// carried out. A file that is neither the old nor the new one is never touched, only told. Work
/// behind a link that the gate does not follow waits. May be interrupted itself and run again. To
/// be called with the instance lock held, before anything else writes.
[[nodiscard]] ResultOf<QList<Recovery>> recover(Journal& journal, Gate& gate);

} // namespace vt
