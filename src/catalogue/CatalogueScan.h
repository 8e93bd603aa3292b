// One walk over the folders of aircraft and of effects. What the store knew of a file is taken over
// when its time and size are those of before; other files are read. Writes nothing to the disk.
#pragma once

#include "catalogue/CatalogueStore.h"
#include "platform/AnsiCodec.h"
#include "platform/Files.h"
#include "shell/GlobalRecord.h"

namespace vt::catalogue {

struct ScanCounts
{
    qint64 filesRead = 0;
    qint64 filesKept = 0;
    bool changed = false; ///< the store holds something else than before
};

/// Brings \a store up to the disk. A file that cannot be read is a problem in its row. What changed
/// during the last moments before \a nowNs (FolderReader::nowNs()) will be read again.
ScanCounts scan(Store& store,
                const Files& files,
                const GlobalRecord& global,
                const AnsiCodec& ansi,
                qint64 nowNs);

} // namespace vt::catalogue
