#include "install/AircraftEdits.h"

#include "catalogue/Catalogue.h"
#include "platform/Profile.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr qint64 sourceLimit = 16 << 20;

/// Sight of the disk in which one file has other bytes; nothing can be written through it.
class WithOneFile final : public FileActions
{
public:
    WithOneFile(FileActions& disk, QString file, QByteArray bytes)
        : m_disk(disk), m_file(std::move(file)), m_bytes(std::move(bytes))
    {}

    ResultOf<QByteArray> read(const QString& path, qint64 limit) override
    {
        return winpath::same(path, m_file) ? ResultOf<QByteArray>(m_bytes)
                                           : m_disk.read(path, limit);
    }

    std::optional<FileInfo> info(const QString& path) override
    {
        std::optional<FileInfo> info = m_disk.info(path);
        if (!winpath::same(path, m_file))
            return info;
        if (!info)
            info = FileInfo{winpath::name(m_file), false, false, 0, 0};
        info->size = m_bytes.size();
        return info;
    }

    Result replace(const QString&, const QByteArray&) override { return refused(); }

    ResultOf<Fingerprint> place(const QString&, const Content&) override { return refused(); }

    Result keep(const QString&, const QString&) override { return refused(); }

    Result copy(const QString&, const QString&) override { return refused(); }

    Result remove(const QString&) override { return refused(); }

    Result makeFolder(const QString&) override { return refused(); }

    Result removeEmptyFolder(const QString&) override { return refused(); }

private:
    static Result refused() { return Result::failure(u"A plan writes nothing."_s); }

    FileActions& m_disk;
    QString m_file;
    QByteArray m_bytes;
};

QString entryOf(const LineArray& lines, const QString& section, const QString& key)
{
    const QString raw = ini::INI_Entry_Get(lines, section, key, true).value_or(QString());
    return configfacts::plainValue(QStringView(raw)).trimmed().toString();
}

QString firstAircraftSection(const LineArray& lines)
{
    return CAircraft::Headers_ReturnOnlyAircraftHeaders(ini::INI_Sections_GetNames(lines)).value(0);
}

/// Gathers the edits of one add-on, file by file.
class Gatherer
{
public:
    Gatherer(const CAddonInstallationDetails& details, Context& context, qint64 masterKey)
        : m_details(details), m_context(context), m_masterKey(masterKey)
    {}

    QList<AircraftEdit> run();

private:
    struct Wanted
    {
        AircraftEdit edit;
        QByteArray before; ///< what the file would hold without the edit
        QList<CTextureGroup> groups;
        QList<CTextureGroup> told; ///< as the source tells them
    };

    Wanted& wantedFor(const QString& file);
    void gatherItems();
    void gatherRepaints();
    void gatherMerged(Wanted& wanted, const QByteArray& source);
    void gatherRebuilt(Wanted& wanted, const QByteArray& source);
    void gatherVariant(const InstallationGroup& group, const VariantDetails& variant);
    [[nodiscard]] std::optional<LineArray> sourceBlock(const VariantDetails& variant);
    void fit(LineArray& block, const InstallationGroup& group, const Wanted& wanted) const;
    void work(Wanted& wanted);
    [[nodiscard]] bool willHave(const QString& path) const;
    [[nodiscard]] QByteArray normalized(const CAddon_Item& item);

    const CAddonInstallationDetails& m_details;
    Context& m_context;
    qint64 m_masterKey;
    std::vector<Wanted> m_wanted;
    QHash<NoCase, size_t> m_byFile;
    QSet<NoCase> m_places;                    ///< folders and files that the add-on brings
    QHash<qint32, QList<LineArray>> m_blocks; ///< sections of the add-on's texts, by item
    QList<NewVariation> m_others;             ///< titles that the add-on itself brings
};

