#include "cli/InstallArguments.h"

#include "cli/AddonKey.h"

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

Option replaceOption()
{
    return {"--replace",
            "WHICH",
            "which existing files to replace without a question",
            false,
            {"yes", "no", "newer"}};
}

} // namespace

std::vector<Option> reinstallOptionTable()
{
    return {{"--from", "SOURCE", "archive or folder to install from"}, replaceOption()};
}

InstallOptions againOptionsOf(World& world, const Arguments& arguments)
{
    InstallOptions out;
    out.replace = policyOf(arguments.value(u"--replace"_s), world.options().answer);
    out.linksConfirmed = world.options().answer == u"yes";
    out.updateReadOnlyLibrary = world.options().answer == u"yes";
    return out;
}

Result prepareInstallation(World& world,
                           CAddonInstallationDetails& details,
                           const QString& source,
                           const InstallOptions& options,
                           const Arguments& arguments)
{
    if (!arguments.has(u"--complete"_s))
        return details.prepare(source, options);
    const ResultOf<qint64> key = addonKey(arguments.value(u"--complete"_s));
    if (!key)
        return key.error();
    if (Result ready = world.needDatabase(); !ready)
        return ready;
    if (!world.database())
        return unknownAddon(QString::number(*key));
    const ResultOf<RecordedAddon> recorded = RecordedAddon::load(*world.database(), *key);
    if (!recorded)
        return recorded.kind == ErrorKind::Failed ? unknownAddon(QString::number(*key))
                                                  : recorded.error();
    return details.prepareRest(*recorded, source, options);
}

std::vector<Option> installOptionTable()
{
    return {
        {"--name", "TEXT", "how to refer to the add-on"},
        {"--description", "TEXT", "its description"},
        {"--authors", "TEXT", "who made it"},
        {"--rating", "N", "0 for none, 1 to 5"},
        {"--to", "WHERE", "where to install it", false, {"simulator", "cabinet"}},
        replaceOption(),
        {"--skip",
         "NAME",
         "do not install this file, folder (ending in \\) or *.ext; repeatable",
         true},
        {"--complete",
         "KEY",
         "install only what that add-on lacks of the source, and record it there"},
        {"--method",
         "FAMILY=METHOD",
         "how the aircraft, panel, sound, texture, scenery or mission files find their folders: "
         "determined; folder:DIR (several groups get a folder each below it); sound: global, "
         "adventures; texture: global, addon-scenery, world, repaint[:AIRCRAFT]; scenery: world, "
         "global, addon-scenery; repeatable",
         true},
        {"--target",
         "NAME=FOLDER",
         "install this file or folder (ending in \\) into that folder, or with @OTHER where that "
         "file goes; repeatable",
         true},
        {"--rename", "NAME=NEWNAME", "install this file under another name; repeatable", true},
        {"--aircraft", "FOLDER", "the aircraft that repaints, panels and sounds belong to"},
        {"--panel-from", "FOLDER", "installed panel for the add-on's aircraft that bring none"},
        {"--sound-from", "FOLDER", "installed sound for the add-on's aircraft that bring none"},
        {"--no-scenery-library", nullptr, "leave the scenery library alone"},
        {"--scenery-title", "TEXT", "title of the areas that the scenery library gets"},
        {"--picture", "FILE", "a picture that is shown for the add-on"},
        {"--thumbnail",
         "FAMILY=FILE",
         "a picture for the aircraft, panel, texture or scenery that is installed; repeatable",
         true},
        {"--start", nullptr, "start the simulator after installation"},
        {"--archive-source", "DIR", "move the source archive there afterwards"},
        {"--delete-source", nullptr, "delete the source afterwards"},
    };
}

