// The toolbar of the main window: the commonest commands as pictures, with captions or without.
#pragma once

#include "shell/forms/ControlMenu.h"

#include <QToolBar>

namespace vt {

class ControlToolbar : public QToolBar
{
    Q_OBJECT

public:
    /// Each button does what the menu entry of its command does, and is enabled with it.
    explicit ControlToolbar(const ControlMenu& menu, QWidget* parent = nullptr);

    void setCaptions(bool on);
    /// Buttons with edges, instead of flat ones.
    void setRaised(bool on);
    /// Buttons of families ("Aircraft") offer their submenu beside, where there is room for it.
    void setSubmenus(bool on);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void fit();
    void showSubmenus(bool on);

    QList<std::pair<QAction*, QMenu*>> m_families;
    bool m_wantsSubmenus = false;
    bool m_showsSubmenus = false;
};

} // namespace vt
