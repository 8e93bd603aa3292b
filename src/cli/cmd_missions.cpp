// missions list: the missions below the simulator's Missions folder.
#include "cli/Command.h"
#include "simconfig/CMissionMgr.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

int listMissions(World& world, const Arguments&)
{
    if (const Result found = world.needSimulator(); !found)
        return world.fail(found);
    const CMissionsMetaGroup missions = CMissionMgr(world.context()).Missions_Get();
    JsonStream& out = world.out();
    out.beginArray();
    for (const CMissionGroup& mission : missions.colMissionGroups()) {
        out.beginObject();
        out.field(u"folder", mission.sFolder);
        out.field(u"category", mission.sCategory);
        out.field(u"flight", mission.sFlightFile);
        out.field(u"title", mission.sTitle);
        out.field(u"description", mission.sDescription);
        out.field(u"default", mission.boolDefault);
        out.field(u"files", mission.sarrayFiles.size());
        out.endObject();
        world.say((mission.boolDefault ? u"* "_s : u"  "_s) + mission.name() + u" ("_s +
                  mission.sFolder + u")"_s);
    }
    out.endArray();
    if (missions.colMissionGroups().empty())
        world.say(u"There are no missions below '"_s + world.context().global.missionsFolder +
                  u"'."_s);
    return Done;
}

} // namespace

std::vector<Command> missionCommands()
{
    return {{"missions list",
             "installed missions; those of the simulator itself have a *",
             {},
             {},
             listMissions}};
}

} // namespace vt::cli
