#include "shell/RecentFolders.h"

#include "platform/WinPath.h"
#include "shell/CRecentItemsManager.h"

using namespace Qt::StringLiterals;

namespace vt::recentfolders {

namespace {

/// "Install - Configure Panel" keeps its folders in "Install - Configure Panel.RIL".
QString fileOf(Section window)
{
    return winpath::safeName(sectionName(window)) + u".RIL"_s;
}

} // namespace

QStringList list(Context& context, Section window)
{
    const ResultOf<CRecentItemGroup> group = loadRecentItems(context, fileOf(window));
    QStringList folders;
    if (group) {
        for (const CRecentItem& item : group->colRecentItems())
            folders.prepend(item.sRecentItem);
    }
    return folders;
}

Result add(Context& context, Section window, const QString& folder)
{
    ResultOf<CRecentItemGroup> group = loadRecentItems(context, fileOf(window));
    if (!group)
        return group.error();
    group->Remove(folder); // it would keep its old place
    group->Add(folder, context.services.clock.now(), most);
    return saveRecentItems(context, fileOf(window), *group);
}

} // namespace vt::recentfolders
