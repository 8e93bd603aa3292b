#include "shell/forms/ColumnView.h"

#include "platform/Text.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnDelegate.h"
#include "shell/forms/ColumnDialog.h"

#include <QAction>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Widest that a column gets by itself, in average characters.
constexpr int widestByItself = 48;
constexpr int narrowestPath = 32; ///< while other columns are out of sight

/// The rows from the topmost level down to \a index, for comparing places in a tree.
QList<int> placeOf(QModelIndex index)
{
    QList<int> place;
    for (; index.isValid(); index = index.parent())
        place.prepend(index.row());
    return place;
}

QString oneLine(QString text)
{
    for (QChar& c : text)
        if (c == u'\t' || c == u'\n' || c == u'\r' || c == QChar::LineSeparator)
            c = u' ';
    return text;
}

} // namespace

ColumnView::ColumnView(QWidget* parent) : QTreeView(parent)
{
    setItemDelegate(new ColumnDelegate(this));
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    buildHeader();
    buildActions();
    buildEmptyPlace();
}

void ColumnView::buildHeader()
{
    QHeaderView* columns = header();
    columns->setSectionsMovable(true);
    columns->setFirstSectionMovable(true);
    columns->setStretchLastSection(false);
    columns->setAccessibleName(u"Columns"_s);
    columns->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(columns, &QWidget::customContextMenuRequested, this, &ColumnView::showHeaderMenu);
    connect(columns, &QHeaderView::sectionResized, this, [this] {
        if (!m_fitting)
            m_pathWidths.clear();
    });
    columns->setSortIndicator(-1, Qt::AscendingOrder); // until somebody sorts
    setSortingEnabled(true);
}

QAction* ColumnView::addCommand(const QString& text, const QString& name)
{
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    addAction(action);
    return action;
}

void ColumnView::buildActions()
{
    m_selectAll = addCommand(u"Select &All"_s, u"SelectAll"_s);
    m_selectAll->setShortcut(QKeySequence::SelectAll);
    connect(m_selectAll, &QAction::triggered, this, &ColumnView::selectAll);
    m_selectNone = addCommand(u"Select &None"_s, u"SelectNone"_s);
    connect(m_selectNone, &QAction::triggered, this, &ColumnView::clearSelection);
    m_invert = addCommand(u"In&vert Selection"_s, u"InvertSelection"_s);
    connect(m_invert, &QAction::triggered, this, [this] {
        const int rows = model() ? model()->rowCount(rootIndex()) : 0;
        if (rows > 0)
            selectionModel()->select(QItemSelection(model()->index(0, 0, rootIndex()),
                                                    model()->index(rows - 1, 0, rootIndex())),
                                     QItemSelectionModel::Toggle | QItemSelectionModel::Rows);
    });
    m_copy = addCommand(u"&Copy"_s, u"Copy"_s);
    m_copy->setShortcut(QKeySequence::Copy);
    connect(m_copy, &QAction::triggered, this, [this] {
        if (const QString text = selectedText(); !text.isEmpty())
            QGuiApplication::clipboard()->setText(text);
    });
    m_autoSize = addCommand(u"A&uto-size Columns"_s, u"AutoSizeColumns"_s);
    connect(m_autoSize, &QAction::triggered, this, &ColumnView::autoSizeColumns);
    m_customize = addCommand(u"Customize Co&lumns..."_s, u"CustomizeColumns"_s);
    connect(m_customize, &QAction::triggered, this, &ColumnView::customizeColumns);
    m_showIcons = addCommand(u"Sho&w Icons"_s, u"ShowIcons"_s);
    m_showIcons->setCheckable(true);
    m_showIcons->setChecked(true);
    connect(m_showIcons, &QAction::toggled, this, &ColumnView::setShowsIcons);
}

void ColumnView::buildEmptyPlace()
{
    m_emptyPlace = new QWidget(viewport());
    m_emptyText = new QLabel(m_emptyPlace);
    m_emptyText->setWordWrap(true);
    m_emptyText->setAlignment(Qt::AlignCenter);
    m_emptyButton = new QPushButton(m_emptyPlace);
    m_emptyButton->setObjectName(u"cmdEmptyPlace"_s);
    connect(m_emptyButton, &QPushButton::clicked, this, &ColumnView::emptyButtonClicked);
    auto* layout = new QVBoxLayout(m_emptyPlace);
    layout->addStretch();
    layout->addWidget(m_emptyText);
    layout->addWidget(m_emptyButton, 0, Qt::AlignHCenter);
    layout->addStretch();
    m_emptyPlace->hide();
}

