// The archive manipulator: one operation at a time on one archive file. Settings are plain members,
// set before an operation and kept between operations. The one gateway to archives of any format.
//
// Making an archive of given files, or adding to one:
//
//     CZIP zip(services);
//     zip.sZIPFile = u"C:\\Home\\Cabinet\\12.zip"_s;
//     zip.boolAdd_Create = true;
//     zip.typeCompressionLevel = settings.number(Setting::ZipCompressionLevel);
//     zip.varStatusBar = zip.CProgressBarEx = &services.status;      // texts, progress, cancelling
//     zip.colItemsToAdd.push_back({u"Effects\\fx_a.fx"_s, u"C:\\FSX\\Effects\\fx_a.fx"_s, {}});
//     if (!zip.Add() || !zip.Added_Verify())
//         return zip.result();              // the archive is as it was; nothing may be deleted yet
//
// Add() and Delete() write the whole archive anew beside the old one, sync it and rename it into
// place, through FileActions: whatever goes wrong, the old archive stands untouched.
#pragma once

#include "archive/CZIPFile.h"
#include "archive/EntryRef.h"
#include "archive/ZipAddition.h"
#include "platform/DirectActions.h"
#include "platform/Result.h"
#include "platform/Services.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace vt {

class ByteSource;
class CUnRAR;
class ZipDirectory;
class ZipWriter;
struct UnpackTally;
struct ZipEntry;
struct ZipScratch;

class CZIP
{
public:
    /// \a services must outlive this. Extract() writes below the gate's roots, without syncing each
    /// file: what an archive holds can be extracted again.
    explicit CZIP(Services& services);
    ~CZIP();
    CZIP(const CZIP&) = delete;
    CZIP& operator=(const CZIP&) = delete;

    QString sZIPFile;              ///< full Windows path of the archive
    QString sExtract_Folder;       ///< destination of Extract()
    QStringList varItemsToExtract; ///< names inside the archive; "*" and "?" match any characters,
                                   ///< a folder's name stands for everything below it, and
                                   ///< "sub\a.zip\b.txt" for an entry of an inner archive,
                                   ///< which comes out as "b.txt". For Add(): full paths of files,
                                   ///< which get their own names, and of folders, whose files
                                   ///< get "Folder\sub\name"
    std::vector<ZipAddition> colItemsToAdd; ///< for Add(), beside varItemsToExtract
    QString sAdd_Folder;          ///< folder in the archive for varItemsToExtract; empty: its top
    bool boolAdd_Create = false;  ///< Add() makes the archive when it is missing
    int typeCompressionLevel = 6; ///< of added files: 0 stores, 1 is fastest, 9 packs best
    bool boolDelete_AllConfirmed = false; ///< a pattern of Delete() may mean every entry
    bool boolExtract_All = false;         ///< an empty list means every entry
    bool boolExtract_ConfirmOverwrite = false;
    bool boolErrorMessages_Show = false; ///< failures are also told in a box
    bool boolImbeddedZIPs_Process = false;
    /// Listing asks for the passwords of archives with encrypted entries; those that were right are
    /// tried first, here and in inner archives.
    bool boolPasswords_Ask = false;
    QStringList sarrayPasswords; ///< the right ones so far
    /// Base folder for unpacked inner archives, which its owner removes. Empty: inner archives are
    /// held in memory (large ones in unnamed temporary files), and listing creates nothing.
    QString sImbeddedZIPs_ExtractionFolder;
    std::vector<CZIPFile> colZIPContents; ///< the source first, then inner archives, depth first
    StatusSink* varStatusBar = nullptr;   ///< texts, panel "Primary"; asked for cancellation
    StatusSink* CProgressBarEx = nullptr; ///< progress by files

    /// Files handled by the last operation.
    [[nodiscard]] int ArchiveFiles_Count() const { return m_count; }

    /// Lists sZIPFile into colZIPContents. What was listed before a failure stays there. An inner
    /// archive that cannot be read stays an ordinary entry, and remarks() tells it.
    bool GetItems();
    /// Reads every entry and compares check sums; with boolImbeddedZIPs_Process inner archives too.
    bool Test();
    /// Extracts varItemsToExtract below sExtract_Folder. An entry that fails is told and the others
    /// go on; what was extracted stays on disk.
    bool Extract();
    /// One entry to \a target (a full path; the name may differ from the entry's), through
    /// \a actions or, when null, at once. On failure the old target stands untouched.
    bool Entry_Extract(const EntryRef& ref, const QString& target, FileActions* actions = nullptr);
    /// Puts varItemsToExtract and colItemsToAdd into the archive, in the place of entries of the
    /// same names; other entries keep their packed bytes. Missing files are told and the others
    /// are added, which is then no success; anything else that goes wrong leaves the archive as it
    /// was. Placed through \a actions or, when null, at once. Listings are stale afterwards.
    bool Add(FileActions* actions = nullptr);
    /// After Add(): reads back every added entry and compares it with its file as that is now. The
    /// text of a failure names the first that differs. Replaces colZIPContents.
    bool Added_Verify();
    /// Takes varItemsToExtract out of the archive, which stays, empty, when none is left. What is
    /// said of Add() holds; an entry that does not exist is told.
    bool Delete(FileActions* actions = nullptr);
    /// Extracts entries into a new folder of their own ("OPN" and digits) below \a base, an
    /// existing folder, and gives their full paths. Whoever asked for it removes the folder.
    bool ZIP_Items_ExtractToTemporaryFolder(const QList<EntryRef>& entries,
                                            const QString& base,
                                            QStringList& files);
    /// As ZIP_Items_ExtractToTemporaryFolder(), the entries that are selected.
    bool ZIP_Items_Selected_ExtractToTemporaryFolder(const QString& base, QStringList& files);
    /// Full paths of the files that a listed archive consists of; empty for one that is a single
    /// file.
    [[nodiscard]] QStringList volumes() const;
    /// The lines of the archive summary: of each listed archive, then of the whole.
    [[nodiscard]] QStringList ZIP_Summary() const;
    /// Shows the last result text.
    void Error_Show();

