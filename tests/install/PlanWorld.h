// A small simulator on a disk and everything that a plan needs around it, with add-ons given as
// lists of files, written as a folder or as an archive.
#pragma once

#include "install/CAddonInstallationDetails.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Gate.h"
#include "platform/RegistryStore.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "support/ScriptedPrompts.h"
#include "support/ZipBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <map>

namespace vt::test {

/// Path with "/" to content.
using SourceFiles = std::vector<std::pair<QString, QByteArray>>;

[[nodiscard]] QByteArray aircraftCfg(const QByteArray& title, const QByteArray& sim = "plane");

class PlanWorld
{
public:
    PlanWorld();

    /// Writes below drive C:; \a path has "/".
    void write(const QString& path, const QByteArray& bytes = "x");
    /// Writes below the simulator's folder.
    void writeInSimulator(const QString& path, const QByteArray& bytes = "x");
    /// The add-on as a folder or (name ending in ".zip") as an archive; its Windows path.
    QString makeSource(const QString& name, const SourceFiles& files);
    [[nodiscard]] static QByteArray zipOf(const SourceFiles& files);

    /// Every item as "source -> target"; "SIM\", "STORE\" (the add-on's storage), "DOCS\" stand for
    /// folders, "-" for an item that is not installed, "?" for one without a target. Sorted.
    [[nodiscard]] QStringList targets(const CAddonInstallationDetails& details) const;
    [[nodiscard]] QString shortened(const QString& folder,
                                    const CAddonInstallationDetails& details) const;

    QTemporaryDir dir{QFileInfo(QStringLiteral("/dev/shm")).isWritable()
                          ? QStringLiteral("/dev/shm/vantrel-plan-XXXXXX")
                          : QDir::temp().filePath(QStringLiteral("vantrel-plan-XXXXXX"))};
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate};
    ScriptedPrompts prompts;
    SilentStatus status;
    Clock clock;
    AnsiCodec ansi;
    RegistryStore registry;
    CRegistry_Manipulation registryClass{
        registry, prompts, QStringLiteral("Vantrel for Flight Simulator X")};
    GlobalRecord global;
    Services services{files, gate, actions, prompts, status, clock, ansi};
    Settings settings{registryClass, global};
    ErrorLog errors{services, global};
    Context context{services, global, settings, errors};
};

} // namespace vt::test
