#include "simconfig/CSound.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/ConfigFacts.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

const AliasConfig::Facts& CSound::facts()
{
    static constexpr Facts sound{ConfigKind::Sound,
                                 aliastarget::Kind::Sound,
                                 ItemTable::Sound,
                                 u"sound",
                                 u"Sound Configuration Report",
                                 u"No sound configuration problems were detected.",
                                 u"Use Repair to attempt to fix sound issues.",
                                 NotValid,
                                 NotUpdated};
    return sound;
}

CSound::CSound(ConfigAccess access, const Files& files, const GlobalRecord& global)
    : AliasConfig(facts(), access, files, global)
{}

QString CSound::State_GetMessage(int state, const QString& alias, const QString& simulatorName)
{
    switch (state) {
    case Good:
        return {};
    case NoTarget:
        return u"No target sound was provided."_s;
    case FileMissing:
        return u"The sound configuration file does not exist."_s;
    case ReferenceMissing:
        return u"The sound configuration file refers to another sound but the referenced sound configuration file does not exist."_s;
    case ReferenceNotValid:
        return u"The sound configuration file refers to another sound but the referenced sound configuration file is not valid."_s;
    case NoAudioFiles:
        return u"Target sound has no audio files."_s;
    case IsComplete:
        return u"The sound configuration was not changed. It is a complete sound definition, not simply an alias."_s;
    case NotUpdated:
        return u"Could not update the sound configuration file."_s;
    case WouldNotBeValid:
        return u"The sound configuration was not changed because it would not have pointed to a valid sound."_s;
    case NotRestored:
        return u"Error restoring backup configuration file."_s;
    case NoOriginal:
        return u"The sound configuration file does not refer to an original sound definition. "_s +
               simulatorName + u" will use generic sounds."_s;
    case OriginalAndAlias:
        return u"The sound configuration file appears to be an original sound definition, yet it also aliases another sound '"_s +
               alias + u"'."_s;
    case NotValid:
        return u"The sound configuration file is not valid. It is not an original sound definition nor does it reference another sound configuration file."_s;
    default:
        return u"Unknown sound error. Error code = "_s + QString::number(state);
    }
}

QString CSound::stateMessage(int state) const
{
    return State_GetMessage(state, sAlias, simulatorName());
}

QList<AliasConfig::NamedFile> CSound::entriesOf(const LineArray& lines)
{
    QList<NamedFile> entries;
    forEachEntry(lines, [&](const QString& section, QByteArrayView key, QByteArrayView value) {
        if (value.isEmpty() || !configfacts::isWaveKey(key))
            return;
        NamedFile entry{section, lines.decoded(key), lines.decoded(value), {}};
        entry.file = configfacts::waveOf(entry.value);
        if (!entry.file.isEmpty())
            entries.append(entry);
    });
    return entries;
}

bool CSound::defines(const LineArray& lines) const
{
    return !entriesOf(lines).isEmpty();
}

QList<AliasConfig::NamedFile> CSound::WAVEntries_Get() const
{
    return entriesOf(definition().lines);
}

/// In the sound folder, or among the simulator's common sounds.
QString CSound::audioPath(const QString& folder, const QString& file) const
{
    for (const QString& top : {folder, m_global.soundFolder}) {
        const QString path = placeOf(top, file);
        if (isFile(path))
            return path;
    }
    return {};
}

void CSound::addAudioFiles(const Definition& used, FoundFiles& found) const
{
    for (const NamedFile& entry : entriesOf(used.lines))
        found.add(audioPath(winpath::parent(used.file), entry.file));
}

QStringList CSound::SoundFiles_WAVFiles_Get() const
{
    FoundFiles found(m_files);
    addAudioFiles(definition(), found);
    return found.paths();
}

QStringList CSound::SoundFiles_Get() const
{
    const Definition used = definition();
    FoundFiles found(m_files);
    if (isFile(sConfigurationFile))
        found.add(sConfigurationFile);
    found.add(used.file);
    addAudioFiles(used, found);
    return found.paths();
}

QStringList CSound::missingLines(const LineArray& lines, const QString& folder) const
{
    QString missing;
    QSet<NoCase> seen;
    for (const NamedFile& entry : entriesOf(lines)) {
        if (seen.contains(NoCase{entry.file}))
            continue;
        seen.insert(NoCase{entry.file});
        if (audioPath(folder, entry.file).isEmpty())
            missing += u"\n\t"_s + entry.file;
    }
    if (missing.isEmpty())
        return {};
    return {u"- One or more audio files specified in the sound configuration file are missing:"_s +
            missing};
}

QList<AliasConfig::StandIn> CSound::standIns(const LineArray& lines, const QString& folder) const
{
    QList<StandIn> found;
    for (const NamedFile& entry : entriesOf(lines)) {
        if (!audioPath(folder, entry.file).isEmpty())
            continue;
        const QStringList places =
            filesNamed(folder, winpath::baseName(entry.file), {u"wav"_s, u"mp3"_s, u"wma"_s});
        if (places.size() == 1)
            found.append({entry, places.constFirst()});
    }
    return found;
}

int CSound::unfitAsTarget(const Definition& target) const
{
    if (!target.original)
        return WouldNotBeValid;
    FoundFiles audio(m_files);
    addAudioFiles(target, audio);
    return audio.paths().isEmpty() ? int(NoAudioFiles) : int(Good);
}

int CSound::unfitAsAlias() const
{
    return IsComplete;
}

} // namespace vt
