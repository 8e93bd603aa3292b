#include "simconfig/CPanel.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QSet>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr std::array<QStringView, 4> gaugeExtensions = {u"gau", u"cab", u"dll", u"xml"};

/// The number of "window07" or "vcockpit01", -1 for any other name.
int numberBehind(const QString& name, QStringView stem)
{
    if (name.size() != stem.size() + 2 || !startsWithNoCase(name, stem))
        return -1;
    bool ok = false;
    const int number = name.sliced(stem.size()).toInt(&ok);
    return ok && number >= 0 ? number : -1;
}

/// Sections that make a panel: its windows and virtual cockpits.
bool isWindowSection(const QString& name)
{
    return numberBehind(name, u"window") >= 0 || numberBehind(name, u"vcockpit") >= 0;
}

/// What stands behind the collection in a gauge's value: "!Airspeed, 10, 20".
QString behindCollection(const QString& value)
{
    const qsizetype comma = value.indexOf(u',');
    const QStringView name = QStringView(value).first(comma < 0 ? value.size() : comma);
    const qsizetype mark = name.indexOf(u'!');
    return value.sliced(mark < 0 ? name.size() : mark);
}

} // namespace

const AliasConfig::Facts& CPanel::facts()
{
    static constexpr Facts panel{ConfigKind::Panel,
                                 aliastarget::Kind::Panel,
                                 ItemTable::Panel,
                                 u"panel",
                                 u"Panel Configuration Report",
                                 u"No panel configuration problems were detected.",
                                 u"Use Repair to attempt to fix panel issues.",
                                 NotValid,
                                 NotBackedUp};
    return panel;
}

CPanel::CPanel(ConfigAccess access, const Files& files, const GlobalRecord& global)
    : AliasConfig(facts(), access, files, global)
{}

QString CPanel::State_GetMessage(int state, const QString& alias, const QString& simulatorName)
{
    switch (state) {
    case Good:
        return {};
    case NoTarget:
        return u"No target panel was provided."_s;
    case FileMissing:
        return u"The panel configuration file does not exist."_s;
    case ReferenceMissing:
        return u"The panel configuration file refers to another panel but the referenced panel configuration file does not exist."_s;
    case ReferenceNotValid:
        return u"The panel configuration file refers to another panel but the referenced panel configuration file is not valid."_s;
    case NotValid:
        return u"The panel configuration file is not valid. It is not an original panel definition nor does it reference another panel configuration file."_s;
    case NotBackedUp:
        return u"Could not change panel. An error occurred while creating a backup copy of the full panel definition."_s;
    case NotUpdated:
        return u"Could not update the panel configuration file."_s;
    case WouldNotBeValid:
        return u"The panel configuration was not changed because it would not have pointed to a valid panel."_s;
    case NotRestored:
        return u"Error restoring backup configuration file."_s;
    case NoOriginal:
        return u"The panel configuration file does not refer to an original panel definition. This panel will not appear in "_s +
               simulatorName + u'.';
    case OriginalAndAlias:
        return u"The panel configuration file appears to be an original panel definition, yet it also aliases another panel '"_s +
               alias + u"'."_s;
    default:
        return u"Unknown panel error. Error code = "_s + QString::number(state);
    }
}

QString CPanel::stateMessage(int state) const
{
    return State_GetMessage(state, sAlias, simulatorName());
}

// --- what the file says ------------------------------------------------------------------------

QList<CPanel::Entry> CPanel::entriesOf(const LineArray& lines)
{
    QList<Entry> entries;
    forEachEntry(lines, [&](const QString& section, QByteArrayView key, QByteArrayView value) {
        const bool gauge = configfacts::isGaugeKey(key);
        if (value.isEmpty() || (!gauge && !configfacts::isBitmapKey(key)))
            return;
        Entry entry;
        entry.section = section;
        entry.key = lines.decoded(key);
        entry.value = lines.decoded(value);
        entry.isGauge = gauge;
        if (gauge) {
            const auto named = configfacts::gaugeOf(QStringView(entry.value));
            entry.collection = named.collection.toString().replace(u'/', u'\\');
            entry.gauge = named.gauge.toString().replace(u'/', u'\\');
            entry.file =
                entry.gauge.isEmpty() ? entry.collection : entry.collection + u'!' + entry.gauge;
        } else {
            entry.file = configfacts::bitmapOf(entry.value);
            // "$name" is a texture that the simulator paints by itself.
            if (!entry.file.startsWith(u'$'))
                entry.bitmap = entry.file;
        }
        if (!entry.collection.isEmpty() || !entry.bitmap.isEmpty())
            entries.append(entry);
    });
    return entries;
}

