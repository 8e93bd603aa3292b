// Installing into the File Cabinet instead of the simulator, and what a reinstallation takes out of
// it. The archive holds the files under the places that they would have in the simulator, so it is
// the same as that of an add-on that was moved there.
#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "install/AircraftEdits.h"
#include "install/CAddonInstaller.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"
#include "simconfig/AddonVariations.h"

using namespace Qt::StringLiterals;

namespace vt {

/// Decides for every file; none of them exists in an archive that is new.
void CAddonInstaller::gatherForCabinet()
{
    for (const CAddon_Item& item : m_details.addon().colAddonItems()) {
        if (!item.boolProcess)
            continue;
        File file;
        file.item = &item;
        if (!item.boolExtractable)
            file.code = InstallCode::NotExtracted;
        m_files.push_back(std::move(file));
    }
}

Result CAddonInstaller::Install_AddToCabinetZip()
{
    FileCabinet cabinet(m_context.services, m_context.global);
    m_archive = cabinet.archiveFor(m_record.name, m_record.key);
    std::vector<CabinetFile> files;
    for (File& file : m_files) {
        const CAddon_Item& item = *file.item;
        InstallFiles_Initialize(file);
        m_log.fileBegin(item.sName_Installation, sourceTextOf(item), m_archive);
        const ResultOf<Content> content = m_details.source().content(item);
        if (file.code == InstallCode::Installed && content) {
            files.push_back({placeOf(item), {}, *content});
        } else {
            file.code = InstallCode::NotExtracted;
            file.cause = content ? m_details.source().readable(item).text : content.text;
            m_log.line(QString(u"   "_s + file.cause));
        }
        m_log.fileEnd();
    }
    if (files.empty())
        return Result::success(); // told as nothing installed
    if (const QByteArray data = storedVariantData(); !data.isEmpty()) {
        files.push_back({m_details.storageFolder() + m_details.sVariantDataFilename,
                         {},
                         Content::ofBytes(data)});
        m_variantData = Fingerprint{};
    }
    const int level = int(m_context.settings.number(SettingKey::ZipCompressionLevel));
    Result put = cabinet.put(*m_actions, m_archive, files, level);
    if (!put) {
        m_results.add(resultgroup::failedSpecialActions,
                      u"An error occurred adding files to the File Cabinet."_s);
        m_results.addCause(m_archive, put.text);
        return Result::failure(u"An error occurred adding files to the File Cabinet. "_s +
                                   put.text + u" Nothing was installed."_s,
                               put.kind);
    }
    return Result::success();
}

/// The variations that a later installation makes, as that one finds them.
QByteArray CAddonInstaller::storedVariantData() const
{
    const auto there = m_details.Clone();
    there->Options_InstallationDetails_ModifyInstallationMethod(InstallTo::Simulator);
    QList<addonvariations::Variation> variations;
    for (const AircraftEdit& edit : aircraftEdits(*there, m_context, m_record.key)) {
        const LineArray lines = LineArray::ofBytes(edit.bytes, m_context.services.ansi);
        for (const AddedVariation& added : edit.added) {
            if (!edit.merged)
                variations.append({edit.file,
                                   added.section,
                                   added.title,
                                   added.texture,
                                   addonvariations::linesOf(lines, added.section)});
        }
    }
    return addonvariations::dataFile(variations, m_context.services.ansi);
}

/// Where the item is, or is to be, in the simulator.
QString CAddonInstaller::placeOf(const CAddon_Item& item) const
{
    return m_details.simulatorFolderOf(item) + item.sName_Installation;
}

/// An archive that could not be put into its place leaves nothing that the records could tell.
Result CAddonInstaller::forgetStored(const QString& why)
{
    using namespace modDatabase_Addon;
    m_results.add(resultgroup::failedSpecialActions,
                  u"An error occurred adding files to the File Cabinet."_s);
    m_results.addCause(m_archive, why);
    const qint64 key = m_record.key;
    for (auto* forget :
         {&deleteDetailsOf, &deleteSceneryAreasOf, &deleteDescription, &deleteMaster}) {
        if (Result gone = forget(m_database, key); !gone)
            m_context.errors.report(u"Private Sub Install_AddToCabinetZip"_s, gone.text);
    }
    (void)deleteHistory(m_database, key, m_record.dateInstalled);
    (void)deleteHistoryDescription(m_database, key, m_record.dateInstalled);
    return Result::failure(u"An error occurred adding files to the File Cabinet. "_s +
                           textAbout(m_archive, why));
}

/// What came out of the File Cabinet is in the simulator now, each file in its place: only then it
/// leaves the archive, in an operation of its own.
void CAddonInstaller::Cabinet_TakeOut()
{
    FileCabinet cabinet(m_context.services, m_context.global);
    QStringList paths;
    for (const File& file : m_files) {
        if (file.code == InstallCode::Installed)
            paths.append(targetOf(*file.item));
    }
    if (m_variantData)
        paths.append(m_details.storageFolder() + m_details.sVariantDataFilename);
    m_actions = std::make_unique<FileTransaction>(m_context.services.gate, *m_journal);
    Result taken = m_actions->begin(OperationKind::Configuration, m_record.name);
    if (taken)
        taken = cabinet.takeOut(*m_actions, m_details.source().path(), paths);
    if (taken) {
        const auto applied = m_actions->apply({}, [] { return Result::success(); });
        taken = applied && applied->isEmpty()
                    ? Result::success()
                    : Result::failure(applied ? applied->first().text : applied.text);
    }
    if (!taken) // a file in two places is in nobody's way
        m_results.add(resultgroup::specialActions,
                      m_details.source().path(),
                      u" still holds the files: "_s + taken.text);
}

} // namespace vt
