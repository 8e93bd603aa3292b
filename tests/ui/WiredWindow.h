// The main window with every command of the program, over the demonstration simulator.
#pragma once

#include "app/Wiring.h"
#include "ui/WindowWorld.h"

#include <QApplication>

namespace vt::test {

struct WiredWindow
{
    WiredWindow()
    {
        app::wire(window, *world.session);
        window.showAtStart();
        window.resize(1280, 800);
        QApplication::setActiveWindow(&window);
        QApplication::processEvents();
    }

    WindowWorld world;
    QtStatus status{world.prompts};
    frmControl window{world.context(), status};
};

} // namespace vt::test
