// The commands on add-ons that the user selected, in a list or in a wizard: questions, progress,
// what is said at the end. Knows no window.
#pragma once

#include "addondb/AddonEdit.h"
#include "remove/AddonRemoval.h"
#include "session/Session.h"
#include "shell/Results.h"

#include <QList>
#include <QString>

namespace vt {

/// One of several add-ons that are removed or copied together.
struct AddonToRemove
{
    qint64 key = 0;
    QString name;
    RemovalOptions options;
};

/// The end of a command on one or more add-ons.
struct AddonCommandEnd
{
    bool begun = false;    ///< false: the user did not want it, or nothing was selected
    bool good = true;      ///< every add-on whole
    QString text;          ///< "The addons were removed."; what a person is told at the end
    QString caption;       ///< of the window that shows the results
    Results results;       ///< of all add-ons together
    QList<qint64> changed; ///< keys whose records changed
    QList<qint64> failed;  ///< keys of add-ons that are recorded still and not as was wished
};

/// "Are you sure you want to remove these addons?", with their names.
[[nodiscard]] Prompt confirmAddonRemoval(const QList<AddonToRemove>& addons);
/// "The addon was removed.", "At least one addon was not copied properly."
[[nodiscard]] QString removalEndText(bool copied, bool several, bool good);

class CAddonPresentationManager
{
public:
    /// Must outlive this, and be ready for writing. A simulator is needed by the commands alone.
    explicit CAddonPresentationManager(Session& session) : m_session(session) {}

    /// Asks (when the setting "Confirm" says so), then removes or copies one after the other, each
    /// as its options say; one that fails does not stop the others, a cancellation does. A failure
    /// is announced, a success is the last text of the status panel "Primary".
    AddonCommandEnd Addons_Remove(const QList<AddonToRemove>& addons);
    /// Asks, then installs each again from the File Cabinet or the source that it came from.
    AddonCommandEnd Addons_Reinstall(const QList<qint64>& keys);
    /// Compares every file with its record; changes nothing. The results have the groups "Missing",
    /// "Changed" and "As Recorded".
    AddonCommandEnd Addons_Validate(const QList<qint64>& keys);
    /// Changes what is recorded about an add-on; a refusal is announced: false.
    bool Addon_Change(qint64 key, const AddonChanges& changes);

private:
    void validateOne(qint64 key, AddonCommandEnd& end);
    [[nodiscard]] QString nameOf(qint64 key);
    void say(const QString& text);
    void tellPlace(const QString& doing, qsizetype position, qsizetype count);
    void announceEnd(const QString& caption, const AddonCommandEnd& end, const QStringList& causes);

    Session& m_session;
};

} // namespace vt
