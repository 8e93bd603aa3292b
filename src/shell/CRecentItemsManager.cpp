#include "shell/CRecentItemsManager.h"

#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 listLimit = 16LL * 1024 * 1024;

} // namespace

ResultOf<CRecentItemGroup> loadRecentItems(Context& context, const QString& file)
{
    const QString path = context.global.settingsFolder + file;
    if (!context.services.files.exists(path))
        return CRecentItemGroup();
    const ResultOf<QByteArray> bytes = context.services.files.read(path, listLimit);
    if (!bytes)
        return bytes.error();
    return CRecentItemGroup::fromBytes(*bytes, context.services.ansi);
}

Result saveRecentItems(Context& context, const QString& file, const CRecentItemGroup& items)
{
    return context.services.actions.replace(context.global.settingsFolder + file,
                                            items.toBytes(context.services.ansi));
}

CRecentItemsManager::CRecentItemsManager(Context& context, Section frmHost)
    : sDataFile(u"ISF_SEL.RIL"_s), m_context(context), m_host(frmHost)
{}

qint32 CRecentItemsManager::MaximumItemsAllowed_Validate(qint32 value)
{
    qint32 chosen = colRecentItemsList_ValidValues.front();
    for (const int valid : colRecentItemsList_ValidValues) {
        if (valid <= value)
            chosen = valid;
    }
    return chosen;
}

Result CRecentItemsManager::Build()
{
    m_maximum = MaximumItemsAllowed_Validate(
        m_context.settings.layoutText(m_host, LayoutValue::RecentMaximumItems).toInt());
    return LoadFromDisk();
}

Result CRecentItemsManager::LoadFromDisk()
{
    ResultOf<CRecentItemGroup> loaded = loadRecentItems(m_context, sDataFile);
    if (!loaded)
        return loaded.error();
    m_items = std::move(*loaded);
    m_items.trim(m_maximum);
    return Result::success();
}

Result CRecentItemsManager::SaveToDisk()
{
    return saveRecentItems(m_context, sDataFile, m_items);
}

Result CRecentItemsManager::Add(const QString& path)
{
    (void)m_items.Add(path, m_context.services.clock.now(), m_maximum);
    return SaveToDisk();
}

Result CRecentItemsManager::ClearAll()
{
    m_items.Clear();
    const Result saved = SaveToDisk();
    return saved ? Result::success(u"All items were removed."_s) : saved;
}

Result CRecentItemsManager::ClearInvalid()
{
    m_items.removeInvalid(m_context.services.files);
    const Result saved = SaveToDisk();
    return saved ? Result::success(u"Invalid items were removed."_s) : saved;
}

Result CRecentItemsManager::cboRecentItemsList_ItemsToRemember_Validate(const QString& typed)
{
    m_maximum = MaximumItemsAllowed_Validate(typed.trimmed().toInt());
    if (!m_context.settings.setLayoutText(
            m_host, LayoutValue::RecentMaximumItems, QString::number(m_maximum)))
        return Result::failure(u"The number of recent items to remember could not be stored."_s);
    m_items.trim(m_maximum);
    return SaveToDisk();
}

} // namespace vt
