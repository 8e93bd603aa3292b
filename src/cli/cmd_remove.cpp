// remove: takes recorded add-ons out of the simulator again, one after the other.
#include "addondb/AddonDatabase.h"
#include "cli/AddonKey.h"
#include "cli/Command.h"
#include "cli/TypedFile.h"
#include "remove/CAddonRemover.h"
#include "simconfig/CPanel.h"
#include "simconfig/CSound.h"

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

/// Of an option that names a sound or panel; empty when it is not given.
ResultOf<QString> insteadOf(World& world,
                            const Arguments& arguments,
                            const QString& option,
                            const AliasConfig& part,
                            aliastarget::Kind kind)
{
    if (!arguments.has(option))
        return QString();
    const QString typed = arguments.value(option);
    const QString alias = typedAlias(world, part, kind, typed);
    if (alias.trimmed().isEmpty())
        return Result::failure(u"'"_s + typed + u"' of "_s + option +
                                   u" does not lie in the simulator's folder."_s,
                               ErrorKind::Usage);
    return alias;
}

ResultOf<RemovalOptions> optionsOf(World& world, const Arguments& arguments)
{
    RemovalOptions options;
    const ConfigAccess access(world.services());
    const Files& files = world.services().files;
    const GlobalRecord& global = world.context().global;
    const ResultOf<QString> sound = insteadOf(world,
                                              arguments,
                                              u"--sound-instead"_s,
                                              CSound(access, files, global),
                                              aliastarget::Kind::Sound);
    const ResultOf<QString> panel = insteadOf(world,
                                              arguments,
                                              u"--panel-instead"_s,
                                              CPanel(access, files, global),
                                              aliastarget::Kind::Panel);
    if (!sound)
        return sound.error();
    if (!panel)
        return panel.error();
    options.soundInstead = *sound;
    options.panelInstead = *panel;
    return options;
}

/// One element of the document; the exit status that belongs to it.
int removeOne(World& world, const ResultOf<qint64>& key, const RemovalOptions& options)
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
        CAddonRemover remover(world.context(), *world.database(), *key, options);
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
    const ResultOf<RemovalOptions> options = optionsOf(world, arguments);
    if (!options)
        return world.fail(options.error());
    int status = Done;
    world.out().beginArray();
    for (const ResultOf<qint64>& key : std::as_const(keys))
        status = std::max(status, removeOne(world, key, *options));
    world.out().endArray();
    return status;
}

} // namespace

std::vector<Command> removeCommands()
{
    return {{"remove",
             "remove add-ons, putting back what they had replaced",
             {{"KEY", "key of an add-on, as 'list' shows it", true, true}},
             {{"--method", "METHOD", "what happens to the files", false, {"delete"}},
              {"--sound-instead", "PATH", "sound for aircraft that use one of the add-on's"},
              {"--panel-instead", "PATH", "panel for aircraft that use one of the add-on's"}},
             runRemove}};
}

} // namespace vt::cli
