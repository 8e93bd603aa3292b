// What reading and changing configuration files costs in memory, beside GLib's key file on the same
// bytes. bench/run compares the two; at most half is allowed.
#include "platform/AnsiCodec.h"
#include "platform/DirectActions.h"
#include "simconfig/CSceneryCfgMgr.h"
#include "simconfig/engine/INI_Lines.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <glib.h>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace {

constexpr int aircraft = 1000;
constexpr int areas = 5000;
constexpr int addedAreas = 1000;

/// Files in the likeness of real ones, with nothing in them that the peer refuses.
class SampleFiles
{
public:
    QByteArray aircraftCfg()
    {
        QByteArray bytes;
        for (int i = 0; i < 3; ++i)
            bytes += variation(i);
        bytes +=
            "[General]\r\natc_type=KESTREL\r\natc_model=K180\r\nperformance=\"Cruise 140 kt\"\r\n"
            "Category=airplane\r\n\r\n";
        for (const char* section : {"WEIGHT_AND_BALANCE",
                                    "flight_tuning",
                                    "GeneralEngineData",
                                    "electrical",
                                    "contact_points",
                                    "LIGHTS",
                                    "flaps.0"})
            bytes += numbers(section);
        return bytes;
    }

    static QByteArray sceneryCfg()
    {
        QByteArray bytes = "[General]\r\nTitle=FSX World Scenery\r\nDescription=All\r\n"
                           "Clean_on_Exit=TRUE\r\n\r\n";
        for (int i = 1; i <= areas; ++i) {
            const QByteArray number = QByteArray::number(i);
            bytes += "[Area." + number.rightJustified(3, '0') + "]\r\nTitle=Region " + number +
                     "\r\nLocal=Scenery\\Region" + number +
                     "\r\nRemote=\r\nActive=TRUE\r\nRequired=FALSE\r\nLayer=" + number + "\r\n\r\n";
        }
        return bytes;
    }

private:
    QByteArray variation(int i)
    {
        const QByteArray own = QByteArray::number(m_random.bounded(100'000));
        return "[fltsim." + QByteArray::number(i) + "]\r\ntitle=Kestrel 180 No " + own +
               "\r\nsim=kestrel\r\nmodel=\r\npanel=\r\nsound=\r\ntexture=" + QByteArray::number(i) +
               "\r\nkb_checklists=kestrel_check\r\nkb_reference=kestrel_ref\r\natc_id=N" + own +
               "\r\natc_airline=\r\natc_flight_number=\r\nui_manufacturer=\"Kestrel\"\r\n"
               "ui_type=\"180\"\r\nui_variation=\"Pilot's choice " +
               own + "\" // the " + own +
               "th\r\nui_typerole=\"Single Engine Prop\"\r\nui_createdby=\"A / B\"\r\n"
               "description=\"A light aircraft. Built for clubs and for people who like the "
               "view.\"\r\n\r\n";
    }

    QByteArray numbers(const QByteArray& section)
    {
        QByteArray bytes = '[' + section + "]\r\n";
        for (int i = 0; i < 24; ++i)
            bytes += (i % 9 == 8 ? "//point." : "point.") + QByteArray::number(i) +
                     "\t= " + QByteArray::number(m_random.bounded(10'000) / 100.0) +
                     ", -1.5, 0.00, 1600, 0" +
                     (i % 3 == 0   ? "\t// as measured"
                      : i % 3 == 1 ? " ; feet"
                                   : "") +
                     "\r\n";
        return bytes + "\r\n";
    }

    QRandomGenerator m_random{11};
};

const QList<QByteArray>& aircraftFiles()
{
    static const QList<QByteArray> files = [] {
        SampleFiles samples;
        QList<QByteArray> all;
        for (int i = 0; i < aircraft; ++i)
            all.push_back(samples.aircraftCfg());
        return all;
    }();
    return files;
}

const vt::AnsiCodec& codePage()
{
    static const vt::AnsiCodec ansi(1252);
    return ansi;
}

bool loadByPeer(const QByteArray& bytes)
{
    GKeyFile* file = g_key_file_new();
    const bool loaded = g_key_file_load_from_data(
        file, bytes.constData(), gsize(bytes.size()), G_KEY_FILE_NONE, nullptr);
    g_key_file_free(file);
    return loaded;
}

/// Recognises every header and every entry by the engine's rules. The lines themselves stay what
/// all operations work on.
qsizetype parse(const QByteArray& bytes)
{
    const vt::LineArray lines = vt::LineArray::ofBytes(bytes, codePage());
    qsizetype found = 0;
    QByteArray room;
    for (const QByteArray& line : lines.lines) {
        if (const std::optional<QString> name = ini::sectionOfLine(lines, line)) {
            found += name->size();
            continue;
        }
        if (const auto entry = ini::splitView(ini::strippedView(line, room).data))
            found += entry->key.size() + entry->value.size();
    }
    return found;
}

void aircraftOurs(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QByteArray& bytes : aircraftFiles())
            benchmark::DoNotOptimize(parse(bytes));
    }
}

void aircraftLines(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QByteArray& bytes : aircraftFiles())
            benchmark::DoNotOptimize(vt::LineArray::ofBytes(bytes, codePage()).lines.size());
    }
}

