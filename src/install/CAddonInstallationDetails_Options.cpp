// Answers that were given beforehand: what is left out, what goes elsewhere, which aircraft.
#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

InstallOptions installOptionsFromSettings(Context& context, const QString& source)
{
    Settings& settings = context.settings;
    InstallOptions options;
    options.startSimulator = settings.flag(SettingKey::StartFlightSimulatorAfterInstallation);
    options.deleteSource = settings.flag(SettingKey::DeleteSourceFilesAfterInstallation);
    options.confirmSourceHandling = true;
    // The source goes to one place only, and a folder is no archive.
    if (!options.deleteSource && settings.flag(SettingKey::ArchiveAddonZipFile) &&
        !context.services.files.isFolder(source))
        options.archiveSourceFolder = settings.text(SettingKey::ArchiveAddonZipFileFolder);
    return options;
}

QString CAddonInstallationDetails::chosenFolder(const QString& typed) const
{
    const GlobalRecord& global = m_context.global;
    if (winpath::isAbsolute(typed))
        return winpath::asFolder(typed);
    if (typed.startsWith(u'/'))
        return winpath::asFolder(m_context.services.files.drives().toWindows(typed));
    return winpath::asFolder(winpath::normalised(winpath::join(global.simulatorFolder, typed)));
}

Result CAddonInstallationDetails::resolveOptionFolders()
{
    for (TargetChoice& choice : m_options.targets) {
        if (!choice.folder.startsWith(u'@'))
            choice.folder = chosenFolder(choice.folder);
    }
    for (MethodChoice& choice : m_options.methods) {
        if (choice.method == InstallationMethod::NewRepaint && !choice.folder.isEmpty()) {
            const ResultOf<QString> found = aircraftFolder(choice.folder);
            if (!found)
                return found.error();
            choice.folder = *found;
        } else if (!choice.folder.isEmpty()) {
            choice.folder = chosenFolder(choice.folder);
        }
    }
    if (Result shared = resolveShared(aliastarget::Kind::Panel, m_options.panelFrom); !shared)
        return shared;
    if (Result shared = resolveShared(aliastarget::Kind::Sound, m_options.soundFrom); !shared)
        return shared;
    if (m_options.aircraftFolder.isEmpty())
        return Result::success();
    const ResultOf<QString> found = aircraftFolder(m_options.aircraftFolder);
    if (!found)
        return found.error();
    m_options.aircraftFolder = *found;
    return Result::success();
}

/// The folder of an installed aircraft, typed in full or below the simulator's aircraft folders.
ResultOf<QString> CAddonInstallationDetails::aircraftFolder(const QString& typed) const
{
    const Files& files = m_context.services.files;
    QStringList candidates = {chosenFolder(typed)};
    if (!winpath::isAbsolute(typed) && !typed.startsWith(u'/')) {
        for (const QString& folder : m_context.global.aircraftTypeFolders)
            candidates.append(winpath::asFolder(winpath::normalised(winpath::join(folder, typed))));
    }
    for (const QString& candidate : std::as_const(candidates)) {
        if (files.isFile(candidate + u"aircraft.cfg"_s))
            return files.spelled(candidate);
    }
    return Result::failure(u"Could not locate base aircraft. There is no aircraft.cfg in '"_s +
                           candidates.first() + u"'; name the folder of an installed aircraft."_s);
}

/// A folder as typed becomes the alias that names it.
Result CAddonInstallationDetails::resolveShared(aliastarget::Kind kind, QString& typed) const
{
    if (typed.isEmpty())
        return Result::success();
    QStringList candidates = {chosenFolder(typed)};
    for (const QString& folder : m_context.global.aircraftTypeFolders)
        candidates.append(winpath::asFolder(winpath::normalised(winpath::join(folder, typed))));
    const auto found =
        std::find_if(candidates.cbegin(), candidates.cend(), [this](const auto& one) {
            return m_context.services.files.isFolder(one);
        });
    const ResultOf<QString> alias = partAliasText(
        kind, m_context, typed, found == candidates.cend() ? candidates.first() : *found);
    if (!alias)
        return alias.error();
    typed = *alias;
    return Result::success();
}

