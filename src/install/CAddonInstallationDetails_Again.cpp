// Preparing an add-on that is recorded: its files go where the record has them, its variations and
// scenery areas come back where they are missing.
#include "addondb/FileCabinet.h"
#include "install/AircraftEdits.h"
#include "install/CAddonInstallationDetails.h"
#include "platform/WinPath.h"
#include "simconfig/AddonVariations.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 dataFileLimit = 4 << 20;

} // namespace

Result CAddonInstallationDetails::prepareAgain(const RecordedAddon& recorded,
                                               const QString& sourcePath,
                                               const InstallOptions& options)
{
    m_context.services.status.text(u"Primary"_s, u"Analyzing addon..."_s);
    m_context.services.files.newOperation();
    m_options = options;
    m_options.to = InstallTo::Simulator;
    auto source = AddonSource::open(m_context.services, sourcePath, passwords());
    if (!source)
        return source.error();
    m_source = std::move(*source);
    m_recorded = std::make_shared<const RecordedAddon>(recorded);
    m_remarks.clear();
    m_leftOut.clear();
    m_followers.clear();
    m_simulatorFolders.clear();
    for (std::vector<InstallationGroup>& family : m_groups)
        family.clear();
    AddonItemGroup_Create();
    m_addon->lngKey = qint32(recorded.record.key);
    m_addon->sGroupName = recorded.record.name;
    m_addon->sGroupDescription = recorded.record.description;
    const Gate& gate = m_context.services.gate;
    const auto cabinetPath = [&gate](const CAddon_Item& item) {
        return FileCabinet::installedPath(gate, item.sFolder_Current + item.sName);
    };
    m_missingFiles = matchRecorded(
        *m_addon,
        recorded,
        recorded.fromCabinet ? std::function<QString(const CAddon_Item&)>(cabinetPath) : nullptr);
    recordedStorageFolder();
    recordedVariants();
    recordedAreas();
    recordedTraffic();
    if (recorded.fromCabinet && inPlace()) {
        // What was taken out of the simulator comes back; the rest of the add-on is there.
        m_missingFiles.clear();
        for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
            const QString path = cabinetPath(item);
            if (item.detailKey != 0 || path.isEmpty())
                continue;
            item.setPreferred(winpath::parent(path), winpath::name(path));
            item.boolProcess = true;
        }
    }
    m_missingFiles.removeIf([](const DetailRecord& row) {
        return equalNoCase(row.filename, addonvariations::dataFilename()); // made by ourselves
    });
    AddonItems_UpdateTargetExists();
    return Result::success();
}

void CAddonInstallationDetails::recordedStorageFolder()
{
    const QString& addons = m_context.global.addonsFolder;
    for (const DetailRecord& row : m_recorded->files) {
        if (!winpath::isBelow(row.location, addons))
            continue;
        const QString below = row.location.sliced(addons.size());
        m_storageFolder = addons + below.section(u'\\', 0, 0) + u'\\';
        return;
    }
    chooseStorageFolder();
}

bool CAddonInstallationDetails::isStanding(const QString& file,
                                           const QString& title,
                                           const QString& texture) const
{
    return std::any_of(m_standingVariations.cbegin(),
                       m_standingVariations.cend(),
                       [&](const addonvariations::Variation& one) {
                           return winpath::same(one.file, file) &&
                                  (equalNoCase(one.title, title) ||
                                   equalNoCase(one.texture, texture));
                       });
}

/// What the data file tells of the add-on's variations, and which of them are in the files.
void CAddonInstallationDetails::readRecordedVariations()
{
    QByteArray bytes;
    for (const DetailRecord& row : m_recorded->files) {
        if (!equalNoCase(row.filename, addonvariations::dataFilename()))
            continue;
        if (const auto read = m_context.services.files.read(row.location + row.name, dataFileLimit))
            bytes = *read;
    }
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        if (!item.boolProcess || !equalNoCase(item.sName, addonvariations::dataFilename()))
            continue;
        item.boolProcess = false;
        if (const auto read = m_source->read(item, dataFileLimit); read && bytes.isEmpty())
            bytes = *read;
    }
    const ConfigAccess access(m_context.services);
    m_standingVariations = addonvariations::find(access, m_recorded->record.key, m_recorded->files);
    m_recordedVariations = addonvariations::readDataFile(bytes, m_context.services.ansi);
    if (m_recordedVariations.isEmpty())
        m_recordedVariations = m_standingVariations; // the data file is lost
}

