// What verifying many aircraft has in common: each aircraft.cfg is read once for all its sections,
// each folder listed once, each effects file read once. Sees the disk, not what a transaction has
// staged. After an aircraft was changed, forget() makes it look again.
#pragma once

#include "platform/Files.h"
#include "platform/Profile.h"
#include "shell/GlobalRecord.h"
#include "simconfig/engine/ConfigAccess.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

namespace vt {

class AircraftChecks
{
public:
    /// All must outlive this.
    AircraftChecks(const ConfigAccess& configAccess,
                   const Files& disk,
                   const GlobalRecord& globalRecord);

    /// One aircraft.cfg and what holds for all its variations.
    struct Configuration
    {
        bool exists = false;
        profile::ProfileFile profile;
        QStringList sections; ///< aircraft sections, as they stand in the file
        QString orderProblem; ///< lines of the report; empty when there is nothing to say
        QString formProblem;
        QStringList effectProblems;
    };

    /// Valid until the next call. The aircraft is the one that the other questions are about.
    const Configuration& configuration(const QString& file);

    /// What "Model.cfg" and the files it names lack, as lines of the report.
    const QStringList& modelProblems(const QString& modelConfigurationFile);

    [[nodiscard]] bool isFile(const QString& path);
    [[nodiscard]] bool isFolder(const QString& folder);
    /// Names of files and folders directly in \a folder.
    [[nodiscard]] QStringList names(const QString& folder);
    /// Whether the folder holds textures, or leads to some by its texture.cfg.
    [[nodiscard]] bool hasTextures(const QString& folder);

    /// Effects that the lights, effects and smoke systems of an aircraft name, each once, in file
    /// order, without ".fx".
    [[nodiscard]] static QStringList effectsIn(const profile::ProfileFile& file);
    [[nodiscard]] static QString effectFile(const GlobalRecord& global, const QString& effect);
    /// The pictures that an effects file names; none when it cannot be read.
    [[nodiscard]] static QStringList texturesIn(const ConfigAccess& access,
                                                const QString& effectFile);
    /// Pictures that an effects file names and that lie in neither of their folders.
    [[nodiscard]] QStringList missingEffectTextures(const QString& effect);

    [[nodiscard]] QString simulatorName() const { return global.names.simShort; }

    /// The present aircraft is read and listed again; effects are not.
    void forget();

    const ConfigAccess access;
    const Files& files;
    const GlobalRecord& global;

private:
    using Names = QSet<NoCase>;

    struct Listing
    {
        QString folder; ///< spelled as on the disk, ends in "\"; empty when there is none
        Names names;
    };

    const Listing& listing(const QString& folder);
    Listing listed(const QString& folder);
    [[nodiscard]] QString spelled(const QString& file);
    Configuration read(const QString& file);
    QStringList effectProblems(const profile::ProfileFile& file);
    QStringList problemsOfModel(const QString& file);

    QString m_file; ///< of the present aircraft
    QHash<QString, Configuration> m_configurations;
    qsizetype m_held = 0;                ///< characters in m_configurations
    QHash<NoCase, QStringList> m_models; ///< of the same aircraft
    QHash<NoCase, Listing> m_listings;   ///< of the same aircraft
    QHash<NoCase, Listing> m_shared;     ///< of folders that all aircraft use
    QHash<NoCase, QStringList> m_effectTextures;
};

} // namespace vt
