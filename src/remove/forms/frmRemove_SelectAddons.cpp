#include "remove/forms/frmRemove_SelectAddons.h"

#include "platform/Text.h"
#include "remove/forms/AddonSelectionModel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

frmRemove_SelectAddons::frmRemove_SelectAddons(Context& context,
                                               Connection& database,
                                               QWidget* parent)
    : QWidget(parent), m_context(context), m_model(new AddonSelectionModel(database, this))
{
    setObjectName(u"frmRemove_SelectAddons"_s);
    m_search = new QLineEdit;
    m_search->setObjectName(u"txtSearch"_s);
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, m_model, &AddonSelectionModel::setSearch);
    auto* label = new QLabel(u"&Search:"_s);
    label->setBuddy(m_search);
    const auto button = [this](const QString& name, const QString& text, bool ticked) {
        auto* made = new QPushButton(text);
        made->setObjectName(name);
        made->setAutoDefault(false);
        connect(made, &QPushButton::clicked, this, [this, ticked] { m_model->tickShown(ticked); });
        return made;
    };
    m_count = new QLabel;
    m_count->setObjectName(u"lblSelected"_s);
    auto* line = new QHBoxLayout;
    line->addWidget(label);
    line->addWidget(m_search, 1);
    line->addWidget(button(u"cmdTickAll"_s, u"Tick A&ll"_s, true));
    line->addWidget(button(u"cmdTickNone"_s, u"Tic&k None"_s, false));

    m_list = new ColumnView;
    m_list->setObjectName(u"tvwAddons"_s);
    m_list->setAccessibleName(u"Addons and their files"_s);
    m_list->setRootIsDecorated(true);
    m_list->setModel(m_model);
    m_list->setEmptyText(
        u"Addons that you install are listed here, each with its files, to be ticked for removal."_s);
    m_list->restoreLayout(context.settings, Section::RemoveSelectAddon);
    m_list->header()->setSectionResizeMode(AddonSelectionModel::NameColumn, QHeaderView::Stretch);
    connect(m_model, &AddonSelectionModel::ticksChanged, this, [this] {
        showCount();
        Q_EMIT ticksChanged();
    });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(line);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_count);
    showCount();
}

/// No focus proxy, which would be where Tab goes from the steps, past what is above it.
void frmRemove_SelectAddons::focusInEvent(QFocusEvent*)
{
    m_list->setFocus();
}

Result frmRemove_SelectAddons::refresh()
{
    return m_model->load();
}

QList<SelectedAddon> frmRemove_SelectAddons::selection() const
{
    return m_model->selection();
}

void frmRemove_SelectAddons::restore(const QList<SelectedAddon>& selection)
{
    m_model->setSelection(selection);
    for (int row = 0; row < m_model->rowCount() && !selection.isEmpty(); ++row) {
        const QModelIndex index = m_model->index(row, 0);
        if (index.data(Qt::CheckStateRole).toInt() == Qt::Unchecked)
            continue;
        m_list->setCurrentIndex(index);
        m_list->scrollTo(index);
        break;
    }
}

void frmRemove_SelectAddons::showCount()
{
    qsizetype whole = 0;
    qsizetype parts = 0;
    qsizetype files = 0;
    for (const SelectedAddon& addon : m_model->selection()) {
        (addon.files.isEmpty() ? whole : parts) += 1;
        files += addon.files.size();
    }
    QString text = countText(whole, u"addon is"_s, u"addons are"_s) + u" ticked"_s;
    if (parts > 0)
        text += u", and "_s + countText(files, u"file"_s, u"files"_s) + u" of "_s +
                countText(parts, u"other addon"_s, u"other addons"_s);
    m_count->setText(text + u". Unfold an addon to tick single files."_s);
}

void frmRemove_SelectAddons::Form_Settings_Save()
{
    m_list->saveLayout(m_context.settings, Section::RemoveSelectAddon);
}

} // namespace vt
