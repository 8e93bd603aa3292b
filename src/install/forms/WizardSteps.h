// The steps of the installation wizard in their order, with their captions and hints, and the page
// of each.
#pragma once

#include "addondb/CAddon_Item.h"
#include "shell/GlobalRecord.h"
#include "shell/forms/WizardFrame.h"

#include <QList>

namespace vt {

class WizardPage;
struct WizardState;

/// The twelfth step, "F&inish", has no page.
enum class InstallStep
{
    SelectFiles,
    Aircraft,
    Panel,
    Sound,
    Missions,
    Scenery,
    Textures,
    AI,
    Other,
    Options,
    Summary,
    Count,
};

inline constexpr int installStepCount = int(InstallStep::Count);

/// As the column shows them.
[[nodiscard]] QList<WizardStep> installSteps(const DisplayNames& names);

/// The family whose files the step's page configures; None for the first and the last two. Airport
/// files have the page of flight plans.
[[nodiscard]] MappedGroup familyOfStep(InstallStep step);
[[nodiscard]] InstallStep stepOfFamily(MappedGroup family);

/// A new page; the caller owns it.
[[nodiscard]] WizardPage* newPage(InstallStep step, WizardState& state);

} // namespace vt
