// The one gate of every write: (root, relative path). Roots are folders that the system may change;
// everything else is refused. Names are checked (winpath::checkRelative), components are resolved
// without regard to case, and nothing is followed that leads outside the root.
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <functional>

namespace vt {

/// Which folder a path is relative to. Stored in the journal: never renumber.
enum class RootId : quint8
{
    None = 0,
    Simulator = 1,
    AllUsersConfig = 2, ///< all-users data of the simulator ("...\Microsoft\FSX\")
    UserConfig = 3,     ///< the user's data of the simulator
    Documents = 4,      ///< the simulator's folder in the user's documents
    Program = 5,        ///< the program folder
    Tools = 6,          ///< an outside tool's folder
    Chosen = 7,         ///< what the user named for this operation; never stored
};

/// A file or folder below a root; \a relative has "\" separators and no trailing one.
struct Place
{
    RootId root = RootId::None;
    QString relative;

    friend bool operator==(const Place&, const Place&) = default;
};

class Gate
{
public:
    /// \a files must outlive this.
    explicit Gate(Files& files) : m_files(files) {}

    /// A later folder for the same id replaces the earlier one, except for Tools and Chosen, of
    /// which there may be several.
    void setRoot(RootId id, const QString& folder);
    [[nodiscard]] QString rootFolder(RootId id) const;

    /// The root that covers \a path and the rest below it, or the refusal.
    [[nodiscard]] ResultOf<Place> place(QStringView path) const;
    /// Back to a Windows text.
    [[nodiscard]] QString path(const Place& place) const;
    /// Where a checked path lies or would lie on the host: existing components in their own
    /// spelling, new ones as given. Refuses a link that leads out of the root.
    [[nodiscard]] ResultOf<QByteArray> hostPath(const Place& place) const;
    /// place() and hostPath() together.
    [[nodiscard]] ResultOf<QByteArray> hostPath(QStringView path) const;

    [[nodiscard]] Files& files() const { return m_files; }

    /// What tells this root's folder on the host from every other (a hash of where it lies, 32
    /// hexadecimal digits); empty when the folder does not exist.
    [[nodiscard]] QString identity(RootId id) const;

    /// Asked before each action that changes the disk ("place", "rename", "commit", ...): 0, or the
    /// errno that the action is to fail with. Set by tests alone, which also end the process in it.
    std::function<int(const char* action, const QByteArray& host)> faultHook;

    [[nodiscard]] int fault(const char* action, const QByteArray& host) const
    {
        return faultHook ? faultHook(action, host) : 0;
    }

private:
    struct Root
    {
        RootId id;
        QString folder;
    };

    const Root* covering(QStringView path) const;

    Files& m_files;
    QList<Root> m_roots;
    mutable QSet<QByteArray> m_insideFolders; ///< host folders already seen to lie inside
};

} // namespace vt