Result CAddonInstallationDetails::applyOptions()
{
    if (Result skipped = applySkips(); !skipped)
        return skipped;
    if (Result changed = applyMethods(); !changed)
        return changed;
    if (Result placed = applyTargets(); !placed)
        return placed;
    if (Result renamed = applyRenamings(); !renamed)
        return renamed;
    if (Result pictured = applyPictures(); !pictured)
        return pictured;
    resolveConflicts();
    if (installTo() == InstallTo::Cabinet)
        AddonItemGroup_InstallationFolders_ProcessInstallToStorage();
    AddonItems_UpdateTargetExists();
    return Result::success();
}

namespace {

/// Whether an item is meant by a name, a source path, a source folder ("x\") or "*.ext".
class ItemPattern
{
public:
    explicit ItemPattern(const QString& typed) : m_text(typed)
    {
        m_text.replace(u'/', u'\\');
        while (m_text.startsWith(u'\\'))
            m_text.remove(0, 1);
    }

    [[nodiscard]] bool matches(const CAddon_Item& item) const
    {
        if (m_text.startsWith(u'*'))
            return endsWithNoCase(item.sName, QStringView(m_text).sliced(1));
        if (m_text.endsWith(u'\\'))
            return startsWithNoCase(item.sFolder_Current, m_text) ||
                   containsNoCase(item.sFolder_Current, u'\\' + m_text);
        const qsizetype cut = m_text.lastIndexOf(u'\\');
        if (!equalNoCase(item.sName, QStringView(m_text).sliced(cut + 1)))
            return false;
        const QStringView folder = QStringView(m_text).first(cut + 1);
        return folder.isEmpty() || equalNoCase(item.sFolder_Current, folder) ||
               endsWithNoCase(item.sFolder_Current, u'\\' + folder.toString());
    }

    /// The item's folder below a matched source folder.
    [[nodiscard]] QString below(const CAddon_Item& item) const
    {
        if (!m_text.endsWith(u'\\'))
            return {};
        const qsizetype at = startsWithNoCase(item.sFolder_Current, m_text)
                                 ? 0
                                 : indexOfNoCase(item.sFolder_Current, u'\\' + m_text) + 1;
        return item.sFolder_Current.sliced(at + m_text.size());
    }

private:
    QString m_text;
};

} // namespace

Result CAddonInstallationDetails::applySkips()
{
    for (const QString& name : std::as_const(m_options.skip)) {
        const ItemPattern pattern(name);
        bool found = false;
        for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
            if (!pattern.matches(item))
                continue;
            found = true;
            item.boolProcess = false;
        }
        if (!found)
            return Result::failure(u"There is no '"_s + name + u"' in '"_s + m_source->path() +
                                   u"' that could be left out."_s);
    }
    return Result::success();
}

/// The groups that a choice for a whole family is meant for: parts of an aircraft that the add-on
/// brings stay with it, unless there is nothing else.
QList<int> CAddonInstallationDetails::groupsMeant(MappedGroup family) const
{
    QList<int> all;
    QList<int> alone;
    for (size_t i = 0; i < groups(family).size(); ++i) {
        all.append(int(i));
        if (groups(family)[i].aircraftGroup < 0)
            alone.append(int(i));
    }
    return alone.isEmpty() ? all : alone;
}

/// Several groups with one folder of the user's choice get a folder each below it.
Result CAddonInstallationDetails::applyMethods()
{
    for (const MethodChoice& choice : std::as_const(m_options.methods)) {
        const QList<int> meant = groupsMeant(choice.family);
        if (meant.isEmpty())
            return Result::failure(u"'"_s + m_source->path() + u"' holds no "_s +
                                   mappedGroupName(choice.family) +
                                   u" files whose installation method could be chosen."_s);
        for (const int index : meant) {
            QString folder = choice.folder;
            if (choice.method == InstallationMethod::ChosenFolder && meant.size() > 1) {
                const InstallationGroup& group = groups(choice.family)[size_t(index)];
                const QString own = winpath::safeName(
                    group.targetFolder.isEmpty() ? group.name : winpath::name(group.targetFolder));
                folder += own + u'\\';
            }
            GroupChange change;
            change.method = choice.method;
            change.folder = folder;
            if (Result asked = askRelated(choice.family, index, change); !asked)
                return asked;
            if (Result changed = changeRelated(choice.family, index, change); !changed)
                return changed;
        }
    }
    if (m_options.sceneryTitle) {
        for (InstallationGroup& group : groups(MappedGroup::Scenery))
            group.sceneryTitle = m_options.sceneryTitle->trimmed();
    }
    return Result::success();
}

