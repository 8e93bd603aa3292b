// What a case-insensitive look-up costs beside a plain stat() of the exact name. bench/run compares
// the two; at most twice is allowed.
#include "platform/Files.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <sys/stat.h>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int folders = 40;
constexpr int filesEach = 200;

/// A tree of 8,000 files under a drive C:, their paths in both worlds.
struct Tree
{
    Tree()
    {
        drives.set(u'C', dir.path());
        for (int folder = 0; folder < folders; ++folder) {
            const QString area =
                u"Addon Scenery/Area "_s + QString::number(folder) + u"/Texture/"_s;
            QDir(dir.path()).mkpath(area);
            for (int file = 0; file < filesEach; ++file) {
                const QString relative = area + u"Ground_"_s + QString::number(file) + u".bmp"_s;
                QFile(dir.filePath(relative)).open(QIODevice::WriteOnly);
                const QString windows = u"C:\\"_s + QString(relative).replace(u'/', u'\\');
                hosts.push_back(QFile::encodeName(dir.filePath(relative)));
                exact.push_back(windows);
                otherCase.push_back(u"C:\\"_s + windows.mid(3).toUpper());
                missing.push_back(windows + u".none"_s);
            }
        }
    }

    QTemporaryDir dir;
    vt::DriveTable drives;
    std::vector<QByteArray> hosts;
    std::vector<QString> exact;
    std::vector<QString> otherCase;
    std::vector<QString> missing;
};

Tree& tree()
{
    static Tree shared;
    return shared;
}

void statExact(benchmark::State& state)
{
    size_t i = 0;
    struct stat info = {};
    for (auto _ : state) {
        benchmark::DoNotOptimize(::stat(tree().hosts[i].constData(), &info));
        i = (i + 1) % tree().hosts.size();
    }
}

void lookUp(benchmark::State& state, const std::vector<QString>& paths, bool expected)
{
    const vt::Files files(tree().drives);
    size_t i = 0;
    for (auto _ : state) {
        if (files.exists(paths[i]) != expected) {
            state.SkipWithError("wrong answer");
            break;
        }
        i = (i + 1) % paths.size();
    }
}

void existsExact(benchmark::State& state)
{
    lookUp(state, tree().exact, true);
}

void existsOtherCase(benchmark::State& state)
{
    lookUp(state, tree().otherCase, true);
}

void existsMissing(benchmark::State& state)
{
    lookUp(state, tree().missing, false);
}

} // namespace

BENCHMARK(statExact);
BENCHMARK(existsExact);
BENCHMARK(existsOtherCase);
BENCHMARK(existsMissing);
BENCHMARK_MAIN();
