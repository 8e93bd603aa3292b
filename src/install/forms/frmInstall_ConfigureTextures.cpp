#include "install/forms/frmInstall_ConfigureTextures.h"

#include "install/CAddonInstallationDetails.h"
#include "install/forms/frmAircraft_Variant_Add.h"
#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/forms/FolderBox.h"
#include "shell/forms/WrappedLabel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

ConfigurePageLook texturesLook(WizardState& state)
{
    const GlobalRecord& global = state.session.context().global;
    ConfigurePageLook look;
    look.family = MappedGroup::Texture;
    look.section = Section::InstallConfigureTextures;
    look.header = u"Customize texture installation."_s;
    look.prompt =
        u"Click a texture group tab then select an installation method for the texture files."_s;
    look.methodName = u"optTextureMethod"_s;
    look.folderLabel = u"Folde&r:"_s;
    look.chooser.title = u"Select Texture Folder"_s;
    look.chooser.prompt = folderHint(look.family, global.names, global.generation);
    look.chooser.root =
        global.simObjectsFolder.isEmpty() ? global.aircraftFolder : global.simObjectsFolder;
    return look;
}

QString variantsText(const InstallationGroup& group)
{
    QStringList titles;
    for (const VariantDetails& variant : group.variants)
        titles.append(u"'"_s + variant.title + u'\'');
    return titles.isEmpty() ? QString() : u"New: "_s + titles.join(u", "_s);
}

} // namespace

frmInstall_ConfigureTextures::frmInstall_ConfigureTextures(WizardState& state, QWidget* parent)
    : ConfigurePage(state, texturesLook(state), parent)
{
    build(nullptr, [this] { return repaintTools(); });
    connect(folderBox(), &FolderBox::folderTaken, this, [this] {
        if (shownGroup() && shownGroup()->asRepaint()) {
            m_wanted.insert(group());
            say(u"Press Next to specify aircraft variant details."_s);
        }
    });
}

QWidget* frmInstall_ConfigureTextures::repaintTools()
{
    auto* tools = new QWidget(this);
    auto* row = new QHBoxLayout(tools);
    row->setContentsMargins({});
    m_variants = new QLabel(tools);
    m_variants->setObjectName(u"lblVariants"_s);
    m_variants->setTextFormat(Qt::PlainText);
    wrap(m_variants);
    m_selectAircraft = new QPushButton(u"Select Air&craft..."_s, tools);
    m_selectAircraft->setObjectName(u"cmdSelectAircraft"_s);
    m_selectAircraft->setToolTip(u"Choose the aircraft that is painted from a list"_s);
    m_details = new QPushButton(u"&Variant Details..."_s, tools);
    m_details->setObjectName(u"cmdVariantDetails"_s);
    m_details->setToolTip(u"Title and name of the new variation of the aircraft"_s);
    row->addWidget(m_variants, 1);
    row->addWidget(m_selectAircraft);
    row->addWidget(m_details);
    connect(m_selectAircraft,
            &QPushButton::clicked,
            this,
            &frmInstall_ConfigureTextures::chooseAircraft);
    connect(m_details, &QPushButton::clicked, this, [this] { (void)askVariantDetails(); });
    return tools;
}

void frmInstall_ConfigureTextures::enter()
{
    m_wanted.clear();
    ConfigurePage::enter();
}

void frmInstall_ConfigureTextures::showGroup()
{
    const InstallationGroup* shown = shownGroup();
    const bool repaint = shown && shown->asRepaint();
    m_selectAircraft->setEnabled(repaint);
    m_details->setEnabled(repaint && !shown->aircraftFolder.isEmpty());
    m_variants->setText(repaint ? variantsText(*shown) : QString());
}

Result frmInstall_ConfigureTextures::takeMethod(InstallationMethod method)
{
    const Result taken = ConfigurePage::takeMethod(method);
    if (taken && method == InstallationMethod::NewRepaint) {
        m_wanted.insert(group());
        say(u"Press Next to specify aircraft variant details."_s);
    }
    return taken;
}

void frmInstall_ConfigureTextures::chooseAircraft()
{
    ChoicePrompt prompt;
    prompt.caption = u"Select Aircraft"_s;
    const auto aircraft = details().aircraftToChooseFrom();
    for (const auto& [folder, name] : aircraft)
        prompt.choices.append(name + u"  -  "_s + winpath::name(folder));
    const auto chosen = state().session.services().prompts.choose(prompt);
    if (chosen)
        (void)folderBox()->give(aircraft.at(*chosen).first);
}

bool frmInstall_ConfigureTextures::askVariantDetails()
{
    const InstallationGroup* shown = shownGroup();
    if (!shown || shown->variants.isEmpty())
        return true;
    const int index = group();
    frmAircraft_Variant_Add dialog(
        winpath::name(shown->aircraftFolder),
        shown->variants,
        [this, index](const QList<VariantDetails>& variants, qsizetype* problem) {
            return details().VariantDetails_Validate(index, variants, problem);
        },
        this);
    if (dialog.exec() != QDialog::Accepted) {
        say(u"Operation canceled."_s);
        return false;
    }
    m_wanted.remove(index);
    GroupChange change;
    change.variants = dialog.variants();
    (void)manager().decide(
        [&] { return details().UpdateInstallationClass(MappedGroup::Texture, index, change); });
    say(u"Aircraft variant details were updated."_s);
    return true;
}

bool frmInstall_ConfigureTextures::advance(bool forward)
{
    if (!ConfigurePage::advance(forward))
        return false;
    const InstallationGroup* shown = shownGroup();
    const bool asks = forward && shown && shown->asRepaint() && m_wanted.contains(group()) &&
                      !shown->aircraftFolder.isEmpty();
    return !asks || askVariantDetails();
}

} // namespace vt
