// The variations of an aircraft.cfg: putting in order, adding, removing, hiding. Many are changed
// in one load and one save; the records follow in calls of their own.
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/VariationPictures.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr qsizetype variantBuffer = 255;

QString withCause(const QString& what, const Result& why)
{
    return why.text.isEmpty() ? what : what + u' ' + why.text;
}

/// "Landor/G CIVB?" gives "Landor\G CIVB"; empty parts go.
QString validSuffix(const QString& text)
{
    QStringList parts;
    for (const QString& part : winpath::components(text)) {
        const QString safe = winpath::safeName(part).trimmed();
        if (!safe.isEmpty())
            parts.append(safe);
    }
    return parts.join(u'\\');
}

bool isVariation(const QString& section)
{
    return configfacts::aircraftSectionNumber(section) >= 0 ||
           configfacts::hiddenSectionNumber(section) >= 0;
}

} // namespace

// --- looking -----------------------------------------------------------------------------------

std::optional<LineArray> CAircraft::Variant_Section_Get(const QString& section) const
{
    return aircraftsections::ownLines(sarrayINILines, section);
}

std::vector<CAircraft> CAircraft::Variant_Details_GetAll() const
{
    std::vector<CAircraft> variations;
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile);
    for (const QString& section : file.sections()) {
        if (!isVariation(section))
            continue;
        CAircraft& variation = variations.emplace_back(m_access);
        variation.sConfigurationFile = sConfigurationFile;
        variation.sSection = section;
        variation.readValues(file);
        variation.deriveFiles(
            [this](const QString& path) { return m_access.actions.info(path).has_value(); });
        variation.sVariation =
            ini::INI_Profile_GetValue(file, section, u"ui_variation"_s, {}, variantBuffer).value;
    }
    return variations;
}

QStringList CAircraft::Variant_SearchByVTTextureAddonMasterKey(qint64 masterKey) const
{
    QStringList sections;
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile);
    for (const QString& section : file.sections()) {
        if (!isVariation(section))
            continue;
        const QString key = ini::INI_Profile_GetValue(
                                file, section, u"vt_texture_addon_master_key"_s, {}, variantBuffer)
                                .value;
        if (key.toLongLong() == masterKey && !sections.contains(section, Qt::CaseInsensitive))
            sections.append(section);
    }
    return sections;
}

// --- what adding and removing share ------------------------------------------------------------

Result CAircraft::loadForEdit()
{
    m_error.clear();
    m_state = Good;
    if (!INILines_Load(false))
        return failed(FileMissing,
                      Result::failure(u"Could not read '"_s + sConfigurationFile + u"'."_s));
    const Result editable = ini::checkEditable(sarrayINILines, sConfigurationFile);
    return editable ? editable : failed(NotUpdated, editable);
}

ResultOf<aircraftsections::Renames> CAircraft::AircraftMasterSourceTextFile_Reorder()
{
    return aircraftsections::reorder(sarrayINILines);
}

Result CAircraft::AircraftMasterSourceTextFile_Reorder_ProcessPictures(
    const aircraftsections::Renames& renames, const GlobalRecord& global)
{
    return variationpictures::rename(m_access.actions, global, sConfigurationFile, renames);
}

/// The edits stand in the file or nowhere; pictures that cannot follow do not undo them.
Result CAircraft::saveVariants(const aircraftsections::Renames& renames, const GlobalRecord& global)
{
    const Result saved = Save();
    if (!saved)
        return saved;
    const Result pictures = AircraftMasterSourceTextFile_Reorder_ProcessPictures(renames, global);
    return Result::success(pictures.text);
}

// --- adding ------------------------------------------------------------------------------------

CAircraft::SuffixesTaken CAircraft::suffixesTaken() const
{
    SuffixesTaken taken;
    const profile::ProfileFile file =
        profile::ProfileFile::ofBytes(sarrayINILines.joined(), m_access.ansi);
    for (const QString& section : file.sections()) {
        if (!isVariation(section))
            continue;
        const auto note = [&](const QString& key, QSet<NoCase>& into) {
            QString value = ini::INI_Profile_GetValue(file, section, key, {}, variantBuffer).value;
            into.insert(NoCase{value.replace(u'/', u'\\')});
        };
        note(u"texture"_s, taken.texture);
        note(u"panel"_s, taken.panel);
        note(u"sound"_s, taken.sound);
    }
    return taken;
}

