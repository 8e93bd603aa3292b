#include "shell/forms/ColumnDelegate.h"

#include "shell/forms/ColumnView.h"

#include <QHelpEvent>
#include <QToolTip>

namespace vt {

void ColumnDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    const auto* view = qobject_cast<const ColumnView*>(option->widget);
    if (!view)
        return;
    if (!view->showsIcons()) {
        option->features &= ~QStyleOptionViewItem::HasDecoration;
        option->icon = {};
        option->decorationSize = {};
    }
    if (view->isPathColumn(index.column()))
        option->textElideMode = Qt::ElideMiddle;
}

bool ColumnDelegate::helpEvent(QHelpEvent* event,
                               QAbstractItemView* view,
                               const QStyleOptionViewItem& option,
                               const QModelIndex& index)
{
    const bool own = !index.data(Qt::ToolTipRole).toString().isEmpty();
    if (event->type() != QEvent::ToolTip || own || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const bool cut = sizeHint(option, index).width() > view->visualRect(index).width();
    QToolTip::showText(event->globalPos(), cut ? index.data().toString() : QString(), view);
    return true;
}

} // namespace vt
