// The journal in the add-on database: operations in one table, their steps packed in chunks in
// another, so that records and journal end in one commit.
#pragma once

#include "addondb/Connection.h"
#include "platform/Gate.h"
#include "platform/Journal.h"

namespace vt {

class JournalTable final : public Journal
{
public:
    /// Both must outlive this. The connection must be open for writing, but for reading the
    /// journal.
    JournalTable(Connection& database, const Gate& gate) : m_database(database), m_gate(gate) {}

    ResultOf<qint64>
    begin(OperationKind kind, const QString& label, const QList<JournalStep>& steps) override;
    Result extend(qint64 operation, const QList<JournalStep>& steps) override;
    Result apply(qint64 operation,
                 const QList<JournalStep>& steps,
                 const QByteArray& closing,
                 const std::function<Result()>& records) override;
    Result
    end(qint64 operation, const QList<Place>& failed, const QList<JournalStep>& rest) override;
    Result forget(qint64 operation) override;
    [[nodiscard]] ResultOf<QList<JournalOperation>> unfinished() override;
    [[nodiscard]] ResultOf<QList<JournalStep>> steps(qint64 operation) override;

private:
    Result addSteps(qint64 operation, const QList<JournalStep>& steps);
    Result replaceSteps(qint64 operation, const QList<JournalStep>& steps);
    Result setState(qint64 operation, OperationState state, const QByteArray& closing);
    Result deleteRows(qint64 operation);

    Connection& m_database;
    const Gate& m_gate;
};

} // namespace vt