bool CPanel::defines(const LineArray& lines) const
{
    bool found = false;
    forEachEntry(lines, [&](const QString& section, QByteArrayView key, QByteArrayView value) {
        found = found ||
                (!value.isEmpty() && (isWindowSection(section) || configfacts::isGaugeKey(key)));
    });
    return found;
}

QList<CPanel::Entry> CPanel::Entries_Get() const
{
    return entriesOf(definition().lines);
}

QList<CPanel::Numbered> CPanel::WindowTitles_Get() const
{
    QList<Numbered> titles;
    const Definition used = definition();
    forEachEntry(used.lines, [&](const QString& section, QByteArrayView key, QByteArrayView value) {
        const int number = equalNoCase(section, u"Window Titles")
                               ? numberBehind(used.lines.decoded(key), u"window")
                               : -1;
        if (number >= 0)
            titles.append({number, used.lines.decoded(value)});
    });
    return titles;
}

QList<CPanel::Numbered> CPanel::VCockpits_Get() const
{
    QList<Numbered> cockpits;
    const Definition used = definition();
    for (const QString& section : modRoutines_INI::INI_Sections_GetNames(used.lines)) {
        if (const int number = numberBehind(section, u"vcockpit"); number >= 0)
            cockpits.append({number,
                             modRoutines_INI::INI_Entry_Get(used.lines, section, u"size_mm"_s)
                                 .value_or(u""_s)});
    }
    return cockpits;
}

Result CPanel::Pictures_CanBeCleared() const
{
    return IsOriginal() ? Result::success()
                        : Result::failure(
                              u"You can only clear the pictures of original panel definitions."_s);
}

// --- files -------------------------------------------------------------------------------------

QString CPanel::collectionAt(const QString& place) const
{
    for (const QStringView extension : gaugeExtensions) {
        const QString file = place + u'.' + extension.toString();
        if (isFile(file))
            return file;
    }
    return isFolder(place) ? place + u'\\' : QString();
}

/// The file or folder (ends in "\") that holds the gauge; empty when there is none.
QString CPanel::gaugePath(const QString& folder, const Entry& entry, Collections& collections) const
{
    for (const QString& top : {folder, m_global.gaugesFolder}) {
        const QString place = winpath::withoutTrailing(placeOf(top, entry.collection));
        auto known = collections.constFind(place);
        if (known == collections.cend())
            known = collections.insert(place, collectionAt(place));
        const QString found = *known;
        if (found.isEmpty())
            continue;
        const QString gauge = found + entry.gauge;
        if (!found.endsWith(u'\\') || entry.gauge.isEmpty() || isFile(gauge + u".xml"_s) ||
            isFile(gauge))
            return found;
    }
    return {};
}

/// In the panel folder; the simulator also takes backgrounds of virtual cockpits from the
/// aircraft's texture folders and from its own.
QString CPanel::bitmapPath(const QString& folder, const QString& bitmap) const
{
    const QString own = placeOf(folder, bitmap);
    if (isFile(own))
        return own;
    const QString aircraft = winpath::parent(winpath::withoutTrailing(folder));
    QStringList others{m_global.textureFolder};
    for (const QString& name : m_files.names(aircraft)) {
        if (startsWithNoCase(name, u"texture"))
            others.append(aircraft + name + u'\\');
    }
    for (const QString& other : others) {
        const QString file = placeOf(other, bitmap);
        if (isFile(file))
            return file;
    }
    return {};
}

