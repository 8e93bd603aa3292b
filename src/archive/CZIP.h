// The archive manipulator: one operation at a time on one archive file. Settings are plain members,
// set before an operation and kept between operations. The one gateway to archives of any format.
#pragma once

#include "archive/CZIPFile.h"
#include "archive/EntryRef.h"
#include "platform/DirectActions.h"
#include "platform/Result.h"
#include "platform/Services.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace vt {

class ByteSource;
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
                                   ///< which comes out as "b.txt"
    bool boolExtract_All = false;  ///< an empty list means every entry
    bool boolExtract_ConfirmOverwrite = false;
    bool boolErrorMessages_Show = false; ///< failures are also told in a box
    bool boolImbeddedZIPs_Process = false;
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
    struct Tally;

    bool finish(const Result& result, const QString& caption = {});
    [[nodiscard]] bool cancelled() const;
    void status(const QString& text) const;
    void progress(qint64 done, qint64 total) const;
    qint64 modifiedNs(const CZIPFileItem& item);

    // CZIP_Listing.cpp
    Result list();
    Result listArchive(const std::shared_ptr<ByteSource>& source, CZIPFile& file, Budget& budget);
    Result listInner(int parent, int depth, Budget& budget);
    Result openInner(int parent, int key, CZIPFile& inner, Budget& budget, bool& damaged);
    ResultOf<std::shared_ptr<ByteSource>>
    unpackInner(const EntryRef& ref, CZIPFile& inner, Budget& budget, bool& damaged);
    Result test();

    // CZIP_Extract.cpp
    Result extract();
    [[nodiscard]] QList<EntryRef> findWanted(Tally& tally) const;
    Result checkSpace(const QList<EntryRef>& wanted) const;
    Result extractOne(const EntryRef& ref, Tally& tally);
    Result
    place(const EntryRef& ref, const QString& target, FileActions& actions, bool& unreadable);

    Services& m_services;
    DirectActions m_unsynced;
    std::shared_ptr<ZipScratch> m_scratch;
    QHash<qint64, qint64> m_hours; ///< local hours to milliseconds since 1970 UTC
    Result m_result;
    QStringList m_remarks;
    int m_count = 0;
    int m_code = 0;
};

} // namespace vt
