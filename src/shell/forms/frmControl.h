// The main window: menu, toolbar, status bar, and the area in which every tool opens as a child.
// Knows no tool: what the entries do, and what opens, is registered by the program that wires all.
#pragma once

#include "shell/Context.h"
#include "shell/SettingsTable.h"
#include "shell/forms/ControlMenu.h"
#include "shell/forms/Frame.h"
#include "shell/forms/QtStatus.h"

#include <QFont>
#include <QMainWindow>
#include <QPointer>

#include <functional>

class QMdiSubWindow;
class QMimeData;

namespace vt {

class ControlArea;
class ControlStatusBar;
class ControlToolbar;
class Processes;
class ToolWindow;

/// What the main window cannot do itself. An unset one does nothing.
struct FrameHooks
{
    std::function<void(const QString& source, const InstallationRest& rest)> installAddon;
    std::function<void(const QList<qint64>&)> removeAddons;
    std::function<void(const QList<qint64>&)> workWithAddons;
    std::function<const Processes&()> processes; ///< to start the simulator with
    std::function<void(const QString& topic)> showHelp;
    /// After the last child has closed, before the window does.
    std::function<void()> beforeExit;
};

class frmControl : public QMainWindow, public Frame
{
    Q_OBJECT

public:
    /// Both must outlive this. Prompts, status and settings are those of the context.
    frmControl(Context& context, QtStatus& status);
    ~frmControl() override;

    FrameHooks hooks;

    /// Makes the entry do \a run, and enables it.
    void setCommand(const QString& controlName, std::function<void()> run);
    [[nodiscard]] bool hasCommand(const QString& controlName) const;
    /// Fills "Toys"; empty: disabled.
    void setToys(const QList<std::pair<QString, std::function<void()>>>& toys);

    /// Opens a tool as a child, or brings forward the one that is open under this \a key. \a
    /// status: what the panel "Primary" says meanwhile. The window remembers its place and state in
    /// its section.
    ToolWindow*
    openTool(const QString& key, const QString& status, const std::function<ToolWindow*()>& make);
    /// The open tool of this key, or null.
    [[nodiscard]] ToolWindow* tool(const QString& key) const;
    [[nodiscard]] QList<ToolWindow*> tools() const;

    /// Shows the window where it was, or maximised where that is wished.
    void showAtStart();
    /// As a second start asks for it: brought forward.
    void bringForward();
    /// Opens the File menu, as Alt+F does, and chooses an entry of it by its access key.
    void chooseFromFileMenu(QChar accessKey);
    /// Settings that the windows show were changed elsewhere.
    void applySettings();

    void command(const QString& controlName) override;
    void installAddon(const QString& source, const InstallationRest& rest = {}) override;
    void removeAddons(const QList<qint64>& masterKeys) override;
    void workWithAddons(const QList<qint64>& masterKeys) override;
    void showResults(const QString& caption,
                     const Results& results,
                     const AfterResults& after = {}) override;
    void startFlying(const QString& file = {}, bool afterChange = false) override;
    void recordsChanged() override;

    [[nodiscard]] int openTools() const override { return int(tools().size()); }

    void showHelp(const QString& topic = {}) override;
    void beginWork() override;
    void endWork() override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    QMenu* createPopupMenu() override;

private:
    void buildBars();
    void buildOwnCommands();
    void listChildren();
    void toggle(SettingKey key, bool on);
    void applyFont();
    QMdiSubWindow* addChild(ToolWindow* tool);
    void placeChild(QMdiSubWindow* child, Section section);
    void keepPlace(QMdiSubWindow* child);
    void keepMainPlace();
    [[nodiscard]] bool passesDuringWork(QObject* watched, QEvent* event) const;
    [[nodiscard]] QString topicHere() const;
    [[nodiscard]] QString droppedSource(const QMimeData* data) const;

    Context& m_context;
    QtStatus& m_status;
    ControlMenu m_menu;
    QHash<QString, std::function<void()>> m_commands;
    QHash<QString, QPointer<ToolWindow>> m_tools;
    ControlArea* m_area = nullptr;
    ControlToolbar* m_toolbar = nullptr;
    ControlStatusBar* m_bar = nullptr;
    const QFont m_desktopFont;
    int m_results = 0; ///< results windows opened so far
    bool m_leaving = false;
};

} // namespace vt
