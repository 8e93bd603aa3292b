// Adding and deleting: the archive is written anew, entries that stay with their packed bytes, and
// takes the place of the old one when it is whole.
#include "archive/CZIP.h"
#include "archive/RarSignature.h"
#include "archive/ZipDirectory.h"
#include "archive/ZipReader.h"
#include "archive/ZipWriter.h"
#include "platform/FolderListing.h"
#include "platform/Hash.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

/// One entry of the archive to come: of the old archive, or added.
struct CZIP::Slot
{
    const ZipEntry* old = nullptr;
    const ZipAddition* added = nullptr;
};

/// Gives each added file its slot, and refuses a name that is a file here and a folder there.
class CZIP::Sorter
{
public:
    explicit Sorter(const ZipDirectory* old)
    {
        if (!old)
            return;
        for (const ZipEntry& entry : old->entries()) {
            const bool folder = entry.kind == EntryKind::Folder;
            enter(entry.folder, entry.name, folder);
            slots.push_back({&entry, nullptr});
        }
    }

    /// Empty, or why not.
    QString take(const ZipAddition& addition)
    {
        const bool folder = addition.sName.endsWith(u'\\');
        const QString full = winpath::withoutTrailing(addition.sName);
        const QString parent = winpath::parent(full);
        if (!folder && m_folders.contains({full}))
            return u"it is a folder there."_s;
        for (QString above = parent; !above.isEmpty();) {
            above = winpath::withoutTrailing(above);
            if (m_files.contains({above}))
                return u"'"_s + above + u"' is a file there."_s;
            above = winpath::parent(above);
        }
        const auto known = m_files.constFind({full});
        if (known != m_files.constEnd()) {
            if (folder)
                return u"it is a file there."_s;
            if (slots[*known].added)
                return u"an other file gets the same name."_s;
            slots[*known] = {nullptr, &addition};
            return {};
        }
        if (folder && m_folders.contains({full}))
            return {};
        enter(parent, winpath::name(full), folder);
        slots.push_back({nullptr, &addition});
        return {};
    }

    std::vector<Slot> slots;

private:
    /// Before the slot itself is pushed.
    void enter(const QString& folder, const QString& name, bool isFolder)
    {
        if (isFolder)
            m_folders.insert({folder + name});
        else
            m_files.insert({folder + name}, slots.size());
        if (folder.isEmpty() || folder == m_lastFolder)
            return;
        m_lastFolder = folder;
        for (QString above = folder; !above.isEmpty(); above = winpath::parent(above)) {
            above = winpath::withoutTrailing(above);
            m_folders.insert({above});
        }
    }

    QHash<NoCase, size_t> m_files;
    QSet<NoCase> m_folders;
    QString m_lastFolder;
};

namespace {

constexpr qsizetype updateFailuresTold = 20;

/// What was not done, then what was.
Result updated(const QStringList& failures, const QString& done)
{
    if (failures.isEmpty())
        return Result::success(done);
    QString text = failures.first(qMin(failures.size(), updateFailuresTold)).join(u'\n');
    if (failures.size() > updateFailuresTold)
        text +=
            u"\n... and "_s + QString::number(failures.size() - updateFailuresTold) + u" more."_s;
    return Result::failure(done.isEmpty() ? text : text + u'\n' + done);
}

} // namespace

/// The source as a directory, for copying; the text of a failure says why not.
ResultOf<std::shared_ptr<const ZipDirectory>> CZIP::openForUpdate() const
{
    const ResultOf<std::shared_ptr<ByteSource>> source = openFileSource(m_services.files, sZIPFile);
    if (!source)
        return source.error();
    int code = 0;
    return ZipDirectory::open(*source, code);
}

Result CZIP::add(FileActions& actions)
{
    m_remarks.clear();
    m_added.clear();
    m_count = 0;
    if (sZIPFile.isEmpty() || (varItemsToExtract.isEmpty() && colItemsToAdd.empty()))
        return Result::failure(u"Nothing specified for zipping."_s);
    const bool exists = m_services.files.exists(sZIPFile);
    if (!exists && !boolAdd_Create)
        return Result::failure(u"Zip file '"_s + sZIPFile + u"' does not exist."_s,
                               ErrorKind::Surroundings);
    if (rarsignature::isRar(m_services.files, sZIPFile))
        return Result::failure(u"Cannot add to RAR file '"_s + sZIPFile + u"'"_s);
    status(u"Updating zip file, please wait..."_s);
    std::shared_ptr<const ZipDirectory> old;
    if (exists) {
        auto opened = openForUpdate();
        if (!opened)
            return Result::failure(u"An error occurred during zipping."_s + u' ' + opened.text,
                                   opened.kind);
        old = *opened;
    }
    QStringList failures;
    if (Result r = gatherAdditions(failures); !r)
        return r;
    Sorter sorter(old.get());
    for (const ZipAddition& addition : m_added) {
        const QString why = sorter.take(addition);
        if (!why.isEmpty())
            failures +=
                u"'"_s + addition.sName + u"' will not be added to "_s + sZIPFile + u": "_s + why;
        else if (!addition.sName.endsWith(u'\\'))
            ++m_count;
    }
    m_remarks = failures;
    if (m_added.empty() || (m_count == 0 && !failures.isEmpty()))
        return updated(failures, {});
    if (Result written = writeArchive(old.get(), sorter.slots, actions); !written) {
        m_count = 0;
        m_added.clear();
        failures += u"Could not add file(s) to '"_s + sZIPFile + u"'"_s + u". "_s + written.text;
        return Result::failure(failures.join(u'\n'), written.kind);
    }
    // Only what got its slot was added.
    QSet<const ZipAddition*> placed;
    for (const Slot& slot : sorter.slots)
        placed.insert(slot.added);
    std::erase_if(m_added,
                  [&](const ZipAddition& addition) { return !placed.contains(&addition); });
    return updated(failures, m_count == 1 ? u"File was added."_s : u"Files were added."_s);
}

