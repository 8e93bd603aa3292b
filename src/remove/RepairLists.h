// The installed panels and sounds, and the scenery areas, as lists that a bulk repair goes through.
#pragma once

#include "remove/BulkRepair.h"

namespace vt {

class Connection;
class CSceneryCfgMgr;

enum class PartKind
{
    Panel,
    Sound,
};

/// The configuration files to be looked at: all installed ones without \a paths, else those that
/// \a paths name or hold (folders at any depth). Each once, sorted. Fails, naming the path, when
/// one of them holds none.
[[nodiscard]] ResultOf<QStringList>
partFiles(const Files& files, const GlobalRecord& global, PartKind kind, const QStringList& paths);

/// \a database tells what is suppressed; null: nothing is. Everything must outlive the list.
[[nodiscard]] BulkList
partList(Context& context, Connection* database, PartKind kind, const QStringList& files);

/// Areas by their indexes in \a library. A disabled area is healthy. There is no repair for areas.
[[nodiscard]] BulkList
sceneryList(Context& context, const CSceneryCfgMgr& library, const QList<qsizetype>& areas);

} // namespace vt
