#include "remove/RemovalPreview.h"

#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "addondb/Originals.h"
#include "catalogue/UsedFiles.h"
#include "remove/CAddonRemover.h"

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// What is known of the files of one add-on.
class Foresight
{
public:
    Foresight(const Context& context,
              Connection& database,
              const RemovalOptions& options,
              const AddonRecord& addon)
        : m_context(context), m_database(database), m_options(options), m_addon(addon)
    {}

    Result load(const Catalogue& catalogue);
    [[nodiscard]] QList<PreviewedFile> files() const;

private:
    [[nodiscard]] PreviewedFile fileOf(const DetailRecord& detail) const;
    [[nodiscard]] PreviewedFile installedFile(const DetailRecord& detail) const;
    [[nodiscard]] QString goingText() const;
    [[nodiscard]] QString nameOf(const DetailRecord& other) const;

    const Context& m_context;
    Connection& m_database;
    const RemovalOptions& m_options;
    const AddonRecord& m_addon;
    QList<DetailRecord> m_details; ///< those that are to go
    QHash<qint64, OriginalRecord> m_originals;
    originals::Sharers m_sharers;
    std::optional<UsedFiles> m_used;
};

Result Foresight::load(const Catalogue& catalogue)
{
    const auto details = modDatabase_Addon::detailsOf(m_database, m_addon.key);
    const auto kept = modDatabase_Addon::originalsOf(m_database, m_addon.key);
    if (!details || !kept)
        return Result::failure(u"Could not open the addon details table."_s);
    const auto sharers = originals::Sharers::load(m_database, *details);
    if (!sharers)
        return sharers.error();
    m_sharers = *sharers;
    for (const OriginalRecord& original : *kept)
        m_originals.insert(original.detailKey, original);
    QSet<NoCase> wanted;
    for (const QString& path : m_options.files)
        wanted.insert(NoCase{path});
    QSet<NoCase> going;
    QStringList asked;
    for (const DetailRecord& detail : *details) {
        const QString path = detail.location + detail.name;
        if (!wanted.isEmpty() && !wanted.contains(NoCase{path}))
            continue;
        m_details.append(detail);
        going.insert(NoCase{path});
        if (mayBeUsed(m_context.global, path))
            asked.append(path);
    }
    if (!asked.isEmpty())
        m_used.emplace(catalogue, going, asked);
    return Result::success();
}

QString Foresight::nameOf(const DetailRecord& other) const
{
    const auto addon = modDatabase_Addon::addon(m_database, other.masterKey);
    return u"'"_s + (addon ? addon->name : QString::number(other.masterKey)) + u'\'';
}

QString Foresight::goingText() const
{
    switch (m_options.method) {
    case RemovalMethod::FileCabinet:
        return u"moves to the File Cabinet"_s;
    case RemovalMethod::Recreate:
        return u"moves"_s;
    case RemovalMethod::Copy:
        return u"is copied"_s;
    default:
        return u"goes"_s;
    }
}

PreviewedFile Foresight::fileOf(const DetailRecord& detail) const
{
    const QString path = detail.location + detail.name;
    if (m_options.method == RemovalMethod::RemoveRecords)
        return {path, RemovalFate::Stays, u"stays; only its record goes"_s};
    if (m_addon.status == InstallationStatus::FileCabinet)
        return {path, RemovalFate::Goes, goingText() + u", out of the File Cabinet"_s};
    return installedFile(detail);
}

/// By the rules that CAddonRemover and originals::release() go by.
PreviewedFile Foresight::installedFile(const DetailRecord& detail) const
{
    PreviewedFile file{detail.location + detail.name, RemovalFate::Goes, goingText()};
    const bool lies = m_context.services.files.entry(file.path).has_value();
    const auto kept = m_originals.constFind(detail.key);
    const auto original = kept == m_originals.cend() ? std::nullopt : std::optional(*kept);
    if (lies && !original && m_used && m_used->isUsed(file.path)) {
        file.fate = RemovalFate::Stays;
        file.text = u"stays: installed aircraft, panels or sounds use it"_s;
        return file;
    }
    const QList<DetailRecord> sharers = m_sharers.at(file.path);
    switch (originals::fateOf(detail, original, sharers)) {
    case originals::Fate::Stays:
        file.fate = RemovalFate::Stays;
        file.text = u"stays: "_s + nameOf(sharers.constLast()) + u" has it too"_s;
        break;
    case originals::Fate::Restored:
        file.fate = RemovalFate::ComesBack;
        file.text += sharers.isEmpty() ? u", and the file that it had replaced comes back"_s
                                       : u", and the version of "_s + nameOf(sharers.constLast()) +
                                             u" comes back"_s;
        break;
    case originals::Fate::Deleted:
        if (lies)
            break;
        file.fate = RemovalFate::Missing;
        file.text = u"is missing already; its record goes"_s;
    }
    return file;
}

QList<PreviewedFile> Foresight::files() const
{
    QList<PreviewedFile> all;
    all.reserve(m_details.size());
    for (const DetailRecord& detail : m_details)
        all.append(fileOf(detail));
    return all;
}

} // namespace

qsizetype RemovalPreview::count(RemovalFate fate) const
{
    return std::count_if(files.begin(), files.end(), [fate](const PreviewedFile& file) {
        return file.fate == fate;
    });
}

ResultOf<RemovalPreview> previewRemoval(const Context& context,
                                        Connection& database,
                                        const Catalogue& catalogue,
                                        qint64 masterKey,
                                        const RemovalOptions& options)
{
    const ResultOf<AddonRecord> addon = modDatabase_Addon::addon(database, masterKey);
    if (!addon)
        return addon.error();
    RemovalPreview preview;
    preview.addon = *addon;
    QString target;
    if (options.method == RemovalMethod::FileCabinet)
        target = FileCabinet(context.services, context.global).archiveFor(addon->name, masterKey);
    else if (options.method == RemovalMethod::Recreate || options.method == RemovalMethod::Copy)
        target = recreateTarget(context.services.files, *addon, options);
    preview.action = removalActionText(options.method, target);
    Foresight foresight(context, database, options, preview.addon);
    if (Result loaded = foresight.load(catalogue); !loaded)
        return loaded;
    preview.files = foresight.files();
    return preview;
}

} // namespace vt
