// Standard output and standard error as UTF-8, past the stream libraries.
#pragma once

#include <QByteArrayView>
#include <QString>

namespace vt::cli::console {

[[nodiscard]] bool inputIsTerminal();
[[nodiscard]] bool errorIsTerminal();

/// As it is, at once.
void output(QByteArrayView bytes);
void error(const QString& text);

/// Lets Ctrl+C and a request to end stop between two files; a second one ends the program at once.
/// A reader that goes away ends nothing.
void installSignals();
[[nodiscard]] bool stopRequested();

} // namespace vt::cli::console