/// Sets or follows: "@name" stands for the folder of the item of that name.
Result CAddonInstallationDetails::applyTarget(const TargetChoice& choice)
{
    const ItemPattern pattern(choice.name);
    qint32 leader = 0;
    if (choice.folder.startsWith(u'@')) {
        const ItemPattern followed(choice.folder.sliced(1));
        for (const CAddon_Item& item : m_addon->colAddonItems()) {
            if (leader == 0 && followed.matches(item))
                leader = item.lngKey;
        }
        if (leader == 0)
            return Result::failure(u"There is no '"_s + choice.folder.sliced(1) + u"' in '"_s +
                                   m_source->path() + u"' that another file could follow."_s);
    }
    bool found = false;
    const QString spelled =
        leader == 0 ? m_context.services.files.spelled(choice.folder) : QString();
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        if (!pattern.matches(item) || item.lngKey == leader)
            continue;
        found = true;
        if (leader == 0) {
            unfollow(item);
            setFolder(item, moduleFolder(item, spelled + pattern.below(item)));
        } else if (Result follows = AddonItem_InstallationFolder_Follow(item.lngKey, leader);
                   !follows) {
            return follows;
        }
    }
    if (!found)
        return Result::failure(u"There is no '"_s + choice.name + u"' in '"_s + m_source->path() +
                               u"' that could go to another folder."_s);
    return Result::success();
}

Result CAddonInstallationDetails::applyTargets()
{
    for (const TargetChoice& choice : std::as_const(m_options.targets)) {
        if (Result placed = applyTarget(choice); !placed)
            return placed;
    }
    return Result::success();
}

Result CAddonInstallationDetails::applyRenamings()
{
    for (const Renaming& renaming : std::as_const(m_options.renamings)) {
        const ItemPattern pattern(renaming.name);
        QList<qint32> keys;
        for (const CAddon_Item& item : m_addon->colAddonItems()) {
            if (pattern.matches(item))
                keys.append(item.lngKey);
        }
        if (keys.isEmpty())
            return Result::failure(u"There is no '"_s + renaming.name + u"' in '"_s +
                                   m_source->path() + u"' that could get another name."_s);
        for (const qint32 key : std::as_const(keys)) {
            if (Result renamed = AddonItem_Rename(key, renaming.installedName); !renamed)
                return renamed;
        }
    }
    return Result::success();
}

void CAddonInstallationDetails::AutoResolveAddonFileProblems_SaveDefaultConfigurationFromRegistry()
{
    Settings& settings = m_context.settings;
    m_resolve.rules.dropIdentical = settings.flag(SettingKey::DropIdenticalFiles);
    m_resolve.rules.preferPatches = settings.flag(SettingKey::PreferPatches);
    m_resolve.separateDocuments = settings.flag(SettingKey::SeparateDocuments);
    m_resolve.rename = settings.flag(SettingKey::AutomaticallyRename);
}

void CAddonInstallationDetails::resolveConflicts()
{
    AutoResolveAddonFileProblems_SaveDefaultConfigurationFromRegistry();
    const auto same = [this](const CAddon_Item& a, const CAddon_Item& b) {
        return m_source->sameBytes(a, b);
    };
    if (m_addon->AutomaticallyResolveConflicts(same, m_resolve.rules).isEmpty())
        return;
    DocumentAndOther_AutomaticallyResolveProblems();
}

void CAddonInstallationDetails::DocumentAndOther_AutomaticallyResolveProblems()
{
    for (const QList<qint32>& keys : m_addon->duplicateTargets()) {
        for (qsizetype i = 1; i < keys.size(); ++i) {
            CAddon_Item* item = m_addon->edit(keys.at(i));
            if (m_resolve.separateDocuments &&
                (item->IsMappedToDocumentGroup() || item->IsMappedToTrafficToolsGroup()) &&
                winpath::isBelow(item->sFolder_Installation, m_storageFolder))
                setFolder(*item, item->sFolder_Installation + QString::number(i + 1) + u'\\');
            else if (m_resolve.rename && !renamingMayHarm(item->enumAddonFileType))
                item->sName_Installation =
                    winpath::baseName(item->sName) + u' ' + QString::number(i + 1) +
                    item->sName.sliced(winpath::baseName(item->sName).size());
        }
    }
}

} // namespace vt
