// Which letters a window's visible parts want, and where two want the same.
#pragma once

#include <QStringList>

class QWidget;

namespace vt::test {

/// Each letter that more than one of the main menu and the window's visible buttons, labels and
/// tabs ask for, as "&Options / Installation &Options"; the menu first.
QStringList accessKeyClashes(const QWidget& window);

} // namespace vt::test
