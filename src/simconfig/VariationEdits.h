// Changes to an installed aircraft's variations as a person orders them: the file, its textures,
// pictures and records together or not at all. What an installation does inside a transaction of
// its own uses CAircraft directly.
#pragma once

#include "platform/Services.h"
#include "shell/GlobalRecord.h"
#include "simconfig/CAircraft.h"

#include <QString>
#include <QStringList>

namespace vt {

class Connection;

namespace variationedits {

/// What is needed around an edit; everything must outlive it.
struct Surroundings
{
    Services& services;
    const GlobalRecord& global;
    Connection& database; ///< open for writing
};

struct Edited
{
    QString file;    ///< spelled as on the disk
    QString section; ///< of the variation, as it is called now; of a removed one, as it was called
    QString title;
    QStringList notes; ///< what else happened, and what was left
};

/// Adds a variation to \a file. The files of \a textureFolder (full path, may be empty) are copied
/// into the new texture folder.
[[nodiscard]] ResultOf<Edited> add(const Surroundings& around,
                                   const QString& file,
                                   CTextureGroup group,
                                   const QString& textureFolder,
                                   const CAircraft::VariantSwitches& switches);

/// Removes a variation with the folders that nobody else uses. Files of add-ons stay.
[[nodiscard]] ResultOf<Edited> remove(const Surroundings& around,
                                      const QString& file,
                                      const QString& section,
                                      const CAircraft::VariantRemoval& removal);

/// Hides a variation from the simulator, or shows it again. A hidden one may be named as it is
/// called now ("hidden.fltsim.2") or as it was ("fltsim.2").
[[nodiscard]] ResultOf<Edited>
setVisible(const Surroundings& around, const QString& file, const QString& section, bool visible);

} // namespace variationedits
} // namespace vt
