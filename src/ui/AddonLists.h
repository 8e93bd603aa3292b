// The lists of add-ons that the main window's menu names: each is the one list under a filter.
#pragma once

#include "addondb/AddonList.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

struct AddonListChoice
{
    ListFilter filter;
    QString title;       ///< of the window: "Aircraft Addons"
    QString openingText; ///< "Opening File Cabinet..."
};

/// The control names of the entries that name a list, in the menu's order.
[[nodiscard]] QStringList addonListControls();
/// The list that the entry of that control name opens ("mnuFileCabinet"); nothing for others.
[[nodiscard]] std::optional<AddonListChoice> addonListOf(const QString& controlName);

/// The title of the list of that status and category; "Addons" where no menu entry names it.
[[nodiscard]] QString addonListTitle(const ListFilter& filter);

} // namespace vt
