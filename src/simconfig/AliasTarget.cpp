#include "simconfig/AliasTarget.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt::aliastarget {

namespace {

/// The folder that an alias names, relative, without separators at its ends.
QString aliasFolder(QStringView alias, Kind kind)
{
    alias = alias.trimmed();
    if (alias.size() > 1 && alias.startsWith(u'"') && alias.endsWith(u'"'))
        alias = alias.sliced(1, alias.size() - 2).trimmed();
    QString folder = alias.toString().replace(u'/', u'\\');
    while (folder.startsWith(u'\\'))
        folder.remove(0, 1);
    while (folder.endsWith(u'\\'))
        folder.chop(1);
    const QString above = winpath::withoutTrailing(winpath::parent(folder));
    const bool namesFile = equalNoCase(winpath::name(folder), configFileName(kind, above));
    return namesFile && !above.isEmpty() ? above : folder;
}

} // namespace

QString configFileName(Kind kind, QStringView folder)
{
    switch (kind) {
    case Kind::Panel:
        return u"Panel.cfg"_s;
    case Kind::Sound:
        return equalNoCase(winpath::name(folder), u"soundai") ? u"SoundAI.cfg"_s : u"Sound.cfg"_s;
    case Kind::Model:
        break;
    }
    return u"Model.cfg"_s;
}

QStringList candidates(const GlobalRecord& global, QStringView alias, Kind kind, QString* problem)
{
    const QString folder = aliasFolder(alias, kind);
    if (const Result checked = winpath::checkRelative(folder); !checked) {
        if (problem)
            *problem =
                u"The alias '"_s + alias.toString() + u"' was not followed. "_s + checked.text;
        return {};
    }
    const QString relative = folder + u'\\' + configFileName(kind, folder);
    QStringList paths;
    for (const QString& top : global.aircraftTypeFolders)
        paths.append(top + relative);
    paths.append(global.simulatorFolder + relative);
    return paths;
}

Target resolve(const Files& files, const GlobalRecord& global, QStringView alias, Kind kind)
{
    Target target;
    const QStringList paths = candidates(global, alias, kind, &target.problem);
    target.file = paths.value(0);
    for (const QString& path : paths) {
        if (!files.isFile(path))
            continue;
        target.file = files.spelled(path);
        target.exists = true;
        break;
    }
    return target;
}

} // namespace vt::aliastarget
