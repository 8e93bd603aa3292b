// What a transaction has in hand, by path without regard to case. Neighbours share their folder's
// table, so that the long beginning of their paths is looked up once for all of them.
#pragma once

#include "platform/Files.h"
#include "platform/Text.h"

#include <QHash>
#include <QString>
#include <QStringView>

namespace vt {

enum class PendingFate : quint8
{
    Staged,
    Removed,
};

struct PendingFile
{
    PendingFate fate = PendingFate::Staged;
    qsizetype step = -1; ///< index into the transaction's steps, -1 inside a staged folder
    FileInfo info;
};

/// Paths are full, without a trailing "\".
class PendingFiles
{
public:
    /// Null when nothing is pending there; valid until the next call that changes the table.
    [[nodiscard]] PendingFile* find(QStringView path);
    [[nodiscard]] const PendingFile* find(QStringView path) const;
    void set(QStringView path, const PendingFile& file);
    void remove(QStringView path);
    void clear();
    /// How many files of the folder are to go.
    [[nodiscard]] qsizetype removedIn(QStringView folder) const;
    /// Folders in which files are staged.
    [[nodiscard]] QStringList stagedFolders() const;

private:
    using Names = QHash<NoCase, PendingFile>;

    [[nodiscard]] Names* names(QStringView folder) const;

    mutable QHash<NoCase, Names> m_folders;
    mutable QString m_lastFolder; ///< as it was spelled in the last call
    mutable Names* m_last = nullptr;
};

} // namespace vt
