// What reaches the main window from outside: work that takes a while, things dropped on it, a
// second start, the end.
#include "shell/Settings.h"
#include "shell/forms/ControlArea.h"
#include "shell/forms/ControlStatusBar.h"
#include "shell/forms/ControlToolbar.h"
#include "shell/forms/ToolWindow.h"
#include "shell/forms/WindowPlace.h"
#include "shell/forms/frmControl.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ContextMenu:
    case QEvent::DragEnter:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

void frmControl::beginWork()
{
    m_status.beginWork();
    menuBar()->setEnabled(false);
    m_toolbar->setEnabled(false);
    m_bar->offerCancel(true);
}

void frmControl::endWork()
{
    m_status.endWork();
    if (m_status.working())
        return;
    menuBar()->setEnabled(true);
    m_toolbar->setEnabled(true);
    m_bar->offerCancel(false);
}

/// Questions and the buttons that cancel take input during work, and nothing else does.
bool frmControl::passesDuringWork(QObject* watched, QEvent* event) const
{
    if (QApplication::activeModalWidget())
        return true;
    const auto* widget = qobject_cast<QWidget*>(watched);
    if (!widget) // window handles pass events on to widgets
        return watched->isWindowType();
    if (event->type() == QEvent::Wheel)
        return true; // looking around changes nothing
    for (; widget; widget = widget->parentWidget())
        if (widget->objectName() == u"cancelWork" || widget->property("duringWork").toBool())
            return true;
    return false;
}

/// Of the dialog that is open, else of the tool that is in front.
QString frmControl::topicHere() const
{
    if (const QWidget* dialog = QApplication::activeModalWidget())
        return dialog->property(helpTopicProperty).toString();
    const QMdiSubWindow* child = m_area->currentSubWindow();
    const auto* tool = child ? qobject_cast<ToolWindow*>(child->widget()) : nullptr;
    return tool ? tool->helpTopic() : QString();
}

bool frmControl::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress && watched->isWidgetType() && !m_status.working()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F1 && key->modifiers() == Qt::NoModifier) {
            showHelp(topicHere());
            return true;
        }
    }
    if (type == QEvent::ToolTip && !m_context.settings.flag(SettingKey::ActiveTooltips))
        return true;
    if (m_status.working() && isInput(type) && !passesDuringWork(watched, event)) {
        if (type == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
            m_status.requestCancel();
        if (type == QEvent::Close) {
            m_status.requestCancel();
            event->ignore();
        }
        return true;
    }
    if (type == QEvent::Close)
        if (auto* child = qobject_cast<QMdiSubWindow*>(watched)) {
            keepPlace(child);
            // What the empty area says appears once the last one is gone.
            QTimer::singleShot(0, m_area->viewport(), qOverload<>(&QWidget::update));
        }
    return QMainWindow::eventFilter(watched, event);
}

/// The panels are permanent and no tips are shown in their place.
bool frmControl::event(QEvent* event)
{
    if (event->type() == QEvent::StatusTip)
        return true;
    return QMainWindow::event(event);
}

QString frmControl::droppedSource(const QMimeData* data) const
{
    for (const QUrl& url : data->urls())
        if (url.isLocalFile())
            return m_context.services.files.drives().toWindows(url.toLocalFile());
    return {};
}

void frmControl::dragEnterEvent(QDragEnterEvent* event)
{
    if (hooks.installAddon && !m_status.working() && !droppedSource(event->mimeData()).isEmpty()) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void frmControl::dropEvent(QDropEvent* event)
{
    const QString source = droppedSource(event->mimeData());
    if (source.isEmpty())
        return;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // Whoever dropped it does not wait for the wizard.
    QTimer::singleShot(0, this, [this, source] {
        bringForward();
        installAddon(source);
    });
}

void frmControl::showAtStart()
{
    Settings& settings = m_context.settings;
    const QRect screen = this->screen()->availableGeometry();
    const QSize usual(qMin(screen.width() * 4 / 5, 1280), qMin(screen.height() * 4 / 5, 860));
    QRect proposal({}, usual);
    proposal.moveCenter(screen.center());
    const std::optional<QRect> kept =
        windowplace::fromText(settings.text(SettingKey::MainWindowPlace));
    setGeometry(windowplace::inside(kept.value_or(proposal), screen));
    if (settings.flag(SettingKey::MDIOpenMaximized))
        showMaximized();
    else
        show();
}

void frmControl::bringForward()
{
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

void frmControl::chooseFromFileMenu(QChar accessKey)
{
    QMenu* file = m_menu.menus[u"mnuFile"_s];
    for (QAction* entry : file->actions()) {
        const QString text = entry->text();
        const qsizetype mark = text.indexOf(u'&');
        if (mark >= 0 && text.mid(mark + 1, 1).compare(accessKey, Qt::CaseInsensitive) == 0) {
            entry->trigger();
            return;
        }
    }
}

void frmControl::keepMainPlace()
{
    if (!isMaximized() && !isMinimized())
        (void)m_context.settings.setText(SettingKey::MainWindowPlace,
                                         windowplace::toText(geometry()));
}

void frmControl::closeEvent(QCloseEvent* event)
{
    if (m_leaving) {
        event->accept();
        return;
    }
    m_area->closeAllSubWindows();
    for (const QMdiSubWindow* child : m_area->subWindowList())
        if (!child->isHidden()) {
            event->ignore();
            return;
        }
    m_leaving = true;
    keepMainPlace();
    (void)m_context.settings.Registry_SaveSettings();
    if (hooks.beforeExit)
        hooks.beforeExit();
    event->accept();
}

} // namespace vt