Result CZIP::gatherAdditions(QStringList& failures)
{
    const QString into = winpath::asFolder(sAdd_Folder);
    for (const QString& path : varItemsToExtract) {
        const QString plain = winpath::withoutTrailing(path);
        const std::optional<FileInfo> info = m_services.files.info(plain);
        if (!info || !info->folder) {
            gather({into + (info ? info->name : winpath::name(plain)), plain, {}}, failures);
            continue;
        }
        const auto listing = listFolder(m_services.files, plain + u'\\', ziplimits::entries);
        if (!listing)
            return listing.error();
        failures += listing->passedOver;
        for (const ListedFile& file : listing->files) {
            const QString rest = file.folder + file.name;
            const QString full = plain + u'\\' + rest;
            // An archive inside the folder that is put into it.
            if (!winpath::same(full, sZIPFile))
                gather({into + info->name + u'\\' + rest, full, {}}, failures);
        }
    }
    for (const ZipAddition& addition : colItemsToAdd)
        gather(addition, failures);
    return Result::success();
}

void CZIP::gather(ZipAddition addition, QStringList& failures)
{
    const auto skip = [&](const QString& why) {
        const QString& name = addition.sFile.isEmpty() ? addition.sName : addition.sFile;
        failures += u"'"_s + name + u"' will not be added to "_s + sZIPFile + why;
    };
    addition.sName.replace(u'/', u'\\');
    if (Result safe = winpath::checkRelative(winpath::withoutTrailing(addition.sName)); !safe) {
        failures +=
            u"Could not resolve a proper filename for '"_s + addition.sName + u"'. "_s + safe.text;
        return;
    }
    if (addition.sName.endsWith(u'\\')) {
        addition.content = Content::ofBytes({});
    } else if (!addition.sFile.isEmpty()) {
        const std::optional<FileInfo> info = m_services.files.info(addition.sFile);
        if (!info)
            return skip(u" because it was not found."_s);
        if (info->folder)
            return skip(u" because it is a folder."_s);
        if (winpath::same(addition.sFile, sZIPFile))
            return skip(u" because it is that archive itself."_s);
        addition.content = contentOfFile(
            m_services.files, addition.sFile, {{}, info->name, info->size, info->modifiedNs});
        addition.readOnly = info->readOnly;
    } else if (!addition.content.transfer) {
        return skip(u" because it was not found."_s);
    }
    m_added.push_back(std::move(addition));
}

Result
CZIP::writeArchive(const ZipDirectory* old, const std::vector<Slot>& slots, FileActions& actions)
{
    bool refused = false;
    Result written;
    Content content;
    content.transfer = [&](const Content::Sink& sink) {
        ZipWriter writer(
            [&](QByteArrayView bytes) {
                refused = !sink(bytes);
                return !refused;
            },
            typeCompressionLevel);
        return written = writeSlots(writer, slots, old);
    };
    const ResultOf<Fingerprint> placed = actions.place(sZIPFile, content);
    colZIPContents.clear();
    if (placed)
        return Result::success();
    return !written && !refused ? written : placed.error();
}

Result CZIP::writeSlots(ZipWriter& writer, const std::vector<Slot>& slots, const ZipDirectory* old)
{
    if (old) {
        if (Result r = writer.copyPrefix(*old); !r)
            return r;
    }
    qint64 done = 0;
    for (const Slot& slot : slots) {
        progress(done++, qint64(slots.size()));
        if (cancelled())
            return Result::failure(u"It was cancelled, and the archive is as it was."_s,
                                   ErrorKind::Declined);
        if (slot.old) {
            if (Result r = writer.copy(*old, *slot.old); !r)
                return r;
            continue;
        }
        const ZipAddition& addition = *slot.added;
        status(u"Zipping '"_s + winpath::name(addition.sName) + u"'..."_s);
        if (Result r = writer.add(addition.sName, addition.content, addition.readOnly); !r)
            return Result::failure(
                textAbout(addition.sFile.isEmpty() ? addition.sName : addition.sFile, r.text),
                r.kind);
    }
    progress(done, qint64(slots.size()));
    return writer.finish(old ? QByteArrayView(old->comment()) : QByteArrayView());
}

