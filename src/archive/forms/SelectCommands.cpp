#include "archive/forms/SelectCommands.h"

#include "archive/forms/frmSelectFSO.h"

using namespace Qt::StringLiterals;

namespace vt {

void wireBrowseFolders(frmControl& window, Session& session)
{
    window.setCommand(u"mnuFile_FSO_Browse"_s, [&window, &session] {
        window.openTool(u"browse"_s, u"Opening Browse Folders..."_s, [&]() -> ToolWindow* {
            return new frmSelectFSO(session, &window, frmSelectFSO::Purpose::Browse);
        });
    });
}

} // namespace vt
