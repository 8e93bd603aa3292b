#include "archive/forms/frmSelectFSO.h"

#include "archive/CZIP.h"
#include "archive/forms/ArchiveTreeModel.h"
#include "archive/forms/ItemPanes.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/GlobalRecord.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/ElidedLabel.h"
#include "shell/forms/Frame.h"

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// How long the cursor rests on an archive before that is listed.
constexpr int restMs = 150;

} // namespace

frmSelectFSO::frmSelectFSO(Session& session, Frame* frame, Purpose purpose, QWidget* parent)
    : ToolWindow(session.context(), Section::SelectFSO, parent), m_session(session), m_frame(frame),
      m_purpose(purpose),
      m_files(new FolderModel(session.services().files, session.context().global.generation, this)),
      m_entries(new ArchiveTreeModel(this)), m_soon(new QTimer(this))
{
    setObjectName(u"frmSelectFSO"_s);
    if (purpose == Purpose::Browse)
        setWindowTitle(u"Browse Folders"_s);
    m_soon->setSingleShot(true);
    m_soon->setInterval(restMs);
    connect(m_soon, &QTimer::timeout, this, &frmSelectFSO::showContents);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(placeLine());
    m_columns = new QSplitter(Qt::Horizontal);
    m_columns->setChildrenCollapsible(false);
    if (purpose != Purpose::SelectFavorite)
        m_columns->addWidget(places());
    m_columns->addWidget(lists());
    m_columns->setStretchFactor(m_columns->count() - 1, 1);
    layout->addWidget(m_columns, 1);
    layout->addLayout(filterLine());
    layout->addLayout(buttons());
    addShortcuts();
    resize(sizeHint().expandedTo(
        QSize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 34)));
}

QBoxLayout* frmSelectFSO::placeLine()
{
    m_place = new QLineEdit;
    m_place->setObjectName(u"txtPlace"_s);
    m_place->installEventFilter(this);
    auto* label = new QLabel(u"&Place:"_s);
    label->setBuddy(m_place);
    m_placesMenu = new QMenu(this);
    connect(m_placesMenu, &QMenu::aboutToShow, this, &frmSelectFSO::fillPlaces);
    const auto button = [](const QString& name, const QString& text, const QString& tip) {
        auto* made = new QToolButton;
        made->setObjectName(name);
        made->setText(text);
        made->setToolTip(tip);
        made->setFocusPolicy(Qt::TabFocus);
        return made;
    };
    QToolButton* go = button(u"cmdPlaces"_s, u"&Go To"_s, u"Go to a drive or a folder of note."_s);
    go->setMenu(m_placesMenu);
    go->setPopupMode(QToolButton::InstantPopup);
    QToolButton* above = button(u"cmdUp"_s, u"&Up"_s, u"Go to the folder above (Alt+Up)."_s);
    connect(above, &QToolButton::clicked, this, &frmSelectFSO::up);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(m_place, 1);
    row->addWidget(above);
    row->addWidget(go);
    return row;
}

QWidget* frmSelectFSO::places()
{
    m_recent = new RecentItemsPane(context(), section());
    m_favorites = new FavoriteItemsPane(context(), section());
    m_favorites->choose = [this] {
        return ask(this, m_session, CFavoriteItemsMgr::choosePrompt(), Purpose::SelectFavorite);
    };
    m_tabs = new QTabWidget;
    m_tabs->setObjectName(u"tabItems"_s);
    m_tabs->addTab(m_recent, u"Rece&nt"_s);
    m_tabs->addTab(m_favorites, u"Favo&rites"_s);
    for (ItemPane* pane : {static_cast<ItemPane*>(m_recent), static_cast<ItemPane*>(m_favorites)}) {
        connect(pane, &ItemPane::wanted, this, [this](const QString& path) {
            if (goTo(path))
                m_list->setFocus();
        });
        connect(pane, &ItemPane::said, this, &frmSelectFSO::sayBelow);
    }
    return m_tabs;
}

QWidget* frmSelectFSO::lists()
{
    m_list = new ColumnView;
    m_list->setObjectName(u"lvwFiles"_s);
    m_list->setAccessibleName(u"Files and folders"_s);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_list->setModel(m_files);
    m_list->installEventFilter(this);
    m_list->restoreLayout(context().settings, section(), ViewPrefix::Files);
    connect(m_list, &QTreeView::doubleClicked, this, &frmSelectFSO::activate);
    connect(m_list->selectionModel(),
            &QItemSelectionModel::currentChanged,
            this,
            &frmSelectFSO::showSelected);
    connect(m_files, &QAbstractItemModel::modelReset, this, &frmSelectFSO::showSelected);
    connect(m_list, &ColumnView::emptyButtonClicked, this, [this] {
        m_filter->setCurrentIndex(int(FolderFilter::AllFiles));
    });
    m_rows = new QSplitter(Qt::Vertical);
    m_rows->setChildrenCollapsible(false);
    m_rows->addWidget(m_list);
    m_rows->addWidget(contents());
    m_rows->setStretchFactor(0, 3);
    m_rows->setStretchFactor(1, 2);
    return m_rows;
}

