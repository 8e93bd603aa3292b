// vantrel-unpack: unpacks RAR archives from standard input to standard output, one request after
// another (Wire.h). A program of its own because a crafted archive may keep a library busy for
// ever, take all memory, or end in a fault: it limits itself first, writes no file, and whoever
// started it ends it when nothing more comes.
//
// Exit status: 0 the input ended; 1 the pipe failed or its limits could not be set.
#include "guarded/Limits.h"
#include "unpack/Wire.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <unarr.h>
#include <unistd.h>
#include <vector>

using namespace vt::unpack;

namespace {

/// The largest model (256 MB) and window (64 MB) of either library, and room beside them.
constexpr rlim_t memoryLimit = 768UL * 1024 * 1024;

/// False at the end of the input.
bool get(void* to, std::size_t bytes)
{
    for (auto* at = static_cast<char*>(to); bytes > 0;) {
        const ssize_t n = read(STDIN_FILENO, at, bytes);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        at += n;
        bytes -= std::size_t(n);
    }
    return true;
}

void put(const void* from, std::size_t bytes)
{
    for (const auto* at = static_cast<const char*>(from); bytes > 0;) {
        const ssize_t n = write(STDOUT_FILENO, at, bytes);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            _exit(1);
        at += n;
        bytes -= std::size_t(n);
    }
}

void end(Outcome outcome, std::string text = {})
{
    text.resize(std::min<std::size_t>(text.size(), textLimit));
    const std::uint32_t none = 0;
    const Ended ended{outcome, std::uint32_t(text.size())};
    put(&none, sizeof none);
    put(&ended, sizeof ended);
    put(text.data(), text.size());
}

/// The bytes of one request's archive that are not read yet.
class Input
{
public:
    explicit Input(std::uint64_t bytes) : m_left(bytes) {}

    /// Up to a piece of them; 0 at their end.
    std::size_t next(char* to)
    {
        const auto n = std::size_t(std::min<std::uint64_t>(m_left, pieceBytes));
        if (n > 0 && !get(to, n))
            _exit(1);
        m_left -= n;
        return n;
    }

private:
    std::uint64_t m_left;
};

/// One of the libraries at one archive.
class Unpacker
{
public:
    virtual ~Unpacker() = default;
    virtual bool toNext(std::uint64_t size) = 0;
    /// Bytes got, 0 at the entry's end, less when it is damaged.
    virtual long long data(char* to, std::size_t bytes) = 0;
    /// Whether nothing follows the entry's announced bytes.
    virtual bool atEnd() = 0;
    [[nodiscard]] virtual std::string problem() const = 0;
};

class ByLibarchive final : public Unpacker
{
public:
    explicit ByLibarchive(Input& input)
        : m_input(input), m_buffer(std::make_unique<char[]>(pieceBytes)),
          m_archive(archive_read_new())
    {
        archive_read_support_format_rar(m_archive);
        archive_read_support_format_rar5(m_archive);
        m_open =
            archive_read_open(m_archive, this, nullptr, &ByLibarchive::give, nullptr) == ARCHIVE_OK;
    }

    ~ByLibarchive() override { archive_read_free(m_archive); }

    ByLibarchive(const ByLibarchive&) = delete;
    ByLibarchive& operator=(const ByLibarchive&) = delete;

    bool toNext(std::uint64_t) override
    {
        archive_entry* header = nullptr;
        return m_open && archive_read_next_header(m_archive, &header) >= ARCHIVE_WARN;
    }

    long long data(char* to, std::size_t bytes) override
    {
        return archive_read_data(m_archive, to, bytes);
    }

    bool atEnd() override
    {
        char more = 0;
        return archive_read_data(m_archive, &more, 1) == 0;
    }

    [[nodiscard]] std::string problem() const override
    {
        const char* text = archive_error_string(m_archive);
        return text ? text : "";
    }

private:
    static la_ssize_t give(archive*, void* self, const void** bytes)
    {
        auto& my = *static_cast<ByLibarchive*>(self);
        *bytes = my.m_buffer.get();
        return la_ssize_t(my.m_input.next(my.m_buffer.get()));
    }

