// Extraction: which entries are meant, where they go, and what is told of those that do not.
#include "archive/CZIP.h"
#include "platform/DiskSpace.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <vector>

using namespace Qt::StringLiterals;

namespace vt {

/// How an extraction stands.
struct CZIP::Tally
{
    int files = 0;
    QStringList failures;
    bool asked = false;    ///< the answer holds for all that follow
    bool overwrite = true; ///< the answer
};

namespace {

constexpr qsizetype failuresTold = 20;

bool hasWildcards(QStringView name)
{
    return name.contains(u'*') || name.contains(u'?');
}

/// "*" any characters, separators too; "?" any one. Without regard to case.
bool matches(QStringView pattern, QStringView name)
{
    qsizetype p = 0;
    qsizetype n = 0;
    qsizetype star = -1;
    qsizetype starAt = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            starAt = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == u'?' || equalNoCase(pattern.sliced(p, 1), name.sliced(n, 1)))) {
            ++p;
            ++n;
        } else if (star >= 0) {
            p = star + 1;
            n = ++starAt;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

Prompt overwriteQuestion(const QString& target, const FileInfo& existing, const CZIPFileItem& item)
{
    Prompt prompt{u"Confirm Overwrite"_s,
                  u"'"_s + target + u"' already exists. Do you want to overwrite it?"_s,
                  Icon::Question,
                  {Button::Yes, Button::YesToAll, Button::No, Button::NoToAll, Button::Cancel},
                  Button::No,
                  {u"Overwrite the existing file."_s,
                   u"Overwrite the existing file and all others that exist."_s,
                   u"Leave the existing file as it is."_s,
                   u"Leave the existing file as it is, and all others that exist."_s,
                   u"Stop the extraction; files before this one are extracted."_s}};
    prompt.replacing = ReplaceQuestion{target,
                                       existing.readOnly,
                                       false,
                                       existing.size,
                                       existing.modified(),
                                       item.lngSize_Uncompressed,
                                       QDateTime(item.dteDate, item.dteTime)};
    return prompt;
}

Prompt renameFailed()
{
    return announcement(u"Extraction Error"_s,
                        u"An error occured renaming/copying temporary file."_s,
                        Icon::Critical);
}

} // namespace

Result CZIP::extract()
{
    if (varItemsToExtract.isEmpty() && !boolExtract_All)
        return Result::failure(u"Nothing specified for extraction."_s);
    if (colZIPContents.empty() || !winpath::same(colZIPContents.front().fullName(), sZIPFile)) {
        if (Result listed = list(); !listed)
            return listed;
    }
    m_remarks.clear();
    m_count = 0;
    Tally tally;
    const QList<EntryRef> wanted = findWanted(tally.failures, [&](const QString& name) {
        return u"Could not extract '"_s + name + u"': the archive '"_s + sZIPFile +
               u"' holds no such entry."_s;
    });
    if (Result space = checkSpace(wanted); !space)
        return space;
    qint64 done = 0;
    for (const EntryRef& one : wanted) {
        progress(done++, wanted.size());
        if (cancelled())
            return Result::failure(u"Extraction aborted."_s, ErrorKind::Declined);
        Result extracted = extractOne(one, tally);
        m_count = tally.files;
        if (extracted.kind == ErrorKind::Declined)
            return extracted;
        if (!extracted)
            tally.failures += extracted.text;
    }
    progress(done, wanted.size());
    if (tally.failures.isEmpty()) {
        if (tally.files == 0)
            return Result::success(u"No file was extracted."_s);
        return Result::success(tally.files == 1 ? u"File was extracted."_s
                                                : u"Files were extracted."_s);
    }
    m_remarks = tally.failures;
    QString text = tally.failures.first(qMin(tally.failures.size(), failuresTold)).join(u'\n');
    if (tally.failures.size() > failuresTold)
        text +=
            u"\n... and "_s + QString::number(tally.failures.size() - failuresTold) + u" more."_s;
    return Result::failure(text);
}

/// The entries meant by varItemsToExtract, in listing order; a name that means none is a failure.
QList<EntryRef> CZIP::findWanted(QStringList& failures,
                                 const std::function<QString(const QString&)>& notFound) const
{
    std::vector<std::vector<bool>> chosen;
    for (const CZIPFile& file : colZIPContents)
        chosen.emplace_back(size_t(file.varZIPItems.size()),
                            boolExtract_All && &file == colZIPContents.data() &&
                                varItemsToExtract.isEmpty());

    for (const QString& raw : varItemsToExtract) {
        QString name = raw.trimmed();
        if (!name.startsWith(u'*'))
            name.replace(u'/', u'\\');
        const bool pattern = hasWildcards(name);
        QString plain = name;
        plain.replace(u'*', u'x').replace(u'?', u'x').replace(u'/', u'\\');
        if (!winpath::checkRelative(plain)) {
            failures += u"Could not resolve a proper filename for '"_s + raw + u"'."_s;
            continue;
        }
        name.replace(u'/', u'\\');
        const QString folder = winpath::asFolder(name);
        bool found = false;
        for (size_t a = 0; a < colZIPContents.size(); ++a) {
            const CZIPFile& file = colZIPContents[a];
            // A pattern means the source's own entries unless it names the inner archive.
            if (a > 0 && !startsWithNoCase(name, file.nestedPath))
                continue;
            const QString rest = name.sliced(a > 0 ? file.nestedPath.size() : 0);
            const QString restFolder = folder.sliced(a > 0 ? file.nestedPath.size() : 0);
            for (const CZIPFileItem& item : file.varZIPItems) {
                const QString full = item.fullName();
                if (pattern ? matches(rest, full)
                            : equalNoCase(full, rest) || startsWithNoCase(full, restFolder)) {
                    chosen[a][size_t(item.lngKey - 1)] = true;
                    found = true;
                }
            }
        }
        if (!found)
            failures += notFound(raw);
    }
    QList<EntryRef> wanted;
    for (size_t a = 0; a < chosen.size(); ++a) {
        for (size_t i = 0; i < chosen[a].size(); ++i) {
            if (chosen[a][i])
                wanted += EntryRef{int(a), int(i) + 1};
        }
    }
    return wanted;
}

/// Refused before the first byte, as far as the declared sizes tell.
Result CZIP::checkSpace(const QList<EntryRef>& wanted) const
{
    qint64 needed = 0;
    for (const EntryRef& one : wanted)
        needed += qMin(entry(one)->lngSize_Uncompressed, (qint64(1) << 62) - needed);
    const ResultOf<qint64> available = freeBytes(m_services.files, sExtract_Folder);
    if (!available || needed <= *available)
        return Result::success();
    return Result::failure(u"The entries of '"_s + sZIPFile + u"' need "_s + sizeText(needed) +
                           u" in '"_s + sExtract_Folder + u"', where only "_s +
                           sizeText(*available) + u" are free."_s);
}

Result CZIP::extractOne(const EntryRef& ref, Tally& tally)
{
    const CZIPFileItem& item = *entry(ref);
    status(u"Extracting '"_s + item.sFilename + u"'..."_s);
    const QString name = item.fullName();
    if (name.isEmpty())
        return Result::success(); // the archive's own top as an entry
    const CZIPFile& file = colZIPContents[size_t(ref.archive)];
    const QString cannot = u"Could not extract '"_s + file.nestedPath + name + u"'"_s;
    if (Result safe = winpath::checkRelative(name); !safe)
        return Result::failure(cannot + u" from '"_s + sZIPFile + u"'. "_s + safe.text);
    const QString target = winpath::join(winpath::asFolder(sExtract_Folder), name);
    if (item.kind == EntryKind::Folder) {
        Result made = m_unsynced.makeFolder(target + u'\\');
        return made ? made : Result::failure(cannot + u". "_s + made.text);
    }
    const auto existing =
        boolExtract_ConfirmOverwrite ? m_services.files.info(target) : std::nullopt;
    if (existing) {
        if (!tally.asked) {
            const Button answer =
                m_services.prompts.ask(overwriteQuestion(target, *existing, item));
            if (answer == Button::Cancel)
                return Result::failure(u"Extraction aborted."_s, ErrorKind::Declined);
            tally.overwrite = answer == Button::Yes || answer == Button::YesToAll;
            tally.asked = answer == Button::YesToAll || answer == Button::NoToAll;
        }
        if (!tally.overwrite)
            return Result::success();
    }
    bool unreadable = false;
    if (Result placed = place(ref, target, m_unsynced, unreadable); !placed)
        return Result::failure(cannot + u". "_s + placed.text, placed.kind);
    ++tally.files;
    return Result::success();
}

/// \a unreadable: the fault lies in the archive, not in the target.
Result
CZIP::place(const EntryRef& ref, const QString& target, FileActions& actions, bool& unreadable)
{
    ResultOf<Content> content = entryContent(ref);
    if (!content)
        return content.error();
    Result read;
    const auto transfer = std::move(content->transfer);
    content->transfer = [&](const Content::Sink& sink) { return read = transfer(sink); };
    const ResultOf<Fingerprint> placed = actions.place(target, *content);
    if (placed)
        return Result::success();
    unreadable = !read;
    return unreadable ? read : placed.error();
}

bool CZIP::Entry_Extract(const EntryRef& ref, const QString& target, FileActions* actions)
{
    m_count = 0;
    const CZIPFileItem* item = entry(ref);
    if (!item)
        return finish(Result::failure(u"Nothing specified for extraction."_s));
    status(u"Extracting '"_s + item->sFilename + u"'..."_s);
    bool unreadable = false;
    const Result placed =
        place(ref, target, actions ? *actions : static_cast<FileActions&>(m_unsynced), unreadable);
    if (placed) {
        m_count = 1;
        return finish(Result::success(u"File was extracted."_s));
    }
    // The target is written under a temporary name of its own and renamed.
    if (!unreadable && boolErrorMessages_Show &&
        !equalNoCase(winpath::name(target), item->sFilename))
        m_services.prompts.ask(renameFailed());
    return finish(Result::failure(
        u"Could not extract '"_s + item->fullName() + u"'"_s + u". "_s + placed.text, placed.kind));
}

} // namespace vt
