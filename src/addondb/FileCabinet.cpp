#include "addondb/FileCabinet.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt {

Result CabinetArchive::open(const QString& archive)
{
    m_entries.clear();
    m_paths.clear();
    m_zip.sZIPFile = archive;
    if (!m_zip.GetItems())
        return m_zip.result();
    for (const CZIPFileItem& item : m_zip.colZIPContents.front().varZIPItems) {
        const QString path = FileCabinet::installedPath(m_gate, item.fullName());
        if (item.kind != EntryKind::File || path.isEmpty())
            continue;
        m_entries.insert(NoCase{path}, EntryRef{0, item.lngKey});
        m_paths.append(path);
    }
    return Result::success();
}

ResultOf<Content> CabinetArchive::content(const QString& path)
{
    const auto entry = m_entries.constFind(NoCase{path});
    if (entry == m_entries.cend())
        return Result::failure(u"'"_s + path + u"' is not in '"_s + m_zip.sZIPFile + u"'."_s);
    return m_zip.entryContent(*entry);
}

QString FileCabinet::targetName(const QString& title, qint64 masterKey)
{
    const QString name = winpath::safeName(title);
    const QString number = QString::number(masterKey);
    return name.isEmpty() ? number : name + u" - "_s + number;
}

std::optional<QString> FileCabinet::find(qint64 masterKey) const
{
    // The title may have been changed since; the number never is.
    const QString alone = QString::number(masterKey) + u".zip"_s;
    const QString behind = u" - "_s + alone;
    for (const QString& name : m_services.files.names(m_global.cabinetFolder)) {
        if ((equalNoCase(name, alone) || endsWithNoCase(name, behind)) &&
            m_services.files.isFile(m_global.cabinetFolder + name))
            return m_global.cabinetFolder + name;
    }
    return std::nullopt;
}

QString FileCabinet::archiveFor(const QString& title, qint64 masterKey) const
{
    const std::optional<QString> found = find(masterKey);
    return found ? *found : m_global.cabinetFolder + targetName(title, masterKey) + u".zip"_s;
}

QString FileCabinet::entryName(const Gate& gate, const QString& path)
{
    const ResultOf<Place> place = gate.place(path);
    if (!place)
        return {};
    if (place->root == RootId::Simulator)
        return place->relative;
    return u'~' + QString::number(int(place->root)) + u'\\' + place->relative;
}

QString FileCabinet::installedPath(const Gate& gate, const QString& entry)
{
    Place place{RootId::Simulator, entry};
    if (entry.startsWith(u'~')) {
        const qsizetype cut = entry.indexOf(u'\\');
        bool number = false;
        const int root = cut < 0 ? 0 : QStringView(entry).sliced(1, cut - 1).toInt(&number);
        if (number && root > int(RootId::Simulator) && root < int(RootId::Chosen))
            place = {RootId(root), entry.sliced(cut + 1)};
    }
    if (!winpath::checkRelative(place.relative) || gate.rootFolder(place.root).isEmpty())
        return {};
    return gate.path(place);
}

Result FileCabinet::put(FileTransaction& actions,
                        const QString& archive,
                        const std::vector<CabinetFile>& files,
                        int level)
{
    CZIP zip(m_services);
    zip.sZIPFile = archive;
    zip.boolAdd_Create = true;
    zip.typeCompressionLevel = level;
    zip.varStatusBar = &m_services.status;
    zip.CProgressBarEx = &m_services.status;
    zip.colItemsToAdd.reserve(files.size());
    for (const CabinetFile& file : files) {
        const QString name = entryName(m_services.gate, file.path);
        if (name.isEmpty())
            return Result::failure(u"'"_s + file.path +
                                   u"' lies in no folder of which the File Cabinet knows."_s);
        zip.colItemsToAdd.push_back({name, file.from, file.content});
    }
    if (!zip.Add(&actions))
        return zip.result();
    // What lies there for now under another name is what will lie there.
    zip.sZIPFile = actions.stagedPath(archive);
    if (!zip.Added_Verify())
        return zip.result();
    return actions.require(archive);
}

Result
FileCabinet::takeOut(FileTransaction& actions, const QString& archive, const QStringList& paths)
{
    CabinetArchive open(m_services);
    if (Result opened = open.open(archive); !opened)
        return opened;
    CZIP zip(m_services);
    zip.sZIPFile = archive;
    zip.varStatusBar = &m_services.status;
    for (const QString& path : paths) {
        if (open.holds(path))
            zip.varItemsToExtract.append(entryName(m_services.gate, path));
    }
    if (zip.varItemsToExtract.isEmpty())
        return Result::success();
    if (zip.varItemsToExtract.size() == open.paths().size())
        return actions.remove(archive);
    return zip.Delete(&actions) ? Result::success() : zip.result();
}

} // namespace vt
