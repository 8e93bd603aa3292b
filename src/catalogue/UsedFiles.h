// Which installed files are used by which configuration files: effects by aircraft, gauges,
// cabinets and pictures by panels, audio files by sounds, pictures by effects. Built once for an
// operation. A file counts as used in every place where the simulator would look for the name.
#pragma once

#include "catalogue/Catalogue.h"

#include <QSet>

namespace vt {

class UsedFiles
{
public:
    /// \a leaveOut: full paths of configuration and effects files that do not count, such as those
    /// of add-ons that are being removed. \a catalogue must outlive this, unrefreshed.
    explicit UsedFiles(const Catalogue& catalogue, const QSet<NoCase>& leaveOut = {});

    [[nodiscard]] bool isUsed(const QString& path) const { return !usersOf(path).isEmpty(); }

    /// The configuration files that use the file at this full path; it need not exist.
    [[nodiscard]] QList<ConfigIndex> usersOf(const QString& path) const;

private:
    using Users = QHash<NoCase, QList<ConfigIndex>>;

    void add(ConfigIndex config);

    const Catalogue& m_catalogue;
    Users m_files;  ///< by full path
    Users m_gauges; ///< by full path of a gauge file without its extension, or of a gauge's folder
};

} // namespace vt
