// The file to install that the command line names, and its way to an instance that is running
// already ("Startup.txt").
#pragma once

#include "platform/DriveTable.h"
#include "platform/FileActions.h"
#include "platform/Files.h"

#include <QString>
#include <QStringList>

namespace vt {

struct GlobalRecord;

/// What stands behind "-file" and one more character, to the end of the line, without quotes, as a
/// full path; empty when there is no such word or nothing behind it. \a arguments: without the
/// program's own path. The values of \a optionsWithValue ("--home") are not searched.
[[nodiscard]] QString fileToInstall(const QStringList& arguments,
                                    const QStringList& optionsWithValue,
                                    const DriveTable& drives,
                                    const QString& currentFolder);

/// "Startup.txt" in the program folder, from which the running instance takes the file.
Result writeStartupFile(FileActions& actions, const GlobalRecord& global, const QString& file);
/// The file that "Startup.txt" names; the text is then deleted. Empty when there is none.
[[nodiscard]] QString
takeStartupFile(const Files& files, FileActions& actions, const GlobalRecord& global);

} // namespace vt
