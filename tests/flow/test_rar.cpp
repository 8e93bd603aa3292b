// Add-ons that come as RAR archives: what they install and leave is what the same ones do as ZIP.
#include "addondb/AddonDatabase.h"
#include "demo/SampleAddons.h"
#include "flow/FlowWorld.h"
#include "install/AddonSource.h"
#include "support/RarMaker.h"
#include "support/TestMain.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

/// Every file but the first needs those before it when \a solid.
QByteArray rarOf(const DemoFiles& files, int format, bool solid)
{
    RarMaker maker(format, !solid ? 0 : format == 4 ? 8 : 4);
    bool first = true;
    for (const DemoFile& file : files) {
        if (!file.path.endsWith(u'/')) {
            maker.add(file.path.toUtf8(), file.bytes, {.packed = solid, .solid = solid && !first});
            first = false;
        }
    }
    return maker.build();
}

bool write(const QString& host, const QByteArray& bytes)
{
    QFile file(host);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestRarAddons : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void samples_installAndGoAsTheirZip()
    {
        for (const SampleAddon& sample : sampleAddons()) {
            QStringList said;
            TreeSnapshot byZip;
            for (const int format : {0, 4, 5}) {
                // Records are numbered, so each archive gets a simulator of its own.
                QTemporaryDir dir(temporaryTemplate());
                FlowWorld world(dir.filePath(u"world"_s));
                QVERIFY(world.start());
                world.prompts.defaultsBeyondQueue = true;
                const TreeSnapshot beginning = world.tree();
                QString source = dir.filePath(sample.name + u".rar"_s);
                if (format == 0)
                    source = writePack(dir.path(), sample.name, sample.files);
                else
                    QVERIFY(write(source, rarOf(sample.files, format, format == 5)));
                const auto key = world.install(source);
                QVERIFY2(key, qPrintable(key.text));
                const auto record = modDatabase_Addon::addon(*world.database, *key);
                QVERIFY(record);
                QStringList told = world.results.texts(resultgroup::installed);
                told.replaceInStrings(world.drives.toWindows(dir.path()), QString());
                if (format == 0) {
                    said = told;
                    byZip = world.tree();
                } else {
                    QCOMPARE(told, said);
                    const QStringList other = differences(byZip, world.tree());
                    QVERIFY2(other.isEmpty(), qPrintable(other.join(u'\n')));
                    QCOMPARE(record->sourceType, SourceType::Rar);
                }
                QVERIFY(world.remove(*key));
                QCOMPARE(differences(beginning, world.tree(), Backups::Ignore), QStringList());
            }
        }
    }

    void volumes_areArchivedTogether()
    {
        QTemporaryDir dir(temporaryTemplate());
        FlowWorld world(dir.filePath(u"world"_s));
        QVERIFY(world.start());
        world.prompts.defaultsBeyondQueue = true;
        const QString folder = world.drives.toWindows(dir.path()) + u'\\';
        world.gate.setRoot(RootId::Chosen, folder);
        for (int round = 0; round < 2; ++round) {
            int number = 0;
            for (const QByteArray& volume :
                 RarMaker::volumes(5, "Effects/fx_set.fx", QByteArray(3000, 'e'), 3))
                QVERIFY(write(dir.filePath(u"set.part%1.rar"_s.arg(++number)), volume));
            InstallOptions options;
            options.archiveSourceFolder = folder + u"drawer"_s;
            const auto key = world.install(dir.filePath(u"set.part2.rar"_s), options);
            QVERIFY2(key, qPrintable(key.text));
            const QString drawer = round == 0 ? u"drawer/"_s : u"drawer/set.part1 2/"_s;
            for (int i = 1; i <= 3; ++i) {
                const QString name = u"set.part%1.rar"_s.arg(i);
                QVERIFY(!QFile::exists(dir.filePath(name)));
                QVERIFY(QFile::exists(dir.filePath(drawer + name)));
            }
            QVERIFY(world.remove(*key));
        }
    }
};

VT_TEST_CLASS(TestRarAddons)
#include "test_rar.moc"
