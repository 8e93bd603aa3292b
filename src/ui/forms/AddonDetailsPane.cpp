#include "ui/forms/AddonDetailsPane.h"

#include "addondb/Pictures.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Icons.h"
#include "simconfig/AddonVariations.h"

#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Lines of text that the description takes at the most, and the picture.
constexpr int descriptionLines = 5;
constexpr int pictureLines = 9;
constexpr qint64 largestPicture = 4'000'000;

QVariant stateIcon(ItemState state)
{
    switch (state) {
    case ItemState::Ok:
        return icons::state(icons::State::Whole);
    case ItemState::Missing:
        return icons::state(icons::State::Missing);
    case ItemState::Changed:
        return icons::state(icons::State::Changed);
    }
    Q_UNREACHABLE();
}

void addRow(QStandardItemModel* model, const QStringList& texts)
{
    QList<QStandardItem*> items;
    for (const QString& text : texts) {
        items.append(new QStandardItem(text));
        items.last()->setEditable(false);
    }
    model->appendRow(items);
}

} // namespace

AddonDetailsPane::AddonDetailsPane(Session& session, QWidget* parent)
    : QWidget(parent), m_session(session)
{
    setObjectName(u"AddonDetailsPane"_s);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(fontMetrics().averageCharWidth(), 0, 0, 0);
    m_picture = new QLabel;
    m_picture->setObjectName(u"picAddon"_s);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setMinimumWidth(1);
    m_picture->setAccessibleName(u"Picture"_s);
    m_name = new QLabel;
    m_name->setObjectName(u"lblAddonName"_s);
    m_name->setWordWrap(true);
    m_name->setTextFormat(Qt::PlainText);
    QFont bold = m_name->font();
    bold.setBold(true);
    m_name->setFont(bold);
    m_summary = new QLabel;
    m_summary->setObjectName(u"lblSummary"_s);
    m_summary->setWordWrap(true);
    m_summary->setTextFormat(Qt::PlainText);
    m_description = new QPlainTextEdit;
    m_description->setObjectName(u"txtDescription"_s);
    m_description->setReadOnly(true);
    m_description->setTabChangesFocus(true);
    m_description->setAccessibleName(u"Description"_s);
    m_description->setMaximumHeight(fontMetrics().lineSpacing() * descriptionLines +
                                    fontMetrics().height());
    m_edit = new QPushButton(u"&Edit..."_s);
    m_edit->setObjectName(u"cmdEdit"_s);
    connect(m_edit, &QPushButton::clicked, this, &AddonDetailsPane::editWanted);
    m_tabs = new QTabWidget;
    m_tabs->setObjectName(u"tabDetails"_s);
    m_tabs->addTab(buildFiles(), u"F&iles"_s);
    m_tabs->addTab(
        buildPlain(m_areas, {u"Title"_s, u"Area"_s, u"Layer"_s, u"Folder"_s}, u"Areas"_s),
        u"A&reas"_s);
    m_tabs->addTab(buildPlain(m_variations, {u"Title"_s, u"Section"_s, u"File"_s}, u"Variations"_s),
                   u"&Variations"_s);
    connect(m_tabs, &QTabWidget::currentChanged, this, &AddonDetailsPane::showVariations);
    layout->addWidget(m_picture);
    layout->addWidget(m_name);
    layout->addWidget(m_summary);
    layout->addWidget(m_description);
    layout->addWidget(m_edit, 0, Qt::AlignLeft);
    layout->addWidget(m_tabs, 1);
    layout->addStretch();
    showNothing();
}

QWidget* AddonDetailsPane::buildFiles()
{
    m_files.picture = stateIcon;
    m_filesView = new ColumnView;
    m_filesView->setObjectName(u"lvwAddonFiles"_s);
    m_filesView->setAccessibleName(u"Files"_s);
    m_filesView->setModel(&m_files);
    m_filesView->header()->setStretchLastSection(true);
    m_filesView->setPathColumns({AddonFilesModel::FolderColumn});
    m_filesView->setEmptyText(u"No files are recorded for this add-on."_s);
    return m_filesView;
}

