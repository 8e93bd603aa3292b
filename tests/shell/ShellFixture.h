// A program folder and a drive C: in a temporary folder, with everything the shell needs around it.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Gate.h"
#include "platform/RegistryStore.h"
#include "platform/Services.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/Context.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace vt::test {

class StandingClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override
    {
        return QDateTime(QDate(2026, 3, 1), QTime(12, 30, 15));
    }
};

struct ShellFixture
{
    explicit ShellFixture(int generation = FSX)
    {
        drives.set(u'C', dir.path());
        global.setGeneration(generation);
        global.setProgramFolder(QStringLiteral("C:\\Vantrel\\"));
        gate.setRoot(RootId::Program, global.programFolder);
    }

    /// Writes a file below drive C:; \a path has "/".
    void write(const QString& path, const QByteArray& bytes = "x")
    {
        const QString host = dir.filePath(path);
        QDir().mkpath(QFileInfo(host).path());
        QFile file(host);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
        file.close();
        files.newOperation();
    }

    /// A file of that length that takes no room on the disk.
    void writeLong(const QString& path, qint64 length)
    {
        write(path, {});
        QVERIFY(QFile::resize(dir.filePath(path), length));
        files.newOperation();
    }

    void makeFolder(const QString& path)
    {
        QVERIFY(QDir().mkpath(dir.filePath(path)));
        files.newOperation();
    }

    /// What a valid simulator of generation 5 needs at the least.
    void makeFsx(const QString& path)
    {
        write(path + QStringLiteral("/fsx.exe"));
        makeFolder(path + QStringLiteral("/ShadersHLSL"));
        makeFolder(path + QStringLiteral("/Missions"));
    }

    [[nodiscard]] QByteArray read(const QString& path) const
    {
        QFile file(dir.filePath(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] bool exists(const QString& path) const
    {
        return QFile::exists(dir.filePath(path));
    }

    QTemporaryDir dir;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate};
    ScriptedPrompts prompts;
    SilentStatus status;
    StandingClock clock;
    AnsiCodec ansi;
    Services services{files, gate, actions, prompts, status, clock, ansi};
    GlobalRecord global;
    RegistryStore store;
    CRegistry_Manipulation registry{
        store, prompts, QStringLiteral("Vantrel for Flight Simulator X")};
    Settings settings{registry, global};
    ErrorLog errors{services, global};
    Context context{services, global, settings, errors};
};

} // namespace vt::test
