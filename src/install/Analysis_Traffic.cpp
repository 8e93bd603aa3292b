// Recognising what concerns computer-controlled traffic: flight plans by content, the lists that go
// with them by name and content, airport files by name where the airport editor can take them.
#include "install/Analysis.h"
#include "install/TrafficEdits.h"
#include "platform/WinPath.h"
#include "traffic/CAFCAD.h"

namespace vt {

/// The family of a file that goes into the add-on's storage.
MappedGroup CAddonInstallationDetails::Analysis::storedFamily(const CAddon_Item& item) const
{
    if (!item.boolExtractable || !mayBeTrafficFile(item.sName) || item.size > trafficFileLimit)
        return MappedGroup::DocumentAndOther;
    const ResultOf<QByteArray> bytes = d.m_source->read(item, trafficFileLimit);
    TrafficKind kind{};
    return bytes && isTrafficFile(item.sName, *bytes, d.m_context.services.ansi, kind)
               ? MappedGroup::TrafficTools
               : MappedGroup::DocumentAndOther;
}

/// Where the simulator keeps airports in its own way, the editor's installer puts them there;
/// elsewhere such a file is scenery like any other.
bool CAddonInstallationDetails::Analysis::goesToAirportEditor(const CAddon_Item& item)
{
    if (item.enumAddonFileType != FileType::Scenery || !CAFCADMetaGroup::isAirportFile(item.sName))
        return false;
    if (!airportEditor) {
        CAFCAD editor(d.m_context);
        airportEditor = editor.isOfUse() && editor.Tool_Find();
    }
    return *airportEditor;
}

/// Of an add-on that is installed again: its flight plans and airport files, by where they lie.
void CAddonInstallationDetails::recordedTraffic()
{
    const Categories recorded = m_recorded->record.categories;
    const auto familyOf = [&](const CAddon_Item& item) {
        const QString& folder = item.sFolder_Installation;
        if (!winpath::isBelow(folder, m_context.global.addonsFolder))
            return MappedGroup::None;
        if ((recorded & Category::AI_Flight_Plans) && mayBeTrafficFile(item.sName))
            return MappedGroup::TrafficTools; // by content, too, when they are read
        return (recorded & Category::Airport_Facilities_Data) &&
                       CAFCADMetaGroup::isAirportFile(item.sName)
                   ? MappedGroup::Afcad
                   : MappedGroup::None;
    };
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        const MappedGroup family = familyOf(item);
        if (family == MappedGroup::None)
            continue;
        std::vector<InstallationGroup>& all = groups(family);
        if (all.empty()) {
            InstallationGroup group;
            group.family = family;
            group.recorded = true;
            group.name = m_addon->sGroupName;
            all.push_back(std::move(group));
        }
        item.enumMappedGroup = family;
        item.groupIndex = 0;
        all.front().items.append(item.lngKey);
    }
}

} // namespace vt
