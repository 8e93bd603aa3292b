// The files of an add-on's source as the tree that they form there.
#pragma once

#include "shell/forms/FileTreeModel.h"

namespace vt {

class CAddonInstallationDetails;

class SourceContentsModel : public FileTreeModel
{
    Q_OBJECT

public:
    enum Own
    {
        TypeColumn = FirstOwnColumn, ///< of folders: how many files
        SizeColumn,                  ///< the tree's
        DateColumn,
    };

    explicit SourceContentsModel(QObject* parent = nullptr);

    /// Shows \a details, which must outlive the next call; null: nothing.
    void setDetails(const CAddonInstallationDetails* details);

protected:
    [[nodiscard]] QVariant fileData(qint32 id, int column, int role) const override;
    [[nodiscard]] QVariant sortKey(qint32 id, int column) const override;

private:
    const CAddonInstallationDetails* m_details = nullptr;
};

} // namespace vt
