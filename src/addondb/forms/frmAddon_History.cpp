#include "addondb/forms/frmAddon_History.h"

#include "addondb/AddonColumns.h"
#include "addondb/AddonEdit.h"
#include "platform/Text.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Icons.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Prompt confirmForgetting(const QStringList& names)
{
    Prompt prompt = yesNo(u"Confirm Delete"_s,
                          names.size() == 1
                              ? u"Are you sure you want to delete this entry of the history?"_s
                              : u"Are you sure you want to delete these entries of the history?"_s,
                          Button::No);
    prompt.list = names;
    if (names.size() > 10) {
        prompt.list.resize(10);
        prompt.list.append(u"and "_s + QString::number(names.size() - 10) + u" more"_s);
    }
    prompt.advice = u"That the add-on was ever installed is then recorded nowhere."_s;
    return prompt;
}

icons::State iconOf(InstallationStatus status)
{
    switch (status) {
    case InstallationStatus::FileCabinet:
        return icons::State::Cabinet;
    case InstallationStatus::Removed:
        return icons::State::TrashCan;
    case InstallationStatus::Installed:
    case InstallationStatus::Imported:
        return icons::State::Own;
    }
    Q_UNREACHABLE();
}

} // namespace

frmAddon_History::frmAddon_History(Session& session, Frame& frame, QWidget* parent)
    : ToolWindow(session.context(), Section::AddonHistory, parent), m_session(session),
      m_frame(frame)
{
    setObjectName(u"frmAddon_History"_s);
    setWindowTitle(u"Addon History"_s);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buildFilters());
    buildPanes();
    layout->addWidget(m_panes, 1);
    layout->addLayout(buildButtons());
    auto* refresh = new QAction(this);
    refresh->setShortcut(Qt::Key_F5);
    refresh->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(refresh, &QAction::triggered, this, &frmAddon_History::fill);
    addAction(refresh);
}

QLayout* frmAddon_History::buildFilters()
{
    m_status = new QComboBox;
    m_status->setObjectName(u"cboStatus"_s);
    m_status->setAccessibleName(u"Status"_s);
    for (const historyfilter::StatusChoice& choice : historyfilter::statuses())
        m_status->addItem(choice.text.toString(), int(choice.status));
    m_category = new QComboBox;
    m_category->setObjectName(u"cboCategory"_s);
    m_category->setAccessibleName(u"Category"_s);
    for (const historyfilter::CategoryChoice& choice : historyfilter::categories())
        m_category->addItem(choice.text.toString(), choice.category ? int(*choice.category) : 0);
    m_date = new QComboBox;
    m_date->setObjectName(u"cboDate"_s);
    m_date->setAccessibleName(u"Date of installation"_s);
    const auto periods = historyfilter::periods();
    for (const auto& [text, period] : periods)
        m_date->addItem(text, int(period));
    m_count = new QLabel;
    m_count->setObjectName(u"lblCount"_s);
    auto* line = new QHBoxLayout;
    for (QComboBox* box : {m_status, m_category, m_date}) {
        connect(box, &QComboBox::currentIndexChanged, this, &frmAddon_History::fill);
        line->addWidget(box);
    }
    line->addStretch();
    return line;
}

