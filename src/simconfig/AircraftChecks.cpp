#include "simconfig/AircraftChecks.h"

#include "platform/WinPath.h"
#include "simconfig/AliasTarget.h"
#include "simconfig/CAircraft.h"
#include "simconfig/CModel.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

/// No effects file comes near this.
constexpr qint64 effectFileLimit = 1 << 20;
constexpr qsizetype effectValueBuffer = 1024;
/// Characters of configuration files that are held at the same time.
constexpr qsizetype heldLimit = 20 << 20;

QString listedBelow(const QString& line, const QStringList& names)
{
    return line + u"\n\t"_s + names.join(u"\n\t"_s);
}

} // namespace

AircraftChecks::AircraftChecks(const ConfigAccess& configAccess,
                               const Files& disk,
                               const GlobalRecord& globalRecord)
    : access(configAccess), files(disk), global(globalRecord)
{}

void AircraftChecks::forget()
{
    m_configurations.remove(m_file);
    m_models.clear();
    m_listings.clear();
}

// --- aircraft.cfg ------------------------------------------------------------------------------

const AircraftChecks::Configuration& AircraftChecks::configuration(const QString& file)
{
    if (m_file != file) {
        m_file = file;
        m_models.clear();
        m_listings.clear();
    }
    const auto known = m_configurations.constFind(file);
    if (known != m_configurations.cend())
        return *known;
    const Configuration made = read(file);
    m_held += made.profile.text().size();
    if (m_held > heldLimit) {
        m_configurations.clear();
        m_held = made.profile.text().size();
    }
    return *m_configurations.insert(file, made);
}

AircraftChecks::Configuration AircraftChecks::read(const QString& file)
{
    Configuration configuration;
    const ResultOf<QByteArray> bytes = ini::File_ReadAllText(access.actions, file);
    configuration.exists = bytes.ok();
    if (!bytes)
        return configuration;
    configuration.profile = profile::ProfileFile::ofBytes(*bytes, access.ansi);
    configuration.sections =
        CAircraft::Headers_ReturnOnlyAircraftHeaders(configuration.profile.sections());
    configuration.orderProblem =
        CAircraft::sectionOrder(configuration.sections).problem(simulatorName());
    configuration.formProblem =
        formProblem(*bytes, normalizeConfig(*bytes, access.ansi), u"aircraft"_s);
    configuration.effectProblems = effectProblems(configuration.profile);
    return configuration;
}

// --- folders -----------------------------------------------------------------------------------

const AircraftChecks::Listing& AircraftChecks::listing(const QString& folder)
{
    const NoCase key{winpath::asFolder(folder)};
    const bool shared = !winpath::isBelow(key.text, winpath::parent(m_file));
    QHash<NoCase, Listing>& cache = shared ? m_shared : m_listings;
    const auto known = cache.constFind(key);
    if (known != cache.cend())
        return *known;
    const Listing made = listed(key.text);
    return *cache.insert(key, made);
}

/// What the aircraft's own folder lists saves a look at the disk for each of its parts.
AircraftChecks::Listing AircraftChecks::listed(const QString& folder)
{
    Listing made;
    made.folder = folder;
    const QString above = winpath::parent(winpath::withoutTrailing(folder));
    if (winpath::isBelow(above, winpath::parent(m_file))) {
        const Listing& around = listing(above);
        const auto name = around.names.constFind(NoCase{winpath::name(folder)});
        if (name == around.names.cend())
            return {};
        made.folder = around.folder + name->text + u'\\';
    }
    const QStringList names = files.names(made.folder);
    made.names.reserve(names.size());
    for (const QString& name : names)
        made.names.insert(NoCase{name});
    if (names.isEmpty() && !files.isFolder(made.folder))
        return {};
    return made;
}

/// The path as on the disk where the folder's listing knows it.
QString AircraftChecks::spelled(const QString& file)
{
    const Listing& around = listing(winpath::parent(file));
    const auto name = around.names.constFind(NoCase{winpath::name(file)});
    return name == around.names.cend() ? file : around.folder + name->text;
}

bool AircraftChecks::isFile(const QString& path)
{
    return listing(winpath::parent(path)).names.contains(NoCase{winpath::name(path)});
}

bool AircraftChecks::isFolder(const QString& folder)
{
    return !listing(folder).folder.isEmpty();
}

QStringList AircraftChecks::names(const QString& folder)
{
    QStringList names;
    for (const NoCase& name : listing(folder).names)
        names.append(name.text);
    std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
        return compareNoCase(a, b) < 0;
    });
    return names;
}

