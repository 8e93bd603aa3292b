// The flight plans, aircraft and airports that an add-on brings: which of its files hold them, and
// which files belong together. Reads no disk.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringView>

namespace vt {

class AnsiCodec;

/// The tool's three source files; numbers are stored nowhere.
enum class TrafficKind : quint8
{
    Aircraft,
    Airports,
    FlightPlans,
};

inline constexpr TrafficKind trafficKinds[] = {
    TrafficKind::Aircraft, TrafficKind::Airports, TrafficKind::FlightPlans};
inline constexpr int trafficKindCount = 3;

/// "Aircraft", "Airports" or "FlightPlans": how names of such files begin.
[[nodiscard]] QString trafficBaseName(TrafficKind kind);

/// One of an add-on's text files.
struct TrafficFile
{
    TrafficKind kind = TrafficKind::FlightPlans;
    QString folder; ///< in the source
    QString name;
    QByteArray bytes;
    qint32 item = 0; ///< whatever the owner knows it by
};

/// Whether it is a text, whose content decides.
[[nodiscard]] bool mayBeTrafficFile(QStringView name);
/// Whether it is one of the tool's files: most lines that say something are records of that kind.
/// Flight plans may have any name, the lists begin with "Aircraft" and "Airports". \a kind is set
/// then.
[[nodiscard]] bool
isTrafficFile(QStringView name, const QByteArray& bytes, const AnsiCodec& ansi, TrafficKind& kind);

/// Files that belong together: the plans' numbers are those of its aircraft.
struct TrafficSet
{
    QList<QByteArray> lines[trafficKindCount]; ///< by TrafficKind, as they stand

    [[nodiscard]] const QList<QByteArray>& of(TrafficKind kind) const { return lines[int(kind)]; }
};

/// The files in sets: by folder and by what follows the base name ("_AUR"). Plans without aircraft
/// of that name take those of the only aircraft file in their folder.
[[nodiscard]] QList<TrafficSet> trafficSets(const QList<TrafficFile>& files);

} // namespace vt
