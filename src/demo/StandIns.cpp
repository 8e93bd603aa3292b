#include "demo/StandIns.h"

#include "demo/Bytes.h"

#include <QtEndian>

#include <cstring>

namespace vt::standins {

using demobytes::appendLe;
using demobytes::nextNumber;

namespace {

void fillNoise(char* out, qsizetype size, quint64& state)
{
    for (qsizetype at = 0; at < size; at += 8) {
        const quint64 number = qToLittleEndian(nextNumber(state));
        memcpy(out + at, &number, static_cast<size_t>(qMin<qsizetype>(8, size - at)));
    }
}

} // namespace

QByteArray text(const QString& lines)
{
    return textLf(lines).replace("\n", "\r\n");
}

QByteArray textLf(const QString& lines)
{
    return lines.toLatin1();
}

quint64 seedOf(const QString& name)
{
    quint64 seed = 0xCBF29CE484222325ULL;
    for (const char byte : name.toUtf8())
        seed = (seed ^ static_cast<uchar>(byte)) * 0x100000001B3ULL;
    return seed;
}

QByteArray noise(qsizetype size, quint64 seed)
{
    QByteArray out(size, Qt::Uninitialized);
    fillNoise(out.data(), size, seed);
    return out;
}

QByteArray mixture(qsizetype size, quint64 seed, int percent)
{
    // Runs of noise between runs of one byte, short enough that even small files hold both.
    constexpr qsizetype block = 128;
    QByteArray out(size, Qt::Uninitialized);
    for (qsizetype at = 0; at < size; at += block) {
        const qsizetype length = qMin(block, size - at);
        const qsizetype hard = length * percent / 100;
        fillNoise(out.data() + at, hard, seed);
        memset(out.data() + at + hard,
               static_cast<int>(seed >> 60),
               static_cast<size_t>(length - hard));
    }
    return out;
}

QByteArray picture(int width, int height, quint64 seed)
{
    const int stride = (width * 3 + 3) / 4 * 4;
    QByteArray out("BM");
    appendLe<quint32>(out, static_cast<quint32>(54 + stride * height));
    appendLe<quint32>(out, 0);
    appendLe<quint32>(out, 54);
    appendLe<quint32>(out, 40);
    appendLe<qint32>(out, width);
    appendLe<qint32>(out, height);
    appendLe<quint16>(out, 1);
    appendLe<quint16>(out, 24);
    for (const quint32 field : {0U, static_cast<quint32>(stride * height), 2835U, 2835U, 0U, 0U})
        appendLe<quint32>(out, field);
    const quint64 tint = nextNumber(seed);
    for (int y = 0; y < height; ++y) {
        QByteArray row(stride, '\0');
        for (int x = 0; x < width; ++x) {
            row[x * 3] = static_cast<char>((tint & 0xFF) ^ static_cast<quint64>(x * 255 / width));
            row[x * 3 + 1] =
                static_cast<char>(((tint >> 8) & 0xFF) ^ static_cast<quint64>(y * 255 / height));
            row[x * 3 + 2] = static_cast<char>((tint >> 16) & 0xFF);
        }
        out += row;
    }
    return out;
}

QByteArray sound(int milliseconds, quint64 seed)
{
    constexpr quint32 rate = 11025;
    const quint32 samples = rate * static_cast<quint32>(milliseconds) / 1000;
    QByteArray out("RIFF");
    appendLe<quint32>(out, 36 + samples);
    out += "WAVEfmt ";
    appendLe<quint32>(out, 16);
    appendLe<quint16>(out, 1);
    appendLe<quint16>(out, 1);
    appendLe<quint32>(out, rate);
    appendLe<quint32>(out, rate);
    appendLe<quint16>(out, 1);
    appendLe<quint16>(out, 8);
    out += "data";
    appendLe<quint32>(out, samples);
    // A triangle wave: integers only, so that no machine rounds differently.
    const quint32 period = 20 + static_cast<quint32>(nextNumber(seed) % 180);
    for (quint32 i = 0; i < samples; ++i) {
        const quint32 phase = i % period;
        const quint32 height = phase * 2 < period ? phase * 2 : (period - phase) * 2;
        out += static_cast<char>(64 + height * 128 / period);
    }
    return out;
}

QByteArray container(const char* form, qsizetype size, quint64 seed)
{
    QByteArray out("RIFF");
    appendLe<quint32>(out, static_cast<quint32>(size + 4));
    out += form;
    return out + mixture(size, seed, 50);
}

QByteArray marked(const QByteArray& magic, qsizetype size, quint64 seed)
{
    return magic + mixture(size, seed, 70);
}

} // namespace vt::standins
