// The pictures that an installation leaves in the program folder: the add-on's own, and those of
// the aircraft, panels and repaints that it brought.
#include "addondb/AddonDatabase.h"
#include "addondb/Pictures.h"
#include "install/CAddonInstaller.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

Result CAddonInstaller::Picture_Store()
{
    // One that is installed again keeps the pictures that it has.
    if (!isAgain())
        m_details.Pictures_AutoAssign();
    const QString& file = m_details.options().pictureFile;
    if (m_details.completes() && file.isEmpty() && !m_details.recorded()->pictures.isEmpty())
        return Result::success();
    const InstallationGroup* first = nullptr;
    for (const MappedGroup family : ruledFamilies()) {
        for (const InstallationGroup& group : m_details.groups(family)) {
            if (!first && group.picture.kind != GroupPicture::Kind::None)
                first = &group;
        }
    }
    Result stored = Result::success();
    if (!file.isEmpty())
        stored = pictures::storeAddonPicture(m_context, m_database, m_record.key, file);
    else if (first) // what stands for a part stands for the whole as well
        stored = pictures::storeAddonPicture(m_context,
                                             m_database,
                                             m_record.key,
                                             first->picture.jpeg,
                                             first->name,
                                             pictures::Form::Preview);
    if (!stored)
        m_results.add(resultgroup::failedSpecialActions, stored.text);
    return stored;
}

Result CAddonInstaller::ItemPictures_Store()
{
    if (toCabinet())
        return Result::success();
    Result last = Result::success();
    for (const MappedGroup family :
         {MappedGroup::Aircraft, MappedGroup::Panel, MappedGroup::Texture}) {
        for (const InstallationGroup& group : m_details.groups(family)) {
            if (group.picture.kind == GroupPicture::Kind::None)
                continue;
            if (Result stored = storePicture(group); !stored) {
                m_results.add(resultgroup::failedSpecialActions, stored.text);
                last = stored;
            }
        }
    }
    return last;
}

/// The sections that a group of aircraft or textures brought to an aircraft.cfg.
QStringList CAddonInstaller::sectionsOf(const InstallationGroup& group, QString& file) const
{
    const bool repaint = group.family == MappedGroup::Texture;
    const QString& folder = repaint ? group.aircraftFolder : group.targetFolder;
    QStringList sections;
    for (const AircraftEdit& edit : m_aircraftEdits) {
        if (!edit.problem.isEmpty() || !winpath::same(edit.aircraft, folder))
            continue;
        file = edit.file;
        if (!repaint && edit.item && !edit.merged)
            sections += edit.ownSections;
        for (const AddedVariation& added : edit.added) {
            const bool own = std::any_of(
                group.variants.cbegin(), group.variants.cend(), [&](const VariantDetails& one) {
                    return equalNoCase(one.texture, added.texture);
                });
            if (repaint ? own : edit.merged)
                sections.append(added.section);
        }
    }
    return sections;
}

Result CAddonInstaller::storePicture(const InstallationGroup& group)
{
    const auto store = [&](ItemTable table, const QString& file, const QString& section) {
        return pictures::storeItemThumbnail(m_context,
                                            m_database,
                                            table,
                                            file,
                                            section,
                                            group.picture.jpeg,
                                            group.name,
                                            pictures::Chosen::ByUser,
                                            pictures::Form::Preview);
    };
    if (group.family == MappedGroup::Panel) {
        for (const File& file : m_files) {
            if (file.code != InstallCode::Installed || !group.items.contains(file.item->lngKey) ||
                file.item->enumAddonFileType != FileType::PanelConfiguration)
                continue;
            if (Result stored = store(ItemTable::Panel, targetOf(*file.item), {}); !stored)
                return stored;
        }
        return Result::success();
    }
    QString file;
    const QStringList sections = sectionsOf(group, file);
    for (const QString& section : sections) {
        if (Result stored = store(ItemTable::Aircraft, file, section); !stored)
            return stored;
    }
    return Result::success();
}

} // namespace vt
