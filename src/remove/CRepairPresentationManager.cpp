#include "remove/CRepairPresentationManager.h"

#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "addondb/Originals.h"
#include "platform/PathIndex.h"
#include "platform/WinPath.h"
#include "remove/RepairSearch.h"
#include "shell/ErrorLog.h"
#include "shell/OuterLinks.h"

using namespace Qt::StringLiterals;

namespace vt {

/// One run of RepairItems_Fix().
struct CRepairPresentationManager::Work
{
    struct Copied
    {
        CRepairItem* item = nullptr;
        Fingerprint print;
    };

    Work(Context& context, Connection& database, const AddonRecord& addon)
        : journal(database, context.services.gate), actions(context.services.gate, journal),
          keeping{context.services.gate,
                  actions,
                  database,
                  context.global,
                  originals::setAsideFolder(context.services.files, context.global, addon),
                  [this] {
                      if (std::exchange(announced, true))
                          return Result::success();
                      return actions.announceKept(keeping.setAsideFolder);
                  }}
    {}

    JournalTable journal;
    FileTransaction actions;
    bool announced = false;
    originals::ReleaseContext keeping;
    QList<OuterLink> closedLinks;
    std::vector<Copied> copied;
};

CRepairPresentationManager::CRepairPresentationManager(Context& context, Connection& database)
    : m_context(context), m_database(database), m_results(Results::forRemoval())
{}

CRepairPresentationManager::~CRepairPresentationManager() = default;

Result CRepairPresentationManager::Setup(qint64 masterKey)
{
    m_context.global.currentProcedure = u"Public Function Setup"_s;
    m_items.Clear();
    m_search.reset();
    const ResultOf<AddonRecord> addon = modDatabase_Addon::addon(m_database, masterKey);
    if (!addon)
        return addon.error();
    m_addon = *addon;
    const ResultOf<AddonItems> recorded = AddonItems::load(m_database, masterKey);
    if (!recorded)
        return recorded.error();
    const ResultOf<QHash<qint64, Fingerprint>> checks =
        modDatabase_Addon::checksOf(m_database, recorded->details());
    if (!checks)
        return checks.error();
    Services& services = m_context.services;
    services.files.newOperation();
    qint32 key = 0;
    for (const DetailRecord& detail : recorded->details()) {
        ++key;
        if (recorded->coveredBy(detail) != 0)
            continue;
        const ItemState state = recorded->state(m_database, services.gate, detail);
        if (state == ItemState::Ok)
            continue;
        CRepairItem damaged;
        damaged.item.lngKey = key;
        damaged.item.detailKey = qint32(detail.key);
        damaged.item.sName = detail.filename;
        damaged.item.sFolder_Current = detail.location;
        damaged.item.setPreferred(detail.preferredLocation, detail.preferredName);
        damaged.item.setInstallation(detail.location, detail.name);
        damaged.item.AnalyzeType(m_context.global.generation);
        damaged.state = state;
        damaged.recorded = checks->value(detail.key);
        const ResultOf<Place> place = services.gate.place(damaged.path());
        if (const auto base =
                place ? modDatabase_Addon::configBase(m_database, *place) : std::nullopt) {
            damaged.recorded = {base->lastWrittenSize, -1, base->lastWrittenHash};
            damaged.exactOnly = true;
        }
        m_items.Add(std::move(damaged));
    }
    return Result::success();
}

Result CRepairPresentationManager::RepairItems_Analyze()
{
    m_context.global.currentProcedure = u"Public Function RepairItems_Analyze"_s;
    m_context.services.status.text(u"Primary"_s, u"Searching for repair files..."_s);
    m_search = std::make_unique<RepairSearch>(m_context, m_addon);
    if (!anythingDamaged())
        return Result::success();
    if (!m_search->find(m_items))
        return Result::failure(u"The search for files to repair '"_s + m_addon.name +
                                   u"' with was stopped; nothing was changed."_s,
                               ErrorKind::Declined);
    if (!m_items.IncludesAtLeastOneRepairableItem())
        return Result::failure(m_context.global.names.productName +
                               u" could not locate any files to use to repair this "_s +
                               kindWord(m_addon.categories, u"addon"_s) + u'.');
    return Result::success();
}

void CRepairPresentationManager::RepairItems_ChooseMostRecent()
{
    for (CRepairItem& item : m_items.colRepairItems_Edit())
        item.chooseMostRecent();
}

Result CRepairPresentationManager::RepairItems_Fix()
{
    m_context.global.currentProcedure = u"Public Function RepairItems_Fix"_s;
    m_context.services.status.text(u"Primary"_s, u"Repairing..."_s);
    m_results = Results::forRemoval();
    Work work(m_context, m_database, m_addon);
    if (Result begun = begin(work); !begun)
        return begun;
    StatusSink& sink = m_context.services.status;
    std::vector<CRepairItem>& items = m_items.colRepairItems_Edit();
    for (size_t i = 0; i < items.size(); ++i) {
        CRepairItem& item = items[i];
        sink.progress(qint64(i), qint64(items.size()));
        if (sink.cancelled())
            return Result::failure(u"The repair of '"_s + m_addon.name +
                                       u"' was stopped; nothing was changed."_s,
                                   ErrorKind::Declined);
        item.repaired = false;
        item.cause.clear();
        if (item.chosen < 0)
            continue;
        if (Result placed = placeOne(work, item); !placed) {
            if (placed.kind == ErrorKind::DiskFull || placed.kind == ErrorKind::DiskFailed)
                return Result::failure(placed.text + u" Nothing was repaired."_s, placed.kind);
            item.cause = placed.text;
        }
    }
    sink.progress(qint64(items.size()), qint64(items.size()));
    const ResultOf<QList<StepFailure>> applied =
        work.actions.apply({}, [&] { return recordAll(work); });
    if (!applied)
        return applied.error();
    tell(work, *applied);
    return Result::success();
}

Result CRepairPresentationManager::begin(Work& work)
{
    QStringList folders;
    for (const CRepairItem& item : m_items.colRepairItems()) {
        if (item.chosen >= 0 && !folders.contains(item.item.sFolder_Installation))
            folders.append(item.item.sFolder_Installation);
    }
    work.closedLinks = outerlinks::confirm(m_context, folders);
    if (Result begun = work.actions.begin(OperationKind::Repair, m_addon.name); !begun)
        return begun;
    return work.actions.announce(folders, qsizetype(m_items.colRepairItems().size()));
}

Result CRepairPresentationManager::placeOne(Work& work, CRepairItem& item)
{
    const QString path = item.path();
    if (!work.closedLinks.isEmpty()) {
        if (const auto closed = m_context.services.gate.outerLink(item.item.sFolder_Installation))
            return Result::failure(outerlinks::closedText(*closed));
    }
    const ResultOf<Content> content = m_search->content(item.candidates[item.chosen]);
    if (!content)
        return content.error();
    const std::optional<FileInfo> now = m_context.services.files.entry(path);
    if (now && now->folder && !now->link)
        return Result::failure(u"'"_s + path + u"' is a folder now."_s);
    QString keptAs;
    if (now) {
        const ResultOf<QString> kept = originals::setAside(work.keeping, path, path);
        if (!kept)
            return kept.error();
        keptAs = *kept;
    }
    const ResultOf<Fingerprint> placed = work.actions.placeOver(path, *content, printOf(now));
    if (!placed) {
        if (!keptAs.isEmpty()) // not needed; it goes with the other changes
            (void)work.actions.remove(keptAs);
        return placed.error();
    }
    if (!keptAs.isEmpty())
        m_results.add(resultgroup::specialActions,
                      path,
                      u" was damaged or changed; that file was kept as '"_s + keptAs + u"'."_s);
    item.repaired = true;
    work.copied.push_back({&item, *placed});
    return Result::success();
}

/// Inside the commit. The folders that the copies made are the add-on's, to go with it.
Result CRepairPresentationManager::recordAll(Work& work)
{
    for (const Work::Copied& copied : work.copied) {
        if (copied.item->exactOnly)
            continue; // its record is that of the last writing, which holds again
        if (Result noted =
                modDatabase_Addon::setCheck(m_database, copied.item->item.detailKey, copied.print);
            !noted)
            return noted;
    }
    QList<Place> folders;
    for (const QString& folder : work.actions.madeFolders()) {
        if (const ResultOf<Place> place = m_context.services.gate.place(folder))
            folders.push_back(*place);
    }
    return modDatabase_Addon::addFolders(m_database, folders);
}

void CRepairPresentationManager::tell(Work& work, const QList<StepFailure>& failures)
{
    PathIndex failed;
    for (const StepFailure& failure : failures)
        failed.insert(failure.path, failure.text);
    for (const Work::Copied& copied : work.copied) {
        const QString* why = failed.find(copied.item->path());
        if (!why)
            continue;
        copied.item->repaired = false;
        copied.item->cause = *why;
        // The file that lies there is as damaged as before, and so is what is known of it.
        if (!copied.item->exactOnly && copied.item->recorded.size >= 0)
            (void)modDatabase_Addon::setCheck(
                m_database, copied.item->item.detailKey, copied.item->recorded);
    }
    for (const CRepairItem& item : m_items.colRepairItems()) {
        if (item.repaired) {
            m_results.add(resultgroup::processed, item.path(), u" was repaired."_s);
        } else {
            m_results.add(resultgroup::notProcessed, item.path(), u" was NOT repaired."_s);
            if (item.cause.isEmpty())
                continue;
            m_results.addCause(item.path(), item.cause);
            m_context.errors.report(u"Public Function RepairItems_Fix"_s,
                                    textAbout(item.path(), item.cause));
        }
    }
    if (!work.actions.closingFailure().isEmpty())
        m_results.add(resultgroup::failedSpecialActions, work.actions.closingFailure());
}

QString CRepairPresentationManager::missingFilesText() const
{
    QStringList lines;
    for (const CRepairItem& item : m_items.colRepairItems()) {
        if (item.state == ItemState::Missing && !item.repaired)
            lines.append(item.path());
    }
    if (lines.isEmpty())
        return {};
    lines.append(
        u"Restore the missing files to correct the problem. If these files are not important, go to the Files tab, select these items, right click then pick 'Remove Addon Records'."_s);
    return lines.join(u'\n');
}

} // namespace vt
