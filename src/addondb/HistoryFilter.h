// The three filters of the history window: their texts, and what each lets pass.
#pragma once

#include "addondb/AddonList.h"

#include <QDate>
#include <QDateTime>
#include <QString>

#include <array>
#include <optional>

namespace vt::historyfilter {

struct StatusChoice
{
    QStringView text;
    StatusFilter status;
};

struct CategoryChoice
{
    QStringView text;
    std::optional<Category> category;
};

enum class Period
{
    AllDates,
    Today,
    ThisWeek,
    ThisMonth,
    ThreeMonths,
    SixMonths,
    Year,
};

/// In the order in which they are offered, the widest first.
[[nodiscard]] const std::array<StatusChoice, 4>& statuses();
[[nodiscard]] const std::array<CategoryChoice, 13>& categories();
/// Texts and what they stand for: "Show Addons Installed Today".
[[nodiscard]] QList<std::pair<QString, Period>> periods();

/// The first moment of the period that ends with \a now; a week begins on \a firstDay. Invalid for
/// all dates.
[[nodiscard]] QDateTime since(Period period, const QDateTime& now, Qt::DayOfWeek firstDay);

} // namespace vt::historyfilter
