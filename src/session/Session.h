// The real objects behind one run of a program, built when they are first asked for, in the order
// of dependence: drives and files, registry, settings, simulator, program folder, database. Knows
// neither terminal nor window.
#pragma once

#include "platform/Journal.h"
#include "platform/Processes.h"
#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/startup/Locate.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace vt {

class CRegistry_Manipulation;
class Catalogue;
class Connection;
class DatabaseCare;
class RegistryStore;
struct CareReport;

/// "installation", "removal", "repair" or "configuration".
[[nodiscard]] QString operationWord(OperationKind kind);
/// "An interrupted installation of 'Harbour' was undone."
[[nodiscard]] QString recoverySentence(const Recovery& recovery);

struct SessionOptions
{
    QString home = {}; ///< program folder of the host; empty: found by its rules
    QString sim = {};
    QString prefix = {};
    QStringList drives = {}; ///< "X=DIR"
    QByteArray programName = "vantrel";
};

struct WritingNeeds
{
    bool tellRecoveries = true; ///< in a remark each
    bool repair = false;        ///< a damaged database is repaired first, instead of being refused
};

class Session
{
public:
    /// \a prompts and \a status must outlive this.
    Session(SessionOptions options, Prompts& prompts, StatusSink& status);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Takes one sentence about what was done, or failed, without being asked for: interrupted work
    /// that was finished, an optimisation at the end. Unset: nobody listens.
    std::function<void(const QString&)> remark;

    /// Checks the options that name folders of the host; to be called before anything else.
    [[nodiscard]] Result prepare();

    /// Files, gate, actions, prompts, status, clock, code page. Never fails.
    [[nodiscard]] Services& services();
    /// Global record with the program's folders, settings loaded; the simulator not yet located.
    [[nodiscard]] Context& context();
    /// context() with a located and validated simulator; kind Surroundings otherwise.
    [[nodiscard]] Result needSimulator();
    /// What needSimulator() or needWriting() found out; looks, without asking, when neither ran.
    [[nodiscard]] const LocatedSimulator& located();
    /// For whoever writes: takes the lock, makes missing folders, deletes the old error log, keeps
    /// the simulator's first copies, opens the database, finishes interrupted work, brings an older
    /// database up to the present structure. Does not require a simulator unless interrupted work
    /// does.
    [[nodiscard]] Result needWriting(const WritingNeeds& needs = {});
    // The stages of needWriting() one by one, for a start-up that asks and shows a window in
    // between; each needs those before it, and prepareFolders() a located simulator as well.

    /// Takes the lock and deletes the old logs. A failure of the lock tells who holds it.
    [[nodiscard]] Result hold();
    /// Makes missing folders, a database where nothing was ever recorded, the first copies.
    [[nodiscard]] Result prepareFolders();
    /// Opens the database and finishes interrupted work. One that is damaged is a success without
    /// a database.
    [[nodiscard]] Result openDatabase();
    /// Adds what an older database lacks; needWriting() has succeeded then.
    [[nodiscard]] Result bringUpToDate();

    /// For whoever writes after needWriting(): closes the database, has it cared for, opens it
    /// again.
    [[nodiscard]] CareReport careForDatabase(const std::function<CareReport(DatabaseCare&)>& work);
    /// What needWriting() had to do to the database: repair (only when asked), upgrade.
    [[nodiscard]] const std::optional<CareReport>& careTaken() const;
    /// For whoever writes a file of the user's and nothing of the program's: takes the lock of a
    /// program folder that exists, and makes none.
    [[nodiscard]] Result needLock();
    /// The open database; read-only unless needWriting() came before. A program folder without
    /// database and without content counts as an empty one: database() is then null.
    [[nodiscard]] Result needDatabase();
    [[nodiscard]] Connection* database();
    /// Interrupted operations that needWriting() finished.
    [[nodiscard]] const QList<Recovery>& recoveries() const;
    /// \a failure with what is wrong with the database itself, which the stated texts of the data
    /// layer do not say.
    [[nodiscard]] Result withCause(const Result& failure) const;

    /// What is installed in the simulator, which needSimulator() must have found. A run that writes
    /// saves at its end what it found out, for the next one.
    [[nodiscard]] Catalogue& catalogue();

    /// The program's own registry over the prefix's, loaded.
    [[nodiscard]] RegistryStore& registry();
    [[nodiscard]] CRegistry_Manipulation& registryClass();
    /// Writes the program's registry when it was changed; also done, without a word, by close() of
    /// a run that writes.
    [[nodiscard]] Result saveRegistry();
    /// Outside tools and the simulator. Makes the application object that they need when the
    /// program has none.
    [[nodiscard]] Processes& processes();

    /// What the user typed as a path, as a Windows text. Registers nothing.
    [[nodiscard]] QString userPath(const QString& typed);
    /// As userPath(), and makes the folder a root that this run may write below.
    [[nodiscard]] QString userRoot(const QString& typed);

    /// The end of a run: a run that writes optimises the database when that is due, and saves
    /// catalogue and registry; the error log is completed.
    void close();

private:
    struct Parts;
    std::unique_ptr<Parts> m;
};

} // namespace vt
