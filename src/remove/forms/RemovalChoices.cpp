#include "remove/forms/RemovalChoices.h"

namespace vt {

RemovalOptions RemovalChoices::options(const SelectedAddon& addon) const
{
    const RemovalWay chosen = way(addon.key);
    RemovalOptions options;
    options.method = chosen.method;
    if (chosen.method == RemovalMethod::Recreate) {
        options.toFolder = chosen.folder;
        options.zip = chosen.zip;
    }
    options.files = addon.files;
    return options;
}

} // namespace vt
