// One aircraft of computer-controlled traffic (a line of the tool's aircraft file), and the
// airports of its airports file. Pure text.
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace vt {

struct CAIAircraft
{
    QString sLine;            ///< as it stands in the file
    qint64 lngNumber = 0;     ///< 12 of "AC#12"
    QStringList sarrayValues; ///< what follows: its speed in knots, its title, without quotes

    /// Nothing for a line that does not begin with "AC#", a number and a ",".
    [[nodiscard]] static std::optional<CAIAircraft> ofLine(const QString& line);
    /// The number behind "AC#"; nothing when the text does not begin so.
    [[nodiscard]] static std::optional<qint64> numberOf(QStringView text);
    /// The line with another number behind its "AC#"; any other line unchanged.
    [[nodiscard]] static QByteArray renumbered(const QByteArray& line, qint64 number);

    /// Its title; "AC#12" without one.
    [[nodiscard]] QString name() const;
    /// What is said of it beside its name: "AC#12, 450 knots".
    [[nodiscard]] QString detail() const;
    /// Equal for lines that tell of the same aircraft under whatever number.
    [[nodiscard]] QString identity() const;
};

/// The airports that an airports file lists.
class AirportList
{
public:
    /// The codes of a line, in upper case. A line that gives one airport's position holds one code,
    /// its first field; any other is codes alone. Comments hold none.
    [[nodiscard]] static QStringList codesOf(const QString& line);
    /// Whether a field of the line is "*", which stands for all airports.
    [[nodiscard]] static bool standsForAll(const QString& line);

    void addLine(const QString& line);
    [[nodiscard]] bool contains(const QString& code) const;

private:
    QSet<QString> m_codes;
    bool m_all = false;
};

} // namespace vt
