// Checks before an installation, with the texts that a user sees.
#include "install/AircraftEdits.h"
#include "install/CAddonInstallationDetails.h"
#include "install/TrafficEdits.h"
#include "platform/Gate.h"
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "traffic/CAFCAD.h"
#include "traffic/CTrafficTools.h"
#include "traffic/OutsideTool.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

QString plantext::noValidTargetFolder(const QString& folder)
{
    const QString shown = folder.isEmpty() ? plantext::notSelected() : folder;
    return u"A file you are installing does not have a valid target folder. Look for a file with a target folder of "_s +
           shown + u". Specify a valid target folder for this file."_s;
}

namespace {

QString sameTarget()
{
    return u"A file you are installing has the same name and target folder as another file. You can resolve the problem in one of three ways:"_s +
           u'\n' + u"1) Flag one of the files 'Do Not Install'."_s + u'\n' +
           u"2) Rename one of the files."_s + u'\n' +
           u"3) Specify a different target folder for one of the files."_s + u'\n' +
           u"To learn more about this issue press Help."_s;
}

QString variantProblem(const QString& name)
{
    return u"There is a problem with the aircraft variant configuration related to "_s + name;
}

QString libraryProblem(const QString& name)
{
    return u"There is a problem with the scenery library configuration related to "_s + name;
}

Result selectFolderFirst()
{
    return Result::failure(u"Please select a valid folder first."_s);
}

/// Why a repaint cannot be installed; empty when it can.
QString textureGroupProblem(const InstallationGroup& group)
{
    if (!group.asRepaint())
        return {};
    if (group.baseMissing)
        return u"Could not locate base aircraft."_s;
    if (group.aircraftFolder.isEmpty())
        return u"No aircraft folder has been specified."_s;
    for (const VariantDetails& variant : group.variants) {
        if (variant.title.trimmed().isEmpty() || variant.variation.trimmed().isEmpty())
            return u"Aircraft variant details have not been specified or are incomplete."_s;
    }
    return {};
}

bool lacksTitle(const InstallationGroup& group)
{
    return group.family == MappedGroup::Scenery && group.sceneryLibraryUpdate &&
           group.sceneryTitle.trimmed().isEmpty();
}

} // namespace

Prompt plantext::addonFileProblem(const QString& text)
{
    return announcement(u"Addon File Problem"_s, text, Icon::Warning);
}

Result CAddonInstallationDetails::ValidateItemName(const QString& name)
{
    if (name.trimmed().isEmpty())
        return Result::failure(u"Please enter a name for this item."_s);
    if (!winpath::checkComponent(name))
        return Result::failure(u"Please enter a valid name for this item."_s);
    return Result::success();
}

bool CAddonInstallationDetails::renamingMayHarm(FileType type)
{
    const TypeGroup group = typeGroupOf(type);
    return group != TypeGroup::DocumentAndOther && group != TypeGroup::Scenery;
}

bool CAddonInstallationDetails::usableFolder(const QString& folder) const
{
    if (folder.isEmpty() || !winpath::isAbsolute(folder))
        return false;
    const ResultOf<Place> place = m_context.services.gate.place(folder);
    return place && place->root != RootId::Chosen; // that one is gone with this call
}

Result CAddonInstallationDetails::InstallationFolders_Validate(MappedGroup family) const
{
    const QString* last = nullptr;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (item.enumMappedGroup != family || !item.boolProcess)
            continue;
        if (last && last->constData() == item.sFolder_Installation.constData())
            continue;
        last = &item.sFolder_Installation;
        if (!usableFolder(item.sFolder_Installation))
            return Result::failure(plantext::noValidTargetFolder(item.sFolder_Installation));
    }
    for (const QList<qint32>& keys : m_addon->duplicateTargets()) {
        for (const qint32 key : keys) {
            if (m_addon->Search(key)->enumMappedGroup == family)
                return Result::failure(sameTarget());
        }
    }
    return Result::success();
}

Result CAddonInstallationDetails::AI_InstallationFolders_Validate() const
{
    if (Result traffic = InstallationFolders_Validate(MappedGroup::TrafficTools); !traffic)
        return traffic;
    return InstallationFolders_Validate(MappedGroup::Afcad);
}

Result CAddonInstallationDetails::AI_InstallationChoices_ValidateFolder(MappedGroup family,
                                                                        const QString& folder) const
{
    const OutsideTool tool =
        family == MappedGroup::Afcad ? CAFCAD::tool(m_context) : CTrafficTools::tool(m_context);
    const Files& files = m_context.services.files;
    if (!winpath::isAbsolute(folder) || !files.isFolder(folder))
        return selectFolderFirst();
    const Result whole = outsidetool::check(files, tool, winpath::asFolder(folder));
    return whole ? whole : Result::failure(tool.invalid + u' ' + whole.text);
}

