// What an operation did, entry by entry: groups in their order, problems alone, a filter, and the
// way on from here. Shows results and changes nothing.
#pragma once

#include "shell/Results.h"
#include "shell/forms/ResultsModel.h"
#include "shell/forms/ToolWindow.h"

#include <QList>
#include <QString>

#include <functional>

class QCheckBox;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;

namespace vt {

class ColumnView;

/// A sensible step after an operation, as a button: "Start Flying", "Show Addon".
struct NextStep
{
    QString objectName;        ///< of its button
    QString text;              ///< with its access key, none of C, E, I, L, P, S
    std::function<void()> run; ///< the window stays open
    bool once = false;         ///< off, once it was pressed
};

class frmProcessResults : public ToolWindow
{
    Q_OBJECT

public:
    /// \a caption as the operation gives it ("Removal Results - '...'"). The context must outlive
    /// this.
    frmProcessResults(Context& context,
                      const QString& caption,
                      Results results,
                      const QList<NextStep>& steps = {},
                      QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;

    /// Writes what is shown to \a path (text or HTML by its extension), a Windows path that the
    /// user chose, and says so below the list.
    void saveReport(const QString& path);

protected:
    void changeEvent(QEvent* event) override;

private:
    void sizeColumns();
    QLayout* filterLine();
    QWidget* list();
    QLayout* buttons(const QList<NextStep>& steps);
    void addShortcuts();
    void summarise();
    void filter();
    void copy();
    void save();
    void openFolder();
    void showCurrent();
    [[nodiscard]] QString currentPath() const;
    [[nodiscard]] QModelIndexList chosenRows() const;

    ResultsModel* m_model;
    QLabel* m_summaryIcon = nullptr;
    QLabel* m_summary = nullptr;
    QLineEdit* m_filter = nullptr;
    QCheckBox* m_problemsOnly = nullptr;
    QLabel* m_shown = nullptr;
    ColumnView* m_list = nullptr;
    QLabel* m_said = nullptr;
    QPushButton* m_openFolder = nullptr;
    QPushButton* m_close = nullptr;
};

} // namespace vt
