#include "shell/forms/frmProcessResults.h"

#include "platform/Gate.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/CReporting.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnDelegate.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Desktop.h"
#include "shell/forms/Icons.h"
#include "shell/forms/folderchooser.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Whole sentences and the names of groups go over all columns, from the leftmost one on.
class ResultRowDelegate : public ColumnDelegate
{
public:
    explicit ResultRowDelegate(ColumnView& view) : ColumnDelegate(&view), m_view(view) {}

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QSize size = ColumnDelegate::sizeHint(option, index);
        if (index.data(ResultsModel::SpansRow).toBool())
            size.setWidth(0); // no column is made wide for them
        return size;
    }

    void paint(QPainter* painter,
               const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        if (!index.data(ResultsModel::SpansRow).toBool()) {
            ColumnDelegate::paint(painter, option, index);
            return;
        }
        if (m_view.header()->visualIndex(index.column()) != 0)
            return;
        QStyleOptionViewItem whole = option;
        whole.rect.setRight(m_view.viewport()->rect().right());
        whole.viewItemPosition = QStyleOptionViewItem::OnlyOne;
        ColumnDelegate::paint(painter, whole, index.siblingAtColumn(ResultsModel::FileColumn));
    }

private:
    ColumnView& m_view;
};

QString countOf(qsizetype number)
{
    return QLocale().toString(qlonglong(number)) + (number == 1 ? u" entry"_s : u" entries"_s);
}

QString problemsOf(qsizetype number)
{
    return QLocale().toString(qlonglong(number)) + (number == 1 ? u" problem"_s : u" problems"_s);
}

/// "Text Files (*.txt)", "HTML (*.htm)", that of \a form first.
QStringList dialogFilters(CReporting::Form form)
{
    const QStringList parts = CReporting::dialogFilter.split(u'|');
    QStringList names;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        if (CReporting::formOf(parts.at(i + 1)) == form)
            names.prepend(parts.at(i));
        else
            names.append(parts.at(i));
    }
    return names;
}

} // namespace

frmProcessResults::frmProcessResults(Context& context,
                                     const QString& caption,
                                     Results results,
                                     const QList<NextStep>& steps,
                                     QWidget* parent)
    : ToolWindow(context, Section::ProcessResults, parent),
      m_model(new ResultsModel(std::move(results), this))
{
    setObjectName(u"frmProcessResults"_s);
    setWindowTitle(caption);
    auto* layout = new QVBoxLayout(this);
    m_summaryIcon = new QLabel;
    m_summary = new QLabel;
    m_summary->setObjectName(u"lblSummary"_s);
    auto* headline = new QHBoxLayout;
    headline->addWidget(m_summaryIcon);
    headline->addWidget(m_summary, 1);
    layout->addLayout(headline);
    layout->addLayout(filterLine());
    layout->addWidget(list(), 1);
    m_said = new QLabel;
    m_said->setObjectName(u"lblSaid"_s);
    m_said->setWordWrap(true);
    m_said->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_said);
    layout->addLayout(buttons(steps));
    addShortcuts();
    summarise();
    filter();
}

QLayout* frmProcessResults::filterLine()
{
    m_filter = new QLineEdit;
    m_filter->setObjectName(u"txtFilter"_s);
    m_filter->setClearButtonEnabled(true);
    m_filter->setPlaceholderText(u"Part of a name or reason"_s);
    auto* label = new QLabel(u"F&ilter:"_s);
    label->setBuddy(m_filter);
    m_problemsOnly = new QCheckBox(u"&Problems only"_s);
    m_problemsOnly->setObjectName(u"chkProblemsOnly"_s);
    m_problemsOnly->setEnabled(m_model->problemCount() > 0);
    m_shown = new QLabel;
    m_shown->setObjectName(u"lblShown"_s);
    connect(m_filter, &QLineEdit::textChanged, this, &frmProcessResults::filter);
    connect(m_problemsOnly, &QCheckBox::toggled, this, &frmProcessResults::filter);
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(m_filter, 1);
    line->addWidget(m_problemsOnly);
    line->addWidget(m_shown);
    return line;
}

