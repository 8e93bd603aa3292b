// panel set, sound set: let an aircraft use the panel or the sound of another one.
#include "cli/Command.h"
#include "cli/TypedFile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// Other variations of the same aircraft that use the same file.
qsizetype sharers(World& world,
                  const CAircraft& aircraft,
                  QString CAircraft::*configuration,
                  const QString& file)
{
    CAircraft other{ConfigAccess(world.services())};
    qsizetype count = 0;
    for (const QString& section : CAircraft::Headers_ReturnOnlyAircraftHeaders(
             other.Headers_LoadAll(aircraft.sConfigurationFile))) {
        if (!equalNoCase(section, aircraft.sSection) &&
            other.Load(aircraft.sConfigurationFile, section) &&
            winpath::same(other.*configuration, file))
            ++count;
    }
    return count;
}

int setPart(World& world,
            const Arguments& arguments,
            AliasConfig& part,
            aliastarget::Kind kind,
            QString CAircraft::*configuration)
{
    const QJsonObject refused{{u"ok"_s, false}};
    CAircraft aircraft{ConfigAccess(world.services())};
    const QString file = typedConfiguration(world, arguments.one(u"FILE"_s), u"aircraft.cfg"_s);
    const QString section = modRoutines_INI::INI_Section_NameStrip(arguments.one(u"SECTION"_s));
    const QString target = arguments.one(u"TARGET"_s);
    for (const QString& needed : {file, world.userPath(target)}) {
        // A target as in an alias need not be a place on the disk.
        const bool typed = needed == file || winpath::isAbsolute(target) || target.startsWith(u'/');
        if (typed && !world.services().files.exists(needed))
            return world.fail(
                Result::failure(u"'"_s + needed + u"' was not found."_s, ErrorKind::Surroundings),
                refused);
    }
    if (!aircraft.Load(file, section))
        return world.fail(Result::failure(u"There is no variation '"_s + section + u"' in '"_s +
                                          file + u"'; 'aircraft show' lists those that are."_s),
                          refused);
    if (!world.services().gate.place(file))
        (void)world.userRoot(winpath::parent(file));
    part.Load(world.services().files.spelled(aircraft.*configuration));
    const QString alias = typedAlias(world, part, kind, target);
    if (const Result set = part.Alias_Set(alias); !set)
        return world.fail(set, refused);
    QString text =
        u"'"_s + part.sConfigurationFile + u"' now refers to '"_s + part.sAlias + u"'."_s;
    const qsizetype others = sharers(world, aircraft, configuration, part.sConfigurationFile);
    if (others == 1)
        text += u" So does another variation of this aircraft, which uses the same file."_s;
    else if (others > 1)
        text += u" So do "_s + QString::number(others) +
                u" other variations of this aircraft, which use the same file."_s;
    world.json(QJsonObject{{u"ok"_s, true}, {u"text"_s, text}});
    world.say(text);
    return Done;
}

Result enterForParts(World& world)
{
    if (Result ready = world.needWriting(); !ready)
        return ready;
    return world.needSimulator();
}

int panelSet(World& world, const Arguments& arguments)
{
    if (const Result ready = enterForParts(world); !ready)
        return world.fail(ready, {{u"ok"_s, false}});
    CPanel panel(ConfigAccess(world.services()), world.services().files, world.context().global);
    return setPart(
        world, arguments, panel, aliastarget::Kind::Panel, &CAircraft::sPanelConfigurationFile);
}

int soundSet(World& world, const Arguments& arguments)
{
    if (const Result ready = enterForParts(world); !ready)
        return world.fail(ready, {{u"ok"_s, false}});
    CSound sound(ConfigAccess(world.services()), world.services().files, world.context().global);
    return setPart(
        world, arguments, sound, aliastarget::Kind::Sound, &CAircraft::sSoundConfigurationFile);
}

} // namespace

std::vector<Command> panelCommands()
{
    const std::vector<Positional> arguments = {
        {"FILE", "aircraft.cfg"},
        {"SECTION", "section of the variation, such as \"fltsim.0\""},
        {"TARGET", "folder to refer to: a path, or as in an alias (\"Kestrel_K2\\panel\")"}};
    return {
        {"panel set", "lets an aircraft use another panel", arguments, {}, panelSet},
        {"sound set", "lets an aircraft use another sound", arguments, {}, soundSet},
    };
}

} // namespace vt::cli
