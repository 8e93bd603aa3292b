#include "simconfig/VariationPictures.h"

#include "addondb/Pictures.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QSet>

namespace vt::variationpictures {

namespace {

constexpr qint64 pictureLimit = 64 << 20;

/// The section's own folder as well.
Result removeOne(FileActions& actions, const QString& path)
{
    if (Result gone = actions.remove(path); !gone)
        return gone;
    return actions.removeEmptyFolder(winpath::parent(path));
}

} // namespace

Result rename(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const aircraftsections::Renames& renames)
{
    QList<std::pair<QString, QByteArray>> moved;
    QStringList sources;
    QSet<NoCase> targets;
    for (const aircraftsections::Rename& rename : renames) {
        const QString path = pictures::itemThumbnail(global, configurationFile, rename.before);
        if (path.isEmpty() || !actions.info(path))
            continue;
        ResultOf<QByteArray> bytes = actions.read(path, pictureLimit);
        if (!bytes)
            return bytes.error();
        const QString target = pictures::itemThumbnail(global, configurationFile, rename.after);
        sources.append(path);
        targets.insert(NoCase{target});
        moved.append({target, *bytes});
    }
    for (const auto& [path, bytes] : std::as_const(moved)) {
        if (Result written = actions.replace(path, bytes); !written)
            return written;
    }
    for (const QString& path : std::as_const(sources)) {
        if (targets.contains(NoCase{path}))
            continue;
        if (Result gone = removeOne(actions, path); !gone)
            return gone;
    }
    return Result::success();
}

Result remove(FileActions& actions,
              const GlobalRecord& global,
              const QString& configurationFile,
              const QStringList& sections)
{
    for (const QString& section : sections) {
        const QString path = pictures::itemThumbnail(global, configurationFile, section);
        if (path.isEmpty() || !actions.info(path))
            continue;
        if (Result gone = removeOne(actions, path); !gone)
            return gone;
    }
    return Result::success();
}

} // namespace vt::variationpictures
