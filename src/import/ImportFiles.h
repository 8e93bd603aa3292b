// Which files an import takes: everything below the folders of what it found, but for what is
// recorded already, what an other group of the same import took, and what this program made itself.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/CAddon_ItemGroup.h"
#include "addondb/Connection.h"
#include "platform/Files.h"
#include "platform/Text.h"

#include <QHash>
#include <QSet>
#include <QString>

namespace vt {

class ImportFiles
{
public:
    /// \a all: files that the add-on does not need to work, too. \a files must outlive this.
    ImportFiles(const Files& files, int generation, bool all)
        : m_files(files), m_generation(generation), m_all(all)
    {}

    /// Reads what is recorded; without a database nothing is.
    Result readRecords(Connection* database);

    /// What the records say of the add-on that holds a place.
    enum class Owner
    {
        Nobody,
        Imported,
        Installed,
    };

    [[nodiscard]] Owner ownerOf(const QString& path, qint64* key = nullptr) const;

    /// Adds the files below \a folder that are nobody's yet as items of \a group, and takes them.
    /// Those below \a except are left alone.
    void take(CAddon_ItemGroup& group,
              const QString& folder,
              MappedGroup kind,
              const QSet<NoCase>& except = {});
    /// Keeps those of the group's items that are nobody's yet, and takes them.
    void takeOnly(CAddon_ItemGroup& group);

    /// Documents, left-overs and whatever else the simulator does not read.
    [[nodiscard]] bool isNonCritical(const QString& name) const;

private:
    [[nodiscard]] bool isFree(const QString& path, const QString& name) const;

    const Files& m_files;
    const int m_generation;
    const bool m_all;
    QHash<NoCase, qint64> m_recorded; ///< key of the add-on, by place
    QSet<qint64> m_imported;          ///< keys of imported add-ons
    QSet<NoCase> m_taken;             ///< by groups of this import
};

} // namespace vt
