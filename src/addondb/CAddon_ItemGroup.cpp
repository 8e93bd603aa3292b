#include "addondb/CAddon_ItemGroup.h"

#include "archive/CZIP.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

// "|" stands in no file name, so it separates folder and name without doubt.
QString pairKey(QStringView folder, QStringView name)
{
    return foldCase(winpath::withoutTrailing(folder)) + u'|' + foldCase(name);
}

QString nameKeyOf(const CAddon_Item& item)
{
    return foldCase(item.sName);
}

QString folderKeyOf(const CAddon_Item& item)
{
    return foldCase(winpath::withoutTrailing(item.sFolder_Current));
}

QString sourceKeyOf(const CAddon_Item& item)
{
    return pairKey(item.sFolder_Current, item.sName);
}

QString installationKeyOf(const CAddon_Item& item)
{
    return pairKey(item.sFolder_Installation, item.sName_Installation);
}

/// A step folder whose files are meant to go over the others'.
bool isPatchFolder(QStringView folder)
{
    for (const QString& part : winpath::components(folder)) {
        for (const QStringView word : {u"patch", u"update", u"hotfix", u"bugfix", u"fix"}) {
            if (!containsNoCase(part, word))
                continue;
            const bool whole = equalNoCase(part, word);
            const qsizetype at = indexOfNoCase(part, word);
            const bool begins = at == 0 || !part.at(at - 1).isLetter();
            const qsizetype end = at + word.size();
            const bool ends = end == part.size() || !part.at(end).isLetter() ||
                              startsWithNoCase(QStringView(part).sliced(end), u"es");
            if (whole || (begins && ends))
                return true;
        }
    }
    return false;
}

/// Of items with one target: which of them the others give way to, or -1.
qsizetype supersedingItem(const std::vector<const CAddon_Item*>& items)
{
    qsizetype found = -1;
    for (size_t i = 0; i < items.size(); ++i) {
        if (!isPatchFolder(items[i]->sFolder_Current))
            continue;
        if (found >= 0)
            return -1;
        found = qsizetype(i);
    }
    return found;
}

} // namespace

CAddon_Item& CAddon_ItemGroup::Add(CAddon_Item item)
{
    if (item.lngKey <= 0)
        item.lngKey = m_highestKey + 1;
    m_keysAscend = m_keysAscend && item.lngKey > m_highestKey;
    m_highestKey = qMax(m_highestKey, item.lngKey);
    dropIndexes();
    m_items.push_back(std::move(item));
    return m_items.back();
}

bool CAddon_ItemGroup::Remove(qint32 key)
{
    const qsizetype at = positionOf(key);
    if (at < 0)
        return false;
    m_items.erase(m_items.begin() + at);
    dropIndexes();
    return true;
}

void CAddon_ItemGroup::Clear()
{
    m_items.clear();
    m_highestKey = 0;
    m_keysAscend = true;
    dropIndexes();
}

std::vector<CAddon_Item>& CAddon_ItemGroup::colAddonItems_Edit()
{
    m_byName.clear();
    m_byFolder.clear();
    m_byFolderAndName.clear();
    m_byInstallation.clear();
    return m_items;
}

void CAddon_ItemGroup::dropIndexes() const
{
    m_byKey.clear();
    m_byName.clear();
    m_byFolder.clear();
    m_byFolderAndName.clear();
    m_byInstallation.clear();
}

qsizetype CAddon_ItemGroup::positionOf(qint32 key) const
{
    if (m_keysAscend) {
        const auto at = std::lower_bound(
            m_items.begin(), m_items.end(), key, [](const CAddon_Item& item, qint32 wanted) {
                return item.lngKey < wanted;
            });
        return at != m_items.end() && at->lngKey == key ? at - m_items.begin() : -1;
    }
    if (m_byKey.isEmpty()) {
        for (size_t i = m_items.size(); i > 0; --i)
            m_byKey.insert(m_items[i - 1].lngKey, qsizetype(i - 1));
    }
    return m_byKey.value(key, -1);
}

const CAddon_Item* CAddon_ItemGroup::GetCAddon_ItemGivenKey(qint32 key) const
{
    const qsizetype at = positionOf(key);
    return at < 0 ? nullptr : &m_items[size_t(at)];
}

CAddon_Item* CAddon_ItemGroup::edit(qint32 key)
{
    const qsizetype at = positionOf(key);
    return at < 0 ? nullptr : &colAddonItems_Edit()[size_t(at)];
}

const CAddon_ItemGroup::Index& CAddon_ItemGroup::index(Index& slot,
                                                       QString (*keyOf)(const CAddon_Item&)) const
{
    if (slot.isEmpty()) {
        slot.reserve(qsizetype(m_items.size()));
        for (size_t i = 0; i < m_items.size(); ++i)
            slot[keyOf(m_items[i])].append(qint32(i));
    }
    return slot;
}

const CAddon_Item* CAddon_ItemGroup::firstIn(const Index& index, const QString& key) const
{
    const auto found = index.constFind(key);
    return found == index.constEnd() ? nullptr : &m_items[size_t(found->first())];
}

