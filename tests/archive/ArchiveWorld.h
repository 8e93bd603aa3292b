// Real services over a temporary folder that is drive C:, for tests of archives.
#pragma once

#include "archive/CZIP.h"
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/Gate.h"
#include "support/ScriptedPrompts.h"
#include "support/ZipBuilder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace vt::test {

/// Keeps every text; cancels once so many were told.
class RecordingStatus final : public StatusSink
{
public:
    void text(const QString& panel, const QString& text) override { texts += panel + u'|' + text; }

    void progress(qint64 done, qint64 total) override { last = {done, total}; }

    bool cancelled() override { return texts.size() >= cancelAfter; }

    QStringList texts;
    std::pair<qint64, qint64> last;
    qsizetype cancelAfter = 1'000'000;
};

struct ArchiveWorld
{
    ArchiveWorld()
    {
        drives.set(u'C', dir.path());
        gate.setRoot(RootId::Chosen, QStringLiteral("C:\\"));
    }

    [[nodiscard]] QString host(const QString& name) const { return dir.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const
    {
        QFile file(host(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(bytes), bytes.size());
    }

    [[nodiscard]] QByteArray bytes(const QString& name) const
    {
        QFile file(host(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }

    /// Files below a folder, "/"-separated and sorted.
    [[nodiscard]] QStringList tree(const QString& folder) const
    {
        return files.filesBelow(QString(QStringLiteral("C:\\") + folder));
    }

    QTemporaryDir dir;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate};
    ScriptedPrompts prompts;
    RecordingStatus status;
    Clock clock;
    AnsiCodec ansi;
    Services services{files, gate, actions, prompts, status, clock, ansi};
};

} // namespace vt::test
