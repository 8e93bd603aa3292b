#include "remove/forms/RemovalCommands.h"

#include "remove/forms/frmRemove_Wizard.h"

using namespace Qt::StringLiterals;

namespace vt {

void wireRemoval(frmControl& window, Session& session)
{
    const auto open = [&window, &session](const QList<qint64>& masterKeys) {
        ToolWindow* tool =
            window.openTool(u"remove"_s, u"Opening Remove An Addon..."_s, [&]() -> ToolWindow* {
                return new frmRemove_Wizard(session, window, masterKeys);
            });
        // One that was open already ticks these instead.
        if (auto* wizard = qobject_cast<frmRemove_Wizard*>(tool))
            wizard->tickAddons(masterKeys);
    };
    window.setCommand(u"mnuFile_RemoveAnAddon"_s, [open] { open({}); });
    window.hooks.removeAddons = open;
}

} // namespace vt
