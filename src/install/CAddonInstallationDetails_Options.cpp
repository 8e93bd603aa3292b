// Answers that were given beforehand: what is left out, what goes elsewhere, which aircraft.
#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

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
    const Files& files = m_context.services.files;
    for (TargetChoice& choice : m_options.targets)
        choice.folder = chosenFolder(choice.folder);
    if (m_options.aircraftFolder.isEmpty())
        return Result::success();
    const QString typed = m_options.aircraftFolder;
    QStringList candidates = {chosenFolder(typed)};
    if (!winpath::isAbsolute(typed) && !typed.startsWith(u'/')) {
        for (const QString& folder : m_context.global.aircraftTypeFolders)
            candidates.append(winpath::asFolder(winpath::normalised(winpath::join(folder, typed))));
    }
    for (const QString& candidate : std::as_const(candidates)) {
        if (files.isFile(candidate + u"aircraft.cfg"_s)) {
            m_options.aircraftFolder = files.spelled(candidate);
            return Result::success();
        }
    }
    return Result::failure(u"Could not locate base aircraft. There is no aircraft.cfg in '"_s +
                           candidates.first() + u"'; name the folder of an installed aircraft."_s);
}

Result CAddonInstallationDetails::applyOptions()
{
    if (Result skipped = applySkips(); !skipped)
        return skipped;
    if (Result placed = applyTargets(); !placed)
        return placed;
    resolveConflicts();
    if (m_options.to == InstallTo::Cabinet)
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

Result CAddonInstallationDetails::applyTargets()
{
    for (const TargetChoice& choice : std::as_const(m_options.targets)) {
        const ItemPattern pattern(choice.name);
        bool found = false;
        const QString spelled = m_context.services.files.spelled(choice.folder);
        for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
            if (!pattern.matches(item))
                continue;
            found = true;
            setFolder(item, spelled + pattern.below(item));
        }
        if (!found)
            return Result::failure(u"There is no '"_s + choice.name + u"' in '"_s +
                                   m_source->path() + u"' that could go to another folder."_s);
    }
    return Result::success();
}

void CAddonInstallationDetails::resolveConflicts()
{
    const auto same = [this](const CAddon_Item& a, const CAddon_Item& b) {
        return m_source->sameBytes(a, b);
    };
    if (m_addon->AutomaticallyResolveConflicts(same).isEmpty())
        return;
    DocumentAndOther_AutomaticallyResolveProblems();
}

} // namespace vt
