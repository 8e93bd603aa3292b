#include "cli/TypedFile.h"

#include "cli/World.h"
#include "platform/WinPath.h"

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

} // namespace vt::cli
