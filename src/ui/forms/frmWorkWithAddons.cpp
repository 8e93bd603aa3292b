#include "ui/forms/frmWorkWithAddons.h"

#include "shell/Settings.h"
#include "ui/AddonLists.h"
#include "ui/forms/AddonDetailsPane.h"
#include "ui/forms/frmAddon_Edit.h"

#include <QAction>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMimeData>
#include <QSplitter>
#include <QToolButton>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The first file among what is dragged, as a path of the host.
QString draggedFile(const QMimeData* data)
{
    const QList<QUrl> urls = data->urls();
    for (const QUrl& url : urls)
        if (url.isLocalFile())
            return url.toLocalFile();
    return {};
}

} // namespace

frmWorkWithAddons::frmWorkWithAddons(Session& session, Frame& frame, QWidget* parent)
    : ToolWindow(session.context(), Section::WorkWithAddons, parent), m_session(session),
      m_frame(frame)
{
    setObjectName(u"frmWorkWithAddons"_s);
    setWindowTitle(u"All Addons"_s);
    setAcceptDrops(true);
    m_list = new ColumnView;
    m_list->setObjectName(u"lvwAddons"_s);
    m_list->setAccessibleName(u"Add-ons"_s);
    m_manager = new CControlMgr_lvwAddons(session, frame, *m_list, this);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buildFilters());
    buildPanes();
    layout->addWidget(m_panes, 1);
    addShortcuts();
    m_selectionChanged.setSingleShot(true);
    connect(&m_selectionChanged, &QTimer::timeout, this, &frmWorkWithAddons::showSelection);
    connect(
        m_manager, &CControlMgr_lvwAddons::analyzed, this, [this] { m_selectionChanged.start(0); });
    connect(m_manager, &CControlMgr_lvwAddons::shownChanged, this, &frmWorkWithAddons::showCounts);
    connect(m_list, &ColumnView::emptyButtonClicked, this, &frmWorkWithAddons::emptyButton);
    connect(m_list, &QAbstractItemView::activated, this, &frmWorkWithAddons::editSelected);
}

QLayout* frmWorkWithAddons::buildFilters()
{
    m_search = new QLineEdit;
    m_search->setObjectName(u"txtSearch"_s);
    m_search->setClearButtonEnabled(true);
    m_search->setPlaceholderText(u"Name, author, source or description"_s);
    auto* label = new QLabel(u"&Search:"_s);
    label->setBuddy(m_search);
    m_category = new QComboBox;
    m_category->setObjectName(u"cboCategory"_s);
    m_category->setAccessibleName(u"Category"_s);
    m_category->addItem(u"All Categories"_s, 0);
    for (int bit = 0; bit < 13; ++bit)
        m_category->addItem(categoryWords(Categories::fromInt(1 << bit)).value(0), 1 << bit);
    m_state = new QComboBox;
    m_state->setObjectName(u"cboState"_s);
    m_state->setAccessibleName(u"State"_s);
    m_state->addItem(u"All States"_s, int(StatusFilter::All));
    m_state->addItem(u"Installed"_s, int(StatusFilter::Installed));
    m_state->addItem(u"File Cabinet"_s, int(StatusFilter::FileCabinet));
    m_count = new QLabel;
    m_count->setObjectName(u"lblCount"_s);
    m_showDetails = new QToolButton;
    m_showDetails->setObjectName(u"cmdDetails"_s);
    m_showDetails->setText(u"&Details"_s);
    m_showDetails->setCheckable(true);
    m_showDetails->setChecked(true);
    m_showDetails->setToolTip(u"Show or hide the details of the selected add-on"_s);
    connect(m_search, &QLineEdit::textChanged, this, &frmWorkWithAddons::applyFilter);
    connect(m_category, &QComboBox::currentIndexChanged, this, &frmWorkWithAddons::applyFilter);
    connect(m_state, &QComboBox::currentIndexChanged, this, &frmWorkWithAddons::applyFilter);
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(m_search, 1);
    line->addWidget(m_category);
    line->addWidget(m_state);
    line->addWidget(m_count);
    line->addWidget(m_showDetails);
    return line;
}

void frmWorkWithAddons::buildPanes()
{
    m_details = new AddonDetailsPane(m_session);
    connect(m_details, &AddonDetailsPane::editWanted, this, &frmWorkWithAddons::editSelected);
    m_panes = new QSplitter(Qt::Horizontal);
    m_panes->setObjectName(u"splPanes"_s);
    m_panes->addWidget(m_list);
    m_panes->addWidget(m_details);
    m_panes->setStretchFactor(0, 2);
    m_panes->setStretchFactor(1, 1);
    m_panes->setChildrenCollapsible(false);
    connect(m_showDetails, &QToolButton::toggled, this, [this](bool shown) {
        m_details->setVisible(shown);
        m_selectionChanged.start(0);
    });
}

