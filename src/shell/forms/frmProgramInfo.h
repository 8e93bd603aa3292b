// The program information window: where everything lies and what it is, to be read and copied.
#pragma once

#include "shell/forms/ToolWindow.h"

class QTreeWidget;
class QTreeWidgetItem;

namespace vt {

/// One line of information.
struct ProgramFact
{
    QString group;
    QString name;
    QString value;
    QString folder = {}; ///< a Windows folder that can be opened; may be empty
};

class frmProgramInfo : public ToolWindow
{
    Q_OBJECT

public:
    /// \a more: facts that the window cannot know itself, shown last.
    frmProgramInfo(Context& context,
                   const QString& version,
                   const QList<ProgramFact>& more = {},
                   QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;

    /// Everything as lines of "name: value" below their groups.
    [[nodiscard]] QString text() const;

private:
    void gather(const QString& version);
    void copy() const;
    void openFolder() const;

    QList<ProgramFact> m_facts;
    QTreeWidget* m_list;
};

} // namespace vt
