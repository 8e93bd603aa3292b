// Per aircraft: one look at its folder, one at each configuration file known from before. Only a
// folder that changed is listed again.
#include "catalogue/CatalogueScan.h"

#include "catalogue/ConfigParser.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"

#include <QSet>

#include <algorithm>
#include <array>
#include <span>
#include <unordered_map>

using namespace Qt::StringLiterals;

namespace vt::catalogue {

namespace {

QByteArray diskName(QStringView name)
{
    QByteArray out(name.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (name[i].unicode() >= 0x80)
            return name.toUtf8();
        out[i] = char(name[i].unicode());
    }
    return out;
}

/// A part of an aircraft's folder: folders whose names begin alike, the file that is looked for.
struct Part
{
    ConfigKind kind;
    QStringView stem;
    std::array<const char*, 3> usual; ///< spellings that are tried before the folder is listed
};

enum PartIndex
{
    PanelPart,
    SoundPart,
    ModelPart,
    SoundAiPart,
    PartCount,
};

constexpr std::array<Part, PartCount> parts = {{
    {ConfigKind::Panel, u"panel", {"panel.cfg", "Panel.cfg", "PANEL.CFG"}},
    {ConfigKind::Sound, u"sound", {"sound.cfg", "Sound.cfg", "SOUND.CFG"}},
    {ConfigKind::Model, u"model", {"model.cfg", "Model.cfg", "MODEL.CFG"}},
    {ConfigKind::Sound, u"soundai", {"soundai.cfg", "SoundAI.cfg", "SOUNDAI.CFG"}},
}};

/// PartCount for a folder that is none.
PartIndex partOf(QStringView folder)
{
    if (equalNoCase(folder, parts[SoundAiPart].stem))
        return SoundAiPart;
    for (const PartIndex part : {PanelPart, SoundPart, ModelPart}) {
        if (startsWithNoCase(folder, parts[part].stem))
            return part;
    }
    return PartCount;
}

int compareNames(const QByteArray& a, const QByteArray& b)
{
    const auto ascii = [](const QByteArray& name) {
        return std::none_of(name.begin(), name.end(), [](char c) { return quint8(c) >= 0x80; });
    };
    return ascii(a) && ascii(b) ? qstricmp(a.constData(), b.constData())
                                : compareNoCase(QString::fromUtf8(a), QString::fromUtf8(b));
}

/// Sorted without regard to case; of names that differ in case only, the first by bytes stays.
void sortNames(std::vector<FolderReader::Entry>& entries)
{
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        const int order = compareNames(a.name, b.name);
        return order != 0 ? order < 0 : a.name < b.name;
    });
    const auto same = [](const auto& a, const auto& b) {
        return a.folder == b.folder && compareNames(a.name, b.name) == 0;
    };
    entries.erase(std::unique(entries.begin(), entries.end(), same), entries.end());
}

class Scan
{
public:
    Scan(Store& store,
         const Files& files,
         const GlobalRecord& global,
         const AnsiCodec& ansi,
         qint64 nowNs)
        : m_store(store), m_files(files), m_global(global), m_parser(store, ansi), m_now(nowNs)
    {}

    ScanCounts run()
    {
        m_oldAreas.swap(m_store.areas);
        m_oldFolders.swap(m_store.folders);
        m_oldConfigs.swap(m_store.configs);
        m_foldersNow.resize(m_oldFolders.size());
        m_configsNow.resize(m_oldConfigs.size());
        m_store.folders.reserve(m_oldFolders.size());
        m_store.configs.reserve(m_oldConfigs.size());
        for (const QString& top : m_global.aircraftTypeFolders)
            area(top, false);
        area(m_global.effectsFolder, true);
        m_counts.changed = m_counts.changed || m_store.areas.size() != m_oldAreas.size() ||
                           m_store.folders.size() != m_oldFolders.size() ||
                           m_store.configs.size() != m_oldConfigs.size();
        return m_counts;
    }

private:
    using Configs = std::span<const ConfigRow>;

    [[nodiscard]] QStringView text(TextId id) const { return m_store.texts.text(id); }

    /// Most folders hold files of the same names.
    TextId textOf(const QByteArray& name)
    {
        TextId& id = m_names[name];
        if (id == 0)
            id = m_store.texts.append(QString::fromUtf8(name));
        return id;
    }

    void area(const QString& folder, bool effects);
    void areaFolders(const AreaRow* old);
    void lookAt(const std::vector<const FolderRow*>& known);
    void aircraftFolder(const QByteArray& name, const FolderRow* old);
    bool takeUnchanged(Configs old);
    void listAircraft(Configs old);
    void takeEffects(const FolderRow* old);

