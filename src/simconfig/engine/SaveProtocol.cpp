#include "simconfig/engine/SaveProtocol.h"

#include "platform/WinPath.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct KindFacts
{
    ConfigKind kind;
    QStringView backup; ///< name of the persistent backup
    QStringView changed;
    QStringView notUpdated;
};

// clang-format off
constexpr std::array<KindFacts, 4> kindFacts = {{
    {ConfigKind::Aircraft, u"Aircraft.vtb",
     u"Another process has modified the aircraft configuration file. Would you still like to update it?",
     u"Could not update the aircraft configuration file."},
    {ConfigKind::Panel, u"Panel.vtb",
     u"Another process has modified the panel configuration file. Would you still like to update it?",
     u"Could not update the panel configuration file."},
    {ConfigKind::Sound, u"Sound.vtb",
     u"Another process has modified the sound configuration file. Would you still like to update it?",
     u"Could not update the sound configuration file."},
    {ConfigKind::Model, u"Model.vtb",
     u"Another process has modified the model configuration file. Would you still like to update it?",
     u"Could not update the model configuration file."},
}};
// clang-format on
static_assert(kindFacts[size_t(ConfigKind::Model)].kind == ConfigKind::Model);

const KindFacts& factsOf(ConfigKind kind)
{
    return kindFacts[size_t(kind)];
}

Result withCause(const QString& what, const Result& why)
{
    return Result::failure(why.text.isEmpty() ? what : what + u". "_s + why.text);
}

} // namespace

FileStamp FileStamp::of(FileActions& actions, const QString& path)
{
    const std::optional<FileInfo> info = actions.info(path);
    if (!info || info->folder)
        return {};
    return {info->modifiedNs, info->size};
}

SaveProtocol::SaveProtocol(ConfigKind kind, QString file) : m_kind(kind), m_file(std::move(file)) {}

QString SaveProtocol::folder() const
{
    return winpath::parent(m_file);
}

QString SaveProtocol::backupFile() const
{
    return winpath::join(folder(), factsOf(m_kind).backup);
}

QString SaveProtocol::temporaryFile() const
{
    return winpath::join(folder(), u"Temp.vtb");
}

Result SaveProtocol::load(const ConfigAccess& access, LineArray& lines, bool onlyIfChanged)
{
    if (onlyIfChanged && lines.hasContent() && !changedSinceLoad(access))
        return Result::success();
    noteLoading(access);
    return modRoutines_INI::INI_File_Read(access.actions, m_file, lines);
}

void SaveProtocol::noteLoading(const ConfigAccess& access)
{
    // Taken before reading: a change between the two is then noticed instead of missed.
    m_stamp = FileStamp::of(access.actions, m_file);
}

bool SaveProtocol::changedSinceLoad(const ConfigAccess& access) const
{
    return FileStamp::of(access.actions, m_file) != m_stamp;
}

Prompt SaveProtocol::changedQuestion(ConfigKind kind)
{
    return yesNo(
        u"File Changed. Update Anyway?"_s,
        factsOf(kind).changed.toString() + u"\n\n"_s +
            u"Select Yes to update the configuration file, overwriting any changes made to the configuration file. Or select No to abort."_s,
        Button::No);
}

Result SaveProtocol::save(const ConfigAccess& access, const LineArray& lines)
{
    if (const Result editable = modRoutines_INI::checkEditable(lines, m_file); !editable)
        return editable;
    return saveBy(access,
                  [&] { return modRoutines_INI::INI_File_Write(access.actions, m_file, lines); });
}

Result SaveProtocol::saveBy(const ConfigAccess& access, const std::function<Result()>& write)
{
    if (changedSinceLoad(access) && access.prompts.ask(changedQuestion(m_kind)) != Button::Yes)
        return Result::failure(factsOf(m_kind).notUpdated.toString(), ErrorKind::Declined);
    FileActions& actions = access.actions;
    const bool exists = actions.info(m_file).has_value();
    if (exists && !actions.info(backupFile())) {
        if (const Result copied = actions.copy(m_file, backupFile()); !copied)
            return withCause(u"Error backup up "_s + m_file, copied);
    }
    if (exists) {
        if (const Result copied = actions.copy(m_file, temporaryFile()); !copied)
            return withCause(u"Error backup up "_s + m_file, copied);
    }
    if (const Result written = write(); !written)
        return withCause(u"Error writing "_s + m_file, written);
    m_stamp = FileStamp::of(actions, m_file);
    // The edit is done; a temporary backup that cannot be deleted does not undo it.
    const Result removed = actions.remove(temporaryFile());
    return Result::success(removed.text);
}

Result SaveProtocol::restore(const ConfigAccess& access)
{
    const Result lost = Result::failure(u"Error restoring backup configuration file."_s);
    if (!access.actions.info(backupFile()))
        return lost;
    if (const Result copied = access.actions.copy(backupFile(), m_file); !copied)
        return Result::failure(lost.text + u' ' + copied.text);
    m_stamp = FileStamp::of(access.actions, m_file);
    return access.actions.remove(backupFile());
}

} // namespace vt
