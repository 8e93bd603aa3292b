// database check: whether the add-on database can be used. Reads only.
#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseCare.h"
#include "cli/Command.h"
#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

int checkDatabase(World& world, const Arguments&)
{
    const QString path = world.context().global.databaseFile;
    const Result ready = world.needDatabase();
    DatabaseHealth health;
    if (ready && world.database() != nullptr)
        health = databaseHealth(world.services().files, path, true);
    else if (const auto info = world.services().files.info(path))
        health.bytes = info->size;
    const Result& result = ready ? health.result : ready;
    QString text = result.text;
    if (result.ok && world.database() == nullptr)
        text =
            u"There is no add-on database yet; the first installation makes '"_s + path + u"'."_s;
    else if (result.ok)
        text = u"The add-on database '"_s + path + u"' ("_s + sizeText(health.bytes) +
               u") is whole."_s;
    const QJsonObject done{{u"ok"_s, result.ok},
                           {u"text"_s, text},
                           {u"bytesBefore"_s, health.bytes},
                           {u"bytesAfter"_s, health.bytes},
                           {u"path"_s, path},
                           {u"structure"_s, health.structure}};
    if (!result.ok)
        return world.fail(result, done);
    world.json(done);
    world.say(text);
    return Done;
}

} // namespace

std::vector<Command> databaseCommands()
{
    return {
        {"database check", "looks through the add-on database for damage", {}, {}, checkDatabase},
    };
}

} // namespace vt::cli