    void takePart(PartIndex index, const QByteArray& folder, Configs old);
    void takeNested(PartIndex part, TextId value, Configs old);
    void watch(const QByteArray& folder, const DiskStamp& stamp);
    bool takeFile(ConfigKind kind, const QByteArray& name, Configs old);
    void keep(const ConfigRow& known);
    bool readFile(ConfigKind kind, const QByteArray& name, TextId known);

    [[nodiscard]] bool settled(const DiskStamp& stamp) const { return stamp.settledAt(m_now); }

    [[nodiscard]] const FolderReader::Found& nowOf(const FolderRow& old) const
    {
        return m_foldersNow[size_t(&old - m_oldFolders.data())];
    }

    [[nodiscard]] const DiskStamp& nowOf(const ConfigRow& old) const
    {
        return m_configsNow[size_t(&old - m_oldConfigs.data())].stamp;
    }

    Configs configsOf(const FolderRow* old) const
    {
        return old ? Configs(m_oldConfigs.data() + old->firstConfig, old->configs) : Configs();
    }

    /// A path below the area, of what lies in the folder in hand.
    QByteArray inside(const QByteArray& name) const
    {
        if (m_folder.isEmpty() || name.isEmpty())
            return m_folder.isEmpty() ? name : m_folder;
        return m_folder + '\\' + name;
    }

    Store& m_store;
    const Files& m_files;
    const GlobalRecord& m_global;
    ConfigParser m_parser;
    ScanCounts m_counts;
    std::vector<AreaRow> m_oldAreas;
    std::vector<FolderRow> m_oldFolders;
    std::vector<ConfigRow> m_oldConfigs;
    std::vector<FolderReader::Found> m_foldersNow; ///< of the old rows; of settled ones only
    std::vector<FolderReader::Found> m_configsNow;
    FolderReader* m_reader = nullptr; ///< of the area in hand
    QByteArray m_folder;              ///< the folder in hand, below the area
    std::unordered_map<QByteArray, TextId> m_names;
    QSet<QString> m_nested; ///< folders below it that values named
    std::array<size_t, PartCount> m_lastUsual{};
    const qint64 m_now;
};

// --- areas and folders -------------------------------------------------------------------------

void Scan::area(const QString& folder, bool effects)
{
    const auto old = std::find_if(m_oldAreas.begin(), m_oldAreas.end(), [&](const AreaRow& row) {
        return text(row.folder) == folder;
    });
    FolderReader reader(m_files, folder);
    if (!reader.valid())
        return;
    m_reader = &reader;
    AreaRow row;
    row.folder = old != m_oldAreas.end() ? old->folder : m_store.texts.append(folder);
    row.effects = effects;
    m_store.areas.push_back(row);
    areaFolders(old != m_oldAreas.end() ? &*old : nullptr);
    m_reader = nullptr;
}

void Scan::areaFolders(const AreaRow* old)
{
    std::vector<const FolderRow*> known;
    for (const FolderRow& row : m_oldFolders) {
        if (old && row.area == quint32(old - m_oldAreas.data()))
            known.push_back(&row);
    }
    lookAt(known);
    AreaRow& area = m_store.areas.back();
    if (area.effects) {
        takeEffects(known.empty() ? nullptr : known.front());
        return;
    }
    area.stamp = m_reader->stamp({});
    area.settled = settled(area.stamp);
    if (old && old->settled && old->stamp == area.stamp) {
        for (const FolderRow* row : known)
            aircraftFolder(diskName(text(row->name)), row);
        return;
    }
    m_counts.changed = true;
    FolderReader::Listing listing = m_reader->list({});
    sortNames(listing.entries);
    std::unordered_map<QString, const FolderRow*> byName;
    for (const FolderRow* row : known)
        byName.emplace(text(row->name).toString(), row);
    for (const FolderReader::Entry& entry : listing.entries) {
        if (!entry.folder)
            continue;
        const auto found = byName.find(QString::fromUtf8(entry.name));
        aircraftFolder(entry.name, found != byName.end() ? found->second : nullptr);
    }
}

/// Asks the disk for the stamps of everything that was known, all at once.
void Scan::lookAt(const std::vector<const FolderRow*>& known)
{
    std::vector<QByteArray> names;
    std::vector<FolderReader::Wanted> wanted;
    std::vector<FolderReader::Found*> places;
    names.reserve(known.size());
    for (const FolderRow* row : known) {
        const QByteArray& name = names.emplace_back(diskName(text(row->name)));
        if (row->settled) {
            wanted.push_back({name, {}});
            places.push_back(&m_foldersNow[size_t(row - m_oldFolders.data())]);
        }
        for (const ConfigRow& config : configsOf(row)) {
            wanted.push_back({name, text(config.name)});
            places.push_back(&m_configsNow[size_t(&config - m_oldConfigs.data())]);
        }
    }
    const std::vector<FolderReader::Found> found = m_reader->stamps(wanted);
    for (size_t i = 0; i < found.size(); ++i)
        *places[i] = found[i];
}

