// Goes through a RAR archive in one of three ways: listing, testing, extracting. Every failure
// leaves the text of its step's table and the sentence that tells a person what, where and why.
#pragma once

#include "archive/MTKUnrar.h"
#include "archive/RarReader.h"
#include "platform/FileActions.h"
#include "platform/Services.h"

#include <QString>

#include <memory>

namespace vt {

class CTKUnrar
{
public:
    /// \a services must outlive this.
    explicit CTKUnrar(Services& services) : m_services(services) {}

    QString sPassword;           ///< set before an operation. No encrypted entry is ever unpacked:
                                 ///< it only decides how that is told
    qint16 intProgressSteps = 0; ///< of the caller's progress bar; 0: one a file
    StatusSink* status = nullptr;
    QString strLastErrorMsg; ///< of the last operation's first failure; empty for none

    /// Reads the headers. What was listed before a failure is in directory().
    bool ListRarFiles(const QString& path);
    /// Reads every file and compares the check sums; goes on after a failure.
    bool TestRarFiles(const QString& path);
    /// Everything below \a folder, through \a actions; ends at the first failure, and what was
    /// extracted before it stays on disk.
    bool ExtractRarFiles(const QString& path, const QString& folder, FileActions& actions);

    /// Date and time of an entry as its header packs them (date << 16 | time); null when it is
    /// none.
    [[nodiscard]] static QDateTime RARFileTimeToVBDate(quint32 packed);
    /// A size that was taken for signed.
    [[nodiscard]] static qint64 LongToUnsigned(qint32 size);

    /// The archive's own comment. False without one and when it cannot be read; the first leaves no
    /// error.
    bool Comment(QString& text, qint64 limit = 64 * 1024);

    [[nodiscard]] RarCode code() const { return m_code; }

    /// The failure as a whole sentence, with its kind.
    [[nodiscard]] const Result& result() const { return m_result; }

    /// Files tested or extracted, and how many of them failed.
    [[nodiscard]] int files() const { return m_files; }

    [[nodiscard]] int failures() const { return m_failures; }

    /// Null before the first listing.
    [[nodiscard]] const std::shared_ptr<const RarDirectory>& directory() const
    {
        return m_directory;
    }

    [[nodiscard]] const std::shared_ptr<RarReader>& reader() const { return m_reader; }

    /// All three operations. An unknown mode fails with "Unknown extraction mode".
    bool run(MTKUnrar::Mode mode, const QString& path, const QString& folder, FileActions* actions);

private:
    bool open(const QString& path);
    bool process(MTKUnrar::Mode mode, int key, const QString& folder, FileActions* actions);
    bool extract(int key, const CZIPFileItem& item, const QString& folder, FileActions& actions);
    bool fail(RarCode code, const QString& text, const Result& why);

    Services& m_services;
    std::shared_ptr<const RarDirectory> m_directory;
    std::shared_ptr<RarReader> m_reader;
    Result m_result;
    RarCode m_code = RarCode::Ok;
    int m_files = 0;
    int m_failures = 0;
};

/// An entry as everything above knows it.
[[nodiscard]] CZIPFileItem itemOfRar(const RarEntry& entry, int key);

} // namespace vt