QWidget* frmSelectFSO::contents()
{
    m_contents = new QLabel;
    m_contents->setObjectName(u"lblContents"_s);
    m_contents->setWordWrap(true);
    m_tree = new ColumnView;
    m_tree->setObjectName(u"tvwContents"_s);
    m_tree->setAccessibleName(u"Contents of the archive"_s);
    m_tree->setRootIsDecorated(true);
    m_tree->setModel(m_entries);
    m_tree->restoreLayout(context().settings, section(), ViewPrefix::Zip);
    m_tree->setEmptyText(u"What an archive holds is listed here before you choose it."_s);
    auto* pane = new QWidget;
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins({});
    layout->addWidget(m_contents);
    layout->addWidget(m_tree, 1);
    return pane;
}

QBoxLayout* frmSelectFSO::filterLine()
{
    m_filter = new QComboBox;
    m_filter->setObjectName(u"cboFilter"_s);
    m_filter->addItems({u"Addon files"_s, u"Archives (*.zip, *.rar)"_s, u"All files"_s});
    connect(m_filter, &QComboBox::currentIndexChanged, this, [this](int filter) {
        m_files->setFilter(FolderFilter(filter));
    });
    auto* label = new QLabel(u"&Show:"_s);
    label->setBuddy(m_filter);
    m_said = new QLabel;
    m_said->setObjectName(u"lblStatus"_s);
    m_said->setWordWrap(true);
    auto* row = new QHBoxLayout;
    row->addWidget(label);
    row->addWidget(m_filter);
    row->addWidget(m_said, 1);
    return row;
}

QBoxLayout* frmSelectFSO::buttons()
{
    const bool browses = m_purpose == Purpose::Browse;
    m_selected = new ElidedLabel;
    m_selected->setObjectName(u"lblSelected"_s);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(u"Selected:"_s));
    row->addWidget(m_selected, 1);
    const auto add = [&](const QString& name, const QString& text) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        // Enter belongs to the lists: it opens what is under the cursor.
        button->setAutoDefault(false);
        row->addWidget(button);
        return button;
    };
    m_ok = add(u"cmdOK"_s, browses ? u"&Install..."_s : u"Sel&ect"_s);
    connect(m_ok, &QPushButton::clicked, this, &frmSelectFSO::decide);
    connect(add(u"cmdCancel"_s, browses ? u"&Close"_s : u"&Cancel"_s),
            &QPushButton::clicked,
            this,
            [this, browses] {
                if (browses)
                    close();
                else
                    Q_EMIT givenUp();
            });
    return row;
}

void frmSelectFSO::addShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto slot) {
        auto* shortcut = new QShortcut(keys, this);
        shortcut->setContext(Qt::WidgetWithChildrenShortcut);
        connect(shortcut, &QShortcut::activated, this, slot);
    };
    add(Qt::ALT | Qt::Key_Up, &frmSelectFSO::up);
    add(Qt::Key_F5, &frmSelectFSO::reload);
    add(Qt::CTRL | Qt::Key_L, [this] {
        m_place->setFocus(Qt::ShortcutFocusReason);
        m_place->selectAll();
    });
    if (m_favorites)
        add(Qt::CTRL | Qt::Key_D, [this] {
            m_tabs->setCurrentWidget(m_favorites);
            m_favorites->add(selectedPath());
        });
}

bool frmSelectFSO::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return ToolWindow::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == m_place && enter) {
        takeTyped();
        return true;
    }
    if (watched == m_list && enter) {
        activate(m_list->currentIndex());
        return true;
    }
    if (watched == m_list && key == Qt::Key_Backspace) {
        up();
        return true;
    }
    return ToolWindow::eventFilter(watched, event);
}

void frmSelectFSO::Form_PrepareToShow()
{
    Settings& settings = context().settings;
    m_filter->setCurrentIndex(
        std::clamp(settings.layoutText(section(), LayoutValue::ItemFilter).toInt(), 0, 2));
    const auto stored = [&](LayoutValue value) {
        return settings.layoutText(section(), value).toInt();
    };
    if (m_tabs) {
        const int kept = stored(LayoutValue::FirstPaneWidth);
        const int first = kept > 0 ? kept : width() / 4;
        m_columns->setSizes({first, std::max(width() - first, first)});
    }
    if (const int second = stored(LayoutValue::SecondPaneHeight); second > 0)
        m_rows->setSizes({std::max(height() - second, second), second});
    const QString last = settings.text(SettingKey::LastFolder);
    if (last.isEmpty() || !goTo(last))
        (void)goTo(m_session.userPath(QDir::homePath()));
    sayBelow({});
    sizeColumns();
    m_list->setFocus();
}