const CAddon_Item* CAddon_ItemGroup::SearchByName(QStringView name) const
{
    return firstIn(index(m_byName, nameKeyOf), foldCase(name));
}

const CAddon_Item* CAddon_ItemGroup::SearchByNameandFSZipFolder(QStringView name,
                                                                QStringView folder) const
{
    return firstIn(index(m_byFolderAndName, sourceKeyOf), pairKey(folder, name));
}

const CAddon_Item* CAddon_ItemGroup::SearchByZipFolderEntry(QStringView folder) const
{
    return firstIn(index(m_byFolder, folderKeyOf), foldCase(winpath::withoutTrailing(folder)));
}

const CAddon_Item* CAddon_ItemGroup::SearchByNameAndKey_AssociatedPanel(QStringView name,
                                                                        qint32 panelKey) const
{
    const CAddon_Item* panel = GetCAddon_ItemGivenKey(panelKey);
    if (!panel)
        return nullptr;
    const Index& names = index(m_byName, nameKeyOf);
    const auto found = names.constFind(foldCase(name));
    if (found == names.constEnd())
        return nullptr;
    for (const qint32 at : *found) {
        const CAddon_Item& item = m_items[size_t(at)];
        if (item.lngKey_AssociatedItem == panelKey ||
            winpath::same(item.sFolder_Current, panel->sFolder_Current))
            return &item;
    }
    return nullptr;
}

const CAddon_Item*
CAddon_ItemGroup::SearchByInstallationNameandInstallationFolder(QStringView name,
                                                                QStringView folder) const
{
    return firstIn(index(m_byInstallation, installationKeyOf), pairKey(folder, name));
}

QList<QList<qint32>> CAddon_ItemGroup::SearchQuicklyForDuplicateFilenames() const
{
    const Index& names = index(m_byName, nameKeyOf);
    QList<QList<qint32>> groups;
    for (size_t i = 0; i < m_items.size(); ++i) {
        const QList<qint32>& at = *names.constFind(nameKeyOf(m_items[i]));
        if (at.size() < 2 || at.first() != qint32(i))
            continue;
        QList<qint32> keys;
        for (const qint32 position : at)
            keys.append(m_items[size_t(position)].lngKey);
        groups.append(keys);
    }
    return groups;
}

QList<QList<qint32>> CAddon_ItemGroup::duplicateTargets() const
{
    // Sorting positions by a hash first keeps 50,000 items from becoming 50,000 texts.
    struct Entry
    {
        size_t hash;
        qint32 at;
    };

    std::vector<Entry> entries;
    entries.reserve(m_items.size());
    const QString* lastFolder = nullptr;
    size_t folderHash = 0;
    for (size_t i = 0; i < m_items.size(); ++i) {
        const CAddon_Item& item = m_items[i];
        if (!item.boolProcess || item.sFolder_Installation.isEmpty())
            continue;
        if (!lastFolder || lastFolder->constData() != item.sFolder_Installation.constData()) {
            lastFolder = &item.sFolder_Installation;
            folderHash = hashNoCase(item.sFolder_Installation);
        }
        entries.push_back({hashNoCase(item.sName_Installation, folderHash), qint32(i)});
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.hash != b.hash ? a.hash < b.hash : a.at < b.at;
    });

    QList<QList<qint32>> groups;
    for (size_t first = 0; first < entries.size();) {
        size_t end = first + 1;
        while (end < entries.size() && entries[end].hash == entries[first].hash)
            ++end;
        if (end - first > 1) {
            QHash<QString, QList<qint32>> same;
            QStringList order;
            for (size_t i = first; i < end; ++i) {
                const QString key = installationKeyOf(m_items[size_t(entries[i].at)]);
                if (!same.contains(key))
                    order.append(key);
                same[key].append(m_items[size_t(entries[i].at)].lngKey);
            }
            for (const QString& key : std::as_const(order)) {
                if (same.value(key).size() > 1)
                    groups.append(same.value(key));
            }
        }
        first = end;
    }
    std::sort(groups.begin(), groups.end(), [this](const auto& a, const auto& b) {
        return positionOf(a.first()) < positionOf(b.first());
    });
    return groups;
}

QList<QList<qint32>> CAddon_ItemGroup::AutomaticallyResolveConflicts(
    const std::function<bool(const CAddon_Item&, const CAddon_Item&)>& sameBytes,
    const ConflictRules& rules)
{
    QList<QList<qint32>> unresolved;
    const auto eliminate = [this](qint32 key) {
        CAddon_Item* item = edit(key);
        item->boolProcess = false;
        m_eliminated.append(item->sFolder_Current + item->sName);
    };
    for (const QList<qint32>& keys : duplicateTargets()) {
        QList<qint32> distinct;
        for (const qint32 key : keys) {
            const CAddon_Item& item = *Search(key);
            const bool known = rules.dropIdentical &&
                               std::any_of(distinct.cbegin(), distinct.cend(), [&](qint32 other) {
                                   const CAddon_Item& first = *Search(other);
                                   return first.size == item.size && sameBytes(first, item);
                               });
            if (known)
                eliminate(key);
            else
                distinct.append(key);
        }
        if (distinct.size() < 2)
            continue;
        std::vector<const CAddon_Item*> items;
        for (const qint32 key : std::as_const(distinct))
            items.push_back(Search(key));
        const qsizetype patch = rules.preferPatches ? supersedingItem(items) : -1;
        if (patch < 0) {
            unresolved.append(distinct);
            continue;
        }
        for (qsizetype i = 0; i < distinct.size(); ++i) {
            if (i != patch)
                eliminate(distinct.at(i));
        }
    }
    return unresolved;
}

