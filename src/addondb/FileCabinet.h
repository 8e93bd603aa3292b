// The File Cabinet: one ZIP archive for each add-on below "Cabinet\", which holds files of it that
// are not in the simulator. Shared by installation and removal. Written aside, read back and
// compared before anything that depends on it happens. Form: docs/formats/cabinet.md.
#pragma once

#include "archive/CZIP.h"
#include "platform/FileTransaction.h"
#include "platform/Services.h"
#include "shell/GlobalRecord.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <vector>

namespace vt {

/// A file on its way into an archive of the cabinet.
struct CabinetFile
{
    QString path;         ///< full path where it is installed, or is to be: names its entry
    QString from = {};    ///< full path of the file with its bytes; empty: content has them
    Content content = {}; ///< its transfer may run more than once
};

/// An archive of the cabinet, opened for reading.
class CabinetArchive
{
public:
    /// \a services must outlive this.
    explicit CabinetArchive(Services& services) : m_gate(services.gate), m_zip(services) {}

    Result open(const QString& archive);

    /// Full paths of where its files were installed, in the order of the archive.
    [[nodiscard]] const QStringList& paths() const { return m_paths; }

    [[nodiscard]] bool holds(const QString& path) const { return m_entries.contains(NoCase{path}); }

    /// Size, time and bytes of the file that belongs to \a path; valid as long as this object.
    [[nodiscard]] ResultOf<Content> content(const QString& path);

private:
    const Gate& m_gate;
    CZIP m_zip;
    QStringList m_paths;
    QHash<NoCase, EntryRef> m_entries; ///< by installed path
};

class FileCabinet
{
public:
    /// All must outlive this.
    FileCabinet(Services& services, const GlobalRecord& global)
        : m_services(services), m_global(global)
    {}

    /// "Kestrel K2 - 12": the title as a file name and the record number, which stands alone when
    /// the title yields nothing.
    [[nodiscard]] static QString targetName(const QString& title, qint64 masterKey);

    /// Full path of the add-on's archive, under whatever title it was made; nothing without one.
    [[nodiscard]] std::optional<QString> find(qint64 masterKey) const;
    /// The one that find() gives, else where it is to be made.
    [[nodiscard]] QString archiveFor(const QString& title, qint64 masterKey) const;

    /// Name of the entry for the file that belongs at \a path, "\" between folders: below the
    /// simulator's folder the path from there, elsewhere "~<root>\" before the path below the root.
    [[nodiscard]] static QString entryName(const Gate& gate, const QString& path);
    /// Back; empty for a name that is none of ours.
    [[nodiscard]] static QString installedPath(const Gate& gate, const QString& entry);

    /// Stages in \a actions the archive with the files added (made when missing, entries of the
    /// same names replaced) and compares what was written with the files. When it cannot be put in
    /// its place, nothing else of \a actions is carried out. \a level: 0 to 9.
    Result put(FileTransaction& actions,
               const QString& archive,
               const std::vector<CabinetFile>& files,
               int level);
    /// Stages the archive without the entries of these paths; it goes when none is left.
    Result takeOut(FileTransaction& actions, const QString& archive, const QStringList& paths);

private:
    Services& m_services;
    const GlobalRecord& m_global;
};

} // namespace vt
