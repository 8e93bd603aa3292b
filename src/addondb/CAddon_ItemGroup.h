// One add-on: its record's fields and its files in order. Owns its items; every keyed search is a
// look-up in an index that is built on first use and dropped when items change.
#pragma once

#include "addondb/CAddon_Item.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QPair>
#include <QString>

#include <functional>
#include <memory>
#include <vector>

namespace vt {

/// Which of several files with one target may give way without a question.
struct ConflictRules
{
    bool dropIdentical = true; ///< those that hold the same bytes as another
    bool preferPatches = true; ///< those that a patch folder of the source supersedes
};

class CAddon_ItemGroup
{
public:
    // The add-on's record, under the names of its fields.
    qint32 lngKey = 0;         ///< Addon_Master_Key; 0 before it is recorded
    QString sGroupName;        ///< Addon_Name
    QString sGroupDescription; ///< Description
    QString sAuthors;
    qint32 lngRating = 0;
    QString sSource_Name;
    qint64 lngSource_Size = 0;
    qint32 lngSource_Type = 0; ///< 0 unknown, 1 ZIP, 2 RAR, 3 folder, 4 imported
    qint32 lngSource_Total_Files = 0;
    QDateTime dteInstalled; ///< Date_Installed
    qint32 lngInstallation_Status = 0;
    bool boolOriginal_Addon = false; ///< the simulator's own content

    CAddon_ItemGroup() = default;
    CAddon_ItemGroup(CAddon_ItemGroup&&) = default;
    CAddon_ItemGroup& operator=(CAddon_ItemGroup&&) = default;

    // The collection.

    /// Takes the item; one without a key gets the next one above the highest. The reference is good
    /// until the next change of the collection.
    CAddon_Item& Add(CAddon_Item item);
    /// False when there is no such item.
    bool Remove(qint32 key);
    void Clear();

    void reserve(qsizetype items) { m_items.reserve(size_t(items)); }

    [[nodiscard]] const std::vector<CAddon_Item>& colAddonItems() const { return m_items; }

    /// For changing items; drops the indexes by name and folder. Keys must not be changed.
    [[nodiscard]] std::vector<CAddon_Item>& colAddonItems_Edit();

    [[nodiscard]] const CAddon_Item* GetCAddon_ItemGivenKey(qint32 key) const;
    /// As GetCAddon_ItemGivenKey(), for changing it.
    [[nodiscard]] CAddon_Item* edit(qint32 key);

    // Searches: the first match in the collection's order, or nullptr; without regard to case.

    [[nodiscard]] const CAddon_Item* Search(qint32 key) const
    {
        return GetCAddon_ItemGivenKey(key);
    }

    [[nodiscard]] const CAddon_Item* SearchByName(QStringView name) const;
    [[nodiscard]] const CAddon_Item* SearchByNameandFSZipFolder(QStringView name,
                                                                QStringView folder) const;
    [[nodiscard]] const CAddon_Item* SearchByZipFolderEntry(QStringView folder) const;
    /// The item of this name that follows the item \a panelKey (or lies in that item's folder).
    [[nodiscard]] const CAddon_Item* SearchByNameAndKey_AssociatedPanel(QStringView name,
                                                                        qint32 panelKey) const;
    [[nodiscard]] const CAddon_Item*
    SearchByInstallationNameandInstallationFolder(QStringView name, QStringView folder) const;

    /// Keys of items that carry the same file name as another one, grouped, in collection order.
    [[nodiscard]] QList<QList<qint32>> SearchQuicklyForDuplicateFilenames() const;
    /// Keys of items marked for installation with the same name and folder, grouped.
    [[nodiscard]] QList<QList<qint32>> duplicateTargets() const;

    /// Of the items that share one target, drops (unmarks and lists as eliminated) those that give
    /// way by \a rules. \a sameBytes decides equality of two items of equal size. The groups that
    /// remain are returned.
    QList<QList<qint32>> AutomaticallyResolveConflicts(
        const std::function<bool(const CAddon_Item&, const CAddon_Item&)>& sameBytes,
        const ConflictRules& rules = {});

    // Facts.

