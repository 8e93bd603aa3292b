// The desktop's own file and folder dialogs, spoken to in Windows paths: what is chosen comes back
// through the drive table, spelled as on the disk.
#pragma once

#include "platform/Files.h"

#include <QString>
#include <QStringList>

#include <optional>

class QWidget;

namespace vt::folderchooser {

/// How a dialog presents itself.
struct Request
{
    QString title;
    QString prompt = {}; ///< what is wanted, in a sentence; may be empty
    /// Windows folder that the dialog opens in; where it does not exist, the nearest one above it
    /// that does.
    QString start = {};
    /// Windows folder offered at the side, such as the simulator's; may be empty.
    QString root = {};
    QStringList filters = {}; ///< "Pictures (*.png *.jpg)"; empty: all files
    QString suffix = {};      ///< of a file to be written that is typed without one
};

/// Full path ending in "\"; nothing when the user gave up.
[[nodiscard]] std::optional<QString>
chooseFolder(QWidget* parent, const Files& files, const Request& request);

[[nodiscard]] std::optional<QString>
chooseFile(QWidget* parent, const Files& files, const Request& request);

/// Several files of one folder; empty when the user gave up.
[[nodiscard]] QStringList chooseFiles(QWidget* parent, const Files& files, const Request& request);

/// A file to be written; the dialog asks about one that exists. \a name: the proposal.
[[nodiscard]] std::optional<QString>
chooseFileToSave(QWidget* parent, const Files& files, const Request& request, const QString& name);

} // namespace vt::folderchooser
