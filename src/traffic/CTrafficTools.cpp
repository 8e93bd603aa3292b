// The tool's folder and its source files; running it is in CTrafficTools_Run.cpp.
#include "traffic/CTrafficTools.h"

#include "platform/AnsiCodec.h"
#include "traffic/OutsideTool.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// No source file comes near this.
constexpr qint64 sourceLimit = 64LL * 1024 * 1024;

Prompt createMissing(const QString& file)
{
    return yesNo(u"File Not Found"_s, file + u" was not found. Create it now?"_s, Button::Yes);
}

Prompt overwriteChanged(const QString& file)
{
    return yesNo(u"Confirm Action"_s,
                 file + u" was modified since it was last read. Continue anyway?"_s,
                 Button::No);
}

Result fileFailure(const QString& file, const QString& what, const Result& why)
{
    return Result::failure(u"'"_s + file + u"'"_s + what + u' ' + why.text, why.kind);
}

} // namespace

TrafficNames TrafficNames::of(int generation)
{
    TrafficNames names;
    names.stamp = generation == FS2004 ? u"030528"_s : QString();
    for (const TrafficKind kind : trafficKinds)
        names.files[int(kind)] = trafficBaseName(kind) + names.stamp + u".txt"_s;
    if (generation != FS2004)
        return names;
    names.collectedAirports = u"Airports_FS2004.txt"_s;
    names.convertSwitch = u" /t4"_s;
    names.collectSwitch = u" /c4"_s;
    return names;
}

CTrafficTools::CTrafficTools(Context& context, const Processes* processes)
    : m_context(context), m_processes(processes),
      m_names(TrafficNames::of(context.global.generation)), m_sources(context.services.ansi)
{}

OutsideTool CTrafficTools::tool(const Context& context)
{
    return {
        u"Traffic Tools"_s,
        SettingKey::TrafficToolsFolder,
        RootId::Tools,
        {context.global.programFolder + u"Traffic Tools\\"_s},
        {u"TDecompiler.exe"_s, u"TCompiler.exe"_s},
        u"Please specify the location where Traffic Tools is installed."_s,
        u"Traffic Tools program configuration is not valid."_s,
        u"Traffic Tools version 2.02 or higher is required. Open the Help system and search for the topic 'Getting Started with Traffic Tools' to learn how to download and install the latest version."_s};
}

bool CTrafficTools::Tool_Find()
{
    m_folder = outsidetool::find(m_context, tool(m_context));
    return !m_folder.isEmpty();
}

Result CTrafficTools::Tool_Locate()
{
    const ResultOf<QString> located = outsidetool::locate(m_context, tool(m_context));
    m_folder = located ? *located : QString();
    return located.error();
}

void CTrafficTools::status(const QString& text)
{
    m_context.services.status.text(u"Primary"_s, text);
}

QString CTrafficTools::sourceFile(TrafficKind kind) const
{
    return m_folder + m_names.file(kind);
}

QString CTrafficTools::dataFile() const
{
    return m_folder + u"VT A.I. Flight Plans Data File.txt"_s;
}

ResultOf<CTrafficTools::ReadFile> CTrafficTools::read(FileActions& actions,
                                                      const QString& path) const
{
    ReadFile out;
    out.stamp = FileStamp::of(actions, path);
    if (!out.stamp.exists())
        return out;
    ResultOf<QByteArray> bytes = actions.read(path, sourceLimit);
    if (!bytes)
        return bytes.error();
    if (AnsiCodec::looksLikeUtf16OrBinary(*bytes))
        return Result::failure(u"It is no plain text; save it as such with an editor."_s);
    out.bytes = *bytes;
    return out;
}

Result CTrafficTools::readSource(FileActions& actions, TrafficKind kind, Missing missing)
{
    const QString file = sourceFile(kind);
    const ResultOf<ReadFile> got = read(actions, file);
    if (!got)
        return Result::failure(u"Could not read source file '"_s + file + u"'. "_s + got.text);
    m_read[int(kind)] = *got;
    m_sources.files[int(kind)] = SourceLines::ofBytes(got->bytes);
    if (got->stamp.exists())
        return Result::success();
    if (missing == Missing::Ignore) {
        m_sources.record.files[int(kind)] = {};
        return Result::success();
    }
    if (missing == Missing::Ask &&
        m_context.services.prompts.ask(createMissing(file)) != Button::Yes)
        return Result::failure(u"'"_s + file + u"' was not found."_s, ErrorKind::Declined);
    m_sources.record.files[int(kind)].created = true;
    return Result::success();
}

Result CTrafficTools::Sources_Read(FileActions& actions, Missing missing)
{
    status(u"Reading flight plans..."_s);
    const ResultOf<ReadFile> data = read(actions, dataFile());
    if (!data)
        return fileFailure(dataFile(), u" could not be read."_s, data.error());
    m_readData = *data;
    m_sources.record = TrafficRecord::ofBytes(data->bytes);
    for (const TrafficKind kind : trafficKinds) {
        if (Result got = readSource(actions, kind, missing); !got)
            return got;
    }
    return Result::success();
}

