// The real objects behind one call of vantrelctl, built when a command first asks for them, in the
// order of dependence: drives and files, registry, settings, simulator, program folder, database.
#pragma once

#include "platform/Journal.h"
#include "platform/Processes.h"
#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/JsonStream.h"
#include "shell/startup/Locate.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace vt {
class CRegistry_Manipulation;
class Catalogue;
class Connection;
class DatabaseCare;
class RegistryStore;
struct CareReport;
class Results;
} // namespace vt

namespace vt::cli {

/// "installation", "removal", "repair" or "configuration".
[[nodiscard]] QString operationWord(OperationKind kind);

struct GlobalOptions
{
    QString home;
    QString sim;
    QString prefix;
    QStringList drives; ///< "X=DIR"
    bool json = false;
    QString answer = QStringLiteral("default");
    bool quiet = false;
};

struct WritingNeeds
{
    bool tellRecoveries = true; ///< in a line each on standard error
    bool repair = false;        ///< a damaged database is repaired first, instead of being refused
};

class World
{
public:
    explicit World(GlobalOptions options);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    [[nodiscard]] const GlobalOptions& options() const;

    /// Checks the global options that name folders of the host; to be called before a command runs.
    [[nodiscard]] Result prepare();

    /// Files, gate, actions, prompts, status, clock, code page. Never fails.
    [[nodiscard]] Services& services();
    /// Global record with the program's folders, settings loaded; the simulator not yet located.
    [[nodiscard]] Context& context();
    /// context() with a located and validated simulator; kind Surroundings otherwise.
    [[nodiscard]] Result needSimulator();
    /// What needSimulator() or needWriting() found out; looks, without asking, when neither ran.
    [[nodiscard]] const LocatedSimulator& located();
    /// For commands that write: takes the lock, makes missing folders, deletes the old error log,
    /// keeps the simulator's first copies, opens the database, finishes interrupted work, brings an
    /// older database up to the present structure. Does not require a simulator unless interrupted
    /// work does.
    [[nodiscard]] Result needWriting(const WritingNeeds& needs = {});
    /// For commands after needWriting(): closes the database, has it cared for, opens it again.
    [[nodiscard]] CareReport careForDatabase(const std::function<CareReport(DatabaseCare&)>& work);
    /// What needWriting() had to do to the database: repair (only when asked), upgrade.
    [[nodiscard]] const std::optional<CareReport>& careTaken() const;
    /// For commands that write a file of the user's and nothing of the program's: takes the lock of
    /// a program folder that exists, and makes none.
    [[nodiscard]] Result needLock();
    /// The open database; read-only unless needWriting() came before. A program folder without
    /// database and without content counts as an empty one: database() is then null.
    [[nodiscard]] Result needDatabase();
    [[nodiscard]] Connection* database();
    /// Interrupted operations that needWriting() finished.
    [[nodiscard]] const QList<Recovery>& recoveries() const;

    /// What is installed in the simulator, which needSimulator() must have found. A call that
    /// writes saves at its end what it found out, for the next one.
    [[nodiscard]] Catalogue& catalogue();

    /// The program's own registry over the prefix's, loaded.
    [[nodiscard]] RegistryStore& registry();
    [[nodiscard]] CRegistry_Manipulation& registryClass();
    /// Writes the program's registry when it was changed; also done, without a word, at the end of
    /// a call that writes.
    [[nodiscard]] Result saveRegistry();
    /// Outside tools and the simulator.
    [[nodiscard]] Processes& processes();

    /// What the user typed as a path, as a Windows text. Registers nothing.
    [[nodiscard]] QString userPath(const QString& typed);
    /// As userPath(), and makes the folder a root that this call may write below.
    [[nodiscard]] QString userRoot(const QString& typed);

    /// The one JSON document on standard output, to be written piece by piece; without --json it
    /// goes nowhere. A command uses either this or json().
    [[nodiscard]] JsonStream& out();
    /// One whole JSON document on standard output (only with --json).
    void json(const QJsonValue& document);
    /// Text for people on standard output (nothing with --json).
    void say(const QString& line);
    /// The groups that are not empty with their texts, for people (nothing with --json).
    void say(const Results& results);
    /// One sentence on standard error; with --json also {"error": {...}} merged into \a done, or
    /// into the document that out() has begun (an array is closed without it).
    /// Returns the exit status that belongs to the kind of failure.
    int fail(const Result& failed, const QJsonObject& done = {});
    /// The same for one element of a list: {"error": {...}} goes into the object that out() has
    /// open, and the command goes on.
    int failElement(const Result& failed);
    /// After the command: completes the JSON document, clears the progress bar.
    void finish();

private:
    struct Parts;
    std::unique_ptr<Parts> m;
};

} // namespace vt::cli
