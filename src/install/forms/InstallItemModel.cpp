#include "install/forms/InstallItemModel.h"

#include "addondb/FileType.h"
#include "install/forms/PlannedIcons.h"
#include "platform/Text.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

void InstallItemModel::show(CAddonInstallationDetails* details,
                            const QList<qint32>& keys,
                            const Files& files)
{
    beginResetModel();
    m_details = details;
    m_keys = details ? keys : QList<qint32>();
    look(files);
    sortKeys();
    endResetModel();
}

void InstallItemModel::refresh(const Files& files)
{
    look(files);
    if (!m_keys.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

void InstallItemModel::look(const Files& files)
{
    m_planned.clear();
    m_anyWithoutFolder = false;
    m_anyTwice = false;
    if (!m_details)
        return;
    const QSet<qint32> shown(m_keys.cbegin(), m_keys.cend());
    for (PlannedFile& file : plannedFiles(*m_details, m_details->facts(), files)) {
        if (!shown.contains(file.item))
            continue;
        const CAddon_Item& item = *m_details->addon().Search(file.item);
        m_anyWithoutFolder |= item.boolProcess && item.sFolder_Installation.isEmpty();
        m_planned.insert(file.item, std::move(file));
    }
    const QList<QList<qint32>> doubled = m_details->addon().duplicateTargets();
    for (const QList<qint32>& keys : doubled) {
        for (const qint32 key : keys)
            m_anyTwice |= shown.contains(key);
    }
}

const PlannedFile* InstallItemModel::plannedAt(int row) const
{
    const auto found = m_planned.constFind(keyAt(row));
    return found == m_planned.cend() ? nullptr : &*found;
}

int InstallItemModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_keys.size());
}

int InstallItemModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant InstallItemModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case File:
        return u"File"_s;
    case Install:
        return u"Install"_s;
    case TargetFolder:
        return u"Target Folder"_s;
    case TargetName:
        return u"Target Name"_s;
    default:
        return u"Problem Details"_s;
    }
}

QString
InstallItemModel::text(const CAddon_Item& item, const PlannedFile& planned, int column) const
{
    switch (column) {
    case File:
        return item.sFolder_Current + item.sName;
    case Install:
        return plantext::installWord(item.boolProcess);
    case TargetFolder: {
        const QString folder = m_details->simulatorFolderOf(item);
        if (folder.isEmpty())
            return plantext::notSelected();
        if (item.lngKey_AssociatedItem > 0)
            return plantext::sameFolderAsItem() + u" '"_s +
                   item.GetAssociatedFileItemDetails(m_details->addon()).name + u'\'';
        return folder;
    }
    case TargetName:
        return item.sName_Installation;
    default:
        return planned.remark;
    }
}

QVariant
InstallItemModel::decoration(const CAddon_Item& item, const PlannedFile& planned, int column) const
{
    if (column == File)
        return plannedIcon(planned.state);
    const bool problem = planned.state == PlannedState::Problem;
    const bool here =
        column == TargetFolder ? item.sFolder_Installation.isEmpty() : column == ProblemDetails;
    return problem && here ? QVariant(plannedIcon(planned.state)) : QVariant();
}

QVariant InstallItemModel::data(const QModelIndex& index, int role) const
{
    const PlannedFile* planned = index.isValid() ? plannedAt(index.row()) : nullptr;
    const CAddon_Item* item = planned ? m_details->addon().Search(planned->item) : nullptr;
    if (!item)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return text(*item, *planned, index.column());
    case Qt::DecorationRole:
        return decoration(*item, *planned, index.column());
    case Qt::CheckStateRole:
        if (index.column() == Install)
            return item->boolProcess ? Qt::Checked : Qt::Unchecked;
        return {};
    case Qt::ToolTipRole:
        if (index.column() == File)
            return item->sFolder_Current + item->sName + u'\n' +
                   fileTypeName(item->enumAddonFileType) + u": "_s +
                   plannedStateWord(planned->state);
        if (index.column() == TargetFolder)
            return item->sFolder_Installation + item->sName_Installation;
        return text(*item, *planned, index.column());
    case Qt::AccessibleDescriptionRole:
        return plannedStateWord(planned->state);
    default:
        return {};
    }
}

Qt::ItemFlags InstallItemModel::flags(const QModelIndex& index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    return index.column() == Install ? flags | Qt::ItemIsUserCheckable : flags;
}

bool InstallItemModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::CheckStateRole || index.column() != Install || !m_details)
        return false;
    Q_EMIT ticked(keyAt(index.row()), value.toInt() == Qt::Checked);
    return true;
}

void InstallItemModel::sort(int column, Qt::SortOrder order)
{
    m_sortColumn = column;
    m_sortOrder = order;
    Q_EMIT layoutAboutToBeChanged();
    const QModelIndexList before = persistentIndexList();
    QList<qint32> keys;
    for (const QModelIndex& index : before)
        keys.append(keyAt(index.row()));
    sortKeys();
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i)
        after.append(index(rowOf(keys.at(i)), before.at(i).column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged();
}

void InstallItemModel::sortKeys()
{
    std::vector<std::pair<QString, qint32>> rows;
    rows.reserve(size_t(m_keys.size()));
    for (const qint32 key : std::as_const(m_keys)) {
        const CAddon_Item* item = m_details->addon().Search(key);
        rows.emplace_back(foldCase(text(*item, m_planned.value(key), m_sortColumn)), key);
    }
    std::stable_sort(rows.begin(), rows.end(), [this](const auto& a, const auto& b) {
        return m_sortOrder == Qt::AscendingOrder ? a.first < b.first : b.first < a.first;
    });
    m_keys.clear();
    for (const auto& row : rows)
        m_keys.append(row.second);
}

} // namespace vt
