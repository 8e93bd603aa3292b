"""Fills a simulator's folder with many made-up aircraft, panels, sounds and effects, in the likeness
of real ones: comments, tabs, quotes, bare LF in some files, the same bytes for the same seed."""
import os
import random

AIRCRAFT, VARIATIONS, EFFECTS = 1000, 3, 600
MAKERS = ["Alder", "Birch", "Cedar", "Dogwood", "Elm", "Fir", "Gorse", "Hazel", "Iris", "Juniper"]
GAUGES = ["Airspeed", "Altimeter", "Attitude", "Compass", "Fuel Left", "Oil_Temp", "RPM 1", "Radio"]
CONFIGS = ["[aA]ircraft.cfg", "panel.cfg", "[sS]ound.cfg", "model.cfg", "*.fx"]  # for grep


def variation(rng, number, i, maker):
    return f"""[fltsim.{i}]
title={maker} {number} "Type {number % 40}" No {i}
sim=plane{number}
model=
panel={'alt' if i == 2 and number % 5 == 0 else ''}
sound={'alt' if i == 2 and number % 5 == 0 else ''}
texture={'' if i == 0 else i}
kb_checklists=plane{number}_check
kb_reference=plane{number}_ref
atc_id=D-E{number}
atc_airline=\t// none
atc_flight_number=\"{rng.randrange(1000)}\"
ui_manufacturer=\"{maker}\"
ui_type=\"Type {number % 40}\"
ui_variation\t= \"Pilot's choice {i} / {number}\"
ui_typerole=\"Single engine prop\"
ui_createdby=\"A maker\"
description=\"Made up for measuring.\\nNo real one looks like it \\/ flies like it.\"

"""


def rows(rng, stem, count):
    lines = []
    for i in range(count):
        values = ", ".join("%.3f" % rng.uniform(-20, 400) for _ in range(rng.randrange(2, 7)))
        remark = ("", "\t// as measured", " ; feet", "\t\t// %d degrees" % i)[rng.randrange(4)]
        lines.append("%s.%d\t= %s%s" % (stem, i, values, remark))
    return "\n".join(lines) + "\n\n"


def aircraft_cfg(rng, number):
    maker = MAKERS[number % len(MAKERS)]
    text = "// aircraft %d\n\n" % number
    text += "".join(variation(rng, number, i, maker) for i in range(VARIATIONS))
    text += "[General]\natc_type=%s\nCategory=airplane\nperformance=\"Cruise\\n110 kts\"\n\n" % maker
    lights = "".join("light.%d = %d, -%.2f, %.1f, 1.40, fx_%d   // no %d\n"
                     % (i, i % 6 + 1, i * 1.3, i * 2.2, rng.randrange(EFFECTS), i) for i in range(8))
    text += "[LIGHTS]\n// 1 beacon, 2 strobe, 3 navigation, 5 landing\n" + lights
    text += "\n[EFFECTS]\nwake=fx_%d\ntouchdown=fx_%d, 1\n\n" % (number % EFFECTS, number % 90)
    text += "[SMOKESYSTEM]\nsmoke.0=-6.0, 0.0, -0.5, fx_%d\n\n" % (number % 50)
    for section in ("WEIGHT_AND_BALANCE", "flight_tuning", "GeneralEngineData", "contact_points",
                    "fuel", "airplane_geometry", "electrical", "Reference Speeds", "Radios"):
        text += "[%s]\n" % section + rows(rng, "entry", rng.randrange(6, 28))
    return text


def panel_cfg(rng, number):
    text = "// panel %d\n[Window Titles]\nWindow00=Main\nWindow01=Radios\n\n" % number
    windows = rng.randrange(3, 13)
    for window in range(windows):
        text += ("[Window%02d]\nfile=back_%d.bmp\nsize_mm=640,480\nposition=7\nvisible=1\n"
                 "ident=PANEL_%d\n" % (window, window, window))
        for gauge in range(rng.randrange(35, 95)):
            text += ("gauge%02d=Set%d!%s %d,\t%d, %d, 100, 100%s\n"
                     % (gauge, (number + gauge // 9) % 150, rng.choice(GAUGES), gauge, gauge * 7, window * 9,
                        "\t// row %d" % gauge if gauge % 6 == 0 else ""))
        text += "\n"
    return text + "[Color]\nDay=255,255,255\nNight=223,255,255\n"


def sound_cfg(rng, number):
    text = "[SOUND_ENGINE]\nnumber_of_engines=1\n\n"
    for i in range(38):
        name = "run%d" % i if i % 3 else "..\\..\\plane%d\\sound\\run%d.wav" % (number // 2, i)
        text += ("[COMBUSTION.1.%02d]\nfilename=%s\t// loop\nflags=0\nviewpoint=%d\n"
                 "rparams=0.3,0.8,1.0,1.2\nvparams=0.0, 70.0, 1.0, 100.0\n\n" % (i, name, i % 2 + 1))
    return text


def effect(rng, number):
    text = "[Library Effect]\nLifetime=5\nVersion=2.00\nRadius=-1\n\n"
    for i in range(6):
        text += "[Emitter.%d]\nLifetime=0.0, 0.0\nDelay=0.0, 0.0\nX Velocity=0.00, 0.00\n\n" % i
        text += "[Particle.%d]\nLifetime=0.50, 0.50\nType=19\nShade=1, 1\nFade=1, 1\n\n" % i
        text += ("[ParticleAttributes.%d]\nBlend Mode=2\nTexture=fx_%d.bmp\nBounce=0.00\n"
                 "Color Start=%d, 250, 250, 90\nColor End=0, 0, 0, 0\nJitter Distance=0\n"
                 "X Scale=0.5, 0.5\nUniform Scale=1\n\n" % (i, number % 80, rng.randrange(255)))
    return text


def fill(simulator, seed=1):
    rng = random.Random(seed)

    def write(path, text):
        full = os.path.join(simulator, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        ends = "\n" if rng.random() < 0.3 else "\r\n"
        with open(full, "w", encoding="cp1252", newline=ends) as file:
            file.write(text)

    for number in range(AIRCRAFT):
        kind = "Rotorcraft" if number % 10 == 9 else "Airplanes"
        top = "SimObjects/%s/plane%d/" % (kind, number)
        write(top + "Aircraft.cfg" if number % 3 else top + "aircraft.cfg", aircraft_cfg(rng, number))
        write(top + "panel/panel.cfg", panel_cfg(rng, number))
        write(top + "sound/Sound.cfg", sound_cfg(rng, number))
        write(top + "model/model.cfg", "[models]\nnormal=plane%d\n" % number)
        if number % 5 == 0:
            for part in ("panel", "sound"):
                write(top + "%s.alt/%s.cfg" % (part, part),
                      "[fltsim]\nalias=plane%d\\%s\n" % (number // 2, part))
        for name in ("plane%d.air" % number, "panel/back_0.bmp", "panel/back_1.bmp", "sound/run1.wav",
                     "sound/run2.wav", "model/plane%d.mdl" % number):
            write(top + name, "x" * 500)
        for texture in ("texture", "texture.1", "texture.2"):
            for name in ("body_t.dds", "wing_t.dds", "tail_t.dds", "thumbnail.jpg"):
                write(top + texture + "/" + name, "x" * 200)
    for number in range(EFFECTS):
        write("Effects/fx_%d.fx" % number, effect(rng, number))
    for number in range(80):
        write("Effects/Texture/fx_%d.bmp" % number, "x" * 400)
