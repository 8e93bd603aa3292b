// Preparing: source, name, analysis. Given answers are in _Options, decisions in _Modify, checks in
// _Validate, what a plan tells in _Facts.
#include "install/CAddonInstallationDetails.h"

#include "catalogue/Catalogue.h"
#include "install/Analysis.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 descriptionLimit = 64 << 10;

} // namespace

namespace plantext {

QString notSelected()
{
    return u"*** Not Selected ***"_s;
}

QString sameFolderAsItem()
{
    return u"Same target folder as item"_s;
}

QString installWord(bool install)
{
    return install ? u"Install"_s : u"Do not install"_s;
}

} // namespace plantext

CAddonInstallationDetails::CAddonInstallationDetails(Context& context)
    : m_context(context), m_addon(std::make_unique<CAddon_ItemGroup>())
{}

CAddonInstallationDetails::~CAddonInstallationDetails() = default;

QStringList CAddonInstallationDetails::passwords() const
{
    return m_source ? m_source->passwords() : QStringList();
}

Result CAddonInstallationDetails::prepare(const QString& sourcePath, const InstallOptions& options)
{
    m_context.services.status.text(u"Primary"_s, u"Analyzing addon..."_s);
    m_context.services.files.newOperation();
    m_recorded.reset();
    m_completes = false;
    m_recordedRows.clear();
    m_missingFiles.clear();
    m_recordedVariations.clear();
    m_standingVariations.clear();
    return propose(sourcePath, options);
}

Result CAddonInstallationDetails::propose(const QString& sourcePath, const InstallOptions& options)
{
    m_options = options;
    m_options.to = options.to.value_or(Options_AddonInstallationMethod_Default_Get());
    if (Result resolved = resolveOptionFolders(); !resolved)
        return resolved;
    auto source = AddonSource::open(m_context.services, sourcePath, passwords());
    if (!source)
        return source.error();
    m_source = std::move(*source);
    if (!m_options.archiveSourceFolder.isEmpty() && m_source->path().endsWith(u'\\'))
        return Result::failure(
            u"Only a source archive can be archived, and '"_s + m_source->path() +
                u"' is a folder. Leave that option out, or have the source files deleted."_s,
            ErrorKind::Usage);
    if (!m_options.archiveSourceFolder.isEmpty() && m_options.deleteSource)
        return Result::failure(
            u"The source can be archived or deleted after the installation, not both."_s,
            ErrorKind::Usage);
    if (m_source->files() == 0) {
        return Result::failure(u"The add-on '"_s + m_source->path() +
                                   u"' holds no files, so there is nothing to install."_s,
                               ErrorKind::Surroundings);
    }
    AddonItemGroup_AnalyzeForWizard();
    return applyOptions();
}

std::unique_ptr<CAddonInstallationDetails> CAddonInstallationDetails::Clone() const
{
    auto copy = std::make_unique<CAddonInstallationDetails>(m_context);
    copy->sVariantDataFilename = sVariantDataFilename;
    copy->m_source = m_source;
    copy->m_catalogue = m_catalogue;
    copy->m_addon = m_addon->Clone();
    copy->m_options = m_options;
    copy->m_storageFolder = m_storageFolder;
    copy->m_remarks = m_remarks;
    copy->m_recorded = m_recorded;
    copy->m_missingFiles = m_missingFiles;
    copy->m_completes = m_completes;
    copy->m_recordedRows = m_recordedRows;
    copy->m_recordedVariations = m_recordedVariations;
    copy->m_standingVariations = m_standingVariations;
    copy->m_leftOut = m_leftOut;
    copy->m_followers = m_followers;
    copy->m_simulatorFolders = m_simulatorFolders;
    std::copy(std::begin(m_groups), std::end(m_groups), std::begin(copy->m_groups));
    std::copy(std::begin(m_analysed), std::end(m_analysed), std::begin(copy->m_analysed));
    return copy;
}

