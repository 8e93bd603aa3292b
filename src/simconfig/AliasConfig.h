// What the configuration of a panel and that of a sound have in common: a file is an original
// definition, or an alias of another folder's, or (wrongly) both; following, re-pointing, checking
// and mending it. CPanel and CSound add what their definitions name.
// Reads through the file actions, so what a transaction has staged counts. A damaged file is never
// written unless Repair() understood it.
#pragma once

#include "addondb/AddonRecords.h"
#include "platform/Files.h"
#include "shell/GlobalRecord.h"
#include "simconfig/AliasTarget.h"
#include "simconfig/RepairResult.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "simconfig/engine/SaveProtocol.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace vt {

class Connection;

class AliasConfig
{
public:
    /// State codes that mean the same for both; others stand in CPanel and CSound.
    enum CommonState : int
    {
        Good = 0,
        NoTarget = 1,
        FileMissing = 2,
        ReferenceMissing = 3,
        ReferenceNotValid = 4,
        NotUpdated = 7,
        WouldNotBeValid = 8,
        NotRestored = 9,
        NoOriginal = 10, ///< empty, or an alias of an alias
        OriginalAndAlias = 11,
    };

    virtual ~AliasConfig() = default;
    AliasConfig(const AliasConfig&) = delete;
    AliasConfig& operator=(const AliasConfig&) = delete;

    // Filled by Load().
    QString sConfigurationFile;
    QString sAlias;      ///< as the file says; empty without one
    QString sTargetFile; ///< full path of the file that the alias names; it need not exist

    /// False with a state other than Good.
    bool Load(const QString& configurationFile);

    [[nodiscard]] int State_Get() const { return m_state; }

    /// The message of the present state; empty for Good.
    [[nodiscard]] QString State_GetMessage() const { return stateMessage(m_state); }

    /// Why the last operation failed, beyond its state; may be empty.
    [[nodiscard]] const QString& sErrorText() const { return m_error; }

    [[nodiscard]] bool IsOriginal() const { return m_own.original; }

    [[nodiscard]] bool IsAlias() const { return !sAlias.isEmpty() && !m_own.original; }

    /// "Kestrel_K2\panel": the folder below those that hold aircraft, else the whole path.
    [[nodiscard]] QString Title_Get() const;
    /// The file whose definition is used: its own, or that of the panel or sound it refers to;
    /// empty when there is none.
    [[nodiscard]] QString DefinitionFile_Get() const;

    /// Re-points the loaded configuration to what \a alias names, in the form of Alias_TextFor(). A
    /// configuration file that does not exist is made. The state tells what stood in the way; the
    /// file then stands as it was, and a definition that was replaced is kept beside it.
    [[nodiscard]] Result Alias_Set(const QString& alias);
    /// Whether Alias_Set() would take \a alias for a file that holds no definition; sTargetFile is
    /// then what it leads to.
    [[nodiscard]] Result Alias_Check(const QString& alias);
    /// How the file is named in an alias; empty for one outside the simulator.
    [[nodiscard]] QString Alias_TextFor(const QString& configurationFile) const;

    /// Path of the persistent backup.
    [[nodiscard]] QString BackupFile_Get() const;
    /// It goes back over the file and is deleted; else state NotRestored.
    [[nodiscard]] Result BackupConfigurationFile_Restore();

    [[nodiscard]] bool SuppressionStatus_Load(Connection& database) const;
    Result SuppressionStatus_Save(Connection& database, bool suppressed) const;

    struct Verification
    {
        QStringList problems; ///< each begins with "- "; single files follow, "\n\t" before each
        QStringList notes;    ///< what is worth telling but nothing to be repaired
    };

    /// Of the loaded file. What an alias refers to is checked only for being there and valid.
    [[nodiscard]] Verification Verify();
    /// "Panel Configuration Report", "Sound Configuration Report".
    [[nodiscard]] QString Verify_Report_GetTitle() const;
    [[nodiscard]] QString Verify_Report();

    /// Mends what can be mended without inventing anything; the persistent backup is kept.
    [[nodiscard]] RepairResult Repair();

    /// What an entry names, and where it stands.
    struct NamedFile
    {
        QString section;
        QString key;
        QString value; ///< without comment
        QString file;  ///< as a report names it
    };

protected:
    struct StandIn
    {
        NamedFile entry;
        QString value; ///< that names the file where it stands
    };

    /// Full paths as spelled on the disk, each once.
    class FoundFiles
    {
    public:
        explicit FoundFiles(const Files& files) : m_files(files) {}

        /// Nothing happens with an empty path.
        void add(const QString& path);

        [[nodiscard]] const QStringList& paths() const { return m_paths; }

    private:
        const Files& m_files;
        QStringList m_paths;
        QSet<NoCase> m_seen;
    };

