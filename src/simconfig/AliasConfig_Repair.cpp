// Checking and mending a panel's or a sound's configuration. A repair changes an entry only where
// exactly one thing can be meant; what it cannot know stays and is told.
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AliasConfig.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

/// Files that are looked at below one panel or sound folder.
constexpr qsizetype treeLimit = 20'000;

/// Letters and digits only, without what a download adds to a name.
QString likeness(const QString& name)
{
    QString text = foldCase(name);
    for (const QStringView ending : {u"-master", u"-main"}) {
        if (text.endsWith(ending))
            text.chop(ending.size());
    }
    text.removeIf([](QChar c) { return !c.isLetterOrNumber(); });
    return text;
}

QString fileNotFound(const QString& file)
{
    return u"  The file '"_s + file + u"' was not found."_s;
}

} // namespace

// --- checking ----------------------------------------------------------------------------------

QString AliasConfig::stateProblem() const
{
    const int state = loadedState();
    const QString line = u"- "_s + stateMessage(state);
    switch (state) {
    case Good:
        return {};
    case FileMissing:
        return line + fileNotFound(sConfigurationFile);
    case ReferenceMissing:
        return line + (m_followed.problem.isEmpty() ? fileNotFound(m_followed.file)
                                                    : u"  "_s + m_followed.problem);
    case ReferenceNotValid:
        return line + u"  It refers to '"_s + m_followed.file + u"'."_s;
    case NoOriginal:
        if (sAlias.isEmpty())
            return {};
        return line + u"  It refers to '"_s + m_followed.file +
               u"', which refers to another one itself."_s;
    default:
        return m_own.unreadable.isEmpty() ? line : line + u"  "_s + m_own.unreadable;
    }
}

AliasConfig::Verification AliasConfig::Verify()
{
    Verification result;
    if (const QString problem = stateProblem(); !problem.isEmpty())
        result.problems.append(problem);
    if (m_own.original)
        result.problems += missingLines(m_own.lines, winpath::parent(sConfigurationFile));
    if (!m_own.unfit.isEmpty())
        result.problems.append(m_own.unfit);
    if (loadedState() == NoOriginal && sAlias.isEmpty())
        result.notes.append(stateMessage(NoOriginal));
    return result;
}

QString AliasConfig::Verify_Report_GetTitle() const
{
    return m_facts.reportTitle.toString();
}

QString AliasConfig::Verify_Report()
{
    const Verification found = Verify();
    QStringList lines = found.problems;
    lines.append(found.problems.isEmpty() ? m_facts.clean.toString()
                                          : m_facts.useRepair.toString());
    for (const QString& note : found.notes)
        lines.append(u"NOTE: "_s + note);
    return lines.join(u'\n');
}

// --- what a dangling alias may mean ------------------------------------------------------------

QStringList AliasConfig::filesNamed(const QString& folder,
                                    const QString& name,
                                    const QStringList& extensions) const
{
    auto tree = m_trees.constFind(folder);
    if (tree == m_trees.cend())
        tree = m_trees.insert(folder, m_files.filesBelow(folder, treeLimit));
    QStringList found;
    for (const QString& file : *tree) {
        if (equalNoCase(winpath::baseName(file), name) &&
            extensions.contains(winpath::extension(file), Qt::CaseInsensitive))
            found.append(file);
    }
    return found;
}

/// Folders of aircraft with that name; with one that differs in punctuation only when there are
/// none.
QStringList AliasConfig::aircraftFoldersLike(const QString& name) const
{
    QStringList exact;
    QStringList alike;
    for (const QString& top : m_global.aircraftTypeFolders) {
        for (const QString& folder : m_files.names(top)) {
            if (equalNoCase(folder, name))
                exact.append(top + folder + u'\\');
            else if (likeness(folder) == likeness(name))
                alike.append(top + folder + u'\\');
        }
    }
    return exact.isEmpty() ? alike : exact;
}

/// Configuration files of whole definitions below an aircraft: the one in \a folderName if it is
/// one, else all.
QStringList AliasConfig::originalsIn(const QString& aircraftFolder, const QString& folderName) const
{
    QStringList found;
    for (const QString& name : m_files.names(aircraftFolder)) {
        if (!startsWithNoCase(name, m_facts.noun))
            continue;
        const QString folder = aircraftFolder + name + u'\\';
        const QString file = folder + aliastarget::configFileName(m_facts.aliasKind, folder);
        // The sounds of an aircraft and those that others hear of it never stand for each other.
        if (!equalNoCase(winpath::name(file), winpath::name(sConfigurationFile)) ||
            winpath::same(file, sConfigurationFile) || !read(file).original)
            continue;
        if (equalNoCase(name, folderName))
            return {m_files.spelled(file)};
        found.append(m_files.spelled(file));
    }
    return found;
}

/// The alias that is meant when exactly one installed definition fits the one that leads nowhere;
/// else empty.
QString AliasConfig::fittingAlias() const
{
    QStringList parts = winpath::components(QString(sAlias).replace(u'/', u'\\'));
    parts.removeIf([](const QString& part) { return part == u".." || part == u"."; });
    if (!parts.isEmpty() && endsWithNoCase(parts.constLast(), u".cfg"))
        parts.removeLast();
    QString folderName;
    if (!parts.isEmpty() && startsWithNoCase(parts.constLast(), m_facts.noun))
        folderName = parts.takeLast();
    const QString ownAircraft =
        winpath::parent(winpath::withoutTrailing(winpath::parent(sConfigurationFile)));
    const QStringList folders =
        parts.isEmpty() ? QStringList{ownAircraft} : aircraftFoldersLike(parts.constLast());
    QStringList fitting;
    for (const QString& folder : folders)
        fitting += originalsIn(folder, folderName);
    return fitting.size() == 1 ? Alias_TextFor(fitting.constFirst()) : QString();
}

