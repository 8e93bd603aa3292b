// The small face of RAR archives, for CZIP.
#pragma once

#include "archive/CTKUnrar.h"

#include <QStringList>

namespace vt {

class CUnRAR
{
public:
    /// \a services must outlive this.
    explicit CUnRAR(Services& services) : m_unrar(services) {}

    QString sRARFile; ///< full Windows path

    /// Fills the names; false, and the reason in unrar(), when the archive cannot be listed whole.
    bool List();
    bool Test();
    /// Everything, below \a folder.
    bool Extract(const QString& folder, FileActions& actions);

    /// Names with folders, in listing order, of the last List().
    [[nodiscard]] const QStringList& sarrayFilenames_Get() const { return m_names; }

    /// The layer below: settings, results, entries.
    [[nodiscard]] CTKUnrar& unrar() { return m_unrar; }

private:
    CTKUnrar m_unrar;
    QStringList m_names;
};

} // namespace vt
