// Aircraft that one aircraft.cfg defines: those that a change of one concerns, and whether they go
// along. The variations of an add-on's own aircraft.cfg share their flight model and lie in one
// folder, so they always do; repaints are added to an aircraft.cfg one by one and may part from it.
// And what new variations may be called.
#include "catalogue/Catalogue.h"
#include "install/CAddonInstallationDetails.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

Prompt applyChangeToRelated()
{
    return yesNoCancel(
        u"Apply Change to all Related Aircraft?"_s,
        u"The aircraft configuration (aircraft.cfg) file that defines the current aircraft also defines one or more other aircraft. Would you like to change the folders of the other aircraft as well?"_s +
            u"\n\n"_s +
            u"Choose Yes to apply the change to the current aircraft and to all other related aircraft. Press No to apply the change only to the current aircraft. Or press Cancel to abort."_s,
        Button::Yes);
}

/// Of an aircraft: the repaints that this add-on adds to its aircraft.cfg. Of a repaint: the others
/// whose sections came in the same file and that have an aircraft.
QList<int> CAddonInstallationDetails::relatedRepaints(MappedGroup family, int group) const
{
    const std::vector<InstallationGroup>& textures = groups(MappedGroup::Texture);
    QList<int> related;
    QSet<qint32> sources;
    if (family == MappedGroup::Texture) {
        for (const VariantDetails& variant : textures[size_t(group)].variants) {
            if (variant.sourceItem > 0)
                sources.insert(variant.sourceItem);
        }
    }
    for (size_t i = 0; i < textures.size(); ++i) {
        const InstallationGroup& other = textures[i];
        if (!other.asRepaint() || other.aircraftFolder.isEmpty())
            continue;
        const bool added = family == MappedGroup::Aircraft && other.aircraftGroup == group;
        const bool same = family == MappedGroup::Texture && int(i) != group &&
                          std::any_of(other.variants.cbegin(),
                                      other.variants.cend(),
                                      [&](const VariantDetails& variant) {
                                          return sources.contains(variant.sourceItem);
                                      });
        if (added || same)
            related.append(int(i));
    }
    return related;
}

/// Asks where there is something to decide, and puts the answer into \a change.
Result CAddonInstallationDetails::askRelated(MappedGroup family, int group, GroupChange& change)
{
    if (!hasGroup(family, group) || change.folder.isEmpty() ||
        (family != MappedGroup::Aircraft && family != MappedGroup::Texture))
        return Result::success();
    const InstallationGroup& now = groups(family)[size_t(group)];
    const QString& before = family == MappedGroup::Aircraft ? now.targetFolder : now.aircraftFolder;
    if (winpath::same(before, change.folder) || relatedRepaints(family, group).isEmpty())
        return Result::success();
    const Button answer = m_context.services.prompts.ask(applyChangeToRelated());
    if (answer == Button::Cancel)
        return Result::failure(u"'"_s + now.name + u"' stays in its folder."_s,
                               ErrorKind::Declined);
    change.relatedFollow = answer == Button::Yes;
    return Result::success();
}

/// The method and folder of one group, and of what is related to it.
Result
CAddonInstallationDetails::changeRelated(MappedGroup family, int index, const GroupChange& change)
{
    const QList<int> related = family == MappedGroup::Aircraft || family == MappedGroup::Texture
                                   ? relatedRepaints(family, index)
                                   : QList<int>();
    const QString before = groups(family)[size_t(index)].targetFolder;
    if (Result changed = changeMethod(family, index, *change.method, change.folder); !changed)
        return changed;
    const bool moved = !winpath::same(before, groups(family)[size_t(index)].targetFolder);
    for (const int repaint : related) {
        if (family == MappedGroup::Aircraft && !change.relatedFollow && moved)
            leaveBehind(repaint, before);
        if (family != MappedGroup::Texture || !change.relatedFollow || !moved ||
            *change.method != InstallationMethod::NewRepaint)
            continue;
        if (Result followed = changeAircraft(repaint, change.folder); !followed)
            return followed;
    }
    return Result::success();
}

/// The repaint stays with the aircraft in that folder, whether one is installed there or not.
void CAddonInstallationDetails::leaveBehind(int repaint, const QString& aircraft)
{
    if (changeAircraft(repaint, aircraft))
        return;
    InstallationGroup& group = groups(MappedGroup::Texture)[size_t(repaint)];
    group.method = InstallationMethod::NewRepaint;
    group.aircraftFolder = aircraft;
    group.targetFolder = aircraft;
    group.aircraftGroup = -1;
    group.baseMissing = true; // told as a problem until another aircraft is chosen
    adaptRepaint(repaint);
    deriveFolders(MappedGroup::Texture, repaint);
}

Result CAddonInstallationDetails::VariantDetails_Validate(int group,
                                                          const QList<VariantDetails>& variants,
                                                          qsizetype* problem) const
{
    QList<NewVariation> others;
    const std::vector<InstallationGroup>& textures = groups(MappedGroup::Texture);
    for (size_t i = 0; i < textures.size(); ++i) {
        if (int(i) == group || !textures[i].asRepaint())
            continue;
        for (const VariantDetails& variant : textures[i].variants)
            others.append(
                {variant.title, variant.variation, u"'"_s + variant.title + u"' of this add-on"_s});
    }
    const CAircraft aircraft{ConfigAccess(m_context.services)};
    NameChecks checks;
    checks.installed = &catalogue();
    checks.others = &others;
    QString warning;
    for (qsizetype i = 0; i < variants.size(); ++i) {
        const VariantDetails& variant = variants.at(i);
        if (problem)
            *problem = i;
        if (Result title = aircraft.Title_Validate(variant.title, checks); !title)
            return title;
        const Result named = aircraft.Variation_Validate(variant.variation, checks);
        if (!named)
            return named;
        if (warning.isEmpty())
            warning = named.text;
        others.append({variant.title, variant.variation, u"'"_s + variant.title + u'\''});
    }
    return Result::success(warning);
}

QList<std::pair<QString, QString>> CAddonInstallationDetails::aircraftToChooseFrom() const
{
    QList<std::pair<QString, QString>> out;
    for (const InstallationGroup& own : groups(MappedGroup::Aircraft)) {
        if (!own.targetFolder.isEmpty())
            out.append({own.targetFolder, own.name + u" (in this addon)"_s});
    }
    const Catalogue& installed = catalogue();
    QList<std::pair<QString, QString>> others;
    for (const ConfigIndex config : installed.configs(Catalogue::Kind::Aircraft)) {
        const QString folder = installed.folder(config);
        others.append({folder, installed.label(config)});
    }
    std::sort(others.begin(), others.end(), [](const auto& a, const auto& b) {
        return compareNoCase(a.second, b.second) < 0;
    });
    return out + others;
}

} // namespace vt
