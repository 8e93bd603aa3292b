#include "archive/forms/ArchiveTreeModel.h"

#include "platform/Text.h"

#include <QDateTime>
#include <QLocale>
#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

ArchiveTreeModel::ArchiveTreeModel(QObject* parent)
    : FileTreeModel({u"Name"_s, u"Size"_s, u"Date"_s}, {SizeColumn}, parent)
{}

void ArchiveTreeModel::setContents(const std::vector<CZIPFile>& contents)
{
    std::vector<File> files;
    std::vector<Folder> folders;
    QSet<NoCase> inner;
    m_modifiedNs.clear();
    for (const CZIPFile& archive : contents) {
        if (archive.nestedPath.isEmpty())
            continue;
        inner.insert(NoCase{archive.nestedPath});
        folders.push_back({archive.nestedPath, icons::Kind::Archive});
    }
    for (const CZIPFile& archive : contents) {
        for (const CZIPFileItem& item : archive.varZIPItems) {
            const QString folder = archive.nestedPath + item.sPath;
            if (item.kind == EntryKind::Folder) {
                folders.push_back({folder + item.sFilename + u'\\', icons::Kind::Folder});
                continue;
            }
            if (inner.contains(NoCase{folder + item.sFilename + u'\\'}))
                continue;
            files.push_back(
                {folder,
                 item.boolEncrypted ? item.sFilename + u" (encrypted)"_s : item.sFilename,
                 qint32(m_modifiedNs.size()),
                 item.lngSize_Uncompressed});
            m_modifiedNs.push_back(item.dteDate.isValid() ? item.modifiedNs() : -1);
        }
    }
    setFiles(files, folders);
}

QVariant ArchiveTreeModel::fileData(qint32 id, int column, int role) const
{
    if (column == NameColumn && role == Qt::DecorationRole)
        return icons::kind(icons::Kind::File);
    const qint64 modifiedNs = m_modifiedNs[size_t(id)];
    if (column != DateColumn || role != Qt::DisplayRole || modifiedNs < 0)
        return {};
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(modifiedNs / 1'000'000),
                              QLocale::ShortFormat);
}

QVariant ArchiveTreeModel::sortKey(qint32 id, int column) const
{
    return column == DateColumn ? QVariant(m_modifiedNs[size_t(id)]) : QVariant();
}

} // namespace vt
