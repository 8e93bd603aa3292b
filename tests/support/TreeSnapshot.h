// What a folder of the host holds, for tests that must find it byte for byte as it was.
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>

namespace vt::test {

/// One entry of a tree; a link is recorded by its target and never followed.
struct TreeEntry
{
    bool folder = false;
    bool readOnly = false;
    qint64 size = 0; ///< bytes; 0 for folders
    QByteArray hash; ///< XXH3-128 of the content; "link:" + target for a link

    friend bool operator==(const TreeEntry&, const TreeEntry&) = default;
};

/// Path relative to the top ("a/b.txt") to entry; every folder has its own, empty ones too.
using TreeSnapshot = QMap<QString, TreeEntry>;

enum class Backups
{
    Compare,
    Ignore, ///< files with extension .vtb or .vt2 are left out of the comparison
};

[[nodiscard]] TreeSnapshot hashTree(const QString& hostFolder);

/// One line a difference ("missing: a/b.txt", "new: ...", "changed: ..."); empty when equal.
[[nodiscard]] QStringList differences(const TreeSnapshot& before,
                                      const TreeSnapshot& after,
                                      Backups backups = Backups::Compare);

} // namespace vt::test
