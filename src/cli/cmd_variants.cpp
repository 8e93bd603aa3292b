// variant add, variant remove, aircraft hide, aircraft show-again, suppress: changes to the
// variations of installed aircraft, and the marks that silence warnings.
#include "addondb/AddonDatabase.h"
#include "catalogue/Catalogue.h"
#include "cli/Command.h"
#include "cli/TypedFile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/StockContent.h"
#include "simconfig/Suppression.h"
#include "simconfig/VariationEdits.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

using variationedits::Edited;

Result enterForVariants(World& world)
{
    if (Result ready = world.needWriting(); !ready)
        return ready;
    return world.needSimulator();
}

variationedits::Surroundings surroundings(World& world)
{
    return {world.services(), world.context().global, *world.database()};
}

QString typedAircraft(World& world, const Arguments& arguments)
{
    return typedConfiguration(world, arguments.one(u"FILE"_s), u"aircraft.cfg"_s);
}

QString typedSection(const QString& typed)
{
    return modRoutines_INI::INI_Section_NameStrip(typed).trimmed();
}

/// \a done: "was added".
int tellVariant(World& world, const ResultOf<Edited>& edited, const QString& done)
{
    if (!edited)
        return world.fail(edited.error(), {{u"section"_s, {}}, {u"file"_s, {}}});
    JsonStream& out = world.out();
    out.beginObject();
    out.field(u"section", edited->section);
    out.field(u"file", edited->file);
    out.field(u"title", edited->title);
    out.field(u"notes", edited->notes);
    out.endObject();
    world.say(u"The variation '"_s + edited->title + u"' ("_s + edited->section + u" in '"_s +
              edited->file + u"') "_s + done + u'.');
    for (const QString& note : edited->notes)
        world.say(u"  "_s + note);
    return Done;
}

/// The names as typed or, where they are not, as the user gives them now.
Result variantNames(World& world, const Arguments& arguments, CTextureGroup& group)
{
    const auto typed = [&](const QString& option, const QString& text, const QString& proposal) {
        if (arguments.has(option))
            return arguments.value(option);
        return world.services()
            .prompts.askText({u"New Variation"_s, text, proposal})
            .value_or(QString());
    };
    group.sTitle = typed(u"--title"_s, u"Title of the new variation:"_s, {}).trimmed();
    if (!group.sTitle.isEmpty())
        group.sVariation =
            typed(u"--variation"_s, u"Name of the new variation:"_s, group.sTitle).trimmed();
    return group.sTitle.isEmpty() || group.sVariation.isEmpty()
               ? Result::failure(u"A new variation needs --title and --variation."_s,
                                 ErrorKind::Usage)
               : Result::success();
}

int variantAdd(World& world, const Arguments& arguments)
{
    if (const Result ready = enterForVariants(world); !ready)
        return world.fail(ready);
    const QString file = typedAircraft(world, arguments);
    CTextureGroup group;
    group.sSourceSection = typedSection(arguments.value(u"--from"_s));
    if (group.sSourceSection.isEmpty())
        return world.fail(Result::failure(
            u"Name the section that the new variation is copied from with --from."_s,
            ErrorKind::Usage));
    if (const Result named = variantNames(world, arguments, group); !named)
        return world.fail(named);
    CAircraft::VariantSwitches switches;
    switches.nameChecks.installed = &world.catalogue();
    const CAircraft checker{ConfigAccess(world.services())};
    if (const Result title = checker.Title_Validate(group.sTitle, switches.nameChecks); !title)
        return world.fail(title);
    const Result variation = checker.Variation_Validate(group.sVariation, switches.nameChecks);
    QString folder;
    if (arguments.has(u"--texture-from"_s)) {
        folder = winpath::asFolder(world.userPath(arguments.value(u"--texture-from"_s)));
        if (!world.services().files.isFolder(folder))
            return world.fail(Result::failure(u"The folder '"_s + folder + u"' was not found."_s,
                                              ErrorKind::Surroundings));
    }
    ResultOf<Edited> added =
        variationedits::add(surroundings(world), file, group, folder, switches);
    if (added && !variation.text.isEmpty())
        added->notes.prepend(variation.text);
    return tellVariant(world, added, u"was added"_s);
}

int variantRemove(World& world, const Arguments& arguments)
{
    if (const Result ready = enterForVariants(world); !ready)
        return world.fail(ready);
    const QString file = typedAircraft(world, arguments);
    CAircraft::VariantRemoval removal; // the command itself is the first confirmation
    removal.original = stockcontent::isOriginal(world.database(), world.context().global, file);
    removal.simulatorName = world.context().global.names.simShort;
    return tellVariant(
        world,
        variationedits::remove(
            surroundings(world), file, typedSection(arguments.one(u"SECTION"_s)), removal),
        u"was removed"_s);
}

int changeVisible(World& world, const Arguments& arguments, bool visible)
{
    const QJsonObject refused{{u"ok"_s, false}};
    if (const Result ready = enterForVariants(world); !ready)
        return world.fail(ready, refused);
    const ResultOf<Edited> edited =
        variationedits::setVisible(surroundings(world),
                                   typedAircraft(world, arguments),
                                   typedSection(arguments.one(u"SECTION"_s)),
                                   visible);
    if (!edited)
        return world.fail(edited.error(), refused);
    const QString& simulator = world.context().global.names.simShort;
    QString text = u'\'' + edited->title + u'\'' +
                   (visible ? u" is available in "_s + simulator + u" again"_s
                            : u" is hidden from "_s + simulator + u" now"_s);
    text += edited->section.isEmpty() ? u"."_s : u", as ["_s + edited->section + u"]."_s;
    world.json(QJsonObject{{u"ok"_s, true},
                           {u"text"_s, text},
                           {u"file"_s, edited->file},
                           {u"section"_s, edited->section}});
    world.say(text);
    return Done;
}

