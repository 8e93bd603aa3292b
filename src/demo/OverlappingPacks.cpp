#include "demo/OverlappingPacks.h"

#include "demo/StandIns.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QByteArray effectBytes(quint64 seed)
{
    return standins::text(u"[Library Effect]\nLifetime=5\nSeed="_s + QString::number(seed) +
                          u"\n"_s);
}

DemoFiles sharedPlaces(int index, quint64 seed)
{
    const bool odd = index % 2 != 0;
    // The simulator's own bytes of this file, so that every other pack changes nothing there.
    const QByteArray stall = standins::sound(180, odd ? seed : 6);
    DemoFiles files{
        {odd ? u"EFFECTS/FX_FOUGHT.FX"_s : u"Effects/fx_fought.fx"_s, effectBytes(seed)},
        {u"Effects/fx_kestrel_light.fx"_s, effectBytes(seed + 1)},
        {u"Sound/stall.wav"_s, stall},
        {u"Gauges/Common.gau"_s, standins::marked("MZ", 800, 1000)},
        {u"Gauges/Kestrel.cab"_s, standins::marked("MSCF", 900, seed + 2)},
        {u"Addon Scenery/Common Ground/scenery/common.bgl"_s,
         standins::container("BGL ", 600, seed + 3)}};
    if (index % 3 != 2)
        files += DemoFile{odd ? u"simobjects/AIRPLANES/kestrel_k2/TEXTURE/kestrel_k2_t.bmp"_s
                              : u"SimObjects/Airplanes/Kestrel_K2/texture/kestrel_k2_t.bmp"_s,
                          standins::picture(16, 16, seed + 4)};
    return files;
}

} // namespace

QList<OverlappingPack> overlappingPacks(quint64 seed, int count)
{
    QList<OverlappingPack> packs;
    for (int index = 0; index < qMax(5, count); ++index) {
        const QString letter(QChar(u'A' + index));
        const quint64 own = seed * 1'000'003 + static_cast<quint64>(index) * 101;
        DemoFiles files = sharedPlaces(index, own);
        files += DemoFile{u"Sound/pack_"_s + letter + u".wav"_s, standins::sound(20, own + 5)};
        files += DemoFile{u"Addon Scenery/Pack "_s + letter + u"/scenery/own.bgl"_s,
                          standins::container("BGL ", 500, own + 6)};
        files += DemoFile{u"Addon Scenery/Pack "_s + letter + u"/texture/own.bmp"_s,
                          standins::picture(12, 12, own + 7)};
        files += DemoFile{u"pack "_s + letter + u" notes.txt"_s,
                          standins::text(u"Pack "_s + letter + u".\n"_s)};
        packs += {u"pack-"_s + letter.toLower(), files};
    }
    return packs;
}

} // namespace vt
