// The start of the program, in its stated order: who runs, where the simulator is, folders,
// database, main window, the health of the database, the first window.
#pragma once

#include "app/Options.h"
#include "app/SecondStart.h"
#include "session/Session.h"
#include "shell/forms/QtPrompts.h"
#include "shell/forms/QtStatus.h"
#include "shell/forms/frmControl.h"

#include <functional>
#include <memory>

namespace vt::app {

class StartUp
{
public:
    explicit StartUp(Options options);
    ~StartUp();
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;

    /// Runs the whole sequence. True: the main window is open and the event loop may run; false:
    /// the program ends with exitStatus().
    [[nodiscard]] bool Main();

    /// 0, 2 for wrong options, 3 when the surroundings do not fit.
    [[nodiscard]] int exitStatus() const { return m_exit; }

    /// Closes the window as soon as nothing works and no question is open.
    void leave();

    /// Size of the screen that the window opens on.
    std::function<QSize()> screenSize;

    [[nodiscard]] frmControl* window() const { return m_window.get(); }

private:
    bool end(int status);
    bool refuse(const QString& caption, const Result& why);
    bool isOnlyInstance();
    bool Application_Startup();
    bool openDatabase();
    void showWindow();
    bool databaseHealth();
    bool damageCheck();
    bool sizeCheck();
    void pauseAfterOptimizing();
    void importAtStartup();
    void screenResolution();
    void firstWindow();
    void fileManagerEntry();
    void defaultPictures();
    void stage(const QString& name);
    void listenForOthers();
    void tellRemarks();

    Options m_options;
    QtPrompts m_prompts;
    QtStatus m_status{m_prompts};
    std::unique_ptr<Session> m_session;
    std::unique_ptr<frmControl> m_window;
    std::unique_ptr<SecondStart> m_others;
    QStringList m_remarks;
    int m_exit = 0;
};

} // namespace vt::app
