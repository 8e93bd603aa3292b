// The only way in which the system writes. Every path is a Windows text and must lie below one of
// the gate's roots (platform/Gate.h). Two forms: DirectActions writes at once, each file whole or
// not at all; FileTransaction stages, and carries everything out together
// (platform/FileTransaction.h).
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <functional>
#include <optional>

namespace vt {

/// Where the bytes of a new file come from.
struct Content
{
    /// Takes the next piece; false ends the transfer (the writer has failed).
    using Sink = std::function<bool(QByteArrayView)>;

    qint64 size = -1;       ///< expected bytes, -1 when unknown; more or fewer is a failure
    qint64 modifiedNs = -1; ///< time given to the new file, -1 for now
    int mode = -1;          ///< exact permissions, -1: those of a file that it replaces
    bool writable = false;  ///< the new file may be written even if the old one was read-only
    /// Hands every byte to the sink in order; its failure is the placing's failure.
    std::function<Result(const Sink&)> transfer;

    [[nodiscard]] static Content ofBytes(QByteArray bytes);
};

/// What identifies a file's content; taken while it is written. Of a link: its own size and time,
/// and the hash of where it leads.
struct Fingerprint
{
    qint64 size = -1;
    qint64 modifiedNs = -1;
    QByteArray xxh3; ///< 16 bytes, XXH3-128 in canonical (big-endian) form

    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

/// Of an entry as it lies there, without a hash; size -1 for nothing.
[[nodiscard]] inline Fingerprint printOf(const std::optional<FileInfo>& entry)
{
    return entry ? Fingerprint{entry->size, entry->modifiedNs, {}} : Fingerprint{};
}

class FileActions
{
public:
    virtual ~FileActions() = default;

    /// The file as it is or will be after what was already asked of this object.
    [[nodiscard]] virtual ResultOf<QByteArray> read(const QString& path, qint64 limit) = 0;
    [[nodiscard]] virtual std::optional<FileInfo> info(const QString& path) = 0;

    /// The whole file becomes \a bytes (made when missing, missing folders too). An existing file
    /// keeps its spelling and permissions; a link is replaced, never followed. On failure the old
    /// file stands untouched (but for a disk that does not confirm its renaming, which is told).
    virtual Result replace(const QString& path, const QByteArray& bytes) = 0;
    /// A new file (or one that takes the place of an old one), streamed.
    virtual ResultOf<Fingerprint> place(const QString& path, const Content& content) = 0;
    /// A second standing copy of an existing file: a hard link where possible, else a copy with the
    /// same times and permissions. Fails when \a to exists.
    virtual Result keep(const QString& from, const QString& to) = 0;
    /// As \a from is now, over \a to if that exists; always a file of its own.
    virtual Result copy(const QString& from, const QString& to) = 0;
    /// A file that is already gone is a success.
    virtual Result remove(const QString& path) = 0;
    /// The folder and its missing parents.
    virtual Result makeFolder(const QString& folder) = 0;
    /// A folder that is not empty or missing is left alone, which is a success.
    virtual Result removeEmptyFolder(const QString& folder) = 0;
};

} // namespace vt
