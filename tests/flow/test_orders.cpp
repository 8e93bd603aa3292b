// Any order of every way in and every way out: add-ons of every family that fight for the same
// places are installed, installed again, taken out by each method, taken back from the File Cabinet
// and imported, and files are changed by hand in between. After every step the simulator, the
// records and the cabinet are what a small model says; at the end the tree is that of the
// beginning.
#include "addondb/AddonDatabase.h"
#include "addondb/FileCabinet.h"
#include "catalogue/Catalogue.h"
#include "demo/OverlappingPacks.h"
#include "flow/FlowWorld.h"
#include "import/CAddonImportMgr.h"
#include "platform/Processes.h"
#include "platform/WinPath.h"
#include "support/TestMain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <functional>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

namespace {

constexpr int sequences = 500 / stride;
constexpr int stepsEach = 9;
constexpr auto kestrelCfg = "SimObjects\\Airplanes\\Kestrel_K2\\aircraft.cfg";

enum class State
{
    Out,
    Standing,
    InCabinet,
    Unrecorded, ///< its files are there, its records are not
};

/// What an add-on is, and what has become of it.
struct Addon
{
    QString name;
    QString archive;
    QByteArray title;  ///< of the variation that it adds to the Kestrel; or empty
    QString ownFolder; ///< holds all of its files, so that an import finds it again; or empty
    State state = State::Out;
    bool imported = false;
    qint64 key = 0;
    QStringList places = {};
    QHash<QString, QByteArray> brought = {}; ///< by place, as they are in the archive
};

/// What add-ons put at one place, from the bottom up; below them lies the simulator's own.
struct Layer
{
    qsizetype addon;
    QByteArray bytes;
    QByteArray installed; ///< as the add-on brought it
};

using Model = QMap<QString, QList<Layer>>;

QList<OverlappingPack> packsOfEveryFamily()
{
    QList<OverlappingPack> packs = overlappingPacks(11, 5);
    packs += {u"blue"_s,
              {{u"readme.txt"_s,
                "Paste this:\r\n[fltsim.X]\r\ntitle=Blue Bird\r\nsim=kestrel_k2\r\nmodel=\r\n"
                "texture=blue\r\nui_variation=Blue\r\n"},
               {u"texture.blue/a.bmp"_s, "blue"}}};
    packs += {u"green"_s,
              {{u"aircraft.cfg"_s,
                "[fltsim.0]\ntitle=Green Kestrel\nsim=kestrel_k2\ntexture=green\n"
                "ui_variation=Green\n"},
               {u"texture.green/a.bmp"_s, "green"},
               {u"Effects/fx_fought.fx"_s, "[Library Effect]\r\nLifetime=7\r\n"}}};
    const QString plane = u"SimObjects/Airplanes/Everyway/"_s;
    packs += {u"everyway"_s,
              {{plane + u"aircraft.cfg"_s,
                "[fltsim.0]\r\ntitle=Everyway\r\nsim=everyway\r\nmodel=\r\npanel=\r\nsound=\r\n"
                "texture=\r\nui_manufacturer=Ways\r\nui_type=E1\r\nui_variation=House\r\n"},
               {plane + u"everyway.air"_s, "air"},
               {plane + u"model/model.cfg"_s, "[models]\r\nnormal=everyway\r\n"},
               {plane + u"model/everyway.mdl"_s, "mdl"},
               {plane + u"panel/panel.cfg"_s, "[fltsim]\r\nalias=Kestrel_K2\\panel\r\n"},
               {plane + u"sound/sound.cfg"_s, "[fltsim]\r\nalias=Kestrel_K2\\sound\r\n"},
               {plane + u"texture/e.bmp"_s, "e"}}};
    packs += {u"island"_s,
              {{u"Addon Scenery/Island/scenery/island.bgl"_s, "BGL island"},
               {u"Addon Scenery/Island/texture/island.bmp"_s, "bmp"}}};
    const QString trip = u"Missions/Backcountry/Island Trip/"_s;
    packs +=
        {u"trip"_s,
         {{trip + u"trip.flt"_s, "[Main]\r\nTitle=Island Trip\r\nDescription=Out and back\r\n"},
          {trip + u"trip.spb"_s, "spb"},
          {trip + u"trip.htm"_s, "<p>Trip</p>"},
          {trip + u"Sound/one.wav"_s, "RIFF"}}};
    return packs;
}

} // namespace

