// Any order of installing (again) and removing overlapping add-ons ends at the beginning, whatever
// the user changed in between; after every step each shared place holds what the topmost add-on put
// there.
#include "demo/OverlappingPacks.h"
#include "flow/FlowWorld.h"
#include "support/TestMain.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

constexpr int sequences = 200;
constexpr int stepsEach = 12;

/// What lies at one place, from the bottom up.
struct Layer
{
    qint64 key = 0; ///< 0: the simulator's own
    QByteArray bytes;
    QByteArray installed; ///< as the add-on brought it
};

QByteArray bytesAt(const FlowWorld& world, const QString& path)
{
    const ResultOf<QByteArray> bytes = world.files.read(path, 1 << 20);
    return bytes ? *bytes : QByteArray();
}

} // namespace

class TestOrders : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir{temporaryTemplate()};

    struct Installed
    {
        qint64 key;
        int pack;
        QStringList places;
    };

    /// Notes what the add-on put where.
    static void
    noteLayers(FlowWorld& world, const Installed& addon, QMap<QString, QList<Layer>>& model)
    {
        for (const QString& place : addon.places)
            model[foldCase(place)].push_back(
                {addon.key, bytesAt(world, place), bytesAt(world, place)});
    }

private Q_SLOTS:

    void anyOrder_endsAtTheBeginning()
    {
        const QList<OverlappingPack> packs = overlappingPacks(11, 6);
        QStringList archives;
        for (const OverlappingPack& pack : packs)
            archives += writePack(m_dir.filePath(u"packs"_s), pack.name, pack.files);
        FlowWorld world(m_dir.filePath(u"world"_s));
        world.prompts.defaultsBeyondQueue = true;
        QVERIFY(world.start());
        const TreeSnapshot beginning = world.tree();

        QRandomGenerator random(20261121);
        int middle = 0;
        int userChanges = 0;
        int reinstallations = 0;
        for (int sequence = 0; sequence < sequences; ++sequence) {
            QList<Installed> standing;
            QMap<QString, QList<Layer>> model;
            const auto check = [&](const char* when) {
                for (auto it = model.cbegin(); it != model.cend(); ++it) {
                    if (it->isEmpty())
                        continue;
                    QVERIFY2(bytesAt(world, it.key()) == it->last().bytes,
                             qPrintable(
                                 u"sequence %1, %2: "_s.arg(sequence).arg(QLatin1StringView(when)) +
                                 it.key()));
                }
            };
            const auto takeOut = [&](qsizetype index) {
                const Installed gone = standing.takeAt(index);
                middle += index < standing.size() ? 1 : 0;
                const Result removed = world.remove(gone.key);
                QVERIFY2(removed.ok, qPrintable(removed.text));
                QVERIFY(!world.anyFailed);
                for (QList<Layer>& layers : model)
                    layers.removeIf([&](const Layer& layer) { return layer.key == gone.key; });
            };
            for (int step = 0; step < stepsEach; ++step) {
                const int what = random.bounded(10);
                if (what < 5 && standing.size() < packs.size()) {
                    int pack = random.bounded(int(packs.size()));
                    while (std::any_of(standing.cbegin(),
                                       standing.cend(),
                                       [&](const Installed& one) { return one.pack == pack; }))
                        pack = (pack + 1) % int(packs.size());
                    const ResultOf<qint64> key = world.install(archives[pack]);
                    QVERIFY2(key.ok(), qPrintable(key.text));
                    Installed added{*key, pack, {}};
                    for (const Results::Group& group : world.results.groups()) {
                        for (const Results::Entry& entry : group.entries) {
                            if (group.name == resultgroup::installed)
                                added.places += entry.subject;
                        }
                    }
                    QVERIFY(!added.places.isEmpty());
                    noteLayers(world, added, model);
                    standing += added;
                } else if (what < 6 && !standing.isEmpty()) {
                    // Installed again: what was edited on top is as it came, others' files stay.
                    const qint64 key = standing[random.bounded(standing.size())].key;
                    const Result again = world.reinstall(key);
                    QVERIFY2(again.ok, qPrintable(again.text));
                    QVERIFY(!world.anyFailed);
                    for (QList<Layer>& layers : model) {
                        if (!layers.isEmpty() && layers.last().key == key)
                            layers.last().bytes = layers.last().installed;
                    }
                    ++reinstallations;
                } else if (what < 8 && !standing.isEmpty()) {
                    takeOut(random.bounded(standing.size()));
                } else if (!standing.isEmpty()) {
                    // The user edits a file of an add-on; it counts as that add-on's version.
                    const Installed& one = standing[random.bounded(standing.size())];
                    const QString place = one.places[random.bounded(one.places.size())];
                    const QByteArray own = bytesAt(world, place) + "changed by hand";
                    QVERIFY(world.actions.replace(place, own));
                    model[foldCase(place)].last().bytes = own;
                    ++userChanges;
                }
                check("after a step");
            }
            while (!standing.isEmpty())
                takeOut(random.bounded(standing.size()));
            const QStringList wrong = differences(beginning, world.tree(), Backups::Ignore);
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(u"sequence %1: "_s.arg(sequence) + wrong.join(u"; "_s)));
        }
        QVERIFY(middle > 50);
        QVERIFY(userChanges > 50);
        QVERIFY(reinstallations > 50);
    }
};

VT_TEST_CLASS(TestOrders)
#include "test_orders.moc"
