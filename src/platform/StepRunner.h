// Carries out journal steps, in a live transaction and when a dead one is completed: the same code,
// so that each step may be met half-done. Only platform/ includes this.
#pragma once

#include "platform/FileTransaction.h"
#include "platform/Gate.h"
#include "platform/Journal.h"

#include <QByteArray>
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

    /// In order. A step that is found done is a success; a target that is neither what the step
    /// expects nor what it makes is left alone and told.
    QList<StepFailure> carryOut(const QList<JournalStep>& steps);
    /// Makes the renames durable.
    void syncFolders();
    /// Deletes what is staged below the steps' staging and kept folders.
    QStringList undo(const QList<JournalStep>& steps);
    /// Whether anything that this operation staged lies in the steps' staging folders.
    [[nodiscard]] bool anyStaged(const QList<JournalStep>& steps) const;

private:
    /// A folder that steps work in; kept open, because many steps share it.
    struct Folder
    {
        QByteArray host;
        hostfile::Descriptor fd;
        bool changed = false;
    };

    /// A step's target: its folder, the name of the entry as spelled on the disk, and what lies
    /// there.
    struct Target
    {
        std::shared_ptr<Folder> in;
        int folder = -1;
        QByteArray name;
        std::optional<struct stat> now;

        [[nodiscard]] QByteArray host() const { return in->host + '/' + name; }

        [[nodiscard]] bool is(const Fingerprint& print) const;
    };

    ResultOf<Target> locate(const Place& place);
    Result carryOut(const JournalStep& step);
    Result placeFile(const JournalStep& step, const Target& target);
    Result placeFolder(const JournalStep& step, const Target& target);
    Result merge(const QByteArray& staged, const QByteArray& target);
    Result move(const JournalStep& step, const Target& target);
    Result removeFile(const JournalStep& step, const Target& target);
    Result removeSource(const JournalStep& step, const Target& target);
    void removeFolder(const Target& target);
    void noteChanged(const Target& target);

    Gate& m_gate;
    qint64 m_operation;
    QHash<QString, std::shared_ptr<Folder>> m_folders; ///< by root and relative path
    QSet<QByteArray> m_changedFolders;
};

/// "~vt12-": how the names of everything begin that operation 12 stages.
[[nodiscard]] QByteArray stagedPrefix(qint64 operation);

} // namespace vt
