// The catalogue's facts in a file of the program folder, so that a later run reads changed files
// only. docs/formats/catalogue.md tells the form. The file is worth nothing by itself: what does
// not fit is thrown away, and the next scan reads everything.
#pragma once

#include "catalogue/CatalogueStore.h"
#include "platform/FileActions.h"
#include "platform/Files.h"

#include <QString>

namespace vt::catalogue {

/// What the facts depend on beside the files.
struct CacheKey
{
    QString simulator; ///< identity of the simulator's folder (Gate::identity)
    int codePage = 0;
};

/// False, and an empty store, when there is no file, or one of another key, form or sum.
bool loadCache(const Files& files, const QString& path, const CacheKey& key, Store& store);

/// Replaces the file whole. Only for whoever holds the program folder's lock.
[[nodiscard]] Result
saveCache(FileActions& actions, const QString& path, const CacheKey& key, const Store& store);

} // namespace vt::catalogue
