#include "demo/DemoAircraft.h"

#include "demo/StandIns.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QByteArray configBytes(const DemoAircraft& aircraft, const QString& lines)
{
    return aircraft.bareLf ? standins::textLf(lines) : standins::text(lines);
}

QString generalSections(const DemoAircraft& aircraft)
{
    return u"[General]\n"_s
           u"atc_type="_s +
           aircraft.manufacturer.toUpper() + u"\natc_model="_s + aircraft.type.toUpper() + uR"(
editable=0
Category=airplane
performance="Cruise speed\n110 kts \/ 204 km\/h\n\nRange\n420 nm\s with reserve"

[WEIGHT_AND_BALANCE]
max_gross_weight	= 2100.0	// pounds
empty_weight	= 1280.0
reference_datum_position	= 0.0, 0.0, 0.0	; feet, from the nose
station_load.0 = "170.0, 1.2, -0.9, 0.0, Pilot"

[LIGHTS]
// 1 beacon, 2 strobe, 3 navigation, 5 landing
light.0 = 3, -1.20, -16.1, 1.40, )"_s +
           aircraft.effects + u"_light   ; left\nlight.1 = 3, -1.20, 16.1, 1.40, "_s +
           aircraft.effects + u"_light\n\n[EFFECTS]\nwake="_s + aircraft.effects +
           u"_smoke\n\n[SMOKESYSTEM]\nsmoke.0=-6.0, 0.0, -0.5, "_s + aircraft.effects +
           u"_smoke\n\n"_s + uR"([contact_points]
point.0 = 1, -2.1, 0.0, -3.9, 1500, 0, 0.6, 22, 0.2, 2.5, 0.8, 0, 0, 0
point.1 = 1, 1.0, -3.4, -3.8, 1500, 1, 0.6, 0, 0.3, 2.5, 0.8, 0, 0, 2
)"_s;
}

QString panelConfig(const DemoAircraft& aircraft)
{
    QString lines = u"// Panel of the "_s + aircraft.type + uR"(
[Window Titles]
Window00=Main Panel
Window01=Radios

[Window00]
file=)"_s + aircraft.base +
                    uR"(_panel.bmp
size_mm=640
position=7
visible=1
ident=MAIN_PANEL
)"_s;
    for (qsizetype i = 0; i < aircraft.gaugeNames.size(); ++i)
        lines += u"gauge"_s + QString::number(i).rightJustified(2, u'0') + u'=' + aircraft.gauges +
                 u'!' + aircraft.gaugeNames.at(i) + u", "_s + QString::number(20 + i * 110) +
                 u", 30, 100, 100\n"_s;
    lines += u"\n[Window01]\nfile="_s + aircraft.base +
             u"_radio.bmp\nsize_mm=200\nvisible=0\nident=RADIO_STACK_PANEL\ngauge00="_s +
             aircraft.gauges + u'!' + aircraft.gaugeNames.value(0) +
             u", 0, 0 ; the same again\n\n[VCockpit01]\nsize_mm=512,512\nvisible=0\ngauge00="_s +
             aircraft.gauges + u'!' + aircraft.gaugeNames.value(0) + u", 3, 3, 120, 120\n"_s;
    return lines;
}

void addPanel(DemoFiles& files, const DemoAircraft& aircraft, const QString& top)
{
    if (!aircraft.alias.isEmpty()) {
        files += {top + u"panel/panel.cfg"_s,
                  configBytes(aircraft, u"[fltsim]\nalias="_s + aircraft.alias + u"\\panel\n"_s)};
        return;
    }
    files += {top + u"panel/panel.cfg"_s, configBytes(aircraft, panelConfig(aircraft))};
    for (const QString& name : {u"_panel.bmp"_s, u"_radio.bmp"_s})
        files += {top + u"panel/"_s + aircraft.base + name,
                  standins::picture(64, 48, standins::seedOf(aircraft.base + name))};
}

void addSound(DemoFiles& files, const DemoAircraft& aircraft, const QString& top)
{
    if (!aircraft.alias.isEmpty()) {
        files += {top + u"sound/sound.cfg"_s,
                  configBytes(aircraft, u"[fltsim]\nalias="_s + aircraft.alias + u"\\sound\n"_s)};
        return;
    }
    files += {top + u"sound/sound.cfg"_s,
              configBytes(aircraft,
                          u"[SOUND_ENGINE]\nnumber_of_engines=1\n"_s
                          u"eng1_combustion=COMBUSTION.1.00\neng1_starter=STARTER.1\n\n"_s
                          u"[COMBUSTION.1.00]\nfilename="_s +
                              aircraft.base +
                              u"_run.wav\nflags=0\nviewpoint=1\nrparams=0.3,0.8,1.0,1.2\n\n"_s
                              u"[STARTER.1]\nfilename="_s +
                              aircraft.base + u"_start.wav\t// cold\nflags=0\n"_s)};
    for (const QString& name : {u"_run.wav"_s, u"_start.wav"_s})
        files += {top + u"sound/"_s + aircraft.base + name,
                  standins::sound(200, standins::seedOf(aircraft.base + name))};
}

