// edit: changes what is recorded about an add-on: name, description, authors, rating, picture.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "cli/AddonKey.h"
#include "cli/ShowAddon.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

constexpr qint64 highestRating = 5;

/// Before anything is changed.
Result checkChanges(const Arguments& arguments)
{
    if (arguments.has(u"--name"_s) && arguments.value(u"--name"_s).trimmed().isEmpty())
        return Result::failure(u"An add-on needs a name."_s, ErrorKind::Usage);
    if (arguments.has(u"--rating"_s)) {
        bool number = false;
        const QString typed = arguments.value(u"--rating"_s);
        const qint64 rating = typed.toLongLong(&number);
        if (!number || rating < 0 || rating > highestRating)
            return Result::failure(u"'"_s + typed + u"' is not a rating; 1 to 5, or 0 for none."_s,
                                   ErrorKind::Usage);
    }
    return Result::success();
}

Result changePicture(World& world, qint64 key, const QString& typed)
{
    Connection& database = *world.database();
    if (equalNoCase(typed, u"none"))
        return pictures::clearAddonPicture(world.context(), database, key);
    return pictures::storeAddonPicture(world.context(), database, key, world.userPath(typed));
}

Result changeTexts(Connection& database, qint64 key, const Arguments& arguments)
{
    using namespace modDatabase_Addon;
    using Set = Result (*)(Connection&, qint64, const QString&);
    return database.together([&] {
        for (const auto& [option, set] :
             std::initializer_list<std::pair<QString, Set>>{{u"--name"_s, &setName},
                                                            {u"--description"_s, &setDescription},
                                                            {u"--authors"_s, &setAuthors}}) {
            if (!arguments.has(option))
                continue;
            if (Result done = set(database, key, arguments.value(option)); !done)
                return done;
        }
        return arguments.has(u"--rating"_s)
                   ? setRating(database, key, arguments.value(u"--rating"_s).toLongLong())
                   : Result::success();
    });
}

int runEdit(World& world, const Arguments& arguments)
{
    const ResultOf<qint64> key = addonKey(arguments.one(u"KEY"_s));
    if (!key)
        return world.fail(key.error());
    if (Result wanted = checkChanges(arguments); !wanted)
        return world.fail(wanted);
    if (Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    const auto recorded = modDatabase_Addon::addon(*world.database(), *key);
    if (!recorded)
        return world.fail(recorded.kind == ErrorKind::Failed ? unknownAddon(QString::number(*key))
                                                             : recorded.error());
    // The picture first: it is what may be refused.
    if (arguments.has(u"--picture"_s)) {
        if (Result done = changePicture(world, *key, arguments.value(u"--picture"_s)); !done)
            return world.fail(done);
    }
    if (Result done = changeTexts(*world.database(), *key, arguments); !done)
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
