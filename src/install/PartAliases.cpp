#include "install/PartAliases.h"

#include "install/CAddonInstallationDetails.h"
#include "platform/Profile.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"
#include "simconfig/ConfigFacts.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString stemOf(aliastarget::Kind kind)
{
    return kind == aliastarget::Kind::Sound ? u"sound"_s : u"panel"_s;
}

/// Folders of this kind that the sections of an aircraft.cfg name, each once.
QStringList foldersOf(const AircraftEdit& edit, aliastarget::Kind kind, const AnsiCodec& ansi)
{
    const profile::ProfileFile cfg = profile::ProfileFile::ofBytes(edit.bytes, ansi);
    QStringList out;
    for (const QString& section : cfg.sections()) {
        if (!configfacts::isAircraftSection(section))
            continue;
        const QString value = cfg.value(section, stemOf(kind), u"").text;
        const QString folder = CAircraft::folderFor(
            edit.aircraft, stemOf(kind), configfacts::plainValue(QStringView(value)).toString());
        if (!out.contains(folder, Qt::CaseInsensitive))
            out.append(folder);
    }
    return out;
}

} // namespace

ConfigChange PartAlias::change() const
{
    return {file, {{u"[fltsim]"_s, u"alias="_s + alias}, {}}};
}

std::unique_ptr<AliasConfig>
partConfig(aliastarget::Kind kind, const ConfigAccess& access, const Context& context)
{
    if (kind == aliastarget::Kind::Sound)
        return std::make_unique<CSound>(access, context.services.files, context.global);
    return std::make_unique<CPanel>(access, context.services.files, context.global);
}

ResultOf<QString>
partAliasText(aliastarget::Kind kind, Context& context, const QString& typed, const QString& folder)
{
    const auto part = partConfig(kind, ConfigAccess(context.services), context);
    QString alias = QString(typed).replace(u'/', u'\\');
    for (const QString& at : {folder, QString(winpath::asFolder(folder) + stemOf(kind))}) {
        const QString file =
            winpath::join(at, aliastarget::configFileName(kind, winpath::withoutTrailing(at)));
        if (!context.services.files.isFile(file))
            continue;
        alias = part->Alias_TextFor(file);
        break;
    }
    if (Result fit = part->Alias_Check(alias); !fit)
        return Result::failure(u"'"_s + typed + u"' holds no "_s + stemOf(kind) +
                               u" that an aircraft could share. "_s + fit.text);
    return part->Alias_TextFor(part->sTargetFile);
}

QList<PartAlias> partAliases(const CAddonInstallationDetails& details,
                             Context& context,
                             const QList<AircraftEdit>& edits)
{
    QList<PartAlias> out;
    QSet<NoCase> brought;
    for (const CAddon_Item& item : details.addon().colAddonItems()) {
        const TypeGroup type = typeGroupOf(item.enumAddonFileType);
        if ((type == TypeGroup::PanelConfiguration || type == TypeGroup::SoundConfiguration) &&
            details.willBeInstalled(item))
            brought.insert(NoCase{item.sFolder_Installation + item.sName_Installation});
    }
    for (const auto& [kind, alias] :
         {std::pair{aliastarget::Kind::Panel, details.options().panelFrom},
          std::pair{aliastarget::Kind::Sound, details.options().soundFrom}}) {
        if (alias.isEmpty())
            continue;
        for (const AircraftEdit& edit : edits) {
            if (!edit.item || edit.merged || !edit.problem.isEmpty())
                continue;
            for (const QString& folder : foldersOf(edit, kind, context.services.ansi)) {
                const QString file = winpath::normalised(
                    folder + aliastarget::configFileName(kind, winpath::withoutTrailing(folder)));
                const bool taken =
                    brought.contains(NoCase{file}) || context.services.files.exists(file);
                if (!taken)
                    out.append({kind, file, alias, edit.item, {}});
            }
        }
    }
    return out;
}

QString partAliasResult(aliastarget::Kind kind, bool created)
{
    if (kind == aliastarget::Kind::Sound)
        return created ? u"Sound alias was created."_s : u"Sound alias was NOT properly created."_s;
    return created ? u"Panel alias was created."_s : u"Panel alias was NOT properly created."_s;
}

} // namespace vt
