// One entry of an archive, as listed. Plain data, set once.
#pragma once

#include <QDate>
#include <QString>
#include <QTime>

namespace vt {

/// What an entry would become on a disk. Links and devices are listed and never created.
enum class EntryKind : quint8
{
    File,
    Folder,
    Link,
    Device, ///< pipe, socket, device, volume label
};

struct CZIPFileItem
{
    int lngKey = 0;                  ///< from 1, in listing order
    QString sFilename;               ///< without folder; of a folder's own entry the folder's name
    QString sPath;                   ///< "SimObjects\Airplanes\", empty at the root; shared text
    QDate dteDate;                   ///< null when the time stamp is no valid date
    QTime dteTime;                   ///< null together with dteDate
    qint64 lngSize_Uncompressed = 0; ///< bytes
    qint64 lngSize_Compressed = 0;   ///< bytes
    qint16 intRatio = 0;             ///< percent saved: 0 stored, 75 for a quarter left
    bool boolMethodStore = false;
    bool boolEncrypted = false;
    bool boolAttribute_Archive = false;
    bool boolAttribute_Directory = false;
    bool boolAttribute_Hidden = false;
    bool boolAttribute_ReadOnly = false;
    bool boolAttribute_System = false;
    bool boolAttribute_VolumeLabel = false;
    EntryKind kind = EntryKind::File;
    quint32 crc32 = 0;      ///< of the content, as the archive's directory tells it
    bool crc32Known = true; ///< some RAR archives hold other check sums instead

    /// Folder and name, "SimObjects\Airplanes\a.cfg".
    [[nodiscard]] QString fullName() const { return sPath + sFilename; }

    /// The stamp, which is local time, in nanoseconds since 1970 UTC; -1 without a valid one.
    [[nodiscard]] qint64 modifiedNs() const;
};

} // namespace vt
