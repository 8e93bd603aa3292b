// What a front end passes to a removal: the method, and answers given beforehand.
#pragma once

#include <QString>

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
    /// What takes the place of sounds and panels that others use, in the form of an alias
    /// ("Kestrel_K2\sound"); named, it answers the question whether to go on. Empty: it is asked.
    QString soundInstead = {};
    QString panelInstead = {};
};

} // namespace vt
