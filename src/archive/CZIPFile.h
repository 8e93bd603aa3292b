// The listed contents of one archive file: the source itself, or an archive found inside it.
#pragma once

#include "archive/ArchiveReader.h"
#include "archive/CZIPFileItem.h"
#include "archive/EntryRef.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include <memory>

namespace vt {

/// Whether a file of that name is an archive that can be listed ("a.zip", "b.RAR").
[[nodiscard]] bool isArchiveName(QStringView name);

/// Whether an entry is a ZIP archive itself, by its name.
[[nodiscard]] bool isImbeddedZip(const CZIPFileItem& item);

struct CZIPFile
{
    QString sFilename;        ///< "a.zip"
    QString sFolder;          ///< where it lies. Of an inner archive: the unique folder that it was
                              ///< unpacked to, or (held in memory) "C:\outer.zip\sub folder\"
    QString sFilename_Parent; ///< empty for the source itself
    QString sFolder_Parent;
    QList<CZIPFileItem> varZIPItems; ///< in listing order: the item of key k stands at k - 1
    qint64 lngTotal_Items = 0;
    qint64 lngTotal_SizeCompressed = 0;
    qint64 lngTotal_SizeUncompressed = 0;
    bool boolHasImbeddedZIPs = false;

    EntryRef inParent;     ///< the entry that holds this archive; null for the source itself
    QString nestedPath;    ///< "" for the source, "sub\a.zip\" for an archive inside it
    qint64 bytes = 0;      ///< size of the archive file itself
    QDateTime dteDateTime; ///< of the archive file itself, local; null when not known
    std::shared_ptr<ArchiveReader> reader;

    [[nodiscard]] QString fullName() const { return sFolder + sFilename; }

    /// Null when there is no such key. Valid until the next listing.
    [[nodiscard]] const CZIPFileItem* item(int key) const;
    /// Folder and name of the entry; false when there is no such key.
    bool ZIP_Item_FilenameAndFolder_GetUsingKey(int key, QString& filename, QString& folder) const;

    /// Keys of the selected entries, in listing order.
    [[nodiscard]] QList<int> ZIPItems_Items_Selected_Get() const;
    /// Keys that do not exist are left out.
    void ZIPItems_Items_Selected_Set(const QList<int>& keys);
    void ZIPItems_Items_Selected_SetAll();
    void ZIPItems_Items_Selected_SetNone();
    /// The entries that are archives themselves.
    void Zip_Items_ImbeddedZips_SelectOrDeselectAll(bool select);

    QSet<int> selected; ///< keys
};

} // namespace vt
