#include "traffic/CAIFlightPlanLeg.h"

#include "platform/Text.h"

#include <QLocale>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype legFields = 6;

constexpr std::array<QStringView, 7> dayNames = {
    u"Sunday", u"Monday", u"Tuesday", u"Wednesday", u"Thursday", u"Friday", u"Saturday"};

constexpr std::array<QStringView, 8> legColumns = {u"Leg #",
                                                   u"Flight #",
                                                   u"Departure Airport",
                                                   u"Departing",
                                                   u"Arrival Airport",
                                                   u"Arriving",
                                                   u"Cruise Alt.",
                                                   u"Call Signing"};

} // namespace

QList<CAIFlightPlanLeg> CAIFlightPlanLeg::ofFields(const QStringList& fields)
{
    QList<CAIFlightPlanLeg> legs;
    for (qsizetype at = 0; at + legFields <= fields.size(); at += legFields)
        legs.append({fields[at],
                     fields[at + 1],
                     fields[at + 2],
                     fields[at + 3],
                     fields[at + 4],
                     fields[at + 5],
                     at > 0 ? fields[at - 1] : QString()});
    if (!legs.isEmpty())
        legs.first().sDepartureAirport = legs.constLast().sArrivalAirport;
    return legs;
}

QString CAIFlightPlanLeg::shownTime(QStringView time)
{
    const qsizetype slash = time.indexOf(u'/');
    if (slash >= 0) // what follows stays as it is, its marks included
        return time.sliced(slash + 1).trimmed().toString();
    QString out = time.sliced(time.indexOf(u'@') + 1).toString();
    out.remove(u"TNG"_s, Qt::CaseInsensitive);
    return out.trimmed();
}

QString CAIFlightPlanLeg::dayOf(QStringView time)
{
    const qsizetype slash = time.indexOf(u'/');
    if (slash < 1)
        return {};
    const int day = time[slash - 1].digitValue();
    return day >= 0 && day < int(dayNames.size()) ? dayNames[size_t(day)].toString() : QString();
}

QString CAIFlightPlanLeg::altitudeInFeet() const
{
    bool ok = false;
    const int hundreds = sCruiseAltitude.toInt(&ok);
    return ok ? QLocale(QLocale::English).toString(qint64(hundreds) * 100) : sCruiseAltitude;
}

QString CAIFlightPlanLeg::callSigning() const
{
    return equalNoCase(sCallSign, u"R") ? u"the aircraft's tail number"_s
                                        : u"airline and flight number"_s;
}

QString CAIFlightPlanLeg::Describe(qsizetype number, const QString& aircraft, bool weekly) const
{
    const QString day = weekly ? dayOf(sDepartureTime) : QString();
    return u"Flight plan leg #"_s + QString::number(number) + u" calls for "_s + aircraft +
           u" to depart "_s + sDepartureAirport + u" at "_s + shownTime(sDepartureTime) +
           (day.isEmpty() ? QString() : u" on "_s + day) + u". Flight number "_s + sFlightNumber +
           u" will cruise at "_s + altitudeInFeet() + u" feet and arrive at "_s + sArrivalAirport +
           u" at "_s + shownTime(sArrivalTime) + u". ATC will refer to this flight by "_s +
           callSigning() + u'.';
}

std::span<const QStringView> CAIFlightPlanLeg::columns()
{
    return legColumns;
}

} // namespace vt
