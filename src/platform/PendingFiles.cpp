#include "platform/PendingFiles.h"

#include <algorithm>

namespace vt {

namespace {

QStringView folderOf(QStringView path)
{
    return path.first(qMax<qsizetype>(path.lastIndexOf(u'\\'), 0));
}

NoCase nameOf(QStringView path)
{
    return {path.sliced(path.lastIndexOf(u'\\') + 1).toString()};
}

} // namespace

PendingFiles::Names* PendingFiles::names(QStringView folder) const
{
    if (m_last && folder == m_lastFolder)
        return m_last;
    const auto found = m_folders.find(NoCase{folder.toString()});
    if (found == m_folders.end())
        return nullptr;
    m_lastFolder = folder.toString();
    m_last = &*found;
    return m_last;
}

PendingFile* PendingFiles::find(QStringView path)
{
    Names* const neighbours = names(folderOf(path));
    if (!neighbours)
        return nullptr;
    const auto found = neighbours->find(nameOf(path));
    return found == neighbours->end() ? nullptr : &*found;
}

const PendingFile* PendingFiles::find(QStringView path) const
{
    const Names* const neighbours = names(folderOf(path));
    if (!neighbours)
        return nullptr;
    const auto found = neighbours->constFind(nameOf(path));
    return found == neighbours->cend() ? nullptr : &*found;
}

void PendingFiles::set(QStringView path, const PendingFile& file)
{
    const QStringView folder = folderOf(path);
    Names* neighbours = names(folder);
    if (!neighbours) {
        m_folders.insert(NoCase{folder.toString()}, {});
        m_last = nullptr; // tables may have moved
        neighbours = names(folder);
    }
    neighbours->insert(nameOf(path), file);
}

void PendingFiles::remove(QStringView path)
{
    if (Names* const neighbours = names(folderOf(path)))
        neighbours->remove(nameOf(path));
}

void PendingFiles::clear()
{
    m_folders.clear();
    m_last = nullptr;
}

qsizetype PendingFiles::removedIn(QStringView folder) const
{
    const Names* const neighbours = names(folder);
    if (!neighbours)
        return 0;
    return std::count_if(neighbours->cbegin(), neighbours->cend(), [](const PendingFile& file) {
        return file.fate == PendingFate::Removed;
    });
}

QStringList PendingFiles::stagedFolders() const
{
    QStringList out;
    for (auto folder = m_folders.cbegin(); folder != m_folders.cend(); ++folder) {
        const bool staged =
            std::any_of(folder->cbegin(), folder->cend(), [](const PendingFile& file) {
                return file.fate == PendingFate::Staged;
            });
        if (staged)
            out.push_back(folder.key().text);
    }
    return out;
}

} // namespace vt
