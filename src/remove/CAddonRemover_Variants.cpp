// What a removal does to aircraft.cfg files: the sections that the add-on added go, those of others
// stay, and what other add-ons recorded or kept of the file follows.
#include "addondb/AddonDatabase.h"
#include "addondb/ConfigBases.h"
#include "platform/Hash.h"
#include "platform/Profile.h"
#include "platform/WinPath.h"
#include "remove/CAddonRemover.h"
#include "simconfig/AddonVariations.h"
#include "simconfig/AircraftSections.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/VariationPictures.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString keyOf(const profile::ProfileFile& file, const QString& section)
{
    return file.value(section, u"vt_texture_addon_master_key", u"").text;
}

/// Sections that add-ons other than \a masterKey added, by their titles.
QStringList titlesOfOthers(const profile::ProfileFile& file, qint64 masterKey)
{
    QStringList titles;
    for (const QString& section : file.sections()) {
        const qint64 key = keyOf(file, section).toLongLong();
        if (key > 0 && key != masterKey)
            titles.append(file.value(section, u"title", u"").text);
    }
    return titles;
}

QStringList sectionsOf(const profile::ProfileFile& file, qint64 masterKey)
{
    QStringList sections;
    for (const QString& section : file.sections()) {
        if (keyOf(file, section).toLongLong() == masterKey)
            sections.append(section);
    }
    return sections;
}

} // namespace

Result CAddonRemover::AircraftVariants_Remove()
{
    confirmLinks();
    Services& services = m_context.services;
    const ConfigAccess access(*m_actions, services.prompts, services.ansi);
    Result last = Result::success();
    for (const QString& file : addonvariations::files(access, m_details)) {
        if (!services.files.isFile(file)) {
            forgetConfigBase(file); // the aircraft is gone, and with it what had been added
            continue;
        }
        const Result removed = removeVariantsFrom(file);
        if (removed)
            continue;
        m_anyFailed = true;
        m_results.addCause(file, removed.text);
        m_log.line(QString(u"   "_s + removed.text));
        last = removed;
    }
    return last;
}

/// Of a part of the add-on: whether it takes along all textures of a variation.
bool CAddonRemover::goesWithPart(const QString& file, const QString& texture) const
{
    const QString folder = CAircraft::folderFor(winpath::parent(file), u"Texture"_s, texture);
    bool any = false;
    for (const DetailRecord& detail : m_details) {
        if (!winpath::isBelow(detail.location + detail.name, folder))
            continue;
        if (!m_going.files.contains(NoCase{detail.location + detail.name}))
            return false;
        any = true;
    }
    return any;
}

Result CAddonRemover::removeVariantsFrom(const QString& file)
{
    Services& services = m_context.services;
    const profile::ProfileFile now =
        profile::ProfileFile::load(services.files, file, services.ansi);
    QStringList sections = sectionsOf(now, m_masterKey);
    if (!m_whole)
        sections.removeIf([&](const QString& section) {
            const QString texture = now.value(section, u"texture", u"").text;
            return !goesWithPart(file, configfacts::plainValue(QStringView(texture)).toString());
        });
    QStringList titles;
    for (const QString& section : sections)
        titles.append(now.value(section, u"title", u"").text);
    const auto tell = [&](bool removed) {
        for (const QString& title : std::as_const(titles))
            m_variantResults.append({file, title, removed});
    };

    auto own = std::find_if(m_files.begin(), m_files.end(), [&](const File& one) {
        return winpath::same(one.path, file);
    });
    const QList<DetailRecord> sharers = m_sharers.at(file);
    const bool top = own != m_files.end() &&
                     std::none_of(sharers.cbegin(), sharers.cend(), [&](const DetailRecord& row) {
                         return row.key > own->detail.key;
                     });
    if (top) {
        const auto original = m_originals.constFind(own->detail.key);
        const bool restores = original != m_originals.cend() && !original->keptFile.isEmpty();
        const QStringList others = titlesOfOthers(now, m_masterKey);
        if (!restores && sharers.isEmpty()) {
            // The aircraft goes, and what others had added to it goes along.
            for (const QString& title : others)
                m_results.add(resultgroup::specialActions,
                              u"Aircraft variant '"_s + title +
                                  u"' of another addon went with the aircraft."_s);
            forgetConfigBase(file);
            tell(true);
            return Result::success();
        }
        if (restores) {
            const profile::ProfileFile kept =
                profile::ProfileFile::load(services.files,
                                           m_context.global.originalsFolder + original->keptFile,
                                           services.ansi);
            QStringList lost = others;
            for (const QString& title : titlesOfOthers(kept, m_masterKey))
                lost.removeOne(title);
            if (lost.isEmpty()) {
                tell(true); // with the old bytes
                (void)variationpictures::remove(*m_actions, m_context.global, file, sections);
                return Result::success();
            }
            // The old bytes know nothing of what others added since: only our sections go.
            own->editedInPlace = true;
        }
    }
    if (sections.isEmpty())
        return Result::success();
    Result edited = takeOut(file, sections);
    tell(edited.ok);
    return edited;
}

