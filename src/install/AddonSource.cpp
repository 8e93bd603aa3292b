#include "install/AddonSource.h"

#include "archive/CZIP.h"
#include "install/FolderNames.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype sourceFileLimit = 200'000;

/// Folder texts of one listed archive with the archive's own place before them, each made once.
class NestedFolders
{
public:
    explicit NestedFolders(const QString& nestedPath) : m_nestedPath(nestedPath) {}

    const QString& of(const QString& folder)
    {
        if (m_nestedPath.isEmpty())
            return folder;
        if (m_lastIn.constData() == folder.constData() && !m_lastOut.isEmpty())
            return m_lastOut;
        auto found = m_texts.constFind(folder);
        if (found == m_texts.constEnd())
            found = m_texts.insert(folder, QString(m_nestedPath + folder));
        m_lastIn = folder;
        m_lastOut = *found;
        return m_lastOut;
    }

private:
    QString m_nestedPath;
    QString m_lastIn;
    QString m_lastOut;
    QHash<QString, QString> m_texts;
};

} // namespace

AddonSource::AddonSource(Services& services) : m_services(services) {}

AddonSource::~AddonSource() = default;

ResultOf<std::unique_ptr<AddonSource>>
AddonSource::open(Services& services, const QString& path, QStringList passwords)
{
    std::unique_ptr<AddonSource> source(new AddonSource(services));
    source->m_passwords = std::move(passwords);
    const QString plain = winpath::withoutTrailing(path);
    const std::optional<FileInfo> info = services.files.info(plain);
    if (!info) {
        return Result::failure(u"The add-on '"_s + plain + u"' was not found."_s,
                               ErrorKind::Surroundings);
    }
    const Result opened = info->folder           ? source->openFolder(plain)
                          : isArchiveName(plain) ? source->openArchive(plain)
                                                 : source->openPlainFile(plain);
    if (!opened.ok)
        return opened;
    return source;
}

Result AddonSource::openFolder(const QString& folder)
{
    m_type = SourceType::Folder;
    m_path = winpath::asFolder(folder);
    m_base = m_path;
    auto listing = listFolder(m_services.files, m_path, sourceFileLimit);
    if (!listing)
        return listing.error();
    m_folderFiles = std::move(listing->files);
    m_remarks = std::move(listing->passedOver);
    m_files = qsizetype(m_folderFiles.size());
    for (const ListedFile& file : m_folderFiles)
        m_bytes += file.size;
    return Result::success();
}

Result AddonSource::openArchive(const QString& file)
{
    m_type = endsWithNoCase(file, u".rar") ? SourceType::Rar : SourceType::Zip;
    m_path = file;
    m_archive = std::make_unique<CZIP>(m_services);
    m_archive->sZIPFile = file;
    m_archive->boolImbeddedZIPs_Process = true;
    m_archive->boolPasswords_Ask = true;
    m_archive->sarrayPasswords = m_passwords;
    if (!m_archive->GetItems()) {
        Result failed = m_archive->result();
        if (failed.kind == ErrorKind::None)
            failed.kind = ErrorKind::Surroundings;
        failed.ok = false;
        return failed;
    }
    m_passwords = m_archive->sarrayPasswords;
    m_remarks = m_archive->remarks();
    m_bytes = m_archive->colZIPContents.front().bytes;
    for (const CZIPFile& listed : m_archive->colZIPContents) {
        for (const CZIPFileItem& entry : listed.varZIPItems) {
            if (entry.kind == EntryKind::File) {
                ++m_files;
            } else if (entry.kind != EntryKind::Folder) {
                m_remarks.append(u"'"_s + listed.nestedPath + entry.fullName() +
                                 u"' is left out: it is no ordinary file but a link or device."_s);
            }
        }
    }
    return Result::success();
}

Result AddonSource::openPlainFile(const QString& file)
{
    const std::optional<FileInfo> info = m_services.files.info(file);
    m_type = SourceType::Folder;
    m_path = file;
    m_base = winpath::parent(file);
    m_folderFiles.push_back({QString(), info->name, info->size, info->modifiedNs});
    m_bytes = info->size;
    m_files = 1;
    return Result::success();
}

