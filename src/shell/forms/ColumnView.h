// A list whose columns the user sorts by their headers, sizes, orders and hides, and which the
// window remembers. Shows any model; knows nothing of what the rows mean.
#pragma once

#include "shell/SettingsTable.h"

#include <QMap>
#include <QTreeView>

class QLabel;
class QMenu;
class QPushButton;

namespace vt {

class Settings;

/// Which columns of a list stand where, as the user arranged them.
struct ColumnArrangement
{
    struct Column
    {
        int column = 0; ///< of the model
        bool shown = true;
    };

    QList<Column> columns; ///< every column once, from left to right
    int sortBy = 0;        ///< of the model; -1: as the rows come
    bool descending = false;
};

class ColumnView : public QTreeView
{
    Q_OBJECT

public:
    /// How the rows are shown. Stored: never renumber.
    enum class ViewType
    {
        Details,    ///< all columns that are ticked
        List,       ///< the main column alone
        SmallIcons, ///< the same
        LargeIcons, ///< the same, with large icons
    };

    explicit ColumnView(QWidget* parent = nullptr);

    /// The column that names a row (0 at first): it cannot be hidden, and gets what room is left.
    void setMainColumn(int column) { m_mainColumn = column; }

    /// Columns that are hidden until the user ticks them.
    void setHiddenAtFirst(const QList<int>& columns) { m_hiddenAtFirst = columns; }

    /// How rows are sorted until the user clicks a header; column 0 ascending otherwise.
    void setFirstSort(int column, Qt::SortOrder order);

    /// Columns of paths: cut in the middle instead of at the end.
    void setPathColumns(const QList<int>& columns) { m_pathColumns = columns; }

    [[nodiscard]] bool isPathColumn(int column) const { return m_pathColumns.contains(column); }

    /// Columns, sorting, view type and icons as the window's section holds them; to be called once,
    /// with the model set.
    void restoreLayout(Settings& settings, Section window, ViewPrefix prefix = ViewPrefix::None);
    void saveLayout(Settings& settings, Section window, ViewPrefix prefix = ViewPrefix::None) const;

    [[nodiscard]] ColumnArrangement arrangement() const;
    void arrange(const ColumnArrangement& arrangement);
    /// As before the user changed anything.
    [[nodiscard]] ColumnArrangement firstArrangement() const;

    [[nodiscard]] ViewType viewType() const { return m_viewType; }

    void setViewType(ViewType type);

    [[nodiscard]] bool showsIcons() const { return m_showsIcons; }

    void setShowsIcons(bool shows);

    /// What stands in the middle while there are no rows; with \a button also a button of that
    /// caption, which emits emptyButtonClicked().
    void setEmptyText(const QString& text, const QString& button = {});

    /// Rows of the model that are selected, from above; of the topmost level alone.
    [[nodiscard]] QList<int> selectedRowNumbers() const;
    /// The selected rows as shown, a line each, their columns parted by tabs.
    [[nodiscard]] QString selectedText() const;

    // Commands for menus; those with a shortcut work while the list has the focus.
    [[nodiscard]] QAction* selectAllAction() const { return m_selectAll; }

    [[nodiscard]] QAction* selectNoneAction() const { return m_selectNone; }

    [[nodiscard]] QAction* invertSelectionAction() const { return m_invert; }

    [[nodiscard]] QAction* copyAction() const { return m_copy; }

    [[nodiscard]] QAction* autoSizeAction() const { return m_autoSize; }

    [[nodiscard]] QAction* customizeAction() const { return m_customize; }

    [[nodiscard]] QAction* showIconsAction() const { return m_showIcons; }

    /// Each shown column as wide as what it holds.
    void autoSizeColumns();
    /// The same, for what is seen once folders are open, unless restoreLayout() found the user's
    /// own widths.
    void autoSizeAtFirst();
    /// Opens the dialog in which columns are ticked and ordered.
    void customizeColumns();

    void setModel(QAbstractItemModel* model) override;

Q_SIGNALS:
    /// The context menu is about to be shown: entries that are added stand before "A&uto-size
    /// Columns", "Customize Co&lumns..." and "Sho&w Icons".
    void menuWanted(QMenu* menu);
    void emptyButtonClicked();

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void buildActions();
    void buildHeader();
    void buildEmptyPlace();
    QAction* addCommand(const QString& text, const QString& name);
    void showHeaderMenu(const QPoint& at);
    [[nodiscard]] QString columnTitle(int column) const;
    [[nodiscard]] QString columnsText() const;
    bool takeColumns(const QString& text);
    void sizeColumnsOnce();
    void fitPathColumns();
    void followWithPathColumns();
    void applyViewType();
    void updateEmptyPlace();
    void placeEmptyPlace();

    int m_mainColumn = 0;
    QMap<int, int>
        m_pathWidths; ///< that columns of paths want; empty: all columns stay as they are
    bool m_fitting = false;
    QList<int> m_hiddenAtFirst;
    QList<int> m_pathColumns;
    int m_firstSort = 0;
    Qt::SortOrder m_firstOrder = Qt::AscendingOrder;
    ViewType m_viewType = ViewType::Details;
    QList<int> m_shownInDetails; ///< while another view type hides them
    bool m_showsIcons = true;
    bool m_arranged = false; ///< by the user, once
    bool m_sized = false;    ///< false: columns are sized when the first rows come
    QAction* m_selectAll = nullptr;
    QAction* m_selectNone = nullptr;
    QAction* m_invert = nullptr;
    QAction* m_copy = nullptr;
    QAction* m_autoSize = nullptr;
    QAction* m_customize = nullptr;
    QAction* m_showIcons = nullptr;
    QWidget* m_emptyPlace = nullptr;
    QLabel* m_emptyText = nullptr;
    QPushButton* m_emptyButton = nullptr;
};

} // namespace vt