Result CAddonInstallationDetails::Options_InstallationChoices_Validate() const
{
    if (m_addon->sGroupName.trimmed().isEmpty())
        return Result::failure(u"Enter a name for this addon."_s);
    return Result::success();
}

Result CAddonInstallationDetails::InstallationChoices_Validate(MappedGroup family) const
{
    for (const InstallationGroup& group : groups(family)) {
        if (!anyMarked(group))
            continue;
        if (family == MappedGroup::Texture) {
            const QString problem = textureGroupProblem(group);
            if (!problem.isEmpty())
                return Result::failure(variantProblem(group.name) + u". "_s + problem);
        }
        if (lacksTitle(group))
            return Result::failure(libraryProblem(group.name) +
                                   u". Scenery library title is not specified."_s);
    }
    return InstallationFolders_Validate(family);
}

QList<FamilyFailure> CAddonInstallationDetails::invalidFamilies() const
{
    if (installTo() == InstallTo::Cabinet) {
        // The archive keeps each file under its place in the simulator.
        const auto there = Clone();
        there->Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
        return there->invalidFamilies();
    }
    QList<FamilyFailure> out;
    for (const MappedGroup family : pageFamilies()) {
        const Result valid = family == MappedGroup::TrafficTools
                                 ? AI_InstallationFolders_Validate()
                                 : InstallationChoices_Validate(family);
        if (!valid)
            out.append({family,
                        u"Correct the problem with the "_s + problemWord(family) +
                            u" configuration and try again."_s,
                        valid.text});
    }
    return out;
}

bool CAddonInstallationDetails::AddonItemGroup_IsAnythingMarkedForInstall() const
{
    const std::vector<CAddon_Item>& items = m_addon->colAddonItems();
    return std::any_of(
        items.begin(), items.end(), [](const CAddon_Item& item) { return item.boolProcess; });
}

QString PlanProblem::sentence(const CAddon_ItemGroup& addon) const
{
    const CAddon_Item* file = item > 0 ? addon.Search(item) : nullptr;
    if (!file || containsNoCase(text, file->sName))
        return text;
    return u"'"_s + file->sFolder_Current + file->sName + u"': "_s + text;
}

QList<SceneryAreaToAdd> PlanFacts::sceneryAreas() const
{
    QList<SceneryAreaToAdd> areas = library.areas;
    areas.removeIf([](const SceneryAreaToAdd& area) { return !area.refusal.isEmpty(); });
    return areas;
}

QList<ConfigChange> PlanFacts::configChanges() const
{
    QList<ConfigChange> changes;
    for (const AircraftEdit& edit : aircraft) {
        if (!edit.lines.isEmpty())
            changes.append({edit.file, edit.lines});
    }
    for (const PartAlias& alias : aliases)
        changes.append(alias.change());
    if (!library.change.lines.isEmpty())
        changes.append(library.change);
    return changes + traffic;
}

QList<PlannedVariant> PlanFacts::variants() const
{
    QList<PlannedVariant> out;
    for (const AircraftEdit& edit : aircraft) {
        for (const AddedVariation& added : edit.added)
            out.append({added.title, added.variation, added.texture, edit.aircraft, edit.file});
    }
    return out;
}

Result PlanFacts::installable(const CAddon_ItemGroup& addon) const
{
    for (const PlanProblem& problem : problems) {
        if (problem.blocks)
            return Result::failure(problem.sentence(addon));
    }
    return Result::success();
}

/// A panel or sound that was to be shared but finds no aircraft to use it.
void CAddonInstallationDetails::addSharedProblems(PlanFacts& facts) const
{
    for (const auto& [kind, alias, word] :
         {std::tuple{aliastarget::Kind::Panel, m_options.panelFrom, u"panel"_s},
          std::tuple{aliastarget::Kind::Sound, m_options.soundFrom, u"sound"_s}}) {
        const bool used =
            std::any_of(facts.aliases.cbegin(),
                        facts.aliases.cend(),
                        [&, wanted = kind](const PartAlias& one) { return one.kind == wanted; });
        if (!alias.isEmpty() && !used)
            facts.problems.append({0,
                                   u"No aircraft of the add-on lacks a "_s + word +
                                       u", so none shares '"_s + alias + u"'."_s,
                                   false});
    }
}

void CAddonInstallationDetails::addTextureProblems(QList<PlanProblem>& out) const
{
    for (const InstallationGroup& group : groups(MappedGroup::Texture)) {
        const QString text = textureGroupProblem(group);
        if (text.isEmpty() || !anyMarked(group))
            continue;
        const auto first =
            std::find_if(group.items.cbegin(), group.items.cend(), [this](qint32 key) {
                return m_addon->Search(key)->boolProcess;
            });
        out.append({*first, text + u' ' + variantProblem(group.name), true});
    }
}

