#include "addondb/HistoryFilter.h"

using namespace Qt::StringLiterals;

namespace vt::historyfilter {

const std::array<StatusChoice, 4>& statuses()
{
    static const std::array<StatusChoice, 4> all{{
        {u"Show All Addons", StatusFilter::All},
        {u"Show Only Installed Addons", StatusFilter::Installed},
        {u"Show Only File Cabinet Addons", StatusFilter::FileCabinet},
        {u"Show Only Removed Addons", StatusFilter::Removed},
    }};
    return all;
}

const std::array<CategoryChoice, 13>& categories()
{
    static const std::array<CategoryChoice, 13> all{{
        {u"Show All Categories", std::nullopt},
        {u"Show Only Adventures", Category::Adventures},
        {u"Show Only Aircraft", Category::Aircraft},
        {u"Show Only Aircraft Skins/Repaints", Category::Aircraft_Skins_And_Repaints},
        {u"Show Only A.I. Flight Plans", Category::AI_Flight_Plans},
        {u"Show Only Airport and Facilities", Category::Airport_Facilities_Data},
        {u"Show Only Flights", Category::Flights},
        {u"Show Only Movies", Category::Movies},
        {u"Show Only Panels", Category::Panels},
        {u"Show Only Scenery", Category::Scenery},
        {u"Show Only Sounds", Category::Sounds},
        {u"Show Only Textures", Category::Textures},
        {u"Show Only Videos", Category::Videos},
    }};
    return all;
}

QList<std::pair<QString, Period>> periods()
{
    const QString installed = u"Show Addons Installed"_s;
    return {
        {u"Show All Dates"_s, Period::AllDates},
        {installed + u" Today"_s, Period::Today},
        {installed + u" This Week"_s, Period::ThisWeek},
        {installed + u" This Month"_s, Period::ThisMonth},
        {installed + u" Over The Past 3 Months"_s, Period::ThreeMonths},
        {installed + u" Over The Past 6 Months"_s, Period::SixMonths},
        {installed + u" Over The Past Year"_s, Period::Year},
    };
}

QDateTime since(Period period, const QDateTime& now, Qt::DayOfWeek firstDay)
{
    const QDate today = now.date();
    switch (period) {
    case Period::AllDates:
        return {};
    case Period::Today:
        return today.startOfDay();
    case Period::ThisWeek:
        return today.addDays(-((today.dayOfWeek() - int(firstDay) + 7) % 7)).startOfDay();
    case Period::ThisMonth:
        return QDate(today.year(), today.month(), 1).startOfDay();
    case Period::ThreeMonths:
        return today.addMonths(-3).startOfDay();
    case Period::SixMonths:
        return today.addMonths(-6).startOfDay();
    case Period::Year:
        return today.addYears(-1).startOfDay();
    }
    Q_UNREACHABLE();
}

} // namespace vt::historyfilter
