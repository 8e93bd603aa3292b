#include "addondb/AddonEdit.h"

#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Result changePicture(Context& context, Connection& database, qint64 masterKey, const QString& file)
{
    if (file.isEmpty())
        return pictures::clearAddonPicture(context, database, masterKey);
    return pictures::storeAddonPicture(context, database, masterKey, file);
}

Result changeTexts(Connection& database, qint64 masterKey, const AddonChanges& changes)
{
    using namespace modDatabase_Addon;
    using Set = Result (*)(Connection&, qint64, const QString&);
    for (const auto& [text, set] :
         std::initializer_list<std::pair<const std::optional<QString>*, Set>>{
             {&changes.name, &setName},
             {&changes.description, &setDescription},
             {&changes.authors, &setAuthors}}) {
        if (!*text)
            continue;
        if (Result done = set(database, masterKey, **text); !done)
            return done;
    }
    return changes.rating ? setRating(database, masterKey, *changes.rating) : Result::success();
}

} // namespace

Result checkChanges(const AddonChanges& changes)
{
    if (changes.name && changes.name->trimmed().isEmpty())
        return Result::failure(u"An add-on needs a name."_s, ErrorKind::Usage);
    if (changes.rating && (*changes.rating < 0 || *changes.rating > highestRating))
        return Result::failure(u"'"_s + QString::number(*changes.rating) +
                                   u"' is not a rating; 1 to 5, or 0 for none."_s,
                               ErrorKind::Usage);
    return Result::success();
}

Result
changeAddon(Context& context, Connection& database, qint64 masterKey, const AddonChanges& changes)
{
    if (Result wanted = checkChanges(changes); !wanted)
        return wanted;
    if (const auto recorded = modDatabase_Addon::addon(database, masterKey); !recorded)
        return recorded.error();
    // The picture first: it is what may be refused.
    if (changes.pictureFile) {
        if (Result done = changePicture(context, database, masterKey, *changes.pictureFile); !done)
            return done;
    }
    return database.together([&] { return changeTexts(database, masterKey, changes); });
}

Result forgetInstallation(Connection& database, const HistoryRecord& record)
{
    const AddonRecord& gone = record.addon;
    const auto present = modDatabase_Addon::addon(database, gone.key);
    if (present && present->dateInstalled == gone.dateInstalled)
        return Result::failure(
            u"'"_s + gone.name +
            u"' stays in the history while the add-on is recorded; remove the add-on first."_s);
    return database.together([&]() -> Result {
        if (Result done = modDatabase_Addon::deleteHistory(database, gone.key, gone.dateInstalled);
            !done)
            return done;
        return modDatabase_Addon::deleteHistoryDescription(database, gone.key, gone.dateInstalled);
    });
}

} // namespace vt
