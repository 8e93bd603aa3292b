// An aircraft's sound: its sound.cfg and the audio files that it names. What a sound shares with a
// panel (aliases, checking, mending) stands in AliasConfig; but a complete sound is never turned
// into an alias.
#pragma once

#include "simconfig/AliasConfig.h"

namespace vt {

class CSound final : public AliasConfig
{
public:
    /// Beside those of AliasConfig.
    enum State : int
    {
        NoAudioFiles = 5,
        IsComplete = 6,
        NotValid = 12,
    };

    /// \a files and \a global must outlive this.
    CSound(ConfigAccess access, const Files& files, const GlobalRecord& global);

    /// "No target sound was provided.", ...; \a alias and \a simulatorName are named by some.
    [[nodiscard]] static QString
    State_GetMessage(int state, const QString& alias, const QString& simulatorName);
    using AliasConfig::State_GetMessage;

    // Of the definition that is used, which for an alias is that of the sound it refers to.

    /// The entries that name audio files, in file order; file is relative to the sound folder.
    [[nodiscard]] QList<NamedFile> WAVEntries_Get() const;
    /// The configuration file (its own too when it is an alias) and the audio files that exist.
    [[nodiscard]] QStringList SoundFiles_Get() const;
    /// Full paths of the audio files that exist, each once.
    [[nodiscard]] QStringList SoundFiles_WAVFiles_Get() const;

protected:
    [[nodiscard]] QString stateMessage(int state) const override;
    [[nodiscard]] bool defines(const LineArray& lines) const override;
    [[nodiscard]] QStringList missingLines(const LineArray& lines,
                                           const QString& folder) const override;
    [[nodiscard]] QList<StandIn> standIns(const LineArray& lines,
                                          const QString& folder) const override;
    [[nodiscard]] int unfitAsTarget(const Definition& target) const override;
    [[nodiscard]] int unfitAsAlias() const override;

private:
    static const Facts& facts();
    [[nodiscard]] static QList<NamedFile> entriesOf(const LineArray& lines);
    [[nodiscard]] QString audioPath(const QString& folder, const QString& file) const;
    void addAudioFiles(const Definition& used, FoundFiles& found) const;
};

} // namespace vt
