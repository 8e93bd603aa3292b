// Preview pictures of add-ons, aircraft and panels: small JPEG files below "Images\" in the program
// folder. What they are made from is decoded by a helper program of limited time and memory, so
// that no file of a stranger does harm here. An add-on's picture is
// "Images\Addons\<key>\Picture.jpg"; that of an aircraft's section or of a panel is "Thumbnail.jpg"
// in a folder of its own below "Images\Items\".
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "platform/FileActions.h"
#include "shell/Context.h"

#include <QByteArray>
#include <QString>

namespace vt::pictures {

/// Points; wider pictures are made smaller, narrower ones stay.
inline constexpr int previewWidth = 320;

/// The picture as JPEG, at most \a width wide. \a name stands in the text of a failure.
[[nodiscard]] ResultOf<QByteArray>
preview(const QByteArray& picture, const QString& name, int width = previewWidth);

/// "...\Images\Addons\12\"
[[nodiscard]] QString addonFolder(const GlobalRecord& global, qint64 masterKey);
/// Full path of the add-on's picture, whether it exists or not.
[[nodiscard]] QString addonPicture(const GlobalRecord& global, qint64 masterKey);

/// What is given as a picture: a file of any kind that is decoded, or what preview() made of one.
enum class Form : quint8
{
    Any,
    Preview,
};

/// Makes the preview, writes it and records it as the add-on's primary picture, replacing an older
/// one. The text of a failure begins with "Could not setup a picture for the addon. ".
Result storeAddonPicture(Context& context,
                         Connection& database,
                         qint64 masterKey,
                         const QByteArray& picture,
                         const QString& name,
                         Form form = Form::Any);
/// The same from a file of the user's.
Result
storeAddonPicture(Context& context, Connection& database, qint64 masterKey, const QString& file);
/// No picture any more: file and row go. One that is not there is a success.
Result clearAddonPicture(Context& context, Connection& database, qint64 masterKey);

/// For a removal: deletes the files of the add-on's pictures and their folder by \a actions, as a
/// part of what these do together. The rows go with the add-on's.
Result deleteAddonPictures(FileActions& actions,
                           const Files& files,
                           const GlobalRecord& global,
                           qint64 masterKey);

/// Whose choice a thumbnail is. Those that the program chose for the simulator's own content carry
/// a remark in the file by which they are told from the user's.
enum class Chosen : quint8
{
    ByUser,
    ByDefault,
};

[[nodiscard]] QByteArray markedAsDefault(const QByteArray& jpeg);
[[nodiscard]] bool isDefault(const QByteArray& jpeg);

/// Full path of the thumbnail of an aircraft's section, or of a panel (no section), named by its
/// configuration file; empty for one outside the simulator's folder.
[[nodiscard]] QString
itemThumbnail(const GlobalRecord& global, const QString& configurationFile, const QString& section);

/// Writes the thumbnail and sees to the item's row in Aircraft_Details or Panel_Details. Texts as
/// of storeAddonPicture().
Result storeItemThumbnail(Context& context,
                          Connection& database,
                          ItemTable table,
                          const QString& configurationFile,
                          const QString& section,
                          const QByteArray& picture,
                          const QString& name,
                          Chosen chosen = Chosen::ByUser,
                          Form form = Form::Any);
/// Full path of the thumbnail of a folder of scenery; empty for one outside the simulator's folder.
[[nodiscard]] QString sceneryThumbnail(const GlobalRecord& global, const QString& folder);
/// Writes it; scenery has no row of its own.
Result storeSceneryThumbnail(Context& context,
                             const QString& folder,
                             const QByteArray& picture,
                             const QString& name,
                             Chosen chosen = Chosen::ByUser);
/// For a removal: the thumbnails of all sections of an aircraft.cfg, or that of a panel.cfg.
Result deleteItemThumbnails(FileActions& actions,
                            const Files& files,
                            const GlobalRecord& global,
                            const QString& configurationFile);
Result
clearItemThumbnail(Context& context, const QString& configurationFile, const QString& section);
/// Deletes the thumbnail at this path, and its folder once that is empty.
Result clearThumbnail(Context& context, const QString& thumbnail);

} // namespace vt::pictures