class TestOrders : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir{temporaryTemplate()};
    std::unique_ptr<FlowWorld> m_untouched; ///< as the world was at the beginning
    std::unique_ptr<FlowWorld> m_world;
    QRandomGenerator m_random{20261121};
    QList<Addon> m_addons;
    QString m_about; ///< the add-on of the step in hand
    Model m_model;
    QMap<QString, int> m_done; ///< how often each kind of step was taken

    /// Null: there is no such file.
    static QByteArray bytesIn(const FlowWorld& world, const QString& path)
    {
        const ResultOf<QByteArray> bytes = world.files.read(path, 1 << 20);
        return bytes ? *bytes + QByteArray("") : QByteArray();
    }

    QByteArray bytesAt(const QString& path) const { return bytesIn(*m_world, path); }

    QList<Layer>& layersAt(const QString& place) { return m_model[foldCase(place)]; }

    QList<qsizetype> those(const std::function<bool(const Addon&)>& fit) const
    {
        QList<qsizetype> out;
        for (qsizetype i = 0; i < m_addons.size(); ++i) {
            if (fit(m_addons[i]))
                out += i;
        }
        return out;
    }

    QList<qsizetype> thoseOf(State state) const
    {
        return those([state](const Addon& addon) { return addon.state == state; });
    }

    void nowStands(qsizetype index)
    {
        Addon& addon = m_addons[index];
        addon.state = State::Standing;
        for (const QString& place : std::as_const(addon.places)) {
            const QByteArray bytes = bytesAt(place);
            if (!addon.brought.contains(place))
                addon.brought.insert(place, bytes);
            layersAt(place).push_back({index, bytes, addon.brought.value(place)});
        }
    }

    void nowGone(qsizetype index, State state)
    {
        m_addons[index].state = state;
        for (QList<Layer>& layers : m_model)
            layers.removeIf([index](const Layer& layer) { return layer.addon == index; });
    }

    QStringList placesOf(const Addon& addon)
    {
        QStringList places;
        const auto rows = modDatabase_Addon::detailsOf(*m_world->database, addon.key);
        for (const DetailRecord& row : rows.value.value_or(QList<DetailRecord>())) {
            if (winpath::isBelow(row.location, m_world->demo.simulatorFolder))
                places += row.location + row.name;
        }
        return places;
    }

    Addon& about(qsizetype index)
    {
        m_about = m_addons[index].name;
        return m_addons[index];
    }

    // --- steps: each returns why it failed, or nothing -------------------------------------------

    QString install(qsizetype index)
    {
        InstallOptions options;
        const bool toCabinet = m_random.bounded(4) == 0;
        options.to = toCabinet ? InstallTo::Cabinet : InstallTo::Simulator;
        Addon& addon = about(index);
        const ResultOf<qint64> key = m_world->install(addon.archive, options);
        if (!key)
            return key.text;
        addon.key = *key;
        addon.imported = false;
        addon.places = placesOf(addon);
        if (addon.places.isEmpty())
            return u"no files were recorded"_s;
        if (toCabinet)
            addon.state = State::InCabinet;
        else
            nowStands(index);
        return {};
    }

    QString reinstall(qsizetype index)
    {
        const Result again = m_world->reinstall(about(index).key, {}, m_addons[index].archive);
        for (QList<Layer>& layers : m_model) {
            if (!layers.isEmpty() && layers.last().addon == index)
                layers.last().bytes = layers.last().installed;
        }
        return again ? QString() : again.text;
    }

    QString takeBack(qsizetype index)
    {
        const Result back = m_world->reinstall(about(index).key);
        if (!back)
            return back.text;
        m_addons[index].imported = false;
        nowStands(index);
        return {};
    }

    QString remove(qsizetype index, RemovalMethod method)
    {
        Addon& addon = about(index);
        RemovalOptions options;
        options.method = method;
        const bool elsewhere = method == RemovalMethod::Recreate || method == RemovalMethod::Copy;
        QDir chosen(m_dir.filePath(u"chosen"_s));
        if (elsewhere) {
            (void)chosen.removeRecursively();
            (void)chosen.mkpath(u"."_s);
            options.toFolder = winpath::asFolder(m_world->drives.toWindows(chosen.path()));
            options.zip = m_random.bounded(2) == 0;
            m_world->gate.setRoot(RootId::Chosen, options.toFolder);
            m_world->files.newOperation();
        }
        if (Result removed = m_world->remove(addon.key, options); !removed)
            return removed.text;
        if (elsewhere && chosen.isEmpty())
            return u"nothing came to the folder"_s;
        if (method == RemovalMethod::Copy)
            return {};
        if (method == RemovalMethod::RemoveRecords)
            addon.state = State::Unrecorded;
        else
            nowGone(index, method == RemovalMethod::FileCabinet ? State::InCabinet : State::Out);
        return {};
    }

    QString import(qsizetype index)
    {
        Addon& addon = about(index);
        m_world->files.newOperation();
        Catalogue catalogue(m_world->global);
        catalogue.open(m_world->services);
        CAddonImportMgr manager(m_world->context, catalogue, m_world->database.get());
        if (Result found = manager.Addons_Import_GatherAddons(true); !found)
            return found.text;
        const QString folder = m_world->simulatorPath(addon.ownFolder);
        for (ImportGroup& group : manager.groups())
            group.boolProcess = winpath::same(group.folder, folder);
        if (Result done = manager.Addon_Install_ImportGroups(Processes(m_world->files, {})); !done)
            return done.text;
        for (const ImportGroup& group : manager.groups()) {
            if (group.imported)
                addon.key = group.addon.lngKey;
        }
        addon.state = State::Standing;
        addon.imported = true;
        return {};
    }

    QString changeByHand(qsizetype index)
    {
        const QStringList& places = about(index).places;
        const QString place = places[m_random.bounded(places.size())];
        if (place.endsWith(u".cfg"_s, Qt::CaseInsensitive))
            return {};
        const QByteArray own = bytesAt(place) + "changed by hand";
        layersAt(place).last().bytes = own;
        const Result written = m_world->actions.replace(place, own);
        return written ? QString() : written.text;
    }

    // --- the model against the world -------------------------------------------------------------

    QString difference()
    {
        m_world->files.newOperation();
        for (auto it = m_model.cbegin(); it != m_model.cend(); ++it) {
            const QByteArray wanted =
                it->isEmpty() ? bytesIn(*m_untouched, it.key()) : it->last().bytes;
            const QByteArray there = bytesAt(it.key());
            if (there != wanted || there.isNull() != wanted.isNull())
                return it.key() + u" holds '"_s + QString::fromLatin1(there.left(40)) + u"'"_s;
        }
        const QByteArray aircraft = bytesAt(m_world->simulatorPath(QLatin1StringView(kestrelCfg)));
        const QByteArray areas = bytesAt(m_world->global.sceneryCfgFile);
        const FileCabinet cabinet(m_world->services, m_world->global);
        for (const Addon& addon : std::as_const(m_addons)) {
            const bool there = addon.state == State::Standing || addon.state == State::Unrecorded;
            if (!addon.title.isEmpty() && aircraft.contains("title="_ba + addon.title) != there)
                return u"the variation of "_s + addon.name;
            const bool brought =
                std::any_of(addon.places.cbegin(), addon.places.cend(), [](const QString& place) {
                    return place.endsWith(u".bgl"_s, Qt::CaseInsensitive);
                });
            const QString area = addon.name.startsWith(u"pack-"_s)
                                     ? u"Pack "_s + addon.name.last(1).toUpper()
                                     : u"Island"_s;
            if (brought && areas.contains(QString(u"Addon Scenery\\"_s + area).toLatin1()) != there)
                return u"the area of "_s + addon.name;
            const bool recorded = addon.state == State::Standing || addon.state == State::InCabinet;
            const auto record = modDatabase_Addon::addon(*m_world->database, addon.key);
            if (addon.key != 0 && record.ok() != recorded)
                return u"the record of "_s + addon.name;
            const InstallationStatus status = addon.state == State::InCabinet
                                                  ? InstallationStatus::FileCabinet
                                              : addon.imported ? InstallationStatus::Imported
                                                               : InstallationStatus::Installed;
            if (recorded && record->status != status)
                return u"the status of "_s + addon.name;
            if (addon.key != 0 &&
                cabinet.find(addon.key).has_value() != (addon.state == State::InCabinet))
                return u"the cabinet's archive of "_s + addon.name;
        }
        return {};
    }

    /// A step that is possible now: its name and what it does.
    std::pair<QString, std::function<QString()>> chooseStep()
    {
        const auto any = [this](const QList<qsizetype>& from) {
            return from[m_random.bounded(from.size())];
        };
        const QList<qsizetype> standing = thoseOf(State::Standing);
        const QList<qsizetype> stored = thoseOf(State::InCabinet);
        const QList<qsizetype> unrecorded = thoseOf(State::Unrecorded);
        const QList<qsizetype> out = thoseOf(State::Out);
        const QList<qsizetype> unrecordable = those([](const Addon& addon) {
            return addon.state == State::Standing && !addon.ownFolder.isEmpty() && !addon.imported;
        });
        const QList<qsizetype> again =
            those([](const Addon& a) { return a.state == State::Standing && !a.imported; });
        const int what = m_random.bounded(16);
        if (what < 2 && !unrecordable.isEmpty())
            return {u"records"_s, [this, i = any(unrecordable)] {
                        return remove(i, RemovalMethod::RemoveRecords);
                    }};
        if (what < 4 && !unrecorded.isEmpty())
            return {u"import"_s, [this, i = any(unrecorded)] { return import(i); }};
        if (what < 6 && !stored.isEmpty())
            return {u"take back"_s, [this, i = any(stored)] { return takeBack(i); }};
        if (what < 7 && !stored.isEmpty())
            return {u"remove from cabinet"_s, [this, i = any(stored)] {
                        return remove(i,
                                      m_random.bounded(2) == 0 ? RemovalMethod::Delete
                                                               : RemovalMethod::Recreate);
                    }};
        if (what < 8 && !again.isEmpty())
            return {u"reinstall"_s, [this, i = any(again)] { return reinstall(i); }};
        if (what < 12 && !standing.isEmpty()) {
            constexpr RemovalMethod methods[] = {RemovalMethod::Delete,
                                                 RemovalMethod::FileCabinet,
                                                 RemovalMethod::Recreate,
                                                 RemovalMethod::Copy};
            const int method = m_random.bounded(int(std::size(methods)));
            return {
                u"remove "_s + QString::number(int(methods[method])),
                [this, chosen = methods[method], i = any(standing)] { return remove(i, chosen); }};
        }
        if (what < 13 && !again.isEmpty())
            return {u"change"_s, [this, i = any(again)] { return changeByHand(i); }};
        if (!out.isEmpty())
            return {u"install"_s, [this, i = any(out)] { return install(i); }};
        return {u"nothing"_s, [] { return QString(); }};
    }

