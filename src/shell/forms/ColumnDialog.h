// The dialog "Customize Columns": which columns a list shows, in which order, and by which one it
// is sorted.
#pragma once

#include "shell/forms/ColumnView.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QListWidget;
class QPushButton;

namespace vt {

class ColumnDialog : public QDialog
{
    Q_OBJECT

public:
    /// \a titles in the order of the model; \a mainColumn is always shown.
    ColumnDialog(const QStringList& titles, int mainColumn, QWidget* parent = nullptr);

    void setArrangement(const ColumnArrangement& arrangement);

    /// What the button "Reset" goes back to.
    void setFirstArrangement(const ColumnArrangement& arrangement) { m_first = arrangement; }

    [[nodiscard]] ColumnArrangement arrangement() const;

private:
    void buildColumns();
    void buildSorting();
    void move(int by);
    void enableMoves();

    QStringList m_titles;
    int m_mainColumn;
    ColumnArrangement m_first;
    QListWidget* m_columns = nullptr;
    QPushButton* m_up = nullptr;
    QPushButton* m_down = nullptr;
    QComboBox* m_sortBy = nullptr;
    QCheckBox* m_descending = nullptr;
};

} // namespace vt
