// Panels and sounds that an add-on's aircraft share with an installed one: where the user says so,
// an alias comes to lie in each panel or sound folder that a section names and nobody brings. The
// plan and the installer both take it from here. Reads only.
#pragma once

#include "install/AircraftEdit.h"
#include "platform/Result.h"
#include "shell/Context.h"
#include "simconfig/AliasConfig.h"

#include <QList>
#include <QString>

#include <memory>

namespace vt {

class CAddonInstallationDetails;

/// One configuration file that is to be made.
struct PartAlias
{
    aliastarget::Kind kind = aliastarget::Kind::Panel;
    QString file;    ///< full path of the panel.cfg or sound.cfg
    QString alias;   ///< what it refers to
    qint32 item = 0; ///< key of the add-on's aircraft.cfg whose section names it
    QString problem; ///< why it was not made; empty when it was, or is to be

    [[nodiscard]] ConfigChange change() const; ///< its two lines
};

/// An object to load, check or write it with.
[[nodiscard]] std::unique_ptr<AliasConfig>
partConfig(aliastarget::Kind kind, const ConfigAccess& access, const Context& context);

/// \a typed (a folder of a panel or sound, of an aircraft with one, or an alias) in the form of an
/// alias; fails when no installed definition is there. \a folder is how a path was resolved.
[[nodiscard]] ResultOf<QString> partAliasText(aliastarget::Kind kind,
                                              Context& context,
                                              const QString& typed,
                                              const QString& folder);

/// For the aircraft of \a edits that the add-on brings; by the options that name what is shared.
[[nodiscard]] QList<PartAlias> partAliases(const CAddonInstallationDetails& details,
                                           Context& context,
                                           const QList<AircraftEdit>& edits);

/// "Panel alias was created.", "Sound alias was NOT properly created.".
[[nodiscard]] QString partAliasResult(aliastarget::Kind kind, bool created);

} // namespace vt
