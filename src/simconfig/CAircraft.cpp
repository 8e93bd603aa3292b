#include "simconfig/CAircraft.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/GlobalRecord.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr qsizetype valueBuffer = 255;
constexpr qsizetype freeTextBuffer = 65500;

QString profileValue(const profile::ProfileFile& file, const QString& section, const QString& key)
{
    return ini::INI_Profile_GetValue(file, section, key, QString(), valueBuffer).value;
}

} // namespace

CAircraft::CAircraft(ConfigAccess access) : sarrayINILines(access.ansi), m_access(access) {}

// --- loading -----------------------------------------------------------------------------------

bool CAircraft::Load(const QString& configurationFile, const QString& section, bool onlyTitle)
{
    m_error.clear();
    m_state = Good;
    sConfigurationFile = configurationFile;
    sSection = section;
    sarrayINILines.clear();
    m_protocol.reset();
    for (QString* value :
         {&sTitle, &sSIM, &sModel, &sPanel, &sSound, &sTexture, &sKB_Checklists, &sKB_Reference})
        value->clear();
    if (configurationFile.isEmpty() || section.isEmpty()) {
        m_state = NoTarget;
        return false;
    }
    if (!FileStamp::of(m_access.actions, configurationFile).exists()) {
        m_state = FileMissing;
        return false;
    }
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, configurationFile);
    sSIM = profileValue(file, section, u"sim"_s);
    if (sSIM.isEmpty()) {
        m_state = FileMissing;
        return false;
    }
    if (onlyTitle) {
        sTitle = profileValue(file, section, u"title"_s);
        return true;
    }
    readValues(file);
    deriveFiles([this](const QString& file) { return m_access.actions.info(file).has_value(); });
    return true;
}

void CAircraft::readValues(const profile::ProfileFile& file)
{
    const auto value = [&](const QString& key) { return profileValue(file, sSection, key); };
    sTitle = value(u"title"_s);
    sSIM = value(u"sim"_s);
    sModel = value(u"model"_s);
    sPanel = value(u"panel"_s);
    sSound = value(u"sound"_s);
    sTexture = value(u"texture"_s);
    sKB_Checklists = value(u"kb_checklists"_s);
    sKB_Reference = value(u"kb_reference"_s);
}

void CAircraft::deriveFiles(const Exists& exists)
{
    const QString folder = Folder_Aircraft_Get();
    sModelConfigurationFile = Folder_AircraftModel_Get() + u"Model.cfg"_s;
    sPanelConfigurationFile = Folder_AircraftPanel_Get() + u"Panel.cfg"_s;
    sSoundConfigurationFile = Folder_AircraftSound_Get() + u"Sound.cfg"_s;
    sKB_ChecklistFileAlt = kneeboardFile(sKB_Checklists, exists);
    sKB_ReferencelistFileAlt = kneeboardFile(sKB_Reference, exists);
    sNotesFile = folder + sSIM + u"_Notes"_s + u".txt"_s;
    sFlightDynamicsCDPFile = folder + sSIM + u".cdp"_s;
    sFlightDynamicsDPFile = folder + sSIM + u".dp"_s;
}

QString CAircraft::kneeboardFile(const QString& value, const Exists& exists) const
{
    if (value.isEmpty())
        return {};
    const QString stem = Folder_Aircraft_Get() + winpath::baseName(value);
    const QString page = stem + u".htm"_s;
    const QString text = stem + u".txt"_s;
    return !exists(page) && exists(text) ? text : page;
}

bool CAircraft::loaded()
{
    if (!sConfigurationFile.isEmpty() && !sSection.isEmpty())
        return true;
    m_state = NoTarget;
    return false;
}

bool CAircraft::LoadManufacturerDetails(int generation)
{
    if (!loaded())
        return false;
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile);
    const auto value = [&file](const QString& section, const QString& key) {
        return profileValue(file, section, key);
    };
    sManufacturer = value(sSection, u"ui_manufacturer"_s);
    sType = value(sSection, u"ui_type"_s);
    sVariation = value(sSection, u"ui_variation"_s);
    const bool later = generation != FS2004;
    sTypeRole = later ? value(sSection, u"ui_typerole"_s) : QString();
    sCreatedBy = later ? value(sSection, u"ui_createdby"_s) : QString();
    sCategory = later ? value(u"GENERAL"_s, u"Category"_s) : QString();
    return true;
}

bool CAircraft::LoadExtraInfo()
{
    if (!loaded())
        return false;
    const profile::ProfileFile file =
        ini::profileOf(m_access.actions, m_access.ansi, sConfigurationFile);
    // Free texts are escaped, so what looks like a comment in them is none.
    const auto value = [&](const QString& section, const QString& key, bool freeText) {
        const QString text =
            ini::INI_Profile_GetValue(file, section, key, QString(), freeTextBuffer, freeText)
                .value;
        return freeText ? PerformanceData_Translate(text, Performance::FileToDisplay) : text;
    };
    sDescription = value(sSection, u"description"_s, true);
    sATC_ID = value(sSection, u"atc_id"_s, false);
    sATC_Airline = value(sSection, u"atc_airline"_s, false);
    sATC_FlightNumber = value(sSection, u"atc_flight_number"_s, false);
    sPerformance = value(u"General"_s, u"performance"_s, true);
    return true;
}