QWidget* AddonDetailsPane::buildPlain(QStandardItemModel*& model,
                                      const QStringList& titles,
                                      const QString& name)
{
    model = new QStandardItemModel(0, int(titles.size()), this);
    model->setHorizontalHeaderLabels(titles);
    auto* view = new ColumnView;
    view->setObjectName(u"lvw"_s + name);
    view->setAccessibleName(name);
    view->setModel(model);
    view->header()->setStretchLastSection(true);
    view->setPathColumns({int(titles.size()) - 1});
    view->setEmptyText(name == "Areas"_L1 ? u"The add-on added no areas to the scenery library."_s
                                          : u"The add-on added no variations to aircraft."_s);
    return view;
}

void AddonDetailsPane::showHead(const QString& name,
                                const QString& facts,
                                const QString& description)
{
    m_name->setText(name);
    m_name->setVisible(!name.isEmpty());
    m_summary->setText(facts);
    m_description->setPlainText(description);
    m_description->setVisible(!description.isEmpty());
}

void AddonDetailsPane::showNothing()
{
    m_facts.reset();
    showHead({}, u"Select an add-on to see its files here."_s, {});
    m_picture->hide();
    m_edit->hide();
    m_tabs->hide();
}

void AddonDetailsPane::showTotals(const AddonTotals& totals)
{
    showNothing();
    showHead(QLocale().toString(totals.addons) + u" add-ons selected"_s,
             countText(totals.files, u"file"_s, u"files"_s) + u", "_s + sizeText(totals.bytes) +
                 u" of sources"_s,
             {});
}

void AddonDetailsPane::showAddon(const AddonListRow& row)
{
    const AddonRecord& addon = row.addon;
    QStringList facts;
    facts.append(originWord(addon) + u' ' +
                 QLocale().toString(addon.dateInstalled, QLocale::ShortFormat));
    if (!addon.authors.isEmpty())
        facts.append(u"by "_s + addon.authors);
    facts.append(countText(row.files, u"file"_s, u"files"_s) + u", "_s +
                 sizeText(addon.sourceSize) +
                 (addon.rating > 0 ? u", rating "_s + ratingText(addon.rating) : QString()));
    showHead(addon.name, facts.join(u'\n'), addon.description);
    m_edit->show();
    showPicture(addon.key);
    showFacts(row);
}

// --- parts ---

void AddonDetailsPane::showPicture(qint64 masterKey)
{
    Context& context = m_session.context();
    const auto bytes = context.services.files.read(
        pictures::addonPicture(context.global, masterKey), largestPicture);
    m_wholePicture = {};
    if (bytes) // made by our own helper, always JPEG
        m_wholePicture.loadFromData(*bytes, "JPG");
    m_picture->setVisible(!m_wholePicture.isNull());
    scalePicture();
}

void AddonDetailsPane::scalePicture()
{
    if (m_wholePicture.isNull())
        return;
    const QSize room(width(), fontMetrics().lineSpacing() * pictureLines);
    const QSize size = m_wholePicture.size().scaled(room, Qt::KeepAspectRatio);
    m_picture->setPixmap(
        m_wholePicture.scaled(size.boundedTo(m_wholePicture.size()) * devicePixelRatioF(),
                              Qt::KeepAspectRatio,
                              Qt::SmoothTransformation));
}

void AddonDetailsPane::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    scalePicture();
}

void AddonDetailsPane::showFacts(const AddonListRow& row)
{
    ResultOf<AddonFacts> facts =
        AddonFacts::load(m_session.context(), *m_session.database(), row.addon.key);
    m_tabs->setVisible(facts.ok());
    if (!facts) {
        m_facts.reset();
        m_summary->setText(facts.text);
        return;
    }
    m_session.services().files.newOperation();
    m_facts = std::make_shared<AddonFacts>(std::move(*facts));
    m_files.setFiles(m_facts->items.details(), [this, shown = m_facts](const DetailRecord& file) {
        return shown->state(m_session.context(), *m_session.database(), file);
    });
    m_areas->setRowCount(0);
    for (const SceneryAreaRecord& area : m_facts->areas)
        addRow(m_areas,
               {area.title, QString::number(area.area), QString::number(area.layer), area.path});
    m_variationsShown = false;
    showVariations();
}

/// Reads aircraft.cfg files, so only while somebody looks.
void AddonDetailsPane::showVariations()
{
    if (!m_facts || m_variationsShown || m_tabs->currentIndex() != 2)
        return;
    m_variationsShown = true;
    m_variations->setRowCount(0);
    for (const auto& variation : addonvariations::find(
             ConfigAccess(m_session.services()), m_facts->row.addon.key, m_facts->items.details()))
        addRow(m_variations, {variation.title, variation.section, variation.file});
}

} // namespace vt
