#include "demo/SampleAddons.h"

#include "demo/FreshTree.h"
#include "demo/StandIns.h"
#include "demo/ZipMaker.h"

#include <QDir>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

DemoAircraft swift(const QString& folder)
{
    return {folder,
            u"swift_s1"_s,
            u"Swift"_s,
            u"S1"_s,
            u"Single Engine Prop"_s,
            u"Swift"_s,
            {u"Speed"_s, u"Height"_s},
            {},
            u"fx_swift"_s,
            {{u"Swift S1 White"_s, u"White"_s, {}}, {u"Swift S1 Club"_s, u"Club"_s, u"club"_s}},
            true,
            u"The Swift team"_s};
}

DemoFile readme(const QString& path, const QString& lines)
{
    return {path, standins::text(lines)};
}

/// A whole tree beside each other, to be merged into the simulator's folder.
SampleAddon aircraftTree()
{
    DemoFiles files{
        readme(u"Readme.txt"_s, u"Swift S1\n\nUnpack into the simulator's folder. Have fun.\n"_s)};
    files += aircraftFiles(swift(u"SimObjects/Airplanes/Swift_S1"_s));
    files += effectFiles(u"fx_swift"_s);
    files += DemoFile{u"Gauges/Swift.cab"_s, standins::marked("MSCF", 4000, 101)};
    files += DemoFile{u"Sound/swift_canopy.wav"_s, standins::sound(100, 102)};
    return {u"swift-aircraft"_s,
            u"an aircraft as a whole tree with effects, gauges and sounds"_s,
            files};
}

/// A download of a repository: one top folder that is the aircraft, with what repositories leave.
SampleAddon aircraftMain()
{
    DemoAircraft heron = swift(u"heron-h2-main"_s);
    heron.base = u"heron_h2"_s;
    heron.manufacturer = u"Heron"_s;
    heron.type = u"H2"_s;
    heron.gauges = u"Heron"_s;
    heron.effects = u"fx_kestrel"_s;
    heron.variations = {{u"Heron H2"_s, u"Plain"_s, {}},
                        {u"Heron H2 Landor G-HERN"_s, u"Landor"_s, u"Landor\\G-HERN"_s}};
    DemoFiles files = aircraftFiles(heron);
    for (DemoFile& file : files)
        file.path.replace(u'\\', u'/');
    files += DemoFile{u"heron-h2-main/panel/Heron.cab"_s, standins::marked("MSCF", 2000, 111)};
    files += DemoFile{u"heron-h2-main/.gitignore"_s, standins::textLf(u"Thumbs.db\n"_s)};
    files += DemoFile{u"heron-h2-main/LICENSE"_s, standins::textLf(u"Free to use.\n"_s)};
    files += DemoFile{u"heron-h2-main/README.md"_s, standins::textLf(u"# Heron H2\n"_s)};
    files += DemoFile{u"heron-h2-main/texture/Thumbs.db"_s, standins::noise(500, 112)};
    return {u"heron-h2-main"_s, u"one aircraft folder, as a repository gives it"_s, files};
}

SampleAddon scenery()
{
    DemoFiles files;
    for (const QString& area : {u"Harbour Bay"_s, u"Mill Field"_s}) {
        const quint64 seed = standins::seedOf(area);
        const QString base = QString(area).remove(u' ').toLower();
        for (int i = 1; i <= 3; ++i)
            files += {area + u"/scenery/"_s + base + QString::number(i) + u".bgl"_s,
                      standins::container("BGL ", 2000 + i * 700, seed + static_cast<quint64>(i))};
        for (int i = 1; i <= 2; ++i)
            files += {area + u"/texture/"_s + base + QString::number(i) + u".bmp"_s,
                      standins::picture(48, 48, seed + 10 + static_cast<quint64>(i))};
    }
    files += readme(u"readme.txt"_s, u"Two fields by the water.\n"_s);
    return {u"harbour-scenery"_s, u"two scenery areas with textures"_s, files};
}

