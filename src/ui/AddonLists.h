// The lists of add-ons that the main window's menu names: each is the one list under a filter.
#pragma once

#include "addondb/AddonList.h"

#include <QString>

#include <optional>

namespace vt {

struct AddonListChoice
{
    ListFilter filter;
    QString title; ///< of the window: "Aircraft Addons"
};

/// The list that the entry of that control name opens ("mnuFileCabinet"); nothing for others.
[[nodiscard]] std::optional<AddonListChoice> addonListOf(const QString& controlName);

/// The title of the list of that status and category; "Addons" where no menu entry names it.
[[nodiscard]] QString addonListTitle(const ListFilter& filter);

} // namespace vt
