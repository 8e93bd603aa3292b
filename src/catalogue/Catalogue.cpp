#include "catalogue/Catalogue.h"

#include "catalogue/CatalogueCache.h"
#include "platform/Gate.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AliasTarget.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

using catalogue::ConfigRow;
using catalogue::RefKind;
using catalogue::RefRow;
using catalogue::VariationRow;

namespace {

QString cacheFile(const GlobalRecord& global)
{
    return global.programFile(u"Catalogue.dat"_s);
}

catalogue::CacheKey cacheKey(const Services& services)
{
    return {services.gate.identity(RootId::Simulator), services.ansi.codePage()};
}

std::optional<aliastarget::Kind> aliasKind(catalogue::ConfigKind kind)
{
    switch (kind) {
    case catalogue::ConfigKind::Panel:
        return aliastarget::Kind::Panel;
    case catalogue::ConfigKind::Sound:
        return aliastarget::Kind::Sound;
    case catalogue::ConfigKind::Model:
        return aliastarget::Kind::Model;
    default:
        return std::nullopt;
    }
}

} // namespace

QString CatalogueVariation::shownManufacturer() const
{
    return manufacturer.isEmpty() ? u"Unknown Manufacturer"_s : manufacturer.toString();
}

QString CatalogueVariation::shownType() const
{
    return (type.isEmpty() ? (title.isEmpty() ? section : title) : type).toString();
}

QString CatalogueVariation::shownVariation() const
{
    return (variation.isEmpty() ? (title.isEmpty() ? section : title) : variation).toString();
}

// --- coming and going --------------------------------------------------------------------------

void Catalogue::open(Services& services)
{
    catalogue::loadCache(services.files, cacheFile(m_global), cacheKey(services), m_store);
    refresh(services.files, services.ansi);
}

catalogue::ScanCounts Catalogue::refresh(const Files& files, const AnsiCodec& ansi, qint64 nowNs)
{
    const catalogue::ScanCounts counts = catalogue::scan(m_store, files, m_global, ansi, nowNs);
    m_unsaved = m_unsaved || counts.changed;
    index();
    return counts;
}

Result Catalogue::save(Services& services)
{
    const catalogue::CacheKey key = cacheKey(services);
    if (!m_unsaved || key.simulator.isEmpty())
        return Result::success();
    Result saved = catalogue::saveCache(services.actions, cacheFile(m_global), key, m_store);
    m_unsaved = !saved.ok;
    return saved;
}

void Catalogue::index()
{
    m_byFile.reset();
    m_targets.reset();
    m_variations.clear();
    for (ConfigIndex config = 0; config < configCount(); ++config) {
        const ConfigRow& row = m_store.configs[config];
        for (quint32 i = 0; i < row.variations; ++i)
            m_variations.push_back({row.firstVariation + i, config});
    }
}

// --- what is there -----------------------------------------------------------------------------

CatalogueVariation Catalogue::variation(quint32 number) const
{
    const VariationPlace& place = m_variations[number];
    const VariationRow& row = m_store.variations[place.row];
    return {place.config,
            text(row.section),
            text(row.title),
            text(row.sim),
            text(row.model),
            text(row.panel),
            text(row.sound),
            text(row.texture),
            text(row.manufacturer),
            text(row.type),
            text(row.variation),
            text(row.typeRole),
            text(row.createdBy),
            qint64(row.addonKey),
            configfacts::hiddenSectionNumber(text(row.section)) >= 0 ||
                equalNoCase(text(m_store.configs[place.config].name), u"hidden.cfg")};
}

QString Catalogue::folder(ConfigIndex config) const
{
    const catalogue::FolderRow& row = folderRow(config);
    const QString area = text(m_store.areas[row.area].folder).toString();
    return row.name == 0 ? area : area + text(row.name).toString() + u'\\';
}

QString Catalogue::file(ConfigIndex config) const
{
    return folder(config) + text(m_store.configs[config].name).toString();
}

QList<ConfigIndex> Catalogue::configs(Kind kind) const
{
    QList<ConfigIndex> out;
    for (ConfigIndex config = 0; config < configCount(); ++config) {
        if (this->kind(config) == kind)
            out.push_back(config);
    }
    return out;
}

const QHash<NoCase, ConfigIndex>& Catalogue::byFile() const
{
    if (!m_byFile) {
        m_byFile.emplace();
        m_byFile->reserve(configCount());
        for (ConfigIndex config = 0; config < configCount(); ++config) {
            if (kind(config) != Kind::Watched)
                m_byFile->insert(NoCase{file(config)}, config);
        }
    }
    return *m_byFile;
}

