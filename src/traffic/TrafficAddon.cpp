#include "traffic/TrafficAddon.h"

#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "traffic/CAIAircraft.h"
#include "traffic/CAIFlightPlan.h"
#include "traffic/SourceLines.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool isRecord(TrafficKind kind, const QString& line)
{
    switch (kind) {
    case TrafficKind::Aircraft:
        return CAIAircraft::ofLine(line).has_value();
    case TrafficKind::Airports: {
        const QString first = line.section(u',', 0, 0).trimmed();
        return AirportList::codesOf(line).value(0) == first.toUpper() ||
               AirportList::standsForAll(line);
    }
    case TrafficKind::FlightPlans:
        break;
    }
    // One that breaks another rule is skipped later, but what it was meant to be is plain.
    return startsWithNoCase(line.section(u',', 0, 0).trimmed(), u"AC#") &&
           line.section(u',', 2, 2).contains(u'%');
}

/// Whether most lines that say something are records of that kind.
bool holds(TrafficKind kind, const QList<QByteArray>& lines, const AnsiCodec& ansi)
{
    qsizetype records = 0;
    qsizetype others = 0;
    for (const QByteArray& line : lines) {
        const QByteArray trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith('/') || trimmed.startsWith(';'))
            continue;
        ++(isRecord(kind, ansi.decode(line)) ? records : others);
    }
    return records > others;
}

/// Flight plans may have any name.
TrafficKind kindOfName(QStringView name)
{
    for (const TrafficKind one : trafficKinds)
        if (startsWithNoCase(name, trafficBaseName(one)))
            return one;
    return TrafficKind::FlightPlans;
}

struct NamedSet
{
    QString folder;
    QString suffix; ///< "_AUR.txt"
    TrafficSet set;
};

NamedSet& setFor(QList<NamedSet>& sets, const TrafficFile& file)
{
    const QString base = trafficBaseName(file.kind);
    const QString suffix =
        startsWithNoCase(file.name, base) ? file.name.sliced(base.size()) : file.name;
    for (NamedSet& one : sets) {
        if (winpath::same(one.folder, file.folder) && equalNoCase(one.suffix, suffix))
            return one;
    }
    sets.append({file.folder, suffix, {}});
    return sets.last();
}

/// The aircraft for plans that have none under their own name.
const NamedSet* onlyAircraftIn(const QList<NamedSet>& sets, const QString& folder)
{
    const NamedSet* found = nullptr;
    for (const NamedSet& one : sets) {
        if (!winpath::same(one.folder, folder) || one.set.of(TrafficKind::Aircraft).isEmpty())
            continue;
        if (found)
            return nullptr;
        found = &one;
    }
    return found;
}

} // namespace

QString trafficBaseName(TrafficKind kind)
{
    switch (kind) {
    case TrafficKind::Aircraft:
        return u"Aircraft"_s;
    case TrafficKind::Airports:
        return u"Airports"_s;
    case TrafficKind::FlightPlans:
        break;
    }
    return u"FlightPlans"_s;
}

bool mayBeTrafficFile(QStringView name)
{
    return endsWithNoCase(name, u".txt");
}

bool isTrafficFile(QStringView name,
                   const QByteArray& bytes,
                   const AnsiCodec& ansi,
                   TrafficKind& kind)
{
    if (!mayBeTrafficFile(name) || AnsiCodec::looksLikeUtf16OrBinary(bytes))
        return false;
    kind = kindOfName(name);
    // Most texts are read by people and speak of no aircraft by number.
    if (kind == TrafficKind::FlightPlans && !bytes.contains("AC#") && !bytes.contains("ac#") &&
        !bytes.contains("Ac#") && !bytes.contains("aC#"))
        return false;
    const QList<QByteArray> lines = SourceLines::ofBytes(bytes).texts();
    if (holds(kind, lines, ansi))
        return true;
    if (kind == TrafficKind::FlightPlans)
        return false;
    kind = TrafficKind::FlightPlans;
    return holds(kind, lines, ansi);
}

QList<TrafficSet> trafficSets(const QList<TrafficFile>& files)
{
    QList<NamedSet> named;
    for (const TrafficFile& file : files)
        setFor(named, file).set.lines[int(file.kind)] += SourceLines::ofBytes(file.bytes).texts();
    QList<TrafficSet> sets;
    for (const NamedSet& one : std::as_const(named)) {
        sets.append(one.set);
        if (one.set.of(TrafficKind::FlightPlans).isEmpty() ||
            !one.set.of(TrafficKind::Aircraft).isEmpty())
            continue;
        if (const NamedSet* aircraft = onlyAircraftIn(named, one.folder))
            sets.last().lines[int(TrafficKind::Aircraft)] = aircraft->set.of(TrafficKind::Aircraft);
    }
    return sets;
}

} // namespace vt
