#include "remove/forms/frmRemove_ConfigureOptions.h"

#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/GlobalRecord.h"
#include "shell/Settings.h"
#include "shell/forms/ElidedLabel.h"
#include "shell/forms/folderchooser.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr std::array offered = {RemovalMethod::Delete,
                                RemovalMethod::FileCabinet,
                                RemovalMethod::Recreate,
                                RemovalMethod::RemoveRecords};

QString addonWord(bool several)
{
    return several ? u"addons"_s : u"addon"_s;
}

/// What the user can count on, below the buttons.
QString consequenceOf(RemovalMethod method)
{
    switch (method) {
    case RemovalMethod::FileCabinet:
        return u"The files leave the simulator and can be reinstalled from the File Cabinet at any time. What they had replaced comes back."_s;
    case RemovalMethod::Recreate:
        return u"The files leave the simulator and are kept where you say. What they had replaced comes back."_s;
    case RemovalMethod::RemoveRecords:
        return u"The files stay where they are, but nothing can be removed, repaired or put back by their records any more."_s;
    default:
        return u"The files leave the simulator for good. What they had replaced comes back; files that you changed are kept in Backups."_s;
    }
}

/// The text with an access key before its first \a key.
QString withKey(QString text, QChar key)
{
    return text.insert(text.indexOf(key), u'&');
}

} // namespace

QString removalMethodText(RemovalMethod method, bool several, const QString& productName)
{
    const QString addons = u"the "_s + addonWord(several);
    switch (method) {
    case RemovalMethod::FileCabinet:
        return u"Moving "_s + addons + u" to the File Cabinet"_s;
    case RemovalMethod::Recreate:
        return u"Recreating "_s + addons + u" by"_s + u" placing"_s +
               (several ? u" them in folders or zip files"_s
                        : u" the files in a folder or zip file"_s);
    case RemovalMethod::RemoveRecords:
        return several ? u"Removing their records from "_s + productName +
                             u"'s database. Leave the addons installed"_s
                       : u"Removing the records from "_s + productName +
                             u"'s database. Leave the addon files installed"_s;
    default:
        return u"Deleting "_s + addons;
    }
}

frmRemove_ConfigureOptions::frmRemove_ConfigureOptions(Session& session,
                                                       RemovalChoices& choices,
                                                       QWidget* parent)
    : QWidget(parent), m_session(session), m_choices(choices)
{
    setObjectName(u"frmRemove_ConfigureOptions"_s);
    m_folder = session.context().settings.text(SettingKey::RecreateLastFolder);
    m_intro = new QLabel;
    m_intro->setObjectName(u"lblIntro"_s);
    m_intro->setWordWrap(true);
    m_applies = new QComboBox;
    m_applies->setObjectName(u"cboAppliesTo"_s);
    m_applies->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    connect(m_applies, &QComboBox::currentIndexChanged, this, &frmRemove_ConfigureOptions::showWay);
    m_appliesLabel = new QLabel(u"For whi&ch:"_s);
    m_appliesLabel->setBuddy(m_applies);
    auto* line = new QHBoxLayout;
    line->addWidget(m_appliesLabel);
    line->addWidget(m_applies, 1);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_intro);
    layout->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
    layout->addLayout(line);
    buildMethods(layout);
    buildFolder(layout);
    m_consequence = new QLabel;
    m_consequence->setObjectName(u"lblConsequence"_s);
    m_consequence->setWordWrap(true);
    layout->addSpacing(style()->pixelMetric(QStyle::PM_LayoutVerticalSpacing));
    layout->addWidget(m_consequence);
    layout->addStretch();
}

