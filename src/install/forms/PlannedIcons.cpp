#include "install/forms/PlannedIcons.h"

#include "shell/forms/Icons.h"

namespace vt {

QIcon plannedIcon(PlannedState state)
{
    switch (state) {
    case PlannedState::New:
        return icons::state(icons::State::New);
    case PlannedState::Replaces:
        return icons::state(icons::State::Replaces);
    case PlannedState::Same:
        return icons::state(icons::State::Same);
    case PlannedState::Merges:
        return icons::state(icons::State::Changed);
    case PlannedState::Skipped:
        return icons::state(icons::State::Skipped);
    case PlannedState::Problem:
        break;
    }
    return icons::state(icons::State::Problem);
}

} // namespace vt
