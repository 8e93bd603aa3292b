#include "remove/RepairLists.h"

#include "catalogue/Catalogue.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/CSound.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Files that are looked at below one folder that the user names.
constexpr qsizetype namedFolderLimit = 500'000;

std::unique_ptr<AliasConfig> makePart(Context& context, ConfigFileKind kind)
{
    const ConfigAccess access(context.services);
    if (kind == ConfigFileKind::Panel)
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

/// The variations of many aircraft.cfg. A repair of one may rename sections of the same file; later
/// ones are opened under their new names.
class AircraftObjects
{
public:
    AircraftObjects(Context& context, Connection* database, const QStringList& files)
        : m_context(context), m_database(database), m_access(context.services),
          m_checks(m_access, context.services.files, context.global)
    {
        for (const QString& file : files) {
            const QStringList sections = m_checks.configuration(file).sections;
            // A file without any is told under the name that its first section should have.
            for (const QString& section :
                 sections.isEmpty() ? QStringList{u"fltsim.0"_s} : sections)
                m_objects.append({file, section});
        }
    }

    [[nodiscard]] qsizetype count() const { return m_objects.size(); }

    [[nodiscard]] std::unique_ptr<Repairable> open(qsizetype index);

private:
    friend class AircraftRepairable;

    struct Object
    {
        QString file;
        QString section;
    };

    Context& m_context;
    Connection* m_database;
    ConfigAccess m_access;
    AircraftChecks m_checks;
    QList<Object> m_objects;
    aircraftsections::Renames m_renamed; ///< in m_renamedFile
    QString m_renamedFile;
};

class AircraftRepairable final : public Repairable
{
public:
    AircraftRepairable(AircraftObjects& all, const QString& file, const QString& section)
        : m_all(all), m_aircraft(all.m_access)
    {
        m_aircraft.sConfigurationFile = file;
        m_aircraft.sSection = section;
        m_title = all.m_checks.configuration(file).profile.value(section, u"title", QString()).text;
        if (m_title.isEmpty())
            m_title = winpath::name(winpath::parent(file)) + u" ["_s + section + u']';
    }

    QString title() const override { return m_title; }

    QString file() const override { return m_aircraft.sConfigurationFile; }

    bool suppressed() override
    {
        return m_all.m_database && m_aircraft.SuppressionStatus_Load(*m_all.m_database);
    }

    QStringList verify() override { return m_aircraft.Verify(m_all.m_checks); }

    RepairResult repair() override
    {
        CAircraft::RepairOutcome outcome = m_aircraft.Repair(m_all.m_checks);
        if (outcome.renamed.isEmpty())
            return outcome;
        m_all.m_renamedFile = file();
        m_all.m_renamed = outcome.renamed;
        Result followed = m_aircraft.AircraftMasterSourceTextFile_Reorder_ProcessPictures(
            outcome.renamed, m_all.m_context.global);
        if (followed && m_all.m_database)
            followed =
                m_aircraft.Variants_Renamed_UpdateDatabase(*m_all.m_database, outcome.renamed);
        if (!followed) {
            outcome.left.append(followed.text);
            outcome.code = RepairResult::PartlyRepaired;
        }
        return outcome;
    }

private:
    AircraftObjects& m_all;
    CAircraft m_aircraft;
    QString m_title;
};

std::unique_ptr<Repairable> AircraftObjects::open(qsizetype index)
{
    const Object& object = m_objects.at(index);
    QString section = object.section;
    if (winpath::same(object.file, m_renamedFile))
        aircraftsections::follow(section, m_renamed);
    return std::make_unique<AircraftRepairable>(*this, object.file, section);
}

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

bool isFileOf(const QString& path, ConfigFileKind kind)
{
    const QString name = winpath::name(path);
    switch (kind) {
    case ConfigFileKind::Aircraft:
        return equalNoCase(name, u"aircraft.cfg");
    case ConfigFileKind::Panel:
        return equalNoCase(name, u"panel.cfg");
    case ConfigFileKind::Sound:
        return equalNoCase(name, u"sound.cfg") || equalNoCase(name, u"soundai.cfg");
    }
    Q_UNREACHABLE();
}

catalogue::ConfigKind catalogueKind(ConfigFileKind kind)
{
    switch (kind) {
    case ConfigFileKind::Aircraft:
        return catalogue::ConfigKind::Aircraft;
    case ConfigFileKind::Panel:
        return catalogue::ConfigKind::Panel;
    case ConfigFileKind::Sound:
        return catalogue::ConfigKind::Sound;
    }
    Q_UNREACHABLE();
}

QString nounOf(ConfigFileKind kind)
{
    switch (kind) {
    case ConfigFileKind::Aircraft:
        return u"aircraft"_s;
    case ConfigFileKind::Panel:
        return u"panel"_s;
    case ConfigFileKind::Sound:
        return u"sound"_s;
    }
    Q_UNREACHABLE();
}

void addBelow(const Files& files, const QString& folder, ConfigFileKind kind, QStringList& found)
{
    for (const QString& file : files.filesBelow(folder, namedFolderLimit)) {
        if (isFileOf(file, kind))
            found.append(folder + file);
    }
}

QStringList installedFiles(const Catalogue& catalogue, ConfigFileKind kind)
{
    QStringList found;
    for (const ConfigIndex config : catalogue.configs(catalogueKind(kind)))
        found.append(catalogue.file(config));
    return found;
}

} // namespace

ResultOf<QStringList> filesToVerify(const Files& files,
                                    const Catalogue& catalogue,
                                    ConfigFileKind kind,
                                    const QStringList& paths)
{
    QStringList found = paths.isEmpty() ? installedFiles(catalogue, kind) : QStringList();
    for (const QString& path : paths) {
        const qsizetype before = found.size();
        if (files.isFile(path))
            found.append(files.spelled(path));
        else if (files.isFolder(path))
            addBelow(files, files.spelled(winpath::asFolder(path)), kind, found);
        if (found.size() == before)
            return Result::failure(u"There is no "_s + nounOf(kind) +
                                   u" configuration file at or below '"_s + path + u"'."_s);
    }
    std::sort(found.begin(), found.end(), [](const QString& a, const QString& b) {
        return compareNoCase(a, b) < 0;
    });
    found.erase(std::unique(found.begin(), found.end(), equalNoCase), found.end());
    return found;
}

BulkList
repairList(Context& context, Connection* database, ConfigFileKind kind, const QStringList& files)
{
    if (kind == ConfigFileKind::Aircraft) {
        const auto objects = std::make_shared<AircraftObjects>(context, database, files);
        return {u"aircraft"_s, u"Aircraft"_s, objects->count(), [objects](qsizetype index) {
                    return objects->open(index);
                }};
    }
    const bool panels = kind == ConfigFileKind::Panel;
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
