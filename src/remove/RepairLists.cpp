#include "remove/RepairLists.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/CSound.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Files that are looked at below one folder that the user names.
constexpr qsizetype namedFolderLimit = 500'000;

std::unique_ptr<AliasConfig> makePart(Context& context, PartKind kind)
{
    const ConfigAccess access(context.services);
    if (kind == PartKind::Panel)
        return std::make_unique<CPanel>(access, context.services.files, context.global);
    return std::make_unique<CSound>(access, context.services.files, context.global);
}

class PartRepairable final : public Repairable
{
public:
    PartRepairable(std::unique_ptr<AliasConfig> part, Connection* database)
        : m_part(std::move(part)), m_database(database)
    {}

    QString title() const override { return m_part->Title_Get(); }

    QString file() const override { return m_part->sConfigurationFile; }

    bool suppressed() override { return m_database && m_part->SuppressionStatus_Load(*m_database); }

    QStringList verify() override { return m_part->Verify().problems; }

    RepairResult repair() override { return m_part->Repair(); }

private:
    std::unique_ptr<AliasConfig> m_part;
    Connection* m_database;
};

class AreaRepairable final : public Repairable
{
public:
    AreaRepairable(Context& context, const CSceneryCfgMgr& library, const CSceneryCfgItem& area)
        : m_context(context), m_library(library), m_area(area)
    {}

    QString title() const override { return m_area.sTitle; }

    QString file() const override { return m_library.folderOf(m_area); }

    bool suppressed() override { return false; }

    QStringList verify() override
    {
        const auto problem = m_library.SceneryCfg_Validate(m_area, m_context.services.files);
        // The simulator's folder for single files is empty until the user puts some there.
        const bool emptyByDesign = problem == CSceneryCfgMgr::NoSceneryFiles &&
                                   winpath::same(file(), m_context.global.sceneryAddonFolder);
        if (problem == CSceneryCfgMgr::NoProblem || problem == CSceneryCfgMgr::LayerDisabled ||
            emptyByDesign)
            return {};
        return {u"- "_s + CSceneryCfgMgr::problemText(
                              problem, m_area.boolActive, m_context.global.names.simShort)};
    }

    RepairResult repair() override
    {
        RepairResult result;
        result.left = verify();
        result.left.append(
            u"- Nothing can bring scenery files back but installing them again; or remove the area from the scenery library."_s);
        return result;
    }

private:
    Context& m_context;
    const CSceneryCfgMgr& m_library;
    const CSceneryCfgItem& m_area;
};

bool isPartFile(const QString& path, PartKind kind)
{
    const QString name = winpath::name(path);
    if (kind == PartKind::Panel)
        return equalNoCase(name, u"panel.cfg");
    return equalNoCase(name, u"sound.cfg") || equalNoCase(name, u"soundai.cfg");
}

QString folderStem(PartKind kind)
{
    return kind == PartKind::Panel ? u"panel"_s : u"sound"_s;
}

void addBelow(const Files& files, const QString& folder, PartKind kind, QStringList& found)
{
    for (const QString& file : files.filesBelow(folder, namedFolderLimit)) {
        if (isPartFile(file, kind))
            found.append(folder + file);
    }
}

QStringList installedParts(const Files& files, const GlobalRecord& global, PartKind kind)
{
    QStringList found;
    for (const QString& top : global.aircraftTypeFolders) {
        for (const QString& aircraft : files.names(top)) {
            const QString folder = top + aircraft + u'\\';
            for (const QString& name : files.names(folder)) {
                if (startsWithNoCase(name, folderStem(kind)))
                    addBelow(files, folder + name + u'\\', kind, found);
            }
        }
    }
    return found;
}

} // namespace

ResultOf<QStringList>
partFiles(const Files& files, const GlobalRecord& global, PartKind kind, const QStringList& paths)
{
    QStringList found = paths.isEmpty() ? installedParts(files, global, kind) : QStringList();
    for (const QString& path : paths) {
        const qsizetype before = found.size();
        if (files.isFile(path))
            found.append(files.spelled(path));
        else if (files.isFolder(path))
            addBelow(files, files.spelled(winpath::asFolder(path)), kind, found);
        if (found.size() == before)
            return Result::failure(u"There is no "_s + folderStem(kind) +
                                   u" configuration file at or below '"_s + path + u"'."_s);
    }
    std::sort(found.begin(), found.end(), [](const QString& a, const QString& b) {
        return compareNoCase(a, b) < 0;
    });
    found.erase(std::unique(found.begin(), found.end(), equalNoCase), found.end());
    return found;
}

BulkList partList(Context& context, Connection* database, PartKind kind, const QStringList& files)
{
    const bool panels = kind == PartKind::Panel;
    return {panels ? u"panels"_s : u"sounds"_s,
            panels ? u"Panels"_s : u"Sounds"_s,
            files.size(),
            [&context, database, kind, files](qsizetype index) -> std::unique_ptr<Repairable> {
                std::unique_ptr<AliasConfig> part = makePart(context, kind);
                part->Load(files.at(index));
                return std::make_unique<PartRepairable>(std::move(part), database);
            }};
}

BulkList sceneryList(Context& context, const CSceneryCfgMgr& library, const QList<qsizetype>& areas)
{
    return {u"scenery areas"_s,
            u"Scenery Areas"_s,
            areas.size(),
            [&context, &library, areas](qsizetype index) -> std::unique_ptr<Repairable> {
                return std::make_unique<AreaRepairable>(
                    context, library, library.areas().at(areas.at(index)));
            }};
}

} // namespace vt
