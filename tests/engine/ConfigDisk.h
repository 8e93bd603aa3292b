// A disk for tests of configuration files in "C:\FSX\".
#pragma once

#include "simconfig/engine/ConfigAccess.h"
#include "simconfig/engine/LineArray.h"
#include "support/Disk.h"

namespace vt::test {

struct ConfigDisk : Disk
{
    using Disk::Disk;

    ConfigAccess access{actions, prompts, ansi};

    [[nodiscard]] LineArray linesOf(const QByteArray& text) const
    {
        return LineArray::ofBytes(text, ansi);
    }
};

/// Files in memory, for properties over thousands of saves: nothing is synced to a disk.
struct MemoryActions final : FileActions
{
    QHash<NoCase, QByteArray> bytes;
    QHash<NoCase, qint64> times;
    qint64 now = 0;

    ResultOf<QByteArray> read(const QString& path, qint64) override
    {
        const auto found = bytes.constFind(NoCase{path});
        if (found == bytes.cend())
            return Result::failure(QStringLiteral("no such file"));
        return *found;
    }

    std::optional<FileInfo> info(const QString& path) override
    {
        const auto found = bytes.constFind(NoCase{path});
        if (found == bytes.cend())
            return std::nullopt;
        return FileInfo{path, false, false, found->size(), times.value(NoCase{path})};
    }

    Result replace(const QString& path, const QByteArray& content) override
    {
        bytes.insert(NoCase{path}, content);
        times.insert(NoCase{path}, ++now);
        return Result::success();
    }

    ResultOf<Fingerprint> place(const QString& path, const Content&) override
    {
        return Result::failure(path);
    }

    Result keep(const QString& from, const QString&) override { return Result::failure(from); }

    Result copy(const QString& from, const QString& to) override
    {
        return replace(to, bytes.value(NoCase{from}));
    }

    Result remove(const QString& path) override
    {
        bytes.remove(NoCase{path});
        return Result::success();
    }

    Result makeFolder(const QString&) override { return Result::success(); }

    Result removeEmptyFolder(const QString&) override { return Result::success(); }
};

} // namespace vt::test
