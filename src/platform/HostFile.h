// Files and folders of the host, below the gate: writing whole, linking, syncing, deleting trees.
// Only platform/ includes this; callers have passed the gate already.
#pragma once

#include "platform/FileActions.h"
#include "platform/Result.h"

#include <QByteArray>

#include <functional>

namespace vt::hostfile {

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

/// Opens a folder for use with the ...at calls.
[[nodiscard]] Descriptor openFolder(const QByteArray& host);

/// Creates \a name in a folder (it must not exist), writes the content and sets its time. \a sync:
/// fsync before closing. On failure the file is gone again. \a mode as for open().
[[nodiscard]] ResultOf<Fingerprint>
create(int folder, const QByteArray& name, const Content& content, bool sync, unsigned mode = 0644);

/// The folder with its missing parents; \a made is called for each folder made, outermost first.
[[nodiscard]] Result makeFolders(const QByteArray& host,
                                 const std::function<void(const QByteArray&)>& made = {});

/// A copy with the same time and permissions; \a to must not exist.
[[nodiscard]] Result copyFile(const QByteArray& from, const QByteArray& to, bool sync);
/// A hard link where the file systems allow, else a copy.
[[nodiscard]] Result linkOrCopy(const QByteArray& from, const QByteArray& to);

/// Deletes a folder with everything in it, following no links. Missing is a success.
[[nodiscard]] Result removeTree(const QByteArray& host);

/// fsync of a folder; failures are those of the file system and ignored.
void syncFolder(const QByteArray& host);
/// syncfs of the file system that holds \a host.
[[nodiscard]] Result syncFileSystem(const QByteArray& host);

/// Bytes of an open or named file as content; the file is opened when the transfer begins.
[[nodiscard]] Content contentOf(const QByteArray& host);

/// Size, time and hash of a file, read in pieces.
[[nodiscard]] ResultOf<Fingerprint> fingerprint(const QByteArray& host);

} // namespace vt::hostfile
