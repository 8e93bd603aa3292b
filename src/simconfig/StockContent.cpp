#include "simconfig/StockContent.h"

#include "addondb/AddonDatabase.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"

#include <algorithm>
#include <array>

namespace vt::stockcontent {

namespace {

/// Folders of aircraft of the standard, deluxe and expansion editions, airplanes and rotorcraft,
/// those flown by the simulator alone included.
constexpr std::array<QStringView, 33> stockAircraft = {
    u"Aircreation_582SL",
    u"Airbus_A321",
    u"B737_800",
    u"B747_400",
    u"Beech_Baron_58",
    u"Beech_King_Air_350",
    u"Bell206B",
    u"Bell206B_JetRanger",
    u"Bombardier_CRJ_700",
    u"C172",
    u"C208B",
    u"CRJ_700",
    u"Dash8_100",
    u"DC3",
    u"DeHavilland_Beaver_DHC2",
    u"DeHavilland_Dash8_100",
    u"DG808S",
    u"Douglas_DC-3",
    u"EH101",
    u"Extra_300S",
    u"FA-18",
    u"Grumman_Goose_G21A",
    u"Learjet_45",
    u"Maule_M7_260C",
    u"Maule_M7_260C_ski",
    u"McDonnell_Douglas_MD-83",
    u"MD_83",
    u"Mooney_Bravo",
    u"P-51D",
    u"Piper_Cherokee_180",
    u"Piper_J3Cub",
    u"R22",
    u"Robinson_R22",
};

/// Folders of scenery beside those that are numbered by their place on the earth.
constexpr std::array<QStringView, 22> stockScenery = {
    u"AFRI", u"ASIA",   u"AUST", u"BASE", u"Cities", u"EURE",  u"EURW", u"Generic",
    u"GLOB", u"Global", u"NAMC", u"NAME", u"NAMW",   u"OCEN",  u"OCNE", u"Props",
    u"RDS",  u"SAME",   u"SAMW", u"UTIL", u"Vector", u"World",
};

bool isGridNumber(QStringView name)
{
    return name.size() == 4 &&
           std::all_of(name.begin(), name.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

} // namespace

bool isStockScenery(const GlobalRecord& global, QStringView folder)
{
    if (global.sceneryFolder.isEmpty() || !winpath::isBelow(folder, global.sceneryFolder))
        return false;
    const QStringList parts =
        winpath::components(winpath::relativeTo(folder, global.sceneryFolder));
    return !parts.isEmpty() &&
           (isGridNumber(parts.constFirst()) ||
            std::any_of(stockScenery.begin(), stockScenery.end(), [&](QStringView stock) {
                return equalNoCase(stock, parts.constFirst());
            }));
}

bool isStockAircraftFolder(QStringView name)
{
    return std::any_of(stockAircraft.begin(), stockAircraft.end(), [&](QStringView stock) {
        return equalNoCase(stock, name);
    });
}

bool isOriginal(Connection* database, const GlobalRecord& global, const QString& path)
{
    for (const QString& top : global.aircraftTypeFolders) {
        if (!winpath::isBelow(path, top))
            continue;
        const QStringList parts = winpath::components(winpath::relativeTo(path, top));
        if (parts.isEmpty() || !isStockAircraftFolder(parts.constFirst()))
            return false;
        if (!database || path.endsWith(u'\\'))
            return true;
        const auto owners =
            modDatabase_Addon::ownersOf(*database, winpath::parent(path), winpath::name(path));
        return owners && owners->isEmpty();
    }
    return false;
}

} // namespace vt::stockcontent