QString CAircraft::newSuffix(const QString& stem,
                             const QString& source,
                             const QString& variation,
                             QSet<NoCase>& taken) const
{
    const QString folder = winpath::withoutTrailing(QString(source).replace(u'/', u'\\'));
    QString wanted = validSuffix(configfacts::partSuffix(folder));
    if (wanted.isEmpty())
        wanted = validSuffix(QString(variation).remove(u'\\').remove(u'/'));
    if (wanted.isEmpty())
        wanted = u"New"_s;
    QString suffix = wanted;
    const QString top = Folder_Aircraft_Get();
    for (int number = 2;
         taken.contains(NoCase{suffix}) || m_access.actions.info(folderFor(top, stem, suffix));
         ++number)
        suffix = wanted + u' ' + QString::number(number);
    taken.insert(NoCase{suffix});
    return suffix;
}

std::optional<QString> CAircraft::Variant_Add_DetermineNewTexture(const CTextureGroup& group,
                                                                  SuffixesTaken& taken) const
{
    if (group.sTexture || group.sTextureSource.isEmpty())
        return group.sTexture;
    return newSuffix(u"Texture"_s, group.sTextureSource, group.sVariation, taken.texture);
}

std::optional<QString> CAircraft::Variant_Add_DetermineNewPanel(const CTextureGroup& group,
                                                                SuffixesTaken& taken) const
{
    if (group.sPanel || group.sPanelSource.isEmpty())
        return group.sPanel;
    return newSuffix(u"Panel"_s, group.sPanelSource, group.sVariation, taken.panel);
}

std::optional<QString> CAircraft::Variant_Add_DetermineNewSound(const CTextureGroup& group,
                                                                SuffixesTaken& taken) const
{
    if (group.sSound || group.sSoundSource.isEmpty())
        return group.sSound;
    return newSuffix(u"Sound"_s, group.sSoundSource, group.sVariation, taken.sound);
}

Result CAircraft::Variant_Add_PromptForDetails(CTextureGroup& group,
                                               const VariantSwitches& switches) const
{
    VariantNames names{group.sTitle, group.sVariation, {}, {}};
    for (;;) {
        const VariantNames shown = names;
        if (!switches.askNames(names))
            return Result::failure(u"The variation was not added."_s, ErrorKind::Declined);
        const Result title = Title_Validate(names.title, switches.nameChecks);
        const Result variation = Variation_Validate(names.variation, switches.nameChecks);
        names.problem = title ? (variation ? QString() : variation.text) : title.text;
        names.warning = names.problem.isEmpty() ? variation.text : QString();
        const bool accepted = !names.warning.isEmpty() && shown.warning == names.warning &&
                              shown.variation == names.variation;
        if (names.problem.isEmpty() && (names.warning.isEmpty() || accepted))
            break;
    }
    group.sTitle = names.title.trimmed();
    group.sVariation = names.variation.trimmed();
    return Result::success();
}

/// Names and suffixes of a group, as far as it does not have them yet.
Result CAircraft::finishGroup(CTextureGroup& group,
                              const VariantSwitches& switches,
                              const LineArray& block,
                              SuffixesTaken& taken) const
{
    const QString section = ini::INI_Section_GetFirst(block).value_or(QString());
    const auto own = [&](const QString& key) {
        const QString raw = ini::INI_Entry_Get(block, section, key, true).value_or(QString());
        return configfacts::plainValue(QStringView(raw)).toString();
    };
    if (group.sTitle.isEmpty())
        group.sTitle = own(u"title"_s);
    if (group.sVariation.isEmpty())
        group.sVariation = own(u"ui_variation"_s);
    group.sTexture = Variant_Add_DetermineNewTexture(group, taken);
    group.sPanel = Variant_Add_DetermineNewPanel(group, taken);
    group.sSound = Variant_Add_DetermineNewSound(group, taken);
    if (switches.askNames)
        return Variant_Add_PromptForDetails(group, switches);
    group.sTitle = Title_FixDuplicate(group.sTitle, switches.nameChecks);
    return Result::success();
}