void Scan::aircraftFolder(const QByteArray& name, const FolderRow* old)
{
    m_folder = name;
    FolderRow row;
    row.area = quint32(m_store.areas.size() - 1);
    row.name = old ? old->name : textOf(name);
    row.firstConfig = quint32(m_store.configs.size());
    m_store.folders.push_back(row);
    const Configs known = configsOf(old);
    bool same = false;
    if (old && old->settled) {
        row.stamp = nowOf(*old).stamp;
        if (!nowOf(*old).folder) {
            m_store.folders.pop_back();
            m_counts.changed = true;
            return;
        }
        row.settled = 1;
        same = row.stamp == old->stamp && takeUnchanged(known);
    }
    if (!same) {
        m_counts.changed = true;
        m_store.configs.resize(row.firstConfig);
        listAircraft(known);
        row = m_store.folders.back();
    }
    row.configs = quint32(m_store.configs.size()) - row.firstConfig;
    m_store.folders.back() = row;
}

/// The configuration files of a folder whose entries are those of before. False when one of them
/// makes another look at the entries necessary.
bool Scan::takeUnchanged(Configs old)
{
    for (const ConfigRow& known : old) {
        const DiskStamp& stamp = nowOf(known);
        const bool same = known.settled && stamp == known.stamp;
        if (!same && (!stamp.exists() || known.kind == ConfigKind::Aircraft ||
                      known.kind == ConfigKind::Watched))
            return false;
        if (same)
            keep(known);
        else if (!readFile(known.kind, diskName(text(known.name)), known.name))
            return false;
    }
    return true;
}

void Scan::listAircraft(Configs old)
{
    FolderReader::Listing listing = m_reader->list(m_folder);
    FolderRow& row = m_store.folders.back();
    row.stamp = listing.stamp;
    row.settled = settled(listing.stamp);
    sortNames(listing.entries);
    m_nested.clear();
    const size_t first = row.firstConfig;
    for (const FolderReader::Entry& entry : listing.entries) {
        // The second name is that of an aircraft which the simulator is not to show.
        if (!entry.folder && (qstricmp(entry.name.constData(), "aircraft.cfg") == 0 ||
                              qstricmp(entry.name.constData(), "hidden.cfg") == 0))
            takeFile(ConfigKind::Aircraft, entry.name, old);
    }
    for (const FolderReader::Entry& entry : listing.entries) {
        if (!entry.folder)
            continue;
        const PartIndex part = partOf(QString::fromUtf8(entry.name));
        if (part != PartCount)
            takePart(part, entry.name, old);
    }
    for (size_t i = first; i < m_store.configs.size(); ++i) {
        const ConfigRow aircraft = m_store.configs[i];
        if (aircraft.kind != ConfigKind::Aircraft)
            break;
        for (quint32 v = 0; v < aircraft.variations; ++v) {
            const VariationRow variation = m_store.variations[aircraft.firstVariation + v];
            takeNested(PanelPart, variation.panel, old);
            takeNested(SoundPart, variation.sound, old);
            takeNested(ModelPart, variation.model, old);
        }
    }
}

/// The effects folder is one row with a file for each effect.
void Scan::takeEffects(const FolderRow* old)
{
    m_folder.clear();
    FolderRow row;
    row.area = quint32(m_store.areas.size() - 1);
    row.firstConfig = quint32(m_store.configs.size());
    row.stamp = m_reader->stamp({});
    row.settled = settled(row.stamp);
    m_store.folders.push_back(row);
    const Configs known = configsOf(old);
    if (!old || !old->settled || row.stamp != old->stamp || !takeUnchanged(known)) {
        m_counts.changed = true;
        m_store.configs.resize(row.firstConfig);
        std::unordered_map<QByteArray, const ConfigRow*> byName;
        for (const ConfigRow& config : known)
            byName.emplace(diskName(text(config.name)), &config);
        FolderReader::Listing listing = m_reader->list({});
        sortNames(listing.entries);
        for (const FolderReader::Entry& entry : listing.entries) {
            if (entry.folder || !entry.name.toLower().endsWith(".fx"))
                continue;
            const auto found = byName.find(entry.name);
            takeFile(ConfigKind::Effect,
                     entry.name,
                     found != byName.end() ? Configs(found->second, 1) : Configs());
        }
    }
    m_store.folders.back().configs = quint32(m_store.configs.size()) - row.firstConfig;
}

