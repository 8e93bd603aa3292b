#include "cli/InstallArguments.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

Result usage(const QString& text)
{
    return Result::failure(text, ErrorKind::Usage);
}

std::optional<QString> given(const Arguments& arguments, const QString& option)
{
    if (!arguments.has(option))
        return std::nullopt;
    return arguments.value(option);
}

ReplacePolicy policyOf(const QString& word, const QString& answer)
{
    if (word == u"yes")
        return ReplacePolicy::Yes;
    if (word == u"no")
        return ReplacePolicy::No;
    if (word == u"newer")
        return ReplacePolicy::Newer;
    return answer == u"no" ? ReplacePolicy::No : ReplacePolicy::Ask;
}

} // namespace

std::vector<Option> installOptionTable()
{
    return {
        {"--name", "TEXT", "how to refer to the add-on"},
        {"--description", "TEXT", "its description"},
        {"--authors", "TEXT", "who made it"},
        {"--rating", "N", "0 for none, 1 to 5"},
        {"--to", "WHERE", "where to install it", false, {"simulator"}},
        {"--replace",
         "WHICH",
         "which existing files to replace without a question",
         false,
         {"yes", "no", "newer"}},
        {"--skip",
         "NAME",
         "do not install this file, folder (ending in \\) or *.ext; repeatable",
         true},
        {"--target",
         "NAME=FOLDER",
         "install this file or folder (ending in \\) into that folder; repeatable",
         true},
        {"--aircraft", "FOLDER", "the aircraft that repaints, panels and sounds belong to"},
        {"--no-scenery-library", nullptr, "leave the scenery library alone"},
        {"--archive-source", "DIR", "move the source archive there afterwards"},
        {"--delete-source", nullptr, "delete the source afterwards"},
    };
}

ResultOf<InstallOptions> installOptionsOf(World& world, const Arguments& arguments, bool writes)
{
    InstallOptions out;
    out.name = given(arguments, u"--name"_s);
    if (out.name && out.name->trimmed().isEmpty())
        return usage(u"Enter a name for this addon."_s);
    out.description = given(arguments, u"--description"_s);
    out.authors = given(arguments, u"--authors"_s);
    if (arguments.has(u"--rating"_s)) {
        bool ok = false;
        const int rating = arguments.value(u"--rating"_s).toInt(&ok);
        if (!ok || rating < 0 || rating > 5)
            return usage(u"The rating '"_s + arguments.value(u"--rating"_s) +
                         u"' is not one of 0 to 5."_s);
        out.rating = rating;
    }
    out.to = arguments.value(u"--to"_s) == u"cabinet" ? InstallTo::Cabinet : InstallTo::Simulator;
    out.replace = policyOf(arguments.value(u"--replace"_s), world.options().answer);
    out.linksConfirmed = world.options().answer == u"yes";
    out.skip = arguments.values(u"--skip"_s);
    for (const QString& choice : arguments.values(u"--target"_s)) {
        const qsizetype cut = choice.lastIndexOf(u'=');
        if (cut < 1 || cut + 1 == choice.size())
            return usage(u"The target '"_s + choice + u"' is not of the form NAME=FOLDER."_s);
        out.targets.push_back({choice.first(cut), choice.sliced(cut + 1)});
    }
    if (arguments.has(u"--aircraft"_s))
        out.aircraftFolder = arguments.value(u"--aircraft"_s);
    out.noSceneryLibrary = arguments.has(u"--no-scenery-library"_s);
    if (arguments.has(u"--archive-source"_s)) {
        const QString typed = arguments.value(u"--archive-source"_s);
        out.archiveSourceFolder = writes ? world.userRoot(typed) : world.userPath(typed);
    }
    out.updateReadOnlyLibrary = world.options().answer == u"yes";
    out.deleteSource = arguments.has(u"--delete-source"_s);
    return out;
}

} // namespace vt::cli
