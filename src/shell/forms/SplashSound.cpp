#include "shell/forms/SplashSound.h"

#include "shell/GlobalRecord.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QtEndian>

#include <cmath>
#include <numbers>

using namespace Qt::StringLiterals;

namespace vt::splashsound {

namespace {

constexpr int rate = 22'050;
constexpr double seconds = 1.2;
constexpr double tones[] = {523.25, 659.26, 783.99}; // C, E, G, one after the other
constexpr double toneEvery = 0.18;
constexpr double loudness = 0.16;
constexpr int headerSize = 44;

double at(double time)
{
    double sum = 0;
    double begins = 0;
    for (const double tone : tones) {
        if (const double since = time - begins; since > 0)
            sum += std::sin(2 * std::numbers::pi * tone * since) * std::exp(-4 * since) *
                   std::fmin(1.0, since * 80);
        begins += toneEvery;
    }
    return sum * loudness * std::fmin(1.0, (seconds - time) * 10);
}

template <typename T> void append(QByteArray& bytes, T value)
{
    const T little = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char*>(&little), sizeof little);
}

} // namespace

QByteArray wave()
{
    const int samples = int(rate * seconds);
    const quint32 length = quint32(samples) * 2;
    QByteArray bytes("RIFF");
    append<quint32>(bytes, headerSize - 8 + length);
    bytes += "WAVEfmt ";
    append<quint32>(bytes, 16);
    append<quint16>(bytes, 1); // plain samples
    append<quint16>(bytes, 1);
    append<quint32>(bytes, rate);
    append<quint32>(bytes, rate * 2);
    append<quint16>(bytes, 2);
    append<quint16>(bytes, 16);
    bytes += "data";
    append<quint32>(bytes, length);
    for (int i = 0; i < samples; ++i)
        append<qint16>(bytes, qint16(at(double(i) / rate) * 32'767));
    return bytes;
}

void play(Context& context)
{
    const QString platform = QGuiApplication::platformName();
    if (platform == "offscreen"_L1 || platform == "minimal"_L1)
        return;
    const QString file = context.global.tempFolder + u"Start.wav"_s;
    if (!context.services.actions.replace(file, wave()))
        return;
    QProcess process;
    process.setProgram(u"/bin/sh"_s);
    process.setArguments({u"-c"_s,
                          u"pw-play \"$1\" || paplay \"$1\" || aplay -q \"$1\""_s,
                          u"sh"_s,
                          QFile::decodeName(context.services.files.hostPath(file))});
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

} // namespace vt::splashsound
