#include "traffic/CAIFlightPlan.h"

#include "platform/Text.h"
#include "traffic/CAIAircraft.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qsizetype firstLegField = 5;

constexpr std::array<QStringView, 7> planColumns = {u"Aircraft ID",
                                                    u"Sequence",
                                                    u"Aircraft Reg.",
                                                    u"Traffic %",
                                                    u"Repeat Period",
                                                    u"Traffic Type",
                                                    u"Action"};

/// The rule word that a field begins with; empty for none.
QString ruleWord(QStringView field)
{
    for (const QStringView word : {QStringView(u"IFR"), QStringView(u"VFR")}) {
        if (startsWithNoCase(field, word))
            return word.toString();
    }
    return {};
}

/// Told by what stands before a field: the call-sign letter and the leg's arrival time.
QStringList airportsOf(const QStringList& fields)
{
    QStringList codes;
    for (qsizetype at = 4; at < fields.size(); ++at) {
        if (fields[at].size() == 4 && fields[at - 2].size() == 1 && fields[at - 4].contains(u':') &&
            !codes.contains(fields[at], Qt::CaseInsensitive))
            codes.append(fields[at]);
    }
    return codes;
}

bool beginsWithVowel(QStringView word)
{
    return !word.isEmpty() && QStringView(u"AEIOU").contains(word.front().toUpper());
}

} // namespace

std::optional<CAIFlightPlan> CAIFlightPlan::ofLine(const QString& line)
{
    QStringList fields = line.split(u',');
    for (QString& field : fields)
        field = field.trimmed();
    if (fields.size() < firstLegField || !startsWithNoCase(fields[0], u"AC#") ||
        fields[1].isEmpty() || !fields[2].contains(u'%') || fields[3].isEmpty())
        return std::nullopt;
    CAIFlightPlan plan;
    plan.sTrafficType = ruleWord(fields[4]);
    if (plan.sTrafficType.isEmpty())
        return std::nullopt;
    plan.sLine = line;
    plan.sAircraft = fields[0];
    plan.lngAircraft = CAIAircraft::numberOf(fields[0]).value_or(-1);
    plan.sTailNumber = fields[1];
    plan.sPercentage = fields[2];
    plan.sRepeatPeriod = fields[3];
    plan.colLegs = CAIFlightPlanLeg::ofFields(fields.sliced(firstLegField));
    plan.sarrayAirports = airportsOf(fields);
    return plan;
}

bool CAIFlightPlan::isWeekly() const
{
    return equalNoCase(sRepeatPeriod, u"WEEK");
}

QString CAIFlightPlan::Describe(qsizetype number,
                                const CAIAircraft* aircraft,
                                const QString& simulator) const
{
    const QString name = aircraft ? aircraft->name() : sAircraft;
    const QString detail = aircraft ? aircraft->detail() : u"not listed"_s;
    QStringList sentences = {
        u"Flight plan #"_s + QString::number(number) + u" appears when "_s + simulator +
        u"'s A.I. traffic threshold is set to "_s + sPercentage +
        (sPercentage == u"100%" ? u". "_s : u" or higher. "_s) + name + u" ("_s + detail +
        u", tail number "_s + sTailNumber + u") flies this route every "_s + sRepeatPeriod +
        u" and is designated "_s + (beginsWithVowel(sTrafficType) ? u"an "_s : u"a "_s) +
        sTrafficType + u" flight."_s};
    for (qsizetype i = 0; i < colLegs.size(); ++i)
        sentences.append(colLegs[i].Describe(i + 1, name, isWeekly()));
    return sentences.join(u'\n');
}

QByteArray CAIFlightPlan::identity(QByteArrayView line)
{
    QByteArray out;
    out.reserve(line.size());
    for (const char c : line) {
        if (c != ' ' && c != '\t' && c != '\r')
            out.append(c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c);
    }
    return out;
}

std::span<const QStringView> CAIFlightPlan::columns()
{
    return planColumns;
}

} // namespace vt
