// The removal wizard's last page: what will happen to each add-on and to each of its files, told
// before anything happens.
#pragma once

#include "platform/Result.h"
#include "remove/forms/RemovalChoices.h"
#include "shell/forms/ColumnView.h"

#include <QWidget>

class QLabel;
class QSplitter;

namespace vt {

class CControlMgr_lvwAddonRmvDtls;
class RemovedFilesModel;
class Session;

class frmRemove_Summary : public QWidget
{
    Q_OBJECT

public:
    /// Both must outlive this.
    frmRemove_Summary(Session& session, const RemovalChoices& choices, QWidget* parent = nullptr);

    /// Looks what the choices would do. A failure names the add-on that could not be looked at.
    Result refresh();

    /// "74 files go, 3 files come back, 1 file stays."
    [[nodiscard]] const QString& totals() const { return m_totals; }

    void Form_Settings_Save();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void sizeColumns();
    void showFiles();

    Session& m_session;
    const RemovalChoices& m_choices;
    QString m_totals;
    QSplitter* m_splitter = nullptr;
    ColumnView* m_addons = nullptr;
    CControlMgr_lvwAddonRmvDtls* m_manager = nullptr;
    ColumnView* m_files = nullptr;
    RemovedFilesModel* m_model = nullptr;
    QLabel* m_about = nullptr;
};

} // namespace vt
