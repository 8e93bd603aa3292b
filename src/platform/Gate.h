// The one gate of every write: (root, relative path). Roots are folders that the system may change;
// everything else is refused. Names are checked (winpath::checkRelative), components are resolved
// without regard to case, and nothing is followed that leads outside the root, but for links of the
// user's own that were confirmed.
#pragma once

#include "platform/Files.h"
#include "platform/Result.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <concepts>
#include <functional>
#include <optional>

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
    Tools = 6,          ///< the traffic tools' folder
    Chosen = 7,         ///< what the user named for this operation; never stored
    AirportTools = 8,   ///< the airport editor's folder
};

/// A file or folder below a root; \a relative has "\" separators and no trailing one.
struct Place
{
    RootId root = RootId::None;
    QString relative;

    friend bool operator==(const Place&, const Place&) = default;
};

/// A link inside a root through which a path leaves it.
struct OuterLink
{
    QString link;   ///< full path, no trailing "\"
    QString target; ///< where it leads in the end, ends in "\"; empty: nowhere at present

    friend bool operator==(const OuterLink&, const OuterLink&) = default;
};

class Gate
{
public:
    /// \a files must outlive this.
    explicit Gate(Files& files) : m_files(files) {}

    /// A later folder for the same id replaces the earlier one, except for Chosen, of which there
    /// may be several.
    void setRoot(RootId id, const QString& folder);
    [[nodiscard]] QString rootFolder(RootId id) const;

    /// The root that covers \a path and the rest below it, or the refusal.
    [[nodiscard]] ResultOf<Place> place(QStringView path) const;
    /// Back to a Windows text.
    [[nodiscard]] QString path(const Place& place) const;
    /// Where a checked path lies or would lie on the host: existing components in their own
    /// spelling, new ones as given. Refuses what lies behind a link that leads out of the root and
    /// was not confirmed; the path itself may be such a link, which is then not to be followed.
    [[nodiscard]] ResultOf<QByteArray> hostPath(const Place& place) const;
    /// place() and hostPath() together.
    [[nodiscard]] ResultOf<QByteArray> hostPath(QStringView path) const;
    /// As hostPath(), for a folder that is to be entered.
    [[nodiscard]] ResultOf<QByteArray> hostFolder(QStringView folder) const;
    /// The first link on the way to \a folder, itself included, for which hostFolder() refuses it.
    [[nodiscard]] std::optional<OuterLink> outerLink(QStringView folder) const;

    [[nodiscard]] Files& files() const { return m_files; }

    /// What tells this root's folder on the host from every other (a hash of where it lies, 32
    /// hexadecimal digits); empty when the folder does not exist.
    [[nodiscard]] QString identity(RootId id) const;

    /// Whether the user confirmed that this link may be followed; unset: none.
    std::function<bool(const OuterLink&)> linkConfirmed;

    /// Called often while something long is written or waited for, where windows are to answer;
    /// unset: nobody waits for an answer.
    std::function<void()> breathing;

    void breathe() const
    {
        if (breathing)
            breathing();
    }

    /// Asked before each action that changes the disk ("place", "rename", "commit", ...): 0, or the
    /// errno that the action is to fail with. Set by tests alone, which also end the process in it.
    std::function<int(const char* action, const QByteArray& host)> faultHook;

    [[nodiscard]] int fault(const char* action, const QByteArray& host) const
    {
        return faultHook ? faultHook(action, host) : 0;
    }

    /// \a host makes the path when it is wanted.
    template <std::invocable Host>
    [[nodiscard]] int fault(const char* action, const Host& host) const
    {
        return faultHook ? faultHook(action, host()) : 0;
    }

private:
    struct Root
    {
        RootId id;
        QString folder;
    };

    const Root* covering(QStringView path) const;
    ResultOf<Place> placeAnew(QStringView path) const;
    std::optional<OuterLink>
    linkOut(const Root& root, QStringView folder, const QByteArray& host) const;

    Files& m_files;
    QList<Root> m_roots;
    /// By folder, with its trailing "\"; in the places it stays, but for the root itself.
    mutable QHash<QString, Place> m_placedFolders;
    mutable QString m_lastFolder; ///< as place() was last asked, with what is known of it
    mutable Place m_lastPlace;
    mutable QString m_lastPath; ///< the last file in a known folder, and where it lies
    mutable Place m_lastFound;
    mutable QSet<QByteArray> m_insideFolders;       ///< host folders already seen to lie inside
    mutable QHash<QString, QByteArray> m_realRoots; ///< where the roots lie, all links resolved
    mutable quint64 m_insideEpoch = 0;              ///< of the files, when both were seen
};

} // namespace vt