Gatherer::Wanted& Gatherer::wantedFor(const QString& file)
{
    const auto known = m_byFile.constFind(NoCase{file});
    if (known != m_byFile.cend())
        return m_wanted[*known];
    m_byFile.insert(NoCase{file}, m_wanted.size());
    Wanted& wanted = m_wanted.emplace_back();
    wanted.edit.file = file;
    wanted.edit.aircraft = winpath::parent(file);
    const ResultOf<QByteArray> standing =
        m_context.services.files.read(file, qMin(sourceLimit, configFileLimit));
    if (standing)
        wanted.before = *standing;
    else
        wanted.edit.problem =
            u"'"_s + file + u"' cannot be read, so no variation is added to it."_s;
    return wanted;
}

bool Gatherer::willHave(const QString& path) const
{
    return m_places.contains(NoCase{path}) || m_context.services.files.exists(path);
}

QByteArray Gatherer::normalized(const CAddon_Item& item)
{
    const ResultOf<QByteArray> bytes = m_details.source().read(item, sourceLimit);
    if (!bytes)
        return {};
    if (!m_context.settings.flag(SettingKey::RepairConfigurationLineEnds))
        return *bytes;
    const ResultOf<NormalizedConfig> normal = normalizeConfig(*bytes, m_context.services.ansi);
    return normal ? normal->bytes : *bytes;
}

void Gatherer::gatherItems()
{
    const QString* last = nullptr;
    for (const CAddon_Item& item : m_details.addon().colAddonItems()) {
        if (item.sFolder_Installation.isEmpty() || !m_details.willBeInstalled(item))
            continue;
        if (!last || last->constData() != item.sFolder_Installation.constData()) {
            last = &item.sFolder_Installation;
            for (QString folder = *last; folder.size() > 3; folder = winpath::parent(folder)) {
                if (m_places.contains(NoCase{folder}))
                    break;
                m_places.insert(NoCase{folder});
            }
        }
        if (equalNoCase(winpath::extension(item.sName_Installation), u"air"))
            m_places.insert(NoCase{item.sFolder_Installation + item.sName_Installation});
    }
    for (const CAddon_Item& item : m_details.addon().colAddonItems()) {
        if (typeGroupOf(item.enumAddonFileType) != TypeGroup::AircraftConfiguration ||
            item.sFolder_Installation.isEmpty() || !m_details.willBeInstalled(item))
            continue;
        const QString file = item.sFolder_Installation + item.sName_Installation;
        const bool merged = m_details.mergesInto(item);
        const QByteArray source = normalized(item);
        Wanted& wanted = wantedFor(file);
        wanted.edit.item = item.lngKey;
        wanted.edit.merged = merged;
        wanted.edit.problem.clear();
        if (merged) {
            gatherMerged(wanted, source);
            continue;
        }
        if (m_details.replacesOwn(item)) {
            gatherRebuilt(wanted, source);
            continue;
        }
        wanted.before = source;
        const ResultOf<QList<LineArray>> blocks = aircraftsections::blocksIn(
            source, m_context.services.ansi, aircraftsections::Source::Configuration);
        for (const LineArray& block : blocks ? *blocks : QList<LineArray>()) {
            const QString section = ini::INI_Section_GetFirst(block).value_or(QString());
            const QString title = entryOf(block, section, u"title"_s);
            wanted.edit.ownSections.append(section);
            if (!title.isEmpty() && m_details.catalogue().titleIsUsed(title, file, QString()))
                wanted.edit.remarks.append(
                    u"The title '"_s + title + u"' in '"_s + file +
                    u"' is used by another aircraft already; the simulator shows only one of the two."_s);
            m_others.append({title, {}, u"'"_s + title + u"' of this add-on"_s});
        }
    }
}