// --- mending -----------------------------------------------------------------------------------

void AliasConfig::mendAlias(Mending& mending) const
{
    const int state = loadedState();
    const bool chain = state == NoOriginal && !sAlias.isEmpty();
    if (state != ReferenceMissing && state != ReferenceNotValid && !chain)
        return;
    const QString alias = chain ? Alias_TextFor(m_followed.original) : fittingAlias();
    if (alias.isEmpty() || !ini::INI_Entry_Update(mending.lines, u"fltsim"_s, u"alias"_s, alias))
        return;
    mending.done.append(u"The alias '"_s + sAlias + u"' was changed to '"_s + alias + u"'."_s);
}

void AliasConfig::mendEntries(Mending& mending) const
{
    if (!m_own.original)
        return;
    for (const StandIn& standIn : standIns(mending.lines, winpath::parent(sConfigurationFile))) {
        const NamedFile& entry = standIn.entry;
        // Only the first entry of a name can be changed; another one is left and told.
        if (ini::INI_Entry_Get(mending.lines, entry.section, entry.key) != entry.value ||
            !ini::INI_Entry_Update(mending.lines, entry.section, entry.key, standIn.value))
            continue;
        mending.done.append(u"In ["_s + entry.section + u"] '"_s + entry.key + u'=' + entry.value +
                            u"' was changed to '"_s + entry.key + u'=' + standIn.value + u"'."_s);
    }
}

/// A definition that has all that it names is kept and the alias goes; one that lacks files gives
/// way to an alias that leads to a whole one, where that is allowed at all.
void AliasConfig::settleBoth(Mending& mending) const
{
    if (loadedState() != OriginalAndAlias)
        return;
    const bool whole = missingLines(mending.lines, winpath::parent(sConfigurationFile)).isEmpty();
    const bool aliasIsGood = m_followed.direct && unfitAsTarget(read(m_followed.file)) == Good;
    if (!whole && aliasIsGood && unfitAsAlias() == Good) {
        ResultOf<LineArray> lines = aliasLines(sAlias);
        if (!lines)
            return;
        mending.lines = *std::move(lines);
        mending.becomesAlias = true;
        mending.done.append(
            u"The definition lacks files, so the alias '"_s + sAlias +
            u"' was kept and the definition taken out; its backup lies beside it."_s);
        return;
    }
    while (ini::INI_Entry_Delete(mending.lines, u"fltsim"_s, u"alias"_s))
        ;
    const std::optional<LineArray> rest = ini::INI_Section_GetLines(mending.lines, u"fltsim"_s);
    if (rest && std::all_of(rest->lines.cbegin() + 1,
                            rest->lines.cend(),
                            [](const QByteArray& line) { return line.trimmed().isEmpty(); }))
        (void)ini::INI_Section_Delete(mending.lines, u"fltsim"_s);
    mending.done.append(u"The alias '"_s + sAlias +
                        u"' was taken out and the definition of its own kept."_s);
}

Result AliasConfig::saveMended(const Mending& mending)
{
    if (mending.becomesAlias) {
        if (Result kept = keepDefinition(); !kept)
            return kept;
    }
    return m_protocol->save(m_access, mending.lines);
}

/// A configuration file that is gone comes back from the backup that an earlier edit left.
void AliasConfig::restoreMissing(RepairResult& result)
{
    const QString backup = m_protocol->backupFile();
    const Definition kept = read(backup);
    if (!kept.original && (kept.alias.isEmpty() || follow(kept.alias).original.isEmpty()))
        return;
    const Result copied = m_access.actions.copy(backup, sConfigurationFile);
    if (copied)
        result.done.append(u"The file '"_s + sConfigurationFile +
                           u"' was brought back from its backup '"_s + backup + u"'."_s);
    else
        result.left.append(copied.text);
}

void AliasConfig::mend(RepairResult& result)
{
    if (!m_own.exists)
        return restoreMissing(result);
    if (!m_own.unreadable.isEmpty())
        return;
    Mending mending{m_own.lines, false, {}};
    if (!m_own.unfit.isEmpty())
        mending.done.append(u"'"_s + sConfigurationFile + u"': "_s + m_own.mended + u'.');
    mendAlias(mending);
    mendEntries(mending);
    settleBoth(mending);
    if (mending.done.isEmpty())
        return;
    if (const Result saved = saveMended(mending); saved)
        result.done = mending.done;
    else
        result.left.append(saved.text);
}

RepairResult AliasConfig::Repair()
{
    RepairResult result;
    Load(QString(sConfigurationFile));
    if (sConfigurationFile.isEmpty()) {
        result.left.append(State_GetMessage());
        return result;
    }
    if (Verify().problems.isEmpty()) {
        result.code = RepairResult::FullyRepaired;
        return result;
    }
    mend(result);
    Load(QString(sConfigurationFile));
    const QStringList problems = Verify().problems;
    result.left += problems;
    if (problems.isEmpty())
        result.code = RepairResult::FullyRepaired;
    else if (!result.done.isEmpty())
        result.code = RepairResult::PartlyRepaired;
    return result;
}

} // namespace vt
