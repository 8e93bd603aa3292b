// The missions below the simulator's Missions folder: which there are, which of them the simulator
// brought itself, and each as an add-on. Reads only.
#pragma once

#include "addondb/CAddon_ItemGroup.h"
#include "shell/Context.h"
#include "simconfig/CMissionsMetaGroup.h"

#include <QString>

#include <vector>

namespace vt {

class CMissionMgr
{
public:
    /// Must outlive this.
    explicit CMissionMgr(Context& context) : m_context(context) {}

    /// Every mission, sorted by folder, with title, description and files. A flight that cannot be
    /// read leaves its mission without a title.
    [[nodiscard]] CMissionsMetaGroup Missions_Get() const;

    /// Whether a mission's folder, which ends in "\", is one of the simulator's own.
    [[nodiscard]] static bool Mission_IsDefault(QStringView folder);

    /// The mission as an add-on with all its files, not recorded yet. The import note is its
    /// source's name; the simulator's own missions are marked as such and made by "Microsoft".
    [[nodiscard]] CAddon_ItemGroup ItemGroup_Get(const CMissionGroup& mission) const;
    /// All missions as add-ons, in their order.
    [[nodiscard]] std::vector<CAddon_ItemGroup> ItemGroups_Get() const;

    /// "Vantrel addon imported 2026-03-01"
    [[nodiscard]] QString ImportNote() const;

private:
    Context& m_context;
};

} // namespace vt
