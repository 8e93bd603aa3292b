#include "addondb/Originals.h"

#include "addondb/AddonDatabase.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::originals {

namespace {

/// Another row lies above this one: the place stays, the stack closes over the gap.
ResultOf<Release> releaseBelow(const ReleaseContext& context,
                               const QString& path,
                               const Fingerprint& check,
                               const std::optional<OriginalRecord>& original,
                               const DetailRecord& above)
{
    Release out;
    out.fate = Fate::Stays;
    out.shared = true;
    const auto kept = modDatabase_Addon::originalOf(context.database, above.key);
    if (kept && !kept->keptFile.isEmpty()) {
        // What the row above keeps is this add-on's version: nobody needs it any more.
        const QString keptPath = context.global.originalsFolder + kept->keptFile;
        if (const auto info = context.gate.files().entry(keptPath)) {
            if (!isRecorded(context.gate.files(), keptPath, *info, check)) {
                const ResultOf<QString> aside = setAside(context, keptPath, path);
                if (!aside)
                    return aside.error();
                out.setAside = *aside;
            }
            if (Result gone = context.actions.removeKnown(keptPath, printOf(info)); !gone)
                return gone;
            out.keptGone = keptPath;
        }
    }
    if (original) {
        out.passedOn = *original;
        out.passedOn.detailKey = above.key;
        out.passedOn.masterKey = above.masterKey;
    } else if (kept) {
        out.aboveForgets = above.key;
    }
    return out;
}

} // namespace

QString setAsideFolder(const Files& files, const GlobalRecord& global, const AddonRecord& addon)
{
    const QString base = global.backupsFolder + winpath::safeName(addon.name) + u" - "_s +
                         QString::number(addon.key);
    QString folder = base + u'\\';
    for (int n = 2; files.exists(folder); ++n)
        folder = base + u' ' + QString::number(n) + u'\\';
    return folder;
}

ResultOf<QString> setAside(const ReleaseContext& context, const QString& from, const QString& path)
{
    if (Result announced = context.announceSetAside(); !announced)
        return announced;
    const ResultOf<Place> place = context.gate.place(path);
    if (!place)
        return place.error();
    QString to = winpath::join(context.setAsideFolder, place->relative);
    for (int n = 2; context.gate.files().entry(to); ++n)
        to = winpath::join(context.setAsideFolder, place->relative + u'.' + QString::number(n));
    if (Result kept = context.actions.keep(from, to); !kept)
        return kept;
    return to;
}

QString keptFolder(qint64 masterKey, int number)
{
    return u"Replaced\\"_s + QString::number(masterKey) +
           (number > 1 ? u' ' + QString::number(number) : QString()) + u'\\';
}

QString keptName(const Gate& gate, const QString& keptFolder, const QString& path)
{
    const ResultOf<Place> place = gate.place(path);
    if (!place)
        return {};
    QString relative = place->relative;
    if (place->root != RootId::Simulator)
        relative.prepend(u'~' + QString::number(int(place->root)) + u'\\');
    return keptFolder + relative;
}

ResultOf<Sharers> Sharers::load(Connection& database, const QList<DetailRecord>& details)
{
    Sharers out;
    const ResultOf<QList<DetailRecord>> rows = modDatabase_Addon::sharersOf(database, details);
    if (!rows)
        return rows.error();
    QHash<qint64, bool> standing;
    for (const DetailRecord& row : *rows) {
        auto known = standing.constFind(row.masterKey);
        if (known == standing.cend()) {
            const ResultOf<AddonRecord> addon = modDatabase_Addon::addon(database, row.masterKey);
            const bool stands = addon && (addon->status == InstallationStatus::Installed ||
                                          addon->status == InstallationStatus::Imported);
            known = standing.insert(row.masterKey, stands);
        }
        if (*known)
            out.m_byPath[NoCase{row.location + row.name}].push_back(row);
    }
    for (QList<DetailRecord>& list : out.m_byPath)
        std::sort(list.begin(), list.end(), [](const DetailRecord& a, const DetailRecord& b) {
            return a.key < b.key;
        });
    return out;
}

QList<DetailRecord> Sharers::at(const QString& path) const
{
    return m_byPath.isEmpty() ? QList<DetailRecord>() : m_byPath.value(NoCase{path});
}

bool isRecorded(const Files& files,
                const QString& path,
                const FileInfo& now,
                const Fingerprint& check)
{
    if (check.size < 0)
        return true; // nothing was recorded: whatever lies there counts as it
    if (now.link || now.size != check.size)
        return false; // no link is ever installed
    if (now.modifiedNs == check.modifiedNs)
        return true;
    const ResultOf<Fingerprint> print = fingerprint(files, path);
    return print && print->xxh3 == check.xxh3;
}

Fate fateOf(const DetailRecord& detail,
            const std::optional<OriginalRecord>& original,
            const QList<DetailRecord>& sharers)
{
    const bool covered =
        std::any_of(sharers.begin(), sharers.end(), [&](const DetailRecord& other) {
            return other.key > detail.key;
        });
    if (covered)
        return Fate::Stays;
    if (original && !original->keptFile.isEmpty())
        return Fate::Restored;
    return sharers.isEmpty() ? Fate::Deleted : Fate::Stays;
}

ResultOf<Release> release(const ReleaseContext& context,
                          const DetailRecord& detail,
                          const Fingerprint& check,
                          const std::optional<OriginalRecord>& original,
                          const QList<DetailRecord>& sharers,
                          const std::optional<FileInfo>& now)
{
    const QString path = detail.location + detail.name;
    for (const DetailRecord& other : sharers) {
        if (other.key > detail.key)
            return releaseBelow(context, path, check, original, other);
    }

    Release out;
    out.shared = !sharers.isEmpty();
    out.fate = fateOf(detail, original, sharers);
    if (out.fate == Fate::Stays)
        return out;
    const bool restores = out.fate == Fate::Restored;
    const QString keptPath =
        restores ? context.global.originalsFolder + original->keptFile : QString();
    if (restores && !context.gate.files().entry(keptPath))
        return Result::failure(u"The file that it had replaced is no longer in '"_s + keptPath +
                               u"', so it was left in place."_s);
    if (now && !isRecorded(context.gate.files(), path, *now, check)) {
        const ResultOf<QString> aside = setAside(context, path, path);
        if (!aside)
            return aside.error();
        out.setAside = *aside;
    }
    if (restores) {
        out.keptGone = keptPath;
        if (Result moved = context.actions.move(keptPath, path, printOf(now)); !moved)
            return moved;
        return out;
    }
    if (now) {
        if (Result gone = context.actions.removeKnown(path, printOf(now)); !gone)
            return gone;
    }
    return out;
}

} // namespace vt::originals
