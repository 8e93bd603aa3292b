#include "archive/RarDirectory.h"

#include "archive/RarHeaders.h"
#include "archive/RarNames.h"
#include "archive/ZipDirectory.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr size_t mostVolumes = 500;

} // namespace

std::shared_ptr<const RarDirectory> RarDirectory::open(const Files& files, const QString& path)
{
    auto directory = std::make_shared<RarDirectory>();
    directory->openVolumes(files, path);
    return directory;
}

std::shared_ptr<const RarDirectory> RarDirectory::open(std::shared_ptr<ByteSource> one)
{
    auto directory = std::make_shared<RarDirectory>();
    directory->m_name = one->name();
    directory->m_volumes.push_back(std::move(one));
    directory->run(nullptr, {});
    return directory;
}

void RarDirectory::openVolumes(const Files& files, const QString& path)
{
    m_name = path;
    const auto source = openFileSource(files, path);
    if (!source) {
        m_code = RarCode::Open;
        m_result = source.error();
        return;
    }
    m_volumes.push_back(*source);
    run(&files, path);
}

void RarDirectory::run(const Files* files, const QString& path)
{
    QString current = path;
    bool restarted = false;
    for (;;) {
        bool more = false;
        bool numbered = false;
        bool first = true;
        const bool read = readVolume(more, numbered, first);
        const QString beginning = rarnames::firstVolume(current, numbered);
        if (files && !restarted && !first && !winpath::same(beginning, current)) {
            // A later volume was named: from the first one on, whatever this one lacks.
            restarted = true;
            m_result = Result::success();
            m_code = RarCode::Ok;
            m_entries.clear();
            m_copies.clear();
            m_volumes.clear();
            m_name = current = beginning;
            if (!openVolume(*files, current, u"its first volume"_s))
                break;
            continue;
        }
        if (!read || !more)
            break;
        if (!files) {
            fail(RarCode::Open, u"it goes on in another volume."_s);
            break;
        }
        if (m_volumes.size() >= mostVolumes) {
            fail(RarCode::Open, u"it has more volumes than the limit of 500."_s, ErrorKind::Failed);
            break;
        }
        current = rarnames::nextVolume(current, numbered);
        if (!openVolume(*files, current, u"its volume"_s))
            break;
    }
    resolveCopies();
}

bool RarDirectory::openVolume(const Files& files, const QString& path, const QString& missing)
{
    const auto source = openFileSource(files, path);
    if (source) {
        m_volumes.push_back(*source);
        return true;
    }
    m_missing = path;
    fail(RarCode::Open,
         missing + u" '"_s + path + u"' is missing: put it beside the others and try again."_s);
    return false;
}

/// The last of m_volumes.
bool RarDirectory::readVolume(bool& more, bool& numbered, bool& first)
{
    const ByteSource& source = *m_volumes.back();
    const int volume = int(m_volumes.size()) - 1;
    const rarsignature::Found found = rarsignature::find(source);
    if (found.format == rarsignature::Format::None || (volume > 0 && found.format != m_format)) {
        fail(RarCode::BadArchive,
             volume > 0 ? u"'"_s + source.name() + u"' is none of its volumes."_s
                        : u"it does not begin as one does."_s);
        return false;
    }
    m_format = found.format;
    std::unique_ptr<Reader> reader;
    if (m_format == rarsignature::Format::Rar4)
        reader = std::make_unique<Reader4>(*this, volume);
    else
        reader = std::make_unique<Reader5>(*this, volume);
    const bool read = reader->read(found.at + found.bytes);
    more = reader->moreVolumes;
    numbered = reader->numberedNames;
    first = reader->first;
    return read;
}

void RarDirectory::resolveCopies()
{
    if (m_copies.empty())
        return;
    QHash<QString, int> byName;
    for (size_t i = 0; i < m_entries.size(); ++i)
        byName.insert(m_entries[i].fullName(), int(i));
    for (const auto& [index, name] : m_copies) {
        RarEntry& entry = m_entries[size_t(index)];
        const int target = byName.value(name, -1);
        // Only backwards, so that no ring can be made.
        if (target < 0 || target >= index || m_entries[size_t(target)].kind != EntryKind::File) {
            entry.complete = false;
            continue;
        }
        const RarEntry& other = m_entries[size_t(target)];
        entry.copyOf = other.copyOf >= 0 ? other.copyOf : target;
        entry.size = other.size;
        entry.crc = other.crc;
        entry.hasCrc = other.hasCrc;
        entry.blake2sp = other.blake2sp;
    }
}

void RarDirectory::fail(RarCode code, const QString& why, ErrorKind kind)
{
    if (!m_result)
        return;
    m_code = code;
    m_result = Result::failure(why, kind);
}

qint64 RarDirectory::bytes() const
{
    qint64 all = 0;
    for (const auto& volume : m_volumes)
        all += volume->size();
    return all;
}

RarDirectory::Reader::Reader(RarDirectory& directory, int volume)
    : m_d(directory), m_source(*directory.m_volumes[size_t(volume)]), m_volume(volume)
{}

bool RarDirectory::Reader::take(qint64 at, qint64 bytes, QByteArray& to)
{
    if (at < 0 || bytes < 0 || at > m_source.size() - bytes)
        return truncated();
    to.resize(bytes);
    if (const Result r = m_source.read(at, to.data(), bytes); !r) {
        m_d.fail(RarCode::Read, r.text);
        return false;
    }
    return true;
}

bool RarDirectory::Reader::truncated()
{
    m_d.fail(RarCode::BadData,
             u"'"_s + m_source.name() + u"' is truncated: it ends before its last header."_s);
    return false;
}

bool RarDirectory::Reader::damaged(const QString& why)
{
    m_d.fail(RarCode::BadData, u"'"_s + m_source.name() + u"' is damaged: "_s + why);
    return false;
}

bool RarDirectory::Reader::encryptedHeaders()
{
    m_d.fail(
        RarCode::BadData,
        u"the names in it are encrypted: unpack it with its password elsewhere, and take the folder."_s);
    return false;
}

bool RarDirectory::Reader::checkSizes(const RarEntry& entry)
{
    constexpr qint64 most = qint64(1) << 62;
    if (entry.size <= most && entry.packed >= 0 && entry.packed <= most)
        return true;
    return damaged(u"the entry '"_s + entry.fullName() + u"' announces an impossible size."_s);
}

bool RarDirectory::Reader::add(RarEntry entry, bool splitBefore, bool splitAfter)
{
    std::vector<RarEntry>& all = m_d.m_entries;
    if (splitBefore && !all.empty() && !all.back().complete &&
        all.back().fullName() == entry.fullName()) {
        RarEntry& whole = all.back();
        whole.packed += entry.packed;
        whole.parts.insert(whole.parts.end(), entry.parts.begin(), entry.parts.end());
        whole.crc = entry.crc; // the last part tells that of the whole
        whole.hasCrc = entry.hasCrc;
        whole.blake2sp = entry.blake2sp;
        if (entry.size >= 0)
            whole.size = entry.size;
        whole.complete = !splitAfter;
        return true;
    }
    if (qint64(all.size()) >= ziplimits::entries) {
        m_d.fail(RarCode::BadData,
                 u"it holds more entries than the limit of 200,000."_s,
                 ErrorKind::Failed);
        return false;
    }
    entry.complete = !splitBefore && !splitAfter;
    all.push_back(std::move(entry));
    return true;
}

} // namespace vt
