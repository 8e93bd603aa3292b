#include "addondb/Pictures.h"

#include "addondb/AddonDatabase.h"
#include "platform/GuardedChild.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"

using namespace Qt::StringLiterals;

namespace vt::pictures {

namespace {

constexpr qint64 sourceLimit = 64LL * 1024 * 1024;

Result notSetUp(const QString& why)
{
    return Result::failure(u"Could not setup a picture for the addon. "_s + why);
}

/// A comment of a JPEG file, behind its first two bytes.
constexpr QByteArrayView startOfImage("\xFF\xD8");
constexpr QByteArrayView defaultRemark("\xFF\xFE\x00\x1A"
                                       "Vantrel default picture\0",
                                       28);

Result notBelowSimulator(const QString& path)
{
    return notSetUp(u"'"_s + path + u"' does not lie in the simulator's folder."_s);
}

ResultOf<QByteArray> previewOf(const QByteArray& picture, const QString& name, Form form)
{
    return form == Form::Preview ? ResultOf<QByteArray>(picture) : preview(picture, name);
}

Result writeThumbnail(Context& context,
                      const QString& path,
                      const QByteArray& picture,
                      const QString& name,
                      Chosen chosen,
                      Form form = Form::Any)
{
    const ResultOf<QByteArray> jpeg = previewOf(picture, name, form);
    if (!jpeg)
        return notSetUp(jpeg.text);
    const Result written = context.services.actions.replace(
        path, chosen == Chosen::ByDefault ? markedAsDefault(*jpeg) : *jpeg);
    return written ? written : notSetUp(written.text);
}

/// The folder as well, once nothing is left in it.
Result deleteWithFolder(FileActions& actions, const QString& path)
{
    if (Result gone = actions.remove(path); !gone)
        return gone;
    return actions.removeEmptyFolder(winpath::parent(path));
}

} // namespace

QByteArray markedAsDefault(const QByteArray& jpeg)
{
    return isDefault(jpeg) ? jpeg : QByteArray(jpeg).insert(startOfImage.size(), defaultRemark);
}

bool isDefault(const QByteArray& jpeg)
{
    return QByteArrayView(jpeg)
        .sliced(qMin(jpeg.size(), startOfImage.size()))
        .startsWith(defaultRemark);
}

ResultOf<QByteArray> preview(const QByteArray& picture, const QString& name, int width)
{
    GuardedCall call;
    call.program = helperProgram(u"vantrel-picture"_s);
    call.arguments = {QString::number(width)};
    call.input = picture;
    ResultOf<QByteArray> jpeg = runGuarded(call);
    if (jpeg || jpeg.kind == ErrorKind::Surroundings)
        return jpeg;
    return Result::failure(u"The picture '"_s + name + u"' cannot be used: "_s + jpeg.text + u'.');
}

QString addonFolder(const GlobalRecord& global, qint64 masterKey)
{
    return global.imagesFolder + u"Addons\\"_s + QString::number(masterKey) + u'\\';
}

QString addonPicture(const GlobalRecord& global, qint64 masterKey)
{
    return addonFolder(global, masterKey) + u"Picture.jpg"_s;
}

Result storeAddonPicture(Context& context,
                         Connection& database,
                         qint64 masterKey,
                         const QByteArray& picture,
                         const QString& name,
                         Form form)
{
    const ResultOf<QByteArray> jpeg = previewOf(picture, name, form);
    if (!jpeg)
        return notSetUp(jpeg.text);
    const QString path = addonPicture(context.global, masterKey);
    if (Result written = context.services.actions.replace(path, *jpeg); !written)
        return notSetUp(written.text);
    const Result recorded =
        modDatabase_Addon::addPicture(database, {masterKey, 0, AddonTypeCategory::Addon, true});
    if (recorded)
        return recorded;
    (void)deleteWithFolder(context.services.actions, path); // nobody knows of it
    return notSetUp(recorded.text);
}

Result
storeAddonPicture(Context& context, Connection& database, qint64 masterKey, const QString& file)
{
    const ResultOf<QByteArray> picture = context.services.files.read(file, sourceLimit);
    if (!picture)
        return notSetUp(picture.text);
    return storeAddonPicture(context, database, masterKey, *picture, file);
}

Result clearAddonPicture(Context& context, Connection& database, qint64 masterKey)
{
    if (Result forgotten = modDatabase_Addon::deletePicturesOf(database, masterKey); !forgotten)
        return forgotten;
    return deleteAddonPictures(
        context.services.actions, context.services.files, context.global, masterKey);
}

Result deleteAddonPictures(FileActions& actions,
                           const Files& files,
                           const GlobalRecord& global,
                           qint64 masterKey)
{
    const QString folder = addonFolder(global, masterKey);
    if (!files.isFolder(folder))
        return Result::success();
    for (const FileInfo& file : files.list(folder)) {
        if (file.folder)
            continue;
        if (Result gone = actions.remove(folder + file.name); !gone)
            return gone;
    }
    return actions.removeEmptyFolder(folder);
}

QString
itemThumbnail(const GlobalRecord& global, const QString& configurationFile, const QString& section)
{
    const QString folder = winpath::parent(configurationFile);
    if (global.imagesFolder.isEmpty() || global.simulatorFolder.isEmpty() ||
        !winpath::isBelow(folder, global.simulatorFolder))
        return {};
    QString own =
        global.imagesFolder + u"Items\\"_s + winpath::relativeTo(folder, global.simulatorFolder);
    if (const QString name = winpath::safeName(section); !name.isEmpty())
        own += name + u'\\';
    return own + u"Thumbnail.jpg"_s;
}

Result storeItemThumbnail(Context& context,
                          Connection& database,
                          ItemTable table,
                          const QString& configurationFile,
                          const QString& section,
                          const QByteArray& picture,
                          const QString& name,
                          Chosen chosen,
                          Form form)
{
    const QString path = itemThumbnail(context.global, configurationFile, section);
    if (path.isEmpty())
        return notBelowSimulator(configurationFile);
    if (Result written = writeThumbnail(context, path, picture, name, chosen, form); !written)
        return written;
    if (modDatabase_Addon::itemDetail(database, table, configurationFile, section))
        return Result::success();
    ItemDetailRecord record;
    record.item = configurationFile;
    record.section = section;
    if (Result recorded = modDatabase_Addon::setItemDetail(database, table, record); !recorded)
        return notSetUp(recorded.text);
    return Result::success();
}

QString sceneryThumbnail(const GlobalRecord& global, const QString& folder)
{
    return itemThumbnail(global, winpath::asFolder(folder) + u"scenery"_s, {});
}

Result storeSceneryThumbnail(Context& context,
                             const QString& folder,
                             const QByteArray& picture,
                             const QString& name,
                             Chosen chosen)
{
    const QString path = sceneryThumbnail(context.global, folder);
    return path.isEmpty() ? notBelowSimulator(folder)
                          : writeThumbnail(context, path, picture, name, chosen);
}

Result deleteItemThumbnails(FileActions& actions,
                            const Files& files,
                            const GlobalRecord& global,
                            const QString& configurationFile)
{
    const QString folder = winpath::parent(itemThumbnail(global, configurationFile, {}));
    if (folder.isEmpty() || !files.isFolder(folder))
        return Result::success();
    if (!equalNoCase(winpath::name(configurationFile), u"aircraft.cfg"))
        return deleteWithFolder(actions, folder + u"Thumbnail.jpg"_s);
    for (const FileInfo& below : files.list(folder)) {
        if (!below.folder || !containsNoCase(below.name, u"fltsim."))
            continue;
        const QString own = folder + below.name + u"\\Thumbnail.jpg"_s;
        if (Result gone = deleteWithFolder(actions, own); !gone)
            return gone;
    }
    return actions.removeEmptyFolder(folder);
}

Result
clearItemThumbnail(Context& context, const QString& configurationFile, const QString& section)
{
    const QString path = itemThumbnail(context.global, configurationFile, section);
    return path.isEmpty() ? Result::success() : clearThumbnail(context, path);
}

Result clearThumbnail(Context& context, const QString& thumbnail)
{
    return deleteWithFolder(context.services.actions, thumbnail);
}

} // namespace vt::pictures
