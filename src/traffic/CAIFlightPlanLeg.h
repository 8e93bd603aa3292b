// One leg of a flight plan of computer-controlled traffic: six consecutive fields of the plan's
// line. Pure text.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <span>

namespace vt {

struct CAIFlightPlanLeg
{
    QString sDepartureTime;  ///< "06:15", "0/06:15:00", as written
    QString sArrivalTime;    ///< as above; "@" and "TNG" in front are the tool's own marks
    QString sCruiseAltitude; ///< in hundreds of feet
    QString sCallSign;       ///< "F": airline and flight number, "R": tail number
    QString sFlightNumber;
    QString sArrivalAirport;
    /// Not in the line: where the leg before arrived, for the first leg where the last one does.
    QString sDepartureAirport;

    /// The legs of a plan from its field 5 on; fields that make no whole leg are left out.
    [[nodiscard]] static QList<CAIFlightPlanLeg> ofFields(const QStringList& fields);

    /// The time as shown: without its day, or, where it has none, without what stands before an
    /// "@" and without "TNG".
    [[nodiscard]] static QString shownTime(QStringView time);
    /// "Sunday" for "0/06:15"; empty without a day.
    [[nodiscard]] static QString dayOf(QStringView time);

    /// "35,000" for the cruise altitude 350; as written when it is no number.
    [[nodiscard]] QString altitudeInFeet() const;
    /// "airline and flight number" or "the aircraft's tail number".
    [[nodiscard]] QString callSigning() const;

    /// The leg in words; \a number counts from 1.
    [[nodiscard]] QString Describe(qsizetype number, const QString& aircraft, bool weekly) const;

    /// "Leg #", "Flight #", ...: titles of the list of legs.
    [[nodiscard]] static std::span<const QStringView> columns();
};

} // namespace vt