Result CAircraft::Variant_Add_UpdateINILines(LineArray& block,
                                             const QString& section,
                                             const CTextureGroup& group)
{
    const QString before = ini::INI_Section_GetFirst(block).value_or(QString());
    if (const Result renamed = ini::INI_Section_Rename(block, before, section); !renamed)
        return Result::failure(withCause(u"Error renaming section "_s + before + u'.', renamed));
    QList<std::pair<QString, QString>> values = {{u"title"_s, group.sTitle},
                                                 {u"ui_variation"_s, group.sVariation}};
    if (group.sPanel)
        values.append({u"panel"_s, *group.sPanel});
    if (group.sSound)
        values.append({u"sound"_s, *group.sSound});
    if (group.sTexture)
        values.append({u"texture"_s, *group.sTexture});
    if (group.lngAddonMasterKey > 0)
        values.append({u"vt_texture_addon_master_key"_s, QString::number(group.lngAddonMasterKey)});
    for (const auto& [key, value] : values) {
        if (const Result set = ini::INI_Entry_Update(block, section, key, value); !set)
            return Result::failure(withCause(u"Error updating sarrayINILines()."_s, set));
    }
    QStringList unwanted = {u"vtlocator"_s, u"panelfile"_s, u"soundfile"_s, u"texturepath"_s};
    if (group.lngAddonMasterKey <= 0) // a copy does not belong to the add-on of its original
        unwanted.append(u"vt_texture_addon_master_key"_s);
    for (const QString& key : std::as_const(unwanted)) {
        while (ini::INI_Entry_Delete(block, section, key)) {
        }
    }
    return Result::success();
}

Result CAircraft::addBlocks(QList<CTextureGroup>& groups,
                            const VariantSwitches& switches,
                            qsizetype firstNumber,
                            QList<LineArray>& blocks,
                            VariantsChanged& added)
{
    SuffixesTaken taken = suffixesTaken();
    QHash<NoCase, std::optional<LineArray>> copies;
    VariantSwitches checked = switches;
    QList<NewVariation> others;
    if (switches.nameChecks.others)
        others = *switches.nameChecks.others;
    checked.nameChecks.others = &others;
    for (CTextureGroup& group : groups) {
        std::optional<LineArray> block = group.sarraySectionLines;
        const QString source = group.sSourceSection.isEmpty() ? sSection : group.sSourceSection;
        if (block) {
            block = aircraftsections::ownLines(
                *block, ini::INI_Section_GetFirst(*block).value_or(QString()));
        } else {
            const auto known = copies.constFind(NoCase{source});
            block = known != copies.cend() ? *known : Variant_Section_Get(source);
            copies.insert(NoCase{source}, block);
        }
        if (!block)
            return Result::failure(u"Error retrieving section "_s + source);
        if (const Result finished = finishGroup(group, checked, *block, taken); !finished)
            return finished;
        const QString section = configfacts::aircraftSectionName(firstNumber + blocks.size());
        if (const Result set = Variant_Add_UpdateINILines(*block, section, group); !set)
            return set;
        blocks.append(*block);
        added.sections.append(section);
        added.titles.append(group.sTitle);
        const QString told =
            group.sDescription.isEmpty() ? u'\'' + group.sTitle + u'\'' : group.sDescription;
        others.append({group.sTitle, group.sVariation, told});
    }
    return Result::success();
}

ResultOf<CAircraft::VariantsChanged> CAircraft::Variant_Add(QList<CTextureGroup>& groups,
                                                            const VariantSwitches& switches,
                                                            const GlobalRecord& global)
{
    if (const Result loadedLines = loadForEdit(); !loadedLines)
        return loadedLines;
    const LineArray before = sarrayINILines;
    const QList<CTextureGroup> groupsBefore = groups;
    VariantsChanged added;
    const auto work = [&]() -> Result {
        const ResultOf<aircraftsections::Renames> renames = AircraftMasterSourceTextFile_Reorder();
        if (!renames)
            return renames.error();
        added.renamed = *renames;
        const qsizetype count =
            sectionOrder(ini::INI_Sections_GetNames(sarrayINILines)).sorted.size();
        QList<LineArray> blocks;
        // The section to be copied may just have been given another number.
        for (CTextureGroup& group : groups)
            aircraftsections::follow(group.sSourceSection, added.renamed);
        aircraftsections::follow(sSection, added.renamed);
        if (const Result made = addBlocks(groups, switches, count, blocks, added); !made)
            return made;
        aircraftsections::append(sarrayINILines, blocks);
        return switches.write ? saveVariants(added.renamed, global) : Result::success();
    };
    const QString section = sSection;
    const Result done = work();
    if (done)
        return added;
    sarrayINILines = before;
    groups = groupsBefore;
    sSection = section;
    return failed(NotUpdated, done);
}

