// remove: takes recorded add-ons out of the simulator again, one after the other.
#include "addondb/Connection.h"
#include "cli/Command.h"
#include "remove/CAddonRemover.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

RemovalMethod methodOf(const QString& word)
{
    if (word == u"cabinet")
        return RemovalMethod::FileCabinet;
    if (word == u"recreate")
        return RemovalMethod::Recreate;
    if (word == u"records")
        return RemovalMethod::RemoveRecords;
    return RemovalMethod::Delete;
}

/// The failure that decides the exit status, or success.
Result removeOne(World& world, const QString& typedKey, RemovalMethod method, bool& partly)
{
    JsonStream& out = world.out();
    out.beginObject();
    bool isNumber = false;
    const qint64 key = typedKey.toLongLong(&isNumber);
    Result failure = isNumber
                         ? Result::success()
                         : Result::failure(u"'"_s + typedKey +
                                           u"' is no key of an add-on; 'list' shows the keys."_s);
    out.field(u"key", key);
    if (failure) {
        CAddonRemover remover(world.context(), *world.database(), key, method);
        if (!remover.Remove_Begin())
            failure = remover.failure();
        partly = partly || remover.anyFailed();
        out.field(u"name", remover.record().name);
        out.field(u"ok", failure.ok && !remover.anyFailed());
        out.key(u"results");
        remover.results().write(out);
        if (failure)
            world.say(removalResultsCaption(remover.record().name));
        world.say(remover.results());
    } else {
        out.field(u"ok", false);
    }
    if (!failure)
        out.field(u"text", failure.text);
    out.endObject();
    return failure;
}

int runRemove(World& world, const Arguments& arguments)
{
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    if (Result ready = world.needDatabase(); !ready)
        return world.fail(ready);
    const RemovalMethod method = methodOf(arguments.value(u"--method"_s, u"delete"_s));
    Result worst = Result::success();
    bool partly = false;
    world.out().beginArray();
    for (const QString& key : arguments.all(u"KEY"_s)) {
        const Result removed = removeOne(world, key, method, partly);
        if (!removed && (worst.ok || worst.kind == ErrorKind::Failed))
            worst = removed;
    }
    world.out().endArray();
    if (!worst)
        return world.fail(worst);
    return partly ? Partly : Done;
}

} // namespace

std::vector<Command> removeCommands()
{
    return {{"remove",
             "remove add-ons, putting back what they had replaced",
             {{"KEY", "key of an add-on, as shown by list", true, true}},
             {{"--method",
               "METHOD",
               "what happens to the files",
               false,
               {"delete", "cabinet", "recreate", "records"}}},
             runRemove}};
}

} // namespace vt::cli