bool AircraftChecks::hasTextures(const QString& folder)
{
    const auto anyIn = [this](const QString& place) {
        const Names& names = listing(place).names;
        return std::any_of(names.cbegin(), names.cend(), [](const NoCase& name) {
            return configfacts::isRealTexture(name.text);
        });
    };
    if (anyIn(folder))
        return true;
    const QString configuration = spelled(winpath::join(folder, u"texture.cfg"));
    if (!isFile(configuration))
        return false;
    const profile::ProfileFile file = ini::profileOf(access.actions, access.ansi, configuration);
    const QStringList keys = file.keys(u"fltsim");
    return std::any_of(keys.cbegin(), keys.cend(), [&](const QString& key) {
        const QString value = file.value(u"fltsim", key, {}).text;
        if (!startsWithNoCase(key, u"fallback") || value.isEmpty() || winpath::isAbsolute(value))
            return false;
        const QString target = winpath::normalised(winpath::join(folder, value));
        const auto holdsAircraft = [&](const QString& top) {
            return winpath::isBelow(target, top);
        };
        return std::any_of(global.aircraftTypeFolders.cbegin(),
                           global.aircraftTypeFolders.cend(),
                           holdsAircraft) &&
               anyIn(target);
    });
}

// --- model -------------------------------------------------------------------------------------

const QStringList& AircraftChecks::modelProblems(const QString& modelConfigurationFile)
{
    const NoCase key{modelConfigurationFile};
    const auto known = m_models.constFind(key);
    if (known != m_models.cend())
        return *known;
    const QStringList problems = problemsOfModel(modelConfigurationFile);
    return *m_models.insert(key, problems);
}

QStringList AircraftChecks::problemsOfModel(const QString& file)
{
    CModel model(access);
    if (!isFile(file) || !model.Load(spelled(file)))
        return {u"- The aircraft's model configuration file does not exist. The file '"_s + file +
                u"' was not found."_s};
    if (model.sModelEntry_Normal.isEmpty() && model.sAlias.isEmpty())
        return {
            u"- The aircraft's model configuration file does not specify a normal model file nor does it alias another model configuration file."_s};
    QStringList problems;
    const QString shape = model.ModelFilename_Normal_Get();
    if (!shape.isEmpty() && !isFile(shape))
        problems.append(
            u"- The aircraft's model configuration file specifies a model file that does not exist. The file '"_s +
            shape + u"' was not found."_s);
    if (!model.sAlias.isEmpty() &&
        !aliastarget::resolve(files, global, model.sAlias, aliastarget::Kind::Model).exists)
        problems.append(
            u"- The aircraft's model configuration file refers to another model configuration file but the referenced model configuration file does not exist."_s);
    return problems;
}

// --- effects -----------------------------------------------------------------------------------

QStringList AircraftChecks::effectsIn(const profile::ProfileFile& file)
{
    QStringList effects;
    QSet<NoCase> met;
    for (const QString& section : {u"LIGHTS"_s, u"EFFECTS"_s, u"SMOKESYSTEM"_s}) {
        for (const QString& key : file.keys(section)) {
            const profile::Read value = file.value(section, key, {}, effectValueBuffer);
            const QString effect = configfacts::effectOf(section, value.text).toString();
            if (effect.isEmpty() || met.contains(NoCase{effect}))
                continue;
            met.insert(NoCase{effect});
            effects.append(effect);
        }
    }
    return effects;
}

QString AircraftChecks::effectFile(const GlobalRecord& global, const QString& effect)
{
    return global.effectsFolder + effect + u".fx"_s;
}

QStringList AircraftChecks::texturesIn(const ConfigAccess& access, const QString& effectFile)
{
    const ResultOf<QByteArray> bytes = access.actions.read(effectFile, effectFileLimit);
    return bytes ? configfacts::effectTexturesOf(*bytes, access.ansi) : QStringList();
}

QStringList AircraftChecks::missingEffectTextures(const QString& effect)
{
    const NoCase key{effect};
    const auto known = m_effectTextures.constFind(key);
    if (known != m_effectTextures.cend())
        return *known;
    QStringList missing;
    for (const QString& texture : texturesIn(access, effectFile(global, effect))) {
        // The simulator takes a picture in its newer form for one named in the older.
        const QString newer = winpath::parent(texture) + winpath::baseName(texture) + u".dds"_s;
        const auto liesIn = [&](const QString& folder) {
            return isFile(winpath::join(folder, texture)) || isFile(winpath::join(folder, newer));
        };
        if (!liesIn(global.effectsFolder + u"Texture\\"_s) && !liesIn(global.textureFolder))
            missing.append(texture);
    }
    m_effectTextures.insert(key, missing);
    return missing;
}

QStringList AircraftChecks::effectProblems(const profile::ProfileFile& file)
{
    QStringList effects;
    QStringList textures;
    for (const QString& effect : effectsIn(file)) {
        if (!isFile(effectFile(global, effect))) {
            effects.append(effect + u".fx"_s);
            continue;
        }
        for (const QString& texture : missingEffectTextures(effect))
            textures.append(texture + u" (used by "_s + effect + u".fx)"_s);
    }
    QStringList problems;
    if (!effects.isEmpty())
        problems.append(listedBelow(
            u"- One or more effects files specified in the aircraft configuration file are missing:"_s,
            effects));
    if (!textures.isEmpty())
        problems.append(listedBelow(
            u"- One or more texture files specified by an effects file are missing:"_s, textures));
    return problems;
}

} // namespace vt
