// The children of the main window: opened once each, put where they were, listed in the menu.
#include "shell/Settings.h"
#include "shell/forms/ControlArea.h"
#include "shell/forms/ToolWindow.h"
#include "shell/forms/WindowPlace.h"
#include "shell/forms/frmControl.h"

#include <QLayout>
#include <QMdiSubWindow>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr QStringView normalState = u"0";
constexpr QStringView minimizedState = u"1";
constexpr QStringView maximizedState = u"2";
constexpr int listedChildren = 9;

} // namespace

ToolWindow* frmControl::openTool(const QString& key,
                                 const QString& status,
                                 const std::function<ToolWindow*()>& make)
{
    if (ToolWindow* open = tool(key)) {
        auto* child = qobject_cast<QMdiSubWindow*>(open->parentWidget());
        if (child && child->isMinimized())
            child->showNormal();
        m_area->setActiveSubWindow(child);
        return open;
    }
    if (!status.isEmpty())
        m_status.text(u"Primary"_s, status);
    ToolWindow* made = make();
    if (!made)
        return nullptr;
    m_tools.insert(key, made);
    QMdiSubWindow* child = addChild(made);
    made->Form_PrepareToShow();
    placeChild(child, made->section());
    return made;
}

QMdiSubWindow* frmControl::addChild(ToolWindow* tool)
{
    QMdiSubWindow* child = m_area->addSubWindow(tool);
    child->setAttribute(Qt::WA_DeleteOnClose);
    for (QAction* action : child->systemMenu()->actions())
        if (!action->shortcut().isEmpty()) // that of closing, which differs from desktop to desktop
            action->setShortcuts({Qt::CTRL | Qt::Key_W, Qt::CTRL | Qt::Key_F4});
    if (tool->windowIcon().isNull())
        child->setWindowIcon(windowIcon());
    return child;
}

/// Where it was; inside the area, however small that is now.
void frmControl::placeChild(QMdiSubWindow* child, Section section)
{
    Settings& settings = m_context.settings;
    layout()->activate(); // a main window that was only just shown has not measured its middle yet
    const QRect area = m_area->viewport()->rect();
    const QSize wanted = child->sizeHint()
                             .expandedTo(child->minimumSizeHint())
                             .expandedTo({area.width() * 3 / 4, area.height() * 3 / 4});
    const int step = child->fontMetrics().height() * 2;
    const int others = int(m_area->subWindowList().size()) - 1;
    const QRect proposal(QPoint(step, step) * (others % 6), wanted);
    const std::optional<QRect> kept =
        windowplace::fromText(settings.layoutText(section, LayoutValue::WindowPlace));
    const QRect place = windowplace::inside(kept.value_or(proposal), area);
    child->setGeometry({place.topLeft(), place.size().expandedTo(child->minimumSizeHint())});
    const QString state = settings.layoutText(section, LayoutValue::WindowState);
    if (state == maximizedState)
        child->showMaximized();
    else if (m_area->currentSubWindow() && m_area->currentSubWindow() != child &&
             m_area->currentSubWindow()->isMaximized())
        child->showMaximized(); // as the one that it covers
    else
        child->show();
    m_area->setActiveSubWindow(child);
}

void frmControl::keepPlace(QMdiSubWindow* child)
{
    const auto* tool = qobject_cast<ToolWindow*>(child->widget());
    if (!tool)
        return;
    Settings& settings = m_context.settings;
    QStringView state = normalState;
    if (child->isMaximized())
        state = maximizedState;
    else if (child->isMinimized())
        state = minimizedState;
    else
        (void)settings.setLayoutText(
            tool->section(), LayoutValue::WindowPlace, windowplace::toText(child->geometry()));
    (void)settings.setLayoutText(tool->section(), LayoutValue::WindowState, state.toString());
}

ToolWindow* frmControl::tool(const QString& key) const
{
    ToolWindow* known = m_tools.value(key);
    // One that was closed may not be deleted yet.
    return tools().contains(known) ? known : nullptr;
}

QList<ToolWindow*> frmControl::tools() const
{
    QList<ToolWindow*> open;
    for (const QMdiSubWindow* child : m_area->subWindowList())
        if (auto* tool = qobject_cast<ToolWindow*>(child->widget()))
            open.append(tool);
    return open;
}

/// The open children at the end of the menu "Window".
void frmControl::listChildren()
{
    QMenu* menu = m_menu.menus[u"mnuWindow"_s];
    for (QAction* action : menu->actions())
        if (action->property("child").toBool())
            delete action;
    const QList<QMdiSubWindow*> children = m_area->subWindowList();
    if (!children.isEmpty())
        menu->addSeparator()->setProperty("child", true);
    for (qsizetype i = 0; i < children.size(); ++i) {
        QMdiSubWindow* child = children[i];
        const QString number = QString::number(i + 1);
        QAction* action = menu->addAction((i < listedChildren ? u"&"_s : QString()) + number +
                                          u' ' + child->windowTitle().replace(u'&', u"&&"_s));
        action->setProperty("child", true);
        action->setCheckable(true);
        action->setChecked(child == m_area->currentSubWindow());
        connect(action, &QAction::triggered, child, [this, child] {
            m_area->setActiveSubWindow(child);
        });
    }
}

} // namespace vt