void frmAddon_History::buildPanes()
{
    m_list = new ColumnView;
    m_list->setObjectName(u"lvwHistory"_s);
    m_list->setAccessibleName(u"History"_s);
    m_model.picture = [](InstallationStatus status) {
        return QVariant(icons::state(iconOf(status)));
    };
    m_list->setModel(&m_model);
    m_list->setPathColumns({HistoryTableModel::SourceColumn});
    m_list->setFirstSort(HistoryTableModel::InstalledColumn, Qt::DescendingOrder);
    m_open = new QAction(u"&Open Addon"_s, this);
    m_delete = new QAction(u"&Delete From History"_s, this);
    m_delete->setShortcut(QKeySequence::Delete);
    m_delete->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_list->addAction(m_delete);
    connect(m_open, &QAction::triggered, this, &frmAddon_History::openAddons);
    connect(m_delete, &QAction::triggered, this, &frmAddon_History::deleteRows);
    connect(m_list, &ColumnView::menuWanted, this, [this](QMenu* menu) {
        menu->addActions({m_open, m_delete});
        menu->addSeparator();
        menu->addActions({m_list->copyAction(), m_list->selectAllAction()});
    });
    connect(m_list, &QAbstractItemView::activated, m_open, &QAction::trigger);
    connect(m_list->selectionModel(),
            &QItemSelectionModel::selectionChanged,
            this,
            &frmAddon_History::showSelection);
    auto* details = new QWidget;
    auto* layout = new QVBoxLayout(details);
    layout->setContentsMargins(fontMetrics().averageCharWidth(), 0, 0, 0);
    m_name = new QLabel;
    m_name->setObjectName(u"lblName"_s);
    m_name->setWordWrap(true);
    m_name->setTextFormat(Qt::PlainText);
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    m_facts = new QLabel;
    m_facts->setObjectName(u"lblFacts"_s);
    m_facts->setWordWrap(true);
    m_facts->setTextFormat(Qt::PlainText);
    m_description = new QPlainTextEdit;
    m_description->setObjectName(u"txtDescription"_s);
    m_description->setAccessibleName(u"Description"_s);
    m_description->setReadOnly(true);
    m_description->setTabChangesFocus(true);
    m_description->setPlaceholderText(u"No description"_s);
    for (QWidget* part : {static_cast<QWidget*>(m_name), static_cast<QWidget*>(m_facts)})
        layout->addWidget(part);
    layout->addWidget(m_description, 1);
    layout->addStretch();
    m_panes = new QSplitter;
    m_panes->addWidget(m_list);
    m_panes->addWidget(details);
    m_panes->setChildrenCollapsible(false);
    m_panes->setStretchFactor(0, 3);
    m_panes->setStretchFactor(1, 1);
}

QLayout* frmAddon_History::buildButtons()
{
    m_openButton = new QPushButton(u"Ope&n Addon"_s);
    m_openButton->setObjectName(u"cmdOpen"_s);
    m_deleteButton = new QPushButton(u"&Delete From History"_s);
    m_deleteButton->setObjectName(u"cmdDelete"_s);
    connect(m_openButton, &QPushButton::clicked, m_open, &QAction::trigger);
    connect(m_deleteButton, &QPushButton::clicked, m_delete, &QAction::trigger);
    auto* row = new QHBoxLayout;
    row->addWidget(m_count);
    row->addStretch();
    row->addWidget(m_openButton);
    row->addWidget(m_deleteButton);
    return row;
}

void frmAddon_History::Form_PrepareToShow()
{
    Settings& settings = context().settings;
    fill();
    m_list->restoreLayout(settings, section());
    const int first = settings.layoutText(section(), LayoutValue::FirstPaneWidth).toInt();
    const int second = settings.layoutText(section(), LayoutValue::SecondPaneWidth).toInt();
    m_panes->setSizes(first > 0 && second > 0 ? QList<int>{first, second} : QList<int>{3000, 1000});
    if (m_model.rowCount() > 0)
        m_list->setCurrentIndex(m_model.index(0, 0));
    showSelection();
    say({}); // it is open
    m_list->setFocus();
}

void frmAddon_History::Form_Settings_Save()
{
    Settings& settings = context().settings;
    m_list->saveLayout(settings, section());
    const QList<int> sizes = m_panes->sizes();
    settings.setLayoutText(section(), LayoutValue::FirstPaneWidth, QString::number(sizes.value(0)));
    settings.setLayoutText(
        section(), LayoutValue::SecondPaneWidth, QString::number(sizes.value(1)));
}

void frmAddon_History::recordsChanged()
{
    fill();
}

