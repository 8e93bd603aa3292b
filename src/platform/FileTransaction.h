// File actions that happen together or not at all. They are staged beside their targets, under
// names that no simulator file bears; apply() syncs them, commits the records with the journal and
// only then renames. Until apply() the simulator sees nothing, and an end of the process leaves
// only what recover() takes away.
#pragma once

#include "platform/FileActions.h"
#include "platform/Gate.h"
#include "platform/HostFile.h"
#include "platform/Journal.h"
#include "platform/PendingFiles.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QSet>

#include <chrono>
#include <memory>
#include <optional>

namespace vt {

/// A target that apply() could not bring about; what was there before stands.
struct StepFailure
{
    QString path;
    QString text;
};

class FileTransaction final : public FileActions
{
public:
    /// Both must outlive this. Nothing is written before begin().
    FileTransaction(Gate& gate, Journal& journal);
    /// Undoes what was staged and not applied.
    ~FileTransaction() override;
    FileTransaction(const FileTransaction&) = delete;
    FileTransaction& operator=(const FileTransaction&) = delete;

    Result begin(OperationKind kind, const QString& label);

    [[nodiscard]] qint64 operation() const { return m_operation; }

    /// Tells the journal in one commit where files will be staged. Not required, but a commit for
    /// each folder is saved. \a expectedFiles decides between one sync for all and one for each.
    Result announce(const QStringList& targetFolders, qsizetype expectedFiles);
    /// A folder below the program folder, made for this operation alone, into which keep() may put
    /// files before apply().
    Result announceKept(const QString& folder);

    [[nodiscard]] ResultOf<QByteArray> read(const QString& path, qint64 limit) override;
    [[nodiscard]] std::optional<FileInfo> info(const QString& path) override;
    Result replace(const QString& path, const QByteArray& bytes) override;
    ResultOf<Fingerprint> place(const QString& path, const Content& content) override;
    /// As place(), when the caller has looked at the target already: \a before is what lies there
    /// (size -1: nothing).
    ResultOf<Fingerprint>
    placeOver(const QString& path, const Content& content, const Fingerprint& before);
    /// Carried out at once: a kept copy harms nobody. \a to must lie in an announced kept folder. A
    /// link is kept as the link that it is.
    Result keep(const QString& from, const QString& to) override;
    /// As keep(), at less cost, for a file that is about to be replaced.
    Result keepReplaced(const QString& from, const QString& to);
    Result copy(const QString& from, const QString& to) override;
    Result remove(const QString& path) override;
    /// As remove(), when the caller has just looked at the file (\a before); another one is left
    /// alone.
    Result removeKnown(const QString& path, const Fingerprint& before);

    /// For so long apply() believes what removeKnown() was told; after that it looks at each file
    /// again before it deletes it. Not at all unless said.
    void believeLooks(std::chrono::milliseconds time) { m_believed = time; }

    Result makeFolder(const QString& folder) override;
    Result removeEmptyFolder(const QString& folder) override;
    /// \a from becomes \a to, which may exist (\a before: what lies there now), with its times and
    /// permissions; a link goes as a link. What was staged for \a to before is dropped. By a rename
    /// on one file system, by a staged copy otherwise.
    Result move(const QString& from, const QString& to, const Fingerprint& before);

    /// How many files of the folder were removed.
    [[nodiscard]] qsizetype removedIn(const QString& folder) const;

    /// \a path goes once \a target, which was staged before, is in its place; else it stays.
    Result removeOnce(const QString& path, const QString& target);

    /// Full path of where the new file of \a path lies until apply(), for who wants to read it by
    /// its name; empty when none is staged.
    [[nodiscard]] QString stagedPath(const QString& path) const;
    /// Everything else depends on the file that was staged for \a path: apply() places it first,
    /// and carries out nothing when it cannot.
    Result require(const QString& path);

    /// Syncs, commits (\a records inside the commit), carries out, ends the journal's operation.
    /// The failures are those of single files (or of a folder with everything in it); a failed
    /// result means that nothing has changed.
    ResultOf<QList<StepFailure>> apply(const QByteArray& closing,
                                       const std::function<Result()>& records);

    /// Set when apply() carried out what it could but could not end the operation (the disk does
    /// not confirm, the records cannot be closed, something staged cannot be deleted): a sentence
    /// that says so. The next start ends it.
    [[nodiscard]] const QString& closingFailure() const { return m_closingFailure; }

    /// Takes everything back; also done by the destructor. A failure says what could not be taken
    /// back; the journal then keeps the operation for the next start.
    Result abandon();

    /// Folders that came to exist through this transaction, outermost first; set by apply().
    [[nodiscard]] QStringList madeFolders() const { return m_madeFolders; }

private:
    /// A folder that receives files, existing or staged.
    struct Folder
    {
        std::shared_ptr<hostfile::Descriptor> fd;
        QByteArray host;
        bool staged = false;
        bool wanted = false;      ///< with or without files
        bool holdsStaged = false; ///< folders were staged in it
    };

    /// A folder that will be new as a whole.
    struct StagedRoot
    {
        QString path; ///< final path, no trailing "\"
        QString stagedName;
    };

    /// Writes the new file \a name (with \a mode, should it not bring its own) into \a folder.
    using Write =
        std::function<ResultOf<Fingerprint>(int folder, const QByteArray& name, unsigned mode)>;

    ResultOf<Fingerprint> stage(const QString& path, const Fingerprint& before, const Write& write);
    ResultOf<Folder> folderFor(const QString& folder);
    ResultOf<Folder> openFolderFor(const QString& folder);
    ResultOf<Folder> keptFolderFor(const QString& from, const QString& to);
    ResultOf<Folder> stagedFolder(const QString& folder, const QString& firstMissing);
    Result tellStagingFolder(const QString& folder);
    Result openKeptFolder(const QString& from, const QString& to, const QString& folder);
    Result syncStaged();
    void dropUnusedFolders();
    QString nextStagedName(QLatin1StringView ending);
    QByteArray hostOf(const QString& path, const PendingFile& pending) const;

    Gate& m_gate;
    Journal& m_journal;
    qint64 m_operation = 0;
    QString m_stagedStart; ///< of the names that this operation stages under
    quint64 m_counter = 0;
    bool m_syncEach = true;
    bool m_stagedAny = false;
    bool m_refusedAny = false; ///< a file, whose folders may have been staged for it alone
    QList<JournalStep> m_steps;
    QList<JournalStep> m_lastSteps; ///< emptied folders, carried out at the end
    QList<JournalStep> m_undo;      ///< staging and kept folders
    QHash<NoCase, Folder> m_folders;
    QHash<NoCase, StagedRoot> m_stagedRoots;
    PendingFiles m_pending;
    QString m_lastFolder; ///< as folderFor() was last asked, and its answer
    Folder m_last;
    std::chrono::milliseconds m_believed{0};
    std::optional<QDeadlineTimer> m_believedUntil; ///< counted from the first removeKnown()
    QSet<NoCase> m_told;
    Result m_syncFailure; ///< nothing is applied any more
    QStringList m_keptFolders;
    QStringList m_madeFolders;
    QString m_closingFailure;
};

} // namespace vt
