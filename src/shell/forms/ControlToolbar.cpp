#include "shell/forms/ControlToolbar.h"

#include "shell/forms/Icons.h"

#include <QMenu>
#include <QStyle>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct ToolRow
{
    const char* icon; ///< nullptr: a separator
    const char16_t* caption;
    const char* entry;       ///< the menu's
    const char* family = ""; ///< submenu offered beside
};

constexpr ToolRow tools[] = {
    {"install", u"Install", "mnuFile_InstallAnAddon"},
    {"remove", u"Remove", "mnuFile_RemoveAnAddon"},
    {"import", u"Import", "mnuAddons_Import"},
    {nullptr, u"", ""},
    {"all-addons", u"All Addons", "mnuWorkWithAllAddons"},
    {"cabinet", u"Cabinet", "mnuFileCabinet"},
    {"history", u"History", "mnuAddonHistory"},
    {nullptr, u"", ""},
    {"aircraft", u"Aircraft", "mnuAddons_WorkWithAircraftAddons", "mnuAddons_Aircraft"},
    {"panels", u"Panels", "mnuWorkWithPanelAddons", "mnuAddons_Panels"},
    {"sounds", u"Sounds", "mnuWorkWithSoundAddons", "mnuAddons_Sounds"},
    {"scenery", u"Scenery", "mnuSceneryWorkWith", "mnuAddons_Scenery"},
    {"traffic", u"Traffic", "mnuAIFlightPlans", "mnuAddons_AITraffic"},
    {nullptr, u"", ""},
    {"start-flying", u"Start Flying", "mnuStartFlying"},
};

} // namespace

ControlToolbar::ControlToolbar(const ControlMenu& menu, QWidget* parent)
    : QToolBar(u"Toolbar"_s, parent)
{
    setObjectName(u"ControlToolbar"_s);
    setMovable(false);
    setFocusPolicy(Qt::NoFocus);
    for (const ToolRow& row : tools) {
        if (!row.icon) {
            addSeparator();
            continue;
        }
        QAction* entry = menu.actions.value(QString::fromLatin1(row.entry));
        QAction* tool = addAction(icons::command(QString::fromLatin1(row.icon)),
                                  QString::fromUtf16(row.caption));
        tool->setToolTip(plainCaption(entry->text()));
        tool->setEnabled(entry->isEnabled());
        connect(tool, &QAction::triggered, entry, &QAction::trigger);
        connect(entry, &QAction::enabledChanged, tool, &QAction::setEnabled);
        if (QMenu* family = menu.menus.value(QString::fromLatin1(row.family)))
            m_families.append({tool, family});
        // By keyboard, too: Tab reaches every button.
        widgetForAction(tool)->setFocusPolicy(Qt::TabFocus);
    }
}

void ControlToolbar::setCaptions(bool on)
{
    setToolButtonStyle(on ? Qt::ToolButtonTextUnderIcon : Qt::ToolButtonIconOnly);
}

void ControlToolbar::setRaised(bool on)
{
    for (QAction* tool : actions())
        if (auto* button = qobject_cast<QToolButton*>(widgetForAction(tool)))
            button->setAutoRaise(!on);
}

void ControlToolbar::setSubmenus(bool on)
{
    m_wantsSubmenus = on;
    fit();
}

void ControlToolbar::resizeEvent(QResizeEvent* event)
{
    QToolBar::resizeEvent(event);
    fit();
}

/// Rather no submenus than commands behind the toolbar's end.
void ControlToolbar::fit()
{
    if (m_families.isEmpty())
        return;
    const QWidget* family = widgetForAction(m_families.first().first);
    const int arrows = int(m_families.size()) *
                       (style()->pixelMetric(QStyle::PM_MenuButtonIndicator, nullptr, family) + 2);
    const int needed = sizeHint().width() + (m_showsSubmenus ? 0 : arrows);
    showSubmenus(m_wantsSubmenus && width() >= needed);
}

void ControlToolbar::showSubmenus(bool on)
{
    if (on == m_showsSubmenus)
        return;
    m_showsSubmenus = on;
    for (const auto& [tool, family] : std::as_const(m_families)) {
        tool->setMenu(on ? family : nullptr);
        if (auto* button = qobject_cast<QToolButton*>(widgetForAction(tool)))
            button->setPopupMode(on ? QToolButton::MenuButtonPopup : QToolButton::DelayedPopup);
    }
}

} // namespace vt
