// One flight plan of computer-controlled traffic: a line of the tool's flight plans file. Pure
// text.
#pragma once

#include "traffic/CAIFlightPlanLeg.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <span>

namespace vt {

struct CAIAircraft;

struct CAIFlightPlan
{
    QString sLine;           ///< as it stands in the file
    QString sAircraft;       ///< "AC#12", in the line's own spelling
    qint64 lngAircraft = -1; ///< 12; -1 without a number
    QString sTailNumber;
    QString sPercentage; ///< "50%"
    QString sRepeatPeriod;
    QString sTrafficType; ///< "IFR" or "VFR"
    QList<CAIFlightPlanLeg> colLegs;
    QStringList sarrayAirports; ///< codes of all legs, each once

    /// Nothing when the line breaks a rule: then it is no flight plan.
    [[nodiscard]] static std::optional<CAIFlightPlan> ofLine(const QString& line);

    /// Whether leg times carry days.
    [[nodiscard]] bool isWeekly() const;

    /// The plan in words, legs included; \a number counts from 1, \a aircraft may be null, \a
    /// simulator is the name to call it by.
    [[nodiscard]] QString
    Describe(qsizetype number, const CAIAircraft* aircraft, const QString& simulator) const;

    /// What two lines of the same plan have in common: without blanks, in one case.
    [[nodiscard]] static QByteArray identity(QByteArrayView line);

    /// "Aircraft ID", "Sequence", ...: titles of the list of plans.
    [[nodiscard]] static std::span<const QStringView> columns();
};

} // namespace vt
