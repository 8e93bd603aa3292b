#include "addondb/Closing.h"

#include "addondb/AddonDatabase.h"
#include "platform/PathIndex.h"
#include "platform/WinPath.h"

#include <QDataStream>
#include <QIODevice>

using namespace Qt::StringLiterals;

namespace vt {

// Found by their arguments' namespace, which an unnamed one would hide.

static QDataStream& operator<<(QDataStream& out, const Place& place)
{
    return out << quint8(place.root) << place.relative;
}

static QDataStream& operator>>(QDataStream& in, Place& place)
{
    quint8 root = 0;
    in >> root >> place.relative;
    place.root = RootId(root);
    return in;
}

static QDataStream& operator<<(QDataStream& out, const OriginalRecord& r)
{
    return out << r.detailKey << r.masterKey << r.keptFile;
}

static QDataStream& operator>>(QDataStream& in, OriginalRecord& r)
{
    return in >> r.detailKey >> r.masterKey >> r.keptFile;
}

static QDataStream& operator<<(QDataStream& out, const ConfigBaseRecord& r)
{
    return out << r.file << r.keptFile << r.lastWrittenSize << r.lastWrittenHash << r.edits;
}

static QDataStream& operator>>(QDataStream& in, ConfigBaseRecord& r)
{
    return in >> r.file >> r.keptFile >> r.lastWrittenSize >> r.lastWrittenHash >> r.edits;
}

static QDataStream& operator<<(QDataStream& out, const SceneryAreaRecord& r)
{
    return out << r.masterKey << r.detailKey << r.area << r.enabled << r.layer << r.path << r.title
               << r.parameters;
}

static QDataStream& operator>>(QDataStream& in, SceneryAreaRecord& r)
{
    return in >> r.masterKey >> r.detailKey >> r.area >> r.enabled >> r.layer >> r.path >>
           r.title >> r.parameters;
}

static QDataStream& operator<<(QDataStream& out, const FileCheck& r)
{
    return out << r.file << r.detailKey << r.check.size << r.check.modifiedNs << r.check.xxh3;
}

static QDataStream& operator>>(QDataStream& in, FileCheck& r)
{
    return in >> r.file >> r.detailKey >> r.check.size >> r.check.modifiedNs >> r.check.xxh3;
}

namespace {

/// 1 had none of the fields that are read last.
constexpr quint8 closingFormat = 2;

bool unpack(const QByteArray& bytes, InstallationClosing& closing)
{
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    quint8 format = 0;
    in >> format >> closing.masterKey >> closing.library;
    if (format > 1)
        in >> closing.configBasesBefore >> closing.checksBefore;
    return format >= 1 && format <= closingFormat && in.status() == QDataStream::Ok;
}

bool unpack(const QByteArray& bytes, RemovalClosing& closing)
{
    QDataStream in(bytes);
    in.setVersion(QDataStream::Qt_6_4);
    quint8 format = 0;
    in >> format >> closing.masterKey >> closing.dateInstalled >> closing.dateUninstalled >>
        closing.whole >> closing.detailKeys >> closing.passedOn >> closing.originalsGone >>
        closing.foldersGone >> closing.configBases >> closing.configBasesGone >> closing.failed >>
        closing.areasPassedOn >> closing.library >> closing.sceneryAreasKept;
    if (format > 1)
        in >> closing.edited >> closing.archive >> closing.toCabinet >> closing.sceneryAreasGone;
    return format >= 1 && format <= closingFormat && in.status() == QDataStream::Ok;
}

/// The detail rows of an add-on whose files lie at, or below, one of the places.
ResultOf<QList<DetailRecord>>
detailsAt(Connection& database, const Gate& gate, qint64 masterKey, const QList<Place>& places)
{
    PathIndex paths;
    for (const Place& place : places)
        paths.insert(gate.path(place));
    ResultOf<QList<DetailRecord>> found = modDatabase_Addon::detailsOf(database, masterKey);
    if (found)
        found->removeIf([&](const DetailRecord& detail) {
            return !paths.covers(detail.location + detail.name);
        });
    return found;
}

Result closeInstallation(Connection& database,
                         const Gate& gate,
                         const InstallationClosing& closing,
                         const QList<Place>& failed)
{
    if (failed.isEmpty())
        return Result::success();
    if (closing.library.root != RootId::None && failed.contains(closing.library)) {
        // The library is as it was: there are no areas.
        if (Result gone = modDatabase_Addon::deleteSceneryAreasOf(database, closing.masterKey);
            !gone)
            return gone;
    }
    for (const ConfigBaseRecord& before : closing.configBasesBefore) {
        if (!failed.contains(before.file))
            continue;
        Result back = before.edits > 0 ? modDatabase_Addon::setConfigBase(database, before)
                                       : modDatabase_Addon::deleteConfigBase(database, before.file);
        if (!back)
            return back;
    }
    for (const FileCheck& before : closing.checksBefore) {
        if (!failed.contains(before.file))
            continue;
        if (Result back = modDatabase_Addon::setCheck(database, before.detailKey, before.check);
            !back)
            return back;
    }
    const ResultOf<QList<DetailRecord>> rows = detailsAt(database, gate, closing.masterKey, failed);
    if (!rows)
        return rows.error();
    for (const DetailRecord& row : *rows) {
        if (Result gone = modDatabase_Addon::deleteOriginal(database, row.key); !gone)
            return gone;
        if (Result gone = modDatabase_Addon::deleteDetail(database, row.key); !gone)
            return gone;
    }
    return Result::success();
}

/// Rows of one file each, for a part of an add-on or one that could not go whole.
Result deleteRows(Connection& database, const QList<qint64>& detailKeys)
{
    for (const qint64 key : detailKeys) {
        if (Result gone = modDatabase_Addon::deleteOriginal(database, key); !gone)
            return gone;
        if (Result gone = modDatabase_Addon::deleteDetail(database, key); !gone)
            return gone;
    }
    return Result::success();
}

Result deleteWholeAddon(Connection& database, const RemovalClosing& closing)
{
    using namespace modDatabase_Addon;
    const qint64 key = closing.masterKey;
    for (auto* remove : {&deleteOriginalsOf,
                         &deleteDetailsOf,
                         &deleteSceneryAreasOf,
                         &deletePicturesOf,
                         &deleteDescription}) {
        if (Result gone = remove(database, key); !gone)
            return gone;
    }
    if (Result told =
            setDateUninstalled(database, key, closing.dateInstalled, closing.dateUninstalled);
        !told)
        return told;
    return deleteMaster(database, key);
}

/// The files' rows stay, to tell where they belong, and those of the areas, for their titles; what
/// was kept for the files has been given back.
Result storeAddon(Connection& database, const RemovalClosing& closing)
{
    using namespace modDatabase_Addon;
    if (Result gone = deleteOriginalsOf(database, closing.masterKey); !gone)
        return gone;
    return setStatus(database, closing.masterKey, InstallationStatus::FileCabinet);
}

Result closeRemoval(Connection& database,
                    const Gate& gate,
                    const RemovalClosing& closing,
                    const QList<Place>& failedSteps)
{
    using namespace modDatabase_Addon;
    if (closing.archive.root != RootId::None && failedSteps.contains(closing.archive))
        return Result::success(); // nothing else was carried out
    const QList<Place> failed = closing.failed + failedSteps;
    const bool libraryFailed =
        closing.library.root != RootId::None && failedSteps.contains(closing.library);
    for (const OriginalRecord& original : closing.passedOn) {
        if (Result passed = setOriginal(database, original); !passed)
            return passed;
    }
    for (const qint64 key : closing.originalsGone) {
        if (Result gone = deleteOriginal(database, key); !gone)
            return gone;
    }
    if (closing.whole && failed.isEmpty() && closing.sceneryAreasKept.isEmpty()) {
        Result gone =
            closing.toCabinet ? storeAddon(database, closing) : deleteWholeAddon(database, closing);
        if (!gone)
            return gone;
    } else {
        const ResultOf<QList<DetailRecord>> stay =
            detailsAt(database, gate, closing.masterKey, failed);
        if (!stay)
            return stay.error();
        QSet<qint64> staying;
        for (const DetailRecord& row : *stay)
            staying.insert(row.key);
        QList<qint64> going = closing.detailKeys;
        if (closing.whole) {
            const ResultOf<QList<DetailRecord>> all = detailsOf(database, closing.masterKey);
            if (!all)
                return all.error();
            going.clear();
            for (const DetailRecord& row : *all)
                going.push_back(row.key);
        }
        going.removeIf([&](qint64 key) { return staying.contains(key); });
        if (Result gone = deleteRows(database, going); !gone)
            return gone;
        const ResultOf<QList<SceneryAreaRecord>> areas =
            sceneryAreasOf(database, closing.masterKey);
        if (!areas)
            return areas.error();
        const QSet<qint64> named(closing.detailKeys.cbegin(), closing.detailKeys.cend());
        for (const SceneryAreaRecord& area : *areas) {
            const bool goes = closing.whole || named.contains(area.detailKey) ||
                              closing.sceneryAreasGone.contains(area.detailKey);
            const bool passedOn = std::any_of(closing.areasPassedOn.cbegin(),
                                              closing.areasPassedOn.cend(),
                                              [&area](const SceneryAreaRecord& passed) {
                                                  return passed.area == area.area &&
                                                         winpath::same(passed.path, area.path);
                                              });
            if (!goes || (libraryFailed && !passedOn) ||
                closing.sceneryAreasKept.contains(area.detailKey))
                continue;
            if (Result gone = deleteSceneryArea(database, area); !gone)
                return gone;
        }
    }
    if (!closing.areasPassedOn.isEmpty()) {
        if (Result passed = addSceneryAreas(database, closing.areasPassedOn); !passed)
            return passed;
    }
    for (const ConfigBaseRecord& base : closing.configBases) {
        if (failedSteps.contains(base.file))
            continue;
        if (Result written = setConfigBase(database, base); !written)
            return written;
    }
    for (const Place& file : closing.configBasesGone) {
        if (failedSteps.contains(file))
            continue;
        if (Result gone = deleteConfigBase(database, file); !gone)
            return gone;
    }
    for (const FileCheck& edited : closing.edited) {
        if (failedSteps.contains(edited.file) || !detail(database, edited.detailKey))
            continue;
        if (Result noted = setCheck(database, edited.detailKey, edited.check); !noted)
            return noted;
    }
    // A folder in which something stayed is still the installation's.
    QSet<NoCase> holding;
    for (const Place& place : failed) {
        for (QString up = gate.path(place); !up.isEmpty(); up = winpath::parent(up)) {
            const qsizetype known = holding.size();
            holding.insert(NoCase{winpath::withoutTrailing(up)});
            if (holding.size() == known)
                break;
        }
    }
    QList<Place> gone = closing.foldersGone;
    gone.removeIf([&](const Place& folder) {
        return holding.contains(NoCase{winpath::withoutTrailing(gate.path(folder))});
    });
    return deleteFolders(database, gone);
}

} // namespace

QByteArray packClosing(const InstallationClosing& closing)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    out << closingFormat << closing.masterKey << closing.library << closing.configBasesBefore
        << closing.checksBefore;
    return bytes;
}

