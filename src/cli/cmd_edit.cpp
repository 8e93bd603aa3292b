// edit: changes what is recorded about an add-on: name, description, authors, rating, picture.
#include "addondb/AddonDatabase.h"
#include "addondb/AddonEdit.h"
#include "cli/AddonKey.h"
#include "cli/ShowAddon.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

/// Of a text that is no number: one that checkChanges() would not name.
ResultOf<AddonChanges> changesOf(World& world, const Arguments& arguments)
{
    const auto given = [&](const QString& option) {
        return arguments.has(option) ? std::optional(arguments.value(option)) : std::nullopt;
    };
    AddonChanges changes;
    changes.name = given(u"--name"_s);
    changes.description = given(u"--description"_s);
    changes.authors = given(u"--authors"_s);
    if (const auto typed = given(u"--rating"_s)) {
        bool number = false;
        changes.rating = typed->toLongLong(&number);
        if (!number)
            return Result::failure(u"'"_s + *typed + u"' is not a rating; 1 to 5, or 0 for none."_s,
                                   ErrorKind::Usage);
    }
    if (const auto picture = given(u"--picture"_s))
        changes.pictureFile = equalNoCase(*picture, u"none") ? QString() : world.userPath(*picture);
    if (Result wanted = checkChanges(changes); !wanted)
        return wanted;
    return changes;
}

int runEdit(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key)
        return world.fail(key.error());
    const ResultOf<AddonChanges> changes = changesOf(world, arguments);
    if (!changes)
        return world.fail(changes.error());
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    const auto recorded = modDatabase_Addon::addon(*world.database(), *key);
    if (!recorded)
        return world.fail(recorded.kind == ErrorKind::Failed ? unknownAddon(QString::number(*key))
                                                             : recorded.error());
    if (Result done = changeAddon(world.context(), *world.database(), *key, *changes); !done)
        return world.fail(done);
    return showAddon(world, arguments);
}

} // namespace

std::vector<Command> editCommands()
{
    return {{"edit",
             "change what is recorded about an add-on",
             {{"KEY", "key of the add-on, as 'list' shows it"}},
             {{"--name", "TEXT", "its name"},
              {"--description", "TEXT", "its description"},
              {"--authors", "TEXT", "who made it"},
              {"--rating", "N", "1 to 5; 0: none"},
              {"--picture", "FILE|none", "a picture that is shown for it, or none"}},
             runEdit}};
}

} // namespace vt::cli
