// pictures assign, clear: the pictures of the simulator's own aircraft, panels and scenery.
#include "catalogue/DefaultPictures.h"
#include "cli/Command.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

using defaultpictures::Outcome;

int change(World& world,
           Outcome (*work)(Context&, Connection&, const Catalogue&),
           QString (Outcome::*text)() const)
{
    if (const Result ready = world.needWriting(); !ready)
        return world.fail(ready);
    if (const Result found = world.needSimulator(); !found)
        return world.fail(found);
    const Outcome outcome = work(world.context(), *world.database(), world.catalogue());
    const QString said = (outcome.*text)();
    const QJsonObject document{{u"ok"_s, outcome.problems.isEmpty()},
                               {u"text"_s, said},
                               {u"changed"_s, outcome.changed},
                               {u"kept"_s, outcome.kept},
                               {u"without"_s, outcome.without},
                               {u"problems"_s, QJsonArray::fromStringList(outcome.problems)}};
    world.say(said);
    if (!outcome.problems.isEmpty())
        return world.fail(Result::failure(outcome.problems.join(u'\n')), document);
    world.json(document);
    return Done;
}

int assignPictures(World& world, const Arguments&)
{
    return change(world, &defaultpictures::assign, &Outcome::assignedText);
}

int clearPictures(World& world, const Arguments&)
{
    return change(world, &defaultpictures::clear, &Outcome::clearedText);
}

} // namespace

std::vector<Command> pictureCommands()
{
    return {
        {"pictures assign",
         "pictures for the simulator's own aircraft, panels and scenery that have none",
         {},
         {},
         assignPictures},
        {"pictures clear", "take those pictures away again", {}, {}, clearPictures},
    };
}

} // namespace vt::cli
