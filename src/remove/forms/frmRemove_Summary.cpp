#include "remove/forms/frmRemove_Summary.h"

#include "catalogue/Catalogue.h"
#include "platform/Text.h"
#include "remove/forms/CControlMgr_lvwAddonRmvDtls.h"
#include "remove/forms/RemovedFilesModel.h"
#include "session/Session.h"
#include "shell/Settings.h"

#include <QHeaderView>
#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Width at which both lists stand side by side, in average characters.
constexpr int widePage = 130;

/// The fates of files of one or more add-ons, counted.
QString countsOf(const QList<RemovalPreview>& previews)
{
    const auto all = [&previews](RemovalFate fate) {
        qsizetype count = 0;
        for (const RemovalPreview& preview : previews)
            count += preview.count(fate);
        return count;
    };
    const qsizetype back = all(RemovalFate::ComesBack);
    QStringList parts = {countText(all(RemovalFate::Goes) + back, u"file goes"_s, u"files go"_s)};
    if (back > 0)
        parts.append(countText(back, u"replaced file comes back"_s, u"replaced files come back"_s));
    if (const qsizetype stays = all(RemovalFate::Stays); stays > 0)
        parts.append(countText(stays, u"file stays"_s, u"files stay"_s));
    if (const qsizetype missing = all(RemovalFate::Missing); missing > 0)
        parts.append(countText(missing, u"is missing already"_s, u"are missing already"_s));
    return parts.join(u", "_s) + u'.';
}

} // namespace

frmRemove_Summary::frmRemove_Summary(Session& session,
                                     const RemovalChoices& choices,
                                     QWidget* parent)
    : QWidget(parent), m_session(session), m_choices(choices)
{
    setObjectName(u"frmRemove_Summary"_s);
    Settings& settings = session.context().settings;
    m_addons = new ColumnView;
    m_manager = new CControlMgr_lvwAddonRmvDtls(*m_addons);
    m_addons->restoreLayout(settings, Section::RemoveSummary);
    connect(m_manager,
            &CControlMgr_lvwAddonRmvDtls::currentChanged,
            this,
            &frmRemove_Summary::showFiles);
    m_files = new ColumnView;
    m_files->setObjectName(u"lvwAddonItems"_s);
    m_files->setAccessibleName(u"Files of the addon"_s);
    m_files->setPathColumns({RemovedFilesModel::FolderColumn});
    m_model = new RemovedFilesModel(this);
    m_files->setModel(m_model);
    m_files->restoreLayout(settings, Section::RemoveSummary, ViewPrefix::Files);
    m_about = new QLabel;
    m_about->setObjectName(u"lblAddonItems"_s);
    m_about->setWordWrap(true);
    auto* right = new QWidget;
    auto* column = new QVBoxLayout(right);
    column->setContentsMargins({});
    column->addWidget(m_files, 1);
    column->addWidget(m_about); // below, so that both lists begin at one height
    m_splitter = new QSplitter;
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_addons);
    m_splitter->addWidget(right);
    m_splitter->setStretchFactor(0, 1);
    m_splitter->setStretchFactor(1, 1);
    const int first =
        settings.layoutText(Section::RemoveSummary, LayoutValue::FirstPaneWidth).toInt();
    if (first > 0)
        m_splitter->setSizes({first, std::max(width() - first, first)});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_splitter);
    setFocusProxy(m_addons);
}

/// On a narrow page the files stand below the add-ons instead of beside them.
void frmRemove_Summary::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const bool narrow = width() < fontMetrics().averageCharWidth() * widePage;
    const Qt::Orientation wanted = narrow ? Qt::Vertical : Qt::Horizontal;
    if (m_splitter->orientation() == wanted)
        return;
    m_splitter->setOrientation(wanted);
    if (narrow)
        m_splitter->setSizes({height() / 3, height() * 2 / 3});
}

Result frmRemove_Summary::refresh()
{
    Services& services = m_session.services();
    Catalogue& catalogue = m_session.catalogue();
    catalogue.refresh(services.files, services.ansi);
    QList<RemovalPreview> previews;
    Result failure;
    for (const SelectedAddon& addon : m_choices.addons) {
        const ResultOf<RemovalPreview> preview = previewRemoval(m_session.context(),
                                                                *m_session.database(),
                                                                catalogue,
                                                                addon.key,
                                                                m_choices.options(addon));
        if (preview)
            previews.append(*preview);
        else if (failure)
            failure = Result::failure(textAbout(addon.name, preview.text));
    }
    m_totals = countsOf(previews);
    m_manager->setPreviews(previews);
    sizeColumns();
    return failure;
}

/// Everything in sight in a narrow window too: names and what happens get the room that is left.
void frmRemove_Summary::sizeColumns()
{
    using Addons = CControlMgr_lvwAddonRmvDtls;
    m_addons->header()->setSectionResizeMode(Addons::NameColumn, QHeaderView::Stretch);
    m_addons->header()->setSectionResizeMode(Addons::ActionColumn, QHeaderView::Stretch);
    m_files->header()->setSectionResizeMode(RemovedFilesModel::FateColumn, QHeaderView::Stretch);
    m_files->header()->setSectionResizeMode(RemovedFilesModel::FolderColumn, QHeaderView::Stretch);
    const auto size = [this](ColumnView* list, ViewPrefix prefix, int column, int characters) {
        const QString name = layoutName(LayoutValue::CurrentColumns, prefix);
        if (!m_session.context().settings.stored(Section::RemoveSummary, name))
            list->setColumnWidth(column, fontMetrics().averageCharWidth() * characters);
    };
    size(m_addons, ViewPrefix::None, Addons::OrderColumn, 9);
    size(m_files, ViewPrefix::Files, RemovedFilesModel::NameColumn, 30);
}

void frmRemove_Summary::showFiles()
{
    const RemovalPreview* preview = m_manager->current();
    m_model->setFiles(preview ? preview->files : QList<PreviewedFile>());
    m_about->setText(preview ? u"'"_s + preview->addon.name + u"': "_s + countsOf({*preview})
                             : QString());
}

void frmRemove_Summary::Form_Settings_Save()
{
    Settings& settings = m_session.context().settings;
    m_addons->saveLayout(settings, Section::RemoveSummary);
    m_files->saveLayout(settings, Section::RemoveSummary, ViewPrefix::Files);
    if (m_splitter->orientation() == Qt::Horizontal)
        settings.setLayoutText(Section::RemoveSummary,
                               LayoutValue::FirstPaneWidth,
                               QString::number(m_splitter->sizes().first()));
}

} // namespace vt
