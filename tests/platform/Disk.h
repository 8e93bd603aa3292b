// A real drive C: in a temporary folder, with the platform's objects around it.
#pragma once

#include "platform/DirectActions.h"
#include "platform/DriveTable.h"
#include "platform/Files.h"
#include "platform/Gate.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

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

struct Disk
{
    Disk()
    {
        drives.set(u'C', folder.path());
        gate.setRoot(RootId::Program, QStringLiteral("C:\\Vantrel\\"));
        gate.setRoot(RootId::Simulator, QStringLiteral("C:\\FSX\\"));
        QDir(folder.path()).mkdir(QStringLiteral("Vantrel"));
        QDir(folder.path()).mkdir(QStringLiteral("FSX"));
    }

    /// "FSX/a.cfg" as a host path.
    [[nodiscard]] QString host(const QString& relative) const
    {
        return folder.path() + u'/' + relative;
    }

    void write(const QString& relative, const QByteArray& bytes)
    {
        writeHostFile(host(relative), bytes);
        files.newOperation();
    }

    [[nodiscard]] QByteArray read(const QString& relative) const
    {
        return readHostFile(host(relative));
    }

    QTemporaryDir folder;
    DriveTable drives;
    Files files{drives};
    Gate gate{files};
    DirectActions actions{gate};
};

} // namespace vt::test