void frmWorkWithAddons::addShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto&& run) {
        auto* action = new QAction(this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    add(QKeySequence::Find, [this] {
        m_search->setFocus();
        m_search->selectAll();
    });
    add(Qt::Key_F5, [this] { recordsChanged(); });
    auto* down = new QAction(m_search);
    down->setShortcut(Qt::Key_Down);
    down->setShortcutContext(Qt::WidgetShortcut);
    connect(down, &QAction::triggered, m_list, [this] {
        m_list->setFocus();
        if (!m_list->currentIndex().isValid())
            m_list->setCurrentIndex(m_list->model()->index(0, int(AddonColumn::AddonName)));
    });
    m_search->addAction(down);
}

// --- life ---

void frmWorkWithAddons::Form_PrepareToShow()
{
    Settings& settings = context().settings;
    const auto number = [&](LayoutValue value) {
        return settings.layoutText(section(), value).toInt();
    };
    m_manager->fill();
    m_list->restoreLayout(settings, section());
    m_showDetails->setChecked(settings.layoutText(section(), LayoutValue::PreviewImages) ==
                              "True"_L1);
    const int first = number(LayoutValue::FirstPaneWidth);
    const int second = number(LayoutValue::SecondPaneWidth);
    // Two thirds and one third of whatever there is.
    m_panes->setSizes(first > 0 && second > 0 ? QList<int>{first, second} : QList<int>{2000, 1000});
    if (m_manager->model().rowCount() > 0)
        m_list->setCurrentIndex(m_list->model()->index(0, int(AddonColumn::AddonName)));
    m_list->setFocus();
}

void frmWorkWithAddons::Form_Settings_Save()
{
    Settings& settings = context().settings;
    m_list->saveLayout(settings, section());
    settings.setLayoutText(
        section(), LayoutValue::PreviewImages, m_showDetails->isChecked() ? u"True"_s : u"False"_s);
    if (!m_details->isVisibleTo(this))
        return;
    const QList<int> sizes = m_panes->sizes();
    settings.setLayoutText(section(), LayoutValue::FirstPaneWidth, QString::number(sizes.value(0)));
    settings.setLayoutText(
        section(), LayoutValue::SecondPaneWidth, QString::number(sizes.value(1)));
}

void frmWorkWithAddons::recordsChanged()
{
    m_shownKeys.clear();
    m_manager->fill();
}

// --- filter ---

void frmWorkWithAddons::applyFilter()
{
    ListFilter filter;
    filter.search = m_search->text().trimmed();
    filter.status = static_cast<StatusFilter>(m_state->currentData().toInt());
    if (const int category = m_category->currentData().toInt(); category != 0)
        filter.category = static_cast<Category>(category);
    m_manager->setFilter(filter);
    setWindowTitle(addonListTitle(filter));
    showCounts();
}

void frmWorkWithAddons::setFilterBoxes(const ListFilter& filter)
{
    {
        const QSignalBlocker search(m_search);
        const QSignalBlocker category(m_category);
        const QSignalBlocker state(m_state);
        m_search->setText(filter.search);
        m_category->setCurrentIndex(
            m_category->findData(filter.category ? int(*filter.category) : 0));
        m_state->setCurrentIndex(m_state->findData(int(filter.status)));
    }
    applyFilter();
}

bool frmWorkWithAddons::showList(const QString& controlName)
{
    const auto choice = addonListOf(controlName);
    if (choice)
        setFilterBoxes(choice->filter);
    return choice.has_value();
}

void frmWorkWithAddons::selectAddons(const QList<qint64>& masterKeys)
{
    setFilterBoxes({});
    m_manager->select(masterKeys);
    m_list->setFocus();
}

void frmWorkWithAddons::showCounts()
{
    const AddonTableModel& model = m_manager->model();
    m_count->setText(QLocale().toString(model.rowCount()) + u" of "_s +
                     QLocale().toString(model.total()));
    if (model.total() == 0)
        m_list->setEmptyText(
            u"No add-on is recorded yet. Install one from an archive or a folder, or drop it here."_s,
            u"&Install an Addon..."_s);
    else
        m_list->setEmptyText(u"No add-on fits the search and the filters."_s, u"Show A&ll"_s);
    context().services.status.text(u"Secondary"_s, totalsText(model.totals()));
}

void frmWorkWithAddons::emptyButton()
{
    if (m_manager->model().total() == 0)
        m_frame.installAddon({});
    else
        setFilterBoxes({});
}

// --- selection ---

void frmWorkWithAddons::showSelection()
{
    const AddonTableModel& model = m_manager->model();
    const QList<int> rows = m_manager->selectedRows();
    AddonTotals totals;
    for (const int row : rows) {
        ++totals.addons;
        totals.files += model.at(row).files;
        totals.bytes += model.at(row).addon.sourceSize;
    }
    context().services.status.text(u"Secondary"_s,
                                   rows.size() > 1 ? totalsText(totals) + u" selected"_s
                                                   : totalsText(model.totals()));
    if (!m_showDetails->isChecked())
        return;
    const QList<qint64> keys = rows.size() == 1 ? m_manager->selectedKeys() : QList<qint64>();
    if (!keys.isEmpty() && keys == m_shownKeys)
        return;
    m_shownKeys = keys;
    if (rows.isEmpty())
        m_details->showNothing();
    else if (rows.size() == 1)
        m_details->showAddon(model.at(rows.first()));
    else
        m_details->showTotals(totals);
}

void frmWorkWithAddons::editSelected()
{
    const QList<int> rows = m_manager->selectedRows();
    if (rows.size() != 1)
        return;
    const AddonRecord addon = m_manager->model().at(rows.first()).addon;
    auto* dialog = new frmAddon_Edit(context().services.files, addon, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog, key = addon.key] {
        if (const AddonChanges changes = dialog->changes(); changes.any())
            m_manager->change(key, changes);
    });
    dialog->open();
}

// --- a file dropped ---

void frmWorkWithAddons::dragEnterEvent(QDragEnterEvent* event)
{
    if (!draggedFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void frmWorkWithAddons::dropEvent(QDropEvent* event)
{
    const QString file = draggedFile(event->mimeData());
    if (file.isEmpty())
        return;
    event->acceptProposedAction();
    // Whoever drags must be let go before a window opens.
    QMetaObject::invokeMethod(
        this,
        [this, file] { m_frame.installAddon(m_session.userPath(file)); },
        Qt::QueuedConnection);
}

} // namespace vt
