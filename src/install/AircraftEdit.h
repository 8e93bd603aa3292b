// One aircraft.cfg as an installation edits it. A plain value; AircraftEdits.h makes them.
#pragma once

#include "simconfig/AircraftSections.h"
#include "simconfig/engine/LineArray.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt {

/// One section that comes to be.
struct AddedVariation
{
    QString title;
    QString variation;
    QString texture;
    QString section; ///< as it stands after the edit
};

struct AircraftEdit
{
    QString file;         ///< full path
    QString aircraft;     ///< its folder, ends in "\"
    qint32 item = 0;      ///< key of the add-on's own file for this place, 0 for none
    bool rebuilt = false; ///< the item's own file, with the sections that others added to it
    bool merged = false;  ///< the sections of that item come into the file that stands there
    QList<AddedVariation> added;
    QStringList ownSections; ///< of an item that is not merged: the sections that it brings
    aircraftsections::Renames renamed; ///< sections that get other numbers
    QByteArray bytes;                  ///< the whole file after the edit
    LineChanges lines;                 ///< against the item's own bytes, else the standing file
    QStringList remarks;               ///< what the user should know

    /// Whether the item is written with other bytes than its own.
    [[nodiscard]] bool changesItem() const
    {
        return item && problem.isEmpty() && (merged || rebuilt || !added.isEmpty());
    }

    QString problem; ///< why nothing is added; the other members tell what was to be
};

} // namespace vt
