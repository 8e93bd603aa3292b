#include "simconfig/AddonVariations.h"

#include "addondb/FileType.h"
#include "platform/Profile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/engine/LineArray.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt::addonvariations {

QString dataFilename()
{
    return u"VT Aircraft Variant Data File.txt"_s;
}

QByteArray dataFile(const QList<Variation>& variations, const AnsiCodec& ansi)
{
    LineArray lines(ansi);
    for (qsizetype i = 0; i < variations.size(); ++i) {
        const Variation& variation = variations.at(i);
        QStringList block = {u"[Variant."_s + QString::number(i) + u']',
                             u"title="_s + variation.title,
                             u"file="_s + variation.file,
                             u"section="_s + variation.section,
                             u"texture="_s + variation.texture};
        if (lines.hasContent())
            block.prepend(QString());
        // What the code page lacks stands in no aircraft.cfg, but may in a folder: left out then.
        (void)lines.append(block);
    }
    return lines.hasContent() ? lines.joined() + "\r\n" : QByteArray();
}

QStringList files(const ConfigAccess& access, const QList<DetailRecord>& details)
{
    QStringList found;
    QSet<NoCase> known;
    const auto add = [&](const QString& file) {
        if (file.isEmpty() || known.contains(NoCase{file}))
            return;
        known.insert(NoCase{file});
        found.append(file);
    };
    for (const DetailRecord& detail : details) {
        const QString path = detail.location + detail.name;
        if (equalNoCase(detail.name, u"aircraft.cfg") || equalNoCase(detail.name, u"sim.cfg"))
            add(path);
        if (!equalNoCase(detail.filename, dataFilename()))
            continue;
        const profile::ProfileFile data =
            modRoutines_INI::profileOf(access.actions, access.ansi, path);
        for (const QString& section : data.sections())
            add(data.value(section, u"file", u"").text);
    }
    return found;
}

QList<Variation>
find(const ConfigAccess& access, qint64 masterKey, const QList<DetailRecord>& details)
{
    QList<Variation> found;
    for (const QString& file : files(access, details)) {
        if (!access.actions.info(file))
            continue;
        CAircraft aircraft(access);
        aircraft.sConfigurationFile = file;
        const QStringList sections = aircraft.Variant_SearchByVTTextureAddonMasterKey(masterKey);
        if (sections.isEmpty())
            continue;
        const profile::ProfileFile values =
            modRoutines_INI::profileOf(access.actions, access.ansi, file);
        for (const QString& section : sections)
            found.append({file,
                          section,
                          values.value(section, u"title", u"").text,
                          values.value(section, u"texture", u"").text});
    }
    return found;
}

} // namespace vt::addonvariations
