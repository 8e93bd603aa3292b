// The real objects behind one call of vantrelctl, built when a command first asks for them, in the
// order of dependence: drives and files, registry, settings, simulator, program folder, database.
#pragma once

#include "platform/Result.h"
#include "shell/Context.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace vt {
class Connection;
class JsonStream;
class Processes;
class RegistryStore;
} // namespace vt

namespace vt::cli {

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

class World
{
public:
    explicit World(GlobalOptions options);
    ~World();
    World(const World&) = delete;
    World& operator=(const World&) = delete;

    [[nodiscard]] const GlobalOptions& options() const;

    /// Files, gate, actions, prompts, status, clock, code page. Never fails.
    [[nodiscard]] Services& services();
    /// Global record with the program's folders, settings loaded; the simulator not yet located.
    [[nodiscard]] Context& context();
    /// context() with a located and validated simulator; kind Surroundings otherwise.
    [[nodiscard]] Result needSimulator();
    /// For commands that write: takes the lock, makes missing folders, deletes the old error log,
    /// keeps the simulator's first copies, finishes interrupted work.
    [[nodiscard]] Result needWriting();
    /// The open database; read-only unless needWriting() came before. A program folder without
    /// database and without content counts as an empty one: \a database is then null.
    [[nodiscard]] Result needDatabase();
    [[nodiscard]] Connection* database();
    [[nodiscard]] RegistryStore& registry();

    /// What the user typed as a path, as a Windows text. Registers nothing.
    [[nodiscard]] QString userPath(const QString& typed);
    /// As userPath(), and makes the folder a root that this call may write below.
    [[nodiscard]] QString userRoot(const QString& typed);

    /// One JSON document on standard output (only with --json).
    void json(const QJsonValue& document);
    /// Text for people on standard output (nothing with --json).
    void say(const QString& line);
    /// One sentence on standard error; with --json also {"error": {...}} merged into \a done.
    /// Returns the exit status that belongs to the kind of failure.
    int fail(const Result& failure, const QJsonObject& done = {});

private:
    struct Parts;
    std::unique_ptr<Parts> m;
};

} // namespace vt::cli