    /// The entry's bytes for FileActions::place(): size, time and a checked transfer. Valid as long
    /// as this object and its listing. A transfer that fails says so with archive, entry, cause.
    [[nodiscard]] ResultOf<Content> entryContent(const EntryRef& ref);
    /// Whether the entry can be extracted as far as its header tells; the text names archive, entry
    /// and cause.
    [[nodiscard]] Result entryReadable(const EntryRef& ref) const;
    /// The entry's bytes in memory; refused when larger than \a limit.
    [[nodiscard]] ResultOf<QByteArray> entryBytes(const EntryRef& ref, qint64 limit);
    /// Null when there is no such entry.
    [[nodiscard]] const CZIPFileItem* entry(const EntryRef& ref) const;

    /// Text of the last operation: what was done, or one sentence on what was not and why.
    [[nodiscard]] const QString& resultText() const { return m_result.text; }

    /// resultText() with its kind; Surroundings when the archive itself cannot be read.
    [[nodiscard]] const Result& result() const { return m_result; }

    /// What the last operation passed over, one sentence each: inner archives that could not be
    /// read, entries that were not extracted.
    [[nodiscard]] const QStringList& remarks() const { return m_remarks; }

private:
    struct Budget;
    struct Faults;
    struct Tally;
    struct Slot;
    class Sorter;

    bool finish(const Result& result, const QString& caption = {});
    [[nodiscard]] bool cancelled() const;
    void status(const QString& text) const;
    void progress(qint64 done, qint64 total) const;
    qint64 modifiedNs(const CZIPFileItem& item);

    // CZIP_Listing.cpp
    Result list();
    Result listArchive(const std::shared_ptr<ByteSource>& source, CZIPFile& file, Budget& budget);
    Result listRar(CZIPFile& file, Budget& budget);
    void unlock(const CZIPFile& file);
    Result charge(const CZIPFile& file, const UnpackTally& unpacked, Budget& budget);
    Result listInner(int parent, int depth, Budget& budget);
    Result openInner(int parent, int key, CZIPFile& inner, Budget& budget, bool& damaged);
    ResultOf<std::shared_ptr<ByteSource>>
    unpackInner(const EntryRef& ref, CZIPFile& inner, Budget& budget, bool& damaged);
    Result test();
    Result testEntries(const CZIPFile& file, Faults& faults);
    Result testRar(const Result& listed);

    // CZIP_Extract.cpp
    Result extract();
    /// \a notFound: what is said of a name that means no entry.
    [[nodiscard]] QList<EntryRef>
    findWanted(QStringList& failures, const std::function<QString(const QString&)>& notFound) const;
    Result checkSpace(const QList<EntryRef>& wanted) const;
    Result extractOne(const EntryRef& ref, Tally& tally);
    Result
    place(const EntryRef& ref, const QString& target, FileActions& actions, bool& unreadable);

    [[nodiscard]] QStringList comment() const; // CZIP_Summary.cpp

    // CZIP_Updating.cpp
    Result add(FileActions& actions);
    Result deleteEntries(FileActions& actions);
    Result compareAdded();
    Result gatherAdditions(QStringList& failures);
    void gather(ZipAddition addition, QStringList& failures);
    ResultOf<std::shared_ptr<const ZipDirectory>> openForUpdate() const;
    Result
    writeArchive(const ZipDirectory* old, const std::vector<Slot>& slots, FileActions& actions);
    Result writeSlots(ZipWriter& writer, const std::vector<Slot>& slots, const ZipDirectory* old);

    Services& m_services;
    DirectActions m_unsynced;
    std::shared_ptr<ZipScratch> m_scratch;
    std::unique_ptr<CUnRAR> m_unrar; ///< of a listed RAR archive
    QHash<qint64, qint64> m_hours;   ///< local hours to milliseconds since 1970 UTC
    Result m_result;
    QStringList m_remarks;
    std::vector<ZipAddition> m_added; ///< by the last Add(), files as contents
    int m_count = 0;
    int m_code = 0;
};

} // namespace vt
