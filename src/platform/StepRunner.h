// Carries out journal steps, in a live transaction and when a dead one is completed: the same code,
// so that each step may be met half-done. Only platform/ includes this.
#pragma once

#include "platform/FileTransaction.h"
#include "platform/Gate.h"
#include "platform/Journal.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QList>
#include <QSet>

#include <memory>
#include <optional>
#include <sys/stat.h>

namespace vt {

class StepRunner
{
public:
    StepRunner(Gate& gate, qint64 operation) : m_gate(gate), m_operation(operation) {}

    /// Until then files that are to go are taken for what their steps expect.
    void believeUntil(QDeadlineTimer time) { m_believed = time; }

    /// What became of an operation that was committed.
    struct Completion
    {
        QList<StepFailure> failures; ///< targets that could not be brought about
        QString unfinished;          ///< why the journal keeps the operation; empty: it has ended
    };

    /// Carries out the steps in order, makes that durable, closes the records and deletes what
    /// could not be placed. A step that is found done is a success; a target that is neither what
    /// the step expects nor what it makes is left alone and told.
    [[nodiscard]] Completion complete(Journal& journal, const QList<JournalStep>& steps);
    /// Deletes what is staged below the steps' staging and kept folders; tells what it could not.
    [[nodiscard]] QStringList undo(const QList<JournalStep>& steps);
    /// Whether anything that this operation staged lies in the steps' staging folders.
    [[nodiscard]] bool anyStaged(const QList<JournalStep>& steps) const;
    /// Why the steps cannot be met at present: a link on their way leads nowhere, or out without
    /// having been confirmed. Empty when nothing stands in the way.
    [[nodiscard]] QString obstacle(const QList<JournalStep>& steps) const;

private:
    /// A folder that steps work in; kept open, because many steps share it.
    struct Folder
    {
        QByteArray host;
        hostfile::Descriptor fd;
        bool changed = false;
    };

    /// A step's target: its folder, and once it was looked at the name of the entry as spelled on
    /// the disk, and what lies there.
    struct Target
    {
        std::shared_ptr<Folder> in;
        int folder = -1;
        QByteArray name;
        std::optional<struct stat> now;

        [[nodiscard]] QByteArray host() const { return in->host + '/' + name; }

        [[nodiscard]] bool is(const Fingerprint& print) const;
    };

    /// Where the target lies, as its place spells it, not looked at yet.
    ResultOf<Target> locate(const Place& place);
    void look(Target& target, const Place& place) const;
    Result carryOut(const JournalStep& step);
    void leaveOthers(const QList<JournalStep>& steps, const JournalStep& first);
    Result placeFile(const JournalStep& step, const Target& target);
    Result placeFolder(const JournalStep& step, const Target& target);
    void merge(const QByteArray& staged, const QString& folder);
    void mergeEntry(const QByteArray& from, const QByteArray& to, const QString& path);
    Result move(const JournalStep& step, const Target& target);
    Result removeFile(const JournalStep& step, const Target& target);
    Result removeSource(const JournalStep& step, const Target& target);
    void removeFolder(const Target& target);
    void noteChanged(const Target& target);

    void failed(const QString& path, const QString& why) { m_failures.push_back({path, why}); }

    Result syncFolders();

    Gate& m_gate;
    qint64 m_operation;
    QDeadlineTimer m_believed; ///< over from the beginning
    QList<StepFailure> m_failures;
    bool m_merged = false; ///< a staged folder was emptied instead of renamed
    QHash<QString, std::shared_ptr<Folder>> m_folders; ///< by root and relative path
    RootId m_lastRoot = RootId::None; ///< as locate() was last asked, and what it had open
    QString m_lastFolder;
    std::shared_ptr<Folder> m_last;
    QSet<QByteArray> m_changedFolders;
};

/// The steps that name folders with staged files: what is left to do once the others are recorded.
[[nodiscard]] QList<JournalStep> stagingSteps(const QList<JournalStep>& steps);

/// "~vt12-": how the names of everything begin that operation 12 stages.
[[nodiscard]] QByteArray stagedPrefix(qint64 operation);

} // namespace vt
