// The files that installations replaced, kept below "Originals\Replaced\", one stack a place: the
// place holds the version of the topmost add-on that recorded it; when one in the middle goes, what
// it had kept passes to the one above. This module decides; a FileTransaction carries out.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/FileTransaction.h"
#include "platform/Files.h"
#include "shell/GlobalRecord.h"

#include <QHash>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace vt::originals {

/// "Replaced\12\", below the Originals folder: what add-on 12 replaced; with a number above 1
/// "Replaced\12 2\".
[[nodiscard]] QString keptFolder(qint64 masterKey, int number = 1);
/// Where the file at \a path is kept in such a folder, below the Originals folder. Readable by
/// hand: the path below the simulator's folder, or "~<root>\" and the path below that.
[[nodiscard]] QString keptName(const Gate& gate, const QString& keptFolder, const QString& path);

/// Rows of other add-ons (installed or imported) at the places of one add-on's files.
class Sharers
{
public:
    [[nodiscard]] static ResultOf<Sharers> load(Connection& database,
                                                const QList<DetailRecord>& details);

    /// Oldest first; empty for a file of this add-on alone.
    [[nodiscard]] QList<DetailRecord> at(const QString& path) const;

private:
    QHash<NoCase, QList<DetailRecord>> m_byPath;
};

/// What becomes of a place when one detail row's file is taken away.
enum class Fate
{
    Stays,    ///< another add-on's version lies there, or its file with nothing kept below
    Deleted,  ///< nothing lay there before
    Restored, ///< what lay there before comes back
};

struct Release
{
    Fate fate = Fate::Deleted;
    QString keptGone;        ///< full path of a kept file that leaves "Originals\\", or empty
    bool shared = false;     ///< another add-on recorded the place
    QString setAside;        ///< full path of where the user's changed version went, or empty
    OriginalRecord passedOn; ///< for the row above; detailKey 0: none
    qint64 aboveForgets = 0; ///< detail key of the row above that keeps nothing any more
};

/// What is needed to release files, for one removal.
struct ReleaseContext
{
    Gate& gate;
    FileTransaction& actions;
    Connection& database;
    const GlobalRecord& global;
    QString setAsideFolder;                   ///< full path; the user's changed files go there
    std::function<Result()> announceSetAside; ///< called before the first file goes there
};

/// "Backups\\<name> - <key>\\", with a number where an earlier operation made that one: a folder of
/// one operation alone, for files that are replaced or go though somebody changed them.
[[nodiscard]] QString
setAsideFolder(const Files& files, const GlobalRecord& global, const AddonRecord& addon);
/// Keeps the file \a from, which lies or lay at \a path, in the set-aside folder; where it is kept.
[[nodiscard]] ResultOf<QString>
setAside(const ReleaseContext& context, const QString& from, const QString& path);

/// What release() would decide, by the records alone.
[[nodiscard]] Fate fateOf(const DetailRecord& detail,
                          const std::optional<OriginalRecord>& original,
                          const QList<DetailRecord>& sharers);

/// Decides what becomes of the file of \a detail and gives the actions their work. \a check is what
/// was recorded when it was installed (size -1: nothing), \a original what it had replaced, \a now
/// the entry that lies there, a link as itself (nothing: it is gone already).
[[nodiscard]] ResultOf<Release> release(const ReleaseContext& context,
                                        const DetailRecord& detail,
                                        const Fingerprint& check,
                                        const std::optional<OriginalRecord>& original,
                                        const QList<DetailRecord>& sharers,
                                        const std::optional<FileInfo>& now);

/// Whether the entry that lies there is the recorded file: by size and time, by hash where only the
/// time differs.
[[nodiscard]] bool
isRecorded(const Files& files, const QString& path, const FileInfo& now, const Fingerprint& check);

} // namespace vt::originals