    [[nodiscard]] bool ContainsAMission() const;
    /// An aircraft configuration whose folder also holds an .air file and, there or below, a model.
    [[nodiscard]] bool ContainsACompleteAircraft() const;
    [[nodiscard]] TypeTally tallyTypes() const;

    /// Classifies every item.
    void AnalyzeTypes(int generation);
    /// Makes \a archive ready to list this add-on's source, inner archives included.
    void Addon_ConfigureZipClass(CZIP& archive) const;

    /// Installation names and folders back to the proposals, every item marked.
    void AddonItems_ResetNamesAndProcessFlag();
    void AddonItems_SetProcessFlagForAllItems(bool process);

    /// Add-on key, "|", date as yyyy-MM-dd HH:mm:ss.
    [[nodiscard]] QString Key_lngKeydteInstalled_CompositeKey_Get() const;

    // The analysis' tables.

    /// Notes the folder that archive folder \a zipFolder is installed to, replacing an older note.
    void AddonItemZipFolderEntryMappingTable_Update(const QString& zipFolder,
                                                    const QString& installationFolder);
    /// The installation folder noted for an archive folder; null when there is none.
    [[nodiscard]] QString AddonItemZipFolderEntryMappingTable_Search(QStringView zipFolder) const;

    [[nodiscard]] QStringList Array_sarrayAddonItemZipFolderEntryMappingTable_Get() const
    {
        return m_zipFolders;
    }

    void Array_sarrayAddonItemZipFolderEntryMappingTable_Set(const QStringList& folders);

    [[nodiscard]] QStringList Array_sarrayAddonItemInstallationFolderMappingTable_Get() const
    {
        return m_installationFolders;
    }

    void Array_sarrayAddonItemInstallationFolderMappingTable_Set(const QStringList& folders)
    {
        m_installationFolders = folders;
    }

    [[nodiscard]] QList<qint32> Array_lngarrayFILE_IDAddonItemKeys_Get() const { return m_fileIds; }

    void Array_lngarrayFILE_IDAddonItemKeys_Set(const QList<qint32>& keys) { m_fileIds = keys; }

    [[nodiscard]] QList<qint32> Array_lngarrayDocumentationTextFiles_AddonItemKeys_Get() const
    {
        return m_documents;
    }

    void Array_lngarrayDocumentationTextFiles_AddonItemKeys_Set(const QList<qint32>& keys)
    {
        m_documents = keys;
    }

    /// "folder\name" of each item dropped as a duplicate, as it stands in the source.
    [[nodiscard]] QStringList Array_sarrayEliminatedDuplicateItems_Get() const
    {
        return m_eliminated;
    }

    void Array_sarrayEliminatedDuplicateItems_Set(const QStringList& items)
    {
        m_eliminated = items;
    }

    /// One line a mapped folder: "<archive folder> -> <installation folder>".
    [[nodiscard]] QStringList Array_sarrayAddonItemMappingTables_Print() const;

    /// The whole add-on, items and tables included.
    [[nodiscard]] std::unique_ptr<CAddon_ItemGroup> Clone() const;

    [[nodiscard]] std::vector<CAddon_Item> Clone_colAddonItems() const { return m_items; }

private:
    using Index = QHash<QString, QList<qint32>>; ///< folded text to positions, ascending

    CAddon_ItemGroup(const CAddon_ItemGroup&) = default;
    void dropIndexes() const;
    [[nodiscard]] qsizetype positionOf(qint32 key) const;
    const CAddon_Item* firstIn(const Index& index, const QString& key) const;
    const Index& index(Index& slot, QString (*keyOf)(const CAddon_Item&)) const;

    std::vector<CAddon_Item> m_items;
    qint32 m_highestKey = 0;
    bool m_keysAscend = true; ///< then a key is found by halving, without an index
    QStringList m_zipFolders;
    QStringList m_installationFolders;
    QHash<QString, qsizetype> m_zipFolderRows;
    QList<qint32> m_fileIds;
    QList<qint32> m_documents;
    QStringList m_eliminated;
    mutable QHash<qint32, qsizetype> m_byKey;
    mutable Index m_byName;
    mutable Index m_byFolder;
    mutable Index m_byFolderAndName;
    mutable Index m_byInstallation;
};

} // namespace vt
