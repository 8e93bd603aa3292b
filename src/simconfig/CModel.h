// An aircraft's model configuration (Model.cfg): which shapes its model folder uses. Reads only.
#pragma once

#include "simconfig/engine/ConfigAccess.h"

#include <QString>
#include <QStringList>

namespace vt {

class CModel
{
public:
    explicit CModel(ConfigAccess access) : m_access(access) {}

    QString sConfigurationFile; ///< full path, set by Load()
    QString sModelEntry_Normal; ///< value of "normal" in [models]
    QString sModelEntry_Crash;  ///< value of "crash"
    QString sModelEntry_Interior;
    QString sAlias; ///< value of "alias" in [models] or [fltsim]: another folder's shapes are used

    /// False when the file cannot be read; a file without entries is a success.
    bool Load(const QString& configurationFile);

    /// Full path of the shape's file beside Model.cfg, ".mdl" added; empty without an entry.
    [[nodiscard]] QString ModelFilename_Normal_Get() const;
    [[nodiscard]] QString ModelFilename_Crash_Get() const;
    /// Full paths of all shapes that the configuration names, each once.
    [[nodiscard]] QStringList ModelFiles_Get() const;

private:
    [[nodiscard]] QString fileOf(const QString& entry) const;

    ConfigAccess m_access;
};

} // namespace vt