QByteArray packClosing(const RemovalClosing& closing)
{
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setVersion(QDataStream::Qt_6_4);
    out << closingFormat << closing.masterKey << closing.dateInstalled << closing.dateUninstalled
        << closing.whole << closing.detailKeys << closing.passedOn << closing.originalsGone
        << closing.foldersGone << closing.configBases << closing.configBasesGone << closing.failed
        << closing.areasPassedOn << closing.library << closing.sceneryAreasKept << closing.edited
        << closing.archive << closing.toCabinet << closing.sceneryAreasGone;
    return bytes;
}

Result carryOutClosing(Connection& database,
                       const Gate& gate,
                       OperationKind kind,
                       const QByteArray& closing,
                       const QList<Place>& failed)
{
    const auto damaged = [] {
        return Result::failure(u"The records of an unfinished operation are damaged."_s);
    };
    switch (kind) {
    case OperationKind::Installation: {
        InstallationClosing installation;
        return unpack(closing, installation)
                   ? closeInstallation(database, gate, installation, failed)
                   : damaged();
    }
    case OperationKind::Removal: {
        RemovalClosing removal;
        return unpack(closing, removal) ? closeRemoval(database, gate, removal, failed) : damaged();
    }
    case OperationKind::Configuration:
    case OperationKind::Repair:
        break;
    }
    return Result::success();
}

} // namespace vt
