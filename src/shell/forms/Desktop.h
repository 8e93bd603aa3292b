// What is handed to the desktop: folders and files opened with its own programs.
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QString>

namespace vt::desktop {

/// Opens the folder, or the folder of the file, at this Windows path; where it does not exist any
/// more, the nearest one above it that does. False when nothing could be opened.
bool openFolder(const Files& files, const QString& path);

/// Opens a file with the program that the desktop has for it.
bool openFile(const Files& files, const QString& path);

/// Opens a page of the web, or a new message: "https:", "http:" or "mailto:" and nothing else,
/// since any other address might start a program. The text of a failure names the address.
Result openAddress(const QString& address);

} // namespace vt::desktop