QWidget* frmProcessResults::list()
{
    m_list = new ColumnView;
    m_list->setObjectName(u"tvwResults"_s);
    m_list->setAccessibleName(u"Results"_s);
    m_list->setItemDelegate(new ResultRowDelegate(*m_list));
    m_list->setRootIsDecorated(true);
    m_list->header()->setStretchLastSection(true);
    m_list->setAlternatingRowColors(false);
    m_list->setPathColumns({ResultsModel::FolderColumn});
    m_list->setFirstSort(-1, Qt::AscendingOrder); // as it happened
    m_list->setEmptyText(u"No entry fits the filter."_s, u"Show All Entries"_s);
    m_list->setModel(m_model);
    m_list->restoreLayout(context().settings, section());
    if (!context().settings.stored(section(), layoutName(LayoutValue::CurrentColumns)))
        sizeColumns();
    connect(m_list->selectionModel(),
            &QItemSelectionModel::currentChanged,
            this,
            &frmProcessResults::showCurrent);
    connect(m_list, &QTreeView::activated, this, [this](const QModelIndex& index) {
        if (!index.data(ResultsModel::Path).toString().isEmpty())
            openFolder();
    });
    connect(m_list, &ColumnView::emptyButtonClicked, this, [this] {
        m_filter->clear();
        m_problemsOnly->setChecked(false);
        m_list->setFocus();
    });
    return m_list;
}

/// The reasons whole, and what is left to the folders.
void frmProcessResults::sizeColumns()
{
    const int width = fontMetrics().averageCharWidth();
    const int reason = fontMetrics().horizontalAdvance(m_model->longestResult()) + width * 3;
    m_list->setColumnWidth(ResultsModel::FileColumn, width * 30);
    m_list->setColumnWidth(ResultsModel::ResultColumn, std::clamp(reason, width * 16, width * 64));
}

QLayout* frmProcessResults::buttons(const QList<NextStep>& steps)
{
    auto* row = new QHBoxLayout;
    for (const NextStep& step : steps) {
        auto* button = new QPushButton(step.text);
        button->setObjectName(step.objectName);
        connect(button, &QPushButton::clicked, this, [button, step] {
            button->setEnabled(!step.once);
            step.run();
        });
        row->addWidget(button);
    }
    row->addStretch();
    const auto add = [&](const QString& name, const QString& text, auto slot) {
        auto* button = new QPushButton(text);
        button->setObjectName(name);
        connect(button, &QPushButton::clicked, this, slot);
        row->addWidget(button);
        return button;
    };
    m_openFolder = add(u"cmdOpenFolder"_s, u"Op&en Folder"_s, &frmProcessResults::openFolder);
    add(u"cmdCopy"_s, u"&Copy"_s, &frmProcessResults::copy)
        ->setToolTip(u"Copy the selected entries, or all that are shown."_s);
    add(u"cmdSave"_s, u"&Save As..."_s, &frmProcessResults::save)
        ->setToolTip(u"Save what is shown as a text or HTML report."_s);
    m_close = add(u"cmdClose"_s, u"C&lose"_s, &frmProcessResults::close);
    m_close->setAutoDefault(true);
    return row;
}

void frmProcessResults::addShortcuts()
{
    const auto add = [this](QWidget* to, const QString& text, const QKeySequence& keys, auto slot) {
        auto* action = new QAction(text, this);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, slot);
        to->addAction(action);
        return action;
    };
    // The list's own command would copy columns; here whole sentences are of use.
    m_list->copyAction()->setShortcut({});
    QAction* copyRows = add(m_list, u"&Copy"_s, QKeySequence::Copy, &frmProcessResults::copy);
    QAction* open = add(m_list, u"Op&en Folder"_s, {}, &frmProcessResults::openFolder);
    connect(m_list, &ColumnView::menuWanted, this, [this, copyRows, open](QMenu* menu) {
        open->setEnabled(m_openFolder->isEnabled());
        menu->addActions({copyRows, open, m_list->selectAllAction()});
    });
    add(this, u"Find"_s, QKeySequence::Find, [this] {
        m_filter->setFocus(Qt::ShortcutFocusReason);
    });
    add(this, u"Save"_s, QKeySequence::Save, &frmProcessResults::save);
    add(this, u"Close"_s, Qt::Key_Escape, [this] {
        if (m_filter->text().isEmpty())
            close();
        else
            m_filter->clear();
    });
}

void frmProcessResults::Form_PrepareToShow()
{
    m_list->setFocus();
}

