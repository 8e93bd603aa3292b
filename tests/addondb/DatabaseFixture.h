// A program folder with its database, for the tests of this folder.
#pragma once

#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "shell/ShellFixture.h"

namespace vt::test {

/// Names given to its functions are those of files in the program folder, the database's without
/// one.
class DatabaseFixture : public ShellFixture
{
public:
    static inline const QString databaseName = QStringLiteral("Vantrel.mdb");

    [[nodiscard]] QString host(const QString& name = databaseName) const
    {
        return Disk::host(QStringLiteral("Vantrel/") + name);
    }

    /// A new database, or none when it could not be made, which fails the test.
    [[nodiscard]] std::unique_ptr<Connection> create()
    {
        return checked(Connection::create(gate, file));
    }

    [[nodiscard]] std::unique_ptr<Connection> open(OpenMode mode = OpenMode::ReadWrite)
    {
        files.newOperation();
        return checked(Connection::open(files, file, mode));
    }

    /// An add-on with files, recorded; fails the test when that fails.
    static AddonRecord
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

    [[nodiscard]] QStringList namesOnDisk() const { return names(QStringLiteral("Vantrel")); }

    [[nodiscard]] QByteArray bytes(const QString& name = databaseName) const
    {
        return readHostFile(host(name));
    }

    void put(const QByteArray& bytes, const QString& name = databaseName)
    {
        writeHostFile(host(name), bytes);
        files.newOperation();
    }

    const QString folder = QStringLiteral("C:\\Vantrel\\");
    const QString file = folder + databaseName;

private:
    static std::unique_ptr<Connection> checked(OpenedDatabase opened)
    {
        [&] { QVERIFY2(opened.connection, qUtf8Printable(opened.result.text)); }();
        return std::move(opened.connection);
    }
};

/// With a new database in it.
struct OpenFixture : DatabaseFixture
{
    std::unique_ptr<Connection> own = create();
    Connection& database = *own;

    AddonRecord addAddon(const QString& name, const QList<DetailRecord>& details = {})
    {
        return DatabaseFixture::addAddon(database, name, details);
    }
};

} // namespace vt::test
