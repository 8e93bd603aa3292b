// What other tests and the benchmarks rely on: the same bytes each time, references that lead
// somewhere, archives that other programs read, packs that really fight for places.
#include "demo/BenchmarkPack.h"
#include "demo/DemoSimulator.h"
#include "demo/OverlappingPacks.h"
#include "demo/SampleAddons.h"
#include "demo/ZipMaker.h"
#include "platform/Text.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt::test;

namespace {

/// Standard output of a tool that must succeed.
QString outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60'000) || process.exitCode() != 0)
        return u"failed: "_s + QString::fromUtf8(process.readAllStandardError());
    return QString::fromUtf8(process.readAllStandardOutput());
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Values of every line "key=value" of a configuration file, comments and quotes left out.
QStringList valuesOf(const QString& path, const QString& key)
{
    const QRegularExpression line(u"^"_s + key + u"[ \\t]*=[ \\t]*\"?([^\"\\r\\n;/\\t]*)"_s,
                                  QRegularExpression::MultilineOption |
                                      QRegularExpression::CaseInsensitiveOption);
    QStringList values;
    for (auto it = line.globalMatch(QString::fromLatin1(bytesOf(path))); it.hasNext();)
        values += it.next().captured(1).trimmed();
    return values;
}

bool differsSomewhere(const QList<vt::OverlappingPack>& packs, const QString& foldedPath)
{
    QSet<QByteArray> versions;
    for (const vt::OverlappingPack& pack : packs)
        for (const vt::DemoFile& file : pack.files)
            if (vt::foldCase(file.path) == foldedPath)
                versions += file.bytes;
    return versions.size() > 1;
}

} // namespace