void frmRemove_ConfigureOptions::buildMethods(QVBoxLayout* layout)
{
    m_methods = new QButtonGroup(this);
    for (const RemovalMethod method : offered) {
        auto* button = new QRadioButton;
        button->setObjectName(u"optRemovalMethod"_s + QString::number(int(method)));
        m_methods->addButton(button, int(method));
        layout->addWidget(button);
    }
    connect(m_methods, &QButtonGroup::idClicked, this, &frmRemove_ConfigureOptions::takeWay);
    m_mixed = new QLabel;
    m_mixed->setObjectName(u"lblMixed"_s);
    m_mixed->setWordWrap(true);
    layout->addWidget(m_mixed);
}

/// Below the third method, as far in as its text.
void frmRemove_ConfigureOptions::buildFolder(QVBoxLayout* layout)
{
    m_folderLabel = new ElidedLabel;
    m_folderLabel->setObjectName(u"lblRecreateFolder"_s);
    auto* change = new QPushButton(u"Chan&ge..."_s);
    change->setObjectName(u"cmdRecreateFolder"_s);
    change->setToolTip(u"Change the destination folder."_s);
    change->setAccessibleDescription(change->toolTip());
    change->setAutoDefault(false);
    connect(change, &QPushButton::clicked, this, &frmRemove_ConfigureOptions::chooseFolder);
    chkZipRecreatedFiles = new QCheckBox;
    chkZipRecreatedFiles->setObjectName(u"chkZipRecreatedFiles"_s);
    chkZipRecreatedFiles->setChecked(
        m_session.context().settings.flag(SettingKey::RecreateToAZipFile));
    connect(chkZipRecreatedFiles, &QCheckBox::clicked, this, &frmRemove_ConfigureOptions::takeWay);
    m_destination = new QWidget;
    auto* inner = new QGridLayout(m_destination);
    const int indent = style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) +
                       style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing);
    inner->setContentsMargins(indent, 0, 0, 0);
    inner->addWidget(new QLabel(u"Folder:"_s), 0, 0);
    inner->addWidget(m_folderLabel, 0, 1);
    inner->addWidget(change, 0, 2);
    inner->addWidget(chkZipRecreatedFiles, 1, 0, 1, 3);
    inner->setColumnStretch(1, 1);
    const QAbstractButton* recreate = m_methods->button(int(RemovalMethod::Recreate));
    for (int i = 0; i < layout->count(); ++i) {
        if (layout->itemAt(i)->widget() == recreate)
            layout->insertWidget(i + 1, m_destination);
    }
}

// --- what is shown ---

bool frmRemove_ConfigureOptions::several() const
{
    return concerned().size() > 1;
}

/// Keys of the add-ons that the buttons speak of.
QList<qint64> frmRemove_ConfigureOptions::concerned() const
{
    QList<qint64> keys;
    const int one = m_applies->currentIndex() - 1;
    for (qsizetype i = 0; i < m_choices.addons.size(); ++i)
        if (one < 0 || one == i)
            keys.append(m_choices.addons.at(i).key);
    return keys;
}

void frmRemove_ConfigureOptions::refresh()
{
    {
        const QSignalBlocker quiet(m_applies);
        m_applies->clear();
        m_applies->addItem(u"All "_s + QString::number(m_choices.addons.size()) + u" addons"_s);
        for (const SelectedAddon& addon : std::as_const(m_choices.addons))
            m_applies->addItem(addon.name);
    }
    const bool choice = m_choices.addons.size() > 1;
    m_applies->setVisible(choice);
    m_appliesLabel->setVisible(choice);
    m_intro->setText(u"Customize the way the "_s + addonWord(choice) +
                     u" will be removed by making changes below."_s);
    showWay();
    QAbstractButton* const checked = m_methods->checkedButton();
    setFocusProxy(choice || !checked ? static_cast<QWidget*>(m_applies) : checked);
}

void frmRemove_ConfigureOptions::showTexts()
{
    const bool many = several();
    const QString& product = m_session.context().global.names.productName;
    const std::array<QChar, 4> keys = {u'D', u'M', u'R', u'v'};
    for (size_t i = 0; i < offered.size(); ++i)
        m_methods->button(int(offered[i]))
            ->setText(withKey(removalMethodText(offered[i], many, product), keys[i]));
    chkZipRecreatedFiles->setText(
        withKey(u"Create "_s + (many ? u"zip files"_s : u"a zip file"_s), u'z'));
}