SampleAddon gauges()
{
    DemoFiles files{{u"Gauges/Barograph.cab"_s, standins::marked("MSCF", 2500, 121)},
                    {u"Gauges/Turnrate.gau"_s, standins::marked("MZ", 2200, 122)}};
    for (const QString& part : {u"clock"_s, u"timer"_s}) {
        files += {u"Gauges/Chronograph/"_s + part + u".xml"_s,
                  standins::text(u"<Gauge Name=\""_s + part + u"\"><Image Name=\""_s + part +
                                 u"_1.bmp\"/></Gauge>\n"_s)};
        for (int i = 1; i <= 6; ++i)
            files += {u"Gauges/Chronograph/"_s + part + u'_' + QString::number(i) + u".bmp"_s,
                      standins::picture(24, 24, standins::seedOf(part) + static_cast<quint64>(i))};
    }
    return {u"barograph-gauges"_s,
            u"gauges: a cabinet, a module, a folder of XML and bitmaps"_s,
            files};
}

SampleAddon documents()
{
    return {u"kestrel-manuals"_s,
            u"documents only"_s,
            {readme(u"Manuals/Kestrel K2 handbook.txt"_s, u"Chapter one. Read it first.\n"_s),
             {u"Manuals/Kestrel K2 checklist.pdf"_s, standins::marked("%PDF-1.4\n", 1500, 131)},
             readme(u"aircraft.cfg.txt"_s, u"[fltsim.0]\ntitle=Not an aircraft\n"_s),
             readme(u"index.html"_s, u"<html><body>Manuals</body></html>\n"_s)}};
}

/// The most common add-on of all: one texture folder and a text with the block to be added.
SampleAddon repaint()
{
    const QString block =
        u"Kestrel K2 in the colours of the Lakeside club\n\nCopy this into your aircraft.cfg:\n\n"_s
        u"[fltsim.x]\ntitle\t=Kestrel K2 Lakeside\nsim\t=kestrel_k2\nmodel\t=\npanel\t=\n"_s
        u"sound\t=\ntexture\t=lakeside\natc_id\t=D-ELAK\nui_manufacturer\t=\"Kestrel\"\n"_s
        u"ui_type\t=\"K2 Trainer\"\nui_variation\t=\"Lakeside club\"\n"_s
        u"description\t=\"The club's own colours.\"\n\nThat is all. Enjoy!\n"_s;
    return {u"kestrel-repaint"_s,
            u"a repaint: a texture folder and a text with its block"_s,
            {readme(u"install.txt"_s, block),
             {u"texture.lakeside/kestrel_k2_t.bmp"_s, standins::picture(64, 64, 141)},
             {u"texture.lakeside/thumbnail.jpg"_s, standins::marked("\xFF\xD8\xFF\xE0", 800, 142)},
             {u"texture.lakeside/texture.cfg"_s,
              standins::textLf(u"[fltsim]\nfallback.1=..\\texture\n"_s)}}};
}

SampleAddon mission()
{
    const QString top = u"Missions/Lakeside/Fog over the Lake/"_s;
    DemoFiles files{
        {top + u"Fog over the Lake.flt"_s,
         standins::text(u"[Main]\nTitle=Fog over the Lake\n"_s
                        u"Description=Find the field again.\n\n"_s
                        u"[Sim.0]\nSim=Kestrel K2 Blue\n"_s)},
        {top + u"Fog over the Lake.spb"_s, standins::noise(1200, 151)},
        {top + u"Fog over the Lake.wx"_s, standins::noise(500, 152)},
        {top + u"Fog over the Lake.htm"_s, standins::text(u"<html><body>Fog.</body></html>\n"_s)},
        {top + u"overview.bmp"_s, standins::picture(40, 30, 153)}};
    for (int i = 1; i <= 8; ++i)
        files += {top + u"Sound/tower"_s + QString::number(i) + u".wav"_s,
                  standins::sound(60, 160 + static_cast<quint64>(i))};
    return {u"fog-mission"_s, u"a mission with pictures and sounds"_s, files};
}

