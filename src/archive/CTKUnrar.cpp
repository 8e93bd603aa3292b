#include "archive/CTKUnrar.h"

#include "archive/RarNames.h"
#include "platform/WinPath.h"

#include <QStringDecoder>

using namespace Qt::StringLiterals;

namespace vt {

using MTKUnrar::Mode;

namespace {

constexpr quint32 dosReadOnly = 0x01;
constexpr quint32 dosHidden = 0x02;
constexpr quint32 dosSystem = 0x04;
constexpr quint32 dosVolumeLabel = 0x08;
constexpr quint32 dosArchive = 0x20;
constexpr quint32 unixOwnerWrites = 0200;

} // namespace

CZIPFileItem itemOfRar(const RarEntry& entry, int key)
{
    CZIPFileItem item;
    item.lngKey = key;
    item.sFilename = entry.name;
    item.sPath = entry.folder;
    if (entry.modified.isValid()) {
        item.dteDate = entry.modified.date();
        item.dteTime = entry.modified.time();
    }
    item.lngSize_Uncompressed = qMax<qint64>(entry.size, 0);
    item.lngSize_Compressed = entry.packed;
    if (entry.packed < entry.size)
        item.intRatio = qint16(qRound(100 - (entry.packed / double(entry.size)) * 100));
    item.boolMethodStore = entry.stored;
    item.boolEncrypted = entry.encrypted;
    item.boolAttribute_Directory = entry.kind == EntryKind::Folder;
    const auto dos = [&](quint32 bit) {
        return entry.dosAttributes && (entry.attributes & bit) != 0;
    };
    item.boolAttribute_Archive = dos(dosArchive);
    item.boolAttribute_Hidden = dos(dosHidden);
    item.boolAttribute_System = dos(dosSystem);
    item.boolAttribute_VolumeLabel = dos(dosVolumeLabel);
    item.boolAttribute_ReadOnly =
        entry.dosAttributes ? dos(dosReadOnly) : (entry.attributes & unixOwnerWrites) == 0;
    item.kind = entry.kind;
    item.crc32 = entry.crc;
    item.crc32Known = entry.hasCrc && !entry.encrypted;
    return item;
}

QDateTime CTKUnrar::RARFileTimeToVBDate(quint32 packed)
{
    return rarnames::stampOf(packed);
}

qint64 CTKUnrar::LongToUnsigned(qint32 size)
{
    return qint64(quint32(size));
}

bool CTKUnrar::ListRarFiles(const QString& path)
{
    return run(Mode::List, path, {}, nullptr);
}

bool CTKUnrar::TestRarFiles(const QString& path)
{
    return run(Mode::Test, path, {}, nullptr);
}

bool CTKUnrar::ExtractRarFiles(const QString& path, const QString& folder, FileActions& actions)
{
    return run(Mode::Extract, path, folder, &actions);
}

bool CTKUnrar::fail(RarCode code, const QString& text, const Result& why)
{
    if (!m_result)
        return false; // the first one counts
    m_code = code;
    strLastErrorMsg = text;
    m_result = why;
    return false;
}

bool CTKUnrar::open(const QString& path)
{
    m_directory = RarDirectory::open(m_services.files, path);
    m_reader = std::make_shared<RarReader>(m_directory);
    const Result& opened = m_directory->result();
    if (opened)
        return true;
    const RarCode code = m_directory->code();
    // What is wrong with a later volume is found out while the archive is gone through.
    const bool later = !m_directory->missingVolume().isEmpty() ||
                       (code == RarCode::BadArchive && m_directory->volumes().size() > 1);
    const QString text =
        later ? MTKUnrar::processingText(code, !sPassword.isEmpty()) : MTKUnrar::openingText(code);
    if (m_directory->volumes().empty() && !later)
        return fail(code, text, opened);
    return fail(code,
                text,
                Result::failure(u"The archive '"_s + path + u"' cannot be read ("_s + text +
                                    u"): "_s + opened.text,
                                opened.kind));
}

bool CTKUnrar::run(Mode mode, const QString& path, const QString& folder, FileActions* actions)
{
    m_result = Result::success();
    m_code = RarCode::Ok;
    strLastErrorMsg.clear();
    m_files = 0;
    m_failures = 0;
    if (mode != Mode::List && mode != Mode::Test && mode != Mode::Extract)
        return fail(RarCode::UnknownFormat,
                    u"Unknown extraction mode"_s,
                    Result::failure(u"Unknown extraction mode"_s));
    if (mode == Mode::Extract && (folder.isEmpty() || !actions))
        return fail(
            RarCode::Create,
            u"Bad extraction data"_s,
            Result::failure(u"The archive '"_s + path +
                            u"' was not extracted (Bad extraction data): no folder was named."_s));
    if (mode == Mode::Extract) {
        if (const Result made = actions->makeFolder(winpath::asFolder(folder)); !made)
            return fail(RarCode::Create,
                        u"Bad extraction path"_s,
                        Result::failure(u"The archive '"_s + path +
                                            u"' was not extracted (Bad extraction path). "_s +
                                            made.text,
                                        made.kind));
    }
    if (!open(path) && mode != Mode::Test)
        return false;
    if (mode == Mode::List)
        return true;
    const auto total = qint64(m_directory->entries().size());
    for (qint64 i = 0; i < total; ++i) {
        if (status) {
            if (status->cancelled())
                return fail(RarCode::Ok,
                            {},
                            Result::failure(u"'"_s + path + u"' was not gone through to its end."_s,
                                            ErrorKind::Declined));
            if (intProgressSteps > 0)
                status->progress(i * intProgressSteps / total, intProgressSteps);
            else
                status->progress(i, total);
        }
        if (!process(mode, int(i) + 1, folder, actions)) {
            ++m_failures;
            if (mode == Mode::Extract)
                return false;
        }
    }
    if (status)
        status->progress(total, total);
    return m_result.ok;
}

bool CTKUnrar::process(Mode mode, int key, const QString& folder, FileActions* actions)
{
    const CZIPFileItem item = itemOfRar(m_directory->entries()[size_t(key - 1)], key);
    if (item.kind != EntryKind::File && !(mode == Mode::Extract && item.kind == EntryKind::Folder))
        return true;
    if (status)
        status->text(u"Primary"_s,
                     (mode == Mode::Test ? u"Testing '"_s : u"Extracting '"_s) + item.sFilename +
                         u"'..."_s);
    if (mode == Mode::Extract)
        return extract(key, item, folder, *actions);
    ++m_files;
    const Result read = m_reader->read(key, [](QByteArrayView) { return true; });
    if (read)
        return true;
    return fail(
        m_reader->code(), MTKUnrar::processingText(m_reader->code(), !sPassword.isEmpty()), read);
}

bool CTKUnrar::extract(int key,
                       const CZIPFileItem& item,
                       const QString& folder,
                       FileActions& actions)
{
    const auto failed = [&](RarCode code, const Result& why) {
        return fail(code, MTKUnrar::processingText(code, !sPassword.isEmpty()), why);
    };
    if (const Result safe = winpath::checkRelative(item.fullName()); !safe)
        return failed(RarCode::Create, safe);
    const QString target = winpath::join(winpath::asFolder(folder), item.fullName());
    if (item.kind == EntryKind::Folder) {
        const Result made = actions.makeFolder(target + u'\\');
        return made || failed(RarCode::Create, made);
    }
    Result read;
    Content content;
    content.size = item.lngSize_Uncompressed;
    content.modifiedNs = item.modifiedNs();
    content.transfer = [&](const Content::Sink& sink) { return read = m_reader->read(key, sink); };
    const bool taken = m_services.files.isFolder(target);
    const ResultOf<Fingerprint> placed = actions.place(target, content);
    if (placed) {
        ++m_files;
        return true;
    }
    if (!read)
        return failed(m_reader->code(), read);
    const RarCode code = taken                                  ? RarCode::Relocation
                         : placed.kind == ErrorKind::DiskFull   ? RarCode::Write
                         : placed.kind == ErrorKind::DiskFailed ? RarCode::Close
                                                                : RarCode::Create;
    return failed(code, placed.error());
}

bool CTKUnrar::Comment(QString& text, qint64 limit)
{
    text.clear();
    m_result = Result::success();
    strLastErrorMsg.clear();
    m_code = RarCode::Ok;
    if (!m_directory || !m_directory->comment().present)
        return false;
    const RarDirectory::Comment& comment = m_directory->comment();
    ResultOf<QByteArray> bytes = Result::failure(u"It is packed in an old way."_s);
    RarCode code = RarCode::UnknownFormat;
    if (!comment.old) {
        bytes = m_reader->readAlone(comment.entry, limit);
        code = m_reader->code();
    }
    if (!bytes)
        return fail(code, MTKUnrar::commentText(code), bytes.error());
    QByteArray plain = *bytes;
    if (const qsizetype zero = comment.utf16 ? -1 : plain.indexOf('\0'); zero >= 0)
        plain.truncate(zero);
    QStringDecoder decoder(comment.utf16 ? QStringDecoder::Utf16LE : QStringDecoder::Utf8);
    text = decoder(plain);
    if (decoder.hasError())
        text = QString::fromLatin1(plain);
    return true;
}

} // namespace vt
