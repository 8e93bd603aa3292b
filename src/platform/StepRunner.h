// Carries out journal steps, in a live transaction and when a dead one is completed: the same code,
// so that each step may be met half-done. Only platform/ includes this.
#pragma once

#include "platform/Gate.h"
#include "platform/Journal.h"
#include "platform/FileTransaction.h"

#include <QByteArray>
#include <QList>
#include <QSet>

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

private:
    Result carryOut(const JournalStep& step);
    Result placeFile(const JournalStep& step, const QByteArray& target);
    Result placeFolder(const JournalStep& step, const QByteArray& target);
    Result merge(const QByteArray& staged, const QByteArray& target);
    Result move(const JournalStep& step, const QByteArray& target);
    Result removeFile(const JournalStep& step, const QByteArray& target);
    static Result removeFolder(const QByteArray& target);

    Gate& m_gate;
    qint64 m_operation;
    QSet<QByteArray> m_changedFolders;
};

/// "~vt12-": how the names of everything begin that operation 12 stages.
[[nodiscard]] QByteArray stagedPrefix(qint64 operation);

} // namespace vt
