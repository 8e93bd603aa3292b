// The catalogue of installed aircraft on a simulator that bench/run filled: the first look, the
// later ones, one title check; and the verification of every aircraft. bench-catalogue SIMULATOR
// PROGRAM prints one line of JSON. With "later" behind them any simulator will do, and only the
// looks are measured; with "first" the first one is all that happens.
#include "catalogue/Catalogue.h"

#include "catalogue/UsedFiles.h"
#include "platform/DirectActions.h"
#include "platform/DriveTable.h"
#include "platform/Gate.h"
#include "platform/Prompt.h"
#include "simconfig/AircraftChecks.h"
#include "simconfig/CAircraft.h"

#include <QStringList>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

struct NoPrompts final : vt::Prompts
{
    vt::Button ask(const vt::Prompt& prompt) override { return prompt.defaultButton; }

    vt::CheckedAnswer askChecked(const vt::Prompt& prompt) override { return {ask(prompt), false}; }

    std::optional<qsizetype> choose(const vt::ChoicePrompt&) override { return std::nullopt; }

    std::optional<QString> askText(const vt::TextPrompt&) override { return std::nullopt; }
};

/// Elapsed time, as a person waits; the medians of many rounds are taken.
struct Stopwatch
{
    void start() { m_begin = now(); }

    [[nodiscard]] double milliseconds() const { return now() - m_begin; }

private:
    static double now()
    {
        timespec t{};
        clock_gettime(CLOCK_MONOTONIC, &t);
        return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
    }

    double m_begin = 0;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct World
{
    World(const QString& simulator, const QString& program)
    {
        drives.set(u'S', simulator);
        drives.set(u'P', program);
        global.setProgramFolder(u"P:\\"_s);
        global.setSimulatorFolder(u"S:\\"_s);
        gate.setRoot(vt::RootId::Program, global.programFolder);
        gate.setRoot(vt::RootId::Simulator, global.simulatorFolder);
    }

    vt::DriveTable drives;
    vt::Files files{drives};
    vt::Gate gate{files};
    vt::DirectActions actions{gate};
    vt::AnsiCodec ansi{1252};
    NoPrompts prompts;
    vt::SilentStatus status;
    vt::Clock clock;
    vt::Services services{files, gate, actions, prompts, status, clock, ansi};
    vt::GlobalRecord global;
};

/// Every variation is verified; the kneeboard files that no aircraft has are found missing.
bool verifyAll(World& world, const vt::Catalogue& catalogue, double& milliseconds)
{
    world.files.newOperation();
    Stopwatch timer;
    timer.start();
    vt::AircraftChecks checks(vt::ConfigAccess(world.services), world.files, world.global);
    for (quint32 i = 0; i < catalogue.variationCount(); ++i) {
        const vt::CatalogueVariation variation = catalogue.variation(i);
        vt::CAircraft aircraft{vt::ConfigAccess(world.services)};
        aircraft.sConfigurationFile = catalogue.file(variation.config);
        aircraft.sSection = variation.section.toString();
        if (!aircraft.Verify(checks).value(0).contains(u"kneeboard"))
            return false;
    }
    milliseconds = timer.milliseconds();
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::fprintf(stderr, "bench-catalogue: SIMULATOR PROGRAM [first|later]\n");
        return 2;
    }
    World world(QString::fromLocal8Bit(argv[1]), QString::fromLocal8Bit(argv[2]));
    Stopwatch timer;

    timer.start();
    vt::Catalogue first(world.global);
    first.open(world.services);
    const double firstMs = timer.milliseconds();
    if (argc > 3 && std::strcmp(argv[3], "first") == 0)
        return first.variationCount() > 0 ? 0 : 1;

    timer.start();
    if (!first.save(world.services).ok)
        return 1;
    const double saveMs = timer.milliseconds();

    std::vector<double> later;
    for (int i = 0; i < (argc > 3 ? 300 : 9); ++i) {
        timer.start();
        vt::Catalogue again(world.global);
        again.open(world.services);
        later.push_back(timer.milliseconds());
        if (again.variationCount() != first.variationCount())
            return 1;
    }
    if (argc > 3) {
        std::printf(
            "{\"first\": %.3f, \"save\": %.3f, \"later\": %.3f}\n", firstMs, saveMs, median(later));
        return 0;
    }
    timer.start();
    const int checks = 200;
    for (int i = 0; i < checks; ++i) {
        if (first.titleIsUsed(u"No such title "_s + QString::number(i), {}, {}))
            return 1;
    }
    const double titleMs = timer.milliseconds() / checks;
    timer.start();
    const vt::UsedFiles used(first);
    if (!used.isUsed(u"S:\\Effects\\fx_1.fx"_s))
        return 1;
    const double usedMs = timer.milliseconds();
    double verifyMs = 0;
    if (!verifyAll(world, first, verifyMs))
        return 1;
    std::printf("{\"variations\": %u, \"first\": %.3f, \"save\": %.3f, \"later\": %.3f, "
                "\"title\": %.5f, \"used\": %.3f, \"verify\": %.3f}\n",
                first.variationCount(),
                firstMs,
                saveMs,
                median(later),
                titleMs,
                usedMs,
                verifyMs);
    return 0;
}
