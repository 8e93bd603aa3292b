// What the name of a scenery file tells beyond its type: traffic, and single airports.
#pragma once

#include "addondb/AddonRecords.h"
#include "platform/Text.h"

#include <QStringView>

namespace vt {

/// "AF2_KSEA.bgl", "AFD_KSEA.bgl", "AFX_KSEA.bgl": one airport, as airport editors name it.
[[nodiscard]] inline bool isAirportSceneryName(QStringView name)
{
    return endsWithNoCase(name, u".bgl") &&
           (startsWithNoCase(name, u"AF2") || startsWithNoCase(name, u"AFD") ||
            startsWithNoCase(name, u"AFX_"));
}

/// The categories of an add-on with a file of that name.
[[nodiscard]] inline Categories categoriesOfSceneryName(QStringView name)
{
    Categories found;
    found.setFlag(Category::AI_Flight_Plans,
                  startsWithNoCase(name, u"traffic") && endsWithNoCase(name, u".bgl"));
    found.setFlag(Category::Airport_Facilities_Data, isAirportSceneryName(name));
    return found;
}

} // namespace vt
