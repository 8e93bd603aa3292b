// Small add-ons that fight for the same places, for trying every order of installing and removing.
#pragma once

#include "demo/DemoAircraft.h"

#include <QList>
#include <QString>

namespace vt {

struct OverlappingPack
{
    QString name;
    DemoFiles files;
};

/// Packs for a demonstration simulator, at least 5. All of them hold: one place that is new, one
/// that replaces a simulator's file, one whose bytes equal the simulator's in every other pack, one
/// whose bytes equal each other's, one in a scenery area that several packs bring; some hold a
/// picture of an aircraft, spelled in another case. Each has files and a scenery area of its own.
/// The same \a seed gives the same bytes, another seed others.
[[nodiscard]] QList<OverlappingPack> overlappingPacks(quint64 seed, int count = 5);

} // namespace vt
