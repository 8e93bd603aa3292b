// Preparing what a recorded add-on lacks of its source: the proposal of a new installation, in
// which what is recorded is left out and the rest goes to where its neighbours went.
#include "install/CAddonInstallationDetails.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"

#include <QHash>
#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

Result CAddonInstallationDetails::prepareRest(const RecordedAddon& recorded,
                                              const QString& sourcePath,
                                              const InstallOptions& options,
                                              const QStringList& onlyFiles)
{
    if (recorded.isStored())
        return Result::failure(
            u"'"_s + recorded.record.name +
            u"' is kept in the File Cabinet, where it cannot be completed. Remove it and install it again."_s);
    m_context.services.status.text(u"Primary"_s, u"Analyzing addon..."_s);
    m_context.services.files.newOperation();
    m_recorded = std::make_shared<const RecordedAddon>(recorded);
    m_completes = true;
    m_missingFiles.clear();
    m_recordedRows.clear();
    for (const DetailRecord& row : recorded.files)
        m_recordedRows.insert(NoCase{row.location + row.name}, row.key);
    InstallOptions wanted = options;
    const AddonRecord& record = recorded.record;
    wanted.name = options.name.value_or(record.name);
    wanted.description = options.description.value_or(record.description);
    wanted.authors = options.authors.value_or(record.authors);
    wanted.rating = options.rating.value_or(int(record.rating));
    wanted.masterKey = record.key;
    wanted.to = InstallTo::Simulator;
    m_standingVariations =
        addonvariations::find(ConfigAccess(m_context.services), record.key, recorded.files);
    if (wanted.aircraftFolder.isEmpty())
        wanted.aircraftFolder = standingAircraft();
    if (Result proposed = propose(sourcePath, wanted); !proposed)
        return proposed;
    readRecordedVariations();
    if (!followRecorded())
        return Result::failure(
            u"'"_s + m_source->path() + u"' is not what '"_s + record.name +
            u"' was installed from: it holds other files. Install it as an addon of its own."_s);
    markRest(onlyFiles);
    AddonItems_UpdateTargetExists();
    if (!AddonItemGroup_IsAnythingMarkedForInstall())
        return Result::failure(u"'"_s + record.name + u"' has everything that '"_s +
                               m_source->path() + u"' holds; nothing is left to install."_s);
    return Result::success();
}

/// The repaints of an add-on that concerns one aircraft belong to that one.
QString CAddonInstallationDetails::standingAircraft() const
{
    QString aircraft;
    for (const addonvariations::Variation& one : m_standingVariations) {
        const QString folder = winpath::parent(one.file);
        if (!aircraft.isEmpty() && !winpath::same(aircraft, folder))
            return {};
        aircraft = folder;
    }
    return aircraft;
}

/// What is recorded is told its place, and what lies beside or below it in the source follows it,
/// whatever would be proposed today. False: the source is another one, because it has not even half
/// of what is recorded.
bool CAddonInstallationDetails::followRecorded()
{
    const auto matched = m_addon->Clone();
    (void)matchRecorded(*matched, *m_recorded, nullptr);
    QHash<NoCase, QString> placeOf; // of folders in the source
    qsizetype same = 0;
    for (const CAddon_Item& item : matched->colAddonItems()) {
        if (item.detailKey == 0)
            continue;
        placeOf.insert(NoCase{item.sFolder_Current}, item.sFolder_Installation);
        // A configuration file may have been brought to another form.
        same += m_recorded->checks.value(item.detailKey).size == item.size ||
                equalNoCase(winpath::extension(item.sName), u"cfg");
    }
    if (2 * same < m_recorded->files.size())
        return false;
    const auto target = [&](const QString& folder) -> QString {
        for (QString up = folder; !up.isEmpty(); up = winpath::parent(up)) {
            if (const auto found = placeOf.constFind(NoCase{up}); found != placeOf.cend())
                return *found + folder.sliced(up.size());
        }
        return {};
    };
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        const CAddon_Item& known = *matched->Search(item.lngKey);
        if (known.detailKey != 0) {
            item.setInstallation(known.sFolder_Installation, known.sName_Installation);
            continue;
        }
        const QString folder = target(item.sFolder_Current);
        if (!folder.isEmpty() && item.boolProcess)
            item.setInstallation(folder, item.sName_Installation);
    }
    return true;
}

void CAddonInstallationDetails::markRest(const QStringList& onlyFiles)
{
    const QSet<QString> only(onlyFiles.cbegin(), onlyFiles.cend());
    QList<qint32> marked;
    QList<qint32> others;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        const bool named = only.contains(item.sFolder_Current + item.sName);
        const bool rest = recordedRow(item) == 0 && (named || only.isEmpty());
        if (!rest)
            others.append(item.lngKey);
        else if (named)
            marked.append(item.lngKey);
    }
    AddonItems_InstallationStatus_Modify(others, false);
    AddonItems_InstallationStatus_Modify(marked, true);
}

qint64 CAddonInstallationDetails::recordedRow(const CAddon_Item& item) const
{
    return m_recordedRows.value(NoCase{item.sFolder_Installation + item.sName_Installation});
}

void CAddonInstallationDetails::noteRecordedRows()
{
    for (CAddon_Item& item : m_addon->colAddonItems_Edit())
        item.detailKey = recordedRow(item);
}

bool CAddonInstallationDetails::hasVariation(const InstallationGroup& repaint,
                                             const VariantDetails& variant) const
{
    const QString file = repaint.aircraftFolder + u"aircraft.cfg"_s;
    if (!m_completes || isStanding(file, variant.title, variant.texture))
        return m_completes;
    return std::any_of(
        m_standingVariations.cbegin(), m_standingVariations.cend(), [&](const auto& one) {
            const QString folder =
                CAircraft::folderFor(repaint.aircraftFolder, u"texture"_s, one.texture);
            return winpath::same(one.file, file) &&
                   std::any_of(repaint.items.cbegin(), repaint.items.cend(), [&](qint32 key) {
                       return winpath::same(m_addon->Search(key)->sFolder_Installation, folder);
                   });
        });
}

} // namespace vt