bool CAircraft::LoadVTTextureAddonMasterKey()
{
    if (!loaded())
        return false;
    lngVTTextureAddonMasterKey = ini::INI_Profile_GetValue(m_access.actions,
                                                           m_access.ansi,
                                                           sSection,
                                                           u"vt_texture_addon_master_key"_s,
                                                           u"0"_s,
                                                           valueBuffer,
                                                           sConfigurationFile)
                                     .value.toLongLong();
    return true;
}

// --- sections ----------------------------------------------------------------------------------

QStringList CAircraft::Headers_LoadAll(const QString& configurationFile)
{
    m_error.clear();
    m_state = Good;
    QStringList names;
    if (configurationFile.isEmpty())
        m_state = NoTarget;
    else if (!FileStamp::of(m_access.actions, configurationFile).exists())
        m_state = FileMissing;
    else
        ini::INI_Profile_GetSectionNames(m_access.actions, m_access.ansi, configurationFile, names);
    if (m_state == Good && names.isEmpty())
        m_state = NoHeaders;
    return names;
}

QStringList CAircraft::Headers_ReturnOnlyAircraftHeaders(const QStringList& names)
{
    QStringList aircraft;
    std::copy_if(names.cbegin(),
                 names.cend(),
                 std::back_inserter(aircraft),
                 [](const QString& name) { return configfacts::aircraftSectionNumber(name) >= 0; });
    return aircraft;
}

bool CAircraft::IsHeaderSectionEmpty(const QString& section)
{
    LineArray lines(m_access.ansi);
    if (!ini::INI_File_Read(m_access.actions, sConfigurationFile, lines))
        return true;
    const std::optional<LineArray> own = ini::INI_Section_GetLines(lines, section);
    if (!own)
        return true;
    return std::none_of(own->lines.cbegin(), own->lines.cend(), [&](const QByteArray& line) {
        const auto entry =
            ini::INI_Line_SplitEntry(ini::INI_Line_StripComment(own->decoded(line)).data);
        return entry && !entry->value.isEmpty();
    });
}

CAircraft::SectionOrder CAircraft::sectionOrder(const QStringList& names)
{
    SectionOrder order;
    order.sorted = Headers_ReturnOnlyAircraftHeaders(names);
    std::stable_sort(
        order.sorted.begin(), order.sorted.end(), [](const QString& a, const QString& b) {
            return configfacts::aircraftSectionNumber(a) < configfacts::aircraftSectionNumber(b);
        });
    QStringList chain;
    order.good = !order.sorted.isEmpty();
    for (qsizetype i = 0; i < order.sorted.size(); ++i) {
        const QString& name = order.sorted.at(i);
        order.good = order.good && equalNoCase(name, configfacts::aircraftSectionName(i));
        chain.push_back(configfacts::aircraftSectionName(configfacts::aircraftSectionNumber(name)));
    }
    if (!order.good)
        order.chain = chain.join(u"->"_s);
    return order;
}

QString CAircraft::SectionOrder::problem(const QString& simulatorName) const
{
    if (good || sorted.isEmpty())
        return {};
    return u"- One or more aircraft sections are out of continuous order ("_s + chain +
           u"). The out of order aircraft sections will not appear in "_s + simulatorName + u'.';
}

// --- state -------------------------------------------------------------------------------------

QString CAircraft::State_GetMessage(int state)
{
    switch (state) {
    case Good:
        return {};
    case NoTarget:
        return u"No target aircraft was provided."_s;
    case FileMissing:
        return u"The aircraft configuration file does not exist."_s;
    case NoHeaders:
        return u"The aircraft configuration file does not define any header sections."_s;
    case NotUpdated:
        return u"Could not update the aircraft configuration file."_s;
    case NotRestored:
        return u"Error restoring backup configuration file."_s;
    default:
        return u"Unknown aircraft error. Error code = "_s + QString::number(state);
    }
}

Prompt CAircraft::Error_Show() const
{
    const QString state = State_GetMessage(m_state);
    const QString cause = m_error == state ? QString() : m_error;
    return announcement(u"Aircraft Error"_s,
                        cause.isEmpty() || state.isEmpty() ? state + cause
                                                           : state + u"\n\n"_s + cause,
                        Icon::Critical);
}

Result CAircraft::failed(int state, const Result& why)
{
    m_state = state;
    m_error = why.text.isEmpty() ? State_GetMessage(state) : why.text;
    return Result::failure(m_error, why.kind == ErrorKind::None ? ErrorKind::Failed : why.kind);
}

