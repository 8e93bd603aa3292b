#include "catalogue/UsedFiles.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

using catalogue::RefKind;

namespace {

void note(QHash<NoCase, QList<ConfigIndex>>& users, const QString& path, ConfigIndex config)
{
    QList<ConfigIndex>& known = users[NoCase{path}];
    if (known.isEmpty() || known.last() != config)
        known.push_back(config);
}

/// A path that the name in a file leads to; folders above may be named.
QString led(const QString& folder, const QString& name)
{
    return name.contains(u'\\') || name.contains(u'/') ? winpath::normalised(folder + name)
                                                       : folder + name;
}

bool isGaugeFile(QStringView path)
{
    for (const QStringView type : {u".gau", u".cab", u".xml", u".dll"}) {
        if (endsWithNoCase(path, type))
            return true;
    }
    return false;
}

} // namespace

UsedFiles::UsedFiles(const Catalogue& catalogue, const QSet<NoCase>& leaveOut)
    : m_catalogue(catalogue)
{
    addAll(leaveOut);
}

UsedFiles::UsedFiles(const Catalogue& catalogue,
                     const QSet<NoCase>& leaveOut,
                     const QStringList& paths)
    : m_catalogue(catalogue), m_names(QSet<NoCase>())
{
    QString last;
    for (const QString& path : paths) {
        m_names->insert(NoCase{winpath::name(path)});
        m_names->insert(NoCase{winpath::baseName(path)});
        const QString folder = winpath::parent(path);
        if (folder == last)
            continue;
        last = folder;
        for (QString above = folder; above.size() > 3; above = winpath::parent(above))
            m_names->insert(NoCase{winpath::name(winpath::withoutTrailing(above))});
    }
    addAll(leaveOut);
}

void UsedFiles::addAll(const QSet<NoCase>& leaveOut)
{
    for (ConfigIndex config = 0; config < m_catalogue.configCount(); ++config) {
        if (leaveOut.isEmpty() || !leaveOut.contains(NoCase{m_catalogue.file(config)}))
            add(config);
    }
}

bool UsedFiles::mayBeAsked(const QString& named) const
{
    if (!m_names)
        return true;
    const qsizetype cut = qMax(named.lastIndexOf(u'\\'), named.lastIndexOf(u'/'));
    return cut + 1 == named.size() ||
           m_names->contains(NoCase{cut < 0 ? named : named.sliced(cut + 1)});
}

void UsedFiles::add(ConfigIndex config)
{
    const GlobalRecord& global = m_catalogue.m_global;
    const QString own = winpath::parent(m_catalogue.file(config));
    for (const Catalogue::Named& named : m_catalogue.named(config)) {
        if (!mayBeAsked(named.name))
            continue;
        switch (named.kind) {
        case RefKind::Effect:
            note(m_files, global.effectsFolder + named.name + u".fx"_s, config);
            break;
        case RefKind::Gauge:
            note(m_gauges, led(own, named.name), config);
            note(m_gauges, led(global.gaugesFolder, named.name), config);
            break;
        case RefKind::Bitmap:
            note(m_files, led(own, named.name), config);
            break;
        case RefKind::Wave:
            note(m_files, led(own, named.name), config);
            note(m_files, led(global.soundFolder, named.name), config);
            break;
        case RefKind::Texture:
            note(m_files, led(global.effectsFolder + u"Texture\\"_s, named.name), config);
            break;
        }
    }
}

QList<ConfigIndex> UsedFiles::usersOf(const QString& path) const
{
    if (m_files.isEmpty() && m_gauges.isEmpty())
        return {};
    const QString wanted = winpath::normalised(path);
    QList<ConfigIndex> out = m_files.value(NoCase{wanted});
    if (isGaugeFile(wanted))
        out += m_gauges.value(NoCase{wanted.chopped(4)});
    // A gauge that is a folder uses what lies in it.
    for (QString above = winpath::parent(wanted); above.size() > 3; above = winpath::parent(above))
        out += m_gauges.value(NoCase{above.chopped(1)});
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    return out;
}

} // namespace vt
