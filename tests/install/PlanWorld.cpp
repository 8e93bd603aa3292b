#include "PlanWorld.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

using namespace Qt::StringLiterals;

namespace vt::test {

QByteArray aircraftCfg(const QByteArray& title, const QByteArray& sim)
{
    return "[fltsim.0]\r\ntitle=" + title + "\r\nsim=" + sim +
           "\r\nmodel=\r\npanel=\r\nsound=\r\ntexture=\r\nui_manufacturer=Northwind\r\n"
           "ui_type=Carrier\r\nui_variation=White\r\n\r\n[General]\r\ncategory=airplane\r\n";
}

PlanWorld::PlanWorld()
{
    drives.set(u'C', dir.path());
    global.setGeneration(FSX);
    global.setProgramFolder(u"C:\\Vantrel\\"_s);
    global.setSimulatorFolder(u"C:\\FSX\\"_s);
    global.sceneryCfgFile = u"C:\\ProgramData\\scenery.cfg"_s;
    global.userDocumentsFolder = u"C:\\Documents\\"_s;
    gate.setRoot(RootId::Simulator, global.simulatorFolder);
    gate.setRoot(RootId::Program, global.programFolder);
    gate.setRoot(RootId::Documents, global.userDocumentsFolder);
    for (const char* file : {"fsx.exe",
                             "SimObjects/Airplanes/B747/texture/a.dds",
                             "SimObjects/Airplanes/B747/b747.air",
                             "SimObjects/Rotorcraft/Dragonfly/readme",
                             "Effects/fx_old.fx",
                             "Gauges/Old.gau",
                             "Sound/stall.wav",
                             "Texture/sky.bmp",
                             "Modules/x.dll",
                             "Fonts/f.ttf",
                             "Scenery/World/scenery/w.bgl",
                             "Scenery/World/texture/w.bmp",
                             "Scenery/0601/scenery/old.bgl",
                             "Addon Scenery/scenery/a.bgl",
                             "Missions/Tutorials/T1/t1.flt",
                             "Flights/other/f.flt",
                             "PropDefs/p.xml"})
        writeInSimulator(QString::fromLatin1(file));
    writeInSimulator(u"SimObjects/Airplanes/B747/aircraft.cfg"_s, aircraftCfg("B747", "b747"));
    write(u"ProgramData/scenery.cfg"_s,
          "[GENERAL]\r\nTitle=World\r\n\r\n[Area.001]\r\nTitle=Known\r\nLocal=Addon "
          "Scenery\\Known\r\nActive=TRUE\r\nLayer=1\r\nRequired=FALSE\r\n\r\n");
}

void PlanWorld::write(const QString& path, const QByteArray& bytes)
{
    const QString host = dir.filePath(path);
    QVERIFY(QDir().mkpath(QFileInfo(host).path()));
    QFile file(host);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
    file.close();
    files.newOperation();
}

void PlanWorld::writeInSimulator(const QString& path, const QByteArray& bytes)
{
    write(u"FSX/"_s + path, bytes);
}

QByteArray PlanWorld::zipOf(const SourceFiles& files)
{
    ZipBuilder zip;
    for (const auto& [path, bytes] : files)
        zip.add(path.toUtf8(), bytes);
    return zip.build();
}

QString PlanWorld::makeSource(const QString& name, const SourceFiles& sourceFiles)
{
    if (name.endsWith(u".zip"_s)) {
        write(u"in/"_s + name, zipOf(sourceFiles));
        return u"C:\\in\\"_s + name;
    }
    for (const auto& [path, bytes] : sourceFiles)
        write(u"in/"_s + name + u'/' + path, bytes);
    return u"C:\\in\\"_s + name;
}

QString PlanWorld::shortened(const QString& folder, const CAddonInstallationDetails& details) const
{
    if (folder.isEmpty())
        return u"?"_s;
    const std::pair<QString, QString> tops[] = {{details.storageFolder(), u"STORE\\"_s},
                                                {global.simulatorFolder, u"SIM\\"_s},
                                                {global.userDocumentsFolder, u"DOCS\\"_s}};
    for (const auto& [top, word] : tops) {
        if (folder.startsWith(top))
            return word + folder.sliced(top.size());
    }
    return folder;
}

QStringList PlanWorld::targets(const CAddonInstallationDetails& details) const
{
    QStringList lines;
    for (const CAddon_Item& item : details.addon().colAddonItems()) {
        QString target = u"-"_s;
        if (item.boolProcess) {
            target = shortened(item.sFolder_Installation, details);
            if (target != u"?"_s)
                target += item.sName_Installation;
        }
        lines.append(item.sFolder_Current + item.sName + u" -> "_s + target);
    }
    lines.sort();
    return lines;
}

} // namespace vt::test
