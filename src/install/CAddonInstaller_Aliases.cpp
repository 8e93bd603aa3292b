// What an installation does for the panels and sounds that its aircraft share with installed ones.
#include "install/CAddonInstaller.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

Result CAddonInstaller::PartAliases_Create()
{
    if (m_details.options().to == InstallTo::Cabinet)
        return Result::success();
    Result last = Result::success();
    for (const PartAlias& planned : partAliases(m_details, m_context, m_aircraftEdits)) {
        const bool wanted = std::any_of(m_files.cbegin(), m_files.cend(), [&](const File& file) {
            return file.item->lngKey == planned.item && file.code == InstallCode::Installed;
        });
        if (!wanted)
            continue; // the aircraft did not come
        StagedAlias& staged = m_aliases.emplaceBack();
        staged.alias = planned;
        m_log.line(QString(u"Create alias "_s + planned.file));
        if (Result made = createAlias(staged); !made) {
            staged.alias.problem = made.text;
            m_log.line(QString(u"   "_s + made.text));
            last = made;
        }
    }
    return last;
}

Result CAddonInstaller::createAlias(StagedAlias& staged)
{
    Services& services = m_context.services;
    const PartAlias& alias = staged.alias;
    const auto part = partConfig(
        alias.kind, ConfigAccess(*m_actions, services.prompts, services.ansi), m_context);
    (void)part->Load(alias.file); // it is not there yet
    if (Result set = part->Alias_Set(alias.alias); !set)
        return set;
    const ResultOf<QByteArray> bytes = m_actions->read(alias.file, configFileLimit);
    if (!bytes)
        return bytes.error();
    const auto info = m_actions->info(alias.file);
    staged.check = {bytes->size(), info ? info->modifiedNs : -1, xxh3(*bytes)};
    return Result::success();
}

void CAddonInstaller::tellAliases()
{
    for (const StagedAlias& staged : std::as_const(m_aliases)) {
        const bool created = staged.alias.problem.isEmpty();
        m_results.add(created ? resultgroup::specialActions : resultgroup::failedSpecialActions,
                      partAliasResult(staged.alias.kind, created));
        if (created)
            continue;
        ++m_failedFiles;
        m_results.addCause(staged.alias.file, staged.alias.problem);
    }
}

} // namespace vt
