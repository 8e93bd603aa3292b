// A demonstration simulator with what the aircraft objects need around it.
#pragma once

#include "demo/DemoSimulator.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/DriveTable.h"
#include "platform/Files.h"
#include "platform/Gate.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace vt::test {

struct AircraftWorld
{
    AircraftWorld()
    {
        const ResultOf<DemoSimulator> written =
            writeDemoSimulator(dir.filePath(QStringLiteral("prefix")));
        [&] { QVERIFY2(written.ok(), qPrintable(written.text)); }();
        demo = *written;
        drives.set(u'C', demo.prefixHost + QStringLiteral("/drive_c"));
        drives.set(u'P', dir.path());
        global.setProgramFolder(QStringLiteral("P:\\program\\"));
        global.setSimulatorFolder(demo.simulatorFolder);
        gate.setRoot(RootId::Program, global.programFolder);
        gate.setRoot(RootId::Simulator, demo.simulatorFolder);
    }

    /// "SimObjects/..." as a host path.
    [[nodiscard]] QString host(const QString& relative) const
    {
        return demo.simulatorHost + u'/' + relative;
    }

    [[nodiscard]] QString windows(const QString& relative) const
    {
        return demo.simulatorFolder + QString(relative).replace(u'/', u'\\');
    }

    [[nodiscard]] QByteArray read(const QString& relative) const
    {
        QFile file(host(relative));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }

    void write(const QString& relative, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(host(relative)).path());
        QFile file(host(relative));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        files.newOperation();
    }

    void replace(const QString& relative, const QByteArray& before, const QByteArray& after)
    {
        QByteArray bytes = read(relative);
        QVERIFY2(bytes.contains(before), before.constData());
        write(relative, bytes.replace(before, after));
    }

    void remove(const QString& relative)
    {
        QVERIFY(QFileInfo(host(relative)).isDir() ? QDir(host(relative)).removeRecursively()
                                                  : QFile::remove(host(relative)));
        files.newOperation();
    }

    /// Loaded as far as the file allows.
    [[nodiscard]] CAircraft aircraft(const QString& folder, const QString& section)
    {
        CAircraft loaded(access);
        (void)loaded.Load(windows(folder + QStringLiteral("/aircraft.cfg")), section);
        return loaded;
    }

    QTemporaryDir dir{QFile::exists(QStringLiteral("/dev/shm"))
                          ? QStringLiteral("/dev/shm/vantrel-test-XXXXXX")
                          : QDir::tempPath() + QStringLiteral("/vantrel-test-XXXXXX")};
    DemoSimulator demo;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate, DirectActions::Sync::None};
    AnsiCodec ansi;
    ScriptedPrompts prompts;
    ConfigAccess access{actions, prompts, ansi};
    GlobalRecord global;
};

} // namespace vt::test