// --- removing ----------------------------------------------------------------------------------

ResultOf<CAircraft::VariantsChanged> CAircraft::Variant_Remove_All(const QStringList& sections,
                                                                   const GlobalRecord& global)
{
    if (const Result loadedLines = loadForEdit(); !loadedLines)
        return failed(m_state,
                      Result::failure(
                          withCause(u"Error reading "_s + sConfigurationFile + u'.', loadedLines)));
    const LineArray before = sarrayINILines;
    VariantsChanged removed;
    const profile::ProfileFile file = profile::ProfileFile::ofBytes(before.joined(), m_access.ansi);
    for (const QString& section : sections) {
        if (!isVariation(section) || !file.hasSection(section))
            return failed(NotUpdated,
                          Result::failure(u"Error editing "_s + sConfigurationFile +
                                          u". It has no section '"_s + section + u"'."_s));
        removed.sections.append(section);
        removed.titles.append(
            ini::INI_Profile_GetValue(file, section, u"title"_s, {}, variantBuffer).value);
    }
    aircraftsections::take(sarrayINILines, sections);
    Result done;
    const ResultOf<aircraftsections::Renames> renames = AircraftMasterSourceTextFile_Reorder();
    if (!renames) {
        done = Result::failure(withCause(u"Error reordering."_s, renames.error()));
    } else {
        removed.renamed = *renames;
        // Those of the removed go first: their names may be taken over.
        const Result saved = Save();
        if (saved) {
            (void)variationpictures::remove(
                m_access.actions, global, sConfigurationFile, removed.sections);
            (void)AircraftMasterSourceTextFile_Reorder_ProcessPictures(removed.renamed, global);
        } else {
            done = Result::failure(
                withCause(u"Error editing "_s + sConfigurationFile + u'.', saved), saved.kind);
        }
    }
    if (done)
        return removed;
    sarrayINILines = before;
    return failed(NotUpdated, done);
}

ResultOf<CAircraft::VariantsChanged> CAircraft::Variant_Remove(const VariantRemoval& removal,
                                                               const GlobalRecord& global)
{
    const auto agreed = [&](const Prompt& question) {
        return m_access.prompts.ask(question) == Button::Yes;
    };
    const bool wanted =
        (!removal.ask ||
         agreed(yesNo(u"Confirm Removal"_s,
                      u"Are you sure you want to permanently remove '"_s + sTitle + u"'?"_s,
                      Button::Yes))) &&
        (!removal.original ||
         agreed(yesNo(u"Confirm Removal of Original Addon"_s,
                      u"'"_s + sTitle + u"' is part of an original "_s + removal.simulatorName +
                          u" addon. Are you certain you want to permanently remove it?"_s,
                      Button::No,
                      Icon::Warning)));
    if (!wanted)
        return Result::failure(u"Remove operation was aborted."_s, ErrorKind::Declined);
    return Variant_Remove_All({sSection}, global);
}

Result CAircraft::deleteVariantFolder(const Files& files,
                                      const QString& folder,
                                      const std::function<bool(const QString&)>& isRecorded,
                                      QStringList& told)
{
    QSet<NoCase> folders = {NoCase{folder}};
    for (const QString& relative : files.filesBelow(folder)) {
        const QString path = folder + relative;
        for (QString above = winpath::parent(path); winpath::isBelow(above, folder);
             above = winpath::parent(above))
            folders.insert(NoCase{above});
        if (isRecorded(path)) {
            told.append(u"'"_s + path + u"' was left, because an add-on installed it."_s);
            continue;
        }
        if (const Result gone = m_access.actions.remove(path); !gone)
            told.append(gone.text);
    }
    QStringList deepestFirst;
    for (const NoCase& one : std::as_const(folders))
        deepestFirst.append(one.text);
    std::sort(deepestFirst.begin(), deepestFirst.end(), [](const QString& a, const QString& b) {
        return a.size() > b.size();
    });
    for (const QString& one : std::as_const(deepestFirst)) {
        if (const Result gone = m_access.actions.removeEmptyFolder(one); !gone)
            return gone;
    }
    return Result::success();
}

