// Where an add-on comes from: an archive with the archives inside it, a folder, or one plain file.
// Reads only; nothing is unpacked to a disk.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/CAddon_ItemGroup.h"
#include "platform/FileActions.h"
#include "platform/FolderListing.h"
#include "platform/Result.h"
#include "platform/Services.h"

#include <QString>
#include <QStringList>

#include <memory>

namespace vt {

class CZIP;

class AddonSource
{
public:
    /// Lists the source. Missing, unreadable or no archive: kind Surroundings. A folder's files are
    /// its own; links that lead out of it are not followed. Passwords of encrypted archives are
    /// asked for; \a passwords are tried first.
    [[nodiscard]] static ResultOf<std::unique_ptr<AddonSource>>
    open(Services& services, const QString& path, QStringList passwords = {});
    ~AddonSource();
    AddonSource(const AddonSource&) = delete;
    AddonSource& operator=(const AddonSource&) = delete;

    [[nodiscard]] const QString& path() const { return m_path; } ///< a folder's ends in "\"

    [[nodiscard]] SourceType type() const { return m_type; }

    /// Size of the archive, or of all files of a folder.
    [[nodiscard]] qint64 bytes() const { return m_bytes; }

    [[nodiscard]] qsizetype files() const { return m_files; }

    /// Archive's or folder's name without ".zip" and the endings of repository downloads.
    [[nodiscard]] QString plainName() const;

    /// One item a file, keys from 1, in listing order; the files of an archive follow the outer
    /// archive's. Sets the group's source fields.
    void fill(CAddon_ItemGroup& group) const;

    /// The item's bytes for FileActions::place(); valid as long as this object.
    [[nodiscard]] ResultOf<Content> content(const CAddon_Item& item) const;
    /// Whether the item can be extracted as far as the listing tells; the text says why not.
    [[nodiscard]] Result readable(const CAddon_Item& item) const;
    /// The item's bytes; refused when larger than \a limit.
    [[nodiscard]] ResultOf<QByteArray> read(const CAddon_Item& item, qint64 limit) const;
    /// Whether two items hold the same bytes, by size and check sum (folders: by content).
    [[nodiscard]] bool sameBytes(const CAddon_Item& a, const CAddon_Item& b) const;
    /// Full path of a folder's file; empty for an archive's entry.
    [[nodiscard]] QString filePath(const CAddon_Item& item) const;

    /// What was passed over: inner archives that cannot be read, unreadable folders, links.
    [[nodiscard]] const QStringList& remarks() const { return m_remarks; }

    /// The passwords that opened its archives.
    [[nodiscard]] const QStringList& passwords() const { return m_passwords; }

    /// The files of an archive on the disk, all volumes of it; path() alone for everything else.
    [[nodiscard]] QStringList sourceFiles() const;

    /// Null for folders.
    [[nodiscard]] CZIP* archive() const { return m_archive.get(); }

private:
    explicit AddonSource(Services& services);
    Result openFolder(const QString& folder);
    Result openArchive(const QString& file);
    Result openPlainFile(const QString& file);
    void fillFromArchive(CAddon_ItemGroup& group) const;
    void fillFromFolder(CAddon_ItemGroup& group) const;

    Services& m_services;
    QString m_path;
    QString m_base; ///< folder that the relative folders of a folder source start from
    SourceType m_type = SourceType::Unknown;
    qint64 m_bytes = 0;
    qsizetype m_files = 0;
    std::unique_ptr<CZIP> m_archive;
    std::vector<ListedFile> m_folderFiles; ///< the file of key k stands at k - 1
    QStringList m_remarks;
    QStringList m_passwords;
};

} // namespace vt