std::optional<ConfigIndex> Catalogue::find(QStringView file) const
{
    const auto found = byFile().constFind(NoCase{file.toString()});
    return found != byFile().cend() ? std::optional(*found) : std::nullopt;
}

QList<quint32> Catalogue::variationsOf(ConfigIndex config) const
{
    const auto before = [](const VariationPlace& place, ConfigIndex wanted) {
        return place.config < wanted;
    };
    auto at = std::lower_bound(m_variations.begin(), m_variations.end(), config, before);
    QList<quint32> out;
    for (; at != m_variations.end() && at->config == config; ++at)
        out.push_back(quint32(at - m_variations.begin()));
    return out;
}

QStringView Catalogue::category(ConfigIndex config) const
{
    return text(m_store.configs[config].category);
}

QString Catalogue::label(ConfigIndex config) const
{
    const catalogue::FolderRow& row = folderRow(config);
    QString label = text(row.name).toString();
    // An aircraft's own file, where there is one, is its folder's first.
    if (const QList<quint32> own = variationsOf(row.firstConfig); !own.isEmpty()) {
        const CatalogueVariation first = variation(own.first());
        const bool repeated = startsWithNoCase(first.type, first.manufacturer);
        if (!first.manufacturer.isEmpty() && !first.type.isEmpty())
            label = repeated ? first.type.toString()
                             : first.manufacturer.toString() + u' ' + first.type.toString();
    }
    const QString name = text(m_store.configs[config].name).toString();
    const QString part = winpath::withoutTrailing(winpath::parent(name));
    if (label.isEmpty())
        return name;
    return part.isEmpty() ? label : label + u" ("_s + part + u')';
}

QList<ManufacturerGroup> Catalogue::grouped() const
{
    struct Shown
    {
        QString manufacturer;
        QString type;
        QString variation;
        quint32 number = 0;
    };

    std::vector<Shown> all;
    all.reserve(variationCount());
    for (quint32 number = 0; number < variationCount(); ++number) {
        const CatalogueVariation one = variation(number);
        all.push_back({one.shownManufacturer(), one.shownType(), one.shownVariation(), number});
    }
    std::stable_sort(all.begin(), all.end(), [](const Shown& a, const Shown& b) {
        int order = compareNoCase(a.manufacturer, b.manufacturer);
        order = order != 0 ? order : compareNoCase(a.type, b.type);
        return (order != 0 ? order : compareNoCase(a.variation, b.variation)) < 0;
    });
    QList<ManufacturerGroup> out;
    for (const Shown& one : all) {
        if (out.isEmpty() || !equalNoCase(out.last().manufacturer, one.manufacturer))
            out.push_back({one.manufacturer, {}});
        QList<AircraftTypeGroup>& types = out.last().types;
        if (types.isEmpty() || !equalNoCase(types.last().type, one.type))
            types.push_back({one.type, {}});
        types.last().variations.push_back(one.number);
    }
    return out;
}

QList<CatalogueProblem> Catalogue::problems() const
{
    QList<CatalogueProblem> out;
    for (ConfigIndex config = 0; config < configCount(); ++config) {
        const catalogue::TextId problem = m_store.configs[config].problem;
        if (problem == 0)
            continue;
        const QString path = file(config);
        out.push_back(
            {path, u"'"_s + path + u"' was not read in full: "_s + text(problem).toString()});
    }
    return out;
}

// --- titles ------------------------------------------------------------------------------------

bool Catalogue::isUsed(catalogue::TextId VariationRow::*member,
                       const QString& value,
                       const QString& exceptFile,
                       const QString& exceptSection) const
{
    const QStringView wanted = configfacts::plainValue(value);
    if (wanted.isEmpty())
        return false;
    for (const VariationPlace& place : m_variations) {
        const VariationRow& row = m_store.variations[place.row];
        if (!equalNoCase(text(row.*member), wanted))
            continue;
        const bool excepted = !exceptFile.isEmpty() &&
                              equalNoCase(text(row.section), exceptSection) &&
                              winpath::same(file(place.config), exceptFile);
        if (!excepted)
            return true;
    }
    return false;
}

