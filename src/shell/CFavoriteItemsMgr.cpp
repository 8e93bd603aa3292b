#include "shell/CFavoriteItemsMgr.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/CRecentItemsManager.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

QString CFavoriteItemsMgr::choosePrompt()
{
    return u"Select a favorite file or folder"_s;
}

CFavoriteItemsMgr::CFavoriteItemsMgr(Context& context)
    : sDataFile(u"FSO_FAV.FIL"_s), m_context(context)
{}

QList<CRecentItem> CFavoriteItemsMgr::sorted() const
{
    QList<CRecentItem> items = m_items.colRecentItems();
    std::stable_sort(items.begin(), items.end(), [](const CRecentItem& a, const CRecentItem& b) {
        const int order = compareNoCase(winpath::name(a.sRecentItem), winpath::name(b.sRecentItem));
        return (order != 0 ? order : compareNoCase(a.sRecentItem, b.sRecentItem)) < 0;
    });
    return items;
}

Result CFavoriteItemsMgr::Initialize()
{
    m_items.Clear();
    ResultOf<CRecentItemGroup> loaded = loadRecentItems(m_context, sDataFile);
    if (!loaded)
        return loaded.error();
    m_items = std::move(*loaded);
    return Result::success();
}

Result CFavoriteItemsMgr::Settings_Save()
{
    return saveRecentItems(m_context, sDataFile, m_items);
}

Result CFavoriteItemsMgr::saved(const QString& text)
{
    const Result done = Settings_Save();
    return done ? Result::success(text) : done;
}

Result CFavoriteItemsMgr::add(const QString& path)
{
    const bool added = m_items.Add(path, m_context.services.clock.now());
    return saved(u"Item was"_s + (added ? u" "_s : u" NOT "_s) + u"added."_s);
}

Result CFavoriteItemsMgr::remove(const QString& path)
{
    const bool removed = m_items.Remove(path);
    return saved(u"Item was"_s + (removed ? u" "_s : u" NOT "_s) + u"removed."_s);
}

Result CFavoriteItemsMgr::clearAll()
{
    m_items.Clear();
    return saved(u"All items were removed."_s);
}

Result CFavoriteItemsMgr::clearInvalid()
{
    m_items.removeInvalid(m_context.services.files);
    return saved(u"Invalid items were removed."_s);
}

} // namespace vt
