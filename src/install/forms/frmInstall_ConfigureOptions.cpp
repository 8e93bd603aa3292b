#include "install/forms/frmInstall_ConfigureOptions.h"

#include "addondb/AddonColumns.h"
#include "install/CAddonInstallationDetails.h"
#include "install/forms/AccessKey.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/ElidedLabel.h"
#include "shell/forms/folderchooser.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int bestRating = 5;

QString starsOf(int rating)
{
    if (rating == 0)
        return ratingText(0);
    return QString(rating, QChar(0x2605)) + QString(bestRating - rating, QChar(0x2606));
}

QLabel* captionOf(const QString& text, QChar key, QWidget* buddy)
{
    auto* label = new QLabel(withAccessKey(text, key));
    label->setWordWrap(true);
    label->setBuddy(buddy);
    buddy->setAccessibleName(text);
    return label;
}

QWidget* plainGroup(QLayout* layout)
{
    auto* group = new QWidget;
    layout->setContentsMargins({});
    group->setLayout(layout);
    return group;
}

} // namespace

frmInstall_ConfigureOptions::frmInstall_ConfigureOptions(WizardState& state, QWidget* parent)
    : WizardPage(state, parent)
{
    setWindowTitle(u"Set Installation Options"_s);
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    auto* introduction = new QLabel(
        u"Name and describe the addon, choose where to install it and set other options below."_s);
    introduction->setWordWrap(true);
    column->addWidget(introduction);
    column->addWidget(nameAndDescription(), 1);
    column->addWidget(authorsAndRating());
    column->addWidget(installTo());
    column->addWidget(afterwards());
    column->setContentsMargins({});
    column->setSpacing(column->spacing() * 2);
    setContent(content);
    connectControls();
    setFocusProxy(m_name);
}

QString frmInstall_ConfigureOptions::header() const
{
    return u"Set installation options"_s;
}

// The parts.

QWidget* frmInstall_ConfigureOptions::nameAndDescription()
{
    auto* grid = new QGridLayout;
    m_name = new QLineEdit;
    m_name->setObjectName(u"txtAddonName"_s);
    grid->addWidget(captionOf(u"How would you like to refer to this addon?"_s, u'k', m_name), 0, 0);
    grid->addWidget(m_name, 1, 0, 1, 2);

    m_description = new QPlainTextEdit;
    m_description->setObjectName(u"txtDescription"_s);
    m_description->setTabChangesFocus(true);
    m_description->setMinimumHeight(4 * fontMetrics().lineSpacing());
    m_description->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);
    grid->addWidget(
        captionOf(u"Provide an optional description for the addon by entering one below"_s,
                  u'p',
                  m_description),
        2,
        0);
    auto* clear = new QPushButton(u"Clear"_s);
    clear->setObjectName(u"cmdClearDescription"_s);
    clear->setToolTip(u"Clear description."_s);
    clear->setAccessibleDescription(u"Clear description."_s);
    connect(clear, &QPushButton::clicked, m_description, &QPlainTextEdit::clear);
    grid->addWidget(clear, 2, 1);
    grid->addWidget(m_description, 3, 0, 1, 2);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(3, 1);
    return plainGroup(grid);
}

QWidget* frmInstall_ConfigureOptions::authorsAndRating()
{
    auto* grid = new QGridLayout;
    m_authors = new QLineEdit;
    m_authors->setObjectName(u"txtAuthors"_s);
    grid->addWidget(captionOf(u"Who created this addon?"_s, u'c', m_authors), 0, 0);
    grid->addWidget(m_authors, 1, 0);
    m_rating = new QComboBox;
    m_rating->setObjectName(u"cboRating"_s);
    for (int rating = 0; rating <= bestRating; ++rating) {
        m_rating->addItem(starsOf(rating), rating);
        m_rating->setItemData(rating,
                              rating == 0 ? ratingText(0)
                                          : QString(ratingText(rating) + u" of 5"_s),
                              Qt::AccessibleTextRole);
    }
    grid->addWidget(captionOf(u"Rating"_s, u'g', m_rating), 0, 1);
    grid->addWidget(m_rating, 1, 1);
    grid->setColumnStretch(0, 1);
    return plainGroup(grid);
}

QWidget* frmInstall_ConfigureOptions::installTo()
{
    const DisplayNames& names = state().session.context().global.names;
    auto* grid = new QGridLayout;
    m_toSimulator = new QRadioButton(names.simLong);
    m_toSimulator->setObjectName(u"optInstallToSimulator"_s);
    m_toCabinet = new QRadioButton(withAccessKey(names.productName + u" File Cabinet"_s, u'v'));
    m_toCabinet->setObjectName(u"optInstallToFileCabinet"_s);
    m_toCabinet->setToolTip(
        u"The files are kept in the File Cabinet and can be installed from there later."_s);
    grid->addWidget(new QLabel(u"Install this addon to"_s), 0, 0, 1, 3);
    grid->addWidget(m_toSimulator, 1, 0);
    grid->addWidget(m_toCabinet, 1, 1);
    grid->setColumnStretch(2, 1);
    return plainGroup(grid);
}

