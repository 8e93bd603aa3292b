// The installed aircraft, panels and sounds, and the scenery areas, as lists that a bulk repair
// goes through.
#pragma once

#include "remove/BulkRepair.h"

namespace vt {

class Catalogue;
class Connection;
class CSceneryCfgMgr;

enum class ConfigFileKind
{
    Aircraft,
    Panel,
    Sound,
};

/// The configuration files to be looked at: all installed ones without \a paths, else those that
/// \a paths name or hold (folders at any depth). Each once, sorted. Fails, naming the path, when
/// one of them holds none.
[[nodiscard]] ResultOf<QStringList> filesToVerify(const Files& files,
                                                  const Catalogue& catalogue,
                                                  ConfigFileKind kind,
                                                  const QStringList& paths);

/// Of aircraft every variation of each file is an object. \a database tells what is suppressed, and
/// its rows follow sections that a repair renames; null: there is none. Everything must outlive the
/// list.
[[nodiscard]] BulkList
repairList(Context& context, Connection* database, ConfigFileKind kind, const QStringList& files);

/// Areas by their indexes in \a library. A disabled area is healthy. There is no repair for areas.
[[nodiscard]] BulkList
sceneryList(Context& context, const CSceneryCfgMgr& library, const QList<qsizetype>& areas);

} // namespace vt
