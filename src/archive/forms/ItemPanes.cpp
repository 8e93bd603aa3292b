#include "archive/forms/ItemPanes.h"

#include "shell/forms/ColumnView.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

ItemPane::ItemPane(Context& context, Section host, ViewPrefix prefix, QWidget* parent)
    : QWidget(parent), m_model(new ItemListModel(this)), m_context(context), m_host(host),
      m_prefix(prefix)
{}

QBoxLayout*
ItemPane::build(const QString& name, const QString& accessibleName, const QString& empty)
{
    m_view = new ColumnView;
    m_view->setObjectName(name);
    m_view->setAccessibleName(accessibleName);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setModel(m_model);
    m_view->setEmptyText(empty);
    connect(m_view, &QTreeView::activated, this, [this](const QModelIndex& index) {
        Q_EMIT wanted(m_model->path(index));
    });
    m_viewType = new QComboBox;
    m_viewType->setObjectName(u"cboViewType"_s);
    m_viewType->setAccessibleName(u"View"_s);
    m_viewType->addItems({u"Details"_s, u"List"_s});
    connect(m_viewType, &QComboBox::currentIndexChanged, this, [this](int type) {
        m_view->setViewType(ColumnView::ViewType(type));
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_viewType);
    layout->addWidget(m_view, 1);
    return layout;
}

void ItemPane::restoreLayout()
{
    m_view->restoreLayout(m_context.settings, m_host, m_prefix);
    m_viewType->setCurrentIndex(m_view->viewType() == ColumnView::ViewType::Details ? 0 : 1);
}

void ItemPane::saveLayout()
{
    m_view->saveLayout(m_context.settings, m_host, m_prefix);
}

void ItemPane::tell(const Result& done)
{
    fill();
    Q_EMIT said(done.text);
}

QPushButton* ItemPane::addButton(QBoxLayout* row, const QString& name, const QString& text)
{
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    row->addWidget(button);
    return button;
}

QString ItemPane::currentPath() const
{
    return m_model->path(m_view->currentIndex());
}

// --- recent items ---

RecentItemsPane::RecentItemsPane(Context& context, Section host, QWidget* parent)
    : ItemPane(context, host, ViewPrefix::Recent, parent), m_manager(context, host)
{
    QBoxLayout* layout = build(u"lvwRecentItems"_s,
                               u"Recent items"_s,
                               u"Files and folders that you pick are remembered here."_s);
    auto* buttons = new QHBoxLayout;
    connect(addButton(buttons, u"cmdRecent_ClearAll"_s, u"Clear A&ll"_s),
            &QPushButton::clicked,
            this,
            [this] { tell(m_manager.ClearAll()); });
    connect(addButton(buttons, u"cmdRecent_ClearInvalid"_s, u"Clear In&valid"_s),
            &QPushButton::clicked,
            this,
            [this] { tell(m_manager.ClearInvalid()); });
    buttons->addStretch();
    (void)m_manager.Build();
    layout->addWidget(maximumLine());
    layout->addLayout(buttons);
    view()->setFirstSort(ItemListModel::DateColumn, Qt::DescendingOrder);
    restoreLayout();
    fill();
}

QWidget* RecentItemsPane::maximumLine()
{
    auto* box = new QComboBox;
    box->setObjectName(u"cboRecentItemsList_MaxItems"_s);
    for (const int valid : CRecentItemsManager::colRecentItemsList_ValidValues)
        box->addItem(QString::number(valid));
    box->setCurrentText(QString::number(m_manager.lngMaximumItemsAllowed()));
    connect(box, &QComboBox::currentTextChanged, this, [this](const QString& chosen) {
        tell(m_manager.cboRecentItemsList_ItemsToRemember_Validate(chosen));
    });
    auto* label = new QLabel(u"Items to remem&ber:"_s);
    label->setObjectName(u"lblRecentItemsList_MaxItems"_s);
    label->setBuddy(box);
    auto* line = new QWidget;
    auto* row = new QHBoxLayout(line);
    row->setContentsMargins({});
    row->addWidget(label);
    row->addWidget(box);
    row->addStretch();
    return line;
}

void RecentItemsPane::picked(const QString& path)
{
    const Result saved = m_manager.SaveCurrentFileItemAndRebuild(path);
    fill();
    if (!saved)
        Q_EMIT said(saved.text);
}

void RecentItemsPane::fill()
{
    m_model->setItems(m_manager.items().colRecentItems());
}

// --- favourites ---

FavoriteItemsPane::FavoriteItemsPane(Context& context, Section host, QWidget* parent)
    : ItemPane(context, host, ViewPrefix::Favorite, parent), m_manager(context)
{
    QBoxLayout* layout = build(u"lvwFavoriteItems"_s,
                               u"Favorite items"_s,
                               u"Add files and folders that you often go to."_s);
    auto* grid = new QGridLayout;
    const auto place = [&](int row, int column, const QString& name, const QString& text) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        button->setAutoDefault(false);
        grid->addWidget(button, row, column);
        return button;
    };
    connect(place(0, 0, u"cmdFavorite_Add"_s, u"A&dd..."_s), &QPushButton::clicked, this, [this] {
        if (const std::optional<QString> chosen = choose ? choose() : std::nullopt)
            add(*chosen);
    });
    const auto removeCurrent = [this] { tell(m_manager.remove(currentPath())); };
    connect(place(0, 1, u"cmdFavorite_Remove"_s, u"Re&move"_s),
            &QPushButton::clicked,
            this,
            removeCurrent);
    connect(place(1, 0, u"cmdFavorite_ClearAll"_s, u"Clear A&ll"_s),
            &QPushButton::clicked,
            this,
            [this] { tell(m_manager.clearAll()); });
    connect(place(1, 1, u"cmdFavorite_ClearInvalid"_s, u"Clear In&valid"_s),
            &QPushButton::clicked,
            this,
            [this] { tell(m_manager.clearInvalid()); });
    layout->addLayout(grid);
    auto* remove = new QShortcut(Qt::Key_Delete, view());
    remove->setContext(Qt::WidgetShortcut);
    connect(remove, &QShortcut::activated, this, removeCurrent);
    (void)m_manager.Build();
    restoreLayout();
    fill();
}

void FavoriteItemsPane::add(const QString& path)
{
    tell(m_manager.add(path));
}

void FavoriteItemsPane::fill()
{
    m_model->setItems(m_manager.sorted());
}

} // namespace vt
