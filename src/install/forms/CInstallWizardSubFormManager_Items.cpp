// The commands of the item list.
#include "install/CAddonInstallationDetails.h"
#include "install/forms/CInstallWizardSubFormManager.h"
#include "install/forms/InstallItemModel.h"
#include "session/Session.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/folderchooser.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace vt {

QList<qint32> CInstallWizardSubFormManager::selectedKeys() const
{
    QList<qint32> keys;
    const QList<int> rows = m_list->selectedRowNumbers();
    for (const int row : rows)
        keys.append(m_model->keyAt(row));
    return keys;
}

void CInstallWizardSubFormManager::updateActions()
{
    const QList<qint32> keys = selectedKeys();
    const bool any = !keys.isEmpty();
    for (QAction* action : {m_install, m_doNotInstall, m_selectFolder, m_pasteFolder, m_follow})
        action->setEnabled(any);
    m_rename->setEnabled(keys.size() == 1);
    m_copyFolder->setEnabled(keys.size() == 1);
}

/// What other families' files are decided to be, in one number.
size_t CInstallWizardSubFormManager::fingerprintOfOthers() const
{
    size_t seed = 0;
    for (const CAddon_Item& item : details().addon().colAddonItems()) {
        if (!m_families.contains(item.enumMappedGroup))
            seed = qHashMulti(seed, item.sFolder_Installation, item.boolProcess);
    }
    return seed;
}

Result CInstallWizardSubFormManager::decide(const std::function<Result()>& decision, bool quiet)
{
    const size_t before = fingerprintOfOthers();
    const Result done = decision();
    if (!done && done.kind != ErrorKind::Declined && !quiet)
        m_state.session.services().prompts.ask(plantext::addonFileProblem(done.text));
    if (done && !done.text.isEmpty())
        m_state.session.services().status.text(u"Primary"_s, done.text);
    refresh();
    if (done)
        Q_EMIT decided(before != fingerprintOfOthers());
    return done;
}

void CInstallWizardSubFormManager::markSelected(bool install)
{
    const QList<qint32> keys = selectedKeys();
    if (keys.isEmpty())
        return;
    (void)decide([&] {
        details().AddonItems_InstallationStatus_Modify(keys, install);
        return Result::success();
    });
}

void CInstallWizardSubFormManager::Items_Install()
{
    markSelected(true);
}

void CInstallWizardSubFormManager::Items_DoNotInstall()
{
    markSelected(false);
}

void CInstallWizardSubFormManager::Item_Rename()
{
    const QList<qint32> keys = selectedKeys();
    if (keys.size() == 1)
        (void)decide([&] { return details().AddonItem_Rename(keys.first()); });
}

void CInstallWizardSubFormManager::Item_CopyFolder()
{
    const QList<qint32> keys = selectedKeys();
    if (keys.size() != 1)
        return;
    const ResultOf<QString> folder = details().AddonItem_CopyFolderToClipboard(keys.first());
    if (folder)
        QGuiApplication::clipboard()->setText(*folder);
    else
        m_state.session.services().prompts.ask(plantext::addonFileProblem(folder.text));
}

void CInstallWizardSubFormManager::Items_PasteFolder()
{
    const QList<qint32> keys = selectedKeys();
    const QString folder = QGuiApplication::clipboard()->text();
    if (!keys.isEmpty())
        (void)decide([&] { return details().AddonItem_PasteFolderFromClipboard(keys, folder); });
}

void CInstallWizardSubFormManager::Items_SelectFolder()
{
    const QList<qint32> keys = selectedKeys();
    if (keys.isEmpty())
        return;
    Session& session = m_state.session;
    const QString root = session.context().global.simulatorFolder;
    const auto folder = folderchooser::chooseFolder(
        m_page,
        session.services().files,
        {u"Select Target Folder"_s,
         u"Select the folder that the selected files are installed into."_s,
         details().simulatorFolderOf(*details().addon().Search(keys.first())),
         root});
    if (folder)
        (void)decide([&] { return details().AddonItem_PasteFolderFromClipboard(keys, *folder); });
}

void CInstallWizardSubFormManager::Items_Follow()
{
    const QList<qint32> keys = selectedKeys();
    if (keys.isEmpty())
        return;
    ChoicePrompt prompt;
    prompt.caption = plantext::sameFolderAsItem();
    QList<qint32> leaders;
    const QList<qint32> all = keysOf(current());
    for (const qint32 key : all) {
        if (keys.contains(key))
            continue;
        const CAddon_Item* item = details().addon().Search(key);
        leaders.append(key);
        prompt.choices.append(item->sFolder_Current + item->sName);
    }
    if (leaders.isEmpty())
        return;
    const auto chosen = m_state.session.services().prompts.choose(prompt);
    if (!chosen)
        return;
    (void)decide([&]() -> Result {
        for (const qint32 key : keys) {
            if (Result follows =
                    details().AddonItem_InstallationFolder_Follow(key, leaders.at(*chosen));
                !follows)
                return follows;
        }
        return Result::success();
    });
}

} // namespace vt