QStringList CPanel::GaugeFiles_Existing_Get() const
{
    const Definition used = definition();
    FoundFiles found(m_files);
    Collections collections;
    for (const Entry& entry : entriesOf(used.lines)) {
        const QString path =
            entry.isGauge ? gaugePath(winpath::parent(used.file), entry, collections) : QString();
        if (!path.endsWith(u'\\')) {
            found.add(path);
            continue;
        }
        for (const QString& file : m_files.filesBelow(path))
            found.add(path + file);
    }
    return found.paths();
}

QStringList CPanel::PanelFiles_Get() const
{
    const Definition used = definition();
    FoundFiles found(m_files);
    if (isFile(sConfigurationFile))
        found.add(sConfigurationFile);
    found.add(used.file);
    for (const Entry& entry : entriesOf(used.lines)) {
        if (!entry.bitmap.isEmpty())
            found.add(bitmapPath(winpath::parent(used.file), entry.bitmap));
    }
    return found.paths();
}

// --- checking and mending ----------------------------------------------------------------------

QStringList CPanel::missingLines(const LineArray& lines, const QString& folder) const
{
    QStringList gauges;
    QStringList bitmaps;
    QSet<NoCase> seen;
    Collections collections;
    for (const Entry& entry : entriesOf(lines)) {
        const NoCase name{(entry.isGauge ? u"!"_s : u"/"_s) + entry.file};
        if (seen.contains(name))
            continue;
        seen.insert(name);
        if (entry.isGauge && gaugePath(folder, entry, collections).isEmpty())
            gauges.append(u"\n\t"_s + entry.file);
        else if (!entry.isGauge && bitmapPath(folder, entry.bitmap).isEmpty())
            bitmaps.append(u"\n\t"_s + entry.file);
    }
    QStringList problems;
    if (!gauges.isEmpty())
        problems.append(
            u"- One or more gauges specified in the panel configuration file are missing:"_s +
            gauges.join(QString()));
    if (!bitmaps.isEmpty())
        problems.append(
            u"- One or more bitmap files specified in the panel configuration file are missing:"_s +
            bitmaps.join(QString()));
    return problems;
}

/// The collection below the panel folder that alone bears the name and holds the gauge.
QString CPanel::gaugeElsewhere(const QString& folder, const Entry& entry) const
{
    const QString name = winpath::name(entry.collection);
    QStringList extensions;
    for (const QStringView extension : gaugeExtensions)
        extensions.append(extension.toString());
    QSet<NoCase> places;
    for (const QString& file : filesNamed(folder, name, extensions))
        places.insert(NoCase{winpath::parent(file) + winpath::baseName(file)});
    if (!entry.gauge.isEmpty()) {
        for (const QString& file : filesNamed(folder, winpath::name(entry.gauge), {u"xml"_s})) {
            const QString holder = winpath::withoutTrailing(winpath::parent(file));
            if (equalNoCase(winpath::name(holder), name))
                places.insert(NoCase{holder});
        }
    }
    return places.size() == 1 ? places.cbegin()->text : QString();
}

QString CPanel::bitmapElsewhere(const QString& folder, const Entry& entry) const
{
    const QStringList found = filesNamed(folder, winpath::baseName(entry.bitmap), {u"bmp"_s});
    return found.size() == 1 ? found.constFirst() : QString();
}

QList<AliasConfig::StandIn> CPanel::standIns(const LineArray& lines, const QString& folder) const
{
    QList<StandIn> found;
    Collections collections;
    for (const Entry& entry : entriesOf(lines)) {
        const bool missing = entry.isGauge ? gaugePath(folder, entry, collections).isEmpty()
                                           : bitmapPath(folder, entry.bitmap).isEmpty();
        if (!missing || entry.value.startsWith(u'"'))
            continue;
        const QString place =
            entry.isGauge ? gaugeElsewhere(folder, entry) : bitmapElsewhere(folder, entry);
        if (!place.isEmpty())
            found.append({entry, entry.isGauge ? place + behindCollection(entry.value) : place});
    }
    return found;
}

int CPanel::unfitAsTarget(const Definition& target) const
{
    return target.original ? int(Good) : int(WouldNotBeValid);
}

int CPanel::unfitAsAlias() const
{
    return Good;
}

} // namespace vt