// --- model and sorting ---

void ColumnView::setModel(QAbstractItemModel* shown)
{
    if (model())
        disconnect(model(), nullptr, this, nullptr);
    QTreeView::setModel(shown);
    if (!shown)
        return;
    const auto changed = [this] {
        updateEmptyPlace();
        sizeColumnsOnce();
    };
    connect(shown, &QAbstractItemModel::modelReset, this, changed);
    connect(shown, &QAbstractItemModel::rowsInserted, this, changed);
    connect(shown, &QAbstractItemModel::rowsRemoved, this, changed);
    connect(shown, &QAbstractItemModel::layoutChanged, this, changed);
    updateEmptyPlace();
}

void ColumnView::setFirstSort(int column, Qt::SortOrder order)
{
    m_firstSort = column;
    m_firstOrder = order;
}

// --- columns ---

QString ColumnView::columnTitle(int column) const
{
    return model()->headerData(column, Qt::Horizontal).toString();
}

ColumnArrangement ColumnView::firstArrangement() const
{
    ColumnArrangement first;
    for (int column = 0; column < header()->count(); ++column)
        first.columns.append({column, !m_hiddenAtFirst.contains(column)});
    first.sortBy = m_firstSort;
    first.descending = m_firstOrder == Qt::DescendingOrder;
    return first;
}

ColumnArrangement ColumnView::arrangement() const
{
    ColumnArrangement now;
    for (int place = 0; place < header()->count(); ++place) {
        const int column = header()->logicalIndex(place);
        const bool shown = m_viewType == ViewType::Details ? !isColumnHidden(column)
                                                           : m_shownInDetails.contains(column);
        now.columns.append({column, shown});
    }
    now.sortBy = header()->sortIndicatorSection();
    now.descending = header()->sortIndicatorOrder() == Qt::DescendingOrder;
    return now;
}

