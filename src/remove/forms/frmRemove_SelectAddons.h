// The removal wizard's first page: add-ons and files of them are ticked, with a search.
#pragma once

#include "remove/forms/RemovalChoices.h"
#include "shell/Context.h"
#include "shell/forms/ColumnView.h"

#include <QWidget>

class QLabel;
class QLineEdit;

namespace vt {

class AddonSelectionModel;
class Connection;

class frmRemove_SelectAddons : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive this.
    frmRemove_SelectAddons(Context& context, Connection& database, QWidget* parent = nullptr);

    /// Reads the add-ons; what was ticked stays.
    Result refresh();

    [[nodiscard]] QList<SelectedAddon> selection() const;
    /// Ticks these and shows the first of them.
    void restore(const QList<SelectedAddon>& selection);

    void Form_Settings_Save();

Q_SIGNALS:
    void ticksChanged();

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    void showCount();

    Context& m_context;
    AddonSelectionModel* m_model;
    QLineEdit* m_search = nullptr;
    ColumnView* m_list = nullptr;
    QLabel* m_count = nullptr;
};

} // namespace vt
