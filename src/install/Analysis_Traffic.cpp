// Recognising what concerns computer-controlled traffic: flight plans and their lists by name and
// content, airport files by name where the airport editor can take them.
#include "install/Analysis.h"
#include "install/TrafficEdits.h"
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

} // namespace vt
