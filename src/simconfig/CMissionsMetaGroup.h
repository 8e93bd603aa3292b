// Missions with their files: those that are installed, and those of an add-on that is being
// installed. A mission is a folder with a flight file; what lies below it belongs to it, but for
// folders that hold a flight of their own.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace vt {

class CAddon_ItemGroup;
struct GlobalRecord;

/// One mission.
struct CMissionGroup
{
    QString sFolder;          ///< full path, ends in "\"
    QString sCategory;        ///< folders between Missions and the mission's own, without outer "\"
    QString sFlightFile;      ///< name of the first flight file in the folder
    QString sTitle;           ///< "Title" of section [Main]; empty when it has none
    QString sDescription;     ///< "Description" of section [Main]
    bool boolDefault = false; ///< the simulator's own
    QStringList sarrayFiles;  ///< full paths of all files
    /// Of an add-on: the keys of its items, in the order of sarrayFiles.
    QList<qint32> lngarrayAddonItemKeys;

    /// The title, or the folder's name where the flight has none.
    [[nodiscard]] QString name() const;
};

/// A file that may belong to a mission.
struct MissionFile
{
    QString folder; ///< full path, ends in "\"
    QString name;
    qint32 itemKey = 0;
};

class CMissionsMetaGroup
{
public:
    [[nodiscard]] const std::vector<CMissionGroup>& colMissionGroups() const { return m_groups; }

    [[nodiscard]] std::vector<CMissionGroup>& colMissionGroups() { return m_groups; }

    /// The mission of that folder, or nullptr; without regard to case and form.
    [[nodiscard]] const CMissionGroup* Search(QStringView folder) const;
    /// The categories that the missions lie in, each once, in their order.
    [[nodiscard]] QStringList Categories() const;

    /// Makes missions of \a files: every folder with a flight file is one, in the order of the
    /// files, and identified by the first flight listed in it. Titles are not read. Files that lie
    /// in no mission are left out.
    [[nodiscard]] static CMissionsMetaGroup ofFiles(const QList<MissionFile>& files,
                                                    const QString& missionsFolder);
    /// The missions of an add-on, at the places where they will be installed.
    [[nodiscard]] static CMissionsMetaGroup ofAddon(const CAddon_ItemGroup& addon,
                                                    const GlobalRecord& global);

private:
    std::vector<CMissionGroup> m_groups;
};

} // namespace vt
