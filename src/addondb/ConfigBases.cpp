#include "addondb/ConfigBases.h"

#include "addondb/AddonDatabase.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt::configbases {

namespace {

constexpr qint64 baseLimit = 64 * 1024 * 1024;

bool isLastWritten(const QByteArray& bytes, const ConfigBaseRecord& base)
{
    return bytes.size() == base.lastWrittenSize && xxh3(bytes) == base.lastWrittenHash;
}

/// Somebody else's edits lie between: there is no way back to the old bytes.
void dropBase(FileTransaction& actions, const GlobalRecord& global, ConfigBaseRecord& base)
{
    if (base.keptFile.isEmpty())
        return;
    // A kept file that stays behind harms nobody.
    (void)actions.remove(global.originalsFolder + base.keptFile);
    base.keptFile.clear();
}

} // namespace

QString keptFolder(qint64 operation)
{
    return u"Configuration\\"_s + QString::number(operation) + u'\\';
}

ResultOf<ConfigBaseRecord> beforeEdit(Connection& database,
                                      Gate& gate,
                                      FileTransaction& actions,
                                      const GlobalRecord& global,
                                      const QString& file)
{
    const ResultOf<Place> place = gate.place(file);
    if (!place)
        return place.error();
    const ResultOf<QByteArray> now = actions.read(file, baseLimit);
    if (!now)
        return now.error();
    if (auto earlier = modDatabase_Addon::configBase(database, *place)) {
        if (!isLastWritten(*now, *earlier))
            dropBase(actions, global, *earlier);
        return *earlier;
    }
    ConfigBaseRecord base;
    base.file = *place;
    const QString folder = global.originalsFolder + keptFolder(actions.operation());
    if (Result announced = actions.announceKept(folder); !announced)
        return announced;
    base.keptFile = keptFolder(actions.operation()) + winpath::name(file);
    for (int number = 2; gate.files().exists(global.originalsFolder + base.keptFile); ++number)
        base.keptFile = keptFolder(actions.operation()) + winpath::baseName(file) + u' ' +
                        QString::number(number) + u'.' + winpath::extension(file);
    if (Result kept = actions.keep(file, global.originalsFolder + base.keptFile); !kept)
        return kept;
    return base;
}

Result afterEdit(FileTransaction& actions, const QString& file, ConfigBaseRecord& base)
{
    const ResultOf<QByteArray> written = actions.read(file, baseLimit);
    if (!written)
        return written.error();
    base.lastWrittenSize = written->size();
    base.lastWrittenHash = xxh3(*written);
    ++base.edits;
    return Result::success();
}

ResultOf<Undone> afterRemoval(Connection& database,
                              Gate& gate,
                              FileTransaction& actions,
                              const GlobalRecord& global,
                              const QString& file,
                              const QByteArray& before,
                              bool last,
                              bool installed)
{
    Undone out;
    const ResultOf<Place> place = gate.place(file);
    if (!place)
        return place.error();
    auto base = modDatabase_Addon::configBase(database, *place);
    if (!base)
        return out;
    const QString keptPath =
        base->keptFile.isEmpty() ? QString() : global.originalsFolder + base->keptFile;
    const bool untouched = installed && !keptPath.isEmpty() && isLastWritten(before, *base);
    base->edits = qMax<qint64>(base->edits - (installed ? 1 : 0), 1);
    if (last) {
        out.forgotten = true;
        if (untouched && gate.files().entry(keptPath)) {
            // The file itself, with its time and permissions, or the link that it was.
            const Fingerprint now = printOf(gate.files().entry(file));
            if (Result back = actions.move(keptPath, file, now); !back)
                return back;
            out.restored = true;
        }
        if (!keptPath.isEmpty()) {
            // A kept file that stays behind harms nobody.
            if (!out.restored)
                (void)actions.remove(keptPath);
            (void)actions.removeEmptyFolder(winpath::parent(keptPath));
        }
        return out;
    }
    if (!untouched)
        dropBase(actions, global, *base);
    const ResultOf<QByteArray> written = actions.read(file, baseLimit);
    if (!written)
        return written.error();
    base->lastWrittenSize = written->size();
    base->lastWrittenHash = xxh3(*written);
    out.record = *base;
    return out;
}

} // namespace vt::configbases