    Input& m_input;
    std::unique_ptr<char[]> m_buffer;
    archive* m_archive;
    bool m_open = false;
};

class ByUnarr final : public Unpacker
{
public:
    ByUnarr(Input& input, std::uint64_t bytes) : m_bytes(bytes)
    {
        for (std::size_t at = 0, n = 1; n > 0; at += n)
            n = input.next(m_bytes.data() + at);
        m_stream = bytes > 0
                       ? ar_open_memory(m_bytes.data(), m_bytes.size())
                       : ar_open_file(("/proc/self/fd/" + std::to_string(archiveFile)).c_str());
        m_archive = m_stream ? ar_open_rar_archive(m_stream) : nullptr;
    }

    ~ByUnarr() override
    {
        if (m_archive)
            ar_close_archive(m_archive);
        if (m_stream)
            ar_close(m_stream);
    }

    ByUnarr(const ByUnarr&) = delete;
    ByUnarr& operator=(const ByUnarr&) = delete;

    bool toNext(std::uint64_t size) override
    {
        m_left = size;
        return m_archive && ar_parse_entry(m_archive) && ar_entry_get_size(m_archive) == size;
    }

    long long data(char* to, std::size_t bytes) override
    {
        const auto n = std::size_t(std::min<std::uint64_t>(m_left, bytes));
        if (!ar_entry_uncompress(m_archive, to, n))
            return -1;
        m_left -= n;
        return static_cast<long long>(n);
    }

    bool atEnd() override { return true; }

    [[nodiscard]] std::string problem() const override { return {}; }

private:
    std::vector<char> m_bytes;
    ar_stream* m_stream = nullptr;
    ar_archive* m_archive = nullptr;
    std::uint64_t m_left = 0;
};

/// Exactly as many bytes as announced, or it ended with a failure.
bool transfer(Unpacker& unpacker, std::uint64_t size)
{
    static const auto buffer = std::make_unique<char[]>(pieceBytes);
    if (!unpacker.toNext(size)) {
        end(Outcome::Damaged, unpacker.problem());
        return false;
    }
    for (std::uint64_t left = size; left > 0;) {
        const long long n =
            unpacker.data(buffer.get(), std::size_t(std::min<std::uint64_t>(left, pieceBytes)));
        if (n <= 0) {
            end(Outcome::Damaged, n < 0 ? unpacker.problem() : "its data end too early");
            return false;
        }
        const auto piece = std::uint32_t(n);
        put(&piece, sizeof piece);
        put(buffer.get(), piece);
        left -= piece;
    }
    if (!unpacker.atEnd()) {
        end(Outcome::Damaged, "it is longer than it announces");
        return false;
    }
    end(Outcome::Ok);
    return true;
}

void answer(const Request& request, const std::vector<std::uint64_t>& sizes)
{
    Input input(request.bytes);
    try {
        const std::unique_ptr<Unpacker> unpacker =
            request.library == Library::Unarr
                ? std::unique_ptr<Unpacker>(std::make_unique<ByUnarr>(input, request.bytes))
                : std::make_unique<ByLibarchive>(input);
        for (const std::uint64_t size : sizes)
            if (!transfer(*unpacker, size))
                break;
    } catch (const std::bad_alloc&) {
        end(Outcome::NoMemory, "there is not enough memory");
    }
    const auto rest = std::make_unique<char[]>(pieceBytes);
    while (input.next(rest.get()) > 0) {
    }
}

} // namespace

int main()
{
    if (!vt::guarded::limitMyself(memoryLimit))
        return 1;
    Request request;
    while (get(&request, sizeof request)) {
        std::vector<std::uint64_t> sizes(request.entries);
        if (!get(sizes.data(), sizes.size() * sizeof(std::uint64_t)))
            return 1;
        answer(request, sizes);
    }
    return 0;
}
