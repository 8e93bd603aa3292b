#include "cli/TypedFile.h"

#include "cli/World.h"
#include "platform/WinPath.h"
#include "simconfig/AliasConfig.h"

namespace vt::cli {

QString typedConfiguration(World& world, const QString& typed, const QString& name)
{
    const Files& files = world.services().files;
    QString path = world.userPath(typed);
    if (!files.exists(path) && !winpath::isAbsolute(typed) && !typed.startsWith(u'/')) {
        const QString inside =
            winpath::join(world.context().global.simulatorFolder, winpath::normalised(typed));
        if (files.exists(inside))
            path = inside;
    }
    return files.isFolder(path) ? winpath::join(path, name) : winpath::withoutTrailing(path);
}

QString
typedAlias(World& world, const AliasConfig& part, aliastarget::Kind kind, const QString& typed)
{
    const Files& files = world.services().files;
    const QString path = world.userPath(typed);
    if (files.isFile(path))
        return part.Alias_TextFor(path);
    if (files.isFolder(path))
        return part.Alias_TextFor(
            winpath::join(path, aliastarget::configFileName(kind, winpath::withoutTrailing(path))));
    return QString(typed).replace(u'/', u'\\');
}

} // namespace vt::cli