Catalogue& CAddonInstallationDetails::catalogue() const
{
    if (!m_catalogue) {
        m_catalogue = std::make_shared<Catalogue>(m_context.global);
        m_catalogue->open(m_context.services);
    }
    return *m_catalogue;
}

Result CAddonInstallationDetails::saveCatalogue() const
{
    return m_catalogue ? m_catalogue->save(m_context.services) : Result::success();
}

const std::vector<InstallationGroup>& CAddonInstallationDetails::groups(MappedGroup family) const
{
    return m_groups[size_t(family)];
}

std::vector<InstallationGroup>& CAddonInstallationDetails::groups(MappedGroup family)
{
    return m_groups[size_t(family)];
}

void CAddonInstallationDetails::AddonItemGroup_AnalyzeForWizard()
{
    m_remarks.clear();
    m_leftOut.clear();
    m_followers.clear();
    m_simulatorFolders.clear();
    for (std::vector<InstallationGroup>& family : m_groups)
        family.clear();
    AddonItemGroup_Create();
    nameAddon();
    AddonItemGroup_MapItemsToGroups();
    AddonItemGroup_InstallationGroups_Create();
    std::copy(std::begin(m_groups), std::end(m_groups), std::begin(m_analysed));
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (!item.boolProcess)
            m_leftOut.insert(item.lngKey);
    }
    Texture_ChainDefaultGroupAircraftFolders();
    applyDefaultMethods();
}

void CAddonInstallationDetails::AddonItemGroup_Create()
{
    m_addon = std::make_unique<CAddon_ItemGroup>();
    m_source->fill(*m_addon);
    m_addon->AnalyzeTypes(m_context.global.generation);
    QList<qint32> fileIds;
    QList<qint32> documents;
    const bool warnAboutPrograms = m_context.settings.flag(SettingKey::WarnAboutProgramFiles);
    for (const CAddon_Item& item : m_addon->colAddonItems()) {
        if (warnAboutPrograms && item.enumAddonFileType == FileType::Other &&
            endsWithNoCase(item.sName, u".exe"))
            addRemark(
                item.lngKey,
                u"If the executable file is an installation program, use it to install the addon. After installation, use Vantrel to import the aircraft, panel, sound or scenery."_s,
                false);
        if (item.enumAddonFileType != FileType::Document)
            continue;
        if (equalNoCase(item.sName, u"file_id.diz"))
            fileIds.append(item.lngKey);
        if (endsWithNoCase(item.sName, u".txt") || endsWithNoCase(item.sName, u".diz"))
            documents.append(item.lngKey);
    }
    m_addon->Array_lngarrayFILE_IDAddonItemKeys_Set(fileIds);
    m_addon->Array_lngarrayDocumentationTextFiles_AddonItemKeys_Set(documents);
    for (const QString& remark : m_source->remarks())
        addRemark(0, remark, false);
}

QString CAddonInstallationDetails::fileIdText() const
{
    // The one nearest to the top speaks for the whole.
    const CAddon_Item* best = nullptr;
    qsizetype bestDepth = 0;
    for (const qint32 key : m_addon->Array_lngarrayFILE_IDAddonItemKeys_Get()) {
        const CAddon_Item* item = m_addon->Search(key);
        const qsizetype depth = item->sFolder_Current.count(u'\\');
        if (!best || depth < bestDepth) {
            best = item;
            bestDepth = depth;
        }
    }
    if (!best)
        return {};
    const auto bytes = m_source->read(*best, descriptionLimit);
    return bytes ? decodedText(*bytes, m_context.services.ansi).trimmed() : QString();
}

