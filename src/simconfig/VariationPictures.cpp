#include "simconfig/VariationPictures.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt::variationpictures {

namespace {

constexpr qint64 pictureLimit = 64 << 20;

/// Full paths of the pictures of a section.
QStringList picturesOf(FileActions& actions, const QString& folder, const QString& section)
{
    QStringList paths;
    for (const QStringView extension : {u".jpg", u".jpeg", u".png", u".bmp", u".gif"}) {
        const QString path = folder + section + extension.toString();
        if (actions.info(path))
            paths.append(path);
    }
    return paths;
}

} // namespace

QString folder(const GlobalRecord& global, const QString& configurationFile)
{
    const QString aircraft = winpath::parent(configurationFile);
    if (global.imagesFolder.isEmpty() || global.simulatorFolder.isEmpty() ||
        !winpath::isBelow(aircraft, global.simulatorFolder))
        return {};
    return global.imagesFolder + u"Aircraft\\"_s +
           winpath::relativeTo(aircraft, global.simulatorFolder);
}

Result rename(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const aircraftsections::Renames& renames)
{
    const QString place = folder(global, configurationFile);
    if (place.isEmpty() || !actions.info(place))
        return Result::success();
    QList<std::pair<QString, QByteArray>> moved;
    QStringList sources;
    QSet<NoCase> targets;
    for (const aircraftsections::Rename& rename : renames) {
        for (const QString& path : picturesOf(actions, place, rename.before)) {
            ResultOf<QByteArray> bytes = actions.read(path, pictureLimit);
            if (!bytes)
                return bytes.error();
            const QString target = place + rename.after + u'.' + winpath::extension(path);
            sources.append(path);
            targets.insert(NoCase{target});
            moved.append({target, *bytes});
        }
    }
    for (const auto& [path, bytes] : std::as_const(moved)) {
        if (Result written = actions.replace(path, bytes); !written)
            return written;
    }
    for (const QString& path : std::as_const(sources)) {
        if (targets.contains(NoCase{path}))
            continue;
        if (Result gone = actions.remove(path); !gone)
            return gone;
    }
    return Result::success();
}

Result remove(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const QStringList& sections)
{
    const QString place = folder(global, configurationFile);
    if (place.isEmpty() || !actions.info(place))
        return Result::success();
    for (const QString& section : sections) {
        for (const QString& path : picturesOf(actions, place, section)) {
            if (Result gone = actions.remove(path); !gone)
                return gone;
        }
    }
    return Result::success();
}

} // namespace vt::variationpictures