void frmRemove_ConfigureOptions::showWay()
{
    const QList<qint64> keys = concerned();
    if (keys.isEmpty())
        return;
    m_showing = true;
    showTexts();
    const RemovalWay way = m_choices.way(keys.first());
    const bool same = std::all_of(
        keys.begin(), keys.end(), [&](qint64 key) { return m_choices.way(key) == way; });
    m_methods->setExclusive(false);
    for (QAbstractButton* button : m_methods->buttons())
        button->setChecked(same && m_methods->id(button) == int(way.method));
    m_methods->setExclusive(true);
    m_mixed->setText(u"These addons go different ways; choose one here to set it for all."_s);
    m_mixed->setVisible(!same);
    const bool stored =
        std::any_of(m_choices.addons.cbegin(), m_choices.addons.cend(), [&](const auto& addon) {
            return addon.inCabinet && keys.contains(addon.key);
        });
    QAbstractButton* cabinet = m_methods->button(int(RemovalMethod::FileCabinet));
    cabinet->setEnabled(!stored);
    cabinet->setToolTip(stored ? u"What is in the File Cabinet already cannot be moved there."_s
                               : QString());
    const bool recreates = same && way.method == RemovalMethod::Recreate;
    m_destination->setEnabled(recreates);
    if (recreates) {
        m_folder = way.folder;
        chkZipRecreatedFiles->setChecked(way.zip);
    }
    m_folderLabel->setText(m_folder.isEmpty() ? u"none chosen yet"_s : m_folder);
    m_consequence->setText(same ? consequenceOf(way.method) : QString());
    m_showing = false;
}

// --- what is chosen ---

void frmRemove_ConfigureOptions::takeWay()
{
    if (m_showing || m_methods->checkedId() < 0)
        return;
    RemovalWay way{RemovalMethod(m_methods->checkedId())};
    if (way.method == RemovalMethod::Recreate) {
        way.folder = m_folder;
        way.zip = chkZipRecreatedFiles->isChecked();
        m_session.context().settings.setFlag(SettingKey::RecreateToAZipFile, way.zip);
    }
    for (const qint64 key : concerned())
        m_choices.ways.insert(key, way);
    showWay();
    Q_EMIT changed();
}

void frmRemove_ConfigureOptions::chooseFolder()
{
    const std::optional<QString> chosen =
        folderchooser::chooseFolder(this,
                                    m_session.services().files,
                                    {u"Select Recreate Folder"_s,
                                     u"Select the folder that the addon files go to."_s,
                                     m_folder});
    if (!chosen)
        return;
    m_folder = *chosen;
    m_session.context().settings.setText(SettingKey::RecreateLastFolder, m_folder);
    takeWay();
}

Result frmRemove_ConfigureOptions::check() const
{
    for (const SelectedAddon& addon : std::as_const(m_choices.addons)) {
        const RemovalWay way = m_choices.way(addon.key);
        if (way.method != RemovalMethod::Recreate)
            continue;
        if (way.folder.isEmpty())
            return Result::failure(u"Choose the folder that the files of '"_s + addon.name +
                                   u"' go to."_s);
        // Inside the simulator or the program they would be in the way of other add-ons.
        const GlobalRecord& global = m_session.context().global;
        if (winpath::isBelow(way.folder, global.simulatorFolder) ||
            winpath::isBelow(way.folder, global.programFolder))
            return Result::failure(
                u"The files cannot go to '"_s + way.folder +
                u"': choose a folder outside of those of the simulator and the program."_s);
        if (!m_session.services().files.isFolder(way.folder))
            return Result::failure(u"The folder '"_s + way.folder +
                                   u"' does not exist; choose another one."_s);
    }
    return Result::success();
}

} // namespace vt
