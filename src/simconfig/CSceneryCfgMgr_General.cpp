// The scenery library's section "[GENERAL]": values about the scenery world as a whole.
#include "platform/Text.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

QString generalSection()
{
    return u"GENERAL"_s;
}

} // namespace

/// Texts may hold what looks like a comment and are taken whole.
std::optional<QString> CSceneryCfgMgr::generalValue(const QString& key, bool raw) const
{
    for (const Block& block : m_blocks) {
        if (block.kind != BlockKind::General)
            continue;
        LineArray own(m_access.ansi);
        own.lines = linesOf(block);
        if (std::optional<QString> value = ini::INI_Entry_Get(own, generalSection(), key, raw))
            return value;
    }
    return std::nullopt;
}

std::optional<QString> CSceneryCfgMgr::General_Get(const QString& key) const
{
    return generalValue(key, false);
}

Result CSceneryCfgMgr::General_Set(const QString& key, const QString& value)
{
    LineArray all = lines();
    if (Result set = ini::INI_Entry_Set(all, generalSection(), key, value); !set)
        return set;
    parse(all.joined());
    return Result::success();
}

CSceneryCfgMgr::SceneryWorld CSceneryCfgMgr::General_World() const
{
    return {generalValue(u"Title"_s, true).value_or(QString()),
            generalValue(u"Description"_s, true).value_or(QString()),
            equalNoCase(General_Get(u"Clean_on_Exit"_s).value_or(QString()), u"TRUE")};
}

Result CSceneryCfgMgr::General_SetWorld(const SceneryWorld& world)
{
    if (const EditCheck check = checkGeneral(world.sTitle, world.sDescription);
        !check.error.isEmpty())
        return Result::failure(check.error);
    const SceneryWorld now = General_World();
    LineArray all = lines();
    const auto set = [&](bool differs, const QString& key, const QString& value) {
        return differs ? ini::INI_Entry_Set(all, generalSection(), key, value, true)
                       : Result::success();
    };
    for (const Result& done : {set(world.sTitle != now.sTitle, u"Title"_s, world.sTitle.trimmed()),
                               set(world.sDescription != now.sDescription,
                                   u"Description"_s,
                                   world.sDescription.trimmed()),
                               set(world.boolClean_on_Exit != now.boolClean_on_Exit,
                                   u"Clean_on_Exit"_s,
                                   sceneryFlagText(world.boolClean_on_Exit))}) {
        if (!done)
            return done;
    }
    if (world != now)
        parse(all.joined());
    return Result::success();
}

} // namespace vt
