#include "install/forms/frmInstall_ConfigureOther.h"

#include "install/CAddonInstallationDetails.h"
#include "install/forms/InstallItemModel.h"
#include "session/Session.h"
#include "shell/forms/WrappedLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook otherLook()
{
    ConfigurePageLook look;
    look.family = MappedGroup::DocumentAndOther;
    look.section = Section::InstallConfigureOther;
    look.header = u"Customize installation of other files."_s;
    return look;
}

} // namespace

frmInstall_ConfigureOther::frmInstall_ConfigureOther(WizardState& state, QWidget* parent)
    : ConfigurePage(state, otherLook(), parent)
{
    build(nullptr, [this] { return storage(); });
}

QWidget* frmInstall_ConfigureOther::storage()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    m_storage = new QLabel(row);
    m_storage->setTextFormat(Qt::PlainText);
    wrap(m_storage);
    m_resolve = new QPushButton(u"&Resolve Problems"_s, row);
    m_resolve->setObjectName(u"cmdResolveProblems"_s);
    m_resolve->setToolTip(
        u"Documents of the same name get a folder each, below the addon's own folder"_s);
    layout->addWidget(m_storage, 1);
    layout->addWidget(m_resolve, 0, Qt::AlignTop);
    connect(m_resolve, &QPushButton::clicked, this, [this] {
        (void)manager().decide([this] {
            details().DocumentAndOther_AutomaticallyResolveProblems();
            return Result::success();
        });
    });
    return row;
}

void frmInstall_ConfigureOther::showGroup()
{
    m_storage->setText(u"Documents and other files are kept in the addon's own folder, '"_s +
                       details().storageFolder() + u"', unless the list says otherwise."_s);
    m_resolve->setVisible(manager().items().anyTwice());
}

} // namespace vt
