// A real drive C: in a temporary folder, with the platform's objects around it. What a layer needs
// besides is put on top in a fixture of its own.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "platform/DriveTable.h"
#include "platform/Files.h"
#include "platform/Gate.h"
#include "platform/Services.h"
#include "support/ScriptedPrompts.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

namespace vt::test {

inline void writeHostFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    QCOMPARE(file.write(bytes), qint64(bytes.size()));
}

inline QByteArray readHostFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<cannot be read>");
}

/// Lines with "|" instead of CR LF.
inline QByteArray crlf(QByteArray text)
{
    return text.replace('|', "\r\n");
}

/// Of characters below U+0100, little end first.
inline QByteArray utf16(const QByteArray& latin1)
{
    QByteArray bytes = "\xff\xfe";
    for (const char c : latin1)
        bytes.append(c).append('\0');
    return bytes;
}

/// Keeps every text; is cancelled once so many were told.
class TestStatus final : public StatusSink
{
public:
    void text(const QString& panel, const QString& text) override
    {
        texts += panel + u'|' + text;
        if (told)
            told(text);
    }

    void progress(qint64 done, qint64 total) override { last = {done, total}; }

    bool cancelled() override { return texts.size() >= cancelAfter; }

    QStringList texts;
    std::function<void(const QString&)> told; ///< what the user does meanwhile
    std::pair<qint64, qint64> last;
    qsizetype cancelAfter = 1'000'000;
};

/// Stands still where a time is set.
class TestClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override { return standing.value_or(Clock::now()); }

    std::optional<QDateTime> standing;
};

/// Drive C: with the folders "Vantrel" and "FSX", which may be written. All paths given to its
/// functions are relative to the drive and have "/".
struct Disk
{
    explicit Disk(DirectActions::Sync sync = DirectActions::Sync::Each) : actions(gate, sync)
    {
        QDir(dir.path()).mkdir(QStringLiteral("Vantrel"));
        QDir(dir.path()).mkdir(QStringLiteral("FSX"));
        drives.set(u'C', dir.path());
        gate.setRoot(RootId::Program, QStringLiteral("C:\\Vantrel\\"));
        gate.setRoot(RootId::Simulator, QStringLiteral("C:\\FSX\\"));
    }

    [[nodiscard]] QString host(const QString& path) const { return dir.filePath(path); }

    void write(const QString& path, const QByteArray& bytes = "x")
    {
        writeHostFile(host(path), bytes);
        files.newOperation();
    }

    void makeFolder(const QString& path)
    {
        QVERIFY(QDir().mkpath(host(path)));
        files.newOperation();
    }

    [[nodiscard]] QByteArray read(const QString& path) const { return readHostFile(host(path)); }

    [[nodiscard]] bool exists(const QString& path) const { return QFile::exists(host(path)); }

    /// Names in a folder, hidden ones left out, sorted.
    [[nodiscard]] QStringList names(const QString& path = {}) const
    {
        return QDir(host(path)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    /// The next time a file of that name is written, the disk is full.
    void failOnce(const QByteArray& name)
    {
        gate.faultHook = [this, name](const char*, const QByteArray& hostPath) {
            if (!hostPath.endsWith('/' + name))
                return 0;
            gate.faultHook = {};
            return ENOSPC;
        };
    }

    QTemporaryDir dir;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions;
    ScriptedPrompts prompts;
    TestStatus status;
    TestClock clock;
    AnsiCodec ansi;
    Services services{files, gate, actions, prompts, status, clock, ansi};
};

} // namespace vt::test
