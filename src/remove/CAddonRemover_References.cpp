// What a removal does for aircraft, panels and sounds that stay but use a panel or sound that goes:
// it asks, and lets them refer to another one.
#include "addondb/AddonDatabase.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

std::unique_ptr<AliasConfig>
partOf(Catalogue::Kind kind, const ConfigAccess& access, const Context& context)
{
    if (kind == Catalogue::Kind::Sound)
        return std::make_unique<CSound>(access, context.services.files, context.global);
    return std::make_unique<CPanel>(access, context.services.files, context.global);
}

} // namespace

Result CAddonRemover::Remove_Sound_CheckSoundDependencies()
{
    return checkReferences(Catalogue::Kind::Sound, m_options.soundInstead);
}

Result CAddonRemover::Remove_Panel_CheckPanelDependencies()
{
    return checkReferences(Catalogue::Kind::Panel, m_options.panelInstead);
}

QList<PartReference> CAddonRemover::Remove_Sound_GetSoundReferences() const
{
    return partreferences::find(*m_catalogue, Catalogue::Kind::Sound, m_going);
}

QList<PartReference> CAddonRemover::Remove_Panel_GetPanelReferences() const
{
    return partreferences::find(*m_catalogue, Catalogue::Kind::Panel, m_going);
}

Result CAddonRemover::checkReferences(Catalogue::Kind kind, const QString& instead)
{
    if (m_going.parts.isEmpty())
        return Result::success();
    QList<PartReference> references = kind == Catalogue::Kind::Sound
                                          ? Remove_Sound_GetSoundReferences()
                                          : Remove_Panel_GetPanelReferences();
    if (references.isEmpty())
        return Result::success();
    Result decided = instead.isEmpty() ? askReferences(kind, references)
                                       : assignReferences(kind, references, instead);
    m_references += references;
    return decided;
}

Result CAddonRemover::assignReferences(Catalogue::Kind kind,
                                       QList<PartReference>& references,
                                       const QString& instead)
{
    const auto part = partOf(kind, ConfigAccess(m_context.services), m_context);
    const Result fit = part->Alias_Check(instead);
    const bool goes = fit && m_going.files.contains(NoCase{part->sTargetFile});
    if (!fit || goes)
        return Result::failure(
            u"'"_s + instead + u"' cannot take the place of '"_s + references.first().name +
            u"'. "_s + (goes ? u"It belongs to the add-on that is to be removed."_s : fit.text));
    for (PartReference& reference : references)
        reference.instead = instead;
    return Result::success();
}

Result CAddonRemover::askReferences(Catalogue::Kind kind, QList<PartReference>& references)
{
    const auto part = partOf(kind, ConfigAccess(m_context.services), m_context);
    const auto standIns = partreferences::standIns(*m_catalogue, kind, m_going);
    QStringList users;
    for (const PartReference& reference : std::as_const(references))
        users += reference.users;
    users.removeDuplicates();
    const auto declined = [this] {
        const QString text = u"'"_s + m_record.name + u"' was not removed."_s;
        m_results.add(resultgroup::notProcessed, text);
        return Result::failure(text, ErrorKind::Declined);
    };
    Prompts& prompts = m_context.services.prompts;
    const Prompt question = partreferences::confirmRemoval(kind, users, !standIns.isEmpty());
    const CheckedAnswer answer = question.checkBox.isEmpty()
                                     ? CheckedAnswer{prompts.ask(question), false}
                                     : prompts.askChecked(question);
    if (answer.button != Button::Yes)
        return declined();
    if (!answer.checked)
        return Result::success();
    for (PartReference& reference : references) {
        const auto chosen =
            prompts.choose(partreferences::selectStandIn(kind, reference.name, standIns));
        if (!chosen)
            return declined();
        reference.instead = part->Alias_TextFor(standIns[*chosen].file);
    }
    return Result::success();
}

/// After the add-on's own files: an alias may come to lie where one of them was.
Result CAddonRemover::References_Update()
{
    Result last = Result::success();
    for (const PartReference& reference : std::as_const(m_references)) {
        if (reference.instead.isEmpty())
            continue;
        const Catalogue::Kind kind = kindOf(reference);
        status(partreferences::updatingText(kind));
        QStringList files = reference.aliases;
        if (reference.direct)
            files.append(reference.file);
        for (const QString& file : std::as_const(files)) {
            RepointedFile repointed{kind, file, repoint(kind, file, reference.instead).text};
            if (!repointed.problem.isEmpty()) {
                last = Result::failure(repointed.problem);
                m_log.line(QString(u"   "_s + repointed.problem));
            }
            m_repointed.append(repointed);
        }
    }
    return last;
}

Catalogue::Kind CAddonRemover::kindOf(const PartReference& reference)
{
    return equalNoCase(winpath::name(reference.file), u"panel.cfg") ? Catalogue::Kind::Panel
                                                                    : Catalogue::Kind::Sound;
}

Result CAddonRemover::repoint(Catalogue::Kind kind, const QString& file, const QString& alias)
{
    Services& services = m_context.services;
    const auto standing = services.files.info(file);
    const ResultOf<QList<DetailRecord>> owners =
        modDatabase_Addon::ownersOf(m_database, winpath::parent(file), winpath::name(file));
    if (!owners)
        return owners.error();
    const auto part =
        partOf(kind, ConfigAccess(*m_actions, services.prompts, services.ansi), m_context);
    (void)part->Load(file); // its present target goes, so its state is bad
    if (Result set = part->Alias_Set(alias); !set)
        return set;
    if (standing && !owners->isEmpty() && owners->constLast().masterKey != m_masterKey)
        return noteEdited(owners->constLast(), *standing);
    return Result::success();
}

void CAddonRemover::tellReferences(const QList<StepFailure>& failures)
{
    for (const Catalogue::Kind kind : {Catalogue::Kind::Sound, Catalogue::Kind::Panel}) {
        bool any = false;
        bool updated = true;
        for (const RepointedFile& one : std::as_const(m_repointed)) {
            if (one.kind != kind)
                continue;
            any = true;
            const bool failed =
                !one.problem.isEmpty() ||
                std::any_of(failures.cbegin(), failures.cend(), [&](const StepFailure& failure) {
                    return winpath::isBelow(one.file, failure.path);
                });
            updated = updated && !failed;
            if (!one.problem.isEmpty())
                m_results.addCause(one.file, one.problem);
        }
        if (!any)
            continue;
        m_anyFailed = m_anyFailed || !updated;
        m_results.add(updated ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                      partreferences::updatedText(kind, updated));
    }
}

} // namespace vt
