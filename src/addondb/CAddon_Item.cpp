#include "addondb/CAddon_Item.h"

#include "addondb/CAddon_ItemGroup.h"
#include "archive/CZIP.h"
#include "platform/TempFolder.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

CAddon_Item::FileDetails fileDetailsOf(const CAddon_ItemGroup& group, qint32 key)
{
    const CAddon_Item* item = key > 0 ? group.GetCAddon_ItemGivenKey(key) : nullptr;
    return item ? CAddon_Item::FileDetails{item->sName, item->sFolder_Current}
                : CAddon_Item::FileDetails{};
}

} // namespace

QString mappedGroupName(MappedGroup group)
{
    switch (group) {
    case MappedGroup::None:
        break;
    case MappedGroup::Aircraft:
        return u"aircraft"_s;
    case MappedGroup::Panel:
        return u"panel"_s;
    case MappedGroup::Sound:
        return u"sound"_s;
    case MappedGroup::Missions:
        return u"mission"_s;
    case MappedGroup::Scenery:
        return u"scenery"_s;
    case MappedGroup::Texture:
        return u"texture"_s;
    case MappedGroup::TrafficTools:
        return u"traffic"_s;
    case MappedGroup::Afcad:
        return u"airport"_s;
    case MappedGroup::DocumentAndOther:
        return u"document"_s;
    }
    return {};
}

void CAddon_Item::AnalyzeType(int generation)
{
    enumAddonFileType = classify(sName, generation);
}

void CAddon_Item::Item_TallyTypes(TypeTally& tally) const
{
    ++tally[size_t(enumAddonFileType)];
}

CAddon_Item::FileDetails
CAddon_Item::GetAssociatedFileItemDetails(const CAddon_ItemGroup& group) const
{
    return fileDetailsOf(group, lngKey_AssociatedItem);
}

CAddon_Item::FileDetails
CAddon_Item::GetAssociatedZipFileItemDetails(const CAddon_ItemGroup& group) const
{
    return fileDetailsOf(group, lngKey_AssociatedZip);
}

ResultOf<QString>
CAddon_Item::SmartUnzip(CZIP& archive, const TempFolder& temporary, const QString& base) const
{
    if (Result named = winpath::checkComponent(sName); !named)
        return named;
    const ResultOf<QString> folder = temporary.makeUnique(base, u"OPN"_s);
    if (!folder)
        return folder.error();
    const QString file = *folder + sName;
    if (archive.Entry_Extract(entry, file))
        return file;
    Result failed = archive.result();
    // What is left behind is empty; the temporary folder is emptied after the operation anyway.
    if (Result gone = temporary.remove(*folder); !gone)
        failed.text += u' ' + gone.text;
    return failed;
}

std::unique_ptr<CAddon_Item> CAddon_Item::Clone() const
{
    return std::make_unique<CAddon_Item>(*this);
}

void CAddon_Item::setInstallation(const QString& folder, const QString& name)
{
    sFolder_Installation = folder;
    sName_Installation = name;
}

void CAddon_Item::setPreferred(const QString& folder, const QString& name)
{
    sFolder_PreferredInstallation = folder;
    sName_PreferredInstallation = name;
    setInstallation(folder, name);
}

} // namespace vt