bool CTrafficTools::differs(TrafficKind kind) const
{
    const ReadFile& was = m_read[int(kind)];
    const bool wanted = was.stamp.exists() || m_sources.record.files[int(kind)].created;
    return wanted && (!was.stamp.exists() || m_sources.isNeedless(kind) ||
                      m_sources.files[int(kind)].joined() != was.bytes);
}

Result CTrafficTools::confirmChanged(FileActions& actions)
{
    for (const TrafficKind kind : trafficKinds) {
        const QString file = sourceFile(kind);
        if (!differs(kind) || FileStamp::of(actions, file) == m_read[int(kind)].stamp)
            continue;
        if (m_context.services.prompts.ask(overwriteChanged(file)) != Button::Yes)
            return Result::failure(u"'"_s + file +
                                       u"' was left as it is: somebody changed it meanwhile."_s,
                                   ErrorKind::Declined);
    }
    return Result::success();
}

Result CTrafficTools::writeSource(FileActions& actions, TrafficKind kind)
{
    const QString file = sourceFile(kind);
    if (m_sources.isNeedless(kind)) {
        m_sources.forgetCreated(kind);
        const Result gone = actions.remove(file);
        return gone ? gone : fileFailure(file, u" could not be modified."_s, gone);
    }
    const bool exists = m_read[int(kind)].stamp.exists();
    const Result written = actions.replace(file, m_sources.files[int(kind)].joined());
    if (written)
        return written;
    return fileFailure(
        file, exists ? u" could not be modified."_s : u" could not be written."_s, written);
}

Result CTrafficTools::writeData(FileActions& actions)
{
    const QByteArray bytes = m_sources.record.bytes();
    if (bytes == m_readData.bytes)
        return Result::success();
    const Result written =
        bytes.isEmpty() ? actions.remove(dataFile()) : actions.replace(dataFile(), bytes);
    if (written)
        return written;
    return failed(u"Could not write Traffic Tools install data file."_s, written.text);
}

Result CTrafficTools::Sources_Write(FileActions& actions)
{
    if (Result may = confirmChanged(actions); !may)
        return may;
    status(u"Saving flight plans..."_s);
    QList<TrafficKind> changed;
    for (const TrafficKind kind : trafficKinds) {
        if (differs(kind))
            changed.append(kind);
    }
    // A record of lines that are not there harms nobody; lines without a record stay for ever.
    TrafficRecord::File known[trafficKindCount];
    std::copy(std::begin(m_sources.record.files), std::end(m_sources.record.files), known);
    for (const TrafficKind kind : changed) {
        if (m_sources.isNeedless(kind))
            m_sources.record.files[int(kind)] = {};
    }
    Result written = writeData(actions);
    std::copy(std::begin(known), std::end(known), m_sources.record.files);
    for (const TrafficKind kind : std::as_const(changed)) {
        if (written)
            written = writeSource(actions, kind);
    }
    if (!written)
        takeBack(actions, changed);
    else
        status(u"Flight plan file was saved."_s);
    return written;
}

/// After a failure all files are again what they were when they were read.
void CTrafficTools::takeBack(FileActions& actions, const QList<TrafficKind>& kinds) const
{
    const auto back = [&](const QString& file, const ReadFile& was) {
        if (FileStamp::of(actions, file) != was.stamp) // what fails here has been told already
            (void)(was.stamp.exists() ? actions.replace(file, was.bytes) : actions.remove(file));
    };
    for (const TrafficKind kind : kinds)
        back(sourceFile(kind), m_read[int(kind)]);
    back(dataFile(), m_readData);
}

TrafficSources::Change CTrafficTools::FlightPlans_Add(qint64 addonKey,
                                                      const QString& addonName,
                                                      const QList<TrafficSet>& sets,
                                                      QStringList& told)
{
    const ResultOf<QByteArray> name = m_context.services.ansi.encode(addonName);
    TrafficSources::Change change =
        m_sources.add(addonKey, name ? *name : addonName.toLatin1(), sets);
    for (const TrafficKind kind : trafficKinds) {
        if (change.isEmpty(kind))
            told.append(u"Nothing to add to '"_s + sourceFile(kind) + u"'."_s);
    }
    told += change.remarks;
    for (const QString& text : std::as_const(told))
        status(text);
    return change;
}

TrafficSources::Change CTrafficTools::FlightPlans_Remove(qint64 addonKey, QStringList& told)
{
    TrafficSources::Change change = m_sources.remove(addonKey);
    for (const TrafficKind kind : trafficKinds) {
        if (change.isEmpty(kind))
            told.append(u"Nothing to remove from '"_s + sourceFile(kind) + u"'."_s);
    }
    for (const QString& text : std::as_const(told))
        status(text);
    return change;
}

Result CTrafficTools::failed(const QString& text, const QString& cause)
{
    status(text);
    return Result::failure(cause.isEmpty() ? text : text + u' ' + cause);
}

} // namespace vt
