// Listing and testing: opening the source and the archives inside it, depth first.
#include "archive/ByteSource.h"
#include "archive/CUnRAR.h"
#include "archive/CZIP.h"
#include "archive/ZipNames.h"
#include "archive/ZipReader.h"
#include "platform/AnsiCodec.h"
#include "platform/TempFolder.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <zip.h>

using namespace Qt::StringLiterals;

namespace vt {

/// What one listing may still take, over all of its archives.
struct CZIP::Budget
{
    qint64 sourceBytes = 0;
    qint64 entries = 0;
    UnpackTally unpacked;
    qint64 memoryBytes = 64LL << 20; ///< for inner archives held in memory
};

/// What a test found.
struct CZIP::Faults
{
    qint64 number = 0;
    QString first;

    [[nodiscard]] QString text() const;
};

namespace {

constexpr quint32 attributeReadOnly = 0x01;
constexpr quint32 attributeHidden = 0x02;
constexpr quint32 attributeSystem = 0x04;
constexpr quint32 attributeVolumeLabel = 0x08;
constexpr quint32 attributeArchive = 0x20;

CZIPFileItem itemOf(const ZipEntry& entry, int key)
{
    CZIPFileItem item;
    item.lngKey = key;
    item.sFilename = entry.name;
    item.sPath = entry.folder;
    zipnames::stampOf(entry.stamp, item.dteDate, item.dteTime);
    item.lngSize_Uncompressed = entry.size;
    item.lngSize_Compressed = entry.packed;
    if (entry.packed < entry.size)
        item.intRatio = qint16(qRound(100 - (entry.packed / double(entry.size)) * 100));
    item.boolMethodStore = entry.method == 0;
    item.boolEncrypted = entry.encrypted();
    item.boolAttribute_Archive = (entry.attributes & attributeArchive) != 0;
    item.boolAttribute_Directory = entry.kind == EntryKind::Folder;
    item.boolAttribute_Hidden = (entry.attributes & attributeHidden) != 0;
    item.boolAttribute_ReadOnly = (entry.attributes & attributeReadOnly) != 0;
    item.boolAttribute_System = (entry.attributes & attributeSystem) != 0;
    item.boolAttribute_VolumeLabel = (entry.attributes & attributeVolumeLabel) != 0;
    item.kind = entry.kind;
    item.crc32 = entry.crc;
    return item;
}

/// \a locked: entries that are still shut.
TextPrompt passwordQuestion(const CZIPFile& file, const QList<int>& locked, bool some, bool again)
{
    const QString name = u"'"_s + file.fullName() + u"'"_s;
    const QString first = u"'"_s + file.item(locked.first())->fullName() + u"'"_s;
    const QString rest = locked.size() == 1
                             ? u"The file "_s + first + u" in the archive "_s + name + u" is"_s
                             : countText(locked.size(), u"file"_s, u"files"_s) +
                                   u" in the archive "_s + name + u", "_s + first +
                                   u" among them, are"_s;
    QString text = again ? u"This password does not open "_s + name + u". "_s : QString();
    if (some)
        text += rest + u" encrypted with another password. Enter it, "_s;
    else
        text += (again ? QString() : u"Files in the archive "_s + name + u" are encrypted. "_s) +
                u"Enter the archive's password, "_s;
    text += some && locked.size() == 1 ? u"or nothing to go on without this file."_s
                                       : u"or nothing to go on without these files."_s;
    return {u"Password"_s, text, {}, true};
}

/// RAR archives are recognised by their signature, whatever their name; by the name when what it
/// names is no ZIP archive either.
bool isRarSource(const ByteSource& source)
{
    if (rarsignature::find(source).format != rarsignature::Format::None)
        return true;
    char head[2] = {};
    (void)source.read(0, head, qMin<qint64>(source.size(), 2));
    return endsWithNoCase(source.name(), u".rar") && QByteArrayView(head, 2) != "PK";
}

} // namespace

Result CZIP::list()
{
    colZIPContents.clear();
    m_unrar.reset();
    m_remarks.clear();
    m_count = 0;
    m_code = ZIP_ER_OK;
    if (sZIPFile.isEmpty())
        return Result::failure(u"Nothing specified for extraction."_s);
    const auto failed = [](const Result& why) {
        return Result::failure(
            u"An error occurred while reading zip file contents."_s + u' ' + why.text, why.kind);
    };
    const ResultOf<std::shared_ptr<ByteSource>> source = openFileSource(m_services.files, sZIPFile);
    if (!source) {
        m_code = ZIP_ER_OPEN;
        return failed(source.error());
    }
    Budget budget;
    budget.sourceBytes = (*source)->size();
    CZIPFile outer;
    outer.sFilename = winpath::name(sZIPFile);
    outer.sFolder = winpath::parent(sZIPFile);
    if (const auto info = m_services.files.info(sZIPFile))
        outer.dteDateTime = info->modified();
    const bool rar = isRarSource(**source);
    Result listed = rar ? listRar(outer, budget) : listArchive(*source, outer, budget);
    if (!listed) {
        // What a RAR archive told before its fault stays.
        if (rar && !outer.varZIPItems.isEmpty())
            colZIPContents.push_back(std::move(outer));
        return failed(listed);
    }
    const bool inner = outer.boolHasImbeddedZIPs && boolImbeddedZIPs_Process;
    colZIPContents.push_back(std::move(outer));
    if (!inner)
        return Result::success();
    if (!sImbeddedZIPs_ExtractionFolder.isEmpty() &&
        !m_services.files.isFolder(sImbeddedZIPs_ExtractionFolder))
        return Result::failure(
            u"Invalid extraction folder specified for extracting imbedded zip files."_s);
    return listInner(0, 1, budget);
}

Result CZIP::listArchive(const std::shared_ptr<ByteSource>& source, CZIPFile& file, Budget& budget)
{
    const auto directory = ZipDirectory::open(source, m_code);
    if (!directory)
        return directory.error();
    const std::vector<ZipEntry>& entries = (*directory)->entries();
    file.bytes = source->size();
    file.varZIPItems.reserve(qsizetype(entries.size()));
    for (const ZipEntry& entry : entries) {
        const CZIPFileItem& item =
            file.varZIPItems.emplace_back(itemOf(entry, int(file.varZIPItems.size()) + 1));
        file.lngTotal_SizeCompressed += entry.packed;
        file.boolHasImbeddedZIPs = file.boolHasImbeddedZIPs || isImbeddedZip(item);
    }
    file.lngTotal_SizeUncompressed = (*directory)->unpacked().bytes;
    file.lngTotal_Items = qint64(entries.size());
    file.reader = std::make_shared<ZipReader>(*directory, m_scratch);
    Result charged = charge(file, (*directory)->unpacked(), budget);
    if (charged && boolPasswords_Ask)
        unlock(file);
    return charged;
}

/// The known passwords, then those that are given when asked for, until nothing is shut any more;
/// without an answer, what still is stays so.
void CZIP::unlock(const CZIPFile& file)
{
    ArchiveReader& reader = *file.reader;
    bool some = false;
    const auto opens = [&](const QString& password) {
        const QByteArray utf8 = password.toUtf8();
        const ResultOf<QByteArray> ansi = m_services.ansi.encode(password);
        status(u"Trying the password of '"_s + file.sFilename + u"'..."_s);
        const auto goOn = [this, all = reader.locked().size()](qint64 done) {
            progress(done, all);
            return !cancelled();
        };
        const bool opened = reader.tryPassword(utf8, goOn) ||
                            (ansi && *ansi != utf8 && reader.tryPassword(*ansi, goOn));
        some = some || opened;
        return opened;
    };
    for (const QString& password : std::as_const(sarrayPasswords)) {
        if (reader.locked().isEmpty())
            return;
        opens(password);
    }
    bool again = false;
    while (!reader.locked().isEmpty() && !cancelled()) {
        const std::optional<QString> password =
            m_services.prompts.askText(passwordQuestion(file, reader.locked(), some, again));
        if (!password || password->isEmpty())
            return;
        again = !opens(*password);
        if (!again)
            sarrayPasswords += *password;
    }
}

/// As far as the headers tell, even when they end in a failure.
Result CZIP::listRar(CZIPFile& file, Budget& budget)
{
    m_unrar = std::make_unique<CUnRAR>(m_services);
    m_unrar->sRARFile = sZIPFile;
    const bool whole = m_unrar->List();
    const CTKUnrar& unrar = m_unrar->unrar();
    const RarDirectory& directory = *unrar.directory();
    UnpackTally tally;
    for (const RarEntry& entry : directory.entries()) {
        const CZIPFileItem& item =
            file.varZIPItems.emplace_back(itemOfRar(entry, int(file.varZIPItems.size()) + 1));
        file.lngTotal_SizeCompressed += entry.packed;
        file.boolHasImbeddedZIPs = file.boolHasImbeddedZIPs || isImbeddedZip(item);
        // In a solid archive likeness to earlier entries makes them small.
        if (entry.kind == EntryKind::File)
            tally.add(
                item.lngSize_Uncompressed, entry.packed, !directory.solid() && entry.copyOf < 0);
    }
    file.lngTotal_SizeUncompressed = tally.bytes;
    file.lngTotal_Items = file.varZIPItems.size();
    file.bytes = budget.sourceBytes = directory.bytes();
    file.reader = unrar.reader();
    m_code = int(unrar.code());
    if (!directory.volumes().empty()) {
        file.sFilename = winpath::name(directory.name());
        file.sFolder = winpath::parent(directory.name());
    }
    Result charged = charge(file, tally, budget);
    return whole ? charged : unrar.result();
}

/// Counts the listed archive against what one listing may take.
Result CZIP::charge(const CZIPFile& file, const UnpackTally& unpacked, Budget& budget)
{
    budget.entries += file.lngTotal_Items;
    budget.unpacked.add(unpacked);
    m_count = int(budget.entries);
    if (budget.entries > ziplimits::entries)
        return Result::failure(
            u"The archive '"_s + sZIPFile +
            u"' is refused: with the archives inside it it holds more entries than the limit of 200,000."_s);
    if (const QString excess = budget.unpacked.excess(budget.sourceBytes); !excess.isEmpty())
        return Result::failure(u"The archive '"_s + sZIPFile +
                               u"' is refused: with the archives inside it it "_s + excess);
    return Result::success();
}

Result CZIP::listInner(int parent, int depth, Budget& budget)
{
    // Looked up anew each time: the collection grows while inner archives are listed.
    const qsizetype items = colZIPContents[size_t(parent)].varZIPItems.size();
    for (int key = 1; key <= items; ++key) {
        const CZIPFile& outer = colZIPContents[size_t(parent)];
        const CZIPFileItem item = *outer.item(key);
        if (!isImbeddedZip(item))
            continue;
        if (cancelled())
            return Result::failure(u"Extraction aborted."_s, ErrorKind::Declined);
        if (depth > ziplimits::nesting)
            return Result::failure(
                u"The archive '"_s + sZIPFile +
                u"' is refused: it holds archives inside archives deeper than the limit of 8."_s);
        status(u"Processing '"_s + item.sFilename + u"'..."_s);
        CZIPFile inner;
        bool damaged = false;
        if (Result r = openInner(parent, key, inner, budget, damaged); !r) {
            if (!damaged)
                return r;
            m_remarks += u"The inner archive '"_s + item.fullName() + u"' of '"_s +
                         colZIPContents[size_t(parent)].fullName() +
                         u"' stays an ordinary file. "_s + r.text;
            continue;
        }
        const int index = int(colZIPContents.size());
        const bool deeper = inner.boolHasImbeddedZIPs;
        colZIPContents.push_back(std::move(inner));
        if (!deeper)
            continue;
        if (Result r = listInner(index, depth + 1, budget); !r)
            return r;
    }
    return Result::success();
}

/// \a damaged: the fault lies in the inner archive alone.
Result CZIP::openInner(int parent, int key, CZIPFile& inner, Budget& budget, bool& damaged)
{
    const CZIPFile& outer = colZIPContents[size_t(parent)];
    const CZIPFileItem& item = *outer.item(key);
    inner.sFilename = item.sFilename;
    inner.sFilename_Parent = outer.sFilename;
    inner.sFolder_Parent = outer.sFolder;
    inner.inParent = {parent, key};
    if (item.dteDate.isValid())
        inner.dteDateTime = QDateTime(item.dteDate, item.dteTime);
    inner.nestedPath = outer.nestedPath + item.fullName() + u'\\';
    const ResultOf<std::shared_ptr<ByteSource>> source =
        unpackInner(inner.inParent, inner, budget, damaged);
    if (!source)
        return source.error();
    Result listed = listArchive(*source, inner, budget);
    damaged = !listed && listed.kind == ErrorKind::Surroundings;
    return listed;
}

ResultOf<std::shared_ptr<ByteSource>>
CZIP::unpackInner(const EntryRef& ref, CZIPFile& inner, Budget& budget, bool& damaged)
{
    const CZIPFile& outer = colZIPContents[size_t(ref.archive)];
    const CZIPFileItem& item = *outer.item(ref.key);
    if (sImbeddedZIPs_ExtractionFolder.isEmpty()) {
        inner.sFolder = outer.fullName() + u'\\' + item.sPath;
        SourceBuilder builder(inner.fullName(), budget.memoryBytes);
        const Result read = outer.reader->read(
            ref.key, [&](QByteArrayView piece) { return builder.append(piece); });
        ResultOf<std::shared_ptr<ByteSource>> source = builder.finish();
        if (source && builder.inMemory())
            budget.memoryBytes -= (*source)->size();
        damaged = source && !read;
        return damaged ? ResultOf<std::shared_ptr<ByteSource>>(read) : source;
    }
    if (Result name = winpath::checkComponent(item.sFilename); !name) {
        damaged = true;
        return name;
    }
    const QString base = winpath::asFolder(sImbeddedZIPs_ExtractionFolder);
    const ResultOf<QString> folder = TempFolder(m_services.gate, base).makeUnique(base, u"IMB"_s);
    if (!folder)
        return folder.error();
    inner.sFolder = *folder;
    if (Result placed = place(ref, inner.fullName(), m_unsynced, damaged); !placed) {
        (void)m_unsynced.removeEmptyFolder(*folder);
        return placed;
    }
    return openFileSource(m_services.files, inner.fullName());
}

Result CZIP::test()
{
    if (sZIPFile.isEmpty())
        return Result::failure(u"Nothing specified for testing."_s);
    const Result listed = list();
    if (m_unrar)
        return testRar(listed);
    if (!listed) {
        const QString code = u"  Zip error code: "_s + QString::number(m_code);
        if (m_code == ZIP_ER_OPEN || m_code == ZIP_ER_READ || m_code == ZIP_ER_OK)
            return Result::failure(u"Zip file could not be tested."_s + u' ' + listed.text + code,
                                   listed.kind);
        return Result::failure(u"Zip file is NOT OK. "_s + listed.text + code, listed.kind);
    }
    m_count = 0;
    Faults faults;
    faults.number = m_remarks.size();
    if (faults.number > 0)
        faults.first =
            m_remarks.first() + u"  Zip warning code: "_s + QString::number(ZIP_ER_INCONS);
    for (const CZIPFile& file : colZIPContents) {
        if (Result r = testEntries(file, faults); !r)
            return r;
    }
    if (faults.number == 0)
        return Result::success(u"Zip file is OK."_s);
    return Result::failure(u"Zip file is NOT OK. "_s + faults.text());
}

QString CZIP::Faults::text() const
{
    return number > 1 ? first + u" ("_s + QString::number(number - 1) +
                            u" more of its entries cannot be read.)"_s
                      : first;
}

/// Fails when it could not go on; an entry that is not sound is one of the faults.
Result CZIP::testEntries(const CZIPFile& file, Faults& faults)
{
    for (const CZIPFileItem& item : file.varZIPItems) {
        if (item.kind != EntryKind::File)
            continue;
        if (cancelled())
            return Result::failure(u"Zip file could not be tested."_s, ErrorKind::Declined);
        status(u"Testing '"_s + item.sFilename + u"'..."_s);
        ++m_count;
        const Result read = file.reader->read(item.lngKey, [](QByteArrayView) { return true; });
        if (read)
            continue;
        const int code = file.reader->lastCode();
        if (code == ZIP_ER_READ)
            return Result::failure(u"An error occurred while testing zip file contents."_s + u' ' +
                                       read.text,
                                   ErrorKind::Surroundings);
        const bool warning = code == ZIP_ER_ENCRNOTSUPP || code == ZIP_ER_COMPNOTSUPP;
        if (faults.number++ == 0)
            faults.first = read.text +
                           (warning ? u"  Zip warning code: "_s : u"  Zip error code: "_s) +
                           QString::number(code);
    }
    return Result::success();
}

/// The archive itself by its own means, ZIP archives in it as ever.
Result CZIP::testRar(const Result& listed)
{
    CTKUnrar& unrar = m_unrar->unrar();
    unrar.status = varStatusBar;
    const bool sound = m_unrar->Test();
    m_count = unrar.files();
    Faults faults;
    if (unrar.result().kind == ErrorKind::Declined)
        return unrar.result();
    if (!sound) {
        faults.number = qMax(unrar.failures(), 1);
        // The table's text stands in the sentence already when the archive could not be opened.
        const QString& why = unrar.result().text;
        faults.first =
            why.contains(unrar.strLastErrorMsg) ? why : unrar.strLastErrorMsg + u": "_s + why;
    } else if (!listed || !m_remarks.isEmpty()) {
        faults.number = 1;
        faults.first = listed ? m_remarks.first() : listed.text;
    }
    for (const CZIPFile& file : colZIPContents) {
        if (file.inParent.isNull())
            continue;
        if (Result r = testEntries(file, faults); !r)
            return r;
    }
    if (faults.number == 0)
        return Result::success(u"RAR file is OK."_s);
    return Result::failure(u"RAR file is NOT OK."_s + u' ' + faults.text(),
                           listed ? ErrorKind::Failed : listed.kind);
}

} // namespace vt
