// The files of an installation in the tree of their target folders, with what happens to each.
#pragma once

#include "install/PlannedFiles.h"
#include "shell/forms/FileTreeModel.h"

#include <QHash>

namespace vt {

/// Which files are shown.
enum class PlannedFilter
{
    All,
    Replaced,
    Changed, ///< files of the simulator that are edited
    Problems,
};

class PlannedFilesModel : public FileTreeModel
{
    Q_OBJECT

public:
    enum Own
    {
        StateColumn = FirstOwnColumn, ///< of folders: how many files
        InstallColumn,                ///< "Install" or "Do not install"
        GroupColumn,
        SizeColumn, ///< the tree's
        SourceColumn,
        FolderColumn,
        RemarkColumn,
    };

    explicit PlannedFilesModel(QObject* parent = nullptr);

    /// \a details must outlive the next call; null: nothing.
    void setPlan(const CAddonInstallationDetails* details, std::vector<PlannedFile> files);
    void setFilter(PlannedFilter filter);

    [[nodiscard]] qsizetype count(PlannedState state) const;

protected:
    [[nodiscard]] QVariant fileData(qint32 id, int column, int role) const override;
    [[nodiscard]] QVariant sortKey(qint32 id, int column) const override;

private:
    [[nodiscard]] bool passes(const PlannedFile& file) const;
    [[nodiscard]] QString groupOf(const CAddon_Item& item) const;
    void rebuild();

    const CAddonInstallationDetails* m_details = nullptr;
    std::vector<PlannedFile> m_files;
    QHash<qint32, size_t> m_byKey;
    PlannedFilter m_filter = PlannedFilter::All;
};

} // namespace vt
