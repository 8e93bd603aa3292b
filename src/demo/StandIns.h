// Contents of made-up simulator files: texts, pictures, sounds, and bytes that stand in for models
// and programs. Everything is computed, so the same call gives the same bytes on every machine.
#pragma once

#include <QByteArray>
#include <QString>

namespace vt::standins {

/// Latin-1 bytes of \a lines with every "\n" as CR LF, the way the simulator writes its files.
[[nodiscard]] QByteArray text(const QString& lines);
/// As text(), with bare LF line ends, the way many add-ons come.
[[nodiscard]] QByteArray textLf(const QString& lines);
/// \a size bytes that do not deflate.
[[nodiscard]] QByteArray noise(qsizetype size, quint64 seed);
/// \a size bytes that deflate to about \a percent of it; meant for 10 to 100.
[[nodiscard]] QByteArray mixture(qsizetype size, quint64 seed, int percent);
/// A number from a name, to seed the others with.
[[nodiscard]] quint64 seedOf(const QString& name);
/// A 24-bit Windows bitmap.
[[nodiscard]] QByteArray picture(int width, int height, quint64 seed);
/// An 8-bit mono wave file of \a milliseconds.
[[nodiscard]] QByteArray sound(int milliseconds, quint64 seed);
/// A "RIFF" container of \a form ("MDLX", "BGL ", ...) with \a size bytes in it.
[[nodiscard]] QByteArray container(const char* form, qsizetype size, quint64 seed);
/// \a magic ("MZ", "MSCF", ...) followed by \a size bytes.
[[nodiscard]] QByteArray marked(const QByteArray& magic, qsizetype size, quint64 seed);

} // namespace vt::standins
