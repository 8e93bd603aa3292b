// A demonstration simulator with what the aircraft objects need around it.
#pragma once

#include "demo/DemoSimulator.h"
#include "engine/ConfigDisk.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"

namespace vt::test {

/// Paths given to its functions are relative to the simulator's folder and have "/".
struct AircraftWorld : ConfigDisk
{
    AircraftWorld() : ConfigDisk(DirectActions::Sync::None)
    {
        const ResultOf<DemoSimulator> written =
            writeDemoSimulator(Disk::host(QStringLiteral("prefix")));
        [&] { QVERIFY2(written.ok(), qPrintable(written.text)); }();
        demo = *written;
        drives.set(u'C', demo.prefixHost + QStringLiteral("/drive_c"));
        drives.set(u'P', dir.path());
        global.setProgramFolder(QStringLiteral("P:\\program\\"));
        global.setSimulatorFolder(demo.simulatorFolder);
        gate.setRoot(RootId::Program, global.programFolder);
        gate.setRoot(RootId::Simulator, demo.simulatorFolder);
    }

    [[nodiscard]] QString host(const QString& path) const
    {
        return demo.simulatorHost + u'/' + path;
    }

    [[nodiscard]] QString windows(const QString& path) const
    {
        return demo.simulatorFolder + QString(path).replace(u'/', u'\\');
    }

    [[nodiscard]] QByteArray read(const QString& path) const { return readHostFile(host(path)); }

    [[nodiscard]] bool exists(const QString& path) const { return QFile::exists(host(path)); }

    void write(const QString& path, const QByteArray& bytes)
    {
        writeHostFile(host(path), bytes);
        files.newOperation();
    }

    void replace(const QString& path, const QByteArray& before, const QByteArray& after)
    {
        QByteArray bytes = read(path);
        QVERIFY2(bytes.contains(before), before.constData());
        write(path, bytes.replace(before, after));
    }

    void remove(const QString& path)
    {
        QVERIFY(QFileInfo(host(path)).isDir() ? QDir(host(path)).removeRecursively()
                                              : QFile::remove(host(path)));
        files.newOperation();
    }

    /// Loaded as far as the file allows.
    [[nodiscard]] CAircraft aircraft(const QString& folder, const QString& section)
    {
        CAircraft loaded(access);
        (void)loaded.Load(windows(folder + QStringLiteral("/aircraft.cfg")), section);
        return loaded;
    }

    DemoSimulator demo;
    GlobalRecord global;
};

/// An aircraft of the demonstration, with three variations.
inline const QString kestrel = QStringLiteral("SimObjects/Airplanes/Kestrel_K2");
inline const QString kestrelCfg = kestrel + QStringLiteral("/aircraft.cfg");

} // namespace vt::test
