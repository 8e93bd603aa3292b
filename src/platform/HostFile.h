// Files and folders of the host, below the gate: writing whole, linking, syncing, deleting trees.
// Only platform/ includes this; callers have passed the gate already.
#pragma once

#include "platform/FileActions.h"
#include "platform/Result.h"

#include <QByteArray>

#include <functional>
#include <optional>

namespace vt::hostfile {

// A parameter "fault" is the error that the system call is to meet instead of being made, 0 for
// none: tests set it through the gate.

/// Called often during long work and long waits; empty where nobody is to be answered meanwhile.
using Breath = std::function<void()>;

/// An owned file descriptor, closed with its owner.
class Descriptor
{
public:
    Descriptor() = default;

    explicit Descriptor(int fd) : m_fd(fd) {}

    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] int get() const { return m_fd; }

    [[nodiscard]] bool valid() const { return m_fd >= 0; }

    void reset();

private:
    int m_fd = -1;
};

/// "No space left on device" and its like as the end of a sentence.
[[nodiscard]] QString errorText(int error);

/// What could not be done, and why: the end of a sentence, as most failures below are, or a
/// sentence of its own.
[[nodiscard]] QString withCause(const QString& what, const QString& why);

/// "'<path>' could not be <doing>: <why>"; a full disk is told apart.
[[nodiscard]] Result refused(const QString& path, QStringView doing, int error);

/// Opens a folder for use with the ...at calls.
[[nodiscard]] Descriptor openFolder(const QByteArray& host);

/// Creates \a name in a folder (it must not exist), writes the content and sets its time. \a sync:
/// fsync before closing. On failure the file is gone again. \a mode as for open(), where the
/// content does not say.
[[nodiscard]] ResultOf<Fingerprint> create(int folder,
                                           const QByteArray& name,
                                           const Content& content,
                                           bool sync,
                                           unsigned mode = 0644,
                                           const Breath& breath = {});

/// The folder with its missing parents; \a made is called for each folder made, outermost first.
[[nodiscard]] Result makeFolders(const QByteArray& host,
                                 const std::function<void(const QByteArray&)>& made = {});

enum class Links
{
    Keep,   ///< a link stands for itself
    Follow, ///< a link stands for what it leads to
};

/// A copy in a folder, with the same times and permissions; \a name must not exist there.
[[nodiscard]] ResultOf<Fingerprint>
copyTo(int folder, const QByteArray& name, const QByteArray& from, Links links, bool sync);
/// A hard link where the file systems allow, else a copy.
[[nodiscard]] Result
linkOrCopy(const QByteArray& from, const QByteArray& to, Links links, bool sync, int fault = 0);
/// Renames unless something has the new name: 0, or the error (EEXIST). Where the file system
/// cannot do both at once, a file gets its second name first and loses the old one then; an end of
/// the process may leave it with both.
[[nodiscard]] int
renameNew(int folder, const QByteArray& from, int toFolder, const QByteArray& to, int fault = 0);

/// Deletes a folder with everything in it, following no links. Missing is a success.
[[nodiscard]] Result removeTree(const QByteArray& host);

/// What is said when an fsync fails.
[[nodiscard]] Result notSynced(int error);
/// fsync of a folder, one that is gone counts as synced; so does every folder of a file system that
/// cannot sync folders.
[[nodiscard]] Result syncFolder(const QByteArray& host, int fault = 0);
[[nodiscard]] Result syncFolder(int folder, int fault = 0);
/// syncfs of the file system that holds the folder; with a \a breath a child makes the call, and
/// this process breathes until it has ended.
[[nodiscard]] Result
syncFileSystem(const QByteArray& host, int fault = 0, const Breath& breath = {});

/// Bytes of an open or named file as content; the file is opened when the transfer begins.
[[nodiscard]] Content contentOf(const QByteArray& host);

/// Size, time and hash of a file, read in pieces; of a link itself.
[[nodiscard]] ResultOf<Fingerprint> fingerprint(const QByteArray& host);

} // namespace vt::hostfile
