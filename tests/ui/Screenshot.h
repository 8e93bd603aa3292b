// Pictures of windows, for people to judge.
#pragma once

#include <QPalette>
#include <QSize>
#include <QString>
#include <QStringList>

class QWidget;

namespace vt::test {

[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

/// Writes "<name>-light.png" and "<name>-dark.png"; a name may say more ("list-800x600"). \a size:
/// the window's for the pictures, its own when empty. The window may be shown or not, and ends as
/// it began. Returns the files. What the desktop enlarges to 200 % comes to a folder of its own.
QStringList screenshot(QWidget& window, const QString& name, QSize size = {});

/// The size of the window in such a file, in the units of layouts.
[[nodiscard]] QSize sizeOf(const QString& file);

} // namespace vt::test
