// What the end of an operation does to the records, written down with its journal so that it
// happens as well when the process ends between the files and the records. Executed by
// JournalTable::end().
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/Gate.h"
#include "platform/Journal.h"

#include <QByteArray>
#include <QDateTime>
#include <QList>

namespace vt {

/// A recorded file and what its record is to say of it.
struct FileCheck
{
    Place file;
    qint64 detailKey = 0;
    Fingerprint check;

    friend bool operator==(const FileCheck&, const FileCheck&) = default;
};

/// An installation's records are written before its files are renamed into place; at its end only
/// those of files that failed go again.
struct InstallationClosing
{
    qint64 masterKey = 0;
    Place library = {}; ///< the scenery library, when areas were added to it
    /// Of the files that were edited, as it was before: it comes back where an edit failed. Without
    /// edits: there was none.
    QList<ConfigBaseRecord> configBasesBefore = {};
    QList<FileCheck> checksBefore = {}; ///< of other add-ons' files that were edited
};

/// A removal's records go when its files have gone.
struct RemovalClosing
{
    qint64 masterKey = 0;
    QDateTime dateInstalled;
    QDateTime dateUninstalled;
    bool whole = true;              ///< the add-on itself goes, with all rows
    QList<qint64> detailKeys;       ///< rows that go when only a part does
    QList<OriginalRecord> passedOn; ///< kept files that now belong to the rows above in their stack
    QList<qint64> originalsGone;    ///< detail keys (of other add-ons) that keep nothing any more
    QList<Place> foldersGone;       ///< own folders to be forgotten
    QList<ConfigBaseRecord> configBases;
    QList<Place> configBasesGone;
    QList<Place> failed;                    ///< known beforehand not to go
    QList<SceneryAreaRecord> areasPassedOn; ///< to add-ons with scenery in the same folder
    Place library;                          ///< the scenery library, when it is changed
    QList<qint64> sceneryAreasKept;         ///< detail keys of areas whose removal failed
    QList<FileCheck> edited;                ///< recorded files that have other bytes now
    Place archive = {};                     ///< of the File Cabinet; written before all else
    bool toCabinet = false;                 ///< the whole add-on goes there and stays recorded
    QList<qint64> sceneryAreasGone = {};    ///< detail keys of areas that go with a part
};

[[nodiscard]] QByteArray packClosing(const InstallationClosing& closing);
[[nodiscard]] QByteArray packClosing(const RemovalClosing& closing);

/// Carries out a packed closing inside the transaction that is open. Targets in \a failed could not
/// be brought about: an installed file's rows go, a removed file's rows stay (and with them the
/// add-on).
[[nodiscard]] Result carryOutClosing(Connection& database,
                                     const Gate& gate,
                                     OperationKind kind,
                                     const QByteArray& closing,
                                     const QList<Place>& failed);

} // namespace vt