void CAddonInstallationDetails::nameAddon()
{
    Settings& settings = m_context.settings;
    const QString fileId = fileIdText();
    QString name;
    if (settings.flag(SettingKey::NameAddonUsingFileIdDiz)) {
        for (const QString& line : fileId.split(u'\n')) {
            name = line.simplified();
            if (std::any_of(
                    name.cbegin(), name.cend(), [](QChar c) { return c.isLetterOrNumber(); }))
                break;
            name.clear();
        }
    }
    if (name.isEmpty())
        name = m_source->plainName().simplified();
    m_addon->sGroupName = m_options.name.value_or(name).trimmed();
    m_addon->sGroupDescription = m_options.description.value_or(
        settings.flag(SettingKey::DescribeAddonUsingFileIdDiz) ? fileId : QString());
    m_addon->sAuthors = m_options.authors.value_or(QString());
    m_addon->lngRating = m_options.rating.value_or(0);
    if (m_completes)
        recordedStorageFolder();
    else
        chooseStorageFolder();
}

void CAddonInstallationDetails::chooseStorageFolder()
{
    QString safe = winpath::safeName(m_addon->sGroupName);
    if (safe.isEmpty())
        safe = u"Addon"_s;
    const QString& addons = m_context.global.addonsFolder;
    m_storageFolder = addons + safe + u'\\';
    for (int number = 2; m_context.services.files.exists(winpath::withoutTrailing(m_storageFolder));
         ++number)
        m_storageFolder = addons + safe + u' ' + QString::number(number) + u'\\';
}

void CAddonInstallationDetails::AddonItemGroup_MapItemsToGroups()
{
    Analysis(*this).run();
}

void CAddonInstallationDetails::AddonItemGroup_InstallationGroups_Create()
{
    // Documents speak for a folder only when nothing else in it does, so they come first.
    for (const bool documents : {true, false}) {
        const CAddon_Item* last = nullptr;
        for (const CAddon_Item& item : m_addon->colAddonItems()) {
            if (!item.boolProcess || item.IsMappedToDocumentGroup() != documents)
                continue;
            if (last && last->sFolder_Current.constData() == item.sFolder_Current.constData())
                continue;
            last = &item;
            m_addon->AddonItemZipFolderEntryMappingTable_Update(item.sFolder_Current,
                                                                item.sFolder_Installation);
        }
    }
}

void CAddonInstallationDetails::Texture_ChainDefaultGroupAircraftFolders()
{
    const std::vector<InstallationGroup>& aircraft = groups(MappedGroup::Aircraft);
    if (aircraft.empty())
        return;
    std::vector<InstallationGroup>& textures = groups(MappedGroup::Texture);
    for (size_t i = 0; i < textures.size(); ++i) {
        if (textures[i].asRepaint() && textures[i].aircraftFolder.isEmpty() &&
            !textures[i].baseMissing)
            (void)changeAircraft(int(i), aircraft.front().targetFolder);
    }
}

void CAddonInstallationDetails::AddonItems_UpdateTargetExists()
{
    const Files& files = m_context.services.files;

    // Most targets lie in folders that are new, and then nothing below has to be looked for.
    struct Known
    {
        bool exists = false;
        QSet<NoCase> names;
        QSet<NoCase> folders;
    };

    QHash<QString, Known> folders;
    QString lastText;
    const Known* last = nullptr;
    for (CAddon_Item& item : m_addon->colAddonItems_Edit()) {
        item.boolTargetExists = false;
        item.boolTargetIsFolder = false;
        if (item.sFolder_Installation.isEmpty())
            continue;
        if (!last || lastText.constData() != item.sFolder_Installation.constData()) {
            lastText = item.sFolder_Installation;
            auto found = folders.constFind(lastText);
            if (found == folders.constEnd()) {
                Known known;
                known.exists = files.isFolder(lastText);
                if (known.exists) {
                    for (const auto& [name, isFolder] : files.namesAndKinds(lastText))
                        (isFolder ? known.folders : known.names).insert(NoCase{name});
                }
                found = folders.insert(lastText, known);
            }
            last = &*found;
        }
        item.boolTargetExists =
            last->exists && last->names.contains(NoCase{item.sName_Installation});
        item.boolTargetIsFolder =
            last->exists && last->folders.contains(NoCase{item.sName_Installation});
    }
}

void CAddonInstallationDetails::addRemark(qint32 item, const QString& text, bool blocks)
{
    m_remarks.append({item, text, blocks});
}

} // namespace vt
