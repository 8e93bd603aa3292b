// Reads many small files below one folder with few system calls: names relative to the folder, as
// spelled on the disk, UTF-8, "\" between components. For scans that know the spelling from a
// listing; everything else goes through Files. Reads only.
#pragma once

#include "platform/Files.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <span>
#include <vector>

namespace vt {

/// What tells one state of a file or folder from another.
struct DiskStamp
{
    qint64 size = -1;      ///< bytes; 0 for folders; -1: there is nothing
    qint64 modifiedNs = 0; ///< nanoseconds since 1970 UTC
    qint64 changedNs = 0;  ///< of the entry itself; moves on where a program set modifiedNs back

    [[nodiscard]] bool exists() const { return size >= 0; }

    /// Whether a change after \a readNs must show in another stamp: clocks of disks may tick in
    /// steps of two seconds.
    [[nodiscard]] bool settledAt(qint64 readNs) const;

    friend bool operator==(const DiskStamp&, const DiskStamp&) = default;
};

class FolderReader
{
public:
    /// The folder is looked up without regard to case; valid() is false when there is none.
    FolderReader(const Files& files, QStringView folder);
    ~FolderReader();
    FolderReader(const FolderReader&) = delete;
    FolderReader& operator=(const FolderReader&) = delete;

    [[nodiscard]] bool valid() const { return m_fd >= 0; }

    /// The present, by the clock that files are stamped with.
    [[nodiscard]] static qint64 nowNs();

    /// Links are followed; an empty name is the folder itself.
    [[nodiscard]] DiskStamp stamp(QByteArrayView name) const;

    struct Wanted
    {
        QByteArrayView folder;
        QStringView name; ///< below it; empty: the folder itself
    };

    struct Found
    {
        DiskStamp stamp;
        bool folder = false;
    };

    /// stamp() of each. Many are looked at by several threads, for the disk's answers are most of
    /// the time.
    [[nodiscard]] std::vector<Found> stamps(std::span<const Wanted> wanted) const;

    struct Entry
    {
        QByteArray name;
        bool folder = false;
    };

    struct Listing
    {
        DiskStamp stamp;              ///< of the folder, taken before its entries
        std::vector<Entry> entries;   ///< files and folders, links followed, unsorted
        bool unreadableNames = false; ///< names that are no UTF-8 were left out
    };

    /// An empty name lists the folder itself. Nothing exists in a listing of what is no folder.
    [[nodiscard]] Listing list(QByteArrayView name) const;

    struct Read
    {
        DiskStamp stamp;      ///< taken before the bytes; exists() is false without such a file
        QByteArrayView bytes; ///< valid until the next call
        QString problem;      ///< why there are no bytes, as the end of a sentence; else empty
    };

    /// An ordinary file of at most \a limit bytes, whole. Never waits, whatever lies there.
    [[nodiscard]] Read read(QByteArrayView name, qint64 limit);

private:
    int m_fd = -1;
    QByteArray m_buffer;
};

} // namespace vt
