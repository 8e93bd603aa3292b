#include "simconfig/CModel.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Characters that a profile value of the simulator may have.
constexpr qsizetype modelValueBuffer = 260;

} // namespace

bool CModel::Load(const QString& configurationFile)
{
    sConfigurationFile = configurationFile;
    const profile::ProfileFile file =
        modRoutines_INI::profileOf(m_access.actions, m_access.ansi, configurationFile);
    const auto value = [&file](const QString& section, const QString& key) {
        return modRoutines_INI::INI_Profile_GetValue(file, section, key, {}, modelValueBuffer)
            .value;
    };
    sModelEntry_Normal = value(u"models"_s, u"normal"_s);
    sModelEntry_Crash = value(u"models"_s, u"crash"_s);
    sModelEntry_Interior = value(u"models"_s, u"interior"_s);
    sAlias = value(u"models"_s, u"alias"_s);
    if (sAlias.isEmpty())
        sAlias = value(u"fltsim"_s, u"alias"_s);
    return m_access.actions.info(configurationFile).has_value();
}

QString CModel::fileOf(const QString& entry) const
{
    if (entry.isEmpty())
        return {};
    const bool ended = endsWithNoCase(entry, u".mdl");
    return winpath::join(winpath::parent(sConfigurationFile), entry + (ended ? u""_s : u".mdl"_s));
}

QString CModel::ModelFilename_Normal_Get() const
{
    return fileOf(sModelEntry_Normal);
}

QString CModel::ModelFilename_Crash_Get() const
{
    return fileOf(sModelEntry_Crash);
}

QStringList CModel::ModelFiles_Get() const
{
    QStringList files;
    for (const QString& entry : {sModelEntry_Normal, sModelEntry_Interior, sModelEntry_Crash}) {
        const QString file = fileOf(entry);
        if (!file.isEmpty() && !files.contains(file, Qt::CaseInsensitive))
            files.append(file);
    }
    return files;
}

} // namespace vt