    /// The texts and codes in which the two differ.
    struct Facts
    {
        ConfigKind kind;
        aliastarget::Kind aliasKind;
        ItemTable table;
        QStringView noun;        ///< "panel"; its folders begin with it
        QStringView reportTitle; ///< "Panel Configuration Report"
        QStringView clean;       ///< what a report without problems says
        QStringView useRepair;   ///< what one with problems ends with
        int notValid;            ///< state of a file that is neither original nor alias
        int notKept;             ///< state when a definition could not be backed up
    };

    /// One configuration file as it was read.
    struct Definition
    {
        explicit Definition(const AnsiCodec& ansi) : lines(ansi) {}

        QString file;
        QString alias;
        QString unreadable; ///< one sentence; the rest is then empty
        QString unfit;      ///< line of a verification about line ends and character set
        QString mended;     ///< what bringing it to ANSI and CR LF would do
        LineArray lines;    ///< in ANSI with CR LF, whatever the file has
        bool exists = false;
        bool original = false;
        bool empty = false; ///< nothing but blanks and comments
    };

    /// \a facts, \a files and \a global must outlive this.
    AliasConfig(const Facts& facts,
                ConfigAccess access,
                const Files& files,
                const GlobalRecord& global);

    [[nodiscard]] virtual QString stateMessage(int state) const = 0;
    /// Whether the lines define a panel or sound.
    [[nodiscard]] virtual bool defines(const LineArray& lines) const = 0;
    /// The problems with what the definition in \a folder names.
    [[nodiscard]] virtual QStringList missingLines(const LineArray& lines,
                                                   const QString& folder) const = 0;
    /// Entries whose file is missing but stands elsewhere: their new values, by entry.
    [[nodiscard]] virtual QList<StandIn> standIns(const LineArray& lines,
                                                  const QString& folder) const = 0;
    /// What stands in the way of being referred to; Good for nothing.
    [[nodiscard]] virtual int unfitAsTarget(const Definition& target) const = 0;
    /// State when a whole definition may not be replaced by an alias; Good when it may.
    [[nodiscard]] virtual int unfitAsAlias() const = 0;

    [[nodiscard]] Definition read(const QString& file) const;

    /// The loaded file, or what it refers to.
    [[nodiscard]] Definition definition() const;

    /// Visits every entry with its comment removed: visit(section, key, value). Keys have no
    /// blanks.
    static void forEachEntry(
        const LineArray& lines,
        const std::function<void(const QString& section, QByteArrayView key, QByteArrayView value)>&
            visit);
    /// Files below \a folder that bear \a name and one of \a extensions (".wav"), relative to it.
    [[nodiscard]] QStringList
    filesNamed(const QString& folder, const QString& name, const QStringList& extensions) const;

    /// Full path of what an entry names below \a folder, or by itself; "..\" is resolved.
    [[nodiscard]] static QString placeOf(const QString& folder, const QString& named);
    [[nodiscard]] bool isFile(const QString& path) const;
    [[nodiscard]] bool isFolder(const QString& path) const;

    [[nodiscard]] QString simulatorName() const { return m_global.names.simShort; }

    const Files& m_files;
    const GlobalRecord& m_global;

private:
    /// Where an alias leads: the file it names, and the original at the end of a chain of aliases.
    struct Followed
    {
        QString file;
        bool exists = false;
        QString problem;  ///< why the alias was refused
        QString original; ///< empty when there is none at the end
        bool direct = false;
    };

    /// What a repair is about to save.
    struct Mending
    {
        LineArray lines;
        bool becomesAlias = false; ///< a definition gives way to an alias
        QStringList done;
    };

    [[nodiscard]] Followed follow(const QString& alias) const;
    [[nodiscard]] QString targetOf(const QString& alias, bool& exists, QString* problem) const;
    [[nodiscard]] int loadedState() const;
    [[nodiscard]] QString stateProblem() const;
    Result failed(int state, const Result& why);
    [[nodiscard]] Result checkAlias(const QString& alias, QString& written);
    [[nodiscard]] Result writeAlias(const QString& alias);
    [[nodiscard]] Result keepDefinition() const;
    [[nodiscard]] ResultOf<LineArray> aliasLines(const QString& alias) const;
    [[nodiscard]] QString fittingAlias() const;
    [[nodiscard]] QStringList aircraftFoldersLike(const QString& name) const;
    [[nodiscard]] QStringList originalsIn(const QString& aircraftFolder,
                                          const QString& folderName) const;
    void mend(RepairResult& result);
    void restoreMissing(RepairResult& result);
    void mendAlias(Mending& mending) const;
    void mendEntries(Mending& mending) const;
    void settleBoth(Mending& mending) const;
    [[nodiscard]] Result saveMended(const Mending& mending);

    const Facts& m_facts;
    ConfigAccess m_access;
    std::unique_ptr<SaveProtocol> m_protocol;
    Definition m_own;
    Followed m_followed;
    mutable QHash<QString, QStringList> m_trees; ///< files below a folder, until the next Load()
    int m_state = NoTarget;
    QString m_error;
};

} // namespace vt