/// The names get the room that is left; the others what they need, until the user sizes them.
void frmSelectFSO::sizeColumns()
{
    m_list->header()->setSectionResizeMode(FolderModel::NameColumn, QHeaderView::Stretch);
    m_tree->header()->setSectionResizeMode(ArchiveTreeModel::NameColumn, QHeaderView::Stretch);
    const auto size = [this](ColumnView* list, ViewPrefix prefix, int column, const QString& text) {
        if (!context().settings.stored(section(), layoutName(LayoutValue::CurrentColumns, prefix)))
            list->setColumnWidth(column, fontMetrics().horizontalAdvance(text + u"mm"_s));
    };
    const QString date =
        QLocale().toString(QDateTime({2026, 12, 22}, {22, 44}), QLocale::ShortFormat);
    size(m_list, ViewPrefix::Files, FolderModel::SizeColumn, u"888.8 MB"_s);
    size(m_list, ViewPrefix::Files, FolderModel::DateColumn, date);
    size(m_list, ViewPrefix::Files, FolderModel::TypeColumn, u"ZIP Archive"_s);
    size(m_tree, ViewPrefix::Zip, ArchiveTreeModel::SizeColumn, u"888.8 MB"_s);
    size(m_tree, ViewPrefix::Zip, ArchiveTreeModel::DateColumn, date);
}

void frmSelectFSO::Form_Settings_Save()
{
    Settings& settings = context().settings;
    settings.setText(SettingKey::LastFolder, m_files->folder());
    settings.setLayoutText(
        section(), LayoutValue::ItemFilter, QString::number(m_filter->currentIndex()));
    settings.setLayoutText(
        section(), LayoutValue::SecondPaneHeight, QString::number(m_rows->sizes().last()));
    m_list->saveLayout(settings, section(), ViewPrefix::Files);
    m_tree->saveLayout(settings, section(), ViewPrefix::Zip);
    if (!m_tabs)
        return;
    settings.setLayoutText(
        section(), LayoutValue::FirstPaneWidth, QString::number(m_columns->sizes().first()));
    m_recent->saveLayout();
    m_favorites->saveLayout();
}

bool frmSelectFSO::mayClose()
{
    return !m_reading;
}

// --- going about ---

/// The simulator's folder, the user's own ones, and every drive.
void frmSelectFSO::fillPlaces()
{
    m_placesMenu->clear();
    const auto add = [this](const QString& name, const QString& folder) {
        if (!folder.isEmpty() && context().services.files.isFolder(folder))
            connect(m_placesMenu->addAction(name + u"  ("_s + folder + u')'),
                    &QAction::triggered,
                    this,
                    [this, folder] { (void)goTo(folder); });
    };
    const auto own = [this](QStandardPaths::StandardLocation place) {
        const QString host = QStandardPaths::writableLocation(place);
        return host.isEmpty() ? QString() : winpath::asFolder(m_session.userPath(host));
    };
    add(context().global.names.simLong, context().global.simulatorFolder);
    add(u"Home"_s, own(QStandardPaths::HomeLocation));
    add(u"Downloads"_s, own(QStandardPaths::DownloadLocation));
    add(u"Desktop"_s, own(QStandardPaths::DesktopLocation));
    m_placesMenu->addSeparator();
    for (char16_t letter = u'A'; letter <= u'Z'; ++letter)
        add(u"Drive"_s, QString(QChar(letter)) + u":\\"_s);
}

bool frmSelectFSO::goTo(const QString& path)
{
    Files& files = context().services.files;
    files.newOperation();
    const bool folder = files.isFolder(path);
    if (!folder && !files.exists(path)) {
        sayBelow(u"'"_s + path + u"' was not found."_s);
        return false;
    }
    sayBelow({});
    const QString place = files.spelled(folder ? winpath::asFolder(path) : winpath::parent(path));
    m_files->setFolder(place);
    m_place->setText(place);
    if (!folder && m_files->rowOf(winpath::name(path)) < 0)
        m_filter->setCurrentIndex(int(FolderFilter::AllFiles));
    const int row = folder ? 0 : m_files->rowOf(winpath::name(path));
    if (row >= 0 && m_files->rowCount() > 0)
        m_list->setCurrentIndex(m_files->index(row, 0));
    showSelected();
    return true;
}