Result CAddonRemover::takeOut(const QString& file, const QStringList& sections)
{
    Services& services = m_context.services;
    const ResultOf<QByteArray> before = m_actions->read(file, configFileLimit);
    if (!before)
        return before.error();
    const auto standing = services.files.info(file);
    const ResultOf<QList<DetailRecord>> owners =
        modDatabase_Addon::ownersOf(m_database, winpath::parent(file), winpath::name(file));
    if (!owners)
        return owners.error();

    auto aircraft =
        std::make_unique<CAircraft>(ConfigAccess(*m_actions, services.prompts, services.ansi));
    aircraft->sConfigurationFile = file;
    ResultOf<CAircraft::VariantsChanged> changed =
        aircraft->Variant_Remove_All(sections, m_context.global);
    if (!changed)
        return changed.error();

    const ResultOf<Place> place = services.gate.place(file);
    const auto base = place ? modDatabase_Addon::configBase(m_database, *place) : std::nullopt;
    if (base) {
        // A part may leave other sections of the add-on behind.
        const bool some =
            sections !=
            sectionsOf(profile::ProfileFile::ofBytes(*before, services.ansi), m_masterKey);
        ResultOf<configbases::Undone> undone = configbases::afterRemoval(m_database,
                                                                         services.gate,
                                                                         *m_actions,
                                                                         m_context.global,
                                                                         file,
                                                                         *before,
                                                                         base->edits <= 1 && !some);
        if (!undone)
            return undone.error();
        if (some && undone->record)
            undone->record->edits = base->edits;
        if (undone->record)
            m_closing.configBases.push_back(*undone->record);
        if (undone->forgotten)
            m_closing.configBasesGone.push_back(*place);
    }
    // Whoever recorded the file finds it as it was left here.
    for (const DetailRecord& owner : *owners) {
        if (owner.masterKey == m_masterKey)
            continue;
        if (Result followed = editKept(owner, sections); !followed)
            return followed;
        if (owner.key == owners->constLast().key && standing) {
            if (Result noted = noteEdited(owner, *standing); !noted)
                return noted;
        }
    }
    m_variantsGone.push_back({std::move(aircraft), *changed});
    return Result::success();
}

/// A file that another add-on recorded is still that add-on's after our edit, unless the user had
/// changed it before.
Result CAddonRemover::noteEdited(const DetailRecord& owner, const FileInfo& before)
{
    const QString file = owner.location + owner.name;
    const auto check = modDatabase_Addon::checkOf(m_database, owner.key);
    if (!check || !originals::isRecorded(m_context.services.files, file, before, *check))
        return Result::success();
    const ResultOf<QByteArray> bytes = m_actions->read(file, configFileLimit);
    const ResultOf<Place> place = m_context.services.gate.place(file);
    if (!bytes)
        return bytes.error();
    if (!place)
        return place.error();
    const auto info = m_actions->info(file);
    m_closing.edited.append(
        {*place, owner.key, {bytes->size(), info ? info->modifiedNs : -1, xxh3(*bytes)}});
    return Result::success();
}