void ColumnView::arrange(const ColumnArrangement& arrangement)
{
    m_shownInDetails.clear();
    for (int place = 0; place < arrangement.columns.size(); ++place) {
        const ColumnArrangement::Column& wanted = arrangement.columns.at(place);
        const bool shown = wanted.shown || wanted.column == m_mainColumn;
        header()->moveSection(header()->visualIndex(wanted.column), place);
        if (shown && isColumnHidden(wanted.column) && columnWidth(wanted.column) == 0)
            resizeColumnToContents(wanted.column);
        setColumnHidden(wanted.column, !shown);
        if (shown)
            m_shownInDetails.append(wanted.column);
    }
    applyViewType();
    sortByColumn(arrangement.sortBy,
                 arrangement.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void ColumnView::autoSizeColumns()
{
    const int widest = widestByItself * fontMetrics().averageCharWidth();
    for (int column = 0; column < header()->count(); ++column) {
        const bool stretched = header()->stretchLastSection() &&
                               header()->visualIndex(column) == header()->count() - 1;
        if (isColumnHidden(column) || stretched)
            continue;
        resizeColumnToContents(column);
        setColumnWidth(column, std::min(columnWidth(column), widest));
    }
}

/// Paths are understood when they are cut, numbers out of sight are not.
void ColumnView::fitPathColumns()
{
    const QScopedValueRollback fitting(m_fitting, true);
    const int least = narrowestPath * fontMetrics().averageCharWidth();
    for (auto wanted = m_pathWidths.cbegin(); wanted != m_pathWidths.cend(); ++wanted)
        setColumnWidth(wanted.key(), wanted.value());
    int tooMuch = header()->length() - viewport()->width();
    for (auto wanted = m_pathWidths.cbegin(); wanted != m_pathWidths.cend(); ++wanted) {
        const int gives = std::min(tooMuch, wanted.value() - least);
        if (gives <= 0)
            continue;
        setColumnWidth(wanted.key(), wanted.value() - gives);
        tooMuch -= gives;
    }
}

/// From now on they follow the view's width, until the user sizes a column.
void ColumnView::followWithPathColumns()
{
    m_pathWidths.clear();
    for (const int column : std::as_const(m_pathColumns))
        if (!isColumnHidden(column) && !header()->stretchLastSection())
            m_pathWidths.insert(column, columnWidth(column));
    fitPathColumns();
}

void ColumnView::autoSizeAtFirst()
{
    if (m_arranged)
        return;
    autoSizeColumns();
    followWithPathColumns();
}

void ColumnView::sizeColumnsOnce()
{
    if (m_sized || model()->rowCount(rootIndex()) == 0)
        return;
    m_sized = true;
    autoSizeColumns();
    const int left = viewport()->width() - header()->length();
    if (left > 0 && !isColumnHidden(m_mainColumn))
        setColumnWidth(m_mainColumn,
                       columnWidth(m_mainColumn) +
                           std::min(left, widestByItself * fontMetrics().averageCharWidth()));
    followWithPathColumns();
}

void ColumnView::customizeColumns()
{
    QStringList titles;
    for (int column = 0; column < header()->count(); ++column)
        titles.append(columnTitle(column));
    ColumnDialog dialog(titles, m_mainColumn, this);
    dialog.setArrangement(arrangement());
    dialog.setFirstArrangement(firstArrangement());
    if (dialog.exec() == QDialog::Accepted)
        arrange(dialog.arrangement());
}

// --- what is remembered ---

/// "name:width" of each shown column from left to right, joined by "|".
QString ColumnView::columnsText() const
{
    QStringList columns;
    for (const ColumnArrangement::Column& column : arrangement().columns) {
        const int width = isColumnHidden(column.column) ? 0 : columnWidth(column.column);
        if (column.shown)
            columns.append(columnTitle(column.column) + u':' + QString::number(width));
    }
    return columns.join(u'|');
}

/// False for a text that names no column of this list.
bool ColumnView::takeColumns(const QString& text)
{
    ColumnArrangement wanted;
    QHash<int, int> widths;
    const QStringList parts = text.split(u'|', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        const qsizetype colon = part.lastIndexOf(u':');
        for (int column = 0; column < header()->count(); ++column) {
            if (widths.contains(column) ||
                !equalNoCase(columnTitle(column), colon < 0 ? part : part.left(colon)))
                continue;
            wanted.columns.append({column, true});
            widths.insert(column, colon < 0 ? 0 : part.mid(colon + 1).toInt());
        }
    }
    if (widths.isEmpty())
        return false;
    for (int column = 0; column < header()->count(); ++column)
        if (!widths.contains(column))
            wanted.columns.append({column, false});
    wanted.sortBy = m_firstSort;
    wanted.descending = m_firstOrder == Qt::DescendingOrder;
    arrange(wanted);
    for (auto width = widths.cbegin(); width != widths.cend(); ++width) {
        if (width.value() > 0)
            setColumnWidth(width.key(), width.value());
        else
            resizeColumnToContents(width.key());
    }
    return true;
}

void ColumnView::restoreLayout(Settings& settings, Section window, ViewPrefix prefix)
{
    const auto text = [&](LayoutValue value) {
        return settings.stored(window, layoutName(value, prefix));
    };
    m_arranged = takeColumns(text(LayoutValue::CurrentColumns).value_or(QString()));
    m_sized = m_arranged;
    if (!m_arranged)
        arrange(firstArrangement());
    if (text(LayoutValue::SortBy)) {
        const int by = settings.layoutText(window, LayoutValue::SortBy, prefix).toInt();
        const QString descending = settings.layoutText(window, LayoutValue::SortDescending, prefix);
        if (by < header()->count())
            sortByColumn(by, descending == "True"_L1 ? Qt::DescendingOrder : Qt::AscendingOrder);
    }
    setShowsIcons(settings.layoutText(window, LayoutValue::ShowIcons, prefix) == "True"_L1);
    setViewType(
        static_cast<ViewType>(settings.layoutText(window, LayoutValue::ViewType, prefix).toInt()));
    sizeColumnsOnce();
}

void ColumnView::saveLayout(Settings& settings, Section window, ViewPrefix prefix) const
{
    const auto keep = [&](LayoutValue value, const QString& text) {
        settings.setLayoutText(window, value, text, prefix);
    };
    const ColumnArrangement now = arrangement();
    if (m_sized) // without rows nobody has seen the columns
        keep(LayoutValue::CurrentColumns, columnsText());
    keep(LayoutValue::SortBy, QString::number(now.sortBy));
    keep(LayoutValue::SortDescending, now.descending ? u"True"_s : u"False"_s);
    keep(LayoutValue::ShowIcons, m_showsIcons ? u"True"_s : u"False"_s);
    keep(LayoutValue::ViewType, QString::number(static_cast<int>(m_viewType)));
}

// --- how rows are shown ---

void ColumnView::setViewType(ViewType type)
{
    if (type == m_viewType)
        return;
    if (m_viewType == ViewType::Details) {
        m_shownInDetails.clear();
        for (int column = 0; column < header()->count(); ++column)
            if (!isColumnHidden(column))
                m_shownInDetails.append(column);
    }
    m_viewType = type;
    applyViewType();
}

void ColumnView::applyViewType()
{
    const bool details = m_viewType == ViewType::Details;
    setHeaderHidden(!details);
    for (int column = 0; column < header()->count(); ++column)
        setColumnHidden(column,
                        details ? !m_shownInDetails.contains(column) : column != m_mainColumn);
    const QStyle::PixelMetric size =
        m_viewType == ViewType::LargeIcons ? QStyle::PM_LargeIconSize : QStyle::PM_SmallIconSize;
    const int pixels = style()->pixelMetric(size, nullptr, this);
    setIconSize({pixels, pixels});
}

void ColumnView::setShowsIcons(bool shows)
{
    m_showsIcons = shows;
    m_showIcons->setChecked(shows);
    viewport()->update();
}

// --- an empty list ---

void ColumnView::setEmptyText(const QString& text, const QString& button)
{
    m_emptyText->setText(text);
    m_emptyButton->setText(button);
    m_emptyButton->setVisible(!button.isEmpty());
    updateEmptyPlace();
}

void ColumnView::updateEmptyPlace()
{
    const bool empty = model() && model()->rowCount(rootIndex()) == 0;
    m_emptyPlace->setVisible(empty && !m_emptyText->text().isEmpty());
    placeEmptyPlace();
}

void ColumnView::placeEmptyPlace()
{
    m_emptyPlace->setGeometry(viewport()->rect());
}

void ColumnView::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    placeEmptyPlace();
    if (!m_pathWidths.isEmpty())
        fitPathColumns();
}

void ColumnView::changeEvent(QEvent* event)
{
    QTreeView::changeEvent(event);
    if (event->type() == QEvent::StyleChange && header())
        applyViewType();
}

// --- selection and menus ---

QList<int> ColumnView::selectedRowNumbers() const
{
    QList<int> rows;
    if (!selectionModel())
        return rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom() && !range.parent().isValid(); ++row)
            rows.append(row);
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QString ColumnView::selectedText() const
{
    if (!selectionModel())
        return {};
    QModelIndexList rows = selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) {
        return a.parent() == b.parent() ? a.row() < b.row() : placeOf(a) < placeOf(b);
    });
    QString text;
    for (const QModelIndex& row : std::as_const(rows)) {
        QStringList cells;
        for (int place = 0; place < header()->count(); ++place)
            if (const int column = header()->logicalIndex(place); !isColumnHidden(column))
                cells.append(oneLine(row.siblingAtColumn(column).data().toString()));
        text += cells.join(u'\t') + u'\n';
    }
    return text;
}

void ColumnView::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    Q_EMIT menuWanted(menu);
    if (!menu->isEmpty())
        menu->addSeparator();
    menu->addActions({m_autoSize, m_customize, m_showIcons});
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard && currentIndex().isValid())
        at = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    menu->popup(at);
    event->accept();
}

void ColumnView::showHeaderMenu(const QPoint& at)
{
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const ColumnArrangement::Column& column : arrangement().columns) {
        QAction* entry = menu->addAction(columnTitle(column.column));
        entry->setCheckable(true);
        entry->setChecked(column.shown);
        entry->setEnabled(column.column != m_mainColumn);
        connect(entry, &QAction::toggled, this, [this, column](bool shown) {
            setColumnHidden(column.column, !shown);
            if (shown && columnWidth(column.column) < header()->minimumSectionSize())
                resizeColumnToContents(column.column);
        });
    }
    menu->addSeparator();
    menu->addActions({m_autoSize, m_customize});
    menu->popup(header()->mapToGlobal(at));
}

} // namespace vt
