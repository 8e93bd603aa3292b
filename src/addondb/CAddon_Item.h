// One file of an add-on: where it comes from, what it is, where it goes. A plain record whose texts
// are shared wherever they are equal; it refers to other items of its group by key only.
#pragma once

#include "addondb/FileType.h"
#include "archive/EntryRef.h"
#include "platform/Result.h"

#include <QHash>
#include <QString>

#include <array>
#include <memory>

namespace vt {

class CAddon_ItemGroup;
class CZIP;
class TempFolder;

/// The group of the installation that an item has been mapped to.
enum class MappedGroup : quint8
{
    None,
    Aircraft,
    Panel,
    Sound,
    Missions,
    Scenery,
    Texture,
    TrafficTools,
    Afcad,
    DocumentAndOther,
};

inline constexpr int mappedGroupCount = 10;

/// "aircraft", "panel", ... as the plan names them; "" for None.
[[nodiscard]] QString mappedGroupName(MappedGroup group);

/// Number of items by type code; index 0 counts those not classified.
using TypeTally = std::array<int, fileTypeCount + 1>;

class CAddon_Item
{
public:
    qint32 lngKey = 0;                ///< unique within its group, from 1
    qint32 lngKey_AssociatedItem = 0; ///< the item whose folder this one follows, or 0
    qint32 lngKey_AssociatedZip = 0;  ///< the item that is the archive holding this one, or 0
    FileType enumAddonFileType = FileType::Unknown;
    MappedGroup enumMappedGroup = MappedGroup::None;
    bool boolProcess = true;
    bool boolScenery_Activate = true;
    /// Whether a file stands at the installation place now; filled by the plan.
    bool boolTargetExists = false;
    /// Whether a folder stands there instead; filled with boolTargetExists.
    bool boolTargetIsFolder = false;
    /// Off for an entry that its archive's listing shows to be encrypted, or packed in a way that
    /// nobody here can unpack.
    bool boolExtractable = true;
    qint16 intScenery_Area = 0;

    QString sName;           ///< as found in the source
    QString sFolder_Current; ///< folder in the archive or below the source folder; ends in "\" or
                             ///< is empty. Of a recorded add-on: the installed location
    QString sName_Installation;
    QString sFolder_Installation; ///< empty: not selected
    QString sName_PreferredInstallation;
    QString sFolder_PreferredInstallation;
    QString sScenery_Title;
    QString sScenery_Path;

    qint64 size = 0;        ///< bytes
    EntryRef entry;         ///< the archive entry; not set for a file of a folder
    qint32 groupIndex = -1; ///< which group of its kind in the installation details, or -1
    qint32 detailKey = 0;   ///< row of the details table, for recorded add-ons

    /// Sets enumAddonFileType from the name.
    void AnalyzeType(int generation);

    [[nodiscard]] bool IsMappedToAircraft() const { return isMapped(MappedGroup::Aircraft); }

    [[nodiscard]] bool IsMappedToPanel() const { return isMapped(MappedGroup::Panel); }

    [[nodiscard]] bool IsMappedToSound() const { return isMapped(MappedGroup::Sound); }

    [[nodiscard]] bool IsMappedToDocumentGroup() const
    {
        return isMapped(MappedGroup::DocumentAndOther);
    }

    [[nodiscard]] bool IsMappedToAFCADGroup() const { return isMapped(MappedGroup::Afcad); }

    [[nodiscard]] bool IsMappedToTrafficToolsGroup() const
    {
        return isMapped(MappedGroup::TrafficTools);
    }

    [[nodiscard]] bool IsMappedToTextureGroup() const { return isMapped(MappedGroup::Texture); }

    [[nodiscard]] bool IsMappedToMissionsGroup() const { return isMapped(MappedGroup::Missions); }

    [[nodiscard]] bool IsMappedToSceneryGroup() const { return isMapped(MappedGroup::Scenery); }

    /// Adds one to the count of this item's type.
    void Item_TallyTypes(TypeTally& tally) const;

    /// Whether the file is renamed on installation (in case alone counts as well).
    [[nodiscard]] bool Names_Differ() const { return sName_Installation != sName; }

    /// Name and folder of the associated item; both empty when there is none.
    struct FileDetails
    {
        QString name;
        QString folder;
    };

    [[nodiscard]] FileDetails GetAssociatedFileItemDetails(const CAddon_ItemGroup& group) const;
    [[nodiscard]] FileDetails GetAssociatedZipFileItemDetails(const CAddon_ItemGroup& group) const;

    /// Extracts the item's archive entry into a unique folder ("OPN...") of the temporary folder
    /// \a base, to be opened or played: the file's full path. \a archive must have listed the
    /// item's source. On failure the folder is gone again.
    [[nodiscard]] ResultOf<QString>
    SmartUnzip(CZIP& archive, const TempFolder& temporary, const QString& base) const;

    [[nodiscard]] std::unique_ptr<CAddon_Item> Clone() const;

    /// Both installation texts, or both proposals and with them the installation texts.
    void setInstallation(const QString& folder, const QString& name);
    void setPreferred(const QString& folder, const QString& name);

private:
    [[nodiscard]] bool isMapped(MappedGroup group) const { return enumMappedGroup == group; }
};

} // namespace vt
