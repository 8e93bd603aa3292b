#include "remove/RepairSearch.h"

#include "archive/CZIP.h"
#include "platform/FolderListing.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"
#include "simconfig/engine/ConfigNormalizer.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype searchLimit = 1'000'000;
/// Largest configuration file that may have been brought to CR LF when it was installed.
constexpr qint64 normalisedLimit = 16LL * 1024 * 1024;

/// The hash of everything that the content gives; empty when it cannot be read.
QByteArray hashOf(const ResultOf<Content>& content)
{
    if (!content)
        return {};
    Xxh3 hash;
    const Result read = content->transfer([&hash](QByteArrayView piece) {
        hash.add(piece);
        return true;
    });
    return read ? hash.result() : QByteArray();
}

ResultOf<QByteArray> bytesOf(const Content& content)
{
    QByteArray bytes;
    Result read = content.transfer([&bytes](QByteArrayView piece) {
        bytes.append(piece);
        return true;
    });
    if (!read)
        return read;
    return bytes;
}

} // namespace

RepairSearch::RepairSearch(Context& context, const AddonRecord& addon)
    : m_context(context), m_addon(addon)
{}

RepairSearch::~RepairSearch() = default;

bool RepairSearch::find(CRepairItemGroup& items)
{
    m_archives.clear();
    m_seen.clear();
    for (CRepairItem& item : items.colRepairItems_Edit()) {
        item.candidates.clear();
        item.chosen = -1;
        m_wanted[NoCase{item.item.sName_Installation}].append(&item);
        if (!equalNoCase(item.item.sName, item.item.sName_Installation))
            m_wanted[NoCase{item.item.sName}].append(&item);
    }
    const GlobalRecord& global = m_context.global;
    StatusSink& status = m_context.services.status;
    const std::initializer_list<std::function<void()>> places = {
        [&] { searchFolder(global.cabinetFolder); },
        [&] { searchFolder(global.addonsFolder); },
        [&] { searchFolder(global.originalsFolder); },
        [&] { searchSource(); },
        [&] { searchFolder(global.simulatorFolder); },
    };
    qint64 done = 0;
    bool stopped = false;
    for (const auto& search : places) {
        status.progress(done++, qint64(places.size()));
        stopped = stopped || status.cancelled();
        if (!stopped)
            search();
    }
    status.progress(done, qint64(places.size()));
    m_wanted.clear();
    for (CRepairItem& item : items.colRepairItems_Edit()) {
        const bool anyExact = std::any_of(item.candidates.cbegin(),
                                          item.candidates.cend(),
                                          [](const RepairCandidate& one) { return one.exact; });
        if (anyExact)
            item.candidates.removeIf([](const RepairCandidate& one) { return !one.exact; });
    }
    return !stopped;
}

void RepairSearch::searchFolder(const QString& folder)
{
    if (folder.isEmpty())
        return;
    const Files& files = m_context.services.files;
    const ResultOf<FolderListing> listing = listFolder(files, folder, searchLimit);
    if (!listing)
        return; // a folder that is not there holds nothing
    const bool cabinet = winpath::same(folder, m_context.global.cabinetFolder);
    for (const ListedFile& file : listing->files) {
        if (cabinet && endsWithNoCase(file.name, u".zip"))
            searchArchive(folder + file.folder + file.name, false);
        if (!m_wanted.contains(NoCase{file.name}))
            continue;
        RepairCandidate candidate;
        candidate.name = file.name;
        candidate.folder = folder + file.folder;
        candidate.size = file.size;
        candidate.date = QDateTime::fromMSecsSinceEpoch(file.modifiedNs / 1'000'000);
        offer(std::move(candidate));
    }
}

void RepairSearch::searchSource()
{
    const QString& source = m_addon.sourceName;
    const std::optional<FileInfo> info = m_context.services.files.info(source);
    if (!winpath::isAbsolute(source) || !info)
        return;
    if (info->folder) {
        searchFolder(winpath::asFolder(source));
    } else if (m_addon.sourceType == SourceType::Zip || m_addon.sourceType == SourceType::Rar) {
        searchArchive(source, true);
    } else {
        RepairCandidate candidate;
        candidate.name = info->name;
        candidate.folder = winpath::parent(source);
        candidate.date = info->modified();
        candidate.size = info->size;
        offer(std::move(candidate));
    }
}

