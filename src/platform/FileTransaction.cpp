// The course of a transaction: begin, apply, abandon. What it does with folders and with files is
// in FileTransaction_Folders.cpp and FileTransaction_Files.cpp.
#include "platform/FileTransaction.h"

#include "platform/StepRunner.h"

#include <algorithm>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace vt {

FileTransaction::FileTransaction(Gate& gate, Journal& journal) : m_gate(gate), m_journal(journal) {}

FileTransaction::~FileTransaction()
{
    (void)abandon(); // who wants to tell calls it himself
}

Result FileTransaction::begin(OperationKind kind, const QString& label)
{
    Q_ASSERT(m_operation == 0);
    m_syncEach = !m_gate.breathing;
    // Its steps would meet what this one does.
    const ResultOf<QList<JournalOperation>> unfinished = m_journal.unfinished();
    if (!unfinished)
        return unfinished.error();
    if (!unfinished->isEmpty())
        return Result::failure(u"The work on '"_s + unfinished->first().label +
                               u"' has not ended yet; it is ended at the next start."_s);
    if (const int error = m_gate.fault("commit", "begin"))
        return Result::failure(hostfile::errorText(error));
    // Recovery must not take another simulator's folder for this one.
    JournalStep home;
    home.kind = StepKind::StagingFolder;
    home.target = {RootId::Simulator, {}};
    home.stagedName = m_gate.identity(RootId::Simulator);
    if (!home.stagedName.isEmpty())
        m_undo.push_back(home);
    const ResultOf<qint64> begun = m_journal.begin(kind, label, m_undo);
    if (!begun)
        return begun.error();
    m_operation = *begun;
    m_stagedStart = QString::fromLatin1(stagedPrefix(m_operation));
    return Result::success();
}

ResultOf<QList<StepFailure>> FileTransaction::apply(const QByteArray& closing,
                                                    const std::function<Result()>& records)
{
    Q_ASSERT(m_operation != 0);
    if (m_refusedAny)
        dropUnusedFolders();
    QList<JournalStep> steps;
    steps.reserve(m_steps.size() + m_stagedRoots.size() + m_lastSteps.size() + m_undo.size());
    for (const JournalStep& step : std::as_const(m_steps)) {
        if (step.target.root != RootId::None && step.kind == StepKind::PlaceFirst)
            steps.push_back(step);
    }
    for (const StagedRoot& root : std::as_const(m_stagedRoots)) {
        const ResultOf<Place> target = m_gate.place(root.path);
        if (!target)
            return target.error();
        JournalStep step;
        step.kind = StepKind::PlaceFolder;
        step.target = *target;
        step.stagedName = root.stagedName;
        steps.push_back(step);
    }
    for (const JournalStep& step : std::as_const(m_steps)) {
        if (step.target.root != RootId::None && step.kind != StepKind::PlaceFirst)
            steps.push_back(step);
    }
    steps += m_lastSteps;
    for (const JournalStep& step : std::as_const(m_undo)) {
        if (step.kind == StepKind::StagingFolder)
            steps.push_back(step);
    }
    for (auto it = m_folders.cbegin(); it != m_folders.cend(); ++it) {
        if (it->staged)
            m_madeFolders.push_back(it.key().text + u'\\');
    }
    std::sort(m_madeFolders.begin(), m_madeFolders.end(), [](const QString& a, const QString& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });

    if (Result synced = syncStaged(); !synced)
        return Result::failure(synced.text + u" Nothing was changed."_s, synced.kind);
    if (const int error = m_gate.fault("commit", "apply"))
        return Result::failure(hostfile::errorText(error));
    if (Result applied = m_journal.apply(m_operation, steps, closing, records); !applied)
        return applied;

    // From here on the operation is completed, now or by recover().
    const qint64 operation = std::exchange(m_operation, 0);
    m_folders.clear();
    m_last = {};
    m_pending.clear();
    StepRunner runner(m_gate, operation);
    runner.believeUntil(m_believedUntil.value_or(QDeadlineTimer()));
    const StepRunner::Completion done = runner.complete(m_journal, steps);
    m_gate.files().newOperation();
    if (!done.unfinished.isEmpty())
        m_closingFailure = u"The files were changed, but the work could not be ended: "_s +
                           done.unfinished + u" It is ended at the next start."_s;
    return done.failures;
}

Result FileTransaction::syncStaged()
{
    if (!m_stagedAny || !m_syncFailure)
        return m_syncFailure;
    QSet<dev_t> seen;
    for (auto it = m_folders.cbegin(); it != m_folders.cend(); ++it) {
        const Folder& folder = *it;

        struct stat st
        {};

        if (!m_syncEach && (fstat(folder.fd->get(), &st) != 0 || seen.contains(st.st_dev)))
            continue;
        seen.insert(st.st_dev);
        const int fault = m_gate.fault("sync folder", folder.host);
        const Result synced = m_syncEach
                                  ? hostfile::syncFolder(folder.fd->get(), fault)
                                  : hostfile::syncFileSystem(folder.host, fault, m_gate.breathing);
        if (!synced)
            return Result::failure(u"What was prepared in '"_s + it.key().text +
                                       u"' is not safe: "_s + synced.text,
                                   synced.kind);
    }
    return Result::success();
}

Result FileTransaction::abandon()
{
    if (m_operation == 0)
        return Result::success();
    m_folders.clear();
    m_last = {};
    m_pending.clear();
    StepRunner runner(m_gate, m_operation);
    const QStringList left = runner.undo(m_undo);
    m_gate.files().newOperation();
    const int fault = m_gate.fault("commit", "forget");
    Result done = !left.isEmpty() ? Result::failure(left.first())
                  : fault != 0    ? Result::failure(hostfile::errorText(fault))
                                  : m_journal.forget(m_operation);
    m_operation = 0;
    if (!done)
        done.text = u"What had been prepared could not be taken back: "_s + done.text +
                    u" It is taken back at the next start."_s;
    return done;
}

} // namespace vt