QStringList AddonSource::sourceFiles() const
{
    const QStringList volumes = m_archive ? m_archive->volumes() : QStringList();
    return volumes.isEmpty() ? QStringList{m_path} : volumes;
}

QString AddonSource::plainName() const
{
    const bool folder = m_path.endsWith(u'\\');
    return foldernames::withoutRepositoryEnding(folder ? winpath::name(m_path)
                                                       : winpath::baseName(m_path));
}

void AddonSource::fill(CAddon_ItemGroup& group) const
{
    group.sSource_Name = m_path;
    group.lngSource_Size = m_bytes;
    group.lngSource_Type = qint32(m_type);
    group.lngSource_Total_Files = qint32(m_files);
    group.reserve(m_files);
    if (m_archive)
        fillFromArchive(group);
    else
        fillFromFolder(group);
}

void AddonSource::fillFromArchive(CAddon_ItemGroup& group) const
{
    // Keys of the items that are archives themselves, by where they lie.
    QHash<std::pair<int, int>, qint32> archiveItems;
    for (size_t i = 0; i < m_archive->colZIPContents.size(); ++i) {
        const CZIPFile& listed = m_archive->colZIPContents[i];
        const qint32 holder = archiveItems.value({listed.inParent.archive, listed.inParent.key}, 0);
        NestedFolders folders(listed.nestedPath);
        for (const CZIPFileItem& entry : listed.varZIPItems) {
            if (entry.kind != EntryKind::File)
                continue;
            CAddon_Item item;
            item.lngKey_AssociatedZip = holder;
            item.sName = entry.sFilename;
            item.sFolder_Current = folders.of(entry.sPath);
            item.size = entry.lngSize_Uncompressed;
            item.boolExtractable = listed.reader->readable(entry.lngKey).ok;
            item.entry = {int(i), entry.lngKey};
            const qint32 key = group.Add(std::move(item)).lngKey;
            if (isArchiveName(entry.sFilename))
                archiveItems.insert({int(i), entry.lngKey}, key);
        }
    }
}

void AddonSource::fillFromFolder(CAddon_ItemGroup& group) const
{
    for (const ListedFile& file : m_folderFiles) {
        CAddon_Item item;
        item.sName = file.name;
        item.sFolder_Current = file.folder;
        item.size = file.size;
        group.Add(std::move(item));
    }
}

QString AddonSource::filePath(const CAddon_Item& item) const
{
    return m_archive ? QString() : m_base + item.sFolder_Current + item.sName;
}

ResultOf<Content> AddonSource::content(const CAddon_Item& item) const
{
    if (m_archive)
        return m_archive->entryContent(item.entry);
    const size_t at = size_t(item.lngKey) - 1;
    if (at >= m_folderFiles.size()) {
        return Result::failure(u"'"_s + item.sName + u"' is no file of '"_s + m_path + u"'."_s);
    }
    return contentOfFile(m_services.files, filePath(item), m_folderFiles[at]);
}

Result AddonSource::readable(const CAddon_Item& item) const
{
    return m_archive ? m_archive->entryReadable(item.entry) : Result::success();
}

ResultOf<QByteArray> AddonSource::read(const CAddon_Item& item, qint64 limit) const
{
    if (m_archive)
        return m_archive->entryBytes(item.entry, limit);
    return m_services.files.read(filePath(item), limit);
}

bool AddonSource::sameBytes(const CAddon_Item& a, const CAddon_Item& b) const
{
    if (a.size != b.size)
        return false;
    if (m_archive) {
        const CZIPFileItem* first = m_archive->entry(a.entry);
        const CZIPFileItem* second = m_archive->entry(b.entry);
        if (!first || !second || first->crc32 != second->crc32)
            return false;
        if (first->crc32Known && second->crc32Known)
            return true;
    }
    const auto first = read(a, a.size);
    const auto second = read(b, b.size);
    return first && second && *first == *second;
}

} // namespace vt
