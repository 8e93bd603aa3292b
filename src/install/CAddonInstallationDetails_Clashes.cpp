// Names that would have to be a file and a folder at once: in the simulator's tree as it stands, or
// between two files of the add-on.
#include "install/CAddonInstallationDetails.h"
#include "platform/Text.h"
#include "platform/WinPath.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Finds what stands in the way of folders; each folder above several is looked at once.
class Obstacles
{
public:
    explicit Obstacles(const Files& files) : m_files(files) {}

    /// The file that stands where \a folder or a folder above it has to be; empty for none.
    QString of(const QString& folder)
    {
        const QString path = winpath::withoutTrailing(folder);
        if (path.isEmpty())
            return {};
        if (const auto known = m_known.constFind(NoCase{path}); known != m_known.cend())
            return *known;
        QString found;
        if (!m_files.isFolder(path))
            found = m_files.exists(path) ? path : of(winpath::parent(path));
        m_known.insert(NoCase{path}, found);
        return found;
    }

private:
    const Files& m_files;
    QHash<NoCase, QString> m_known;
};

/// The folders that the items of an add-on need, by the folder that holds them.
class NeededFolders
{
public:
    using Names = QHash<NoCase, qint32>; ///< name of a folder, and an item that lies below it

    void add(const QString& folder, qint32 item)
    {
        for (QString path = folder; !path.isEmpty();) {
            const QString above = winpath::parent(path);
            Names& names = m_below[NoCase{above}];
            const NoCase name{winpath::name(path)};
            if (names.contains(name))
                return; // and so are those above
            names.insert(name, item);
            path = above;
        }
    }

    [[nodiscard]] Names in(const QString& folder) const { return m_below.value(NoCase{folder}); }

private:
    QHash<NoCase, Names> m_below;
};

/// Calls \a visit(item, changed) for each item that will be installed; changed: its folder is not
/// that of the item before.
template <typename Visit> void eachPlaced(const CAddonInstallationDetails& details, Visit visit)
{
    const QString* last = nullptr;
    for (const CAddon_Item& item : details.addon().colAddonItems()) {
        const QString& folder = item.sFolder_Installation;
        if (folder.isEmpty() || !details.willBeInstalled(item))
            continue;
        visit(item, !last || last->constData() != folder.constData());
        last = &folder;
    }
}

} // namespace

void CAddonInstallationDetails::addClashProblems(QList<PlanProblem>& out) const
{
    Obstacles obstacles(m_context.services.files);
    NeededFolders needed;
    QSet<QString> seen;
    eachPlaced(*this, [&](const CAddon_Item& item, bool changed) {
        const QString& folder = item.sFolder_Installation;
        if (item.boolTargetIsFolder)
            out.append(
                {item.lngKey,
                 u"'"_s + folder + item.sName_Installation +
                     u"' cannot be written: a folder of that name stands there. Specify another target folder for the file, or leave it out."_s,
                 true});
        if (!changed || seen.contains(folder))
            return;
        seen.insert(folder);
        needed.add(folder, item.lngKey);
        if (const QString file = obstacles.of(folder); !file.isEmpty())
            out.append({item.lngKey,
                        plantext::noValidTargetFolder(folder) + u" A file of the name '"_s + file +
                            u"' stands in the way."_s,
                        true});
    });

    NeededFolders::Names names;
    eachPlaced(*this, [&](const CAddon_Item& item, bool changed) {
        if (changed)
            names = needed.in(item.sFolder_Installation);
        const auto below =
            names.isEmpty() ? names.cend() : names.constFind(NoCase{item.sName_Installation});
        if (below == names.cend())
            return;
        const CAddon_Item& other = *m_addon->Search(*below);
        out.append(
            {item.lngKey,
             u"'"_s + item.sFolder_Installation + item.sName_Installation +
                 u"' would have to be a file and, for '"_s + other.sName_Installation +
                 u"', a folder. Specify another target folder for one of the files, or leave one out."_s,
             true});
    });
}

} // namespace vt
