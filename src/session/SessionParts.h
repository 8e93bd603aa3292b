// The objects of a Session, in the order of dependence; each is built by the step that first needs
// it.
#pragma once

#include "addondb/Connection.h"
#include "addondb/DatabaseCare.h"
#include "catalogue/Catalogue.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Gate.h"
#include "platform/InstanceLock.h"
#include "platform/Prefix.h"
#include "platform/RegistryStore.h"
#include "platform/WineRegistry.h"
#include "session/Session.h"
#include "shell/CRegistry_Manipulation.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"

#include <QCoreApplication>
#include <QProcessEnvironment>

#include <array>

namespace vt {

struct Session::Parts
{
    Parts(const Session& session, SessionOptions given, Prompts& prompts, StatusSink& status);

    Result buildDrives();
    void buildFiles();
    void buildContext();
    void enterProgramFolder();
    Result locate(bool interact);

    Result hold();
    void warnOfSize() const;
    Result prepareWriting(const WritingNeeds& needs);
    Result openForWriting(bool fresh, bool repair);
    Result openDatabase(const WritingNeeds& needs, bool fresh);
    Result finishInterrupted();
    Result bringUpToDate();
    void optimizeWhenDue();
    void tell(const QString& sentence) const;

    const Session& owner;
    SessionOptions options;
    Prompts& prompts;
    StatusSink& status;
    QString currentFolder;
    QProcessEnvironment environment;
    Clock clock;

    std::optional<Result> drivesResult;
    Prefix prefix;
    DriveTable drives;

    // Files and what stands on them.
    std::unique_ptr<Files> files;
    std::unique_ptr<Gate> gate;
    std::unique_ptr<DirectActions> actions;
    std::unique_ptr<WineRegistry> wine;
    std::unique_ptr<RegistryStore> registry;
    std::unique_ptr<AnsiCodec> ansi;
    std::unique_ptr<Services> services;
    GlobalRecord global;
    Result registryResult;

    std::unique_ptr<CRegistry_Manipulation> registryClass;
    std::unique_ptr<Settings> settings;
    std::unique_ptr<ErrorLog> errors;
    std::unique_ptr<Context> context;

    std::optional<Result> locateResult;
    bool locateInteracted = false;
    LocatedSimulator located;

    InstanceLock lock;
    bool fresh = false; ///< nothing was ever recorded when the lock was taken
    std::optional<Result> writingResult;
    std::unique_ptr<Connection> database;
    std::optional<Result> databaseResult;
    QList<Recovery> recoveries;
    std::optional<CareReport> care;
    std::unique_ptr<Catalogue> catalogue;

    int argumentCount = 1;
    std::array<char*, 2> argumentTexts = {};
    std::unique_ptr<QCoreApplication> application;
    std::unique_ptr<Processes> processes;
};

/// A failure of the surroundings.
[[nodiscard]] inline Result unfit(const QString& text)
{
    return Result::failure(text, ErrorKind::Surroundings);
}

} // namespace vt
