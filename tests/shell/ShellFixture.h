// A program folder and a drive C: in a temporary folder, with everything the shell needs around it.
#pragma once

#include "platform/RegistryStore.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/Context.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "support/Disk.h"

namespace vt::test {

struct ShellFixture : Disk
{
    explicit ShellFixture(int generation = FSX)
    {
        clock.standing = QDateTime(QDate(2026, 3, 1), QTime(12, 30, 15));
        global.setGeneration(generation);
        global.setProgramFolder(QStringLiteral("C:\\Vantrel\\"));
    }

    /// A file of that length that takes no room on the disk.
    void writeLong(const QString& path, qint64 length)
    {
        write(path, {});
        QVERIFY(QFile::resize(host(path), length));
        files.newOperation();
    }

    /// What a valid simulator of generation 5 needs at the least.
    void makeFsx(const QString& path)
    {
        write(path + QStringLiteral("/fsx.exe"));
        makeFolder(path + QStringLiteral("/ShadersHLSL"));
        makeFolder(path + QStringLiteral("/Missions"));
    }

    GlobalRecord global;
    RegistryStore store;
    CRegistry_Manipulation registry{
        store, prompts, QStringLiteral("Vantrel for Flight Simulator X")};
    Settings settings{registry, global};
    ErrorLog errors{services, global};
    Context context{services, global, settings, errors};
};

} // namespace vt::test
