// An outside tool's folder whose programs are the stand-in.
#pragma once

#include "support/Disk.h"

namespace vt::test {

/// Puts the stand-in into a host folder under these names.
inline void putStandIns(const QString& hostFolder, const QStringList& programs)
{
    QVERIFY(QDir().mkpath(hostFolder));
    for (const QString& program : programs)
        QVERIFY(
            QFile::copy(QStringLiteral(VT_BIN "/vt_tool_standin"), hostFolder + u'/' + program));
}

inline void putTrafficTools(const QString& hostFolder)
{
    putStandIns(hostFolder,
                {QStringLiteral("TTools.exe"),
                 QStringLiteral("TCompiler.exe"),
                 QStringLiteral("TDecompiler.exe"),
                 QStringLiteral("CollectAirports.exe")});
}

} // namespace vt::test
