// Unique temporary folders and files below the program's temporary folder, and their removal, which
// never leaves that folder and follows no links. Safe between processes: a name is only taken by
// making it.
#pragma once

#include "platform/Result.h"

#include <QString>

#include <functional>

namespace vt {

class Gate;

class TempFolder
{
public:
    /// Gives the number in the next name.
    using Numbers = std::function<quint16()>;

    /// \a root: the program's temporary folder, a Windows text below one of the gate's roots.
    /// \a gate must outlive this. Without \a numbers they are random.
    TempFolder(Gate& gate, const QString& root, Numbers numbers = {});

    /// A new, empty folder in \a base (the root or a folder below it, which must exist), named
    /// \a prefix (three letters) + hexadecimal digits + ".tmp". Taken names are retried every
    /// 100 ms for at most 4 seconds. The text ends in "\".
    [[nodiscard]] ResultOf<QString> makeUnique(const QString& base, const QString& prefix) const;
    /// The same for a file, made empty.
    [[nodiscard]] ResultOf<QString> makeUniqueFile(const QString& base,
                                                   const QString& prefix) const;

    /// Deletes everything in \a folder (the root or below it) and leaves the folder. Goes on after
    /// a failure and tells the first one. A missing folder is a success.
    [[nodiscard]] Result empty(const QString& folder) const;
    /// Deletes \a folder itself too; refused for the root.
    [[nodiscard]] Result remove(const QString& folder) const;

private:
    ResultOf<QByteArray> hostFolder(const QString& folder) const;
    ResultOf<QString> make(const QString& base, const QString& prefix, bool folder) const;

    Gate& m_gate;
    QString m_root;
    Numbers m_numbers;
};

} // namespace vt