/// The sections of an add-on's whole aircraft.cfg that the standing file does not have yet.
void Gatherer::gatherMerged(Wanted& wanted, const QByteArray& source)
{
    const AnsiCodec& ansi = m_context.services.ansi;
    const profile::ProfileFile standing = profile::ProfileFile::ofBytes(wanted.before, ansi);
    QSet<NoCase> titles;
    for (const QString& section : standing.sections())
        titles.insert(
            NoCase{configfacts::plainValue(QStringView(standing.value(section, u"title", u"").text))
                       .toString()});
    const ResultOf<QList<LineArray>> blocks =
        aircraftsections::blocksIn(source, ansi, aircraftsections::Source::Configuration);
    if (!blocks) {
        wanted.edit.problem = blocks.error().text;
        return;
    }
    for (const LineArray& block : *blocks) {
        const QString section = ini::INI_Section_GetFirst(block).value_or(QString());
        CTextureGroup group;
        group.sTitle = entryOf(block, section, u"title"_s);
        if (group.sTitle.isEmpty() || titles.contains(NoCase{group.sTitle}))
            continue;
        group.sarraySectionLines = block;
        group.sVariation = entryOf(block, section, u"ui_variation"_s);
        group.sDescription = u"'"_s + group.sTitle + u"' of this add-on"_s;
        wanted.groups.append(group);
    }
}

/// The add-on's own file as it came, with the sections that were added to it since: those of other
/// add-ons and of the user.
void Gatherer::gatherRebuilt(Wanted& wanted, const QByteArray& source)
{
    const AnsiCodec& ansi = m_context.services.ansi;
    LineArray lines = LineArray::ofBytes(source, ansi);
    const LineArray standing = LineArray::ofBytes(wanted.before, ansi);
    QHash<NoCase, QString> own; // section by title
    int next = 0;
    for (const QString& section : ini::INI_Sections_GetNames(lines)) {
        const int number = configfacts::aircraftSectionNumber(section);
        if (number < 0)
            continue;
        next = qMax(next, number + 1);
        own.insert(NoCase{entryOf(lines, section, u"title"_s)}, section);
    }
    QList<LineArray> others;
    for (const QString& section : ini::INI_Sections_GetNames(standing)) {
        const bool shown = configfacts::aircraftSectionNumber(section) >= 0;
        if (!shown && configfacts::hiddenSectionNumber(section) < 0)
            continue;
        QString name = own.value(NoCase{entryOf(standing, section, u"title"_s)});
        std::optional<LineArray> block = aircraftsections::ownLines(standing, section);
        if (name.isEmpty() && block) {
            name = shown ? u"fltsim."_s + QString::number(next++) : section;
            block->lines[0] = '[' + name.toLatin1() + ']';
            others.append(*block);
        }
        if (!equalNoCase(name, section))
            wanted.edit.renamed.append({section, name});
    }
    aircraftsections::append(lines, others);
    wanted.edit.rebuilt = true;
    wanted.before = lines.joined();
    if (!wanted.before.endsWith("\r\n"))
        wanted.before += "\r\n";
}

void Gatherer::gatherRepaints()
{
    for (const InstallationGroup& group : m_details.groups(MappedGroup::Texture)) {
        if (!group.asRepaint() || group.variants.isEmpty() || group.aircraftFolder.isEmpty())
            continue;
        const bool any = std::any_of(group.items.cbegin(), group.items.cend(), [&](qint32 key) {
            const CAddon_Item* item = m_details.addon().Search(key);
            return item && m_details.willBeInstalled(*item);
        });
        if (!any && !group.recorded)
            continue;
        for (const VariantDetails& variant : group.variants) {
            if (!m_details.hasVariation(group, variant))
                gatherVariant(group, variant);
        }
    }
}