/// Three archives deep, as sets of several makers are.
SampleAddon nested()
{
    const DemoFiles inmost{{u"Gauges/Deep.gau"_s, standins::marked("MZ", 1500, 171)},
                           readme(u"deep.txt"_s, u"The third archive.\n"_s)};
    const DemoFiles middle{
        {u"Effects/fx_nest.fx"_s, standins::text(u"[Library Effect]\nLifetime=2\n"_s)},
        {u"more.zip"_s, zipOf(inmost)}};
    return {u"nested-set"_s,
            u"archives inside archives, three deep"_s,
            {readme(u"readme.txt"_s, u"Everything is inside.\n"_s),
             {u"Sound/nest_bell.wav"_s, standins::sound(90, 172)},
             {u"extras/effects.zip"_s, zipOf(middle)}}};
}

/// Shares places with the simulator and with swift-aircraft: newer versions of what they have.
SampleAddon update()
{
    DemoFiles files = effectFiles(u"fx_kestrel"_s) + effectFiles(u"fx_swift"_s);
    for (DemoFile& file : files)
        file.bytes += "\r\n";
    files += DemoFile{u"Gauges/Kestrel.cab"_s, standins::marked("MSCF", 5200, 181)};
    files += DemoFile{u"Gauges/Swift.cab"_s, standins::marked("MSCF", 4100, 182)};
    files += DemoFile{u"Sound/stall.wav"_s, standins::sound(180, 6)}; // as the simulator has it
    files += DemoFile{u"SIMOBJECTS/airplanes/kestrel_k2/Texture/Kestrel_K2_T.bmp"_s,
                      standins::picture(64, 64, 183)};
    files += DemoFile{u"Texture/runway.bmp"_s, standins::picture(64, 32, 184)};
    files += readme(u"Update notes.txt"_s, u"Sharper pictures, louder bells.\n"_s);
    return {u"pack-update"_s, u"replaces files of the simulator and of other add-ons"_s, files};
}

/// Loose at the root, names with "\" and in capitals, as old packers wrote them.
SampleAddon loose()
{
    DemoAircraft glider = swift(u"."_s);
    glider.base = u"glide_g"_s;
    glider.manufacturer = u"Glide"_s;
    glider.type = u"G"_s;
    glider.gauges = u"Kestrel"_s;
    glider.variations = {{u"Glide G"_s, u"Plain"_s, {}}};
    glider.effects = u"fx_kestrel"_s;
    DemoFiles files = aircraftFiles(glider);
    for (DemoFile& file : files) {
        file.path.replace(u'/', u'\\');
        if (file.path.endsWith(u".cfg"_s))
            file.path = file.path.toUpper();
    }
    return {u"glide-loose"_s, u"an aircraft loose at the root, with names in old style"_s, files};
}

} // namespace

QByteArray SampleAddon::archive() const
{
    return zipOf(files);
}

QList<SampleAddon> sampleAddons()
{
    return {aircraftTree(),
            aircraftMain(),
            scenery(),
            gauges(),
            documents(),
            repaint(),
            mission(),
            nested(),
            update(),
            loose()};
}

SampleAddon sampleAddon(const QString& name)
{
    const QList<SampleAddon> all = sampleAddons();
    const auto found = std::find_if(
        all.begin(), all.end(), [&name](const SampleAddon& sample) { return sample.name == name; });
    Q_ASSERT(found != all.end());
    return *found;
}

ResultOf<QStringList> writeSampleAddons(const QString& hostFolder)
{
    QStringList paths;
    FreshTree tree(QDir(hostFolder).absolutePath());
    for (const SampleAddon& sample : sampleAddons()) {
        tree.file(sample.name + u".zip"_s, sample.archive());
        paths += QDir(hostFolder).absoluteFilePath(sample.name + u".zip"_s);
    }
    if (!tree.result())
        return tree.result();
    return paths;
}

} // namespace vt
