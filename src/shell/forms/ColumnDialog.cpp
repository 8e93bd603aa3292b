#include "shell/forms/ColumnDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

ColumnDialog::ColumnDialog(const QStringList& titles, int mainColumn, QWidget* parent)
    : QDialog(parent), m_titles(titles), m_mainColumn(mainColumn)
{
    setObjectName(u"ColumnDialog"_s);
    setWindowTitle(u"Customize Columns"_s);
    new QVBoxLayout(this);
    buildColumns();
    buildSorting();
    auto* buttons = new QDialogButtonBox(
        QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Reset, this);
    buttons->button(QDialogButtonBox::Reset)->setText(u"&Reset"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons->button(QDialogButtonBox::Reset), &QPushButton::clicked, this, [this] {
        setArrangement(m_first);
    });
    layout()->addWidget(buttons);
    m_columns->setFocus();
}

void ColumnDialog::buildColumns()
{
    auto* label = new QLabel(u"&Columns, from left to right:"_s, this);
    m_columns = new QListWidget(this);
    m_columns->setObjectName(u"lstColumns"_s);
    m_columns->setDragDropMode(QAbstractItemView::InternalMove);
    m_columns->setAccessibleName(u"Columns, from left to right"_s);
    label->setBuddy(m_columns);
    m_up = new QPushButton(u"Move &Up"_s, this);
    m_down = new QPushButton(u"Move &Down"_s, this);
    m_up->setToolTip(u"Ctrl+Up"_s);
    m_down->setToolTip(u"Ctrl+Down"_s);
    for (const auto& [button, by, keys] : {std::tuple{m_up, -1, Qt::CTRL | Qt::Key_Up},
                                           std::tuple{m_down, 1, Qt::CTRL | Qt::Key_Down}}) {
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, by = by] { move(by); });
        auto* action = new QAction(m_columns);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, [this, by = by] { move(by); });
        m_columns->addAction(action);
    }
    connect(m_columns, &QListWidget::currentRowChanged, this, &ColumnDialog::enableMoves);
    auto* grid = new QGridLayout;
    grid->addWidget(label, 0, 0);
    grid->addWidget(m_columns, 1, 0, 3, 1);
    grid->addWidget(m_up, 1, 1);
    grid->addWidget(m_down, 2, 1);
    grid->setRowStretch(3, 1);
    static_cast<QVBoxLayout*>(layout())->addLayout(grid);
}

void ColumnDialog::buildSorting()
{
    auto* label = new QLabel(u"&Sort by:"_s, this);
    m_sortBy = new QComboBox(this);
    m_sortBy->setObjectName(u"cboSortBy"_s);
    m_sortBy->addItems(m_titles);
    label->setBuddy(m_sortBy);
    m_descending = new QCheckBox(u"From the greatest to the &least"_s, this);
    m_descending->setObjectName(u"chkDescending"_s);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(m_sortBy, 1);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    layout()->addWidget(m_descending);
}

void ColumnDialog::setArrangement(const ColumnArrangement& arrangement)
{
    m_columns->clear();
    for (const ColumnArrangement::Column& column : arrangement.columns) {
        auto* item = new QListWidgetItem(m_titles.value(column.column), m_columns);
        item->setData(Qt::UserRole, column.column);
        const bool main = column.column == m_mainColumn;
        item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsDragEnabled |
                       (main ? Qt::NoItemFlags : Qt::ItemIsUserCheckable) | Qt::ItemIsEnabled);
        item->setCheckState(column.shown || main ? Qt::Checked : Qt::Unchecked);
        if (main)
            item->setToolTip(u"This column names the rows and is always shown."_s);
    }
    m_columns->setCurrentRow(0);
    m_sortBy->setCurrentIndex(arrangement.sortBy);
    m_descending->setChecked(arrangement.descending);
    enableMoves();
}

ColumnArrangement ColumnDialog::arrangement() const
{
    ColumnArrangement chosen;
    for (int row = 0; row < m_columns->count(); ++row) {
        const QListWidgetItem* item = m_columns->item(row);
        chosen.columns.append(
            {item->data(Qt::UserRole).toInt(), item->checkState() == Qt::Checked});
    }
    chosen.sortBy = m_sortBy->currentIndex();
    chosen.descending = m_descending->isChecked();
    return chosen;
}

void ColumnDialog::move(int by)
{
    const int from = m_columns->currentRow();
    const int to = from + by;
    if (from < 0 || to < 0 || to >= m_columns->count())
        return;
    m_columns->insertItem(to, m_columns->takeItem(from));
    m_columns->setCurrentRow(to);
}

void ColumnDialog::enableMoves()
{
    m_up->setEnabled(m_columns->currentRow() > 0);
    m_down->setEnabled(m_columns->currentRow() >= 0 &&
                       m_columns->currentRow() < m_columns->count() - 1);
}

} // namespace vt