namespace {

/// "panel=folder:C:\\FSX\\..." and its like.
ResultOf<MethodChoice> methodChoice(const QString& typed)
{
    const qsizetype equals = typed.indexOf(u'=');
    if (equals < 1)
        return usage(u"The method '"_s + typed + u"' is not of the form FAMILY=METHOD."_s);
    MethodChoice out;
    const QString family = typed.first(equals);
    QStringList families;
    for (const MappedGroup ruled : ruledFamilies()) {
        if (methodLabels(ruled, {}).size() < 2)
            continue;
        families.append(mappedGroupName(ruled));
        if (families.constLast() == family)
            out.family = ruled;
    }
    if (out.family == MappedGroup::None)
        return usage(u"There is no family '"_s + family + u"' with several methods; these are: "_s +
                     families.join(u", "_s) + u'.');
    const QString method = typed.sliced(equals + 1);
    const QString word = method.section(u':', 0, 0);
    out.folder = method.section(u':', 1);
    const std::optional<InstallationMethod> found = methodOfWord(out.family, word);
    QStringList words;
    for (const MethodLabel& offered : methodLabels(out.family, {}))
        words.append(methodWord(offered.method));
    if (!found)
        return usage(u"The "_s + family + u" files know no method '"_s + word +
                     u"'; these are: "_s + words.join(u", "_s) + u'.');
    out.method = *found;
    const bool takesFolder =
        *found == InstallationMethod::ChosenFolder || *found == InstallationMethod::NewRepaint;
    if (!out.folder.isEmpty() && !takesFolder)
        return usage(u"The method '"_s + word + u"' takes no folder, but '"_s + out.folder +
                     u"' was given."_s);
    if (out.folder.isEmpty() && *found == InstallationMethod::ChosenFolder)
        return usage(u"The method 'folder' needs a folder: '"_s + family + u"=folder:DIR'."_s);
    return out;
}

/// What stands before and after the last "=".
std::optional<std::pair<QString, QString>> pairOf(const QString& typed)
{
    const qsizetype cut = typed.lastIndexOf(u'=');
    if (cut < 1 || cut + 1 == typed.size())
        return std::nullopt;
    return std::pair{typed.first(cut), typed.sliced(cut + 1)};
}

} // namespace

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
    if (arguments.has(u"--to"_s))
        out.to =
            arguments.value(u"--to"_s) == u"cabinet" ? InstallTo::Cabinet : InstallTo::Simulator;
    out.replace = policyOf(arguments.value(u"--replace"_s), world.options().answer);
    out.linksConfirmed = world.options().answer == u"yes";
    out.skip = arguments.values(u"--skip"_s);
    for (const QString& typed : arguments.values(u"--method"_s)) {
        const ResultOf<MethodChoice> choice = methodChoice(typed);
        if (!choice)
            return choice.error();
        out.methods.push_back(*choice);
    }
    for (const QString& typed : arguments.values(u"--target"_s)) {
        const auto pair = pairOf(typed);
        if (!pair)
            return usage(u"The target '"_s + typed + u"' is not of the form NAME=FOLDER."_s);
        out.targets.push_back({pair->first, pair->second});
    }
    for (const QString& typed : arguments.values(u"--rename"_s)) {
        const auto pair = pairOf(typed);
        if (!pair)
            return usage(u"The name '"_s + typed + u"' is not of the form NAME=NEWNAME."_s);
        out.renamings.push_back({pair->first, pair->second});
    }
    if (arguments.has(u"--aircraft"_s))
        out.aircraftFolder = arguments.value(u"--aircraft"_s);
    out.sceneryTitle = given(arguments, u"--scenery-title"_s);
    out.panelFrom = arguments.value(u"--panel-from"_s);
    out.soundFrom = arguments.value(u"--sound-from"_s);
    out.noSceneryLibrary = arguments.has(u"--no-scenery-library"_s);
    if (arguments.has(u"--picture"_s))
        out.pictureFile = world.userPath(arguments.value(u"--picture"_s));
    for (const QString& typed : arguments.values(u"--thumbnail"_s)) {
        const qsizetype equals = typed.indexOf(u'=');
        const QString family = typed.first(qMax<qsizetype>(equals, 0));
        PictureChoice choice;
        for (const MappedGroup ruled : ruledFamilies()) {
            if (takesPicture(ruled) && mappedGroupName(ruled) == family)
                choice.family = ruled;
        }
        if (choice.family == MappedGroup::None)
            return usage(u"The thumbnail '"_s + typed +
                         u"' is not of the form FAMILY=FILE with one of the families aircraft, "_s
                         u"panel, texture and scenery."_s);
        choice.file = world.userPath(typed.sliced(equals + 1));
        out.pictures.append(choice);
    }
    out.startSimulator = arguments.has(u"--start"_s);
    if (arguments.has(u"--archive-source"_s)) {
        const QString typed = arguments.value(u"--archive-source"_s);
        out.archiveSourceFolder = writes ? world.userRoot(typed) : world.userPath(typed);
    }
    out.updateReadOnlyLibrary = world.options().answer == u"yes";
    out.deleteSource = arguments.has(u"--delete-source"_s);
    return out;
}

} // namespace vt::cli
