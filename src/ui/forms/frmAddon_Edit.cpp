#include "ui/forms/frmAddon_Edit.h"

#include "addondb/AddonColumns.h"
#include "shell/forms/Frame.h"
#include "shell/forms/folderchooser.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

frmAddon_Edit::frmAddon_Edit(const Files& files, const AddonRecord& addon, QWidget* parent)
    : QDialog(parent), m_files(files), m_addon(addon)
{
    setObjectName(u"frmAddon_Edit"_s);
    setWindowTitle(u"Edit Addon"_s);
    setProperty(helpTopicProperty, u"addons"_s);
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    buildTexts(form);
    form->addRow(u"Picture:"_s, buildPicture());
    layout->addLayout(form);
    m_problem = new QLabel;
    m_problem->setObjectName(u"lblProblem"_s);
    layout->addWidget(m_problem);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(m_buttons);
    check();
}

void frmAddon_Edit::buildTexts(QFormLayout* form)
{
    m_name = new QLineEdit(m_addon.name);
    m_name->setObjectName(u"txtName"_s);
    m_name->setMinimumWidth(fontMetrics().averageCharWidth() * 48);
    connect(m_name, &QLineEdit::textChanged, this, &frmAddon_Edit::check);
    m_authors = new QLineEdit(m_addon.authors);
    m_authors->setObjectName(u"txtAuthors"_s);
    m_rating = new QComboBox;
    m_rating->setObjectName(u"cboRating"_s);
    for (qint64 rating = 0; rating <= highestRating; ++rating)
        m_rating->addItem(ratingText(rating));
    m_rating->setCurrentIndex(int(m_addon.rating));
    m_description = new QPlainTextEdit(m_addon.description);
    m_description->setObjectName(u"txtDescription"_s);
    m_description->setTabChangesFocus(true);
    form->addRow(u"&Name:"_s, m_name);
    form->addRow(u"&Author(s):"_s, m_authors);
    form->addRow(u"&Rating:"_s, m_rating);
    form->addRow(u"&Description:"_s, m_description);
}

QLayout* frmAddon_Edit::buildPicture()
{
    m_pictureText = new QLabel(u"stays as it is"_s);
    auto* choose = new QPushButton(u"Choose &Picture..."_s);
    choose->setObjectName(u"cmdChoosePicture"_s);
    auto* none = new QPushButton(u"N&o Picture"_s);
    none->setObjectName(u"cmdNoPicture"_s);
    for (QPushButton* button : {choose, none})
        button->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, [this] {
        folderchooser::Request request;
        request.title = u"Choose Picture"_s;
        request.filters = {u"Pictures (*.jpg *.jpeg *.png *.bmp *.gif *.tif *.tga *.dds)"_s,
                           u"All Files (*)"_s};
        if (const auto file = folderchooser::chooseFile(this, m_files, request)) {
            m_picture = *file;
            m_pictureText->setText(*file);
        }
    });
    connect(none, &QPushButton::clicked, this, [this] {
        m_picture = QString();
        m_pictureText->setText(u"none"_s);
    });
    auto* row = new QHBoxLayout;
    row->addWidget(m_pictureText, 1);
    row->addWidget(choose);
    row->addWidget(none);
    return row;
}

AddonChanges frmAddon_Edit::changes() const
{
    AddonChanges changes;
    if (const QString name = m_name->text().trimmed(); name != m_addon.name)
        changes.name = name;
    if (const QString authors = m_authors->text().trimmed(); authors != m_addon.authors)
        changes.authors = authors;
    if (m_rating->currentIndex() != m_addon.rating)
        changes.rating = m_rating->currentIndex();
    if (const QString text = m_description->toPlainText(); text != m_addon.description)
        changes.description = text;
    changes.pictureFile = m_picture;
    return changes;
}

void frmAddon_Edit::check()
{
    const Result good = checkChanges(changes());
    m_problem->setText(good.text);
    m_buttons->button(QDialogButtonBox::Ok)->setEnabled(good.ok);
}

} // namespace vt
