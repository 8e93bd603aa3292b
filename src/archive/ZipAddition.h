// One file that CZIP::Add() puts into an archive.
#pragma once

#include "platform/FileActions.h"

#include <QString>

namespace vt {

struct ZipAddition
{
    QString sName;   ///< in the archive, "Effects\fx_a.fx"; one that ends in "\" is an empty folder
    QString sFile;   ///< full Windows path of the file that gives the bytes; empty: content does
    Content content; ///< size and time too; its transfer may run more than once
    bool readOnly = false; ///< attribute; of sFile its own
};

} // namespace vt
