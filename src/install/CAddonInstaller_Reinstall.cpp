// Installing a recorded add-on again. In the simulator: each file is put back where it lies, what
// the add-on had replaced stays kept, and the records are updated in place. From the File Cabinet:
// an installation under the old key, whose rows are new, because it now lies on top of others.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "install/AircraftEdits.h"
#include "install/CAddonInstaller.h"
#include "platform/Gate.h"
#include "platform/WinPath.h"
#include "shell/RunStep.h"
#include "shell/Settings.h"
#include "simconfig/AddonVariations.h"

using namespace Qt::StringLiterals;

namespace vt {

QString reinstallationResultsCaption(const QString& addon)
{
    return u"Reinstallation Results - '"_s + addon + u'\'';
}

Prompt reinstallWarning(const DisplayNames& names)
{
    return yesNo(u"Reinstall Warning"_s,
                 u"The reinstall process is about to install files that may be open by "_s +
                     names.simLong + u". Close "_s + names.simLong +
                     u" now to prevent any conflicts."_s + u"  Do you want to continue?"_s +
                     u"\n\n"_s +
                     u"Select Yes to continue with the reinstallation, or select No to abort."_s,
                 Button::No,
                 Icon::Warning);
}

bool CAddonInstaller::Reinstall_Begin()
{
    m_context.global.currentProcedure = u"Public Function Reinstall_Begin"_s;
    using I = CAddonInstaller;
    const bool reached = runSteps(
        {{u"Private Function Reinstall_Preliminaries"_s, &I::Reinstall_Preliminaries},
         {u"Private Function AddonDatabase_Open"_s, &I::AddonDatabase_Open},
         {u"Private Function AddonMasterTable_OpenTable"_s, &I::AddonMasterTable_OpenTable},
         {u"Private Function Reinstall_OpenRecord"_s, &I::Reinstall_OpenRecord},
         {u"Private Sub ReinstallFiles"_s, &I::ReinstallFiles}});
    Reinstall_End();
    return reached;
}

Result CAddonInstaller::Reinstall_Preliminaries()
{
    m_replaceAll = false;
    m_replaceNone = false;
    m_log.open(m_context.services.gate, m_context.global.programFolder + u"INSTALL.LOG"_s);
    m_log.line(u"Reinstalling addon ...begin.");
    status(u"Installing addon..."_s);
    const DisplayNames& names = m_context.global.names;
    if (simulatorIsRunning && simulatorIsRunning() &&
        m_context.services.prompts.ask(reinstallWarning(names)) != Button::Yes)
        return Result::failure(u"'"_s + m_details.recorded()->record.name +
                                   u"' was not installed again, because "_s + names.simLong +
                                   u" is running."_s,
                               ErrorKind::Declined);
    if (const QString space = m_details.spaceProblem(); !space.isEmpty())
        return Result::failure(space, ErrorKind::Surroundings);
    confirmLinks();
    m_wantedAreas = m_details.facts().library.areas;
    return Result::success();
}

Result CAddonInstaller::Reinstall_OpenRecord()
{
    m_record = m_details.recorded()->record;
    if (!m_details.inPlace()) {
        m_record.status = InstallationStatus::Installed;
        m_record.dateInstalled = m_context.services.clock.now();
    }
    return m_actions->begin(OperationKind::Installation, m_record.name);
}

Result CAddonInstaller::ReinstallFiles()
{
    m_aircraftEdits = aircraftEdits(m_details, m_context, m_record.key);
    prepareSetAside();
    decideAll();
    return stageAll();
}

void CAddonInstaller::prepareSetAside()
{
    m_release = std::make_unique<originals::ReleaseContext>(originals::ReleaseContext{
        m_context.services.gate,
        *m_actions,
        m_database,
        m_context.global,
        originals::setAsideFolder(m_context.services.files, m_context.global, m_record),
        [this] {
            if (std::exchange(m_announcedSetAside, true))
                return Result::success();
            return m_actions->announceKept(m_release->setAsideFolder);
        }});
}

/// The file lies where this add-on put it: as long as it is what was recorded, nobody is asked.
void CAddonInstaller::decideAgain(File& file, const FileInfo& entry)
{
    LogLines log;
    const CAddon_Item& item = *file.item;
    const QString target = targetOf(item);
    const Files& files = m_context.services.files;
    file.exists = true;
    file.before = printOf(entry);
    log.line(u"   File already exists.");
    const AircraftEdit* edit = editOf(item);
    const bool folder = entry.folder && !entry.link;
    if (folder || (edit && !edit->problem.isEmpty() && edit->merged)) {
        file.code = InstallCode::Error;
    } else if (file.code == InstallCode::Installed && !(edit && edit->merged)) {
        file.changed = !originals::isRecorded(
            files, target, entry, m_details.recorded()->checks.value(item.detailKey));
        if (file.changed)
            file.code = askReplace(file, files.info(target).value_or(entry), log);
        else if (m_details.options().replace == ReplacePolicy::No)
            file.code = InstallCode::ClientDeclined;
        if (file.code == InstallCode::Installed && m_details.moreRecentIsKept(item, entry))
            file.code = InstallCode::ExistingIsNewer;
    }
    file.decisions = log.bytes();
}

/// Whether an add-on that was installed later recorded the place too.
bool CAddonInstaller::isCovered(const CAddon_Item& item) const
{
    const QList<DetailRecord> others = m_details.recorded()->sharers.at(targetOf(item));
    return std::any_of(others.cbegin(), others.cend(), [&item](const DetailRecord& other) {
        return other.key > item.detailKey;
    });
}

Result CAddonInstaller::setAsideChanged(const QString& target)
{
    const ResultOf<QString> aside = originals::setAside(*m_release, target, target);
    if (!aside)
        return aside.error();
    m_results.add(resultgroup::specialActions,
                  target,
                  u" had been changed since it was installed; the changed file was kept as '"_s +
                      *aside + u"'."_s);
    return Result::success();
}

Result CAddonInstaller::recordAgain()
{
    if (m_details.inPlace())
        return recordInPlace();
    using namespace modDatabase_Addon;
    const qint64 key = m_record.key;
    for (auto* forget : {&deleteOriginalsOf, &deleteDetailsOf, &deleteSceneryAreasOf}) {
        if (Result gone = forget(m_database, key); !gone)
            return gone;
    }
    if (Result updated = updateAddon(m_database, m_record); !updated)
        return updated;
    if (const auto completed = completeAddon(m_database, m_record); !completed)
        return completed.error();
    if (Result recorded = recordFiles(); !recorded)
        return recorded;
    if (Result recorded = recordMissing(); !recorded)
        return recorded;
    if (Result recorded = recordPanelPictures(); !recorded)
        return recorded;
    return recordAircraft();
}

/// Files that were in the File Cabinet and could not be had from there stay recorded, so that they
/// are told as missing and can be repaired. Where something else stands it is not ours.
Result CAddonInstaller::recordMissing()
{
    const RecordedAddon& before = *m_details.recorded();
    QSet<qint64> lost;
    for (const File& file : m_files) {
        const bool failed =
            file.code == InstallCode::NotExtracted || file.code == InstallCode::Error;
        if (failed && file.item->detailKey != 0)
            lost.insert(file.item->detailKey);
    }
    for (const DetailRecord& row : m_details.missingFiles())
        lost.insert(row.key);
    QList<DetailRecord> rows;
    QList<Fingerprint> checks;
    for (const DetailRecord& row : before.files) {
        if (!lost.contains(row.key) || m_context.services.files.entry(row.location + row.name))
            continue;
        rows.append(row);
        checks.append(before.checks.value(row.key));
    }
    if (rows.isEmpty())
        return Result::success();
    const auto added = modDatabase_Addon::addDetails(m_database, m_record.key, rows, checks);
    return added ? Result::success() : added.error();
}

/// Thumbnails that a panel had before it went to the File Cabinet.
Result CAddonInstaller::recordPanelPictures()
{
    for (const File& file : m_files) {
        if (file.code != InstallCode::Installed ||
            file.item->enumAddonFileType != FileType::PanelConfiguration)
            continue;
        ItemDetailRecord row;
        row.item = targetOf(*file.item);
        const QString picture = pictures::itemThumbnail(m_context.global, row.item, {});
        if (picture.isEmpty() || !m_context.services.files.isFile(picture) ||
            modDatabase_Addon::itemDetail(m_database, ItemTable::Panel, row.item))
            continue;
        if (Result set = modDatabase_Addon::setItemDetail(m_database, ItemTable::Panel, row); !set)
            return set;
    }
    return Result::success();
}

/// They come back for files that cannot be put in their place.
void CAddonInstaller::noteChecksBefore()
{
    for (const File& file : m_files) {
        if (file.code != InstallCode::Installed || !replacesOwn(*file.item))
            continue;
        if (const auto place = m_context.services.gate.place(targetOf(*file.item)))
            m_closing.checksBefore.append(
                {*place,
                 file.item->detailKey,
                 m_details.recorded()->checks.value(file.item->detailKey)});
    }
}

Result CAddonInstaller::recordInPlace()
{
    using namespace modDatabase_Addon;
    for (const File& file : m_files) {
        if (file.code != InstallCode::Installed || !replacesOwn(*file.item))
            continue;
        if (Result noted = setCheck(m_database, file.item->detailKey, file.after); !noted)
            return noted;
    }
    if (Result recorded = recordVariantData(); !recorded)
        return recorded;
    if (m_details.completes()) {
        if (Result updated = updateAddon(m_database, m_record); !updated)
            return updated;
        if (m_record.description != m_details.recorded()->record.description) {
            if (Result set = setDescription(m_database, m_record.key, m_record.description); !set)
                return set;
        }
    }
    if (Result recorded = recordFiles(); !recorded)
        return recorded;
    return recordAircraft();
}

/// Rows of files that were new to the add-on and could not be put in their place.
void CAddonInstaller::forgetFailed()
{
    for (const File& file : m_files) {
        if (file.code != InstallCode::Error || replacesOwn(*file.item))
            continue;
        const CAddon_Item& item = *file.item;
        const auto rows = modDatabase_Addon::ownersOf(
            m_database, item.sFolder_Installation, item.sName_Installation);
        for (const DetailRecord& row : rows ? *rows : QList<DetailRecord>()) {
            if (row.masterKey != m_record.key)
                continue;
            (void)modDatabase_Addon::deleteOriginal(m_database, row.key);
            (void)modDatabase_Addon::deleteDetail(m_database, row.key);
        }
    }
}

Result CAddonInstaller::recordVariantData()
{
    if (!m_variantData)
        return Result::success();
    for (const DetailRecord& row : m_details.recorded()->files) {
        if (equalNoCase(row.filename, m_details.sVariantDataFilename))
            return modDatabase_Addon::setCheck(m_database, row.key, *m_variantData);
    }
    QList<DetailRecord> rows = {variantDataRow()};
    const ResultOf<qint64> added =
        modDatabase_Addon::addDetails(m_database, m_record.key, rows, {*m_variantData});
    return added ? Result::success() : added.error();
}

/// Areas that came back may have other numbers.
Result CAddonInstaller::recordAreasAgain(const QList<DetailRecord>& added)
{
    const QList<DetailRecord> details =
        added + (m_details.inPlace() ? m_details.recorded()->files : QList<DetailRecord>());
    for (const AddedArea& one : std::as_const(m_areas)) {
        for (const SceneryAreaRecord& area : m_details.recorded()->areas) {
            if (!winpath::same(area.path, one.wanted.folder))
                continue;
            if (Result gone = modDatabase_Addon::deleteSceneryArea(m_database, area); !gone)
                return gone;
        }
    }
    return recordAreas(details);
}

/// What the record has and the source lacks: told, and a failure where it is not there either.
void CAddonInstaller::tellMissing()
{
    for (const DetailRecord& row : m_details.missingFiles()) {
        const QString path = row.location + row.name;
        const auto entry = m_context.services.files.entry(path);
        const bool whole =
            entry && originals::isRecorded(m_context.services.files,
                                           path,
                                           *entry,
                                           m_details.recorded()->checks.value(row.key));
        m_failedFiles += !whole;
        m_results.add(resultgroup::notInstalled,
                      path,
                      u" was NOT reinstalled because its source does not hold it any more."_s);
    }
}

void CAddonInstaller::Reinstall_End()
{
    m_context.global.currentProcedure = u"Private Sub Reinstall_End"_s;
    if (m_failure && m_details.recorded()->fromCabinet)
        Cabinet_TakeOut();
    cleanUp();
    m_log.line(u"Reinstalling addon ...end.");
    m_log.flush();
}

} // namespace vt
