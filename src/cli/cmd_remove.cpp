// remove: takes recorded add-ons out of the simulator again, one after the other.
#include "addondb/AddonDatabase.h"
#include "cli/AddonKey.h"
#include "cli/Command.h"
#include "remove/CAddonRemover.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// Why a removal that ran to its end is not whole.
Result notWhole(const CAddonRemover& remover)
{
    const Results& results = remover.results();
    const QString cause = results.texts(resultgroup::failedSpecialActions)
                              .value(0, results.texts(resultgroup::notProcessed).value(0));
    return Result::failure(u"'"_s + remover.record().name + u"' was not removed whole. "_s + cause);
}

/// One element of the document; the exit status that belongs to it.
int removeOne(World& world, const ResultOf<qint64>& key)
{
    JsonStream& out = world.out();
    out.beginObject();
    Result failure = key.error();
    out.field(u"key", key ? *key : 0);
    if (key) {
        const auto recorded = modDatabase_Addon::addon(*world.database(), *key);
        if (!recorded && recorded.kind == ErrorKind::Failed)
            failure = unknownAddon(QString::number(*key));
    }
    if (failure) {
        CAddonRemover remover(world.context(), *world.database(), *key, RemovalMethod::Delete);
        if (!remover.Remove_Begin())
            failure = remover.failure();
        else if (remover.anyFailed())
            failure = notWhole(remover);
        out.field(u"name", remover.record().name);
        out.field(u"ok", failure.ok);
        out.key(u"results");
        remover.results().write(out);
        world.say(removalResultsCaption(remover.record().name));
        world.say(remover.results());
    } else {
        out.field(u"name", QString());
        out.field(u"ok", false);
        out.key(u"results");
        Results::forRemoval().write(out);
    }
    const int status = failure ? Done : world.failElement(failure);
    out.endObject();
    return status;
}

int runRemove(World& world, const Arguments& arguments)
{
    QList<ResultOf<qint64>> keys;
    for (const QString& typed : arguments.all(u"KEY"_s)) {
        keys.push_back(addonKey(typed));
        // Nothing is removed by a command that was mistyped.
        if (!keys.constLast() && keys.constLast().kind == ErrorKind::Usage)
            return world.fail(keys.constLast().error());
    }
    if (Result ready = world.needSimulator(); !ready)
        return world.fail(ready);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    int status = Done;
    world.out().beginArray();
    for (const ResultOf<qint64>& key : std::as_const(keys))
        status = std::max(status, removeOne(world, key));
    world.out().endArray();
    return status;
}

} // namespace

std::vector<Command> removeCommands()
{
    return {{"remove",
             "remove add-ons, putting back what they had replaced",
             {{"KEY", "key of an add-on, as 'list' shows it", true, true}},
             {{"--method", "METHOD", "what happens to the files", false, {"delete"}}},
             runRemove}};
}

} // namespace vt::cli