QStringList CAircraft::Variant_Remove_DeleteCfgFilesAndFolder(
    const Files& files, const std::function<bool(const QString&)>& isRecorded)
{
    QStringList told;
    const QString top = Folder_Aircraft_Get();
    const std::vector<CAircraft> others = Variant_Details_GetAll();
    const auto isUsed = [&](const QString& folder, QString (CAircraft::*folderOf)() const) {
        return std::any_of(others.cbegin(), others.cend(), [&](const CAircraft& other) {
            return winpath::isBelow((other.*folderOf)(), folder);
        });
    };
    // An entry may name any place; only what lies in the aircraft's own folder may go.
    const auto isOwn = [&](const QString& folder) {
        return winpath::checkRelative(winpath::withoutTrailing(winpath::relativeTo(folder, top)))
                   .ok &&
               files.isFolder(folder);
    };
    const auto deleteFolder = [&](const QString& folder) {
        const Result done = deleteVariantFolder(files, folder, isRecorded, told);
        told.append(done ? u"'"_s + folder + u"' was deleted."_s : done.text);
    };
    const QString texture = Folder_AircraftTexture_Get();
    if (!sTexture.isEmpty() && isOwn(texture) &&
        !isUsed(texture, &CAircraft::Folder_AircraftTexture_Get))
        deleteFolder(texture);
    const auto deleteAlias =
        [&](const QString& suffix, const QString& file, QString (CAircraft::*folderOf)() const) {
            const QString folder = (this->*folderOf)();
            if (suffix.isEmpty() || !isOwn(folder) || isUsed(folder, folderOf))
                return;
            const QStringList names = files.names(folder);
            const bool alone = std::all_of(names.cbegin(), names.cend(), [&](const QString& name) {
                return equalNoCase(name, winpath::name(file)) ||
                       equalNoCase(winpath::extension(name), u"vtb");
            });
            const bool alias =
                !ini::INI_Profile_GetValue(
                     m_access.actions, m_access.ansi, u"fltsim"_s, u"alias"_s, {}, 255, file)
                     .value.isEmpty();
            if (alone && alias)
                deleteFolder(folder);
        };
    deleteAlias(sPanel, sPanelConfigurationFile, &CAircraft::Folder_AircraftPanel_Get);
    deleteAlias(sSound, sSoundConfigurationFile, &CAircraft::Folder_AircraftSound_Get);
    return told;
}

// --- hiding ------------------------------------------------------------------------------------

ResultOf<CAircraft::VariantsChanged> CAircraft::changeVisibility(bool visible,
                                                                 const GlobalRecord& global)
{
    if (const Result loadedLines = loadForEdit(); !loadedLines)
        return loadedLines;
    const LineArray before = sarrayINILines;
    const ResultOf<aircraftsections::Renames> renames =
        visible ? aircraftsections::show(sarrayINILines, sSection)
                : aircraftsections::hide(sarrayINILines, sSection);
    const Result done = renames ? saveVariants(*renames, global) : renames.error();
    if (!done) {
        sarrayINILines = before;
        return failed(NotUpdated, done);
    }
    VariantsChanged changed;
    changed.renamed = *renames;
    aircraftsections::follow(sSection, *renames);
    changed.sections = {sSection};
    changed.titles = {sTitle};
    return changed;
}

ResultOf<CAircraft::VariantsChanged> CAircraft::Hide(const GlobalRecord& global)
{
    return changeVisibility(false, global);
}

ResultOf<CAircraft::VariantsChanged> CAircraft::ShowAgain(const GlobalRecord& global)
{
    return changeVisibility(true, global);
}

} // namespace vt
