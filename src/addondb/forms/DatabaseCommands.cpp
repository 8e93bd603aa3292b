#include "addondb/forms/DatabaseCommands.h"

#include "addondb/forms/frmAddon_History.h"
#include "addondb/forms/frmDatabase_Optimize.h"

using namespace Qt::StringLiterals;

namespace vt {

void wireDatabaseTools(frmControl& window, Session& session)
{
    window.setCommand(u"mnuAddonHistory"_s, [&window, &session] {
        window.openTool(u"history"_s, u"Opening Addon History..."_s, [&]() -> ToolWindow* {
            return new frmAddon_History(session, window);
        });
    });
    window.setCommand(u"mnuOptimizeDatabase"_s, [&window, &session] {
        frmDatabase_Optimize(session, window, &window).exec();
    });
}

} // namespace vt
