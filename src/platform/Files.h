// The case-insensitive sight of the disk: Windows paths are looked up by component, exact spelling
// first, through bounded cached listings. Reads only; every write goes through FileActions.
#pragma once

#include "platform/DriveTable.h"
#include "platform/Result.h"
#include "platform/Text.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <utility>

namespace vt {

namespace hostfile {
class Descriptor;
}

/// One file or folder as it lies on the disk.
struct FileInfo
{
    QString name;          ///< as spelled on the disk
    bool folder = false;   ///< of a link: whether it leads to a folder
    bool readOnly = false; ///< the owner may not write
    qint64 size = 0;       ///< bytes; 0 for folders
    qint64 modifiedNs = 0; ///< nanoseconds since 1970 UTC
    bool link = false;     ///< told by entry() alone

    [[nodiscard]] QDateTime modified() const; ///< local time, milliseconds
};

class Files
{
public:
    /// \a drives must outlive this.
    explicit Files(const DriveTable& drives);
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    [[nodiscard]] const DriveTable& drives() const { return m_drives; }

    /// Nothing when the path does not exist (or has no known drive). Follows links.
    [[nodiscard]] std::optional<FileInfo> info(QStringView path) const;
    /// As info(), but a link stands for itself, wherever it leads: its own size and time.
    [[nodiscard]] std::optional<FileInfo> entry(QStringView path) const;
    [[nodiscard]] bool exists(QStringView path) const;
    [[nodiscard]] bool isFile(QStringView path) const;
    [[nodiscard]] bool isFolder(QStringView path) const;

    /// Entries of a folder, sorted by name without regard to case; empty when there is none. A link
    /// that leads nowhere counts as a file.
    [[nodiscard]] QList<FileInfo> list(QStringView folder) const;
    /// Names alone, unsorted and without a look at each entry.
    [[nodiscard]] QStringList names(QStringView folder) const;
    /// The same, and whether each is a folder (of a link: leads to one).
    [[nodiscard]] QList<std::pair<QString, bool>> namesAndKinds(QStringView folder) const;
    /// Files below a folder, all levels, as paths relative to it, sorted; links to folders are not
    /// entered. At most \a limit files.
    [[nodiscard]] QStringList filesBelow(QStringView folder, qsizetype limit = 1'000'000) const;

    /// The path with every existing component spelled as on the disk, the rest as given; keeps a
    /// trailing "\".
    [[nodiscard]] QString spelled(QStringView path) const;
    /// Where the path lies on the host, or would lie: existing components by their own spelling.
    /// Empty without a known drive.
    [[nodiscard]] QByteArray hostPath(QStringView path) const;

    /// The whole file. Fails when it is missing, unreadable or larger than \a limit bytes.
    [[nodiscard]] ResultOf<QByteArray> read(QStringView path, qint64 limit) const;

    /// Groups of names in one folder that differ only in case ("SimObjects" beside "simobjects").
    [[nodiscard]] QList<QStringList> twins(QStringView folder) const;

    /// To be called when an operation begins: listings are checked against the disk again, once.
    void newOperation();

    /// Changes with every newOperation(); for those who remember what they saw on the disk.
    [[nodiscard]] quint64 epoch() const { return m_epoch; }

    /// To be called by whoever created, renamed or deleted something at \a path.
    void noteChanged(QStringView path);

private:
    struct Resolved
    {
        QByteArray host;
        bool exists = false;
        quint64 epoch = 0;
        quint32 looks = 0;                          ///< how often something was looked for in it
        std::shared_ptr<hostfile::Descriptor> open; ///< set while it is kept open
    };

    struct Listing
    {
        qint64 changedNs = -1; ///< the folder's own time when it was read
        bool settled = false;  ///< that time lay far enough back to notice later changes
        quint64 epoch = 0;
        QHash<NoCase, QList<QByteArray>> names;
    };

    /// \a folder without its trailing "\". Valid until the next call.
    Resolved& resolveFolder(QStringView folder) const;
    /// Looks at an entry of an open folder (or AT_FDCWD and a full path).
    using Look = std::optional<FileInfo> (*)(int folder, const char* entry, const QString& name);
    std::optional<FileInfo> lookAt(QStringView path, Look look) const;
    /// The folder for the ...at calls, where looks at it are so many that it is kept open; or -1.
    int openedFolder(QStringView folder, Resolved& resolved) const;
    void closeFolders() const;
    void forgetFolders() const;
    /// The entry's own spelling inside a host folder, empty when there is none.
    QByteArray spellingIn(const QByteArray& hostFolder, QStringView name) const;
    const Listing& listing(const QByteArray& hostFolder) const;
    void updateListing(const QByteArray& hostFolder, QStringView name);

    const DriveTable& m_drives;
    quint64 m_epoch = 1;
    mutable QHash<QString, Resolved> m_folders; ///< by their spelling: twins are told apart
    mutable QStringList m_openFolders;          ///< those in m_folders that are kept open
    mutable qsizetype m_missingFolders = 0;     ///< those in m_folders that do not exist
    mutable QHash<QByteArray, Listing> m_listings;
    mutable qsizetype m_cachedNames = 0;
};

} // namespace vt