/// What another add-on keeps of the file, to be put back one day, must not bring our sections back.
Result CAddonRemover::editKept(const DetailRecord& owner, const QStringList& sections)
{
    Services& services = m_context.services;
    const auto original = modDatabase_Addon::originalOf(m_database, owner.key);
    if (!original || original->keptFile.isEmpty())
        return Result::success();
    const QString kept = m_context.global.originalsFolder + original->keptFile;
    const ResultOf<QByteArray> bytes = m_actions->read(kept, configFileLimit);
    if (!bytes)
        return bytes.error();
    const QStringList there =
        sectionsOf(profile::ProfileFile::ofBytes(*bytes, services.ansi), m_masterKey);
    if (there.isEmpty() || sections.isEmpty())
        return Result::success();
    LineArray lines = LineArray::ofBytes(*bytes, services.ansi);
    aircraftsections::take(lines, there);
    if (const auto ordered = aircraftsections::reorder(lines); !ordered)
        return ordered.error();
    return m_actions->replace(kept, lines.joined());
}

void CAddonRemover::forgetConfigBase(const QString& file)
{
    dropConfigBase(file, false);
}

/// There is no way back to the old bytes. With \a othersStay the record stays for those whose
/// entries are in the file, so that the next installation does not take them for the simulator's.
void CAddonRemover::dropConfigBase(const QString& file, bool othersStay)
{
    const ResultOf<Place> place = m_context.services.gate.place(file);
    if (!place)
        return;
    auto base = modDatabase_Addon::configBase(m_database, *place);
    if (!base)
        return;
    const QString keptFile = std::exchange(base->keptFile, QString());
    if (othersStay && base->edits > 1) {
        --base->edits;
        m_closing.configBases.push_back(*base);
    } else {
        m_closing.configBasesGone.push_back(*place);
    }
    if (keptFile.isEmpty())
        return;
    const QString kept = m_context.global.originalsFolder + keptFile;
    (void)m_actions->remove(kept); // a kept file that stays behind harms nobody
    (void)m_actions->removeEmptyFolder(winpath::parent(kept));
}

Result CAddonRemover::recordVariants()
{
    for (const auto& [aircraft, changed] : m_variantsGone) {
        if (Result gone = aircraft->Variant_Remove_UpdateDatabase(m_database, changed); !gone)
            return gone;
    }
    // Rows of whole aircraft and panels that go.
    for (const File& file : m_files) {
        if (!takesAway())
            break;
        if (file.outcome != RemovalOutcome::Removed ||
            !equalNoCase(file.detail.name, u"aircraft.cfg"))
            continue;
        if (Result gone =
                modDatabase_Addon::deleteItemDetail(m_database, ItemTable::Aircraft, file.path);
            !gone)
            return gone;
    }
    for (const QString& path : std::as_const(m_itemsGone)) {
        if (equalNoCase(winpath::name(path), u"aircraft.cfg"))
            continue;
        if (Result gone = modDatabase_Addon::deleteItemDetail(m_database, ItemTable::Panel, path);
            !gone)
            return gone;
    }
    return Result::success();
}

void CAddonRemover::tellVariants(const QList<StepFailure>& failures)
{
    for (const VariantTold& told : std::as_const(m_variantResults)) {
        const bool failed =
            !told.removed || std::any_of(failures.cbegin(), failures.cend(), [&](const auto& one) {
                return winpath::isBelow(told.file, one.path);
            });
        m_anyFailed = m_anyFailed || failed;
        const QString start = u"Aircraft variant '"_s + told.title + u"' was "_s;
        m_results.add(failed ? resultgroup::failedSpecialActions : resultgroup::specialActions,
                      failed ? start + u"NOT "_s + u"removed."_s : start + u"removed."_s);
    }
}

} // namespace vt