void CAddonInstallationDetails::addFolderProblems(QList<PlanProblem>& out) const
{
    QSet<QString> seen;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (!item.boolProcess)
            continue;
        const QString& folder = item.sFolder_Installation;
        if (!folder.isEmpty() && seen.contains(folder))
            continue;
        const bool told =
            item.IsMappedToTextureGroup() && folder.isEmpty() &&
            !textureGroupProblem(groups(MappedGroup::Texture)[size_t(item.groupIndex)]).isEmpty();
        const bool unsafe = folder.isEmpty() &&
                            std::any_of(out.cbegin(), out.cend(), [&item](const PlanProblem& p) {
                                return p.item == item.lngKey;
                            });
        if (told || unsafe || seen.contains(folder))
            continue;
        seen.insert(folder);
        if (usableFolder(folder))
            continue;
        out.append({item.lngKey, plantext::noValidTargetFolder(folder), true});
    }
}

void CAddonInstallationDetails::addLinkProblems(QList<PlanProblem>& out) const
{
    QStringList told;
    for (const CAddon_Item* item : firstInFolders()) {
        const auto link = m_context.services.gate.outerLink(item->sFolder_Installation);
        if (!link || told.contains(link->link))
            continue;
        told.append(link->link);
        const QString name = u"'"_s + link->link + u"' is a link that leads "_s;
        out.append(
            {item->lngKey,
             link->target.isEmpty()
                 ? QString(name + u"nowhere at present; the files behind it cannot be installed."_s)
                 : QString(
                       name + u"out of the simulator's folder, to '"_s + link->target +
                       u"'. The installation asks once whether it may be used; without a Yes the files behind it are not installed."_s),
             false});
    }
}

void CAddonInstallationDetails::addTargetProblems(QList<PlanProblem>& out) const
{
    addTextureProblems(out);
    addFolderProblems(out);
    for (const QList<qint32>& keys : m_addon->duplicateTargets())
        out.append({keys.at(1), sameTarget(), true});
}

PlanFacts CAddonInstallationDetails::facts() const
{
    PlanFacts facts;
    QList<PlanProblem>& out = facts.problems;
    for (const PlanProblem& remark : m_remarks) {
        // What is left out is no problem any more.
        const CAddon_Item* item = remark.item > 0 ? m_addon->Search(remark.item) : nullptr;
        if (!item || item->boolProcess)
            out.append(remark);
    }
    const bool cabinet = installTo() == InstallTo::Cabinet;
    if (!cabinet)
        facts.aircraft = aircraftEdits(*this, m_context, m_options.masterKey);
    if (!cabinet)
        facts.aliases = partAliases(*this, m_context, facts.aircraft);
    addSharedProblems(facts);
    for (const AircraftEdit& edit : std::as_const(facts.aircraft)) {
        if (!edit.problem.isEmpty())
            out.append({edit.item, edit.problem, false});
        for (const QString& remark : edit.remarks)
            out.append({edit.item, remark, false});
    }
    if (cabinet) {
        // The archive keeps each file under its place in the simulator.
        const auto there = Clone();
        there->Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
        there->addTargetProblems(out);
    } else {
        addTargetProblems(out);
        addClashProblems(out);
    }
    if (Result named = Options_InstallationChoices_Validate(); !named)
        out.append({0, named.text, true});
    for (const InstallationGroup& group : groups(MappedGroup::Scenery)) {
        if (!cabinet && anyMarked(group) && lacksTitle(group))
            out.append({group.items.first(),
                        u"Scenery library title is not specified. "_s + libraryProblem(group.name),
                        true});
    }
    addLinkProblems(out);
    if (const QString space = spaceProblem(); !space.isEmpty())
        out.append({0, space, true});
    if (!AddonItemGroup_IsAnythingMarkedForInstall())
        out.append(
            {0, u"Nothing to install. All addon files are marked 'Do Not Install'."_s, true});
    if (!cabinet) {
        QString problem;
        facts.traffic = trafficChanges(*this, m_context, problem);
        if (!problem.isEmpty())
            out.append({0, problem, false});
        out += flightPlanRemarks(addonFlightPlans(*this, m_context));
    }
    facts.library = libraryChanges();
    if (!facts.library.problem.isEmpty())
        out.append({0, facts.library.problem, false});
    for (const SceneryAreaToAdd& area : std::as_const(facts.library.areas)) {
        if (facts.library.problem.isEmpty() && !area.refusal.isEmpty())
            out.append({0, libraryProblem(area.title) + u". "_s + area.refusal, false});
    }
    return facts;
}

} // namespace vt