void aircraftPeer(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QByteArray& bytes : aircraftFiles()) {
            if (!loadByPeer(bytes))
                state.SkipWithError("the peer refuses the bytes");
        }
    }
}

/// A scenery library on a real disk.
struct Library
{
    Library()
    {
        QDir(dir.path()).mkpath(u"FSX"_s);
        drives.set(u'C', dir.path());
        gate.setRoot(vt::RootId::Simulator, u"C:\\FSX\\"_s);
        if (!actions.replace(path, bytes))
            qFatal("the scenery library could not be written");
    }

    vt::CSceneryCfgMgr manager()
    {
        return {vt::ConfigAccess(actions, prompts, codePage()), path, u"C:\\FSX\\"_s};
    }

    /// Nobody is there to be asked.
    struct NoPrompts final : vt::Prompts
    {
        vt::Button ask(const vt::Prompt& prompt) override { return prompt.defaultButton; }

        vt::CheckedAnswer askChecked(const vt::Prompt& p) override { return {ask(p), false}; }

        std::optional<qsizetype> choose(const vt::ChoicePrompt&) override { return std::nullopt; }

        std::optional<QString> askText(const vt::TextPrompt&) override { return std::nullopt; }
    };

    const QString path = u"C:\\FSX\\Scenery.cfg"_s;
    const QByteArray bytes = SampleFiles::sceneryCfg();
    QTemporaryDir dir;
    vt::DriveTable drives;
    vt::Files files{drives};
    vt::Gate gate{files};
    vt::DirectActions actions{gate};
    NoPrompts prompts;
};

void sceneryOurs(benchmark::State& state)
{
    Library library;
    for (auto _ : state) {
        vt::CSceneryCfgMgr manager = library.manager();
        if (!manager.SceneryCfg_Load() || manager.areas().size() != areas)
            state.SkipWithError("the scenery library could not be loaded");
    }
}

void sceneryPeer(benchmark::State& state)
{
    Library library;
    const QByteArray path = QFile::encodeName(library.dir.filePath(u"FSX/Scenery.cfg"_s));
    for (auto _ : state) {
        GKeyFile* file = g_key_file_new();
        if (!g_key_file_load_from_file(file, path.constData(), G_KEY_FILE_NONE, nullptr))
            state.SkipWithError("the peer refuses the bytes");
        g_key_file_free(file);
    }
}

void sceneryAdd(benchmark::State& state)
{
    Library library;
    for (auto _ : state) {
        vt::CSceneryCfgMgr manager = library.manager();
        bool good = manager.SceneryCfg_Load().ok;
        for (int i = 0; i < addedAreas; ++i) {
            const QString folder = u"C:\\FSX\\Addon Scenery\\New "_s + QString::number(i);
            good = manager.SceneryCfg_AddArea(u"New"_s, folder, true).added && good;
        }
        if (!good || !manager.SceneryCfg_Save())
            state.SkipWithError("the areas could not be added");
        state.PauseTiming();
        good = library.actions.replace(library.path, library.bytes).ok;
        state.ResumeTiming();
    }
}

} // namespace

BENCHMARK(aircraftOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(aircraftLines)->Unit(benchmark::kMillisecond);
BENCHMARK(aircraftPeer)->Unit(benchmark::kMillisecond);
BENCHMARK(sceneryOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(sceneryPeer)->Unit(benchmark::kMillisecond);
BENCHMARK(sceneryAdd)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_MAIN();
