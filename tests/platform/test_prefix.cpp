#include "platform/Prefix.h"
#include "platform/RegistryStore.h"
#include "platform/ShellFolders.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

namespace {

const QString shellKey = u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"_s;
const QString userShellKey =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders"_s;

void makePrefix(const QString& folder)
{
    QVERIFY(QDir().mkpath(folder + u"/drive_c/windows"_s));
    QVERIFY(QDir().mkpath(folder + u"/dosdevices"_s));
    QVERIFY(QFile::link(u"../drive_c"_s, folder + u"/dosdevices/c:"_s));
    QVERIFY(QFile::link(u"/"_s, folder + u"/dosdevices/z:"_s));
}

} // namespace

class TestPrefix : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void order()
    {
        const QTemporaryDir home;
        PrefixSearch by = search(home);
        const auto found = [&] {
            const ResultOf<Prefix> prefix = findPrefix(by);
            return prefix ? prefix->foundBy + u' ' + prefix->hostFolder : prefix.text;
        };
        QCOMPARE(found(), u" "_s);
        const QString steam =
            home.path() + u"/.local/share/Steam/steamapps/compatdata/314160/pfx"_s;
        makePrefix(steam);
        QCOMPARE(found(), u"Steam "_s + steam);
        makePrefix(home.path() + u"/.wine"_s);
        QCOMPARE(found(), u"home "_s + home.path() + u"/.wine"_s);
        makePrefix(home.path() + u"/games/fsx"_s);
        by.environment.insert(u"WINEPREFIX"_s, u"~/games/fsx/"_s);
        QCOMPARE(found(), u"WINEPREFIX "_s + home.path() + u"/games/fsx"_s);
        makePrefix(home.path() + u"/proton/pfx"_s);
        by.explicitFolder = u"proton"_s;
        QCOMPARE(found(), u"option "_s + home.path() + u"/proton/pfx"_s);

        // A named prefix that is not there must not turn into another one.
        by.explicitFolder.clear();
        by.environment.insert(u"WINEPREFIX"_s, home.path() + u"/none"_s);
        QCOMPARE(found(), u" "_s);
    }

    void steamLibrariesAreRead()
    {
        const QTemporaryDir home;
        const QString root = home.path() + u"/.local/share/Steam"_s;
        const QString library = home.path() + u"/Big \"Disk\"/Library"_s;
        QVERIFY(QDir().mkpath(home.path() + u"/.steam"_s));
        QVERIFY(QDir().mkpath(library));
        writeHostFile(root + u"/steamapps/libraryfolders.vdf"_s,
                      "\"libraryfolders\"\n{\n\t\"0\"\n\t{\n\t\t\"path\"\t\t\"" + root.toUtf8() +
                          "\"\n\t}\n\t\"1\"\n\t{\n\t\t\"path\"\t\t\"" +
                          library.toUtf8().replace("\"", "\\\"") + "\"\n\t}\n}\n");
        QVERIFY(QFile::link(root, home.path() + u"/.steam/steam"_s));
        QCOMPARE(steamLibraries(home.path()),
                 (QStringList{home.path() + u"/.steam/steam"_s, library}));
        makePrefix(library + u"/steamapps/compatdata/314160/pfx"_s);
        QCOMPARE(findPrefix(search(home))->hostFolder,
                 library + u"/steamapps/compatdata/314160/pfx"_s);
    }

    void wrongExplicitFolderIsTold()
    {
        const QTemporaryDir home;
        PrefixSearch by = search(home);
        by.explicitFolder = home.path();
        const ResultOf<Prefix> prefix = findPrefix(by);
        QVERIFY(!prefix.ok());
        QCOMPARE(prefix.kind, ErrorKind::Surroundings);
        QVERIFY2(prefix.text.contains(home.path()), qPrintable(prefix.text));
    }

    void drivesOfLinks()
    {
        const QTemporaryDir home;
        const QString prefix = home.path() + u"/.wine"_s;
        makePrefix(prefix);
        QVERIFY(QDir().mkpath(home.path() + u"/games"_s));
        const QString devices = prefix + u"/dosdevices/"_s;
        QVERIFY(QFile::link(home.path() + u"/games"_s, devices + u"d:"_s));
        QVERIFY(QFile::link(u"../../games"_s, devices + u"E:"_s));
        QVERIFY(QFile::link(u"/dev/null"_s, devices + u"c::"_s));
        QVERIFY(QFile::link(home.path() + u"/gone"_s, devices + u"f:"_s));
        QVERIFY(QFile::link(u"/"_s, devices + u"com1"_s));

        const ResultOf<DriveTable> drives = driveTableOf({prefix, {}}, {u"X=games"_s}, home.path());
        QVERIFY2(drives.ok(), qPrintable(drives.text));
        QCOMPARE(drives->hostRoot(u'c'), prefix + u"/drive_c"_s);
        QCOMPARE(drives->hostRoot(u'D'), home.path() + u"/games"_s);
        QCOMPARE(drives->hostRoot(u'E'), home.path() + u"/games"_s);
        QCOMPARE(drives->hostRoot(u'X'), home.path() + u"/games"_s);
        QVERIFY(drives->hostRoot(u'F').isNull());
        QCOMPARE(drives->toHost(u"Z:\\tmp"), u"/tmp"_s);

        QVERIFY(driveTableOf({}, {}, home.path())->hostRoot(u'C').isNull());
        QVERIFY(QDir(devices).removeRecursively());
        QCOMPARE(driveTableOf({prefix, {}}, {}, home.path())->hostRoot(u'C'),
                 prefix + u"/drive_c"_s);
    }

    void typedDrives()
    {
        // told: empty: accepted
        const Rows<QString, QString> rows = {
            {"plain", u"c=sub"_s, u""_s},
            {"with colon", u"C:=sub"_s, u""_s},
            {"no folder", u"C="_s, u"a letter, '=' and a folder"_s},
            {"no letter", u"=sub"_s, u"a letter, '=' and a folder"_s},
            {"no equals", u"sub"_s, u"a letter, '=' and a folder"_s},
            {"two letters", u"CD=sub"_s, u"a letter, '=' and a folder"_s},
            {"reserved", u"z=sub"_s, u"Z:"_s},
            {"missing folder", u"C=gone"_s, u"/gone' does not exist"_s},
        };
        for (const auto& [typed, told] : rows) {
            const QTemporaryDir folder;
            QVERIFY(QDir(folder.path()).mkdir(u"sub"_s));
            const ResultOf<DriveTable> drives = driveTableOf({}, {typed}, folder.path());
            QCOMPARE(drives.ok(), told.isEmpty());
            if (drives.ok()) {
                QCOMPARE(drives->hostRoot(u'C'), folder.path() + u"/sub"_s);
                continue;
            }
            // A drive that is written well and leads nowhere is the disk's fault.
            QCOMPARE(drives.kind,
                     typed == u"C=gone"_s ? ErrorKind::Surroundings : ErrorKind::Usage);
            QVERIFY2(drives.text.contains(told) && drives.text.contains(typed),
                     qPrintable(drives.text));
        }
    }

    void codePage()
    {
        const Rows<QString, int> rows = {
            {"none", {}, 1252},
            {"cyrillic", u"1251"_s, 1251},
            {"nonsense", u"utf"_s, 1252},
        };
        for (const auto& [recorded, page] : rows) {
            RegistryStore registry;
            const QString key = u"System\\CurrentControlSet\\Control\\Nls\\CodePage"_s;
            if (!recorded.isNull())
                QVERIFY(registry.setValue(Hive::LocalMachine, key, u"ACP"_s, recorded));
            QCOMPARE(ansiCodePage(registry), page);
        }
    }

    void shellFoldersFromRegistry()
    {
        Disk disk;
        RegistryStore registry;
        const auto user = Hive::CurrentUser;
        QVERIFY(registry.setValue(user, shellKey, u"Personal"_s, u"C:\\users\\p\\Docs"_s));
        QVERIFY(
            registry.setValue(user, userShellKey, u"AppData"_s, u"%USERPROFILE%\\Data\\%none"_s));
        QVERIFY(registry.setValue(
            user, u"Volatile Environment"_s, u"UserProfile"_s, u"C:\\users\\p"_s));
        QVERIFY(registry.setValue(
            Hive::LocalMachine, shellKey, u"Common AppData"_s, u"%UNKNOWN%\\Data"_s));
        const ShellFolders folders = shellFolders(registry, disk.files);
        QCOMPARE(folders.documents, u"C:\\users\\p\\Docs\\"_s);
        QCOMPARE(folders.userData, u"C:\\users\\p\\Data\\%none\\"_s);
        QCOMPARE(folders.allUsersData, u"C:\\ProgramData\\"_s);
        QCOMPARE(folders.systemDrive, u"C:\\"_s);
    }

    void shellFoldersFromDisk()
    {
        const QString old = u"Documents and Settings/"_s;
        const QString oldFolders =
            old + u"p/My Documents|"_s + old + u"All Users|"_s + old + u"LocalService"_s;
        const QString docs = u"Documents\\"_s;
        const QString oldDocs = u"My Documents\\"_s;
        const QString data = u"AppData\\Roaming\\"_s;
        const QString oldData = u"Application Data\\"_s;
        const QString flying = u"Users/Ann|Users/Bob/AppData/Roaming/Microsoft/FSX"_s;
        const QString one = u"Users/Pilot|Users/Public|Users/Default|Users/All Users"_s;
        const QString oldNames = u"users/p/My Documents|users/p/Application Data"_s;
        // user: below drive C:, with what lies in it; empty: nobody is found
        const Rows<QString, QString, QString, QString> rows = {
            {"no users", u"windows"_s, {}, {}, {}},
            {"steam", u"users/steamuser|users/x|users/Public"_s, u"users\\steamuser"_s, docs, data},
            {"only user", one, u"Users\\Pilot"_s, docs, data},
            {"the flying one of two", flying, u"Users\\Bob"_s, docs, data},
            {"two alike", u"Users/Ann|Users/Bob"_s, {}, {}, {}},
            {"old names", oldNames, u"users\\p"_s, oldDocs, oldData},
            {"older Windows", oldFolders, u"Documents and Settings\\p"_s, oldDocs, data},
        };
        for (const auto& [made, user, documents, userData] : rows) {
            Disk disk;
            for (const QString& folder : made.split(u'|'))
                disk.makeFolder(folder);
            const ShellFolders folders = shellFolders(RegistryStore(), disk.files);
            const QString home = user.isEmpty() ? user : u"C:\\"_s + user + u'\\';
            QCOMPARE(folders.documents, home + documents);
            QCOMPARE(folders.userData, home + userData);
        }
        const DriveTable none;
        QVERIFY(shellFolders(RegistryStore(), Files(none)).systemDrive.isEmpty());
    }

    void registryOfAnotherDisk()
    {
        Disk disk;
        disk.makeFolder(u"Users/Pilot/Documents"_s);
        RegistryStore registry;
        QVERIFY(registry.setValue(
            Hive::CurrentUser, shellKey, u"Personal"_s, u"C:\\users\\penguin\\Documents"_s));
        QCOMPARE(shellFolders(registry, disk.files).documents, u"C:\\Users\\Pilot\\Documents\\"_s);
    }

private:
    PrefixSearch search(const QTemporaryDir& home) const
    {
        PrefixSearch out;
        out.environment.insert(u"HOME"_s, home.path());
        out.currentFolder = home.path();
        return out;
    }
};

VT_TEST_CLASS(TestPrefix)
#include "test_prefix.moc"
