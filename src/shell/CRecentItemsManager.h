// The items that were used last where add-ons, files or folders are picked: at most as many as the
// user wants, kept in "ISF_SEL.RIL" in the settings folder. Without its list view.
#pragma once

#include "shell/CRecentItemGroup.h"
#include "shell/Context.h"
#include "shell/SettingsTable.h"

#include <array>

namespace vt {

/// Reads a list from the settings folder; a missing file is an empty list.
[[nodiscard]] ResultOf<CRecentItemGroup> loadRecentItems(Context& context, const QString& file);
/// Writes it whole or not at all.
Result saveRecentItems(Context& context, const QString& file, const CRecentItemGroup& items);

class CRecentItemsManager
{
public:
    /// The choices offered for the maximum.
    static constexpr std::array<int, 6> colRecentItemsList_ValidValues = {1, 3, 5, 10, 30, 50};

    /// \a frmHost: the window whose settings hold the maximum. The context must outlive this.
    CRecentItemsManager(Context& context, Section frmHost);

    QString sDataFile; ///< name in the settings folder

    [[nodiscard]] qint32 lngMaximumItemsAllowed() const { return m_maximum; }

    [[nodiscard]] const CRecentItemGroup& items() const { return m_items; }

    /// The maximum from the settings, the list from the disk, trimmed. A list that cannot be read
    /// stays empty.
    Result Build();
    Result LoadFromDisk();
    Result SaveToDisk();
    /// As CRecentItemGroup::Add(), then saves.
    Result Add(const QString& path);

    /// What the picked path becomes part of.
    Result SaveCurrentFileItemAndRebuild(const QString& path) { return Add(path); }

    /// A success carries the text for the status bar.
    Result ClearAll();
    Result ClearInvalid();

    /// The choice that a stored or typed value stands for: itself, or else the next lower one (at
    /// least the first).
    [[nodiscard]] static qint32 MaximumItemsAllowed_Validate(qint32 value);
    /// Takes a value from the host's box, stores it and trims the list.
    Result cboRecentItemsList_ItemsToRemember_Validate(const QString& typed);

private:
    Context& m_context;
    Section m_host;
    qint32 m_maximum = 10;
    CRecentItemGroup m_items;
};

} // namespace vt
