#include "import/ImportFiles.h"

#include "addondb/AddonDatabase.h"
#include "addondb/AddonList.h"
#include "platform/FolderListing.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype groupFileLimit = 500'000;

bool isBelowOne(const QString& folder, const QSet<NoCase>& folders, const QString& top)
{
    for (QString up = folder; up.size() > top.size(); up = winpath::parent(up)) {
        if (folders.contains(NoCase{up}))
            return true;
    }
    return false;
}

} // namespace

Result ImportFiles::readRecords(Connection* database)
{
    m_recorded.clear();
    m_imported.clear();
    m_taken.clear();
    if (!database)
        return Result::success();
    ResultOf<QHash<NoCase, qint64>> places = standingPlaces(*database);
    if (!places)
        return places.error();
    m_recorded = std::move(*places);
    const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(*database);
    if (!addons)
        return addons.error();
    for (const AddonRecord& addon : *addons) {
        if (addon.status == InstallationStatus::Imported)
            m_imported.insert(addon.key);
    }
    return Result::success();
}

ImportFiles::Owner ImportFiles::ownerOf(const QString& path, qint64* key) const
{
    const auto found = m_recorded.constFind(NoCase{path});
    if (found == m_recorded.cend())
        return Owner::Nobody;
    if (key)
        *key = *found;
    return m_imported.contains(*found) ? Owner::Imported : Owner::Installed;
}

bool ImportFiles::isNonCritical(const QString& name) const
{
    if (equalNoCase(name, u"thumbnail.jpg"))
        return false; // shown by the simulator
    const FileType type = classify(name, m_generation);
    return type == FileType::Document || type == FileType::Other;
}

bool ImportFiles::isFree(const QString& path, const QString& name) const
{
    const bool ours = endsWithNoCase(name, u".vtb") || endsWithNoCase(name, u".vt2") ||
                      startsWithNoCase(name, u"~vt");
    return !ours && !m_recorded.contains(NoCase{path}) && !m_taken.contains(NoCase{path}) &&
           (m_all || !isNonCritical(name));
}

void ImportFiles::take(CAddon_ItemGroup& group,
                       const QString& folder,
                       MappedGroup kind,
                       const QSet<NoCase>& except)
{
    const ResultOf<FolderListing> listing = listFolder(m_files, folder, groupFileLimit);
    if (!listing)
        return;
    QString location;
    QString relative;
    bool excluded = false;
    for (const ListedFile& file : listing->files) {
        if (location.isEmpty() || file.folder != relative) {
            relative = file.folder;
            location = folder + relative;
            excluded = !except.isEmpty() && isBelowOne(location, except, folder);
        }
        const QString path = location + file.name;
        if (excluded || !isFree(path, file.name))
            continue;
        m_taken.insert(NoCase{path});
        CAddon_Item item;
        item.sName = file.name;
        item.sFolder_Current = location;
        item.setPreferred(location, file.name);
        item.enumMappedGroup = kind;
        item.size = file.size;
        item.AnalyzeType(m_generation);
        group.lngSource_Size += file.size;
        ++group.lngSource_Total_Files;
        group.Add(std::move(item));
    }
}

void ImportFiles::takeOnly(CAddon_ItemGroup& group)
{
    group.lngSource_Size = 0;
    group.lngSource_Total_Files = 0;
    QList<qint32> others;
    for (const CAddon_Item& item : group.colAddonItems()) {
        const QString path = item.sFolder_Current + item.sName;
        if (!isFree(path, item.sName)) {
            others.append(item.lngKey);
            continue;
        }
        m_taken.insert(NoCase{path});
        group.lngSource_Size += item.size;
        ++group.lngSource_Total_Files;
    }
    for (const qint32 key : std::as_const(others))
        group.Remove(key);
}

} // namespace vt