void RepairSearch::searchArchive(const QString& file, bool innerToo)
{
    auto archive = std::make_unique<CZIP>(m_context.services);
    archive->sZIPFile = file;
    archive->boolImbeddedZIPs_Process = innerToo;
    (void)archive->GetItems(); // of a damaged one, what could be listed
    const int number = int(m_archives.size());
    m_archives.push_back(std::move(archive));
    const std::vector<CZIPFile>& listed = m_archives.back()->colZIPContents;
    for (size_t i = 0; i < listed.size(); ++i) {
        for (const CZIPFileItem& entry : listed[i].varZIPItems) {
            if (entry.kind != EntryKind::File || !m_wanted.contains(NoCase{entry.sFilename}))
                continue;
            RepairCandidate candidate;
            candidate.name = entry.sFilename;
            candidate.folder = file + u'\\' + listed[i].nestedPath + entry.sPath;
            candidate.size = entry.lngSize_Uncompressed;
            candidate.date = QDateTime(entry.dteDate, entry.dteTime);
            candidate.archive = number;
            candidate.entry = EntryRef{int(i), entry.lngKey};
            offer(std::move(candidate));
        }
    }
}

void RepairSearch::offer(RepairCandidate candidate)
{
    const QString path = candidate.folder + candidate.name;
    if (m_seen.contains(NoCase{path}))
        return; // one place may lie inside another
    m_seen.insert(NoCase{path});
    for (CRepairItem* item : m_wanted.value(NoCase{candidate.name})) {
        if (winpath::same(path, item->path()))
            continue; // the damaged file itself
        RepairCandidate own = candidate;
        own.exact = holdsRecorded(own, *item);
        const bool similar = item->recorded.size < 0 || own.size == item->recorded.size;
        if (own.exact || (similar && !item->exactOnly))
            item->candidates.append(own);
    }
}

/// Whether the candidate gives the recorded bytes, as it is or brought to CR LF and ANSI.
bool RepairSearch::holdsRecorded(RepairCandidate& candidate, const CRepairItem& item) const
{
    const Fingerprint& wanted = item.recorded;
    if (wanted.size < 0 || wanted.xxh3.isEmpty())
        return false;
    if (candidate.size == wanted.size && hashOf(content(candidate)) == wanted.xxh3)
        return true;
    if (!isSimulatorConfiguration(item.item.enumAddonFileType) || candidate.size > normalisedLimit)
        return false;
    candidate.normalised = true;
    if (hashOf(content(candidate)) == wanted.xxh3)
        return true;
    candidate.normalised = false;
    return false;
}

ResultOf<Content> RepairSearch::content(const RepairCandidate& candidate) const
{
    const auto plain = [&]() -> ResultOf<Content> {
        if (candidate.archive >= 0)
            return m_archives[size_t(candidate.archive)]->entryContent(candidate.entry);
        const Files& files = m_context.services.files;
        const QString path = candidate.folder + candidate.name;
        const std::optional<FileInfo> now = files.info(path);
        if (!now || now->folder)
            return Result::failure(u"'"_s + path + u"' is no longer there."_s);
        return contentOfFile(files, path, {{}, now->name, now->size, now->modifiedNs});
    };
    ResultOf<Content> content = plain();
    if (!content || !candidate.normalised)
        return content;
    const ResultOf<QByteArray> bytes = bytesOf(*content);
    if (!bytes)
        return bytes.error();
    const ResultOf<NormalizedConfig> normal = normalizeConfig(*bytes, m_context.services.ansi);
    if (!normal)
        return normal.error();
    const qint64 modified = content->modifiedNs;
    content = Content::ofBytes(normal->bytes);
    content->modifiedNs = modified;
    return content;
}

} // namespace vt