Result CZIP::compareAdded()
{
    const std::vector<ZipAddition> added = m_added;
    const bool inner = std::exchange(boolImbeddedZIPs_Process, false);
    Result listed = list();
    boolImbeddedZIPs_Process = inner;
    if (!listed)
        return listed;
    const CZIPFile& file = colZIPContents.front();
    QHash<NoCase, int> keys;
    for (const CZIPFileItem& item : file.varZIPItems)
        keys.insert({item.fullName()}, item.lngKey);
    qint64 done = 0;
    m_count = 0;
    for (const ZipAddition& addition : added) {
        progress(done++, qint64(added.size()));
        if (cancelled())
            return Result::failure(u"The comparison of '"_s + sZIPFile +
                                       u"' with its files was cancelled."_s,
                                   ErrorKind::Declined);
        status(u"Testing '"_s + winpath::name(addition.sName) + u"'..."_s);
        const QString name = winpath::withoutTrailing(addition.sName);
        const CZIPFileItem* item = file.item(keys.value({name}));
        if (!item)
            return Result::failure(u"The archive '"_s + sZIPFile + u"' holds no entry '"_s + name +
                                   u"', which was added to it."_s);
        if (item->kind == EntryKind::Folder)
            continue;
        Xxh3 packed;
        Xxh3 source;
        const auto into = [](Xxh3& hash) {
            return [&hash](QByteArrayView bytes) {
                hash.add(bytes);
                return true;
            };
        };
        if (Result r = file.reader->read(item->lngKey, into(packed)); !r)
            return r;
        if (Result r = addition.content.transfer(into(source)); !r)
            return Result::failure(textAbout(addition.sFile, r.text), r.kind);
        if (packed.result() != source.result())
            return Result::failure(u"The entry '"_s + name + u"' of the archive '"_s + sZIPFile +
                                   u"' differs from '"_s + addition.sFile +
                                   u"', which changed meanwhile."_s);
        ++m_count;
    }
    progress(done, qint64(added.size()));
    m_added = added;
    return Result::success(u"Zip file is OK."_s);
}

Result CZIP::deleteEntries(FileActions& actions)
{
    m_remarks.clear();
    m_count = 0;
    if (sZIPFile.isEmpty() || !m_services.files.exists(sZIPFile))
        return Result::failure(u"Zip file '"_s + sZIPFile + u"' does not exist."_s,
                               ErrorKind::Surroundings);
    if (varItemsToExtract.isEmpty())
        return Result::failure(u"Nothing specified for deletion."_s);
    if (rarsignature::isRar(m_services.files, sZIPFile))
        return Result::failure(u"Cannot delete from RAR file '"_s + sZIPFile + u"'"_s);
    const bool inner = std::exchange(boolImbeddedZIPs_Process, false);
    Result listed = list();
    boolImbeddedZIPs_Process = inner;
    m_count = 0;
    if (!listed)
        return listed;
    QStringList failures;
    const QList<EntryRef> wanted = findWanted(failures, [&](const QString& name) {
        return u"Could not delete '"_s + name + u"' from "_s + sZIPFile +
               u": it holds no such entry."_s;
    });
    const CZIPFile& file = colZIPContents.front();
    const bool pattern =
        std::any_of(varItemsToExtract.begin(), varItemsToExtract.end(), [](const QString& name) {
            return name.contains(u'*') || name.contains(u'?');
        });
    if (pattern && wanted.size() == file.varZIPItems.size() && !boolDelete_AllConfirmed)
        return Result::failure(u"Mass deletion specified but confirmation flag was not set."_s);
    m_remarks = failures;
    if (wanted.isEmpty())
        return updated(failures, {});
    status(u"Updating zip file, please wait..."_s);
    const auto reader = std::static_pointer_cast<ZipReader>(file.reader);
    const ZipDirectory& directory = reader->directory();
    int deleted = 0;
    std::vector<Slot> slots;
    for (qsizetype i = 0, next = 0; i < file.varZIPItems.size(); ++i) {
        if (next < wanted.size() && wanted[next].key == i + 1) {
            ++next;
            deleted += file.varZIPItems[i].kind != EntryKind::Folder ? 1 : 0;
        } else {
            slots.push_back({&directory.entries()[size_t(i)], nullptr});
        }
    }
    if (Result written = writeArchive(&directory, slots, actions); !written) {
        failures += u"Could not delete '"_s + varItemsToExtract.join(u"', '"_s) + u"' from "_s +
                    sZIPFile + u". "_s + written.text;
        return Result::failure(failures.join(u'\n'), written.kind);
    }
    m_count = deleted;
    return updated(failures, deleted == 1 ? u"File was deleted."_s : u"Files were deleted."_s);
}

} // namespace vt
