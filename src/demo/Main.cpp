// vantrel-demo: writes demonstration simulators, sample add-ons and archives to measure with. It
// never touches a real simulator.
#include "demo/BenchmarkPack.h"
#include "demo/DemoSimulator.h"
#include "demo/SampleAddons.h"
#include "platform/Text.h"

#include <QTextStream>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

using namespace Qt::StringLiterals;

namespace {

int complain(const QString& why)
{
    QTextStream(stderr) << why << Qt::endl;
    return 1;
}

int makeSimulator(const std::string& folder)
{
    const vt::ResultOf<vt::DemoSimulator> made =
        vt::writeDemoSimulator(QString::fromStdString(folder));
    if (!made)
        return complain(made.text);
    QTextStream(stdout) << u"prefix:    "_s << made->prefixHost << Qt::endl
                        << u"simulator: "_s << made->simulatorFolder << Qt::endl;
    return 0;
}

int makeSamples(const std::string& folder)
{
    const vt::ResultOf<QStringList> paths = vt::writeSampleAddons(QString::fromStdString(folder));
    if (!paths)
        return complain(paths.text);
    QTextStream out(stdout);
    const QList<vt::SampleAddon> samples = vt::sampleAddons();
    for (qsizetype i = 0; i < samples.size(); ++i)
        out << paths->at(i) << u": "_s << samples.at(i).about << Qt::endl;
    return 0;
}

struct PackOptions
{
    vt::BenchmarkPack pack;
    std::string out;
    std::string each;
    std::string into = "Addon Scenery/Benchmark";
};

int makePack(PackOptions options)
{
    const QStringList bounds = QString::fromStdString(options.each).split(u'-');
    bool minOk = false;
    bool maxOk = false;
    options.pack.bytesMin = bounds.first().toLongLong(&minOk);
    options.pack.bytesMax = bounds.last().toLongLong(&maxOk);
    if (!minOk || !maxOk || bounds.size() > 2 || options.pack.bytesMin < 0 ||
        options.pack.bytesMax < options.pack.bytesMin)
        return complain(u"--bytes-each takes a size such as 4096, or two such as 1024-2048."_s);
    options.pack.out = QString::fromStdString(options.out);
    options.pack.into = QString::fromStdString(options.into);
    const vt::ResultOf<vt::BenchmarkPackMade> made = vt::writeBenchmarkPack(options.pack);
    if (!made)
        return complain(made.text);
    QTextStream(stdout) << options.pack.files << u" files, "_s << vt::sizeText(made->bytes)
                        << u", packed to "_s << vt::sizeText(made->packed) << u" ("_s
                        << made->packed * 100 / qMax<qint64>(1, made->bytes) << u" %)"_s
                        << Qt::endl;
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"Writes demonstration simulators and sample add-ons."};
    app.require_subcommand(1);
    std::string folder;
    PackOptions options;

    CLI::App* simulator =
        app.add_subcommand("simulator", "Write a small prefix with a made-up simulator");
    simulator->add_option("DIR", folder, "A new or empty folder")->required();

    CLI::App* samples = app.add_subcommand("samples", "Write the sample add-ons as ZIP archives");
    samples->add_option("DIR", folder, "Folder, made when missing")->required();

    CLI::App* pack = app.add_subcommand("pack", "Write an archive to measure with");
    pack->add_option("--out", options.out, "The archive")->required();
    pack->add_option("--files", options.pack.files, "How many files")
        ->required()
        ->check(CLI::Range(1, 1'000'000));
    pack->add_option("--bytes-each", options.each, "Size of each, or MIN-MAX")->required();
    pack->add_option("--folders", options.pack.folders, "How many scenery areas")
        ->check(CLI::Range(1, 1'000));
    pack->add_option("--into", options.into, "Beginning of each area's folder");
    pack->add_option("--seed", options.pack.seed, "Another number gives other bytes");

    CLI11_PARSE(app, argc, argv);
    if (*simulator)
        return makeSimulator(folder);
    if (*samples)
        return makeSamples(folder);
    return makePack(options);
}
