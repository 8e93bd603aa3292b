#include "platform/Hash.h"

#include "platform/HostFile.h"

#include <cerrno>
#include <fcntl.h>
#include <libdeflate.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>
#include <xxhash.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr size_t hashPiece = 1024UL * 1024;

QByteArray canonicalBytes(XXH128_hash_t hash)
{
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, hash);
    return QByteArray(reinterpret_cast<const char*>(canonical.digest), sizeof canonical.digest);
}

Result unreadable(QStringView path, int error)
{
    return Result::failure(u"'"_s + path.toString() + u"' could not be read: "_s +
                           hostfile::errorText(error));
}

} // namespace

struct Xxh3::State
{
    State() : xxh(XXH3_createState()) { XXH3_128bits_reset(xxh); }

    ~State() { XXH3_freeState(xxh); }

    State(const State&) = delete;
    State& operator=(const State&) = delete;

    XXH3_state_t* xxh;
};

Xxh3::Xxh3() : m_state(std::make_unique<State>()) {}

Xxh3::~Xxh3() = default;
Xxh3::Xxh3(Xxh3&&) noexcept = default;
Xxh3& Xxh3::operator=(Xxh3&&) noexcept = default;

void Xxh3::add(QByteArrayView piece)
{
    XXH3_128bits_update(m_state->xxh, piece.data(), size_t(piece.size()));
}

QByteArray Xxh3::result() const
{
    return canonicalBytes(XXH3_128bits_digest(m_state->xxh));
}

void Xxh3::reset()
{
    XXH3_128bits_reset(m_state->xxh);
}

QByteArray xxh3(QByteArrayView bytes)
{
    return canonicalBytes(XXH3_128bits(bytes.data(), size_t(bytes.size())));
}

ResultOf<Fingerprint> fingerprint(const Files& files, QStringView path)
{
    const QByteArray host = files.hostPath(path);
    const hostfile::Descriptor file(
        open(host.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (!file.valid() && errno == ELOOP)
        return hostfile::fingerprint(host);
    struct stat status = {};
    if (!file.valid() || fstat(file.get(), &status) != 0)
        return unreadable(path, errno);
    if (!S_ISREG(status.st_mode))
        return Result::failure(u"'"_s + path.toString() + u"' is not a file."_s);
    Xxh3 hash;
    Fingerprint out;
    out.size = 0;
    std::vector<char> piece(
        size_t(qBound(qint64(4096), qint64(status.st_size) + 1, qint64(hashPiece))));
    while (true) {
        const ssize_t n = read(file.get(), piece.data(), piece.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            return unreadable(path, errno);
        if (n == 0)
            break;
        hash.add({piece.data(), n});
        out.size += n;
    }
    out.modifiedNs = qint64(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    out.xxh3 = hash.result();
    return out;
}

quint32 crc32(QByteArrayView bytes, quint32 before)
{
    return libdeflate_crc32(before, bytes.data(), size_t(bytes.size()));
}

} // namespace vt
