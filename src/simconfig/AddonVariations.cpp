#include "simconfig/AddonVariations.h"

#include "addondb/FileType.h"
#include "platform/Profile.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AircraftSections.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt::addonvariations {

QString dataFilename()
{
    return u"VT Aircraft Variant Data File.txt"_s;
}

QStringList linesOf(const LineArray& file, const QString& section)
{
    const std::optional<LineArray> block = aircraftsections::ownLines(file, section);
    QStringList lines = block ? block->texts() : QStringList();
    lines.removeIf([](const QString& line) { return line.trimmed().isEmpty(); });
    return lines;
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
        for (qsizetype line = 0; line < variation.lines.size(); ++line)
            block.append(u"line."_s + QString::number(line) + u'=' + variation.lines.at(line));
        if (lines.hasContent())
            block.prepend(QString());
        // What the code page lacks stands in no aircraft.cfg, but may in a folder: left out then.
        (void)lines.append(block);
    }
    return lines.hasContent() ? lines.joined() + "\r\n" : QByteArray();
}

QList<Variation> readDataFile(const QByteArray& bytes, const AnsiCodec& ansi)
{
    const profile::ProfileFile data = profile::ProfileFile::ofBytes(bytes, ansi);
    QList<Variation> variations;
    for (const QString& section : data.sections()) {
        const auto value = [&](const QString& key) { return data.value(section, key, u"").text; };
        Variation variation{
            value(u"file"_s), value(u"section"_s), value(u"title"_s), value(u"texture"_s)};
        for (int line = 0;; ++line) {
            const QString text = value(u"line."_s + QString::number(line));
            if (text.isEmpty())
                break;
            variation.lines.append(text);
        }
        if (!variation.file.isEmpty())
            variations.append(variation);
    }
    return variations;
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
    const bool any = std::any_of(details.cbegin(), details.cend(), [](const DetailRecord& one) {
        return equalNoCase(one.filename, dataFilename());
    });
    QString lastFolder;
    for (const DetailRecord& detail : details) {
        if (any && detail.location != lastFolder) {
            // Should the data file be lost: textures lie in their aircraft's folder.
            lastFolder = detail.location;
            const QString above = winpath::parent(lastFolder);
            for (const QString& folder : {lastFolder, above}) {
                const QString file = winpath::parent(folder) + u"aircraft.cfg"_s;
                if (configfacts::isPartFolder(winpath::name(folder), u"texture") &&
                    access.actions.info(file))
                    add(file);
            }
        }
        if (equalNoCase(detail.name, u"aircraft.cfg") || equalNoCase(detail.name, u"sim.cfg"))
            add(detail.location + detail.name);
        if (!equalNoCase(detail.filename, dataFilename()))
            continue;
        const profile::ProfileFile data =
            modRoutines_INI::profileOf(access.actions, access.ansi, detail.location + detail.name);
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
        (void)aircraft.INILines_Load(false);
        for (const QString& section : sections)
            found.append({file,
                          section,
                          values.value(section, u"title", u"").text,
                          values.value(section, u"texture", u"").text,
                          linesOf(aircraft.sarrayINILines, section)});
    }
    return found;
}

} // namespace vt::addonvariations
