#include "shell/CRecentItemGroup.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

const QByteArray utf8Mark = "\xEF\xBB\xBF";
const QString dateForm = u"yyyy-MM-dd HH:mm:ss"_s;

QString lineOf(const CRecentItem& item)
{
    return u'"' + item.sRecentItem + u"\",#"_s + item.dteDateAdded.toString(dateForm) + u'#';
}

/// Quotes inside the path are the path's: the last ones end it.
std::optional<CRecentItem> itemOf(const QString& line)
{
    const qsizetype end = line.lastIndexOf(u"\",#"_s);
    if (!line.startsWith(u'"') || end < 2 || !line.endsWith(u'#'))
        return std::nullopt;
    CRecentItem item;
    item.sRecentItem = line.sliced(1, end - 1);
    item.dteDateAdded = QDateTime::fromString(line.sliced(end + 3).chopped(1).trimmed(), dateForm);
    if (!item.dteDateAdded.isValid())
        return std::nullopt;
    return item;
}

bool isThere(const Files& files, const QString& path)
{
    if (path.endsWith(u'\\') || files.isFolder(path))
        return files.isFolder(path);
    return files.isFolder(winpath::parent(path));
}

} // namespace

bool CRecentItemGroup::Add(const QString& path, const QDateTime& now, qsizetype maximum)
{
    if (path.isEmpty() || path.contains(u'\n') || path.contains(u'\r') || Search(path))
        return false;
    if (maximum > 0)
        trim(maximum - 1);
    m_items.append({path, now.addMSecs(-now.time().msec())});
    return true;
}

bool CRecentItemGroup::AddExisting(const CRecentItem& item)
{
    if (Search(item.sRecentItem))
        return false;
    m_items.append(item);
    return true;
}

void CRecentItemGroup::Clear()
{
    m_items.clear();
    m_otherLines.clear();
}

bool CRecentItemGroup::Remove(const QString& path)
{
    return m_items.removeIf(
               [&](const CRecentItem& item) { return equalNoCase(item.sRecentItem, path); }) > 0;
}

void CRecentItemGroup::RemoveOldest()
{
    const auto oldest = std::min_element(
        m_items.cbegin(), m_items.cend(), [](const CRecentItem& a, const CRecentItem& b) {
            return a.dteDateAdded < b.dteDateAdded;
        });
    if (oldest != m_items.cend())
        m_items.erase(oldest);
}

void CRecentItemGroup::trim(qsizetype maximum)
{
    while (m_items.size() > qMax<qsizetype>(maximum, 0))
        RemoveOldest();
}

const CRecentItem* CRecentItemGroup::Search(const QString& path) const
{
    const auto found = std::find_if(m_items.cbegin(), m_items.cend(), [&](const CRecentItem& item) {
        return equalNoCase(item.sRecentItem, path);
    });
    return found == m_items.cend() ? nullptr : &*found;
}

void CRecentItemGroup::removeInvalid(const Files& files)
{
    m_items.removeIf([&](const CRecentItem& item) { return !isThere(files, item.sRecentItem); });
}

QByteArray CRecentItemGroup::toBytes(const AnsiCodec& ansi) const
{
    QString text;
    for (const CRecentItem& item : m_items)
        text += lineOf(item) + u"\r\n"_s;
    for (const QString& line : m_otherLines)
        text += line + u"\r\n"_s;
    const ResultOf<QByteArray> bytes = ansi.encode(text);
    return bytes ? *bytes : utf8Mark + text.toUtf8();
}

CRecentItemGroup CRecentItemGroup::fromBytes(const QByteArray& bytes, const AnsiCodec& ansi)
{
    const QString text = bytes.startsWith(utf8Mark)
                             ? QString::fromUtf8(bytes.sliced(utf8Mark.size()))
                             : ansi.decode(bytes);
    CRecentItemGroup group;
    for (QString line : text.split(u'\n')) {
        if (line.endsWith(u'\r'))
            line.chop(1);
        if (line.isEmpty())
            continue;
        if (const std::optional<CRecentItem> item = itemOf(line))
            (void)group.AddExisting(*item);
        else
            group.m_otherLines.append(line);
    }
    return group;
}

} // namespace vt
