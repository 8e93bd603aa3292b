// Stored form of journal steps, and the recovery of unfinished operations.
#include "platform/Journal.h"

#include "platform/StepRunner.h"
#include "platform/Utf8.h"
#include "platform/WinPath.h"

#include <QDataStream>
#include <QtEndian>

#include <concepts>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr quint8 stepFormat = 1;

bool hasSource(StepKind kind)
{
    return kind == StepKind::Move || kind == StepKind::RemoveSource;
}

/// Writes what a QDataStream reads, without its cost for each value: a removal may have 100,000
/// steps.
class StepWriter
{
public:
    explicit StepWriter(qsizetype steps) { m_bytes.reserve(steps * usualStep); }

    template <std::integral I> void number(I value)
    {
        char bytes[sizeof(I)];
        qToBigEndian(value, bytes);
        m_bytes.append(bytes, qsizetype(sizeof(I)));
    }

    void text(QStringView text)
    {
        const qsizetype at = m_bytes.size();
        number(quint32(0)); // the length, known in a moment
        const qsizetype begin = m_bytes.size();
        appendUtf8(m_bytes, text);
        qToBigEndian(quint32(m_bytes.size() - begin), m_bytes.data() + at);
    }

    void place(const Place& place)
    {
        number(quint8(place.root));
        text(place.relative);
    }

    void print(const Fingerprint& print)
    {
        number(print.size);
        if (print.size < 0)
            return;
        number(print.modifiedNs);
        number(quint32(print.xxh3.size()));
        m_bytes.append(print.xxh3);
    }

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

private:
    static constexpr qsizetype usualStep = 160;

    QByteArray m_bytes;
};

Place readPlace(QDataStream& in)
{
    quint8 root = 0;
    QByteArray relative;
    in >> root >> relative;
    return {RootId(root), QString::fromUtf8(relative)};
}

Fingerprint readPrint(QDataStream& in)
{
    Fingerprint print;
    in >> print.size;
    if (print.size >= 0)
        in >> print.modifiedNs >> print.xxh3;
    return print;
}

/// Whether the steps belong to the simulator's folder that is at hand: it lies where it lay, or it
/// still holds what was staged.
bool isSameTree(const Gate& gate, const StepRunner& runner, const QList<JournalStep>& steps)
{
    for (const JournalStep& step : steps) {
        const bool home = step.kind == StepKind::StagingFolder &&
                          step.target.root == RootId::Simulator && !step.stagedName.isEmpty();
        if (home)
            return step.stagedName == gate.identity(RootId::Simulator) || runner.anyStaged(steps);
    }
    return true;
}

Recovery recoverOne(Journal& journal, Gate& gate, const JournalOperation& operation)
{
    Recovery out{operation, u"failed"_s, {}};
    const ResultOf<QList<JournalStep>> steps = journal.steps(operation.id);
    if (!steps) {
        out.texts.push_back(steps.text);
        return out;
    }
    for (const JournalStep& step : *steps) {
        if (gate.rootFolder(step.target.root).isEmpty()) {
            out.texts.push_back(u"The folder that '"_s + step.target.relative +
                                u"' belongs to is not known at present; the work waits for it."_s);
            return out;
        }
    }
    StepRunner runner(gate, operation.id);
    if (!isSameTree(gate, runner, *steps)) {
        out.texts.push_back(u"The work belongs to another simulator folder than '"_s +
                            gate.rootFolder(RootId::Simulator) +
                            u"'; it is finished when that one is used again."_s);
        return out;
    }
    if (const QString obstacle = runner.obstacle(*steps); !obstacle.isEmpty()) {
        out.texts.push_back(obstacle + u" The work waits for it."_s);
        return out;
    }
    if (operation.state == OperationState::Applying) {
        const StepRunner::Completion done = runner.complete(journal, *steps);
        for (const StepFailure& failure : done.failures)
            out.texts.push_back(u"'"_s + failure.path + u"': "_s + failure.text);
        if (done.unfinished.isEmpty())
            out.outcome = u"completed"_s;
        else
            out.texts.prepend(done.unfinished);
        return out;
    }
    out.texts = runner.undo(*steps);
    if (!out.texts.isEmpty())
        return out; // tried again next time
    const int error = gate.fault("commit", "forget");
    const Result forgotten =
        error != 0 ? Result::failure(hostfile::errorText(error)) : journal.forget(operation.id);
    if (forgotten)
        out.outcome = operation.state == OperationState::Cleaning ? u"completed"_s : u"undone"_s;
    else
        out.texts.push_back(forgotten.text);
    return out;
}

} // namespace

QByteArray packSteps(const QList<JournalStep>& steps, qsizetype from, qsizetype count)
{
    const qsizetype end = qMin(from + count, steps.size());
    StepWriter out(end - from);
    out.number(stepFormat);
    out.number(qint32(end - from));
    for (qsizetype i = from; i < end; ++i) {
        const JournalStep& step = steps[i];
        out.number(quint8(step.kind));
        out.place(step.target);
        if (hasSource(step.kind))
            out.place(step.source);
        out.text(step.stagedName);
        out.print(step.before);
        out.print(step.after);
    }
    return out.bytes();
}

bool unpackSteps(const QByteArray& bytes, QList<JournalStep>& steps)
{
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    quint8 format = 0;
    qint32 count = 0;
    in >> format >> count;
    if (format != stepFormat || count < 0)
        return false;
    for (qint32 i = 0; i < count && in.status() == QDataStream::Ok; ++i) {
        JournalStep step;
        quint8 kind = 0;
        QByteArray staged;
        in >> kind;
        step.kind = StepKind(kind);
        step.target = readPlace(in);
        if (hasSource(step.kind))
            step.source = readPlace(in);
        in >> staged;
        step.stagedName = QString::fromUtf8(staged);
        step.before = readPrint(in);
        step.after = readPrint(in);
        if (kind < quint8(StepKind::StagingFolder) || kind > quint8(StepKind::PlaceFirst))
            return false;
        steps.push_back(step);
    }
    return in.status() == QDataStream::Ok;
}

QStringList foldersOf(const Gate& gate, const QList<JournalStep>& steps)
{
    QStringList out;
    const auto add = [&](const QString& folder) {
        if (out.isEmpty() || out.last() != folder)
            out.push_back(folder);
    };
    for (const JournalStep& step : steps) {
        const QString target = gate.path(step.target);
        add(step.kind == StepKind::StagingFolder ? target : winpath::parent(target));
        if (step.source.root != RootId::None)
            add(winpath::parent(gate.path(step.source)));
    }
    return out;
}

ResultOf<QList<Recovery>> recover(Journal& journal, Gate& gate)
{
    const ResultOf<QList<JournalOperation>> operations = journal.unfinished();
    if (!operations)
        return operations.error();
    QList<Recovery> out;
    for (const JournalOperation& operation : *operations)
        out.push_back(recoverOne(journal, gate, operation));
    if (!out.isEmpty())
        gate.files().newOperation();
    return out;
}

} // namespace vt
