// How an aircraft, panel, sound or model configuration file is saved: change check, a persistent
// backup made once (Aircraft.vtb), a temporary one (Temp.vtb), whole-file writing, restore. It
// remembers the file as loaded; it does not hold the lines.
#pragma once

#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"

#include <QString>

#include <functional>

namespace vt {

enum class ConfigKind
{
    Aircraft,
    Panel,
    Sound,
    Model,
};

/// A file's time and length, to notice changes by others.
struct FileStamp
{
    qint64 modifiedNs = -1;
    qint64 size = -1; ///< -1: no file

    [[nodiscard]] bool exists() const { return size >= 0; }

    friend bool operator==(const FileStamp&, const FileStamp&) = default;

    [[nodiscard]] static FileStamp of(FileActions& actions, const QString& path);
};

class SaveProtocol
{
public:
    SaveProtocol(ConfigKind kind, QString file);

    [[nodiscard]] const QString& file() const { return m_file; }

    [[nodiscard]] QString folder() const; ///< ends in "\"
    [[nodiscard]] QString backupFile() const;
    [[nodiscard]] QString temporaryFile() const;

    /// Reads the lines and remembers time and length. With \a onlyIfChanged lines that are held
    /// already and still fit the file are kept. \a lines is fresh after a failure.
    [[nodiscard]] Result load(const ConfigAccess& access, LineArray& lines, bool onlyIfChanged);

    /// For a caller that reads the bytes itself: to be called before it does.
    void noteLoading(const ConfigAccess& access);

    [[nodiscard]] bool changedSinceLoad(const ConfigAccess& access) const;

    /// Checks, asks, backs up, writes, and remembers the new time and length. On failure the file
    /// stands as it was; kind Declined when the user chose not to overwrite another's changes.
    [[nodiscard]] Result save(const ConfigAccess& access, const LineArray& lines);
    /// The same around another way of writing the file; \a write leaves it untouched on failure.
    [[nodiscard]] Result saveBy(const ConfigAccess& access, const std::function<Result()>& write);

    /// Copies the persistent backup over the file and deletes it.
    [[nodiscard]] Result restore(const ConfigAccess& access);

    /// "Another process has modified the aircraft configuration file. ..."
    [[nodiscard]] static Prompt changedQuestion(ConfigKind kind);

private:
    ConfigKind m_kind;
    QString m_file;
    FileStamp m_stamp;
};

} // namespace vt