QWidget* frmInstall_ConfigureOptions::afterwards()
{
    auto* grid = new QGridLayout;
    m_archive =
        new QCheckBox(withAccessKey(u"Archive the source archive after installation"_s, u'r'));
    m_archive->setObjectName(u"chkArchiveSource"_s);
    m_archiveFolderLabel = new ElidedLabel;
    m_archiveFolderLabel->setObjectName(u"lblArchiveFolder"_s);
    m_changeFolder = new QPushButton(u"Change Folder"_s);
    m_changeFolder->setObjectName(u"cmdChangeArchiveFolder"_s);
    m_changeFolder->setToolTip(u"Change addon archival folder."_s);
    m_delete = new QCheckBox(u"Delete the source files after installation"_s);
    m_delete->setObjectName(u"chkDeleteSource"_s);
    m_start = new QCheckBox(withAccessKey(
        u"Start "_s + state().session.context().global.names.simLong + u" after installation"_s,
        u'x'));
    m_start->setObjectName(u"chkStartSimulator"_s);
    grid->addWidget(m_archive, 0, 0);
    grid->addWidget(m_archiveFolderLabel, 0, 1);
    grid->addWidget(m_changeFolder, 0, 2);
    grid->addWidget(m_delete, 1, 0, 1, 3);
    grid->addWidget(m_start, 2, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    return plainGroup(grid);
}

void frmInstall_ConfigureOptions::connectControls()
{
    using Me = frmInstall_ConfigureOptions;
    connect(m_name, &QLineEdit::textChanged, this, &Me::Options_UpdateInstallationClass);
    connect(
        m_description, &QPlainTextEdit::textChanged, this, &Me::Options_UpdateInstallationClass);
    connect(m_authors, &QLineEdit::textChanged, this, &Me::Options_UpdateInstallationClass);
    connect(m_rating, &QComboBox::currentIndexChanged, this, &Me::Options_UpdateInstallationClass);
    connect(m_toCabinet, &QRadioButton::toggled, this, &Me::changeInstallTo);
    connect(m_archive, &QCheckBox::toggled, this, &Me::archiveToggled);
    connect(m_changeFolder, &QPushButton::clicked, this, [this] { chooseArchiveFolder(); });
    connect(m_delete, &QCheckBox::toggled, this, [this](bool on) {
        // The source can go to one place only.
        if (on)
            m_archive->setChecked(false);
        Options_UpdateInstallationClass();
    });
    connect(m_start, &QCheckBox::toggled, this, &Me::Options_UpdateInstallationClass);
}

// Between the controls and the details.

void frmInstall_ConfigureOptions::enter()
{
    const QScopedValueRollback filling(m_filling, true);
    const CAddon_ItemGroup& addon = details().addon();
    const InstallOptions& options = details().options();
    if (m_name->text().trimmed() != addon.sGroupName)
        m_name->setText(addon.sGroupName);
    if (m_description->toPlainText() != addon.sGroupDescription)
        m_description->setPlainText(addon.sGroupDescription);
    m_authors->setText(addon.sAuthors);
    m_rating->setCurrentIndex(qBound(0, int(addon.lngRating), bestRating));
    (details().installTo() == InstallTo::Cabinet ? m_toCabinet : m_toSimulator)->setChecked(true);
    m_archiveFolder =
        options.archiveSourceFolder.isEmpty()
            ? state().session.context().settings.text(SettingKey::ArchiveAddonZipFileFolder)
            : options.archiveSourceFolder;
    const bool folder = details().source().path().endsWith(u'\\');
    m_archive->setEnabled(!folder);
    m_archive->setToolTip(folder ? u"Only an archive can be archived; this source is a folder."_s
                                 : QString());
    m_archive->setChecked(!options.archiveSourceFolder.isEmpty());
    m_delete->setChecked(options.deleteSource);
    m_start->setChecked(options.startSimulator);
    showArchiveFolder();
}

Result frmInstall_ConfigureOptions::leave()
{
    return details().Options_InstallationChoices_Validate();
}

void frmInstall_ConfigureOptions::Options_UpdateInstallationClass()
{
    if (m_filling)
        return;
    InstallOptions options = details().options();
    options.name = m_name->text();
    options.description = m_description->toPlainText();
    options.authors = m_authors->text().trimmed();
    options.rating = m_rating->currentIndex();
    options.archiveSourceFolder = m_archive->isChecked() ? m_archiveFolder : QString();
    options.deleteSource = m_delete->isChecked();
    options.startSimulator = m_start->isChecked();
    details().Options_UpdateInstallationClass(options);
    showArchiveFolder();
    Q_EMIT edited();
}

void frmInstall_ConfigureOptions::changeInstallTo()
{
    if (m_filling)
        return;
    details().Options_InstallationDetails_ModifyInstallationMethod(
        m_toCabinet->isChecked() ? InstallTo::Cabinet : InstallTo::Simulator);
    Q_EMIT othersChanged();
    Q_EMIT edited();
}

void frmInstall_ConfigureOptions::archiveToggled(bool on)
{
    if (m_filling)
        return;
    if (on && m_archiveFolder.isEmpty() && !chooseArchiveFolder()) {
        m_archive->setChecked(false);
        return;
    }
    if (on)
        m_delete->setChecked(false);
    Options_UpdateInstallationClass();
}

bool frmInstall_ConfigureOptions::chooseArchiveFolder()
{
    Context& context = state().session.context();
    const auto chosen = folderchooser::chooseFolder(
        this,
        context.services.files,
        {u"Select a Folder to Place Addon Source Zip File after Successful Installation"_s,
         {},
         m_archiveFolder});
    if (!chosen)
        return false;
    m_archiveFolder = *chosen;
    (void)context.settings.setText(SettingKey::ArchiveAddonZipFileFolder, m_archiveFolder);
    context.services.status.text(u"Primary"_s,
                                 u"The addon source zip archive folder has been updated."_s);
    Options_UpdateInstallationClass();
    return true;
}

void frmInstall_ConfigureOptions::showArchiveFolder()
{
    m_archiveFolderLabel->setText(m_archiveFolder);
    m_archiveFolderLabel->setEnabled(m_archive->isChecked());
    m_changeFolder->setEnabled(m_archive->isEnabled());
}

} // namespace vt