void frmSelectFSO::takeTyped()
{
    if (goTo(m_session.userPath(m_place->text().trimmed())))
        m_list->setFocus();
}

/// The folder that was left is under the cursor afterwards.
void frmSelectFSO::up()
{
    const QString left = m_files->folder();
    const QString above = winpath::parent(left);
    if (above.isEmpty() || above == left || !goTo(above))
        return;
    if (const int row = m_files->rowOf(winpath::name(left)); row >= 0)
        m_list->setCurrentIndex(m_files->index(row, 0));
}

void frmSelectFSO::reload()
{
    const QString path = selectedPath();
    if (!goTo(path))
        (void)goTo(m_files->folder());
}

void frmSelectFSO::activate(const QModelIndex& index)
{
    const FileInfo* info = m_files->info(index);
    if (!info)
        return;
    if (info->folder)
        (void)goTo(m_files->path(index));
    else
        decide();
}

QString frmSelectFSO::selectedPath() const
{
    const QString path = m_files->path(m_list->currentIndex());
    return path.isEmpty() ? m_files->folder() : path;
}

void frmSelectFSO::decide()
{
    if (m_reading)
        return;
    if (m_purpose != Purpose::Browse) {
        Q_EMIT chosen();
        return;
    }
    m_recent->picked(selectedPath());
    m_frame->installAddon(selectedPath());
}

// --- what is under the cursor ---

void frmSelectFSO::showSelected()
{
    m_selected->setText(selectedPath());
    const bool filtered = m_files->hiddenCount() > 0;
    m_list->setEmptyText(filtered ? countText(m_files->hiddenCount(), u"file"_s, u"files"_s) +
                                        u" in this folder do not fit the filter."_s
                                  : u"This folder is empty."_s,
                         filtered ? u"Show All Files"_s : QString());
    m_soon->start();
}

void frmSelectFSO::showContents()
{
    if (m_reading) {
        m_soon->start(); // a later look, when the listing that is under way has ended
        return;
    }
    m_entries->setContents({});
    const FileInfo* info = m_files->info(m_list->currentIndex());
    if (!info)
        m_contents->setText({});
    else if (info->folder)
        m_contents->setText(u"'"_s + info->name + u"' is a folder. Enter opens it."_s);
    else if (!isArchiveName(info->name))
        m_contents->setText(u"'"_s + info->name + u"' is a single file."_s);
    else
        listArchive(m_files->path(m_list->currentIndex()));
}

void frmSelectFSO::listArchive(const QString& path)
{
    m_reading = true;
    m_contents->setText(u"Reading '"_s + winpath::name(path) + u"'..."_s);
    CZIP zip(context().services);
    zip.sZIPFile = path;
    zip.boolImbeddedZIPs_Process = true;
    zip.varStatusBar = zip.CProgressBarEx = &context().services.status;
    const bool listed = zip.GetItems();
    m_entries->setContents(zip.colZIPContents);
    QString text = zip.resultText();
    if (listed)
        text = countText(m_entries->fileCount(), u"file"_s, u"files"_s) + u", "_s +
               sizeText(m_entries->bytes()) + u" unpacked."_s;
    if (!zip.remarks().isEmpty())
        text += u' ' + zip.remarks().first();
    m_contents->setText(text);
    if (m_entries->fileCount() <= expandsUpTo)
        m_tree->expandAll();
    m_reading = false;
}

void frmSelectFSO::sayBelow(const QString& text)
{
    m_said->setText(text);
}

// --- as a chooser ---

std::optional<QString>
frmSelectFSO::ask(QWidget* parent, Session& session, const QString& title, Purpose purpose)
{
    QDialog dialog(parent);
    dialog.setWindowTitle(title);
    auto* window = new frmSelectFSO(session, nullptr, purpose);
    window->setAttribute(Qt::WA_DeleteOnClose, false);
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins({});
    layout->addWidget(window);
    connect(window, &frmSelectFSO::chosen, &dialog, &QDialog::accept);
    connect(window, &frmSelectFSO::givenUp, &dialog, &QDialog::reject);
    window->Form_PrepareToShow();
    const bool accepted = dialog.exec() == QDialog::Accepted;
    window->Form_Settings_Save();
    if (!accepted)
        return std::nullopt;
    const QString path = window->selectedPath();
    if (purpose == Purpose::SelectAddon)
        window->m_recent->picked(path);
    return path;
}

std::optional<QString> frmSelectFSO::choose(QWidget* parent, Session& session, const QString& title)
{
    return ask(parent, session, title, Purpose::SelectAddon);
}

} // namespace vt
