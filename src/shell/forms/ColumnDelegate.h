// Draws the cells of a ColumnView: icons only where they are wanted, paths cut in the middle, what
// is cut whole in the tool tip. Delegates of single columns derive from it.
#pragma once

#include <QStyledItemDelegate>

namespace vt {

class ColumnDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event,
                   QAbstractItemView* view,
                   const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

} // namespace vt