/// One group an aircraft, with those of its variations that its aircraft.cfg lacks.
void CAddonInstallationDetails::recordedVariants()
{
    readRecordedVariations();
    for (const addonvariations::Variation& variation : std::as_const(m_recordedVariations)) {
        const bool there = isStanding(variation.file, variation.title, variation.texture);
        if (there)
            continue;
        InstallationGroup group;
        group.family = MappedGroup::Texture;
        group.recorded = true;
        group.repaint = true;
        group.method = InstallationMethod::NewRepaint;
        group.name = variation.title;
        group.aircraftFolder = winpath::parent(variation.file);
        group.targetFolder = group.aircraftFolder;
        VariantDetails details;
        details.title = variation.title;
        details.variation = variation.texture;
        details.texture = variation.texture;
        details.lines = variation.lines;
        for (const QString& line : variation.lines) {
            if (startsWithNoCase(line.trimmed(), u"ui_variation"))
                details.variation = line.section(u'=', 1).trimmed();
        }
        group.variants = {details};
        groups(MappedGroup::Texture).push_back(std::move(group));
    }
}

void CAddonInstallationDetails::recordedAreas()
{
    if (m_recorded->isStored()) {
        storedAreas();
        return;
    }
    for (const SceneryAreaRecord& area : m_recorded->areas) {
        InstallationGroup group;
        group.family = MappedGroup::Scenery;
        group.recorded = true;
        group.name = area.title;
        group.targetFolder = winpath::asFolder(area.path);
        group.sceneryTitle = area.title;
        group.sceneryLibraryUpdate = true;
        groups(MappedGroup::Scenery).push_back(std::move(group));
    }
}

/// Areas left the library when the add-on went to the File Cabinet: those that it had come back
/// under their titles. Without a record of them its scenery folders get some again.
void CAddonInstallationDetails::storedAreas()
{
    const GlobalRecord& global = m_context.global;
    const auto recordedArea = [this](const QString& folder) -> const SceneryAreaRecord* {
        for (const SceneryAreaRecord& area : m_recorded->areas) {
            if (winpath::same(area.path, folder))
                return &area;
        }
        return nullptr;
    };
    QHash<NoCase, qsizetype> known;
    std::vector<InstallationGroup>& sceneries = groups(MappedGroup::Scenery);
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (!item.boolProcess || item.enumAddonFileType != FileType::Scenery ||
            !equalNoCase(winpath::name(item.sFolder_Installation), u"scenery"))
            continue;
        const QString area = winpath::parent(item.sFolder_Installation);
        const SceneryAreaRecord* recorded = recordedArea(area);
        const bool usual = m_recorded->areas.isEmpty() &&
                           winpath::isBelow(area, global.sceneryAddonFolder) &&
                           !winpath::same(area, global.sceneryAddonFolder);
        if (!recorded && !usual)
            continue;
        if (!known.contains(NoCase{area})) {
            known.insert(NoCase{area}, qsizetype(sceneries.size()));
            InstallationGroup group;
            group.family = MappedGroup::Scenery;
            group.name = winpath::name(area);
            group.targetFolder = area;
            group.sceneryTitle = recorded ? recorded->title : group.name;
            group.sceneryLibraryUpdate = true;
            sceneries.push_back(std::move(group));
        }
        sceneries[size_t(known.value(NoCase{area}))].items.append(item.lngKey);
    }
}

bool CAddonInstallationDetails::mergesInto(const CAddon_Item& item) const
{
    if (typeGroupOf(item.enumAddonFileType) != TypeGroup::AircraftConfiguration)
        return false;
    if (!inPlace() || (m_completes && recordedRow(item) == 0))
        return isMerged(item, m_context);
    // What it had been merged into then is kept.
    const auto kept =
        m_recorded->originals.constFind(m_completes ? recordedRow(item) : item.detailKey);
    return kept != m_recorded->originals.cend() && !kept->keptFile.isEmpty() &&
           hasAircraftSections(m_context.global.originalsFolder + kept->keptFile, m_context) &&
           isMerged(item, m_context);
}

bool CAddonInstallationDetails::replacesOwn(const CAddon_Item& item) const
{
    if (m_completes && recordedRow(item) == 0)
        return false;
    return inPlace() && typeGroupOf(item.enumAddonFileType) == TypeGroup::AircraftConfiguration &&
           item.boolTargetExists && !mergesInto(item);
}

} // namespace vt
