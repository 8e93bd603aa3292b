#include "traffic/CAFCAD.h"

#include "addondb/CAddon_ItemGroup.h"
#include "addondb/SceneryNames.h"
#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"
#include "traffic/OutsideTool.h"
#include "traffic/SourceLines.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString listFile(const QString& folder)
{
    return folder + u"VTListFile.lst"_s;
}

/// What follows \a word in a comment line: the text in brackets, or all of it.
QString nameBehind(const QString& line, QStringView word)
{
    const qsizetype at = indexOfNoCase(line, word);
    QString rest = line.sliced(at + word.size());
    const qsizetype open = rest.indexOf(u'(');
    if (open >= 0) {
        rest = rest.sliced(open + 1);
        const qsizetype close = rest.indexOf(u')');
        if (close >= 0)
            rest.truncate(close);
    }
    return rest.trimmed();
}

} // namespace

CAFCADMetaGroup CAFCADMetaGroup::ofAddon(const CAddon_ItemGroup& addon)
{
    CAFCADMetaGroup out;
    for (const CAddon_Item& item : addon.colAddonItems()) {
        if (item.boolProcess && item.IsMappedToAFCADGroup())
            out.colFiles.append({item.lngKey, item.sFolder_Installation + item.sName_Installation});
    }
    return out;
}

bool CAFCADMetaGroup::isAirportFile(QStringView name)
{
    return isAirportSceneryName(name);
}

CAFCAD::CAFCAD(Context& context, const Processes* processes)
    : m_context(context), m_processes(processes)
{}

OutsideTool CAFCAD::tool(const Context& context)
{
    OutsideTool tool{u"AFCAD"_s,
                     SettingKey::AFCADFolder,
                     RootId::AirportTools,
                     {},
                     {u"AFCAD.exe"_s, u"AFInstaller.exe"_s},
                     u"Please specify the location where AFCAD is installed."_s,
                     u"AFCAD program configuration is not valid."_s,
                     {}};
    const GlobalRecord& global = context.global;
    for (const QString& above :
         {global.programFolder, global.simulatorFolder, winpath::parent(global.simulatorFolder)}) {
        if (above.isEmpty())
            continue;
        tool.folders += above + u"AFCAD\\"_s;
        tool.folders += above + u"AFCAD2\\"_s;
    }
    return tool;
}

bool CAFCAD::isOfUse() const
{
    return !m_context.global.simulatorFolder.isEmpty() &&
           m_context.services.files.isFolder(winpath::parent(installedFile(u"x"_s)));
}

bool CAFCAD::Tool_Find()
{
    m_folder = outsidetool::find(m_context, tool(m_context));
    if (!m_folder.isEmpty() &&
        !outsidetool::check(m_context.services.files, tool(m_context), m_folder))
        m_folder.clear();
    return !m_folder.isEmpty();
}

Result CAFCAD::Tool_Locate()
{
    const ResultOf<QString> located = outsidetool::locate(m_context, tool(m_context));
    m_folder = located ? *located : QString();
    return located.error();
}

QString CAFCAD::installArguments(bool prompting) const
{
    return u'"' + listFile(m_folder) + u'"' + (prompting ? u" /W"_s : u" /W0"_s);
}

Result CAFCAD::AirportFiles_Install(const QStringList& files)
{
    Q_ASSERT(m_processes && !m_folder.isEmpty());
    Services& services = m_context.services;
    const QString list = listFile(m_folder);
    const ResultOf<QByteArray> bytes = services.ansi.encode(files.join(u"\r\n"_s) + u"\r\n"_s);
    if (!bytes)
        return Result::failure(u"'"_s + list + u"' could not be written. "_s + bytes.text);
    if (Result written = services.actions.replace(list, *bytes); !written)
        return written;
    services.status.text(u"Primary"_s, u"Waiting for AFCAD to finish..."_s);
    services.status.text(u"Primary"_s,
                         u"Wait for AFCAD to finish then press ENTER to dismiss it..."_s);
    ProcessCall call;
    call.program = m_folder + u"AFInstaller"_s + u".exe"_s;
    call.commandLine = installArguments(m_context.settings.flag(SettingKey::WindowPrompting));
    call.workingFolder = m_folder;
    call.timeoutMs = installTimeoutMs;
    call.keepWaiting = [&services] { return !services.status.cancelled(); };
    const ProcessEnd end = m_processes->run(call);
    services.files.newOperation();
    const Result gone = services.actions.remove(list);
    const QString complaint = outsidetool::complaint(m_context, call.program, end);
    return complaint.isEmpty() ? gone : Result::failure(complaint);
}

QString CAFCAD::installedFile(const QString& name) const
{
    return m_context.global.simulatorFolder + u"SCENEDB\\AFDFILES\\SCENERY\\"_s + name;
}

QString CAFCAD::savedFile(const QString& name) const
{
    return installedFile(name) + u".ORIGINAL"_s;
}

Result CAFCAD::AirportFile_Restore(FileTransaction& actions, const QString& name) const
{
    const QString saved = savedFile(name);
    if (!actions.info(saved))
        return Result::failure(u"'"_s + saved +
                               u"' was not found, so the airport file stays as it is."_s);
    const QString installed = installedFile(name);
    return actions.move(saved, installed, printOf(m_context.services.files.entry(installed)));
}

QString CAFCAD::AirportName_Get(QByteArrayView bytes) const
{
    QStringList comments;
    const QList<QByteArray> lines = SourceLines::ofBytes(bytes).texts();
    for (const QByteArray& line : lines) {
        if (line.startsWith(';'))
            comments.append(m_context.services.ansi.decode(line));
    }
    for (const QStringView word :
         {QStringView(u"Flight Simulator Airport"), QStringView(u"HomeFile")}) {
        for (const QString& line : std::as_const(comments)) {
            if (containsNoCase(line, word))
                return nameBehind(line, word);
        }
    }
    return {};
}

} // namespace vt
