#include "addondb/AddonRecords.h"

#include "platform/Text.h"

#include <array>
#include <optional>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct CategoryInfo
{
    Category category;
    const char16_t* word;
    const char16_t* filterWord; ///< after "Show Only " in the history window
};

constexpr std::array<CategoryInfo, 13> categoryTable{{
    {Category::Adventures, u"Adventures", u"Adventures"},
    {Category::Aircraft, u"Aircraft", u"Aircraft"},
    {Category::Scenery, u"Scenery", u"Scenery"},
    {Category::Textures, u"Textures", u"Textures"},
    {Category::Missions, u"Missions", u"Missions"},
    {Category::Videos, u"Videos", u"Videos"},
    {Category::Sounds, u"Sounds", u"Sounds"},
    {Category::Panels, u"Panels", u"Panels"},
    {Category::Flights, u"Flights", u"Flights"},
    {Category::Airport_Facilities_Data, u"Airport Facilities Data", u"Airport and Facilities"},
    {Category::AI_Flight_Plans, u"AI Flight Plans", u"A.I. Flight Plans"},
    {Category::Aircraft_Skins_And_Repaints,
     u"Aircraft Skins And Repaints",
     u"Aircraft Skins/Repaints"},
    {Category::Movies, u"Movies", u"Movies"},
}};
static_assert(quint16(categoryTable.back().category) == 1 << (categoryTable.size() - 1));

struct FileCategoryInfo
{
    const char16_t* fileCategory;
    Category category;
};

/// File categories that set a flag; "Document", "Other", "Landing Lights Source", "Dynamic Link
/// Library" and "Font" set none.
constexpr std::array<FileCategoryInfo, 20> fileCategoryTable{{
    {u"Aircraft", Category::Aircraft},
    {u"Aircraft Configuration", Category::Aircraft},
    {u"Sim Configuration", Category::Aircraft},
    {u"Aircraft Model", Category::Aircraft},
    {u"Aircraft Texture", Category::Aircraft},
    {u"Adventure", Category::Adventures},
    {u"Adventure Source", Category::Adventures},
    {u"Panel Configuration", Category::Panels},
    {u"Bitmap Image", Category::Panels},
    {u"Panel Gauge", Category::Panels},
    {u"Cabinet Archive", Category::Panels},
    {u"XML File", Category::Panels},
    {u"Flight", Category::Flights},
    {u"Scenery", Category::Scenery},
    {u"Sound", Category::Sounds},
    {u"Video", Category::Videos},
    {u"Movie", Category::Movies},
    {u"Mission", Category::Missions},
    {u"Dynamic Mission Elements", Category::Missions},
    {u"Global Campaign Information", Category::Missions},
}};

} // namespace

QString statusWord(InstallationStatus status)
{
    switch (status) {
    case InstallationStatus::Installed:
        return u"installed"_s;
    case InstallationStatus::FileCabinet:
        return u"cabinet"_s;
    case InstallationStatus::Removed:
        return u"removed"_s;
    case InstallationStatus::Imported:
        return u"imported"_s;
    }
    return u"unknown"_s;
}

QString sourceTypeWord(SourceType type)
{
    switch (type) {
    case SourceType::Unknown:
        break;
    case SourceType::Zip:
        return u"zip"_s;
    case SourceType::Rar:
        return u"rar"_s;
    case SourceType::Folder:
        return u"folder"_s;
    case SourceType::Imported:
        return u"imported"_s;
    }
    return u"unknown"_s;
}

QStringList categoryWords(Categories categories)
{
    QStringList words;
    for (const CategoryInfo& about : categoryTable) {
        if (categories.testFlag(about.category))
            words.push_back(QStringView(about.word).toString());
    }
    return words;
}

QString kindWord(Categories categories, const QString& other)
{
    if (categories & Category::Aircraft)
        return u"aircraft"_s;
    if (categories & Category::Panels)
        return u"panel"_s;
    if (categories & Category::Sounds)
        return u"sound"_s;
    if (categories & Category::Scenery)
        return u"scenery"_s;
    if (categories & Category::Missions)
        return u"mission"_s;
    return other;
}

std::optional<Category> categoryOfWord(const QString& word)
{
    const QString blanks = QString(word).replace(u'_', u' ').trimmed();
    for (const CategoryInfo& about : categoryTable) {
        if (equalNoCase(blanks, QStringView(about.word)) ||
            equalNoCase(blanks, QStringView(about.filterWord)))
            return about.category;
    }
    return std::nullopt;
}

Categories categoriesOfFiles(const QStringList& fileCategories)
{
    Categories categories;
    for (const QString& name : fileCategories) {
        for (const FileCategoryInfo& about : fileCategoryTable) {
            if (name == QStringView(about.fileCategory))
                categories |= about.category;
        }
    }
    return categories;
}

Categories recomputedCategories(Categories before, const QStringList& fileCategories)
{
    const Categories kept = Category::Textures | Category::Airport_Facilities_Data |
                            Category::AI_Flight_Plans | Category::Aircraft_Skins_And_Repaints |
                            Category::Missions;
    return categoriesOfFiles(fileCategories) | (before & kept);
}

} // namespace vt
