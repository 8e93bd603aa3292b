#include "ui/AddonLists.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct Entry
{
    const char16_t* control;
    const char16_t* title;
    StatusFilter status;
    std::optional<Category> category;
};

constexpr Entry entries[] = {
    {u"mnuWorkWithAllAddons", u"All Addons", StatusFilter::All, {}},
    {u"mnuInstalledAddons", u"Installed Addons", StatusFilter::Installed, {}},
    {u"mnuFileCabinet", u"File Cabinet", StatusFilter::FileCabinet, {}},
    {u"mnuAdventures", u"Adventures", StatusFilter::All, Category::Adventures},
    {u"mnuAddons_WorkWithAircraftAddons",
     u"Aircraft Addons",
     StatusFilter::All,
     Category::Aircraft},
    {u"mnuAircraftSkinsAndRepaints",
     u"Aircraft Skins and Repaints",
     StatusFilter::All,
     Category::Aircraft_Skins_And_Repaints},
    {u"mnuAIAirportAndFacilities",
     u"Airport and Facilities",
     StatusFilter::All,
     Category::Airport_Facilities_Data},
    {u"mnuAIFlightPlans", u"Flight Plans", StatusFilter::All, Category::AI_Flight_Plans},
    {u"mnuWorkWithFlights", u"Flights", StatusFilter::All, Category::Flights},
    {u"mnuMissions", u"Missions", StatusFilter::All, Category::Missions},
    {u"mnuMovies", u"Movies", StatusFilter::All, Category::Movies},
    {u"mnuWorkWithPanelAddons", u"Panel Addons", StatusFilter::All, Category::Panels},
    {u"mnuSceneryWorkWith", u"Scenery Addons", StatusFilter::All, Category::Scenery},
    {u"mnuWorkWithSoundAddons", u"Sound Addons", StatusFilter::All, Category::Sounds},
    {u"mnuTextures", u"Textures", StatusFilter::All, Category::Textures},
    {u"mnuVideos", u"Videos", StatusFilter::All, Category::Videos},
};

} // namespace

QStringList addonListControls()
{
    QStringList controls;
    for (const Entry& entry : entries)
        controls.append(QStringView(entry.control).toString());
    return controls;
}

std::optional<AddonListChoice> addonListOf(const QString& controlName)
{
    for (const Entry& entry : entries) {
        if (QStringView(entry.control) != controlName)
            continue;
        AddonListChoice choice;
        choice.filter.status = entry.status;
        choice.filter.category = entry.category;
        choice.title = QStringView(entry.title).toString();
        const bool worksWith =
            !entry.category && entry.status != StatusFilter::FileCabinet; // as at the start
        choice.openingText =
            (worksWith ? u"Opening Work With "_s : u"Opening "_s) + choice.title + u"..."_s;
        return choice;
    }
    return std::nullopt;
}

QString addonListTitle(const ListFilter& filter)
{
    for (const Entry& entry : entries)
        if (entry.status == filter.status && entry.category == filter.category)
            return QStringView(entry.title).toString();
    return u"Addons"_s;
}

} // namespace vt
