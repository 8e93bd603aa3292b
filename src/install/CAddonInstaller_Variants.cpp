// What an installation does to aircraft.cfg files: the sections of repaints, those that come to an
// aircraft that is installed already, and what is recorded of them.
#include "addondb/AddonDatabase.h"
#include "addondb/ConfigBases.h"
#include "addondb/Originals.h"
#include "install/AircraftEdits.h"
#include "install/CAddonInstaller.h"
#include "platform/Hash.h"
#include "platform/WinPath.h"
#include "simconfig/AddonVariations.h"
#include "simconfig/CAircraft.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The file as \a actions has it, staged or standing.
ResultOf<Fingerprint> printOf(FileActions& actions, const QString& file)
{
    const ResultOf<QByteArray> bytes = actions.read(file, configFileLimit);
    if (!bytes)
        return bytes.error();
    const auto info = actions.info(file);
    return Fingerprint{bytes->size(), info ? info->modifiedNs : -1, xxh3(*bytes)};
}

} // namespace

const AircraftEdit* CAddonInstaller::editOf(const CAddon_Item& item) const
{
    for (const AircraftEdit& edit : m_aircraftEdits) {
        if (edit.item == item.lngKey)
            return &edit;
    }
    return nullptr;
}

Result CAddonInstaller::AircraftVariants_Create()
{
    const bool any = std::any_of(m_aircraftEdits.cbegin(),
                                 m_aircraftEdits.cend(),
                                 [](const AircraftEdit& edit) { return !edit.added.isEmpty(); });
    if (!any && !variantDataIsLost())
        return Result::success();
    if (m_cancelled) {
        for (AircraftEdit& edit : m_aircraftEdits)
            edit.problem = u"The installation was ended before."_s;
        return Result::success();
    }
    m_log.line(u"Create aircraft variants...begin.");
    Result last = Result::success();
    for (AircraftEdit& edit : m_aircraftEdits) {
        if (edit.added.isEmpty() || !edit.problem.isEmpty())
            continue;
        Result written = Result::success();
        if (!edit.item) {
            written = writeAircraftEdit(edit);
        } else {
            const bool installed =
                std::any_of(m_files.cbegin(), m_files.cend(), [&](const File& f) {
                    return f.item->lngKey == edit.item && f.code == InstallCode::Installed;
                });
            if (!installed)
                written = Result::failure(u"Its file '"_s + edit.file + u"' was not installed."_s);
        }
        if (!written) {
            edit.problem = written.text;
            m_log.line(QString(u"   "_s + written.text));
            last = written;
        }
    }
    if (Result written = writeVariantData(); !written)
        last = written;
    m_log.line(u"Create aircraft variants...end.");
    return last;
}

Result CAddonInstaller::writeAircraftEdit(const AircraftEdit& edit)
{
    Services& services = m_context.services;
    ResultOf<ConfigBaseRecord> base =
        configbases::beforeEdit(m_database, services.gate, *m_actions, m_context.global, edit.file);
    if (!base)
        return base.error();
    CAircraft aircraft(ConfigAccess(*m_actions, services.prompts, services.ansi));
    aircraft.sConfigurationFile = edit.file;
    if (!aircraft.INILines_Load(false))
        return Result::failure(u"Could not read '"_s + edit.file + u"'."_s);
    aircraft.sarrayINILines = LineArray::ofBytes(edit.bytes, services.ansi);
    if (Result saved = aircraft.Save(); !saved)
        return saved;
    if (Result moved = aircraft.AircraftMasterSourceTextFile_Reorder_ProcessPictures(
            edit.renamed, m_context.global);
        !moved)
        m_log.line(QString(u"   "_s + moved.text));
    if (Result noted = noteOwner(edit.file); !noted)
        return noted;
    m_closing.configBasesBefore.push_back(*base);
    if (Result noted = configbases::afterEdit(*m_actions, edit.file, *base); !noted)
        return noted;
    m_configBases.push_back(*base);
    return Result::success();
}

/// A file that an add-on recorded is still that add-on's after our edit, unless the user had
/// changed it before.
Result CAddonInstaller::noteOwner(const QString& file)
{
    const ResultOf<QList<DetailRecord>> owners =
        modDatabase_Addon::ownersOf(m_database, winpath::parent(file), winpath::name(file));
    if (!owners)
        return owners.error();
    if (owners->isEmpty())
        return Result::success();
    const qint64 top = owners->constLast().key;
    const auto check = modDatabase_Addon::checkOf(m_database, top);
    const auto standing = m_context.services.files.info(file);
    if (!check || !standing ||
        !originals::isRecorded(m_context.services.files, file, *standing, *check))
        return Result::success();
    const ResultOf<Fingerprint> print = printOf(*m_actions, file);
    if (!print)
        return print.error();
    m_newChecks.append({top, *print});
    if (const ResultOf<Place> place = m_context.services.gate.place(file))
        m_closing.checksBefore.append({*place, top, *check});
    return Result::success();
}