bool CAddon_ItemGroup::ContainsAMission() const
{
    return std::any_of(m_items.begin(), m_items.end(), [](const CAddon_Item& item) {
        return item.IsMappedToMissionsGroup() && item.enumAddonFileType == FileType::Flight;
    });
}

bool CAddon_ItemGroup::ContainsACompleteAircraft() const
{
    QList<QString> models;
    for (const CAddon_Item& item : m_items) {
        if (item.enumAddonFileType == FileType::AircraftModel ||
            item.enumAddonFileType == FileType::ModelConfiguration)
            models.append(item.sFolder_Current);
    }
    for (const CAddon_Item& item : m_items) {
        if (item.enumAddonFileType != FileType::Aircraft)
            continue;
        const QString& folder = item.sFolder_Current;
        if (SearchByNameandFSZipFolder(u"aircraft.cfg", folder) &&
            std::any_of(models.cbegin(), models.cend(), [&folder](const QString& model) {
                return startsWithNoCase(model, folder);
            }))
            return true;
    }
    return false;
}

TypeTally CAddon_ItemGroup::tallyTypes() const
{
    TypeTally tally{};
    for (const CAddon_Item& item : m_items)
        item.Item_TallyTypes(tally);
    return tally;
}

void CAddon_ItemGroup::AnalyzeTypes(int generation)
{
    for (CAddon_Item& item : m_items)
        item.AnalyzeType(generation);
}

void CAddon_ItemGroup::Addon_ConfigureZipClass(CZIP& archive) const
{
    archive.sZIPFile = sSource_Name;
    archive.boolImbeddedZIPs_Process = true;
    archive.sImbeddedZIPs_ExtractionFolder.clear(); // inner archives stay in memory
    archive.boolErrorMessages_Show = false;
}

void CAddon_ItemGroup::AddonItems_ResetNamesAndProcessFlag()
{
    for (CAddon_Item& item : colAddonItems_Edit()) {
        item.setInstallation(item.sFolder_PreferredInstallation, item.sName_PreferredInstallation);
        item.boolProcess = true;
    }
}

void CAddon_ItemGroup::AddonItems_SetProcessFlagForAllItems(bool process)
{
    for (CAddon_Item& item : m_items)
        item.boolProcess = process;
}

QString CAddon_ItemGroup::Key_lngKeydteInstalled_CompositeKey_Get() const
{
    return QString::number(lngKey) + u'|' + dteInstalled.toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

void CAddon_ItemGroup::AddonItemZipFolderEntryMappingTable_Update(const QString& zipFolder,
                                                                  const QString& installationFolder)
{
    const QString key = foldCase(winpath::withoutTrailing(zipFolder));
    const qsizetype row = m_zipFolderRows.value(key, -1);
    if (row >= 0) {
        m_installationFolders[row] = installationFolder;
        return;
    }
    m_zipFolderRows.insert(key, m_zipFolders.size());
    m_zipFolders.append(zipFolder);
    m_installationFolders.append(installationFolder);
}

QString CAddon_ItemGroup::AddonItemZipFolderEntryMappingTable_Search(QStringView zipFolder) const
{
    const qsizetype row = m_zipFolderRows.value(foldCase(winpath::withoutTrailing(zipFolder)), -1);
    return row < 0 ? QString() : m_installationFolders.value(row);
}

void CAddon_ItemGroup::Array_sarrayAddonItemZipFolderEntryMappingTable_Set(
    const QStringList& folders)
{
    m_zipFolders = folders;
    m_zipFolderRows.clear();
    for (qsizetype i = folders.size(); i > 0; --i)
        m_zipFolderRows.insert(foldCase(winpath::withoutTrailing(folders.at(i - 1))), i - 1);
}

QStringList CAddon_ItemGroup::Array_sarrayAddonItemMappingTables_Print() const
{
    QStringList lines;
    for (qsizetype i = 0; i < m_zipFolders.size(); ++i)
        lines.append(m_zipFolders.at(i) + u" -> "_s + m_installationFolders.value(i));
    return lines;
}

std::unique_ptr<CAddon_ItemGroup> CAddon_ItemGroup::Clone() const
{
    return std::unique_ptr<CAddon_ItemGroup>(new CAddon_ItemGroup(*this));
}

} // namespace vt
