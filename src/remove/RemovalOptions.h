// What a front end passes to a removal: the method, and answers given beforehand.
#pragma once

#include <QString>
#include <QStringList>

namespace vt {

/// Stored nowhere; the numbers are shown in logs.
enum class RemovalMethod : int
{
    Delete = 1,
    FileCabinet = 2,
    Recreate = 3,
    RemoveRecords = 4,
    Copy = 5,
};

struct RemovalOptions
{
    RemovalMethod method = RemovalMethod::Delete;
    /// Recreate and Copy: where the files go, a folder that the gate knows, ends in "\".
    QString toFolder = {};
    bool zip = false; ///< into a zip file there instead of a folder
    /// Full paths as installed; empty: the whole add-on.
    QStringList files = {};
    /// What takes the place of sounds and panels that others use, in the form of an alias
    /// ("Kestrel_K2\sound"); named, it answers the question whether to go on. Empty: it is asked.
    QString soundInstead = {};
    QString panelInstead = {};
};

/// What a list of removals shows as "Action"; \a target: the archive, folder or zip file.
[[nodiscard]] QString removalActionText(RemovalMethod method, const QString& target);

} // namespace vt
