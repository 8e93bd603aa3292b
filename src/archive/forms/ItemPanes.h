// The two lists beside the files of the selection window: recent items and favourites, with what
// can be done to them. The rules are those of CRecentItemsManager and CFavoriteItemsMgr.
#pragma once

#include "archive/forms/ItemListModel.h"
#include "shell/CFavoriteItemsMgr.h"
#include "shell/CRecentItemsManager.h"

#include <QWidget>

#include <functional>
#include <optional>

class QBoxLayout;
class QComboBox;
class QPushButton;

namespace vt {

class ColumnView;

/// What both have in common: the list, its view choice, and what is said after a change.
class ItemPane : public QWidget
{
    Q_OBJECT

public:
    /// \a context must outlive this. \a host: the window whose section holds the list's layout.
    ItemPane(Context& context, Section host, ViewPrefix prefix, QWidget* parent = nullptr);

    void saveLayout();

    [[nodiscard]] ColumnView* view() const { return m_view; }

Q_SIGNALS:
    /// An item was activated: the window goes there.
    void wanted(const QString& path);
    /// For the host's status line.
    void said(const QString& text);

protected:
    /// The list, with \a empty standing in it as long as there is nothing.
    QBoxLayout* build(const QString& name, const QString& accessibleName, const QString& empty);
    void restoreLayout();
    /// Tells the text of \a done and fills the list anew.
    void tell(const Result& done);
    QPushButton* addButton(QBoxLayout* row, const QString& name, const QString& text);
    [[nodiscard]] QString currentPath() const;

    [[nodiscard]] Context& context() const { return m_context; }

    [[nodiscard]] Section host() const { return m_host; }

    virtual void fill() = 0;

    ItemListModel* m_model;

private:
    Context& m_context;
    Section m_host;
    ViewPrefix m_prefix;
    ColumnView* m_view = nullptr;
    QComboBox* m_viewType = nullptr;
};

class RecentItemsPane : public ItemPane
{
    Q_OBJECT

public:
    RecentItemsPane(Context& context, Section host, QWidget* parent = nullptr);

    /// Remembers what was picked.
    void picked(const QString& path);

protected:
    void fill() override;

private:
    QWidget* maximumLine();

    CRecentItemsManager m_manager;
};

class FavoriteItemsPane : public ItemPane
{
    Q_OBJECT

public:
    FavoriteItemsPane(Context& context, Section host, QWidget* parent = nullptr);

    /// Asks for the file or folder of a new favourite; nothing when the user gave up.
    std::function<std::optional<QString>()> choose;

    void add(const QString& path);

protected:
    void fill() override;

private:
    CFavoriteItemsMgr m_manager;
};

} // namespace vt
