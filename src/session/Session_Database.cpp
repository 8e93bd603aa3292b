// The steps of a Session that write: lock, folders, database, interrupted work, and the end.
#include "addondb/JournalTable.h"
#include "session/SessionParts.h"
#include "shell/OuterLinks.h"
#include "shell/startup/Preparation.h"

using namespace Qt::StringLiterals;

namespace vt {

QString operationWord(OperationKind kind)
{
    switch (kind) {
    case OperationKind::Installation:
        return u"installation"_s;
    case OperationKind::Removal:
        return u"removal"_s;
    case OperationKind::Repair:
        return u"repair"_s;
    case OperationKind::Configuration:
        break;
    }
    return u"configuration"_s;
}

QString recoverySentence(const Recovery& recovery)
{
    QString text = u"An interrupted "_s + operationWord(recovery.operation.kind) + u" of '"_s +
                   recovery.operation.label + u"' was "_s + recovery.outcome;
    if (!recovery.texts.isEmpty())
        text += u"; "_s + recovery.texts.first();
    return text.endsWith(u'.') ? text : text + u'.';
}

/// The database, made when the program folder is \a fresh.
Result Session::Parts::openForWriting(bool fresh, bool repair)
{
    OpenedDatabase opened;
    if (files->isFile(global.databaseFile)) {
        opened = Connection::open(*files, global.databaseFile, OpenMode::ReadWrite);
        if (repair && opened.fault == DatabaseFault::Damaged) {
            care = DatabaseCare(*context).repair();
            if (!care->result)
                return unfit(care->result.text);
            opened = Connection::open(*files, global.databaseFile, OpenMode::ReadWrite);
        }
    } else if (fresh) {
        opened = Connection::create(*gate, global.databaseFile);
    } else {
        const Prompt missing = missingDatabase(global);
        return unfit(missing.text.trimmed());
    }
    if (!opened.connection)
        return unfit(opened.result.text);
    database = std::move(opened.connection);
    database->setBreathing(gate->breathing);
    return Result::success();
}

/// Interrupted work comes before the care for the file, which is written anew only when nothing is
/// left undone.
Result Session::Parts::openDatabase(const WritingNeeds& needs, bool fresh)
{
    if (Result finished = DatabaseCare(*context).finishReplacement(); !finished)
        return unfit(finished.text);
    if (Result opened = openForWriting(fresh, needs.repair); !opened)
        return opened;
    Result finished = finishInterrupted();
    if (!finished && needs.repair && !care && database && !database->trouble()) {
        // The journal itself lies in what is damaged.
        database.reset();
        care = DatabaseCare(*context).repair();
        finished = care->result ? openForWriting(false, false) : care->result;
        if (finished)
            finished = finishInterrupted();
    }
    if (!finished)
        return owner.withCause(finished);
    if (needs.tellRecoveries)
        for (const Recovery& recovery : std::as_const(recoveries))
            tell(recoverySentence(recovery));
    return bringUpToDate();
}

/// An older database gets what it lacks.
Result Session::Parts::bringUpToDate()
{
    const ResultOf<QList<LackingPart>> lacking = database->lacking();
    if (!lacking)
        return unfit(lacking.text);
    if (lacking->isEmpty() && database->isPresentStructure())
        return Result::success();
    database.reset();
    const CareReport upgraded = DatabaseCare(*context).upgrade();
    if (!care)
        care = upgraded;
    if (!upgraded.result)
        return unfit(upgraded.result.text);
    return openForWriting(false, false);
}

/// When enough was changed since the last time.
void Session::Parts::optimizeWhenDue()
{
    if (!database || database->readOnly() || !optimizationDue(*settings))
        return;
    database.reset();
    if (const CareReport report = DatabaseCare(*context).optimize(false); !report.result)
        tell(report.result.text);
}

/// What an earlier run left in the journal is undone or completed.
Result Session::Parts::finishInterrupted()
{
    JournalTable journal(*database, *gate);
    const ResultOf<QList<JournalOperation>> unfinished = journal.unfinished();
    if (!unfinished)
        return unfit(unfinished.text);
    if (unfinished->isEmpty())
        return Result::success();
    if (const Result simulator = locate(false); !simulator)
        return unfit(u"An interrupted "_s + operationWord(unfinished->first().kind) + u" of '"_s +
                     unfinished->first().label + u"' cannot be finished. "_s + simulator.text);
    QStringList folders;
    for (const JournalOperation& operation : *unfinished) {
        if (const ResultOf<QList<JournalStep>> steps = journal.steps(operation.id))
            folders += foldersOf(*gate, *steps);
    }
    (void)outerlinks::confirm(*context, folders); // work behind one that stays closed waits
    ResultOf<QList<Recovery>> done = recover(journal, *gate);
    if (!done)
        return unfit(done.text);
    recoveries = *done;
    files->newOperation();
    for (const Recovery& recovery : recoveries)
        for (const QString& text : recovery.texts)
            errors->report(u"Application_Startup : Recovery"_s, text);
    for (const Recovery& recovery : recoveries) {
        if (recovery.outcome == u"failed")
            return unfit(u"The interrupted "_s + operationWord(recovery.operation.kind) +
                         u" of '"_s + recovery.operation.label + u"' could not be finished. "_s +
                         recovery.texts.value(0));
    }
    return Result::success();
}

/// The lock, and what is done first under it.
Result Session::Parts::hold()
{
    buildContext();
    if (!registryResult)
        return unfit(registryResult.text);
    if (Result made = actions->makeFolder(global.programFolder); !made)
        return unfit(made.text);
    if (Result held = lock.tryLock(*gate, global.programFolder); !held)
        return unfit(held.text);
    files->newOperation();
    (void)actions->remove(global.programFile(u"DEVTEST.LOG"_s));
    errors->startWriting();
    fresh = programFolderIsFresh(*files, global);
    return Result::success();
}

void Session::Parts::warnOfSize() const
{
    const qint64 bytes = files->info(global.databaseFile).value_or(FileInfo{}).size;
    if (const QString text = databaseSizeText(global.names, bytes); !text.isEmpty())
        prompts.ask(announcement(u"Database Warning"_s, text, Icon::Warning));
}

Result Session::Parts::prepareWriting(const WritingNeeds& needs)
{
    if (Result held = hold(); !held)
        return held;
    (void)locate(false); // a command that needs a simulator says so itself
    if (Result made = createProgramFolders(*context); !made)
        return made;
    // Before the first copies: a folder that holds those without a database is a damaged one.
    if (Result opened = openDatabase(needs, fresh); !opened)
        return opened;
    warnOfSize();
    (void)keepOriginals(*context); // logged; no reason to refuse the command
    return located.valid() ? offerRegistryUpdate(*context, *registryClass, located)
                           : Result::success();
}

Result Session::hold()
{
    return m->hold();
}

Result Session::prepareFolders()
{
    if (Result made = createProgramFolders(*m->context); !made)
        return made;
    if (m->fresh)
        if (Result opened = m->openForWriting(true, false); !opened)
            return opened;
    (void)keepOriginals(*m->context); // logged, and told where it matters
    return Result::success();
}

Result Session::openDatabase()
{
    if (Result finished = DatabaseCare(*m->context).finishReplacement(); !finished)
        return unfit(finished.text);
    if (!m->database) {
        if (!m->files->isFile(m->global.databaseFile))
            return unfit(missingDatabase(m->global).text.trimmed());
        OpenedDatabase opened =
            Connection::open(*m->files, m->global.databaseFile, OpenMode::ReadWrite);
        if (opened.fault == DatabaseFault::Damaged)
            return Result::success();
        if (!opened.connection)
            return unfit(opened.result.text);
        m->database = std::move(opened.connection);
        m->database->setBreathing(m->gate->breathing);
    }
    if (Result finished = m->finishInterrupted(); !finished)
        return withCause(finished);
    for (const Recovery& recovery : std::as_const(m->recoveries))
        m->tell(recoverySentence(recovery));
    return Result::success();
}

Result Session::bringUpToDate()
{
    m->writingResult = m->database ? m->bringUpToDate()
                                   : unfit(u"The addon database, '"_s + m->global.databaseFile +
                                           u"', cannot be used as it is."_s);
    m->databaseResult = m->writingResult;
    return *m->writingResult;
}

Result Session::needWriting(const WritingNeeds& needs)
{
    if (m->writingResult)
        return *m->writingResult;
    m->writingResult = m->prepareWriting(needs);
    m->databaseResult = m->writingResult;
    if (!m->writingResult->ok)
        m->lock.release();
    return *m->writingResult;
}

Result Session::needLock()
{
    (void)context();
    return m->files->isFolder(m->global.programFolder)
               ? m->lock.tryLock(*m->gate, m->global.programFolder)
               : Result::success();
}

Result Session::needDatabase()
{
    if (m->databaseResult)
        return *m->databaseResult;
    (void)context();
    if (!m->files->isFile(m->global.databaseFile)) {
        m->databaseResult = Result::success();
        if (!programFolderIsFresh(*m->files, m->global)) {
            const Prompt missing = missingDatabase(m->global);
            m->databaseResult = unfit(missing.text.trimmed());
        }
        return *m->databaseResult;
    }
    OpenedDatabase opened = Connection::open(*m->files, m->global.databaseFile, OpenMode::ReadOnly);
    m->database = std::move(opened.connection);
    m->databaseResult = m->database ? Result::success() : unfit(opened.result.text);
    if (m->database && !m->database->isPresentStructure()) {
        const ResultOf<QList<LackingPart>> lacking = m->database->lacking();
        if (!lacking || !lacking->isEmpty())
            m->databaseResult = unfit(
                u"The add-on database '"_s + m->global.databaseFile +
                u"' was made by an earlier version and lacks what this one needs; 'vantrelctl database upgrade' adds it."_s);
    }
    return *m->databaseResult;
}

CareReport Session::careForDatabase(const std::function<CareReport(DatabaseCare&)>& work)
{
    m->database.reset();
    DatabaseCare care(*m->context);
    CareReport report = work(care);
    if (Result opened = m->openForWriting(false, false); !opened && report.result)
        report.result = opened;
    return report;
}

const std::optional<CareReport>& Session::careTaken() const
{
    return m->care;
}

Connection* Session::database()
{
    return m->database.get();
}

const QList<Recovery>& Session::recoveries() const
{
    return m->recoveries;
}

Result Session::withCause(const Result& failure) const
{
    const Connection* database = m->database.get();
    if (!database || database->trouble() || failure.text.contains(database->trouble().text))
        return failure;
    const QString text = failure.text.trimmed();
    return Result::failure(text + u' ' + database->trouble().text, database->trouble().kind);
}

void Session::close()
{
    if (m->lock.held()) {
        m->optimizeWhenDue();
        if (m->catalogue)
            (void)m->catalogue->save(*m->services);
        (void)saveRegistry();
    }
    if (m->errors)
        m->errors->flush();
}

} // namespace vt