std::optional<LineArray> Gatherer::sourceBlock(const VariantDetails& variant)
{
    if (!variant.lines.isEmpty()) {
        LineArray block(m_context.services.ansi);
        return block.append(variant.lines) ? std::optional<LineArray>(block) : std::nullopt;
    }
    const CAddon_Item* item = m_details.addon().Search(variant.sourceItem);
    if (variant.sourceSection.isEmpty() || !item)
        return std::nullopt;
    auto blocks = m_blocks.constFind(item->lngKey);
    if (blocks == m_blocks.cend()) {
        const bool whole = typeGroupOf(item->enumAddonFileType) == TypeGroup::AircraftConfiguration;
        const ResultOf<QByteArray> bytes = m_details.source().read(*item, sourceLimit);
        QList<LineArray> found;
        if (bytes) {
            ResultOf<QList<LineArray>> in = aircraftsections::blocksIn(
                *bytes,
                m_context.services.ansi,
                whole ? aircraftsections::Source::Configuration : aircraftsections::Source::Prose);
            if (in)
                found = *in;
        }
        blocks = m_blocks.insert(item->lngKey, found);
    }
    // Several sections may bear one name ("[fltsim.X]"): then the title tells them apart.
    const LineArray* best = nullptr;
    for (const LineArray& block : *blocks) {
        const QString section = ini::INI_Section_GetFirst(block).value_or(QString());
        if (!equalNoCase(section, variant.sourceSection))
            continue;
        if (equalNoCase(entryOf(block, section, u"title"_s), variant.title))
            return block;
        if (!best)
            best = &block;
    }
    return best ? std::optional<LineArray>(*best) : std::nullopt;
}

/// A section that came with a repaint was written for its maker's copy of the aircraft: what it
/// names has to be there. Folders that were given another name are followed; for those that neither
/// the aircraft nor the add-on has, and for a flight model that is not there, the aircraft's own
/// take their place.
void Gatherer::fit(LineArray& block, const InstallationGroup& group, const Wanted& wanted) const
{
    const QString section = ini::INI_Section_GetFirst(block).value_or(QString());
    const LineArray base = LineArray::ofBytes(wanted.before, m_context.services.ansi);
    const QString own = firstAircraftSection(base);
    const auto set = [&](const QString& key, const QString& value) {
        if (entryOf(block, section, key) != value)
            (void)ini::INI_Entry_Update(block, section, key, value); // an aircraft's own value fits
    };
    for (const QString& stem : {u"model"_s, u"panel"_s, u"sound"_s}) {
        const QString value = entryOf(block, section, stem).replace(u'/', u'\\');
        const auto part =
            std::find_if(group.parts.cbegin(), group.parts.cend(), [&](const AircraftPart& one) {
                const QString name = winpath::name(one.sourceFolder);
                return configfacts::isPartFolder(name, stem) &&
                       equalNoCase(configfacts::partSuffix(name), value);
            });
        if (part != group.parts.cend())
            set(stem, configfacts::partSuffix(part->name));
        else if (!willHave(CAircraft::folderFor(wanted.edit.aircraft, stem, value)))
            set(stem, entryOf(base, own, stem));
    }
    const QString sim = entryOf(block, section, u"sim"_s);
    const QString ownSim = entryOf(base, own, u"sim"_s);
    if (!ownSim.isEmpty() && (sim.isEmpty() || !willHave(wanted.edit.aircraft + sim + u".air"_s)))
        set(u"sim"_s, ownSim);
}

void Gatherer::gatherVariant(const InstallationGroup& group, const VariantDetails& variant)
{
    Wanted& wanted = wantedFor(group.aircraftFolder + u"aircraft.cfg"_s);
    CTextureGroup added;
    added.sarraySectionLines = sourceBlock(variant);
    if (added.sarraySectionLines)
        fit(*added.sarraySectionLines, group, wanted);
    added.sTitle = variant.title;
    added.sVariation = variant.variation;
    added.sTexture = variant.texture;
    added.sDescription = u"'"_s + variant.title + u"' of this add-on"_s;
    if (!added.sarraySectionLines) {
        for (const AircraftPart& part : group.parts) {
            const QString suffix = configfacts::partSuffix(part.name);
            if (configfacts::isPartFolder(part.name, u"panel"))
                added.sPanel = suffix;
            else if (configfacts::isPartFolder(part.name, u"sound"))
                added.sSound = suffix;
        }
    }
    wanted.groups.append(added);
}

