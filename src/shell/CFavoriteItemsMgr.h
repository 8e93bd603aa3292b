// The user's favourite files and folders, edited only by him; no maximum. Kept in "FSO_FAV.FIL" in
// the settings folder. Without its list view.
#pragma once

#include "shell/CRecentItemGroup.h"
#include "shell/Context.h"

namespace vt {

class CFavoriteItemsMgr
{
public:
    /// The prompt of the chooser that a new favourite comes from.
    [[nodiscard]] static QString choosePrompt();

    /// The context must outlive this.
    explicit CFavoriteItemsMgr(Context& context);

    QString sDataFile; ///< name in the settings folder

    /// The list as it is kept, which decides what is saved.
    [[nodiscard]] const CRecentItemGroup& items() const { return m_items; }

    /// By name (the last part of the path), as the list shows them until the user sorts otherwise.
    [[nodiscard]] QList<CRecentItem> sorted() const;

    /// Empties the list and reads it from the disk.
    Result Initialize();

    Result Build() { return Initialize(); }

    Result Settings_Save();

    // Each saves; the text tells what was done, for the status bar.

    Result add(const QString& path);
    Result remove(const QString& path);
    Result clearAll();
    Result clearInvalid();

private:
    Result saved(const QString& text);

    Context& m_context;
    CRecentItemGroup m_items;
};

} // namespace vt