// --- folders and files -------------------------------------------------------------------------

QString
CAircraft::folderFor(const QString& aircraftFolder, const QString& stem, const QString& value)
{
    if (value.isEmpty())
        return aircraftFolder + stem + u'\\';
    const QString suffix = winpath::withoutTrailing(QString(value).replace(u'/', u'\\'));
    const QString joint = suffix.startsWith(u'\\') ? QString() : u"."_s;
    return aircraftFolder + stem + joint + suffix + u'\\';
}

QString CAircraft::Folder_Aircraft_Get() const
{
    return winpath::parent(sConfigurationFile);
}

QString CAircraft::Folder_AircraftModel_Get() const
{
    return folderFor(Folder_Aircraft_Get(), u"Model"_s, sModel);
}

QString CAircraft::Folder_AircraftPanel_Get() const
{
    return folderFor(Folder_Aircraft_Get(), u"Panel"_s, sPanel);
}

QString CAircraft::Folder_AircraftSound_Get() const
{
    return folderFor(Folder_Aircraft_Get(), u"Sound"_s, sSound);
}

QString CAircraft::Folder_AircraftTexture_Get() const
{
    return folderFor(Folder_Aircraft_Get(), u"Texture"_s, sTexture);
}

QString CAircraft::SIMFilename_Get() const
{
    return sSIM.isEmpty() ? QString() : Folder_Aircraft_Get() + sSIM + u".air"_s;
}

// --- performance texts -------------------------------------------------------------------------

QString CAircraft::PerformanceData_Translate(const QString& text, Performance way)
{
    QString result = text;
    if (way == Performance::FileToDisplay) {
        return result.replace(u"\\n"_s, u"\r\n"_s)
            .replace(u"\\/"_s, u"/"_s)
            .replace(u"\\t"_s, u"\t"_s)
            .replace(u"\\s"_s, u";"_s);
    }
    return result.replace(u"\r\n"_s, u"\\n"_s)
        .replace(u"/"_s, u"\\/"_s)
        .replace(u"\t"_s, u"\\t"_s)
        .replace(u";"_s, u"\\s"_s);
}

// --- editing -----------------------------------------------------------------------------------

SaveProtocol& CAircraft::protocol()
{
    if (!m_protocol || m_protocol->file() != sConfigurationFile)
        m_protocol.emplace(ConfigKind::Aircraft, sConfigurationFile);
    return *m_protocol;
}

bool CAircraft::INILines_Load(bool onlyIfChanged)
{
    m_error.clear();
    m_state = Good;
    if (sConfigurationFile.isEmpty()) {
        m_state = NoTarget;
        return false;
    }
    const Result read = protocol().load(m_access, sarrayINILines, onlyIfChanged);
    if (!read)
        (void)failed(FileMissing, read);
    return read.ok;
}

Result CAircraft::Save()
{
    m_error.clear();
    m_state = Good;
    if (sConfigurationFile.isEmpty())
        return failed(NoTarget, Result::failure(State_GetMessage(NoTarget)));
    if (!sarrayINILines.hasContent())
        return failed(NotUpdated, Result::failure(State_GetMessage(NotUpdated)));
    const Result saved = protocol().save(m_access, sarrayINILines);
    return saved ? saved : failed(NotUpdated, saved);
}

Result CAircraft::PanelOrSound_Entry_Update(Alias which, const QString& suffix)
{
    if (!loaded())
        return failed(NoTarget, Result::failure(State_GetMessage(NoTarget)));
    if (!INILines_Load())
        return Result::failure(m_error);
    const LineArray before = sarrayINILines;
    Result done = ini::checkEditable(sarrayINILines, sConfigurationFile);
    // Update would put the entry of a section that does not exist behind the file's first line.
    if (done && !ini::INI_Section_GetLines(sarrayINILines, sSection))
        done = Result::failure(u"'"_s + sConfigurationFile + u"' has no section '"_s + sSection +
                               u"' to change."_s);
    if (done)
        done = ini::INI_Entry_Update(
            sarrayINILines, sSection, which == Alias::Panel ? u"panel"_s : u"sound"_s, suffix);
    if (done)
        done = protocol().save(m_access, sarrayINILines);
    if (!done) {
        sarrayINILines = before;
        return failed(NotUpdated, done);
    }
    (which == Alias::Panel ? sPanel : sSound) = suffix;
    deriveFiles([this](const QString& file) { return m_access.actions.info(file).has_value(); });
    return done;
}

QString CAircraft::AircraftMasterSourceTextFile_BackupFile() const
{
    return SaveProtocol(ConfigKind::Aircraft, sConfigurationFile).backupFile();
}

Result CAircraft::BackupConfigurationFile_Restore()
{
    m_error.clear();
    m_state = Good;
    const Result restored = protocol().restore(m_access);
    sarrayINILines.clear();
    return restored ? restored : failed(NotRestored, restored);
}

} // namespace vt
