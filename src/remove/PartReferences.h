// Who refers to the panels and sounds that a removal takes away, and what could take their place.
// Reads the catalogue only; the remover asks, decides and re-points.
#pragma once

#include "catalogue/Catalogue.h"
#include "platform/Prompt.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

namespace vt {

/// A panel.cfg or sound.cfg that goes although others use it.
struct PartReference
{
    QString file;        ///< full path of what goes
    QString name;        ///< as lists show it
    QStringList aliases; ///< configuration files that stay and are aliases of it
    bool direct = false; ///< an aircraft that stays names its folder: an alias is to lie there
    QStringList users;   ///< aircraft, panels and sounds as lists show them, each once
    QString instead;     ///< alias text of what takes its place; empty: nothing does
};

namespace partreferences {

/// The files that an add-on takes with it.
struct Going
{
    QSet<NoCase> files; ///< all of them, full paths
    QSet<NoCase>
        parts; ///< those panel.cfg and sound.cfg files where nothing is to stand afterwards
    qint64 masterKey = 0;
};

/// The parts of \a kind (Panel or Sound) that something uses that stays. Sections that the add-on
/// added are its own.
[[nodiscard]] QList<PartReference>
find(const Catalogue& catalogue, Catalogue::Kind kind, const Going& going);

/// What may be chosen instead, by name.
struct StandIn
{
    QString name;
    QString file;
};

/// The complete definitions of \a kind that stay.
[[nodiscard]] QList<StandIn>
standIns(const Catalogue& catalogue, Catalogue::Kind kind, const Going& going);

/// "Confirm Sound Removal": the whole question, or its short form where nothing could be assigned.
[[nodiscard]] Prompt confirmRemoval(Catalogue::Kind kind, const QStringList& users, bool canAssign);
/// "Select a sound to replace '<name>'".
[[nodiscard]] ChoicePrompt
selectStandIn(Catalogue::Kind kind, const QString& name, const QList<StandIn>& standIns);

/// "Updating dependent sounds...".
[[nodiscard]] QString updatingText(Catalogue::Kind kind);
/// "Dependent sounds were updated to reference ...", or that they may not have been.
[[nodiscard]] QString updatedText(Catalogue::Kind kind, bool updated);

} // namespace partreferences

} // namespace vt
