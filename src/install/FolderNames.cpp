#include "install/FolderNames.h"

#include "platform/Text.h"

#include <algorithm>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace vt::foldernames {

namespace {

struct AnchorRow
{
    QStringView name;
    Anchor anchor;
};

constexpr AnchorRow anchorRows[] = {
    {u"SimObjects", Anchor::SimObjects},
    {u"Airplanes", Anchor::AircraftType},
    {u"Rotorcraft", Anchor::AircraftType},
    {u"GroundVehicles", Anchor::AircraftType},
    {u"Boats", Anchor::AircraftType},
    {u"Animals", Anchor::AircraftType},
    {u"Aircraft", Anchor::PreviousAircraft},
    {u"Addon Scenery", Anchor::AddonScenery},
    {u"AddonScenery", Anchor::AddonScenery},
    {u"Scenery", Anchor::Scenery},
    {u"Texture", Anchor::Texture},
    {u"Effects", Anchor::Effects},
    {u"Effect", Anchor::Effects},
    {u"Gauges", Anchor::Gauges},
    {u"Gauge", Anchor::Gauges},
    {u"Sound", Anchor::Sound},
    {u"Fonts", Anchor::Fonts},
    {u"Modules", Anchor::Modules},
    {u"Missions", Anchor::Missions},
    {u"Panels", Anchor::Panels},
    {u"Flights", Anchor::Flights},
    {u"Weather", Anchor::Weather},
    {u"Autogen", Anchor::Autogen},
};

bool isOneOf(QStringView name, std::initializer_list<QStringView> names)
{
    return std::any_of(names.begin(), names.end(), [name](QStringView other) {
        return name.size() == other.size() && equalNoCase(name, other);
    });
}

QStringView endingOf(QStringView name)
{
    const qsizetype point = name.lastIndexOf(u'.');
    return point < 0 ? QStringView() : name.sliced(point + 1);
}

qsizetype repositoryEndingLength(QStringView name)
{
    for (const QStringView ending : {QStringView(u"-master"), QStringView(u"-main")}) {
        if (name.size() > ending.size() && endsWithNoCase(name, ending))
            return ending.size();
    }
    return 0;
}

} // namespace

Anchor anchorOf(QStringView name)
{
    for (const AnchorRow& row : anchorRows) {
        if (row.name.size() == name.size() && equalNoCase(row.name, name))
            return row.anchor;
    }
    return Anchor::None;
}

bool isStrongAnchor(Anchor anchor)
{
    switch (anchor) {
    case Anchor::None:
    case Anchor::PreviousAircraft:
    case Anchor::Scenery:
    case Anchor::Texture:
    case Anchor::Sound:
    case Anchor::Panels:
    case Anchor::Weather:
        return false;
    default:
        return true;
    }
}

bool isGeneric(QStringView name)
{
    return anchorOf(name) != Anchor::None || isOneOf(name,
                                                     {u"fsx",
                                                      u"fs x",
                                                      u"fs9",
                                                      u"fs2004",
                                                      u"fs 2004",
                                                      u"fsx-se",
                                                      u"p3d",
                                                      u"files",
                                                      u"file",
                                                      u"main",
                                                      u"master",
                                                      u"install",
                                                      u"installer",
                                                      u"addon",
                                                      u"add-on",
                                                      u"addons",
                                                      u"data",
                                                      u"sceneries",
                                                      u"textures",
                                                      u"bgl",
                                                      u"src",
                                                      u"source",
                                                      u"dist",
                                                      u"release",
                                                      u"releases",
                                                      u"plane",
                                                      u"planes",
                                                      u"airplane",
                                                      u"package",
                                                      u"content",
                                                      u"contents",
                                                      u"repaint",
                                                      u"repaints",
                                                      u"livery",
                                                      u"liveries",
                                                      u"extra",
                                                      u"extras",
                                                      u"optional",
                                                      u"misc",
                                                      u"microsoft games",
                                                      u"main_package",
                                                      u"main_file",
                                                      u"main_files",
                                                      u"model",
                                                      u"panel",
                                                      u"fsx files",
                                                      u"fsx scenery",
                                                      u"microsoft flight simulator x",
                                                      u"flight simulator x"});
}

QString withoutRepositoryEnding(QStringView name)
{
    return name.chopped(repositoryEndingLength(name)).toString();
}

bool hasRepositoryEnding(QStringView name)
{
    return repositoryEndingLength(name) > 0;
}

bool isJunk(QStringView name)
{
    return name.startsWith(u'.') || isOneOf(name, {u"desktop.ini", u"ehthumbs.db"});
}

bool isJunkFolder(QStringView name)
{
    return isOneOf(name, {u"__MACOSX", u".git", u".github", u".svn", u".vscode", u".idea"});
}

bool isUntypedDocument(QStringView name)
{
    if (!name.contains(u'.'))
        return true;
    return isOneOf(endingOf(name),
                   {u"md",  u"markdown", u"nfo",  u"docx", u"xlsx", u"pptx", u"odt", u"ods",
                    u"rst", u"asc",      u"epub", u"json", u"yml",  u"yaml", u"py",  u"js",
                    u"sh",  u"ps1",      u"7z",   u"gz",   u"tar",  u"msi",  u"iss", u"torrent"});
}

bool isReadme(QStringView name)
{
    for (const QStringView word : {QStringView(u"read"),
                                   QStringView(u"licen"),
                                   QStringView(u"copying"),
                                   QStringView(u"install"),
                                   QStringView(u"changelog"),
                                   QStringView(u"file_id")}) {
        if (startsWithNoCase(name, word))
            return true;
    }
    return isUntypedDocument(name);
}

bool isPicture(QStringView name)
{
    return isOneOf(endingOf(name),
                   {u"jpg", u"jpeg", u"png", u"gif", u"tif", u"tiff", u"pcx", u"pic"});
}

bool isProgramOrArchive(QStringView name)
{
    return isOneOf(endingOf(name),
                   {u"exe",
                    u"com",
                    u"bat",
                    u"zip",
                    u"rar",
                    u"arc",
                    u"arj",
                    u"7z",
                    u"msi",
                    u"lnk",
                    u"url",
                    u"bas",
                    u"vtb",
                    u"sh",
                    u"ps1",
                    u"py"});
}

} // namespace vt::foldernames
