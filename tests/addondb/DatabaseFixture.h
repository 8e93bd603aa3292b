// A program folder on the real disk with its database, for the tests of this folder.
#pragma once

#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "platform/DriveTable.h"
#include "platform/Files.h"
#include "platform/Gate.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace vt::test {

class DatabaseFixture
{
public:
    DatabaseFixture() : files(drives), gate(files)
    {
        folder = QStringLiteral("Z:") + disk.path().replace(u'/', u'\\') + u'\\';
        gate.setRoot(RootId::Program, folder);
        file = folder + QStringLiteral("Vantrel.mdb");
    }

    [[nodiscard]] QString host(const QString& name = QStringLiteral("Vantrel.mdb")) const
    {
        return disk.filePath(name);
    }

    /// A new database, or none when it could not be made, which fails the test.
    [[nodiscard]] std::unique_ptr<Connection> create()
    {
        OpenedDatabase opened = Connection::create(gate, file);
        [&] { QVERIFY2(opened.connection, qUtf8Printable(opened.result.text)); }();
        return std::move(opened.connection);
    }

    [[nodiscard]] std::unique_ptr<Connection> open(OpenMode mode = OpenMode::ReadWrite)
    {
        files.newOperation();
        OpenedDatabase opened = Connection::open(files, file, mode);
        [&] { QVERIFY2(opened.connection, qUtf8Printable(opened.result.text)); }();
        return std::move(opened.connection);
    }

    /// An add-on with files, recorded; fails the test when that fails.
    AddonRecord
    addAddon(Connection& database, const QString& name, QList<DetailRecord> details = {})
    {
        AddonRecord addon;
        addon.name = name;
        addon.dateInstalled = QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9));
        [&] {
            QVERIFY(modDatabase_Addon::createAddon(database, addon));
            QVERIFY(modDatabase_Addon::addDetails(database, addon.key, details).ok());
        }();
        return addon;
    }

    /// A file at a place that it also asked for.
    [[nodiscard]] static DetailRecord file_(const QString& location, const QString& name)
    {
        return {0, 0, name, location, name, location, name};
    }

    [[nodiscard]] QStringList namesOnDisk() const
    {
        return QDir(disk.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    [[nodiscard]] QByteArray bytes(const QString& name = QStringLiteral("Vantrel.mdb")) const
    {
        QFile content(host(name));
        return content.open(QIODevice::ReadOnly) ? content.readAll() : QByteArray();
    }

    void write(const QByteArray& bytes, const QString& name = QStringLiteral("Vantrel.mdb")) const
    {
        QFile content(host(name));
        [&] {
            QVERIFY(content.open(QIODevice::WriteOnly));
            QCOMPARE(content.write(bytes), bytes.size());
        }();
    }

    QTemporaryDir disk;
    DriveTable drives;
    Files files;
    Gate gate;
    QString folder;
    QString file;
};

} // namespace vt::test
