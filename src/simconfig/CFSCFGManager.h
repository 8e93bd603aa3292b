// The simulator's own configuration file and its alternatives beside it: listing, making, naming,
// describing, and making one of them the primary file or using it for one flight.
// Files are named by their names without a path, compared without regard to case. Nothing changes
// while the simulator runs, because it writes its file at its end; a failure leaves every file as
// it was.
#pragma once

#include "platform/Prompt.h"
#include "platform/Result.h"
#include "shell/Context.h"
#include "simconfig/engine/ConfigAccess.h"

#include <QList>
#include <QString>

namespace vt {

class Processes;

/// One of the files, as it was when the list was made.
struct CFSCFGFile
{
    QString sName; ///< "Low detail.cfg"
    QString sPath;
    bool boolPrimary = false;
    QString sDescription;
    QString sDefaultFlight;      ///< as written, else the simulator's own, "FLIGHTS\OTHER\FLTSIM"
    bool boolMenuHidden = false; ///< the simulator's menu bar is off
    bool boolChanged = false;    ///< the description differs from the file's
};

class CFSCFGManager
{
public:
    /// With a located simulator. Both must outlive this.
    CFSCFGManager(Context& context, const Processes& processes);

    /// Reads the folder: the primary file first, then the others by name. A file counts when it can
    /// be read and holds sections. Fails only when the folder is not known at all; a missing
    /// primary file is a remark.
    [[nodiscard]] Result GetFSCFGFiles();

    [[nodiscard]] const QList<CFSCFGFile>& files() const { return m_files; }

    /// Index of a listed file, -1 for none.
    [[nodiscard]] qsizetype indexOf(const QString& name) const;

    [[nodiscard]] QString GetPrimaryFSCFGFilespec() const;
    [[nodiscard]] QString primaryBackup() const;
    /// "FSX" (the Steam Edition beside another one: "FSX_SE"), "FS9" or "FS2002".
    [[nodiscard]] QString editionWord() const;

    [[nodiscard]] bool IsFlightSimulatorRunning() const;

    /// What a file names as the flight to begin with.
    [[nodiscard]] QString GetFSCFGFileDefaultFlight(const QString& name) const;
    /// Path of such a flight: below the simulator's folder, else among the user's documents where
    /// it exists there only.
    [[nodiscard]] QString flightFile(const QString& flight) const;

    /// Name for a new file that is not taken yet.
    [[nodiscard]] QString proposedName() const;
    /// A copy of the primary file; \a name gets ".cfg" when it lacks it.
    [[nodiscard]] Result CreateNewFSCFGFile(const QString& name, const QString& description = {});
    /// Asks first.
    [[nodiscard]] Result RemoveFSCFGFile(const QString& name);
    /// Asks for the new name.
    [[nodiscard]] Result RenameFSCFGFile(const QString& name);
    [[nodiscard]] Result RenameFSCFGFile(const QString& name, const QString& newName);
    /// Whether an item may be given the new name.
    [[nodiscard]] static Result ValidateItemName(const QString& oldName, const QString& newName);

    [[nodiscard]] Result UpdateFSCFGFileDescription(const QString& name,
                                                    const QString& description);
    /// In memory, until SaveFSCFGFiles().
    void setDescription(qsizetype index, const QString& description);
    /// Writes all descriptions that were changed; those that could be written stay written.
    [[nodiscard]] Result SaveFSCFGFiles();

    /// Asks, keeps the primary file as its backup, copies the named file over it.
    [[nodiscard]] Result SwitchToFSCFGFile(const QString& name);
    /// Starts the simulator with the named file; nothing is changed.
    [[nodiscard]] Result UseFSCFGFileOnce(const QString& name);

private:
    [[nodiscard]] QString folder() const;
    [[nodiscard]] QString pathOf(const QString& name) const;
    [[nodiscard]] bool isPrimary(const QString& name) const;
    /// Whether there is a configuration file of that name.
    [[nodiscard]] bool exists(const QString& name) const;
    [[nodiscard]] bool read(CFSCFGFile& file) const;
    [[nodiscard]] Result folderIsKnown() const;
    /// Before any change: the folder is known and the simulator does not run.
    [[nodiscard]] Result mayChange() const;
    [[nodiscard]] Result writeDescription(const QString& name, const QString& description);
    [[nodiscard]] Result
    writeDescribed(const QString& from, const QString& to, const QString& description);
    [[nodiscard]] Result move(const QString& from, const QString& to);
    [[nodiscard]] Result respell(const QString& from, const QString& to);
    [[nodiscard]] Result overwritePrimary(const QString& from);
    [[nodiscard]] Prompt confirmSwitch(const QString& name) const;

    Context& m_context;
    const Processes& m_processes;
    ConfigAccess m_access;
    QList<CFSCFGFile> m_files;
};

} // namespace vt
