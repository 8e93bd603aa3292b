// Which installed files are used by which configuration files: effects by aircraft, gauges,
// cabinets and pictures by panels, audio files by sounds, pictures by effects. Built once for an
// operation. A file counts as used in every place where the simulator would look for the name.
#pragma once

#include "catalogue/Catalogue.h"

#include <QSet>
#include <QStringList>

#include <optional>

namespace vt {

class UsedFiles
{
public:
    /// \a leaveOut: full paths of configuration and effects files that do not count, such as those
    /// of add-ons that are being removed. \a catalogue must outlive this, unrefreshed.
    explicit UsedFiles(const Catalogue& catalogue, const QSet<NoCase>& leaveOut = {});
    /// As above, for who will ask about \a paths alone: what cannot be one of them is passed over,
    /// which spares most of the work.
    UsedFiles(const Catalogue& catalogue, const QSet<NoCase>& leaveOut, const QStringList& paths);

    [[nodiscard]] bool isUsed(const QString& path) const { return !usersOf(path).isEmpty(); }

    /// The configuration files that use the file at this full path; it need not exist.
    [[nodiscard]] QList<ConfigIndex> usersOf(const QString& path) const;

private:
    using Users = QHash<NoCase, QList<ConfigIndex>>;

    void addAll(const QSet<NoCase>& leaveOut);
    void add(ConfigIndex config);
    [[nodiscard]] bool mayBeAsked(const QString& named) const;

    const Catalogue& m_catalogue;
    /// Names of the files asked about, with and without extension, and of the folders above them;
    /// nothing: of all.
    std::optional<QSet<NoCase>> m_names;
    Users m_files;  ///< by full path
    Users m_gauges; ///< by full path of a gauge file without its extension, or of a gauge's folder
};

} // namespace vt