void frmProcessResults::summarise()
{
    const qsizetype problems = m_model->problemCount();
    const int size = style()->pixelMetric(QStyle::PM_SmallIconSize);
    m_summaryIcon->setPixmap(
        icons::state(problems > 0 ? icons::State::Attention : icons::State::Done)
            .pixmap(QSize(size, size), devicePixelRatio()));
    m_summary->setText(countOf(m_model->entryCount()) + u", "_s +
                       (problems > 0 ? problemsOf(problems) : u"no problems"_s) + u'.');
}

/// The icon is drawn in the palette's colours.
void frmProcessResults::changeEvent(QEvent* event)
{
    ToolWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        summarise();
}

void frmProcessResults::Form_Settings_Save()
{
    m_list->saveLayout(context().settings, section());
}

void frmProcessResults::filter()
{
    m_model->setFilter(m_filter->text(), m_problemsOnly->isChecked());
    m_list->expandAll();
    m_shown->setText(m_model->shownCount() == m_model->entryCount()
                         ? QString()
                         : QLocale().toString(qlonglong(m_model->shownCount())) + u" of "_s +
                               QLocale().toString(qlonglong(m_model->entryCount())));
    showCurrent();
}

/// The selected rows from top to bottom; of a group all that are shown in it.
QModelIndexList frmProcessResults::chosenRows() const
{
    QModelIndexList rows = m_list->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(), [](const QModelIndex& a, const QModelIndex& b) {
        const auto place = [](const QModelIndex& index) {
            return index.parent().isValid() ? std::pair(index.parent().row(), index.row())
                                            : std::pair(index.row(), -1);
        };
        return place(a) < place(b);
    });
    return rows;
}

void frmProcessResults::copy()
{
    QStringList lines;
    const QModelIndexList chosen = chosenRows();
    for (const QModelIndex& row : chosen)
        lines.append(row.data(ResultsModel::Sentence).toString());
    if (chosen.size() < 2 && !(chosen.size() == 1 && chosen.first().parent().isValid())) {
        lines.clear();
        for (int group = 0; group < m_model->rowCount(); ++group) {
            const QModelIndex heading = m_model->index(group, 0);
            if (!chosen.isEmpty() && chosen.first() != heading)
                continue;
            lines.append(heading.data(ResultsModel::Sentence).toString());
            for (int i = 0; i < m_model->rowCount(heading); ++i)
                lines.append(u"    "_s +
                             m_model->index(i, 0, heading).data(ResultsModel::Sentence).toString());
        }
    }
    QApplication::clipboard()->setText(lines.join(u'\n'));
    m_said->setText(countText(lines.size(), u"line was copied."_s, u"lines were copied."_s));
}

void frmProcessResults::save()
{
    CReporting reporting(context().services, context().settings);
    QString path = reporting.ReportStorageFile_GetPath();
    const Files& files = context().services.files;
    const bool known = files.isFolder(winpath::parent(path));
    if (known && !context().settings.flag(SettingKey::ReportPromptForPath)) {
        saveReport(path);
        return;
    }
    folderchooser::Request request{CReporting::dialogTitle};
    request.start = winpath::parent(path);
    request.filters = dialogFilters(CReporting::formOf(path));
    request.suffix = winpath::extension(path);
    const std::optional<QString> chosen =
        folderchooser::chooseFileToSave(this, files, request, winpath::name(path));
    if (chosen)
        saveReport(*chosen);
}

void frmProcessResults::saveReport(const QString& path)
{
    Services& services = context().services;
    CReporting reporting(services, context().settings);
    services.gate.setRoot(RootId::Chosen, winpath::parent(path));
    reporting.ReportStorageFile_SetPath(path);
    const vt::Result saved = reporting.save(m_model->report(windowTitle()));
    m_said->setText(saved.text);
    if (saved && context().settings.flag(SettingKey::ReportAutoOpen))
        desktop::openFile(services.files, path);
}

QString frmProcessResults::currentPath() const
{
    return m_list->currentIndex().data(ResultsModel::Path).toString();
}

void frmProcessResults::openFolder()
{
    const QString path = currentPath();
    if (!path.isEmpty() && !desktop::openFolder(context().services.files, path))
        m_said->setText(u"The folder of '"_s + path + u"' could not be opened."_s);
}

/// The whole sentence of the row below the list, where no column cuts it.
void frmProcessResults::showCurrent()
{
    const QModelIndex current = m_list->currentIndex();
    const bool entry = current.parent().isValid();
    m_said->setText(entry ? current.data(ResultsModel::Sentence).toString() : QString());
    m_openFolder->setEnabled(!currentPath().isEmpty());
}

} // namespace vt