void Gatherer::work(Wanted& wanted)
{
    AircraftEdit& edit = wanted.edit;
    wanted.told = wanted.groups;
    for (CTextureGroup& group : wanted.groups)
        group.lngAddonMasterKey = m_masterKey;
    const auto tell = [&edit](const QList<CTextureGroup>& groups) {
        for (const CTextureGroup& group : groups)
            edit.added.append(
                {group.sTitle, group.sVariation, group.sTexture.value_or(QString()), {}});
    };
    if (!edit.problem.isEmpty()) {
        tell(wanted.groups);
        return;
    }
    const AnsiCodec& ansi = m_context.services.ansi;
    WithOneFile sight(m_context.services.actions, edit.file, wanted.before);
    CAircraft aircraft(ConfigAccess(sight, m_context.services.prompts, ansi));
    aircraft.sConfigurationFile = edit.file;
    const LineArray before = LineArray::ofBytes(wanted.before, ansi);
    aircraft.sSection = firstAircraftSection(before);
    CAircraft::VariantSwitches switches;
    switches.write = false;
    switches.nameChecks.installed = &m_details.catalogue();
    switches.nameChecks.others = &m_others;
    const ResultOf<CAircraft::VariantsChanged> changed =
        aircraft.Variant_Add(wanted.groups, switches, m_context.global);
    if (!changed) {
        edit.problem = changed.error().text;
        tell(wanted.told);
        return;
    }
    edit.renamed += changed->renamed;
    edit.bytes = aircraft.sarrayINILines.joined();
    if (!edit.bytes.endsWith("\r\n"))
        edit.bytes += "\r\n";
    edit.lines = lineChanges(before, aircraft.sarrayINILines);
    for (qsizetype i = 0; i < wanted.groups.size(); ++i) {
        const CTextureGroup& group = wanted.groups.at(i);
        const QString section = changed->sections.at(i);
        const QString texture =
            group.sTexture.value_or(entryOf(aircraft.sarrayINILines, section, u"texture"_s));
        edit.added.append({group.sTitle, group.sVariation, texture, section});
        m_others.append({group.sTitle, group.sVariation, group.sDescription});
        const QString& wish = wanted.told.at(i).sTitle;
        if (!equalNoCase(group.sTitle, wish))
            edit.remarks.append(u"The title '"_s + wish +
                                u"' is used by another aircraft; the new variation is called '"_s +
                                group.sTitle + u"'."_s);
    }
}

QList<AircraftEdit> Gatherer::run()
{
    gatherItems();
    gatherRepaints();
    QList<AircraftEdit> out;
    for (Wanted& wanted : m_wanted) {
        if (wanted.groups.isEmpty())
            wanted.edit.bytes = wanted.before;
        else
            work(wanted);
        out.append(std::move(wanted.edit));
    }
    return out;
}

} // namespace

bool hasAircraftSections(const QString& file, Context& context)
{
    if (!context.services.files.isFile(file))
        return false;
    const profile::ProfileFile standing =
        profile::ProfileFile::load(context.services.files, file, context.services.ansi);
    const QStringList sections = standing.sections();
    return std::any_of(sections.cbegin(), sections.cend(), [](const QString& section) {
        return configfacts::aircraftSectionNumber(section) >= 0;
    });
}

bool isMerged(const CAddon_Item& item, Context& context)
{
    return typeGroupOf(item.enumAddonFileType) == TypeGroup::AircraftConfiguration &&
           hasAircraftSections(item.sFolder_Installation + item.sName_Installation, context);
}

QList<AircraftEdit>
aircraftEdits(const CAddonInstallationDetails& details, Context& context, qint64 masterKey)
{
    return Gatherer(details, context, masterKey).run();
}

} // namespace vt
