// A folder of the user's as a source of files: everything below it, and the content of one file.
// Links are followed only where they stay inside the folder. Reads only.
#pragma once

#include "platform/FileActions.h"
#include "platform/Files.h"
#include "platform/Result.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace vt {

struct ListedFile
{
    QString folder; ///< relative to the top, ends in "\" or is empty; shared between its files
    QString name;
    qint64 size = 0;
    qint64 modifiedNs = 0; ///< since 1970 UTC
};

struct FolderListing
{
    std::vector<ListedFile> files; ///< sorted by folder, then name, without regard to case
    QStringList passedOver; ///< one sentence each: unreadable folders, links that lead out, ...
};

/// All levels below \a folder (a Windows text). Fails, kind Surroundings, when the folder itself
/// cannot be read; kind Failed with more than \a limit files.
[[nodiscard]] ResultOf<FolderListing>
listFolder(const Files& files, const QString& folder, qsizetype limit);

/// The bytes of a file for FileActions::place(); opened when the transfer begins, and a file that
/// has changed its size meanwhile is a failure there.
[[nodiscard]] Content
contentOfFile(const Files& files, const QString& path, const ListedFile& file);

} // namespace vt