/// Whether the data file of an add-on that is installed again is not what was recorded.
bool CAddonInstaller::variantDataIsLost() const
{
    if (!m_details.inPlace())
        return false;
    for (const DetailRecord& row : m_details.recorded()->files) {
        if (!equalNoCase(row.filename, m_details.sVariantDataFilename))
            continue;
        const QString path = row.location + row.name;
        const auto entry = m_context.services.files.entry(path);
        return !entry || !originals::isRecorded(m_context.services.files,
                                                path,
                                                *entry,
                                                m_details.recorded()->checks.value(row.key));
    }
    return false;
}

Result CAddonInstaller::writeVariantData()
{
    QList<addonvariations::Variation> variations;
    for (const AircraftEdit& edit : std::as_const(m_aircraftEdits)) {
        if (!edit.problem.isEmpty())
            continue;
        const LineArray lines = LineArray::ofBytes(edit.bytes, m_context.services.ansi);
        for (const AddedVariation& added : edit.added) {
            variations.append({edit.file,
                               added.section,
                               added.title,
                               added.texture,
                               addonvariations::linesOf(lines, added.section)});
        }
    }
    if (variations.isEmpty() && m_details.inPlace() && !variantDataIsLost())
        return Result::success(); // the one that lies there tells them still
    for (const addonvariations::Variation& before : m_details.recordedVariations()) {
        const bool again = std::any_of(
            variations.cbegin(), variations.cend(), [&](const addonvariations::Variation& one) {
                return equalNoCase(one.title, before.title) && winpath::same(one.file, before.file);
            });
        if (!again)
            variations.append(before);
    }
    const QByteArray bytes = addonvariations::dataFile(variations, m_context.services.ansi);
    if (bytes.isEmpty())
        return Result::success();
    m_log.line(u"Installing master control data file...");
    const QString file = m_details.storageFolder() + m_details.sVariantDataFilename;
    const ResultOf<Fingerprint> placed = m_actions->place(file, Content::ofBytes(bytes));
    if (!placed) {
        m_log.line(QString(u"ERROR: could not create '"_s + file + u'\''));
        return placed.error();
    }
    m_variantData = *placed;
    return Result::success();
}

/// Rows of the aircraft's sections, and the new state of recorded files.
Result CAddonInstaller::recordAircraft()
{
    Services& services = m_context.services;
    for (const AircraftEdit& edit : std::as_const(m_aircraftEdits)) {
        if (!edit.problem.isEmpty())
            continue;
        CAircraft::VariantsChanged changed;
        if (edit.item && !edit.merged)
            changed.sections = edit.ownSections;
        for (const AddedVariation& variation : edit.added)
            changed.sections.append(variation.section);
        changed.renamed = edit.renamed;
        CAircraft aircraft(ConfigAccess(*m_actions, services.prompts, services.ansi));
        aircraft.sConfigurationFile = edit.file;
        if (Result written = aircraft.Variant_Add_UpdateDatabase(m_database, changed); !written)
            return written;
    }
    for (const auto& [detail, print] : std::as_const(m_newChecks)) {
        if (Result written = modDatabase_Addon::setCheck(m_database, detail, print); !written)
            return written;
    }
    return Result::success();
}

void CAddonInstaller::tellVariants()
{
    for (const AircraftEdit& edit : std::as_const(m_aircraftEdits)) {
        const QString aircraft = winpath::name(edit.aircraft);
        for (const AddedVariation& variation : edit.added) {
            const QString start = u"Aircraft variant '"_s + variation.title + u"' was "_s;
            if (edit.problem.isEmpty()) {
                m_results.add(resultgroup::specialActions,
                              start + u"created for "_s + aircraft + u'.');
                continue;
            }
            m_results.add(resultgroup::failedSpecialActions,
                          start + u"NOT "_s + u"created for "_s + aircraft + u'.');
            ++m_failedFiles;
        }
        if (!edit.added.isEmpty() && !edit.problem.isEmpty())
            m_results.addCause(edit.file, edit.problem);
        for (const QString& remark : edit.remarks)
            m_results.add(resultgroup::specialActions, remark);
    }
}

} // namespace vt
