// Pictures that the user gives to aircraft, panels, repaints and scenery: made into previews when
// they are chosen, stored by the installer.
#include "addondb/Pictures.h"
#include "install/CAddonInstallationDetails.h"
#include "install/FolderNames.h"
#include "platform/Profile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 pictureLimit = 64 << 20;
constexpr qint64 panelCfgLimit = 4 << 20;

Result noPictureHere(MappedGroup family)
{
    return Result::failure(
        u"The "_s + mappedGroupName(family) +
        u" files of this add-on have nothing that a picture could be given to."_s);
}

QString otherPictureAssigned(MappedGroup family)
{
    if (family == MappedGroup::Aircraft)
        return u"Other picture assigned to aircraft."_s;
    return u"Other picture assigned to "_s + problemWord(family) + u'.';
}

} // namespace

/// A panel.cfg that refers to another panel shows that one's picture.
bool CAddonInstallationDetails::isOriginalPanel(const InstallationGroup& group) const
{
    for (const qint32 key : group.items) {
        const CAddon_Item* item = m_addon->Search(key);
        if (item->enumAddonFileType != FileType::PanelConfiguration)
            continue;
        const ResultOf<QByteArray> bytes = m_source->read(*item, panelCfgLimit);
        if (bytes && !profile::ProfileFile::ofBytes(*bytes, m_context.services.ansi)
                          .value(u"fltsim"_s, u"alias", u"")
                          .text.isEmpty())
            return false;
    }
    return true;
}

Result CAddonInstallationDetails::Picture_Clear(MappedGroup family, int group)
{
    if (!takesPicture(family) || !hasGroup(family, group))
        return noPictureHere(family);
    InstallationGroup& cleared = groups(family)[size_t(group)];
    if (family == MappedGroup::Panel && !isOriginalPanel(cleared))
        return Result::failure(u"You can only clear the pictures of original panel definitions."_s);
    cleared.picture = {};
    cleared.picture.cleared = true;
    return Result::success(u"Picture was cleared."_s);
}

Result
CAddonInstallationDetails::Picture_SetFromFile(MappedGroup family, int group, const QString& file)
{
    if (!takesPicture(family) || !hasGroup(family, group))
        return noPictureHere(family);
    const ResultOf<QByteArray> bytes = m_context.services.files.read(file, pictureLimit);
    if (!bytes)
        return bytes.error();
    const ResultOf<QByteArray> jpeg = pictures::preview(*bytes, file);
    if (!jpeg)
        return jpeg.error();
    groups(family)[size_t(group)].picture = {GroupPicture::Kind::File, file, *jpeg};
    return Result::success(otherPictureAssigned(family));
}

Result CAddonInstallationDetails::Picture_SetFromClipboard(MappedGroup family,
                                                           int group,
                                                           const QByteArray& picture)
{
    if (!takesPicture(family) || !hasGroup(family, group))
        return noPictureHere(family);
    m_context.services.status.text(u"Primary"_s, u"Saving Clipboard picture..."_s);
    const ResultOf<QByteArray> jpeg = pictures::preview(picture, u"Clipboard"_s);
    if (!jpeg)
        return jpeg.error();
    InstallationGroup& pictured = groups(family)[size_t(group)];
    pictured.picture = {GroupPicture::Kind::Clipboard, {}, *jpeg};
    return Result::success(u"Clipboard picture assigned to "_s + pictured.name);
}

/// The best first.
QList<const CAddon_Item*>
CAddonInstallationDetails::picturesFor(const InstallationGroup& group) const
{
    QList<const CAddon_Item*> thumbnails;
    QList<const CAddon_Item*> beside;
    QList<const CAddon_Item*> others;
    const bool alone = groups(group.family).size() == 1;
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (!foldernames::isPicture(item.sName) || !item.boolExtractable ||
            item.size > pictureLimit)
            continue;
        if (group.items.contains(item.lngKey)) {
            const bool thumbnail = equalNoCase(item.sName, u"thumbnail.jpg");
            (thumbnail ? thumbnails : beside).append(&item);
        } else if (equalNoCase(item.sFolder_Current, group.sourceFolder)) {
            beside.append(&item);
        } else if (alone && item.enumMappedGroup == MappedGroup::DocumentAndOther) {
            others.append(&item);
        }
    }
    return thumbnails + beside + others;
}

void CAddonInstallationDetails::Pictures_AutoAssign()
{
    constexpr qsizetype attempts = 3; // with files that are no pictures, for each group
    const std::pair<MappedGroup, SettingKey> families[] = {
        {MappedGroup::Aircraft, SettingKey::AutoAssignPicturesToAircraft},
        {MappedGroup::Texture, SettingKey::AutoAssignPicturesToAircraft},
        {MappedGroup::Panel, SettingKey::AutoAssignPicturesToPanels},
        {MappedGroup::Scenery, SettingKey::AutoAssignPicturesToScenery},
    };
    for (const auto& [family, setting] : families) {
        if (!m_context.settings.flag(setting))
            continue;
        for (InstallationGroup& group : groups(family)) {
            if (group.picture.kind != GroupPicture::Kind::None || group.picture.cleared)
                continue;
            for (const CAddon_Item* item : picturesFor(group).mid(0, attempts)) {
                const ResultOf<QByteArray> bytes = m_source->read(*item, pictureLimit);
                const ResultOf<QByteArray> jpeg =
                    bytes ? pictures::preview(*bytes, item->sName) : bytes;
                if (!jpeg)
                    continue;
                group.picture = {
                    GroupPicture::Kind::File, item->sFolder_Current + item->sName, *jpeg};
                break;
            }
        }
    }
}

Result CAddonInstallationDetails::applyPictures()
{
    for (const PictureChoice& choice : std::as_const(m_options.pictures)) {
        if (!takesPicture(choice.family) || groups(choice.family).empty())
            return noPictureHere(choice.family);
        for (size_t i = 0; i < groups(choice.family).size(); ++i) {
            if (Result set = Picture_SetFromFile(choice.family, int(i), choice.file); !set)
                return set;
        }
    }
    return Result::success();
}

} // namespace vt
