// What an older database could not hold, told from the rows and pictures that are there.
#include "addondb/AddonDatabase.h"
#include "addondb/DatabaseCare.h"
#include "addondb/FileType.h"
#include "addondb/SceneryNames.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The categories that came with later structures, as far as an add-on's files tell them.
Categories laterCategories(const QList<DetailRecord>& files)
{
    Categories found;
    bool aircraft = false;
    bool aircraftTextures = false;
    for (const DetailRecord& file : files) {
        const FileType type = classify(file.filename, FSX);
        found.setFlag(Category::Movies,
                      found.testFlag(Category::Movies) || type == FileType::Movie);
        found |= categoriesOfSceneryName(file.filename);
        aircraft = aircraft || equalNoCase(file.filename, u"aircraft.cfg");
        const bool texture = type == FileType::Texture || type == FileType::AircraftTexture ||
                             type == FileType::BitmapImage;
        aircraftTextures =
            aircraftTextures || (texture && containsNoCase(file.location, u"\\SimObjects\\") &&
                                 containsNoCase(file.location, u"\\texture"));
    }
    if (aircraftTextures && !aircraft)
        found |= Category::Aircraft_Skins_And_Repaints;
    return found;
}

Result fillCategories(Connection& database, const QList<AddonRecord>& addons)
{
    for (const AddonRecord& addon : addons) {
        const ResultOf<QList<DetailRecord>> files =
            modDatabase_Addon::detailsOf(database, addon.key);
        if (!files)
            return files.error();
        const Categories all = addon.categories | laterCategories(*files);
        if (all == addon.categories)
            continue;
        if (Result set = modDatabase_Addon::setCategories(database, addon.key, all); !set)
            return set;
    }
    return Result::success();
}

/// A picture of an add-on bears its key as name.
Result fillPictures(Connection& database,
                    const Files& files,
                    const QString& imagesFolder,
                    const QList<AddonRecord>& addons)
{
    for (const FileInfo& image : files.list(imagesFolder)) {
        bool isKey = false;
        const qint64 key = winpath::baseName(image.name).toLongLong(&isKey);
        const bool known = isKey && !image.folder &&
                           std::any_of(addons.cbegin(),
                                       addons.cend(),
                                       [&](const AddonRecord& addon) { return addon.key == key; });
        if (!known)
            continue;
        const ResultOf<QList<PictureRecord>> present = modDatabase_Addon::picturesOf(database, key);
        if (!present)
            return present.error();
        if (!present->isEmpty())
            continue; // two files of one name and other types
        PictureRecord picture;
        picture.masterKey = key;
        picture.primary = true;
        if (Result added = modDatabase_Addon::addPicture(database, picture); !added)
            return added;
    }
    return Result::success();
}

} // namespace

Result fillLacking(Connection& database,
                   const Files& files,
                   const QString& imagesFolder,
                   const QList<LackingPart>& lacking)
{
    const bool categories = std::any_of(lacking.cbegin(), lacking.cend(), [](const auto& part) {
        return part.field && part.table == Table::Addon_Master;
    });
    const bool pictures = std::any_of(lacking.cbegin(), lacking.cend(), [](const auto& part) {
        return part.whole && part.table == Table::Addon_Details_Picture;
    });
    if (!categories && !pictures)
        return Result::success();
    return database.together([&]() -> Result {
        const ResultOf<QList<AddonRecord>> addons = modDatabase_Addon::addons(database);
        if (!addons)
            return addons.error();
        if (categories) {
            if (Result filled = fillCategories(database, *addons); !filled)
                return filled;
        }
        return pictures ? fillPictures(database, files, imagesFolder, *addons) : Result::success();
    });
}

} // namespace vt