void addTextures(DemoFiles& files, const DemoAircraft& aircraft, const QString& top)
{
    for (const DemoVariation& variation : aircraft.variations) {
        const QString folder =
            top + (variation.texture.isEmpty() ? u"texture/"_s
                                               : u"texture."_s + variation.texture + u'/');
        const quint64 seed = standins::seedOf(variation.title);
        files += {folder + aircraft.base + u"_t.bmp"_s, standins::picture(64, 64, seed)};
        files += {folder + u"thumbnail.jpg"_s, standins::marked("\xFF\xD8\xFF\xE0", 700, seed)};
        if (!variation.texture.isEmpty())
            files += {folder + u"texture.cfg"_s,
                      configBytes(aircraft, u"[fltsim]\nfallback.1=..\\texture\n"_s)};
    }
}

} // namespace

QString
aircraftSection(const DemoAircraft& aircraft, const DemoVariation& variation, const QString& number)
{
    return u"[fltsim."_s + number + u"]\ntitle="_s + variation.title + u"\nsim="_s + aircraft.base +
           u"\nmodel=\npanel="_s + variation.panel + u"\nsound="_s + variation.sound +
           u"\ntexture="_s + variation.texture + u"\nkb_checklists="_s + aircraft.base +
           u"_check\nkb_reference="_s + aircraft.base + u"_ref\natc_id=D-E"_s +
           variation.variation.left(3).toUpper() +
           u"\natc_airline=\natc_flight_number=\nui_manufacturer=\""_s + aircraft.manufacturer +
           u"\"\nui_type=\""_s + aircraft.type + u"\"\nui_variation=\""_s + variation.variation +
           u"\"\nui_typerole=\""_s + aircraft.role + u"\"\nui_createdby=\""_s + aircraft.author +
           u"\"\ndescription=\"A made-up aircraft for trying things out.\\nNo real one looks "_s
           u"like it.\"\n\n"_s;
}

DemoFiles aircraftFiles(const DemoAircraft& aircraft)
{
    const QString top = aircraft.folder == u"."_s ? QString() : aircraft.folder + u'/';
    const quint64 seed = standins::seedOf(aircraft.base);
    QString config;
    for (qsizetype i = 0; i < aircraft.variations.size(); ++i)
        config += aircraftSection(aircraft, aircraft.variations.at(i), QString::number(i));
    config += generalSections(aircraft);

    DemoFiles files;
    files += {top + u"aircraft.cfg"_s, configBytes(aircraft, config)};
    files += {top + aircraft.base + u".air"_s, standins::noise(1800, seed)};
    for (const QString& name : {u"_check.htm"_s, u"_ref.htm"_s})
        files += {top + aircraft.base + name,
                  configBytes(aircraft,
                              u"<html><body><h1>"_s + aircraft.manufacturer + u' ' + aircraft.type +
                                  u"</h1><p>Fuel, flaps, doors.</p></body></html>\n"_s)};
    files += {top + u"model/model.cfg"_s,
              configBytes(aircraft, u"[models]\nnormal="_s + aircraft.base + u"\n"_s)};
    files +=
        {top + u"model/"_s + aircraft.base + u".mdl"_s, standins::container("MDLX", 6000, seed)};
    addPanel(files, aircraft, top);
    addSound(files, aircraft, top);
    addTextures(files, aircraft, top);
    return files;
}

DemoFiles effectFiles(const QString& prefix)
{
    DemoFiles files;
    for (const QString& kind : {u"_light"_s, u"_smoke"_s}) {
        const QString name = prefix + kind;
        files += {u"Effects/"_s + name + u".fx"_s,
                  standins::text(u"[Library Effect]\nLifetime=5\nVersion=2.00\nRadius=-1\n\n"_s
                                 u"[Emitter.0]\nLifetime=0.0, 0.0\nDelay=0.0, 0.0\n\n"_s
                                 u"[Particle.0]\nLifetime=0.50, 0.50\nType=19\n\n"_s
                                 u"[ParticleAttributes.0]\nBlend Mode=2\nTexture="_s +
                                 name + u".bmp\nX Scale=0.50, 0.50\n"_s)};
        files += {u"Effects/texture/"_s + name + u".bmp"_s,
                  standins::picture(32, 32, standins::seedOf(name))};
    }
    return files;
}

} // namespace vt
