#include "platform/RegistryStore.h"
#include "platform/WineRegistry.h"
#include "support/Disk.h"
#include "support/Rows.h"
#include "support/TestMain.h"

using namespace vt;
using namespace vt::test;
using namespace Qt::StringLiterals;

namespace {

const QString simulatorKey = u"Software\\Microsoft\\Microsoft Games\\Flight Simulator\\10.0"_s;
const QString ownKey = u"Software\\Vantrel for Flight Simulator X\\Startup"_s;
const QString storeFile = u"C:\\Vantrel\\Settings\\Registry.reg"_s;

QByteArray sampleRegistry(const QString& name)
{
    return readHostFile(QStringLiteral(VT_TEST_DATA "/prefix/") + name);
}

} // namespace

class TestRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void wineValues()
    {
        const QString sim = simulatorKey;
        const QString narrow =
            QString(sim).replace(u"Software"_s, u"software\\wow6432node"_s) + u'\\';
        const QString link = u"System\\CurrentControlSet\\Control\\Nls\\CodePage"_s;
        const QString linked = u"System\\ControlSet001\\Control\\Nls\\CodePage"_s;
        const QString list = u"one"_s + QChar(0) + u"two"_s;
        // text: null: not there
        const Rows<QString, QString, QString> machine = {
            {"32-bit view first", sim, u"setuppath"_s, u"C:\\Program Files (x86)\\FSX\\"_s},
            {"plain view second", sim, u"Only64"_s, u"seen"_s},
            {"view named outright", narrow, u"Count"_s, u"42"_s},
            {"escapes", sim, u"Escapes"_s, u"a\"b\\c\nd\u65e5\u00e9!AB2z"_s},
            {"expandable text", sim, u"AppPath"_s, u"%PROGRAMFILES%\\FSX"_s},
            {"list", sim, u"List"_s, list},
            {"text as bytes on two lines", sim, u"Wide"_s, u"C:\\é"_s},
            {"bytes are no text", sim, u"Bytes"_s, {}},
            {"behind damaged lines", sim, u"After"_s, u"still read"_s},
            {"missing value", sim, u"None"_s, {}},
            {"missing key", u"Software\\None"_s, u""_s, {}},
            {"through a link", link, u"ACP"_s, u"1251"_s},
            {"odd value name", linked, u"A[B]\"C"_s, u"odd name"_s},
            {"odd key", u"Software\\odd [key]"_s, u""_s, u"bracket"_s},
        };
        const WineRegistry wine = makeWine();
        for (const auto& [key, name, text] : machine) {
            const std::optional<QString> value = wine.value(Hive::LocalMachine, key, name);
            QCOMPARE(value.has_value(), !text.isNull());
            QCOMPARE(value.value_or(QString()), text);
        }
        QCOMPARE(wine.value(Hive::CurrentUser, ownKey, u"Open With"_s), u"3"_s);
        // The user's class goes first, then that of the 32-bit view.
        QCOMPARE(wine.value(Hive::ClassesRoot, u".zip"_s, u""_s), u"MyZip"_s);
        QCOMPARE(wine.value(Hive::ClassesRoot, u"CLSID\\{0001}"_s, u""_s), u"narrow"_s);
    }

    void wineKeysAndNames()
    {
        const WineRegistry wine = makeWine();
        QCOMPARE(wine.subKeys(Hive::CurrentUser, u"SOFTWARE"_s),
                 (QStringList{u"Vantrel for Flight Simulator X"_s, u"Classes"_s}));
        QVERIFY(wine.hasKey(Hive::LocalMachine, u"Software\\Microsoft\\Microsoft Games"_s));
        QVERIFY(!wine.hasKey(Hive::LocalMachine, u"Software\\Micro"_s));
        QCOMPARE(wine.valueNames(Hive::CurrentUser, ownKey),
                 (QStringList{u"Open With"_s, u"Toolbar"_s}));
        QCOMPARE(wine.subKeys(Hive::LocalMachine, u"System\\CurrentControlSet"_s),
                 QStringList{u"Control"_s});
    }

    void win32PrefixHasOneView()
    {
        QByteArray narrow = sampleRegistry(u"system.reg"_s);
        narrow.replace("#arch=win64", "#arch=win32");
        QCOMPARE(makeWine(narrow).value(Hive::LocalMachine, simulatorKey, u"SetupPath"_s).value(),
                 u"C:\\wrong view\\"_s);
    }

    void missingPrefixIsEmpty()
    {
        for (const QString& folder : {QString(), u"/nowhere at all"_s}) {
            const WineRegistry wine(folder);
            QVERIFY(!wine.value(Hive::LocalMachine, simulatorKey, u"SetupPath"_s));
            QVERIFY(!wine.hasKey(Hive::CurrentUser, u"Software"_s));
            QVERIFY(wine.subKeys(Hive::ClassesRoot, u""_s).isEmpty());
        }
    }

    void storeGoesBeforeWine()
    {
        const WineRegistry wine = makeWine();
        RegistryStore store(&wine);
        QCOMPARE(store.value(Hive::CurrentUser, ownKey, u"Open With"_s).value(), u"3"_s);
        QVERIFY(store.setValue(Hive::CurrentUser, ownKey.toUpper(), u"OPEN WITH"_s, u"11"_s));
        QVERIFY(store.setValue(Hive::CurrentUser, ownKey, u"New"_s, u""_s));
        QCOMPARE(store.value(Hive::CurrentUser, ownKey, u"Open With"_s).value(), u"11"_s);
        QCOMPARE(store.value(Hive::CurrentUser, ownKey, u"New"_s).value(), u""_s);
        QCOMPARE(store.valueNames(Hive::CurrentUser, ownKey),
                 (QStringList{u"OPEN WITH"_s, u"New"_s, u"Toolbar"_s}));
        QVERIFY(!store.value(Hive::LocalMachine, ownKey, u"New"_s));

        QVERIFY(store.removeValue(Hive::CurrentUser, ownKey, u"open with"_s));
        QCOMPARE(store.value(Hive::CurrentUser, ownKey, u"Open With"_s).value(), u"3"_s);
    }

    void storeSurvivesSavingAndLoading()
    {
        Disk disk;
        const QStringList texts = {u"plain"_s,
                                   u""_s,
                                   u"C:\\a\\\"b\""_s,
                                   u"line\r\nbreak"_s,
                                   u"Zürich 東京 😀"_s,
                                   u"NUL"_s + QChar(0) + u"inside"_s,
                                   u"\"=[x];"_s,
                                   QString(QChar(0xd800)) + u"alone"_s};
        RegistryStore store;
        QVERIFY(store.load(disk.files, storeFile));
        for (qsizetype i = 0; i < texts.size(); ++i) {
            const QString name = i == 0 ? QString() : u"value \"=\\ "_s + QString::number(i);
            QVERIFY(store.setValue(Hive(i % 3), ownKey + u" ]\\sub"_s, name, texts[i]));
        }
        QVERIFY(store.save(disk.actions));
        QVERIFY(
            disk.read(u"Vantrel/Settings/Registry.reg"_s)
                .startsWith("Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CLASSES_ROOT\\"));

        RegistryStore again;
        QVERIFY(again.load(disk.files, storeFile));
        for (qsizetype i = 0; i < texts.size(); ++i) {
            const QString name = i == 0 ? QString() : u"value \"=\\ "_s + QString::number(i);
            QCOMPARE(again.value(Hive(i % 3), ownKey + u" ]\\SUB"_s, name).value_or(u"missing"_s),
                     texts[i]);
        }
        QCOMPARE(again.toBytes(), store.toBytes());
    }

    void unchangedStoreIsNotWritten()
    {
        Disk disk;
        RegistryStore store;
        QVERIFY(store.load(disk.files, storeFile));
        QVERIFY(store.save(disk.actions));
        QVERIFY(!QFile::exists(disk.host(u"Vantrel/Settings"_s)));

        QVERIFY(store.setValue(Hive::CurrentUser, ownKey, u"a"_s, u"1"_s));
        QVERIFY(store.save(disk.actions));
        QVERIFY(QFile::remove(disk.host(u"Vantrel/Settings/Registry.reg"_s)));
        QVERIFY(store.setValue(Hive::CurrentUser, ownKey, u"A"_s, u"1"_s));
        QVERIFY(store.removeValue(Hive::CurrentUser, ownKey, u"other"_s));
        QVERIFY(!store.changed());
    }

    void failedSaveKeepsTheOldFile()
    {
        Disk disk;
        disk.write(u"Vantrel/Settings/Registry.reg"_s,
                   "[HKEY_CURRENT_USER\\Software\\X]\r\n\"a\"=\"1\"\r\n");
        RegistryStore store;
        QVERIFY(
            store.load(disk.files, u"C:\\Elsewhere\\Registry.reg"_s)); // outside the gate's roots
        QVERIFY(store.setValue(Hive::CurrentUser, ownKey, u"a"_s, u"2"_s));
        const Result saved = store.save(disk.actions);
        QVERIFY(!saved);
        QVERIFY2(saved.text.contains(u"C:\\Elsewhere\\Registry.reg"_s), qPrintable(saved.text));
        QVERIFY(store.changed());
    }

    void damagedLinesAreSkipped()
    {
        Disk disk;
        disk.write(u"Vantrel/Settings/Registry.reg"_s,
                   "\xef\xbb\xbfREGEDIT4\n"
                   "\"before any key\"=\"x\"\n"
                   "[HKEY_CURRENT_USER\\Software\\X]\n"
                   "; a remark\n"
                   "\"open=\"1\n"
                   "\"number\"=dword:0000000f\n"
                   "\"bad number\"=dword:xyz\n"
                   "\"kept\"=\"yes\"\n"
                   "[HKEY_NOWHERE\\Software\\Y]\n\"lost\"=\"1\"\n"
                   "[HKEY_CURRENT_USER\n\"lost\"=\"2\"\n"
                   "[hkey_local_machine\\Software\\X]\n\"last\"=\"no line end\"");
        RegistryStore store;
        QVERIFY(store.load(disk.files, storeFile));
        QVERIFY(!store.changed());
        QCOMPARE(store.valueNames(Hive::CurrentUser, u"Software\\X"_s),
                 (QStringList{u"number"_s, u"kept"_s}));
        QCOMPARE(store.value(Hive::CurrentUser, u"Software\\X"_s, u"number"_s).value(), u"15"_s);
        QCOMPARE(store.value(Hive::LocalMachine, u"software\\x"_s, u"last"_s).value(),
                 u"no line end"_s);
        QCOMPARE(store.subKeys(Hive::CurrentUser, u"Software"_s), QStringList{u"X"_s});
    }

    void exportedUtf16FileIsRead()
    {
        Disk disk;
        const QString text = u"\ufeffWindows Registry Editor Version 5.00\r\n\r\n"
                             u"[HKEY_CURRENT_USER\\Software\\Ж]\r\n\"n\"=\"C:\\\\é\"\r\n"_s;
        disk.write(u"Vantrel/Settings/Registry.reg"_s,
                   QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2));
        RegistryStore store;
        QVERIFY(store.load(disk.files, storeFile));
        QCOMPARE(store.value(Hive::CurrentUser, u"Software\\ж"_s, u"N"_s).value_or(u"missing"_s),
                 u"C:\\é"_s);
    }

    void unreadableFileIsNotOverwritten()
    {
        Disk disk;
        QVERIFY(QDir(disk.host(u"Vantrel"_s)).mkpath(u"Settings/Registry.reg"_s)); // a folder
        RegistryStore store;
        const Result loaded = store.load(disk.files, storeFile);
        QVERIFY(!loaded);
        QVERIFY2(loaded.text.contains(storeFile), qPrintable(loaded.text));
        QVERIFY(store.setValue(Hive::CurrentUser, ownKey, u"a"_s, u"2"_s));
        QVERIFY(!store.save(disk.actions));
        QVERIFY(QDir(disk.host(u"Vantrel/Settings/Registry.reg"_s)).exists());
    }

    void removing()
    {
        RegistryStore store;
        const auto set = [&](const QString& key) {
            QVERIFY(store.setValue(Hive::CurrentUser, key, u"v"_s, u"1"_s));
        };
        set(u"Software\\A"_s);
        set(u"Software\\A\\One"_s);
        set(u"Software\\A\\Two\\Deep"_s);
        set(u"Software\\AB"_s);

        const Result refused = store.removeKey(Hive::CurrentUser, u"Software\\A"_s);
        QVERIFY(!refused);
        QVERIFY2(refused.text.contains(u"Software\\A"_s), qPrintable(refused.text));
        QVERIFY(store.removeKey(Hive::CurrentUser, u"software\\a\\one\\"_s));
        QCOMPARE(store.subKeys(Hive::CurrentUser, u"Software\\A"_s), QStringList{u"Two"_s});
        QVERIFY(store.removeKey(Hive::CurrentUser, u"Software\\never there"_s));

        QVERIFY(store.removeKeyAndSubKeys(Hive::CurrentUser, u"Software\\A"_s));
        QVERIFY(!store.hasKey(Hive::CurrentUser, u"Software\\A"_s));
        QCOMPARE(store.value(Hive::CurrentUser, u"Software\\AB"_s, u"v"_s).value(), u"1"_s);
        QVERIFY(!store.removeKeyAndSubKeys(Hive::CurrentUser, u"\\"_s));
    }

    void invalidNamesAreRefused()
    {
        RegistryStore store;
        QVERIFY(!store.setValue(Hive::CurrentUser, u"\\"_s, u"v"_s, u"1"_s));
        QVERIFY(!store.setValue(Hive::CurrentUser, u"Software\n[X]"_s, u"v"_s, u"1"_s));
        QVERIFY(!store.setValue(Hive::CurrentUser, u"Software"_s, u"v\r\n"_s, u"1"_s));
        QVERIFY(!store.changed());
    }

private:
    QTemporaryDir m_prefix;

    WineRegistry makeWine(const QByteArray& system = sampleRegistry(u"system.reg"_s))
    {
        writeHostFile(m_prefix.path() + u"/system.reg"_s, system);
        writeHostFile(m_prefix.path() + u"/user.reg"_s, sampleRegistry(u"user.reg"_s));
        return WineRegistry(m_prefix.path());
    }
};

VT_TEST_CLASS(TestRegistry)
#include "test_registry.moc"
