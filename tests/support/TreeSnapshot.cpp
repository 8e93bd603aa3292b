#include "support/TreeSnapshot.h"

#include "platform/Hash.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <filesystem>

using namespace Qt::StringLiterals;

namespace vt::test {

namespace {

QByteArray contentHash(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "unreadable: " + file.errorString().toUtf8();
    return xxh3(file.readAll()).toHex();
}

TreeEntry entryOf(const QFileInfo& info)
{
    TreeEntry entry;
    if (info.isSymLink()) {
        // As it stands in the link: Qt would make it absolute.
        std::error_code error;
        const auto target =
            std::filesystem::read_symlink(info.filePath().toStdString(), error).string();
        entry.hash = "link:" + QByteArray::fromStdString(target);
        return entry;
    }
    entry.readOnly = !info.permission(QFile::WriteOwner);
    entry.folder = info.isDir();
    if (!entry.folder) {
        entry.size = info.size();
        entry.hash = contentHash(info.filePath());
    }
    return entry;
}

bool isBackup(const QString& path)
{
    return path.endsWith(u".vtb"_s, Qt::CaseInsensitive) ||
           path.endsWith(u".vt2"_s, Qt::CaseInsensitive);
}

} // namespace

TreeSnapshot hashTree(const QString& hostFolder)
{
    TreeSnapshot tree;
    const QDir top(hostFolder);
    QDirIterator entries(hostFolder,
                         QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        entries.next();
        tree.insert(top.relativeFilePath(entries.filePath()), entryOf(entries.fileInfo()));
    }
    return tree;
}

QStringList differences(const TreeSnapshot& before, const TreeSnapshot& after, Backups backups)
{
    QStringList lines;
    const auto counts = [backups](const QString& path, const TreeEntry& entry) {
        return backups == Backups::Compare || entry.folder || !isBackup(path);
    };
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (!counts(it.key(), it.value()))
            continue;
        const auto found = after.constFind(it.key());
        if (found == after.cend())
            lines += u"missing: "_s + it.key();
        else if (found.value() != it.value())
            lines += u"changed: "_s + it.key();
    }
    for (auto it = after.cbegin(); it != after.cend(); ++it)
        if (!before.contains(it.key()) && counts(it.key(), it.value()))
            lines += u"new: "_s + it.key();
    return lines;
}

} // namespace vt::test