ListFilter frmAddon_History::filter() const
{
    ListFilter filter;
    filter.status = static_cast<StatusFilter>(m_status->currentData().toInt());
    if (const int category = m_category->currentData().toInt(); category != 0)
        filter.category = static_cast<Category>(category);
    filter.since =
        historyfilter::since(static_cast<historyfilter::Period>(m_date->currentData().toInt()),
                             m_session.services().clock.now(),
                             QLocale().firstDayOfWeek());
    return filter;
}

void frmAddon_History::fill()
{
    ResultOf<QList<HistoryRecord>> rows = historyRows(*m_session.database(), filter());
    if (!rows) {
        say(rows.text);
        return;
    }
    m_model.setRows(std::move(*rows));
    m_count->setText(countText(m_model.rowCount(), u"entry"_s, u"entries"_s));
    const bool all = m_status->currentIndex() == 0 && m_category->currentIndex() == 0 &&
                     m_date->currentIndex() == 0;
    m_list->setEmptyText(
        all ? u"Nothing was installed yet. Every installation is listed here, also once the add-on is removed."_s
            : u"No installation fits the filters."_s);
    showSelection();
}

void frmAddon_History::showSelection()
{
    const QList<int> rows = m_list->selectedRowNumbers();
    int recorded = 0;
    for (const int row : rows)
        recorded += m_model.at(row).addon.status != InstallationStatus::Removed;
    m_open->setEnabled(recorded > 0);
    m_delete->setEnabled(rows.size() > recorded);
    m_openButton->setEnabled(m_open->isEnabled());
    m_deleteButton->setEnabled(m_delete->isEnabled());
    m_description->setVisible(rows.size() == 1);
    m_name->setVisible(!rows.isEmpty());
    if (rows.size() != 1) {
        m_name->setText(countText(rows.size(), u"entry"_s, u"entries"_s) + u" selected"_s);
        m_facts->setText(rows.isEmpty() ? u"Select an installation to read about it here."_s
                                        : QString());
        return;
    }
    const HistoryRecord& record = m_model.at(rows.first());
    const auto date = [](const QDateTime& time) {
        return QLocale().toString(time, QLocale::ShortFormat);
    };
    m_name->setText(record.addon.name);
    QStringList facts{u"Installed "_s + date(record.addon.dateInstalled)};
    if (record.dateUninstalled.isValid())
        facts.append(u"Removed "_s + date(record.dateUninstalled));
    facts.append(u"Now: "_s + statusTitle(record.addon.status));
    m_facts->setText(facts.join(u'\n'));
    m_description->setPlainText(record.addon.description);
}

void frmAddon_History::openAddons()
{
    QList<qint64> keys;
    for (const int row : m_list->selectedRowNumbers())
        if (m_model.at(row).addon.status != InstallationStatus::Removed)
            keys.append(m_model.at(row).addon.key);
    if (!keys.isEmpty())
        m_frame.workWithAddons(keys);
}

void frmAddon_History::deleteRows()
{
    QList<HistoryRecord> gone;
    QStringList names;
    for (const int row : m_list->selectedRowNumbers()) {
        if (m_model.at(row).addon.status != InstallationStatus::Removed)
            continue;
        gone.append(m_model.at(row));
        names.append(gone.last().addon.name);
    }
    Prompts& prompts = context().services.prompts;
    if (gone.isEmpty() || prompts.ask(confirmForgetting(names)) != Button::Yes)
        return;
    const vt::Result done = m_session.database()->together([&]() -> vt::Result {
        for (const HistoryRecord& record : std::as_const(gone))
            if (vt::Result one = forgetInstallation(*m_session.database(), record); !one)
                return one;
        return vt::Result::success();
    });
    if (!done)
        (void)prompts.ask(announcement(u"Addon History"_s, done.text, vt::Icon::Warning));
    fill();
}

} // namespace vt