private Q_SLOTS:

    void everyWay_endsAtTheBeginning()
    {
        for (const OverlappingPack& pack : packsOfEveryFamily()) {
            Addon addon{
                pack.name, writePack(m_dir.filePath(u"packs"_s), pack.name, pack.files), {}, {}};
            if (pack.name == u"blue")
                addon.title = "Blue Bird";
            if (pack.name == u"green")
                addon.title = "Green Kestrel";
            if (pack.name == u"everyway")
                addon.ownFolder = u"SimObjects\\Airplanes\\Everyway\\"_s;
            if (pack.name == u"island")
                addon.ownFolder = u"Addon Scenery\\Island\\"_s;
            if (pack.name == u"trip")
                addon.ownFolder = u"Missions\\Backcountry\\Island Trip\\"_s;
            m_addons += addon;
        }
        m_untouched = std::make_unique<FlowWorld>(m_dir.filePath(u"untouched"_s));
        m_world = std::make_unique<FlowWorld>(m_dir.filePath(u"world"_s));
        m_world->prompts.defaultsBeyondQueue = true;
        QVERIFY(m_world->start());
        const TreeSnapshot beginning = m_world->tree();
        for (int sequence = 0; sequence < sequences; ++sequence) {
            QStringList taken;
            const auto tell = [&](const QString& what) {
                return qPrintable(
                    u"sequence %1 (%2): %3"_s.arg(sequence).arg(taken.join(u", "_s), what));
            };
            const auto take = [&](const QString& name, const std::function<QString()>& step) {
                taken += name;
                ++m_done[name];
                const QString failed = step();
                taken.last() += u' ' + m_about;
                return failed.isEmpty() ? difference() : failed;
            };
            for (int step = 0; step < stepsEach; ++step) {
                const auto [name, act] = chooseStep();
                const QString wrong = take(name, act);
                QVERIFY2(wrong.isEmpty(), tell(wrong));
            }
            for (qsizetype i = 0; i < m_addons.size(); ++i) {
                if (m_addons[i].state == State::Unrecorded) {
                    const QString wrong = take(u"import at the end"_s, [&] { return import(i); });
                    QVERIFY2(wrong.isEmpty(), tell(wrong));
                }
                if (m_addons[i].state != State::Out) {
                    const QString wrong = take(u"remove at the end"_s,
                                               [&] { return remove(i, RemovalMethod::Delete); });
                    QVERIFY2(wrong.isEmpty(), tell(wrong));
                }
            }
            const QStringList wrong = differences(beginning, m_world->tree(), Backups::Ignore);
            QVERIFY2(wrong.isEmpty(), tell(wrong.join(u"; "_s)));
        }
        for (auto it = m_done.cbegin(); it != m_done.cend(); ++it)
            QVERIFY2(it.value() > 40 / stride, qPrintable(it.key()));
    }
};

VT_TEST_CLASS(TestOrders)
#include "test_orders.moc"
