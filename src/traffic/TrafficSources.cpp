#include "traffic/TrafficSources.h"

#include "platform/AnsiCodec.h"
#include "traffic/CAIAircraft.h"
#include "traffic/CAIFlightPlan.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

bool TrafficSources::Change::isEmpty() const
{
    return std::all_of(std::begin(trafficKinds), std::end(trafficKinds), [this](TrafficKind kind) {
        return isEmpty(kind);
    });
}

TrafficSources::Change
TrafficSources::add(qint64 addonKey, const QByteArray& addonName, const QList<TrafficSet>& sets)
{
    Adding adding{record.addonFor(addonKey, addonName), {}, {}, {}};
    for (const TrafficKind kind : trafficKinds) {
        const QList<QByteArray>& own = adding.addon.lines[int(kind)];
        adding.own[int(kind)] = QSet<QByteArray>(own.cbegin(), own.cend());
        adding.others[int(kind)] = record.linesOfOthers(addonKey, kind);
    }
    for (const TrafficSet& set : sets) {
        const Numbers numbers = addAircraft(adding, set);
        addAirports(adding, set);
        addPlans(adding, set, numbers);
    }
    return adding.change;
}

void TrafficSources::put(Adding& adding, TrafficKind kind, const QByteArray& line)
{
    SourceLines& file = files[int(kind)];
    if (file.lacksLastEnd()) {
        const QByteArray last = file.endLastLine();
        if (!record.hasAny(kind)) // else the user took the end away later
            record.files[int(kind)].unended = last;
    }
    file.append(line);
    adding.addon.lines[int(kind)].append(line);
    adding.own[int(kind)].insert(line);
    adding.change.lines[int(kind)].append(line);
}

/// A line that is there already: this add-on's too, when another add-on brought it.
void TrafficSources::share(Adding& adding, TrafficKind kind, const QByteArray& line)
{
    if (!adding.others[int(kind)].contains(line) || adding.own[int(kind)].contains(line))
        return;
    adding.addon.lines[int(kind)].append(line);
    adding.own[int(kind)].insert(line);
}

TrafficSources::Numbers TrafficSources::addAircraft(Adding& adding, const TrafficSet& set)
{
    struct Known
    {
        qint64 number;
        QByteArray line;
    };

    QHash<QString, Known> byIdentity;
    QSet<qint64> taken;
    qint64 highest = 0;
    const auto note = [&](const QByteArray& line) {
        const auto aircraft = CAIAircraft::ofLine(m_ansi->decode(line));
        if (!aircraft)
            return;
        byIdentity.insert(aircraft->identity(), {aircraft->lngNumber, line});
        taken.insert(aircraft->lngNumber);
        highest = std::max(highest, aircraft->lngNumber);
    };
    for (const QByteArray& line : files[int(TrafficKind::Aircraft)].texts())
        note(line);

    Numbers numbers;
    for (const QByteArray& line : set.of(TrafficKind::Aircraft)) {
        const auto aircraft = CAIAircraft::ofLine(m_ansi->decode(line));
        if (!aircraft || numbers.contains(aircraft->lngNumber))
            continue;
        const auto known = byIdentity.constFind(aircraft->identity());
        if (known != byIdentity.cend()) {
            numbers.insert(aircraft->lngNumber, known->number);
            share(adding, TrafficKind::Aircraft, known->line);
            continue;
        }
        const bool free = !taken.contains(aircraft->lngNumber);
        const qint64 number = free ? aircraft->lngNumber : highest + 1;
        const QByteArray own = free ? line : CAIAircraft::renumbered(line, number);
        if (!free)
            adding.change.remarks.append(u"'"_s + aircraft->name() + u"' became AC#"_s +
                                         QString::number(number) + u", because AC#"_s +
                                         QString::number(aircraft->lngNumber) +
                                         u" is another aircraft already."_s);
        numbers.insert(aircraft->lngNumber, number);
        put(adding, TrafficKind::Aircraft, own);
        note(own);
    }
    return numbers;
}

void TrafficSources::addPlans(Adding& adding, const TrafficSet& set, const Numbers& numbers)
{
    QHash<QByteArray, QByteArray> known;
    for (const QByteArray& line : files[int(TrafficKind::FlightPlans)].texts())
        known.insert(CAIFlightPlan::identity(line), line);
    for (const QByteArray& line : set.of(TrafficKind::FlightPlans)) {
        const auto plan = CAIFlightPlan::ofLine(m_ansi->decode(line));
        if (!plan)
            continue;
        const qint64 number = numbers.value(plan->lngAircraft, plan->lngAircraft);
        const QByteArray own =
            number == plan->lngAircraft ? line : CAIAircraft::renumbered(line, number);
        const QByteArray identity = CAIFlightPlan::identity(own);
        const auto there = known.constFind(identity);
        if (there != known.cend()) {
            share(adding, TrafficKind::FlightPlans, *there);
            continue;
        }
        put(adding, TrafficKind::FlightPlans, own);
        known.insert(identity, own);
    }
}

void TrafficSources::addAirports(Adding& adding, const TrafficSet& set)
{
    QHash<QString, QByteArray> known; ///< by code
    QSet<QByteArray> lines;
    AirportList listed;
    const auto note = [&](const QByteArray& line) {
        const QString text = m_ansi->decode(line);
        lines.insert(line);
        listed.addLine(text);
        for (const QString& code : AirportList::codesOf(text))
            known.insert(code, line);
    };
    for (const QByteArray& line : files[int(TrafficKind::Airports)].texts())
        note(line);
    for (const QByteArray& line : set.of(TrafficKind::Airports)) {
        const QString text = m_ansi->decode(line);
        const QStringList codes = AirportList::codesOf(text);
        const bool all = AirportList::standsForAll(text);
        if (codes.isEmpty() && !all)
            continue;
        const bool there =
            !all && std::all_of(codes.cbegin(), codes.cend(), [&](const QString& code) {
                return listed.contains(code);
            });
        if (!there && !lines.contains(line)) {
            put(adding, TrafficKind::Airports, line);
            note(line);
            continue;
        }
        for (const QString& code : codes) {
            if (known.contains(code))
                share(adding, TrafficKind::Airports, known.value(code));
        }
        share(adding, TrafficKind::Airports, line);
    }
}

TrafficSources::Change TrafficSources::remove(qint64 addonKey)
{
    Change change;
    const TrafficRecord::Addon* found = record.find(addonKey);
    if (!found)
        return change;
    const TrafficRecord::Addon going = *found;
    record.addons.removeIf(
        [addonKey](const TrafficRecord::Addon& addon) { return addon.key == addonKey; });
    for (const TrafficKind kind : trafficKinds) {
        QList<QByteArray> lines = going.lines[int(kind)];
        const QSet<QByteArray> others = record.linesOfOthers(addonKey, kind);
        lines.removeIf([&](const QByteArray& line) { return others.contains(line); });
        if (files[int(kind)].remove(lines) > 0)
            change.lines[int(kind)] = lines;
        std::optional<QByteArray>& unended = record.files[int(kind)].unended;
        if (unended && !record.hasAny(kind)) {
            files[int(kind)].dropLastEnd(*unended);
            unended.reset();
        }
    }
    return change;
}

void TrafficSources::forgetAirports()
{
    for (TrafficRecord::Addon& addon : record.addons)
        addon.lines[int(TrafficKind::Airports)].clear();
    record.files[int(TrafficKind::Airports)] = {};
}

bool TrafficSources::isNeedless(TrafficKind kind) const
{
    return record.files[int(kind)].created && files[int(kind)].isEmpty() && record.addons.isEmpty();
}

} // namespace vt