bool Catalogue::titleIsUsed(const QString& title,
                            const QString& exceptFile,
                            const QString& exceptSection) const
{
    return isUsed(&VariationRow::title, title, exceptFile, exceptSection);
}

bool Catalogue::variationIsUsed(const QString& variation,
                                const QString& exceptFile,
                                const QString& exceptSection) const
{
    return isUsed(&VariationRow::variation, variation, exceptFile, exceptSection);
}

// --- references --------------------------------------------------------------------------------

QStringView Catalogue::alias(ConfigIndex config) const
{
    return text(m_store.configs[config].alias);
}

const QHash<ConfigIndex, ConfigIndex>& Catalogue::targets() const
{
    if (m_targets)
        return *m_targets;
    m_targets.emplace();
    for (ConfigIndex config = 0; config < configCount(); ++config) {
        const std::optional<aliastarget::Kind> wanted = aliasKind(kind(config));
        if (!wanted || alias(config).isEmpty())
            continue;
        for (const QString& candidate : aliastarget::candidates(m_global, alias(config), *wanted)) {
            if (const std::optional<ConfigIndex> target = find(candidate)) {
                m_targets->insert(config, *target);
                break;
            }
        }
    }
    return *m_targets;
}

std::optional<ConfigIndex> Catalogue::aliasTarget(ConfigIndex config) const
{
    const auto found = targets().constFind(config);
    return found != targets().cend() ? std::optional(*found) : std::nullopt;
}

QList<ConfigIndex> Catalogue::aliasesOf(ConfigIndex config) const
{
    QList<ConfigIndex> out;
    for (auto it = targets().cbegin(); it != targets().cend(); ++it) {
        if (it.value() == config)
            out.push_back(it.key());
    }
    std::sort(out.begin(), out.end());
    return out;
}

std::optional<ConfigIndex> Catalogue::configOf(quint32 number, Kind kind) const
{
    const CatalogueVariation own = variation(number);
    const QString top = folder(own.config);
    const auto at = [&](const QString& stem, QStringView value, aliastarget::Kind wanted) {
        const QString folder = CAircraft::folderFor(top, stem, value.toString());
        return find(winpath::normalised(folder + aliastarget::configFileName(wanted, folder)));
    };
    switch (kind) {
    case Kind::Panel:
        return at(u"Panel"_s, own.panel, aliastarget::Kind::Panel);
    case Kind::Sound:
        return at(u"Sound"_s, own.sound, aliastarget::Kind::Sound);
    case Kind::Model:
        return at(u"Model"_s, own.model, aliastarget::Kind::Model);
    default:
        return std::nullopt;
    }
}

QList<quint32> Catalogue::usersOf(ConfigIndex config) const
{
    // Everything that leads here; an alias may lead back to where it came from.
    QSet<ConfigIndex> leading = {config};
    QList<ConfigIndex> waiting = {config};
    while (!waiting.isEmpty()) {
        for (const ConfigIndex alias : aliasesOf(waiting.takeLast())) {
            if (!leading.contains(alias)) {
                leading.insert(alias);
                waiting.push_back(alias);
            }
        }
    }
    // The sound of an aircraft that the simulator flies itself is that of its whole folder.
    QSet<quint32> whole;
    for (const ConfigIndex one : leading) {
        if (endsWithNoCase(text(m_store.configs[one].name), u"soundai.cfg"))
            whole.insert(m_store.configs[one].folder);
    }
    QList<quint32> out;
    for (quint32 number = 0; number < variationCount(); ++number) {
        if (whole.contains(m_store.configs[m_variations[number].config].folder)) {
            out.push_back(number);
            continue;
        }
        const std::optional<ConfigIndex> used = configOf(number, kind(config));
        if (used && leading.contains(*used))
            out.push_back(number);
    }
    return out;
}

QList<Catalogue::Named> Catalogue::named(ConfigIndex config) const
{
    const ConfigRow& row = m_store.configs[config];
    QList<Named> out;
    out.reserve(row.refs);
    for (quint32 i = 0; i < row.refs; ++i) {
        const RefRow& ref = m_store.refs[row.firstRef + i];
        const QStringView name = text(ref.name);
        QString plain = ref.kind == RefKind::Wave     ? configfacts::waveOf(name)
                        : ref.kind == RefKind::Bitmap ? configfacts::bitmapOf(name)
                                                      : name.toString();
        if (!plain.isEmpty())
            out.push_back({ref.kind, std::move(plain)});
    }
    return out;
}

} // namespace vt