class TestDemo : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void simulator_isTheSameEachTime()
    {
        QTemporaryDir dir;
        const auto first = vt::writeDemoSimulator(dir.filePath(u"one"_s));
        const auto second = vt::writeDemoSimulator(dir.filePath(u"two"_s));
        QVERIFY2(first.ok() && second.ok(), qPrintable(first.text + second.text));
        const TreeSnapshot tree = hashTree(first->prefixHost);
        QVERIFY(tree.size() > 150);
        QCOMPARE(differences(tree, hashTree(second->prefixHost)), QStringList());
        QVERIFY(QFileInfo(first->simulatorHost + u"/fsx.exe"_s).isFile());
        QVERIFY(QFileInfo(first->allUsersHost + u"/Scenery.cfg"_s).isFile());
        QVERIFY(QFileInfo(first->userDataHost + u"/fsx.cfg"_s).isFile());
        QVERIFY(QFileInfo(first->documentsHost).isDir());
        QVERIFY(QFileInfo(first->prefixHost + u"/dosdevices/c:/windows"_s).isDir());
    }

    void simulator_refusesAFolderInUse()
    {
        QTemporaryDir dir;
        QFile inUse(dir.filePath(u".mine"_s));
        QVERIFY(inUse.open(QIODevice::WriteOnly));
        const auto made = vt::writeDemoSimulator(dir.path());
        QVERIFY(!made.ok());
        QVERIFY(made.text.contains(dir.path()));
        QCOMPARE(hashTree(dir.path()).keys(), QStringList{u".mine"_s});
    }

    void simulator_refersOnlyToWhatIsThere_data()
    {
        QTest::addColumn<QString>("config");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("pattern"); // "*" is the value, from the configuration's folder
        QTest::newRow("flight model") << u"aircraft.cfg"_s << u"sim"_s << u"*.air"_s;
        QTest::newRow("checklist") << u"aircraft.cfg"_s << u"kb_checklists"_s << u"*.htm"_s;
        QTest::newRow("texture") << u"aircraft.cfg"_s << u"texture"_s << u"texture.*/"_s;
        QTest::newRow("wake") << u"aircraft.cfg"_s << u"wake"_s << u"../../../Effects/*.fx"_s;
        QTest::newRow("model") << u"model.cfg"_s << u"normal"_s << u"*.mdl"_s;
        QTest::newRow("panel picture") << u"panel.cfg"_s << u"file"_s << u"*"_s;
        QTest::newRow("gauges") << u"panel.cfg"_s << u"gauge00"_s << u"../../../../Gauges/*.cab"_s;
        QTest::newRow("sound") << u"sound.cfg"_s << u"filename"_s << u"*"_s;
        QTest::newRow("alias") << u"panel.cfg"_s << u"alias"_s << u"../../*/panel.cfg"_s;
    }

    void simulator_refersOnlyToWhatIsThere()
    {
        QFETCH(const QString, config);
        QFETCH(const QString, key);
        QFETCH(const QString, pattern);
        QTemporaryDir dir;
        const auto made = vt::writeDemoSimulator(dir.filePath(u"p"_s));
        QVERIFY2(made.ok(), qPrintable(made.text));
        QDirIterator configs(made->simulatorHost + u"/SimObjects"_s,
                             {config},
                             QDir::Files,
                             QDirIterator::Subdirectories);
        int seen = 0;
        while (configs.hasNext()) {
            const QString path = configs.next();
            for (QString value : valuesOf(path, key)) {
                value = value.section(u'!', 0, 0).replace(u'\\', u'/');
                if (value.isEmpty())
                    continue; // the plain folder
                const QString target =
                    QFileInfo(path).path() + u'/' + QString(pattern).replace(u'*', value);
                QVERIFY2(QFileInfo::exists(target), qPrintable(target));
                ++seen;
            }
        }
        QVERIFY(seen > 0);
    }

    void samples_areReadByOthers()
    {
        QTemporaryDir dir;
        const auto paths = vt::writeSampleAddons(dir.path());
        QVERIFY2(paths.ok(), qPrintable(paths.text));
        const QList<vt::SampleAddon> samples = vt::sampleAddons();
        QCOMPARE(paths->size(), samples.size());
        for (qsizetype i = 0; i < samples.size(); ++i) {
            QCOMPARE(outputOf(u"unzip"_s, {u"-tqq"_s, paths->at(i)}), QString());
            for (const vt::DemoFile& file : samples.at(i).files) {
                QProcess unzip; // "\" is an escape in its patterns
                unzip.start(u"unzip"_s,
                            {u"-p"_s, paths->at(i), QString(file.path).replace(u'\\', u'?')});
                QVERIFY(unzip.waitForFinished());
                QCOMPARE(unzip.readAllStandardOutput(), file.bytes);
            }
        }
    }

    void archive_manyEntriesNeedTheLargeEndRecord()
    {
        vt::DemoFiles files;
        for (int i = 0; i < 66'000; ++i)
            files += vt::DemoFile{QString::number(i), "x"};
        QTemporaryDir dir;
        QFile archive(dir.filePath(u"many.zip"_s));
        QVERIFY(archive.open(QIODevice::WriteOnly));
        archive.write(vt::zipOf(files));
        archive.close();
        QVERIFY(outputOf(u"unzip"_s, {u"-l"_s, archive.fileName()}).contains(u"66000 files"_s));
    }

    void packs_fightForPlaces()
    {
        const QList<vt::OverlappingPack> packs = vt::overlappingPacks(3);
        QVERIFY(packs.size() >= 5);
        QMap<QString, int> holders;
        for (const vt::OverlappingPack& pack : packs)
            for (const vt::DemoFile& file : pack.files)
                ++holders[vt::foldCase(file.path)];
        int foughtFor = 0;
        int agreedOn = 0;
        for (auto it = holders.cbegin(); it != holders.cend(); ++it) {
            if (it.value() < packs.size())
                continue;
            ++(differsSomewhere(packs, it.key()) ? foughtFor : agreedOn);
        }
        QVERIFY(foughtFor >= 4);
        QVERIFY(agreedOn >= 1);
        QVERIFY(vt::overlappingPacks(3).at(2).files.at(0).bytes == packs.at(2).files.at(0).bytes);
        QVERIFY(vt::overlappingPacks(4).at(2).files.at(0).bytes != packs.at(2).files.at(0).bytes);
    }

    void benchmarkBytes_deflateToAboutSixtyPercent_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : {1024, 2048, 50'000, 400'000})
            QTest::addRow("%d", size) << size;
    }

    void benchmarkBytes_deflateToAboutSixtyPercent()
    {
        QFETCH(const int, size);
        qsizetype packed = 0;
        for (quint64 seed = 0; seed < 20; ++seed)
            packed += vt::zipPiece(u"x"_s, vt::benchmarkBytes(size, seed)).data.size();
        const double percent = 100.0 * double(packed) / (20.0 * size);
        QVERIFY2(percent > 54 && percent < 67, qPrintable(QString::number(percent)));
    }
};

VT_TEST_CLASS(TestDemo)
#include "test_demo.moc"
