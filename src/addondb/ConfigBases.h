// The simulator's configuration files that installations edited: as long as nobody else changes
// one, the bytes from before the first edit come back with the removal of the last. Once somebody
// did, only the entries go.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/FileTransaction.h"
#include "shell/GlobalRecord.h"

#include <optional>

namespace vt::configbases {

/// "Configuration\12\", below the Originals folder: announced as kept by operation 12.
[[nodiscard]] QString keptFolder(qint64 operation);

/// To be called before an installation edits \a file: keeps its bytes when this is the first
/// outstanding edit. The record is to be completed by afterEdit() and written with the others.
[[nodiscard]] ResultOf<ConfigBaseRecord> beforeEdit(Connection& database,
                                                    Gate& gate,
                                                    FileTransaction& actions,
                                                    const GlobalRecord& global,
                                                    const QString& file);
/// Notes what was written.
[[nodiscard]] Result
afterEdit(FileTransaction& actions, const QString& file, ConfigBaseRecord& base);

/// What a removal does to the record of a file whose entries it took out.
struct Undone
{
    std::optional<ConfigBaseRecord> record; ///< to be written
    bool forgotten = false;                 ///< the record goes
    bool restored = false;                  ///< the old bytes came back
};

/// To be called after a removal took its entries out of \a file (in \a actions); \a before is the
/// file's content from before that, \a last whether no add-on has entries in it any more. Without
/// \a installed the entries had stood there before every installation (an imported add-on's): the
/// old bytes, which hold them, do not come back.
[[nodiscard]] ResultOf<Undone> afterRemoval(Connection& database,
                                            Gate& gate,
                                            FileTransaction& actions,
                                            const GlobalRecord& global,
                                            const QString& file,
                                            const QByteArray& before,
                                            bool last,
                                            bool installed = true);

} // namespace vt::configbases
