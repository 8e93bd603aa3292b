// ini sections, get, set, delete: the configuration file engine on one file that the user names.
// Nothing here touches the simulator or the database; what writes holds the program folder's lock,
// since the file may be one that an installation is changing.
#include "cli/Command.h"
#include "platform/WinPath.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt::cli {

namespace {

/// One file as the commands below see it.
struct IniFile
{
    QString path;
    LineArray lines;
    Result editable; ///< why it is not edited; reading is done by the profile functions then
};

ResultOf<IniFile> openIni(World& world, const Arguments& arguments)
{
    Services& services = world.services();
    IniFile file{world.userPath(arguments.one(u"FILE"_s)), LineArray(services.ansi), {}};
    if (services.files.isFolder(file.path))
        return Result::failure(u"'"_s + file.path + u"' is a folder; name a configuration file."_s,
                               ErrorKind::Surroundings);
    if (!services.files.isFile(file.path))
        return Result::failure(u"The file '"_s + file.path + u"' was not found."_s,
                               ErrorKind::Surroundings);
    if (const Result read = ini::INI_File_Read(services.actions, file.path, file.lines); !read)
        return Result::failure(read.text, ErrorKind::Surroundings);
    file.editable = ini::checkEditable(file.lines, file.path);
    return file;
}

/// The section as typed, with or without the brackets around it.
QString sectionOf(const Arguments& arguments)
{
    const QString typed = arguments.one(u"SECTION"_s).trimmed();
    const bool bracketed = typed.size() > 2 && typed.startsWith(u'[') && typed.endsWith(u']');
    return bracketed ? typed.sliced(1, typed.size() - 2) : typed;
}

/// What would not be read back as the section and entry that were meant is never written.
Result checkNames(const QString& section, const QString& key)
{
    const auto refuse = [](const QString& name, const QString& what) {
        return Result::failure(u"'"_s + name + u"' cannot be the name of "_s + what +
                               u" in a configuration file."_s);
    };
    const QString header = ini::INI_Line_StripComment(u'[' + section + u']').data;
    if (ini::INI_Line_GetSectionName(header).value_or(QString()) != section || section.isEmpty())
        return refuse(section, u"a section"_s);
    const QString line = ini::INI_Line_StripComment(key + u"=1"_s).data;
    const std::optional<ini::Entry> entry = ini::INI_Line_SplitEntry(line);
    if (ini::INI_Line_IsSectionHeader(line) || !entry || entry->value != u"1" ||
        entry->key != QString(key).remove(u' ').remove(u'\t'))
        return refuse(key, u"an entry"_s);
    return Result::success();
}

profile::ProfileFile profileOfIni(World& world, const IniFile& file)
{
    return ini::profileOf(world.services().actions, world.services().ansi, file.path);
}

int iniSections(World& world, const Arguments& arguments)
{
    const ResultOf<IniFile> file = openIni(world, arguments);
    if (!file)
        return world.fail(file.error());
    const QStringList names = file->editable ? ini::INI_Sections_GetNames(file->lines)
                                             : profileOfIni(world, *file).sections();
    world.json(QJsonObject{{u"sections"_s, QJsonArray::fromStringList(names)}});
    for (const QString& name : names)
        world.say(name);
    return Done;
}

Result noSuchEntry(const Arguments& arguments, const IniFile& file)
{
    return Result::failure(u"There is no entry '"_s + arguments.one(u"KEY"_s) +
                           u"' in the section '"_s + arguments.one(u"SECTION"_s) + u"' of '"_s +
                           file.path + u"'."_s);
}

int iniGet(World& world, const Arguments& arguments)
{
    const ResultOf<IniFile> file = openIni(world, arguments);
    if (!file)
        return world.fail(file.error());
    const QString section = sectionOf(arguments);
    const QString key = arguments.one(u"KEY"_s);
    std::optional<QString> value;
    if (file->editable) {
        value = ini::INI_Entry_Get(file->lines, section, key);
    } else if (const profile::ProfileFile text = profileOfIni(world, *file);
               text.has(section, key)) {
        value = ini::INI_Profile_GetValue(text, section, key, QString(), profile::maxBuffer).value;
    }
    if (!value)
        return world.fail(noSuchEntry(arguments, *file), {{u"ok"_s, false}, {u"value"_s, {}}});
    world.json(QJsonObject{{u"ok"_s, true}, {u"value"_s, *value}});
    world.say(*value);
    return Done;
}

/// Writes the lines whole, below the file's own folder and nowhere else.
Result writeIni(World& world, const IniFile& file)
{
    (void)world.userRoot(winpath::parent(file.path));
    return ini::INI_File_Write(world.services().actions, file.path, file.lines);
}

int iniSet(World& world, const Arguments& arguments)
{
    const QJsonObject refused{{u"ok"_s, false}, {u"value"_s, {}}};
    if (const Result alone = world.needLock(); !alone)
        return world.fail(alone, refused);
    ResultOf<IniFile> file = openIni(world, arguments);
    if (!file)
        return world.fail(file.error(), refused);
    const QString value = arguments.one(u"VALUE"_s);
    if (!file->editable)
        return world.fail(file->editable, refused);
    const QString section = sectionOf(arguments);
    const QString key = arguments.one(u"KEY"_s);
    Result set = checkNames(section, key);
    if (set)
        set = ini::INI_Entry_Set(file->lines, section, key, value);
    if (!set)
        return world.fail(
            Result::failure(u"'"_s + file->path + u"' was not changed. "_s + set.text), refused);
    if (const Result written = writeIni(world, *file); !written)
        return world.fail(written, refused);
    world.json(QJsonObject{{u"ok"_s, true}, {u"value"_s, value}});
    return Done;
}

int iniDelete(World& world, const Arguments& arguments)
{
    const QJsonObject refused{{u"ok"_s, false}, {u"value"_s, {}}};
    if (const Result alone = world.needLock(); !alone)
        return world.fail(alone, refused);
    ResultOf<IniFile> file = openIni(world, arguments);
    if (!file)
        return world.fail(file.error(), refused);
    if (!file->editable)
        return world.fail(file->editable, refused);
    const QString section = sectionOf(arguments);
    const QString key = arguments.one(u"KEY"_s);
    const std::optional<QString> value = ini::INI_Entry_Get(file->lines, section, key);
    if (!value || !ini::INI_Entry_Delete(file->lines, section, key))
        return world.fail(noSuchEntry(arguments, *file), refused);
    if (const Result written = writeIni(world, *file); !written)
        return world.fail(written, refused);
    world.json(QJsonObject{{u"ok"_s, true}, {u"value"_s, *value}});
    return Done;
}

} // namespace

std::vector<Command> iniCommands()
{
    const Positional file{"FILE", "configuration file"};
    const Positional section{"SECTION", "section, such as \"fltsim.0\""};
    const Positional key{"KEY", "name of the entry"};
    return {
        {"ini sections", "names of the sections", {file}, {}, iniSections},
        {"ini get", "the value of one entry", {file, section, key}, {}, iniGet},
        {"ini set",
         "changes or adds one entry",
         {file, section, key, {"VALUE", "new value"}},
         {},
         iniSet},
        {"ini delete", "deletes one entry", {file, section, key}, {}, iniDelete},
    };
}

} // namespace vt::cli
