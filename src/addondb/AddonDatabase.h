// The operations of the data layer: each opens the tables it needs, does one job and closes them.
// A failure's text is one of the fixed sentences; the caller shows it with addonDatabaseError() and
// logs Connection::lastError(). Each operation runs in the transaction that is open, or in one of
// its own: it is done whole or not at all.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/Prompt.h"

#include <QHash>
#include <QList>

#include <optional>

namespace vt {

/// The critical message "Addon Database Error".
[[nodiscard]] Prompt addonDatabaseError(const QString& text);

} // namespace vt

namespace vt::modDatabase_Addon {

// --- the add-on itself ---

/// Master, description, history and history description row. \a addon.key 0: a new key above every
/// key ever used; another: that one (a reinstallation). dateInstalled is moved on by seconds where
/// the history already has the same one; \a addon receives key and date as written.
Result createAddon(Connection& database, AddonRecord& addon);
/// Adds those of the four rows that \a addon lacks, as it is given; how many.
[[nodiscard]] ResultOf<int> completeAddon(Connection& database, const AddonRecord& addon);
/// Raises the counter so that a key above all used ones is returned; never returned again.
[[nodiscard]] ResultOf<qint64> newMasterKey(Connection& database);
/// The key that newMasterKey() would return next.
[[nodiscard]] ResultOf<qint64> nextMasterKey(Connection& database);
/// "Could not locate the addon master record." (kind Failed) for an unknown key.
[[nodiscard]] ResultOf<AddonRecord> addon(Connection& database, qint64 masterKey);
/// Every master row in the order of keys; descriptions only when asked for.
[[nodiscard]] ResultOf<QList<AddonRecord>> addons(Connection& database, bool descriptions = false);
/// Writes every field but the description; what the history row of the same date holds as well is
/// mirrored there.
Result updateAddon(Connection& database, const AddonRecord& addon);
Result setName(Connection& database, qint64 masterKey, const QString& name);
Result setAuthors(Connection& database, qint64 masterKey, const QString& authors);
Result setRating(Connection& database, qint64 masterKey, qint64 rating);
Result setDescription(Connection& database, qint64 masterKey, const QString& description);
/// Of the history row of this date.
Result setHistoryDescription(Connection& database,
                             qint64 masterKey,
                             const QDateTime& dateInstalled,
                             const QString& description);
Result setStatus(Connection& database, qint64 masterKey, InstallationStatus status);
Result setCategories(Connection& database, qint64 masterKey, Categories categories);

/// The key of an add-on that is already recorded: the same name, or the same source (name and
/// size); nothing when there is none.
[[nodiscard]] std::optional<qint64> Addon_Database_IsAlreadyIn(Connection& database,
                                                               const AddonRecord& addon);

// --- files ---

/// Adds the rows in order; their keys become consecutive numbers from the returned one, and
/// masterKey and key are filled in. With \a checks (as many as rows, or none) the fingerprints are
/// recorded beside; one of size -1 is left out.
ResultOf<qint64> addDetails(Connection& database,
                            qint64 masterKey,
                            QList<DetailRecord>& details,
                            const QList<Fingerprint>& checks = {});
[[nodiscard]] std::optional<DetailRecord> detail(Connection& database, qint64 detailKey);
/// All files of an add-on, in the order in which they were recorded.
[[nodiscard]] ResultOf<QList<DetailRecord>> detailsOf(Connection& database, qint64 masterKey);
Result updateDetail(Connection& database, const DetailRecord& detail);
/// The row and its check; what is kept for it (Vantrel_Originals) is the caller's to release.
Result deleteDetail(Connection& database, qint64 detailKey);
/// All rows of the add-on and their checks, at once.
Result deleteDetailsOf(Connection& database, qint64 masterKey);
/// The rows that recorded the file at this place, oldest first; not those of add-ons that are in
/// the File Cabinet.
[[nodiscard]] ResultOf<QList<DetailRecord>>
ownersOf(Connection& database, const QString& location, const QString& name);
/// The rows of other add-ons at any of the places that this one recorded (\a details, all of them),
/// oldest first; one look for a whole removal.
[[nodiscard]] ResultOf<QList<DetailRecord>> sharersOf(Connection& database,
                                                      const QList<DetailRecord>& details);
[[nodiscard]] ResultOf<QList<DetailRecord>>
byPreferredPlace(Connection& database, const QString& location, const QString& name);
[[nodiscard]] ResultOf<QList<DetailRecord>> byInstalledName(Connection& database,
                                                            const QString& name);

Result setCheck(Connection& database, qint64 detailKey, const Fingerprint& check);
[[nodiscard]] std::optional<Fingerprint> checkOf(Connection& database, qint64 detailKey);
/// The checks of these files, by detail key. As detailsOf() gives them, at the least cost.
[[nodiscard]] ResultOf<QHash<qint64, Fingerprint>> checksOf(Connection& database,
                                                            const QList<DetailRecord>& details);

// --- what was kept ---

Result addOriginals(Connection& database, const QList<OriginalRecord>& originals);
[[nodiscard]] std::optional<OriginalRecord> originalOf(Connection& database, qint64 detailKey);
[[nodiscard]] ResultOf<QList<OriginalRecord>> originalsOf(Connection& database, qint64 masterKey);
/// Writes the row of this detail key, replacing one that is there.
Result setOriginal(Connection& database, const OriginalRecord& original);
Result deleteOriginal(Connection& database, qint64 detailKey);
Result deleteOriginalsOf(Connection& database, qint64 masterKey);

/// Places that are already recorded stay as they are.
Result addFolders(Connection& database, const QList<Place>& folders);
[[nodiscard]] bool isOwnFolder(Connection& database, const Place& folder);
[[nodiscard]] ResultOf<QList<Place>> ownFolders(Connection& database);
Result deleteFolders(Connection& database, const QList<Place>& folders);

[[nodiscard]] std::optional<ConfigBaseRecord> configBase(Connection& database, const Place& file);
Result setConfigBase(Connection& database, const ConfigBaseRecord& base);
Result deleteConfigBase(Connection& database, const Place& file);

// --- scenery library, pictures, remarks on items ---

Result addSceneryAreas(Connection& database, const QList<SceneryAreaRecord>& areas);
/// Of an add-on in the File Cabinet: those that it had, or is to have, in the library.
[[nodiscard]] ResultOf<QList<SceneryAreaRecord>> sceneryAreasOf(Connection& database,
                                                                qint64 masterKey);
/// Every row of every add-on but those of add-ons that are in the File Cabinet.
[[nodiscard]] ResultOf<QList<SceneryAreaRecord>> sceneryAreas(Connection& database);
Result deleteSceneryArea(Connection& database, const SceneryAreaRecord& area);
Result deleteSceneryAreasOf(Connection& database, qint64 masterKey);

/// A primary picture takes that place from the one before.
Result addPicture(Connection& database, const PictureRecord& picture);
[[nodiscard]] ResultOf<QList<PictureRecord>> picturesOf(Connection& database, qint64 masterKey);
Result deletePicturesOf(Connection& database, qint64 masterKey);

[[nodiscard]] std::optional<ItemDetailRecord>
itemDetail(Connection& database, ItemTable table, const QString& item, const QString& section = {});
/// Writes the item's row, replacing one that is there.
Result setItemDetail(Connection& database, ItemTable table, const ItemDetailRecord& record);
/// The rows of an aircraft's sections follow new names: pairs of old and new, all at once. A row
/// that stands under a new name and does not move is replaced.
Result moveItemSections(Connection& database,
                        const QString& item,
                        const QList<std::pair<QString, QString>>& moves);
/// Of an aircraft without a section: the rows of all its sections.
Result deleteItemDetail(Connection& database,
                        ItemTable table,
                        const QString& item,
                        const QString& section = {});

// --- removal, table by table ---

Result deleteDescription(Connection& database, qint64 masterKey);
Result deleteMaster(Connection& database, qint64 masterKey);
Result deleteHistory(Connection& database, qint64 masterKey, const QDateTime& dateInstalled);
Result
deleteHistoryDescription(Connection& database, qint64 masterKey, const QDateTime& dateInstalled);

// --- history ---

Result setDateUninstalled(Connection& database,
                          qint64 masterKey,
                          const QDateTime& dateInstalled,
                          const QDateTime& dateUninstalled);
/// All rows in the order of keys and dates; descriptions included.
[[nodiscard]] ResultOf<QList<HistoryRecord>> history(Connection& database);

// --- counters ---

/// 0 when nothing was stored under the name.
[[nodiscard]] qint64 counter(Connection& database, const QString& name);
Result setCounter(Connection& database, const QString& name, qint64 value);

} // namespace vt::modDatabase_Addon
