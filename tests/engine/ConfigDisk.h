// A disk with questions and a code page around it, for tests of configuration files in "C:\FSX\".
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/Disk.h"
#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "support/ScriptedPrompts.h"

namespace vt::test {

struct ConfigDisk : Disk
{
    AnsiCodec ansi{1252};
    ScriptedPrompts prompts;
    ConfigAccess access{actions, prompts, ansi};

    [[nodiscard]] LineArray linesOf(const QByteArray& text) const
    {
        return LineArray::ofBytes(text, ansi);
    }
};

/// The next file action in this phase fails.
struct FailingActions final : FileActions
{
    explicit FailingActions(FileActions& real) : actions(real) {}

    FileActions& actions;
    QString failReplace; ///< path whose replacing fails
    QString failCopyTo;  ///< path to which copying fails

    ResultOf<QByteArray> read(const QString& path, qint64 limit) override
    {
        return actions.read(path, limit);
    }

    std::optional<FileInfo> info(const QString& path) override { return actions.info(path); }

    Result replace(const QString& path, const QByteArray& bytes) override
    {
        return path == failReplace ? Result::failure(QStringLiteral("No space is left."))
                                   : actions.replace(path, bytes);
    }

    ResultOf<Fingerprint> place(const QString& path, const Content& content) override
    {
        return actions.place(path, content);
    }

    Result keep(const QString& from, const QString& to) override { return actions.keep(from, to); }

    Result copy(const QString& from, const QString& to) override
    {
        return to == failCopyTo ? Result::failure(QStringLiteral("No space is left."))
                                : actions.copy(from, to);
    }

    Result remove(const QString& path) override { return actions.remove(path); }

    Result makeFolder(const QString& folder) override { return actions.makeFolder(folder); }

    Result removeEmptyFolder(const QString& folder) override
    {
        return actions.removeEmptyFolder(folder);
    }
};

} // namespace vt::test
