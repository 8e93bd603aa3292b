// Mending what verification found, where only one remedy fits: nothing is invented, and what was
// changed has its backup beside it.
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/AircraftChecks.h"
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

QString quoted(const QString& text)
{
    return u'\'' + text + u'\'';
}

/// Names in \a folder that \a fits, if there is exactly one.
template <typename Fits>
std::optional<QString> onlyOne(AircraftChecks& checks, const QString& folder, const Fits& fits)
{
    std::optional<QString> found;
    for (const QString& name : checks.names(folder)) {
        if (!fits(name))
            continue;
        if (found)
            return std::nullopt;
        found = name;
    }
    return found;
}

std::optional<QString>
onlyFile(AircraftChecks& checks, const QString& folder, const QString& extension)
{
    return onlyOne(checks, folder, [&](const QString& name) {
        return equalNoCase(winpath::extension(name), extension);
    });
}

/// A part of an aircraft that a folder suffix names.
struct PartFacts
{
    QString key;  ///< "panel"
    QString stem; ///< "Panel"
    QString CAircraft::*value;
    QString CAircraft::*file; ///< null for textures
};

/// Changes the entries of one section. The lines are saved by the caller.
class EntryRepair
{
public:
    EntryRepair(CAircraft& aircraft, AircraftChecks& checks)
        : m_aircraft(aircraft), m_checks(checks), m_top(aircraft.Folder_Aircraft_Get())
    {}

    void sim()
    {
        if (!m_aircraft.sSIM.isEmpty() && m_checks.isFile(m_aircraft.SIMFilename_Get()))
            return;
        if (const auto file = onlyFile(m_checks, m_top, u"air"_s))
            set(u"sim"_s,
                m_aircraft.sSIM,
                winpath::baseName(*file),
                u"it is the only flight model in the folder"_s);
    }

    void part(const PartFacts& facts)
    {
        const QString& value = m_aircraft.*facts.value;
        if (stands(facts, CAircraft::folderFor(m_top, facts.stem, value)))
            return;
        const QString plain = CAircraft::folderFor(m_top, facts.stem, {});
        const QString missing = quoted(CAircraft::folderFor(m_top, facts.stem, value));
        if (stands(facts, plain) && holds(facts, plain)) {
            set(facts.key, value, {}, missing + u" cannot be used and the plain folder can"_s);
            return;
        }
        const auto other = onlyOne(m_checks, m_top, [&](const QString& name) {
            const QString folder = m_top + name + u'\\';
            return configfacts::isPartFolder(name, facts.stem) && stands(facts, folder) &&
                   holds(facts, folder);
        });
        if (other)
            set(facts.key,
                value,
                configfacts::partSuffix(*other),
                missing + u" cannot be used and "_s + quoted(*other) + u" is the only other"_s);
    }

    /// \a word: what such a file has in its name.
    void kneeboard(const QString& key, const QString& value, const QString& file, QStringView word)
    {
        if (value.isEmpty() || m_checks.isFile(file))
            return;
        const auto other = onlyOne(m_checks, m_top, [word](const QString& name) {
            const QString extension = winpath::extension(name);
            return containsNoCase(winpath::baseName(name), word) &&
                   (equalNoCase(extension, u"htm") || equalNoCase(extension, u"txt"));
        });
        if (other)
            set(key, value, winpath::baseName(*other), u"it is the only one in the folder"_s);
        else
            set(key, value, {}, quoted(file) + u" does not exist"_s);
    }

    [[nodiscard]] const QStringList& done() const { return m_done; }

private:
    [[nodiscard]] bool stands(const PartFacts& facts, const QString& folder)
    {
        return facts.file ? m_checks.isFile(folder + facts.stem + u".cfg"_s)
                          : m_checks.isFolder(folder);
    }

    [[nodiscard]] bool holds(const PartFacts& facts, const QString& folder)
    {
        return facts.file || m_checks.hasTextures(folder);
    }

    void set(const QString& key, const QString& old, const QString& value, const QString& why)
    {
        if (!ini::INI_Entry_Update(m_aircraft.sarrayINILines, m_aircraft.sSection, key, value))
            return;
        m_done.append(u"'"_s + key + u"=' in ["_s + m_aircraft.sSection + u"] was "_s +
                      quoted(old) + u" and is "_s + quoted(value) + u" now: "_s + why + u'.');
    }

    CAircraft& m_aircraft;
    AircraftChecks& m_checks;
    QString m_top;
    QStringList m_done;
};

QString renamedText(const aircraftsections::Renames& renames)
{
    QStringList texts;
    for (const aircraftsections::Rename& rename : renames)
        texts.append(u'[' + rename.before + u"] became ["_s + rename.after + u']');
    return texts.join(u", "_s) + u'.';
}

