// The file and folder selection window: the files of a place, what the archive under the cursor
// holds, recent and favourite items. As a tool of the main window ("Browse Folders") or as the
// chooser of an add-on. Writes nothing but the two lists and its own layout.
#pragma once

#include "archive/forms/FolderModel.h"
#include "shell/forms/ToolWindow.h"

#include <QString>

#include <optional>

class QBoxLayout;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QSplitter;
class QTabWidget;
class QTimer;
class QToolButton;

namespace vt {

class ArchiveTreeModel;
class ColumnView;
class ElidedLabel;
class FavoriteItemsPane;
class Frame;
class RecentItemsPane;
class Session;

class frmSelectFSO : public ToolWindow
{
    Q_OBJECT

public:
    enum class Purpose
    {
        Browse,         ///< a tool: what is selected can be installed
        SelectAddon,    ///< a file or folder is to be chosen, and remembered
        SelectFavorite, ///< a file or folder is to be chosen; without the two lists
    };

    /// Both must outlive this. \a frame: needed by Purpose::Browse alone.
    frmSelectFSO(Session& session, Frame* frame, Purpose purpose, QWidget* parent = nullptr);

    /// Asks for a file or folder in a window of that title. A Windows path, that of a folder ends
    /// in "\"; it is among the recent items afterwards. Nothing when the user gave up.
    [[nodiscard]] static std::optional<QString>
    choose(QWidget* parent, Session& session, const QString& title);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;
    bool mayClose() override;

    /// Shows a folder, or the folder of a file with the file under the cursor. False, with a word
    /// below the list, when neither exists.
    bool goTo(const QString& path);

    /// What the user would get now: the item under the cursor, else the folder that is shown.
    [[nodiscard]] QString selectedPath() const;

Q_SIGNALS:
    /// The user decided for selectedPath(), or gave up.
    void chosen();
    void givenUp();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    static std::optional<QString>
    ask(QWidget* parent, Session& session, const QString& title, Purpose purpose);

    QBoxLayout* placeLine();
    QWidget* lists();
    QWidget* places();
    QWidget* contents();
    QBoxLayout* filterLine();
    QBoxLayout* buttons();
    void addShortcuts();
    void sizeColumns();
    void fillPlaces();
    void takeTyped();
    void up();
    void reload();
    void activate(const QModelIndex& index);
    void showSelected();
    void showContents();
    void listArchive(const QString& path);
    void decide();
    void sayBelow(const QString& text);

    Session& m_session;
    Frame* m_frame;
    Purpose m_purpose;
    bool m_reading = false;
    FolderModel* m_files;
    ArchiveTreeModel* m_entries;
    QTimer* m_soon;
    QLineEdit* m_place = nullptr;
    QMenu* m_placesMenu = nullptr;
    ColumnView* m_list = nullptr;
    ColumnView* m_tree = nullptr;
    QLabel* m_contents = nullptr;
    QSplitter* m_columns = nullptr;
    QSplitter* m_rows = nullptr;
    QTabWidget* m_tabs = nullptr;
    RecentItemsPane* m_recent = nullptr;
    FavoriteItemsPane* m_favorites = nullptr;
    QComboBox* m_filter = nullptr;
    QLabel* m_said = nullptr;
    ElidedLabel* m_selected = nullptr;
    QPushButton* m_ok = nullptr;
};

} // namespace vt
