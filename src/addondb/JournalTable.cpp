#include "addondb/JournalTable.h"

#include "addondb/AddonDatabase.h"
#include "addondb/Closing.h"
#include "addondb/Recordset.h"

#include <QDateTime>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype stepsPerChunk = 2000;

QString operationCounter()
{
    return u"Operation"_s;
}

} // namespace

ResultOf<qint64>
JournalTable::begin(OperationKind kind, const QString& label, const QList<JournalStep>& steps)
{
    qint64 number = 0;
    const Result begun = m_database.together([&] {
        number = modDatabase_Addon::counter(m_database, operationCounter()) + 1;
        if (Result counted = modDatabase_Addon::setCounter(m_database, operationCounter(), number);
            !counted)
            return counted;
        Recordset operations(m_database, Table::Vantrel_Journal);
        operations.addNew();
        operations.set(Field::Operation, number);
        operations.set(Field::Kind, int(kind));
        operations.set(Field::State, int(OperationState::Staging));
        operations.set(Field::Label, label);
        operations.set(Field::Started, QDateTime::currentDateTime());
        operations.set(Field::Closing, QByteArray());
        if (Result added = operations.update(); !added)
            return added;
        return addSteps(number, steps);
    });
    if (!begun)
        return begun;
    return number;
}

Result JournalTable::addSteps(qint64 operation, const QList<JournalStep>& steps)
{
    Recordset chunks(m_database, Table::Vantrel_JournalSteps);
    chunks.setIndex(Index::Vantrel_JournalSteps_PrimaryKey);
    int chunk = int(chunks.countMatching({operation}));
    for (qsizetype from = 0; from < steps.size(); from += stepsPerChunk) {
        chunks.addNew();
        chunks.set(Field::Operation, operation);
        chunks.set(Field::Chunk, chunk++);
        chunks.set(Field::Steps, packSteps(steps, from, stepsPerChunk));
        if (Result added = chunks.update(); !added)
            return added;
    }
    return Result::success();
}

Result JournalTable::replaceSteps(qint64 operation, const QList<JournalStep>& steps)
{
    Recordset chunks(m_database, Table::Vantrel_JournalSteps);
    chunks.setIndex(Index::Vantrel_JournalSteps_PrimaryKey);
    if (Result gone = chunks.deleteAllMatching({operation}); !gone)
        return gone;
    return addSteps(operation, steps);
}

Result JournalTable::setState(qint64 operation, OperationState state, const QByteArray& closing)
{
    Recordset operations(m_database, Table::Vantrel_Journal);
    operations.setIndex(Index::Vantrel_Journal_PrimaryKey);
    if (!operations.seek({operation}))
        return Result::failure(u"The journal has lost the present operation."_s);
    operations.edit();
    operations.set(Field::State, int(state));
    operations.set(Field::Closing, closing);
    return operations.update();
}

Result JournalTable::deleteRows(qint64 operation)
{
    Recordset chunks(m_database, Table::Vantrel_JournalSteps);
    chunks.setIndex(Index::Vantrel_JournalSteps_PrimaryKey);
    if (Result gone = chunks.deleteAllMatching({operation}); !gone)
        return gone;
    Recordset operations(m_database, Table::Vantrel_Journal);
    operations.setIndex(Index::Vantrel_Journal_PrimaryKey);
    return operations.deleteAllMatching({operation});
}

Result JournalTable::extend(qint64 operation, const QList<JournalStep>& steps)
{
    return m_database.together([&] { return addSteps(operation, steps); });
}

Result JournalTable::apply(qint64 operation,
                           const QList<JournalStep>& steps,
                           const QByteArray& closing,
                           const std::function<Result()>& records)
{
    return m_database.together([&] {
        if (Result recorded = records(); !recorded)
            return recorded;
        if (Result replaced = replaceSteps(operation, steps); !replaced)
            return replaced;
        return setState(operation, OperationState::Applying, closing);
    });
}

Result
JournalTable::end(qint64 operation, const QList<Place>& failed, const QList<JournalStep>& rest)
{
    return m_database.together([&] {
        JournalOperation present;
        {
            Recordset operations(m_database, Table::Vantrel_Journal);
            operations.setIndex(Index::Vantrel_Journal_PrimaryKey);
            if (!operations.seek({operation}))
                return Result::success(); // ended already
            present.kind = OperationKind(operations.number(Field::Kind));
            present.closing = operations.blob(Field::Closing);
        }
        if (Result closed =
                carryOutClosing(m_database, m_gate, present.kind, present.closing, failed);
            !closed)
            return closed;
        if (rest.isEmpty())
            return deleteRows(operation);
        if (Result replaced = replaceSteps(operation, rest); !replaced)
            return replaced;
        return setState(operation, OperationState::Cleaning, {});
    });
}

Result JournalTable::forget(qint64 operation)
{
    return m_database.together([&] { return deleteRows(operation); });
}

ResultOf<QList<JournalOperation>> JournalTable::unfinished()
{
    QList<JournalOperation> out;
    Recordset operations(m_database, Table::Vantrel_Journal);
    for (bool any = operations.moveFirst(); any; any = operations.moveNext()) {
        JournalOperation operation;
        operation.id = operations.number(Field::Operation);
        operation.kind = OperationKind(operations.number(Field::Kind));
        operation.state = OperationState(operations.number(Field::State));
        operation.label = operations.text(Field::Label);
        operation.closing = operations.blob(Field::Closing);
        out.push_back(operation);
    }
    if (!operations.error().ok)
        return operations.error();
    return out;
}

ResultOf<QList<JournalStep>> JournalTable::steps(qint64 operation)
{
    QList<JournalStep> out;
    Recordset chunks(m_database, Table::Vantrel_JournalSteps);
    chunks.setIndex(Index::Vantrel_JournalSteps_PrimaryKey);
    for (bool any = chunks.seek({operation}); any; any = chunks.moveNext()) {
        if (!unpackSteps(chunks.blob(Field::Steps), out))
            return Result::failure(u"The journal of an unfinished operation is damaged."_s);
    }
    if (!chunks.error().ok)
        return chunks.error();
    return out;
}

} // namespace vt