int aircraftHide(World& world, const Arguments& arguments)
{
    return changeVisible(world, arguments, false);
}

int aircraftShowAgain(World& world, const Arguments& arguments)
{
    return changeVisible(world, arguments, true);
}

/// The kinds that warnings are silenced for.
struct SuppressKind
{
    QStringView word;
    ItemTable table;
    QStringView file;
};

constexpr SuppressKind suppressKinds[] = {{u"aircraft", ItemTable::Aircraft, u"aircraft.cfg"},
                                          {u"panel", ItemTable::Panel, u"panel.cfg"},
                                          {u"sound", ItemTable::Sound, u"sound.cfg"}};

/// The sections that are meant: the one that was named, else all variations; of a panel or sound
/// one without a name.
ResultOf<QStringList>
suppressedSections(World& world, const Arguments& arguments, ItemTable table, const QString& file)
{
    if (table != ItemTable::Aircraft)
        return QStringList{QString()};
    CAircraft aircraft{ConfigAccess(world.services())};
    aircraft.sConfigurationFile = file;
    const QString wanted = typedSection(arguments.value(u"--section"_s));
    QStringList sections;
    for (const CAircraft& variation : aircraft.Variant_Details_GetAll()) {
        if (wanted.isEmpty() || equalNoCase(variation.sSection, wanted))
            sections.append(variation.sSection);
    }
    if (sections.isEmpty())
        return Result::failure(u"There is no variation "_s +
                               (wanted.isEmpty() ? QString() : u'\'' + wanted + u"' "_s) +
                               u"in '"_s + file + u"'."_s);
    return sections;
}

int suppress(World& world, const Arguments& arguments)
{
    const QJsonObject refused{{u"ok"_s, false}};
    const QString kind = arguments.one(u"KIND"_s);
    const QString state = arguments.one(u"STATE"_s);
    const auto known = std::find_if(std::begin(suppressKinds),
                                    std::end(suppressKinds),
                                    [&](const auto& one) { return equalNoCase(one.word, kind); });
    if (known == std::end(suppressKinds) || (state != u"on" && state != u"off"))
        return world.fail(
            Result::failure(u"'suppress' takes aircraft, panel or sound, a path, and on or off."_s,
                            ErrorKind::Usage),
            refused);
    if (const Result ready = enterForVariants(world); !ready)
        return world.fail(ready, refused);
    const QString typed =
        typedConfiguration(world, arguments.one(u"PATH"_s), known->file.toString());
    if (!world.services().files.isFile(typed))
        return world.fail(Result::failure(u"The file '"_s + typed + u"' was not found."_s,
                                          ErrorKind::Surroundings),
                          refused);
    const QString file = world.services().files.spelled(typed);
    const ResultOf<QStringList> sections = suppressedSections(world, arguments, known->table, file);
    if (!sections)
        return world.fail(sections.error(), refused);
    const Result set = world.database()->together([&]() -> Result {
        for (const QString& section : *sections) {
            const Result one = suppression::setSuppressed(*world.database(),
                                                          world.services().actions,
                                                          known->table,
                                                          file,
                                                          state == u"on",
                                                          section);
            if (!one)
                return one;
        }
        return Result::success();
    });
    if (!set)
        return world.fail(set, refused);
    const QString text =
        u"Warnings about '"_s + file +
        (state == u"on" ? u"' are silenced until the file changes."_s : u"' are told again."_s);
    world.json(QJsonObject{{u"ok"_s, true}, {u"text"_s, text}});
    world.say(text);
    return Done;
}

} // namespace

std::vector<Command> variantCommands()
{
    const Positional file{"FILE", "aircraft.cfg, or the aircraft's folder"};
    const Positional section{"SECTION", "section of the variation, such as \"fltsim.2\""};
    return {
        {"variant add",
         "adds a variation to an aircraft",
         {file},
         {{"--from", "SECTION", "section that is copied"},
          {"--title", "T", "title of the new variation; no other aircraft may have it"},
          {"--variation", "T", "name of the variation, as shown for its aircraft"},
          {"--texture-from", "DIR", "folder whose files become its textures"}},
         variantAdd},
        {"variant remove",
         "removes a variation and what only it uses",
         {file, section},
         {},
         variantRemove},
        {"aircraft hide",
         "hides a variation from the simulator",
         {file, section},
         {},
         aircraftHide},
        {"aircraft show-again",
         "shows a hidden variation again",
         {file, section},
         {},
         aircraftShowAgain},
        {"suppress",
         "silences warnings about one aircraft, panel or sound",
         {{"KIND", "aircraft, panel or sound"},
          {"PATH", "its configuration file or folder"},
          {"STATE", "on or off"}},
         {{"--section", "SECTION", "of an aircraft: this variation alone"}},
         suppress},
    };
}

} // namespace vt::cli