// --- files -------------------------------------------------------------------------------------

/// The configuration file in \a folder, a path below the folder in hand.
void Scan::takePart(PartIndex index, const QByteArray& folder, Configs old)
{
    const Part& part = parts[index];
    for (const ConfigRow& known : old) {
        const QByteArray name = diskName(text(known.name));
        const bool file = known.kind == part.kind && name.startsWith(folder + '\\') &&
                          name.lastIndexOf('\\') == folder.size();
        if (file && takeFile(part.kind, name, Configs(&known, 1)))
            return;
    }
    // Where one is spelled "Panel.cfg", the next one is, too.
    size_t& last = m_lastUsual[index];
    for (size_t i = 0; i < part.usual.size(); ++i) {
        const size_t tried = (last + i) % part.usual.size();
        if (readFile(part.kind, folder + '\\' + part.usual[tried], 0)) {
            last = tried;
            return;
        }
    }
    const FolderReader::Listing listing = m_reader->list(inside(folder));
    for (const FolderReader::Entry& entry : listing.entries) {
        if (!entry.folder && qstricmp(entry.name.constData(), part.usual[0]) == 0 &&
            readFile(part.kind, folder + '\\' + entry.name, 0))
            return;
    }
    watch(folder, listing.stamp);
}

/// The folder that a value with separators names: "\\night" means "Panel\\night".
void Scan::takeNested(PartIndex part, TextId value, Configs old)
{
    if (!text(value).contains(u'\\') && !text(value).contains(u'/'))
        return;
    const QString wanted = winpath::withoutTrailing(
        CAircraft::folderFor(QString(), parts[part].stem.toString(), text(value).toString()));
    if (m_nested.contains(wanted) || !winpath::checkRelative(wanted))
        return;
    m_nested.insert(wanted);
    QByteArray folder;
    for (const QString& component : winpath::components(wanted)) {
        const FolderReader::Listing listing = m_reader->list(inside(folder));
        const auto found = std::find_if(
            listing.entries.begin(), listing.entries.end(), [&](const FolderReader::Entry& entry) {
                return entry.folder && equalNoCase(QString::fromUtf8(entry.name), component);
            });
        if (found == listing.entries.end()) {
            if (!folder.isEmpty())
                watch(folder, listing.stamp);
            return;
        }
        folder = folder.isEmpty() ? found->name : folder + '\\' + found->name;
    }
    if (folder.contains('\\'))
        takePart(part, folder, old);
}

/// A change of the folder makes another look at the folder in hand necessary.
void Scan::watch(const QByteArray& folder, const DiskStamp& stamp)
{
    ConfigRow& row = m_store.configs.emplace_back();
    row.folder = quint32(m_store.folders.size() - 1);
    row.kind = ConfigKind::Watched;
    row.name = textOf(folder);
    row.stamp = stamp;
    row.settled = settled(stamp);
}

/// False when no such file is there any more.
bool Scan::takeFile(ConfigKind kind, const QByteArray& name, Configs old)
{
    for (const ConfigRow& known : old) {
        if (known.kind != kind || diskName(text(known.name)) != name)
            continue;
        if (!known.settled || nowOf(known) != known.stamp)
            return readFile(kind, name, known.name);
        keep(known);
        return true;
    }
    return readFile(kind, name, 0);
}

void Scan::keep(const ConfigRow& known)
{
    ConfigRow& row = m_store.configs.emplace_back(known);
    row.folder = quint32(m_store.folders.size() - 1);
    ++m_counts.filesKept;
}

bool Scan::readFile(ConfigKind kind, const QByteArray& name, TextId known)
{
    const FolderReader::Read read = m_reader->read(inside(name), configLimit);
    if (!read.stamp.exists())
        return false;
    ConfigRow row;
    row.folder = quint32(m_store.folders.size() - 1);
    row.kind = kind;
    row.name = known != 0 ? known : textOf(name);
    row.stamp = read.stamp;
    row.settled = settled(read.stamp);
    if (read.problem.isEmpty()) {
        m_parser.parse(read.bytes, row);
    } else {
        row.firstVariation = quint32(m_store.variations.size());
        row.firstRef = quint32(m_store.refs.size());
        row.problem = m_store.texts.append(read.problem);
    }
    m_store.configs.push_back(row);
    ++m_counts.filesRead;
    m_counts.changed = true;
    return true;
}

} // namespace

ScanCounts scan(Store& store,
                const Files& files,
                const GlobalRecord& global,
                const AnsiCodec& ansi,
                qint64 nowNs)
{
    return Scan(store, files, global, ansi, nowNs).run();
}

} // namespace vt::catalogue
