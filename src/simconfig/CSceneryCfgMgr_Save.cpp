// Saving the scenery library: questions, the two backups, restore.
#include "platform/WinPath.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString besideWithExtension(const QString& file, QStringView extension)
{
    return winpath::parent(file) + winpath::baseName(file) + extension.toString();
}

} // namespace

QString CSceneryCfgMgr::newerBackup() const
{
    return besideWithExtension(m_file, u".vtb");
}

QString CSceneryCfgMgr::olderBackup() const
{
    return besideWithExtension(m_file, u".vt2");
}

QString CSceneryCfgMgr::savedAs() const
{
    return u"\n\n"_s +
           u"Select Yes to update the configuration file. The existing file will be backed up as '"_s +
           newerBackup() + u"'. Or select No to abort."_s;
}

Result CSceneryCfgMgr::confirmSave(bool& readOnly)
{
    const std::optional<FileInfo> now = m_access.actions.info(m_file);
    readOnly = now && now->readOnly;
    const Result declined =
        Result::failure(u"Scenery configuration file was not updated."_s, ErrorKind::Declined);
    if (now && FileStamp{now->modifiedNs, now->size} != m_stamp) {
        const Prompt changed = yesNo(
            u"Confirm Update"_s,
            u"Another process has modified the scenery configuration file. Would you still like to update it?"_s +
                savedAs(),
            Button::No);
        if (m_access.prompts.ask(changed) != Button::Yes)
            return declined;
    }
    if (readOnly) {
        const Prompt marked = yesNo(u"Confirm Update"_s,
                                    u"The scenery configuration file '"_s + m_file +
                                        u"' is marked read-only. Update it anyway?"_s + savedAs(),
                                    Button::No,
                                    Icon::Warning);
        if (m_access.prompts.ask(marked) != Button::Yes)
            return declined;
    }
    return Result::success();
}

Result CSceneryCfgMgr::SceneryCfg_Save()
{
    const QByteArray bytes = joined();
    if (bytes == m_loaded)
        return Result::success(u"Nothing to write to scenery configuration file."_s);
    bool readOnly = false;
    if (Result confirmed = confirmSave(readOnly); !confirmed)
        return confirmed;
    if (const Result kept = SceneryCfg_Backup(); !kept)
        return Result::failure(u"Scenery configuration file was not updated."_s + u' ' + kept.text);
    if (const Result written = write(bytes, readOnly); !written)
        return failedSave(written);
    m_loaded = bytes;
    m_stamp = FileStamp::of(m_access.actions, m_file);
    return Result::success(u"Scenery configuration file was updated."_s);
}

Result CSceneryCfgMgr::SceneryCfg_Backup()
{
    FileActions& actions = m_access.actions;
    if (!actions.info(m_file))
        return Result::success();
    if (actions.info(newerBackup())) {
        if (Result older = actions.copy(newerBackup(), olderBackup()); !older)
            return older;
    }
    return actions.copy(m_file, newerBackup());
}

Result CSceneryCfgMgr::write(const QByteArray& bytes, bool readOnly)
{
    if (!readOnly)
        return m_access.actions.replace(m_file, bytes);
    Content content = Content::ofBytes(bytes);
    content.writable = true;
    const ResultOf<Fingerprint> written = m_access.actions.place(m_file, content);
    return written ? Result::success() : written.error();
}

Result CSceneryCfgMgr::failedSave(const Result& why)
{
    const Prompt offer = yesNo(
        u"Confirm Restore"_s,
        u"An error occurred while updating the scenery configuration file. Would you like to restore the last backup?"_s,
        Button::Yes,
        Icon::Warning);
    if (m_access.prompts.ask(offer) == Button::Yes &&
        m_access.actions.copy(newerBackup(), m_file).ok) {
        m_stamp = FileStamp::of(m_access.actions, m_file);
        return Result::failure(
            u"Scenery configuration file was not updated properly. Backup restored."_s + u' ' +
            why.text);
    }
    return Result::failure(u"Scenery configuration file was not updated."_s + u' ' + why.text);
}

Result CSceneryCfgMgr::SceneryCfg_Backup_Restore(bool ask)
{
    if (ask) {
        const Prompt sure =
            yesNo(u"Confirm Restore"_s,
                  u"Are you sure you wish to restore the scenery configuration file using '"_s +
                      newerBackup() + u"'? Any changes you made will be lost."_s,
                  Button::Yes);
        if (m_access.prompts.ask(sure) != Button::Yes)
            return Result::failure(u"Scenery configuration file was not updated."_s,
                                   ErrorKind::Declined);
    }
    const Result copied = m_access.actions.copy(newerBackup(), m_file);
    if (!copied)
        return Result::failure(u"'"_s + m_file + u"' could NOT be restored."_s + u' ' +
                               copied.text);
    return Result::success(u"'"_s + m_file + u"' was restored."_s);
}

} // namespace vt
