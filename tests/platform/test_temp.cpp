// Temporary folders, the instance lock, disk space.
#include "platform/DiskSpace.h"
#include "platform/InstanceLock.h"
#include "platform/TempFolder.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStorageInfo>

#include <sys/stat.h>
#include <unistd.h>

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

namespace {

struct TempDisk : Disk
{
    TempDisk() { QDir().mkpath(host(u"Vantrel/Temp/INA"_s)); }

    TempFolder temp{gate, u"C:\\Vantrel\\Temp\\"_s};
};

} // namespace

class TestTemp : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void uniqueFolders()
    {
        TempDisk disk;
        static const QRegularExpression form(
            u"^C:\\\\Vantrel\\\\temp\\\\IMB[0-9A-F]{4}\\.tmp\\\\$"_s);
        QSet<QString> seen;
        for (int i = 0; i < 50; ++i) {
            const ResultOf<QString> made = disk.temp.makeUnique(u"C:\\Vantrel\\temp"_s, u"IMB"_s);
            QVERIFY2(made.ok(), qPrintable(made.text));
            QVERIFY2(form.match(*made).hasMatch(), qPrintable(*made));
            QVERIFY(disk.files.isFolder(*made));
            QVERIFY(!seen.contains(*made));
            seen.insert(*made);
        }
        QCOMPARE(QDir(disk.host(u"Vantrel/Temp"_s)).entryList({u"IMB*"_s}).size(), 50);
    }

    void uniqueFile_andFolderThatGoes()
    {
        TempDisk disk;
        const QString base = u"C:\\Vantrel\\Temp\\INA\\"_s;
        const ResultOf<QString> made = disk.temp.makeUniqueFile(base, u"DB"_s);
        QVERIFY2(made.ok(), qPrintable(made.text));
        QVERIFY(made->startsWith(base + u"DB"_s) && made->endsWith(u".tmp"_s));
        QCOMPARE(disk.files.info(*made)->size, 0);
        const QString folder = *disk.temp.makeUnique(base, u"OPN"_s);
        writeHostFile(disk.drives.toHost(folder) + u"/x/y"_s, "1");
        disk.files.newOperation();
        QVERIFY(disk.temp.remove(folder));
        QVERIFY(!disk.files.exists(folder) && disk.files.isFolder(base));
        QVERIFY(disk.temp.remove(folder));
    }

    void takenNamesAreWaitedFor()
    {
        TempDisk disk;
        const QString base = u"C:\\Vantrel\\Temp\\INA\\"_s;
        const QString taken = disk.host(u"Vantrel/Temp/INA/REN00AF.tmp"_s);
        disk.write(u"Vantrel/Temp/INA/REN00AF.tmp"_s, "kept");
        const TempFolder stuck(disk.gate, u"C:\\Vantrel\\Temp"_s, [] { return quint16(0xaf); });
        QElapsedTimer timer;
        timer.start();
        const ResultOf<QString> refused = stuck.makeUnique(base, u"REN"_s);
        QVERIFY(!refused.ok());
        QVERIFY2(timer.elapsed() >= 4000, qPrintable(QString::number(timer.elapsed())));
        QVERIFY2(refused.text.contains(base), qPrintable(refused.text));
        QCOMPARE(readHostFile(taken), QByteArray("kept"));

        // Another process gives the name up while it is waited for.
        int asked = 0;
        const TempFolder patient(disk.gate, u"C:\\Vantrel\\Temp"_s, [&] {
            if (++asked == 40)
                QFile::remove(taken);
            return quint16(0xaf);
        });
        const ResultOf<QString> made = patient.makeUnique(base, u"REN"_s);
        QVERIFY2(made.ok(), qPrintable(made.text));
        QCOMPARE(*made, base + u"REN00AF.tmp\\"_s);
    }

    void refusedPlaces()
    {
        const Rows<QString> rows = {
            {"outside", u"C:\\Vantrel\\"_s},
            {"beside", u"C:\\Vantrel\\Temporary\\"_s},
            {"back out", u"C:\\Vantrel\\Temp\\..\\Originals\\"_s},
            {"empty", u""_s},
        };
        for (const auto& [folder] : rows) {
            TempDisk disk;
            disk.write(u"Vantrel/Originals/kept"_s, "1");
            disk.write(u"Vantrel/Temporary/kept"_s, "1");
            QVERIFY(!disk.temp.makeUnique(folder, u"OPN"_s).ok());
            QVERIFY(!disk.temp.empty(folder));
            QVERIFY(!disk.temp.remove(folder));
            QVERIFY(!disk.temp.remove(u"C:\\VANTREL\\TEMP"_s));
            QCOMPARE(disk.read(u"Vantrel/Originals/kept"_s), QByteArray("1"));
            QCOMPARE(disk.read(u"Vantrel/Temporary/kept"_s), QByteArray("1"));
            QVERIFY(QFile::exists(disk.host(u"Vantrel/Temp/INA"_s)));
            QVERIFY(!disk.temp.makeUnique(u"C:\\Vantrel\\Temp\\missing\\"_s, u"OPN"_s).ok());
            QVERIFY(!disk.temp.makeUnique(u"C:\\Vantrel\\Temp\\"_s, u"..\\x"_s).ok());
        }
    }

    void emptyingFollowsNoLinks()
    {
        TempDisk disk;
        disk.write(u"outside/kept"_s, "1");
        disk.write(u"Vantrel/Temp/INA/a/b/c"_s, "1");
        disk.write(u"Vantrel/Temp/INA/file"_s, "1");
        QVERIFY(QFile::link(disk.host(u"outside"_s), disk.host(u"Vantrel/Temp/INA/link"_s)));
        QVERIFY(QFile::link(disk.host(u"outside"_s), disk.host(u"Vantrel/Temp/INA/a/link"_s)));
        QVERIFY(QFile::link(disk.host(u"outside"_s), disk.host(u"Vantrel/Temp/IFO"_s)));
        QVERIFY(QFile::setPermissions(disk.host(u"Vantrel/Temp/INA/file"_s), QFile::ReadOwner));

        const Result emptied = disk.temp.empty(u"C:\\Vantrel\\Temp\\INA\\"_s);
        QVERIFY2(emptied.ok, qPrintable(emptied.text));
        QVERIFY(QDir(disk.host(u"Vantrel/Temp/INA"_s)).isEmpty());
        QVERIFY(!disk.files.exists(u"C:\\Vantrel\\Temp\\INA\\file"));
        QVERIFY(!disk.temp.empty(u"C:\\Vantrel\\Temp\\IFO\\"_s)); // itself a link to the outside
        QCOMPARE(disk.read(u"outside/kept"_s), QByteArray("1"));
        QVERIFY(disk.temp.empty(u"C:\\Vantrel\\Temp\\none\\"_s));
    }

    void lockExcludesOthers()
    {
        Disk disk;
        InstanceLock first;
        InstanceLock second;
        const QString folder = u"C:\\Vantrel\\"_s;
        QVERIFY(first.tryLock(disk.gate, folder));
        QVERIFY(first.tryLock(disk.gate, folder));
        const Result refused = second.tryLock(disk.gate, folder);
        QVERIFY(!refused);
        QCOMPARE(refused.kind, ErrorKind::Surroundings);
        QVERIFY2(refused.text.contains(u"process "_s + QString::number(getpid())) &&
                     refused.text.contains(folder),
                 qPrintable(refused.text));
        QVERIFY(second.tryLock(disk.gate, u"C:\\FSX\\"_s));
        first.release();
        InstanceLock third;
        QVERIFY(third.tryLock(disk.gate, folder));
    }

    void lockOfADeadProcessBlocksNobody()
    {
        Disk disk;
        const QString file = disk.host(u"Vantrel/"_s + InstanceLock::fileName());
        QProcess holder;
        // One process in the end: killing it closes the last descriptor of the lock.
        holder.start(u"sh"_s,
                     {u"-c"_s, u"exec 9>>\"$0\"; flock 9; echo locked; exec sleep 300"_s, file});
        QVERIFY(holder.waitForReadyRead(5000));
        InstanceLock lock;
        QVERIFY(!lock.tryLock(disk.gate, u"C:\\Vantrel\\"_s));
        holder.kill();
        QVERIFY(holder.waitForFinished(5000));
        const Result locked = lock.tryLock(disk.gate, u"C:\\Vantrel\\"_s);
        QVERIFY2(locked.ok, qPrintable(locked.text));
    }

    void lockFailures()
    {
        Disk disk;
        disk.write(u"secret"_s, "kept");
        QVERIFY(QFile::link(disk.host(u"secret"_s),
                            disk.host(u"Vantrel/"_s + InstanceLock::fileName())));
        for (const QString& folder :
             {u"C:\\Vantrel\\"_s, u"C:\\FSX\\missing\\"_s, u"C:\\else\\"_s}) {
            InstanceLock lock;
            const Result refused = lock.tryLock(disk.gate, folder);
            QVERIFY(!refused);
            QCOMPARE(refused.kind, ErrorKind::Surroundings);
            QVERIFY(!lock.held());
        }
        QCOMPARE(disk.read(u"secret"_s), QByteArray("kept"));
    }

    void space()
    {
        Disk disk;
        const qint64 expected = QStorageInfo(disk.dir.path()).bytesAvailable();
        for (const QString& path : {u"C:\\"_s, u"C:\\FSX\\not\\there\\yet.zip"_s, u"c:/fsx"_s}) {
            const ResultOf<qint64> bytes = freeBytes(disk.files, path);
            QVERIFY2(bytes.ok(), qPrintable(bytes.text));
            QVERIFY(qAbs(*bytes - expected) < 512LL * 1024 * 1024);
        }
        const ResultOf<qint64> unknown = freeBytes(disk.files, u"Q:\\x");
        QVERIFY(!unknown.ok());
        QVERIFY2(unknown.text.contains(u"Q:\\x"_s), qPrintable(unknown.text));

        const auto fsx = fileSystemOf(disk.files, u"C:\\FSX\\");
        QVERIFY(fsx.has_value());
        QCOMPARE(fileSystemOf(disk.files, u"C:\\Vantrel\\none\\a"), fsx);
        QVERIFY(fileSystemOf(disk.files, u"Z:\\proc\\self") != fsx);
        QVERIFY(!fileSystemOf(disk.files, u"Q:\\"));
    }
};

VT_TEST_CLASS(TestTemp)
#include "test_temp.moc"
