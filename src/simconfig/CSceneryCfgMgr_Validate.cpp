// Checks of scenery areas: against the disk, and of what a user enters. Nothing here changes
// anything.
#include "platform/Files.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString areaNote(const CSceneryCfgItem& other, const QString& ending)
{
    return u"Note: scenery area "_s + QString::number(other.intArea) + u" (priority "_s +
           QString::number(other.intLayer) + u")"_s + ending;
}

} // namespace

CSceneryCfgMgr::Problem CSceneryCfgMgr::SceneryCfg_Validate(const CSceneryCfgItem& item,
                                                            const Files& files) const
{
    const QString folder = folderOf(item);
    if (folder.isEmpty() || !files.isFolder(folder))
        return FolderMissing;
    const QString scenery = folder + u"Scenery\\"_s;
    if (!files.isFolder(scenery))
        return SubfolderMissing;
    const QList<FileInfo> inside = files.list(scenery);
    const bool any = std::any_of(inside.cbegin(), inside.cend(), [](const FileInfo& file) {
        return !file.folder && endsWithNoCase(file.name, u".bgl");
    });
    if (!any)
        return NoSceneryFiles;
    return item.boolActive ? NoProblem : LayerDisabled;
}

QString CSceneryCfgMgr::problemText(int code, bool active, const QString& simulatorName)
{
    QString text;
    switch (code) {
    case NoProblem:
        return {};
    case FolderMissing:
        text = u"The scenery area folder does not exist."_s;
        break;
    case SubfolderMissing:
        text = u"The scenery area's 'Scenery' subfolder does not exist."_s;
        break;
    case NoSceneryFiles:
        text = u"The scenery area's 'Scenery' subfolder does not contain any scenery files."_s;
        break;
    case LayerDisabled:
        text = u"This scenery layer is disabled."_s;
        break;
    default:
        text = u"Unknown scenery area error. Error code = "_s + QString::number(code);
        break;
    }
    if (!active)
        text += u" It will not appear in "_s + simulatorName +
                u" until it is enabled in the Configuration tab."_s;
    return text;
}

QString CSceneryCfgMgr::SceneryCfg_Validate_Report(const CSceneryCfgItem& item,
                                                   const Files& files,
                                                   const QString& simulatorName) const
{
    const Problem problem = SceneryCfg_Validate(item, files);
    const QString body = problem == NoProblem
                             ? u"No scenery area configuration problems were detected."_s
                             : problemText(problem, item.boolActive, simulatorName);
    return u"Scenery Area Configuration Report"_s + u"\n\n"_s + body;
}

CSceneryCfgMgr::EditCheck CSceneryCfgMgr::checkArea(const CSceneryCfgItem& item,
                                                    qsizetype index,
                                                    int highestAllowedLayer,
                                                    const Files& files) const
{
    EditCheck check;
    if (item.sTitle.trimmed().isEmpty())
        check.error = u"Please provide a title for this scenery area."_s;
    else if (item.sLocal.trimmed().isEmpty())
        check.error = u"Please provide a location for this scenery area."_s;
    else if (item.intLayer < 1 || item.intLayer > highestAllowedLayer)
        check.error = u"Please specify layer value, a number between 1 and "_s +
                      QString::number(highestAllowedLayer) + u", for this scenery area."_s;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        if (i != index && !item.sTitle.trimmed().isEmpty() &&
            equalNoCase(m_items.at(i).sTitle, item.sTitle.trimmed()))
            check.notes.push_back(areaNote(m_items.at(i), u" also has this title."_s));
    }
    if (item.sLocal.trimmed().isEmpty())
        return check;
    if (!files.isFolder(folderOf(item)))
        check.notes.push_back(u"Note: scenery location does not exist."_s);
    for (const qsizetype other : areasOfFolder(item.sLocal)) {
        if (other != index)
            check.notes.push_back(areaNote(m_items.at(other), u" also covers this location."_s));
    }
    return check;
}

CSceneryCfgMgr::EditCheck CSceneryCfgMgr::checkGeneral(const QString& title,
                                                       const QString& description)
{
    EditCheck check;
    if (title.trimmed().isEmpty())
        check.error = u"Please provide a title for the scenery world."_s;
    else if (description.trimmed().isEmpty())
        check.error = u"Please provide a description for the scenery world."_s;
    return check;
}

} // namespace vt
