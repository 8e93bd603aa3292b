// Checking an aircraft, and the report on it. Nothing is changed here.
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString notFound(const QString& beginning, const QString& path)
{
    return beginning + path + u"' was not found."_s;
}

} // namespace

QStringList CAircraft::Verify(AircraftChecks& checks)
{
    const AircraftChecks::Configuration& configuration = checks.configuration(sConfigurationFile);
    if (!configuration.exists)
        return {notFound(u"- The aircraft configuration file does not exist. The file '"_s,
                         sConfigurationFile)};
    QStringList problems;
    if (configuration.profile.hasSection(sSection)) {
        readValues(configuration.profile);
        verifySection(checks, problems);
    } else {
        problems.append(
            u"- The aircraft configuration file may lack an aircraft section (ie. 'fltsim.0')."_s);
    }
    problems += configuration.effectProblems;
    if (!configuration.orderProblem.isEmpty())
        problems.append(configuration.orderProblem);
    if (!configuration.formProblem.isEmpty())
        problems.append(configuration.formProblem);
    return problems;
}

void CAircraft::verifySection(AircraftChecks& checks, QStringList& problems)
{
    deriveFiles([&checks](const QString& file) { return checks.isFile(file); });
    if (sTitle.isEmpty())
        problems.append(u"- The aircraft configuration file does not specify a title."_s);
    if (sSIM.isEmpty())
        problems.append(u"- The aircraft configuration file does not have a 'sim=' entry."_s);
    else if (!checks.isFile(SIMFilename_Get()))
        problems.append(notFound(
            u"- The aircraft configuration file's 'sim=' entry points to a file that does not exist. The file '"_s,
            SIMFilename_Get()));
    problems += checks.modelProblems(sModelConfigurationFile);
    if (!checks.isFile(sPanelConfigurationFile))
        problems.append(
            notFound(u"- The aircraft's panel configuration file does not exist. The file '"_s,
                     sPanelConfigurationFile));
    if (!checks.isFile(sSoundConfigurationFile))
        problems.append(
            notFound(u"- The aircraft's sound configuration file does not exist. The file '"_s,
                     sSoundConfigurationFile));
    const QString textures = Folder_AircraftTexture_Get();
    if (!checks.isFolder(textures))
        problems.append(
            notFound(u"- The aircraft's texture folder does not exist. The folder '"_s, textures));
    else if (!checks.hasTextures(textures))
        problems.append(u"- The aircraft's texture folder does not contain any textures. "_s +
                        checks.simulatorName() + u" will display a grey model."_s);
    if (!sKB_Checklists.isEmpty() && !checks.isFile(sKB_ChecklistFileAlt))
        problems.append(
            notFound(u"- The aircraft's kneeboard checklist file does not exist. The file '"_s,
                     sKB_ChecklistFileAlt));
    if (!sKB_Reference.isEmpty() && !checks.isFile(sKB_ReferencelistFileAlt))
        problems.append(
            notFound(u"- The aircraft's kneeboard reference list does not exist. The file '"_s,
                     sKB_ReferencelistFileAlt));
}

QString CAircraft::Verify_Report(const QStringList& problems, const QString& simulatorName) const
{
    QStringList lines = {Verify_Report_Title(),
                         QString(),
                         Name_Get() + u" ("_s + sConfigurationFile + u", "_s + sSection + u')',
                         QString()};
    if (!problems.isEmpty())
        lines << problems << QString();
    lines.append(Verify_Report_GetFinalSummaryMessage(problems));
    if (const QString state = Verify_Report_GetStateSummaryMessage(simulatorName); !state.isEmpty())
        lines << QString() << state;
    return lines.join(u'\n');
}

QString CAircraft::Verify_Report_GetFinalSummaryMessage(const QStringList& problems)
{
    return problems.isEmpty() ? u"No aircraft configuration problems were detected. "_s
                              : u"Use Repair to attempt to fix aircraft issues."_s;
}

QString CAircraft::Verify_Report_GetStateSummaryMessage(const QString& simulatorName) const
{
    if (!IsHidden())
        return {};
    return u"NOTE: This aircraft is hidden and therefore not available in "_s + simulatorName +
           u". To reveal it, right click in the Aircraft list then select Show."_s;
}

} // namespace vt
