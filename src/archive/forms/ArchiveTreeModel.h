// What an archive holds, as a tree: its folders, and the archives inside it as folders of their
// own. Built once from a listing; holds names, sizes and dates, and reads nothing.
#pragma once

#include "archive/CZIPFile.h"
#include "shell/forms/FileTreeModel.h"

#include <vector>

namespace vt {

class ArchiveTreeModel : public FileTreeModel
{
    Q_OBJECT

public:
    enum Own
    {
        SizeColumn = FirstOwnColumn, ///< the tree's
        DateColumn,
    };

    explicit ArchiveTreeModel(QObject* parent = nullptr);

    /// The archive itself first, as CZIP lists it; none: an empty tree. Inner archives that were
    /// listed are no files.
    void setContents(const std::vector<CZIPFile>& contents);

protected:
    [[nodiscard]] QVariant fileData(qint32 id, int column, int role) const override;
    [[nodiscard]] QVariant sortKey(qint32 id, int column) const override;

private:
    /// By id: when a file was changed; -1 where nothing tells.
    std::vector<qint64> m_modifiedNs;
};

} // namespace vt
