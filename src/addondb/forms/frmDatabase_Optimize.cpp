#include "addondb/forms/frmDatabase_Optimize.h"

#include "addondb/DatabaseCare.h"
#include "platform/Text.h"
#include "shell/Settings.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

Prompt closeWindowsPrompt(const QString& productTitle)
{
    return {productTitle + u" Close open windows?"_s,
            u"All other windows must be closed before optimizing the database."_s + u'\n' +
                u"Select OK to close them now or select Cancel to abort."_s,
            vt::Icon::Question,
            {Button::Ok, Button::Cancel},
            Button::Ok,
            {}};
}

} // namespace

frmDatabase_Optimize::frmDatabase_Optimize(Session& session, Frame& frame, QWidget* parent)
    : QDialog(parent), m_session(session), m_frame(frame)
{
    setObjectName(u"frmDatabase_Optimize"_s);
    setWindowTitle(u"Optimize Database"_s);
    setProperty(helpTopicProperty, u"optimize"_s);
    m_size = new QLabel;
    m_size->setObjectName(u"lblSize"_s);
    m_size->setWordWrap(true);
    m_auto = new QCheckBox(u"&Auto Optimize"_s);
    m_auto->setObjectName(u"chkAutoOptimize"_s);
    m_auto->setToolTip(u"Optimizes the database at the end of the program, after some removals."_s);
    m_auto->setChecked(session.context().settings.flag(SettingKey::AutoOptimize));
    m_repair = new QCheckBox(u"&Thorough repair"_s);
    m_repair->setObjectName(u"chkRepair"_s);
    m_repair->setToolTip(
        u"Saves what can be read of a damaged database; the damaged file is kept beside."_s);
    m_said = new QLabel;
    m_said->setObjectName(u"lblSaid"_s);
    m_said->setWordWrap(true);
    m_said->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Close |
                                         QDialogButtonBox::Help);
    m_ok = buttons->button(QDialogButtonBox::Ok);
    m_ok->setObjectName(u"cmdOK"_s);
    m_ok->setToolTip(u"Begin optimization process."_s);
    m_ok->setAccessibleDescription(u"Begin optimization process."_s);
    auto* layout = new QVBoxLayout(this);
    for (QWidget* part : {static_cast<QWidget*>(m_size),
                          static_cast<QWidget*>(m_auto),
                          static_cast<QWidget*>(m_repair),
                          static_cast<QWidget*>(m_said)})
        layout->addWidget(part);
    layout->addStretch();
    layout->addWidget(buttons);
    setMinimumWidth(fontMetrics().averageCharWidth() * 56);
    connect(m_auto, &QCheckBox::toggled, this, [this](bool on) {
        (void)m_session.context().settings.setFlag(SettingKey::AutoOptimize, on);
    });
    connect(m_repair, &QCheckBox::toggled, this, &frmDatabase_Optimize::askForRepair);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmDatabase_Optimize::optimize);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(buttons, &QDialogButtonBox::helpRequested, this, [this] {
        m_frame.showHelp(property(helpTopicProperty).toString());
    });
    showSize();
}

void frmDatabase_Optimize::showSize()
{
    Context& context = m_session.context();
    const auto file = context.services.files.info(context.global.databaseFile);
    m_size->setText(u"Writes the add-on database anew, without gaps. It takes "_s +
                    sizeText(file ? file->size : 0) + u" now."_s);
}

void frmDatabase_Optimize::askForRepair(bool ticked)
{
    Context& context = m_session.context();
    if (ticked && context.services.prompts.ask(
                      thoroughRepairPrompt(context.global.names.productTitle)) != Button::Yes)
        m_repair->setChecked(false);
}

bool frmDatabase_Optimize::closeOthers()
{
    Context& context = m_session.context();
    if (m_frame.openTools() == 0)
        return true;
    if (context.services.prompts.ask(closeWindowsPrompt(context.global.names.productTitle)) !=
        Button::Ok)
        return false;
    m_frame.command(u"mnuCloseAll"_s);
    return m_frame.openTools() == 0; // one may have refused
}

void frmDatabase_Optimize::optimize()
{
    if (!closeOthers())
        return;
    m_ok->setEnabled(false);
    m_said->setText(u"Please wait while the database is optimized. This may take a while..."_s);
    const bool repair = m_repair->isChecked();
    const CareReport report = [&] {
        const Working working(m_frame);
        return m_session.careForDatabase(
            [repair](DatabaseCare& care) { return care.optimize(repair); });
    }();
    m_ok->setEnabled(true);
    QString said = report.result.text;
    if (report.result)
        said += u' ' + sizeText(report.bytesBefore) + u" before, "_s + sizeText(report.bytesAfter) +
                u" now."_s;
    if (report.salvage)
        said += u' ' + countText(report.salvage->rows, u"row was"_s, u"rows were"_s) +
                u" saved; the damaged file is kept as '"_s + report.damagedFile + u"'."_s;
    m_said->setText(said);
    m_session.services().status.text(u"Primary"_s, report.result.text);
    showSize();
    m_frame.recordsChanged();
}

} // namespace vt
