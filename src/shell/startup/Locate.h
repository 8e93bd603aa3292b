// Finds the simulator: the option, "SimPath.txt", the registry with its fallbacks, the user. The
// first valid folder is taken; the global record then names everything that lies below it.
#pragma once

#include "platform/ShellFolders.h"
#include "shell/Context.h"
#include "shell/startup/Validation.h"

#include <QList>
#include <QString>

#include <optional>

namespace vt {

class CRegistry_Manipulation;

/// A folder that was looked at.
struct SimulatorCandidate
{
    QString folder;
    QString foundBy; ///< "option", "SimPath.txt", "registry", "registry (SDK)",
                     ///< "registry (DirectPlay)", "registry (Steam Edition)", "user"
    Validation validation;
};

struct LocatedSimulator
{
    /// The valid folder, or the first one that was looked at; folder empty when there was none.
    SimulatorCandidate chosen;
    QList<SimulatorCandidate> refused;
    /// The folder came from a fallback and does not stand under the registry's own key.
    bool registryLacks = false;
    int generation = 0;

    [[nodiscard]] bool valid() const { return chosen.validation.valid(); }
};

struct SimulatorSearch
{
    /// Folder that the user named for this run; when it is not valid nothing else is tried.
    std::optional<QString> option;
    ShellFolders shell;
    /// Whether the user may be warned about "SimPath.txt" and asked for the folder.
    bool interact = true;
};

/// Runs the search. Success means that \a located is valid and the global record names its folders;
/// a failure, of the kind Surroundings, says which folders were looked at and what is wrong there.
Result ConfigureFlightSimulator(Context& context,
                                const CRegistry_Manipulation& registry,
                                const SimulatorSearch& search,
                                LocatedSimulator& located);

/// Where a fallback found the folder: asks whether the registry is to be corrected and does so. For
/// runs that write only.
Result
offerRegistryUpdate(Context& context, CRegistry_Manipulation& registry, LocatedSimulator& located);

/// "FSX" or "FSX-SE": the name of the folders that hold the simulator's configuration files.
[[nodiscard]] QString
editionFolder(const Files& files, const ShellFolders& shell, bool steamEdition);

} // namespace vt
