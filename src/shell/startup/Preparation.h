// Steps of start-up that prepare the program's own folders, and the questions that go with them.
// Each is called by the front end, in the order of the declarations.
#pragma once

#include "platform/Prompt.h"
#include "shell/Context.h"

#include <QString>

#include <optional>

namespace vt {

class CRegistry_Manipulation;

/// The program's folders, each only when it is missing: originals, add-ons, backups, File Cabinet,
/// images, settings, then the temporary ones. Stops at the first failure.
Result createProgramFolders(Context& context);

/// First copies of the simulator's own configuration files go to the originals folder; one that is
/// there is never refreshed. A file that cannot be copied is logged and told, the others are kept
/// nevertheless. Nothing to keep with generation 2.
Result keepOriginals(Context& context);

/// A program folder in which nothing was ever recorded: no settings, no originals, no database.
[[nodiscard]] bool programFolderIsFresh(const Files& files, const GlobalRecord& global);

/// "Database File Error": the database file is missing from a folder that has been in use.
[[nodiscard]] Prompt missingDatabase(const GlobalRecord& global);

/// The sentence about a database file that has grown near its limit; empty below 950,000,000 bytes.
[[nodiscard]] QString databaseSizeText(const DisplayNames& names, qint64 bytes);
/// What start-up and installations say about the size of the database file; nothing below
/// 950,000,000 bytes. At exactly that size an announcement, above it a question: Cancel ends the
/// program, Yes optimises.
[[nodiscard]] std::optional<Prompt> databaseSizePrompt(const DisplayNames& names, qint64 bytes);

/// A screen below 800 x 600; Yes opens the help topic.
[[nodiscard]] Prompt smallScreen(const DisplayNames& names);

/// Status text for a value of "Open With"; empty for values that open nothing. \a configTitle: the
/// title of the simulator configuration file manager.
[[nodiscard]] QString openWithStatus(int value, int generation, const QString& configTitle);
/// What the status bar says once the add-on wizard is open.
[[nodiscard]] QString welcomeText(const DisplayNames& names);

/// "Install to FSX using Vantrel": what file managers offer for archives.
[[nodiscard]] QString explorerVerb(const GlobalRecord& global);
/// The verb of ".zip" and ".rar" files. False when the registry refused.
bool registerExplorerVerbs(CRegistry_Manipulation& registry, const GlobalRecord& global);
/// Takes them back; true when they are gone.
bool removeExplorerVerbs(CRegistry_Manipulation& registry, const GlobalRecord& global);

/// Name of the file in the settings folder that holds the program's registry.
[[nodiscard]] QString registryFile(const GlobalRecord& global);

} // namespace vt