/// The one shape in a model folder becomes the one that Model.cfg names. Tells what was done; empty
/// when nothing was.
ResultOf<QString>
repairModel(const ConfigAccess& access, AircraftChecks& checks, const QString& file)
{
    const std::optional<QString> shape = onlyFile(checks, winpath::parent(file), u"mdl"_s);
    if (!shape || checks.modelProblems(file).isEmpty())
        return QString();
    SaveProtocol protocol(ConfigKind::Model, file);
    LineArray lines(access.ansi);
    const bool exists = checks.isFile(file);
    if (const Result read = protocol.load(access, lines, false); exists && !read)
        return read;
    const ResultOf<NormalizedConfig> normal = normalizeConfig(lines.joined(), access.ansi);
    if (!normal)
        return normal.error();
    lines = LineArray::ofBytes(normal->bytes, access.ansi);
    const QString name = winpath::baseName(*shape);
    if (!lines.hasContent())
        lines.lines = {"[models]"};
    Result set = ini::INI_Entry_Set(lines, u"models"_s, u"normal"_s, name);
    CModel model(access);
    if (set && model.Load(file) && !model.sAlias.isEmpty()) {
        while (ini::INI_Entry_Delete(lines, u"models"_s, u"alias"_s) ||
               ini::INI_Entry_Delete(lines, u"fltsim"_s, u"alias"_s)) {
        }
    }
    if (set)
        set = protocol.save(access, lines);
    if (!set)
        return set;
    return quoted(file) + u" names "_s + quoted(*shape) + u" now, the only model file beside it."_s;
}

} // namespace

/// Line ends, code page, section names and order: what stands in the way of everything else.
Result CAircraft::repairForm(RepairOutcome& outcome)
{
    const ResultOf<QByteArray> bytes = ini::File_ReadAllText(m_access.actions, sConfigurationFile);
    if (!bytes)
        return bytes.error();
    const ResultOf<NormalizedConfig> normal = normalizeConfig(*bytes, m_access.ansi);
    if (!normal)
        return normal.error();
    if (!INILines_Load(false))
        return Result::failure(m_error);
    sarrayINILines = LineArray::ofBytes(normal->bytes, m_access.ansi);
    QStringList done;
    if (normal->changed)
        done.append(quoted(sConfigurationFile) + u": "_s + normal->done + u'.');
    for (const auto mend : {aircraftsections::numberMeantOnes, aircraftsections::reorder}) {
        const ResultOf<aircraftsections::Renames> renames = mend(sarrayINILines);
        if (!renames)
            return renames.error();
        if (renames->isEmpty())
            continue;
        done.append(u"The aircraft sections are in continuous order now: "_s +
                    renamedText(*renames));
        aircraftsections::follow(sSection, *renames);
        outcome.renamed += *renames;
    }
    if (done.isEmpty())
        return Result::success();
    const Result saved = Save();
    if (saved)
        outcome.done += done;
    return saved;
}

Result CAircraft::repairEntries(AircraftChecks& checks, RepairOutcome& outcome)
{
    if (!INILines_Load(false))
        return Result::failure(m_error);
    if (!ini::INI_Section_GetLines(sarrayINILines, sSection))
        return Result::success();
    EntryRepair repair(*this, checks);
    repair.sim();
    // A folder whose model.cfg is missing or wrong is mended before another one is taken.
    const ResultOf<QString> model = repairModel(m_access, checks, sModelConfigurationFile);
    if (model && !model->isEmpty()) {
        outcome.done.append(*model);
        checks.forget();
    }
    const QList<PartFacts> parts = {
        {u"model"_s, u"Model"_s, &CAircraft::sModel, &CAircraft::sModelConfigurationFile},
        {u"panel"_s, u"Panel"_s, &CAircraft::sPanel, &CAircraft::sPanelConfigurationFile},
        {u"sound"_s, u"Sound"_s, &CAircraft::sSound, &CAircraft::sSoundConfigurationFile},
        {u"texture"_s, u"Texture"_s, &CAircraft::sTexture, nullptr}};
    for (const PartFacts& part : parts)
        repair.part(part);
    repair.kneeboard(u"kb_checklists"_s, sKB_Checklists, sKB_ChecklistFileAlt, u"check");
    repair.kneeboard(u"kb_reference"_s, sKB_Reference, sKB_ReferencelistFileAlt, u"ref");
    if (repair.done().isEmpty())
        return Result::success();
    const Result saved = Save();
    if (saved)
        outcome.done += repair.done();
    return saved;
}

CAircraft::RepairOutcome CAircraft::Repair(AircraftChecks& checks)
{
    RepairOutcome outcome;
    outcome.left = Verify(checks);
    if (outcome.left.isEmpty()) {
        outcome.code = RepairResult::FullyRepaired;
        return outcome;
    }
    Result done = repairForm(outcome);
    if (done) {
        checks.forget();
        (void)Verify(checks); // the values of the section as it is called now
        done = repairEntries(checks, outcome);
    }
    checks.forget();
    outcome.left = Verify(checks);
    if (outcome.left.isEmpty())
        outcome.code = RepairResult::FullyRepaired;
    else if (!outcome.done.isEmpty())
        outcome.code = RepairResult::PartlyRepaired;
    if (!done)
        outcome.left.append(done.text);
    return outcome;
}

} // namespace vt
