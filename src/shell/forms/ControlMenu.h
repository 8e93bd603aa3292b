// The menu tree of the main window, out of one table: captions with access keys, control names,
// order and places. What the entries do is set elsewhere; one that nobody handles is disabled.
#pragma once

#include <QHash>
#include <QString>

#include <span>

class QAction;
class QMenu;
class QMenuBar;

namespace vt {

struct MenuRow
{
    const char* parent;      ///< name of the menu it stands in; empty: the menu bar
    const char* name;        ///< control name, and object name of the action or menu
    const char16_t* caption; ///< "&" marks the access key
    bool menu = false;
    bool checkable = false;
    bool separator = false; ///< a line above
    const char* icon = "";  ///< for icons::command()
    const char* keys = "";  ///< shortcut
};

/// In display order; a menu comes before what stands in it.
[[nodiscard]] std::span<const MenuRow> menuRows();

/// What was made of the table, by control name.
struct ControlMenu
{
    QHash<QString, QAction*> actions; ///< of entries
    QHash<QString, QMenu*> menus;
};

/// Fills the bar; every entry disabled.
[[nodiscard]] ControlMenu buildMenu(QMenuBar* bar);

/// A menu's caption without access key and dots: "Install an Addon".
[[nodiscard]] QString plainCaption(const QString& caption);

} // namespace vt
