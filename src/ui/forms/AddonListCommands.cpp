#include "ui/forms/AddonListCommands.h"

#include "ui/AddonLists.h"
#include "ui/forms/frmWorkWithAddons.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// One list for all entries: another entry is another filter.
frmWorkWithAddons* openAddonList(frmControl& window, Session& session, const QString& controlName)
{
    const auto choice = addonListOf(controlName);
    Q_ASSERT(choice);
    ToolWindow* open = window.openTool(u"addons"_s, choice->openingText, [&]() -> ToolWindow* {
        return new frmWorkWithAddons(session, window);
    });
    auto* list = qobject_cast<frmWorkWithAddons*>(open);
    if (list)
        list->showList(controlName);
    return list;
}

} // namespace

void wireAddonLists(frmControl& window, Session& session)
{
    const QStringList controls = addonListControls();
    for (const QString& control : controls)
        window.setCommand(
            control, [&window, &session, control] { openAddonList(window, session, control); });
    window.hooks.workWithAddons = [&window, &session](const QList<qint64>& masterKeys) {
        if (auto* list = openAddonList(window, session, u"mnuWorkWithAllAddons"_s))
            list->selectAddons(masterKeys);
    };
}

} // namespace vt
