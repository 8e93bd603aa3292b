#include "remove/forms/CControlMgr_lvwAddonRmvDtls.h"

#include "platform/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

CControlMgr_lvwAddonRmvDtls::CControlMgr_lvwAddonRmvDtls(ColumnView& list)
    : QAbstractTableModel(&list), m_list(list)
{
    list.setObjectName(u"lvwAddonRemovalDetails"_s);
    list.setAccessibleName(u"Addons that will be removed"_s);
    list.setSelectionMode(QAbstractItemView::SingleSelection);
    list.setMainColumn(NameColumn);
    list.setPathColumns({ActionColumn});
    list.setModel(this);
    connect(list.selectionModel(),
            &QItemSelectionModel::currentChanged,
            this,
            &CControlMgr_lvwAddonRmvDtls::currentChanged);
}

void CControlMgr_lvwAddonRmvDtls::setPreviews(const QList<RemovalPreview>& previews)
{
    beginResetModel();
    m_rows.clear();
    for (const RemovalPreview& preview : previews)
        m_rows.append({preview, int(m_rows.size()) + 1});
    endResetModel();
    if (!m_rows.isEmpty())
        m_list.setCurrentIndex(index(0, NameColumn));
    Q_EMIT currentChanged();
}

const RemovalPreview* CControlMgr_lvwAddonRmvDtls::current() const
{
    const QModelIndex current = m_list.currentIndex();
    return current.isValid() ? &m_rows.at(current.row()).preview : nullptr;
}

int CControlMgr_lvwAddonRmvDtls::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int CControlMgr_lvwAddonRmvDtls::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant CControlMgr_lvwAddonRmvDtls::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const Row& row = m_rows.at(index.row());
    if (role == Qt::TextAlignmentRole && index.column() == OrderColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case OrderColumn:
        return row.order;
    case NameColumn:
        return row.preview.addon.name;
    default:
        return row.preview.action;
    }
}

QVariant
CControlMgr_lvwAddonRmvDtls::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role == Qt::TextAlignmentRole && section == OrderColumn)
        return QVariant(Qt::AlignRight | Qt::AlignVCenter);
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    static const QStringList titles = {u"Order"_s, u"Addon Name"_s, u"Action"_s};
    return titles.value(section);
}

bool CControlMgr_lvwAddonRmvDtls::less(const Row& a, const Row& b, int column) const
{
    switch (column) {
    case NameColumn:
        return compareNoCase(a.preview.addon.name, b.preview.addon.name) < 0;
    case ActionColumn:
        return compareNoCase(a.preview.action, b.preview.action) < 0;
    default:
        return a.order < b.order;
    }
}

void CControlMgr_lvwAddonRmvDtls::sort(int column, Qt::SortOrder order)
{
    beginResetModel();
    std::stable_sort(m_rows.begin(), m_rows.end(), [&](const Row& a, const Row& b) {
        return order == Qt::AscendingOrder ? less(a, b, column) : less(b, a, column);
    });
    endResetModel();
}

} // namespace vt
