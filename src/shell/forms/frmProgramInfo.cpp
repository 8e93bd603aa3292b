#include "shell/forms/frmProgramInfo.h"

#include "platform/Text.h"
#include "shell/GlobalRecord.h"
#include "shell/Settings.h"
#include "shell/forms/Desktop.h"
#include "shell/forms/Icons.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QSysInfo>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int folderRole = Qt::UserRole;

} // namespace

frmProgramInfo::frmProgramInfo(Context& context,
                               const QString& version,
                               const QList<ProgramFact>& more,
                               QWidget* parent)
    : ToolWindow(context, Section::ProgramInfo, parent), m_list(new QTreeWidget)
{
    setObjectName(u"frmProgramInfo"_s);
    setWindowTitle(u"Program Info"_s);
    setWindowIcon(icons::command(u"info"_s));
    gather(version);
    m_facts += more;
    m_list->setHeaderLabels({u"What"_s, u"Value"_s});
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->setTextElideMode(Qt::ElideMiddle);
    m_list->setAccessibleName(windowTitle());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    auto* copyAll = buttons->addButton(u"&Copy All"_s, QDialogButtonBox::ActionRole);
    auto* open = buttons->addButton(u"Open Fo&lder"_s, QDialogButtonBox::ActionRole);
    open->setObjectName(u"openFolder"_s);
    open->setEnabled(false);
    auto* column = new QVBoxLayout(this);
    column->addWidget(m_list);
    column->addWidget(buttons);
    connect(copyAll, &QPushButton::clicked, this, &frmProgramInfo::copy);
    connect(open, &QPushButton::clicked, this, &frmProgramInfo::openFolder);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] {
        (parentWidget() ? parentWidget() : this)->close();
    });
    connect(m_list, &QTreeWidget::currentItemChanged, this, [open](const QTreeWidgetItem* item) {
        open->setEnabled(item && !item->data(0, folderRole).toString().isEmpty());
    });
    connect(m_list, &QTreeWidget::itemActivated, this, &frmProgramInfo::openFolder);
}

void frmProgramInfo::gather(const QString& version)
{
    const GlobalRecord& global = context().global;
    const Files& files = context().services.files;
    const auto fact = [this](const QString& group, const QString& name, const QString& value) {
        m_facts.append({group, name, value, {}});
    };
    const auto folder = [this](const QString& group, const QString& name, const QString& path) {
        if (!path.isEmpty())
            m_facts.append({group, name, path, path});
    };
    const QString program = u"Program"_s;
    fact(program, u"Version"_s, version);
    fact(program, u"Qt"_s, QString::fromLatin1(qVersion()));
    fact(program, u"System"_s, QSysInfo::prettyProductName());
    folder(program, u"Program folder"_s, global.programFolder);
    folder(program, u"Kept originals"_s, global.originalsFolder);
    folder(program, u"Backups"_s, global.backupsFolder);
    folder(program, u"File Cabinet"_s, global.cabinetFolder);
    folder(program, u"Pictures"_s, global.imagesFolder);
    folder(program, u"Settings"_s, global.settingsFolder);
    const QString database = u"Add-on database"_s;
    fact(database, u"File"_s, global.databaseFile);
    fact(database, u"Size"_s, sizeText(files.info(global.databaseFile).value_or(FileInfo{}).size));
    fact(database,
         u"Changes since it was optimized"_s,
         QString::number(context().settings.number(SettingKey::DatabaseHistory)));
    const QString simulator = u"Simulator"_s;
    fact(simulator, u"Name"_s, global.names.simFullTitle);
    folder(simulator, u"Folder"_s, global.simulatorFolder);
    folder(simulator, u"Configuration"_s, global.mainConfigFolder);
    fact(simulator, u"Scenery library"_s, global.sceneryCfgFile);
    folder(simulator, u"Documents"_s, global.userDocumentsFolder);
}

void frmProgramInfo::Form_PrepareToShow()
{
    QTreeWidgetItem* group = nullptr;
    for (const ProgramFact& fact : std::as_const(m_facts)) {
        if (!group || group->text(0) != fact.group) {
            group = new QTreeWidgetItem(m_list, {fact.group});
            group->setFirstColumnSpanned(true);
            group->setFlags(Qt::ItemIsEnabled);
            QFont bold = font();
            bold.setBold(true);
            group->setFont(0, bold);
            group->setExpanded(true);
        }
        auto* item = new QTreeWidgetItem(group, {fact.name, fact.value});
        item->setToolTip(1, fact.value);
        item->setData(0, folderRole, fact.folder);
        if (!fact.folder.isEmpty())
            item->setIcon(1, icons::kind(icons::Kind::Folder));
    }
    m_list->expandAll();
    const int kept = context().settings.layoutText(section(), LayoutValue::FirstPaneWidth).toInt();
    m_list->resizeColumnToContents(0);
    if (kept > 0)
        m_list->setColumnWidth(0, kept);
    m_list->setFocus();
}

void frmProgramInfo::Form_Settings_Save()
{
    (void)context().settings.setLayoutText(
        section(), LayoutValue::FirstPaneWidth, QString::number(m_list->columnWidth(0)));
}

QString frmProgramInfo::text() const
{
    QString out;
    QString group;
    for (const ProgramFact& fact : m_facts) {
        if (fact.group != group)
            out += (out.isEmpty() ? QString() : u"\n"_s) + fact.group + u'\n';
        group = fact.group;
        out += u"  "_s + fact.name + u": "_s + fact.value + u'\n';
    }
    return out;
}

void frmProgramInfo::copy() const
{
    QApplication::clipboard()->setText(text());
    say(u"The information was copied."_s);
}

void frmProgramInfo::openFolder() const
{
    const QTreeWidgetItem* item = m_list->currentItem();
    const QString folder = item ? item->data(0, folderRole).toString() : QString();
    if (!folder.isEmpty() && !desktop::openFolder(context().services.files, folder))
        say(u"The folder '"_s + folder + u"' could not be opened."_s);
}

} // namespace vt
