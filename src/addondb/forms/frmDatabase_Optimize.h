// The dialog that writes the add-on database anew, with repair where that is wished.
#pragma once

#include "session/Session.h"
#include "shell/forms/Frame.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

namespace vt {

class frmDatabase_Optimize : public QDialog
{
    Q_OBJECT

public:
    /// Both must outlive this; the session is ready for writing.
    frmDatabase_Optimize(Session& session, Frame& frame, QWidget* parent = nullptr);

    /// With the other windows closed, when the user agrees; says below the boxes what became of it.
    void optimize();

private:
    void askForRepair(bool ticked);
    [[nodiscard]] bool closeOthers();
    void showSize();

    Session& m_session;
    Frame& m_frame;
    QLabel* m_size = nullptr;
    QCheckBox* m_auto = nullptr;
    QCheckBox* m_repair = nullptr;
    QLabel* m_said = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace vt
