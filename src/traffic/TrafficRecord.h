// The system's own record of what it added to the tool's source files, and for which add-on: the
// file "VT A.I. Flight Plans Data File.txt". By it the lines are found again and taken out.
#pragma once

#include "traffic/TrafficAddon.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

#include <optional>

namespace vt {

class TrafficRecord
{
public:
    struct Addon
    {
        qint64 key = 0;
        QByteArray name;                           ///< for people; ANSI bytes
        QList<QByteArray> lines[trafficKindCount]; ///< by TrafficKind, exactly as in the file
    };

    /// What is known of one source file.
    struct File
    {
        bool created = false; ///< by us
        /// The line that was the last one and had no end; nothing when it had one.
        std::optional<QByteArray> unended;
    };

    QList<Addon> addons;
    File files[trafficKindCount]; ///< by TrafficKind

    /// Lines that make no sense are passed over.
    [[nodiscard]] static TrafficRecord ofBytes(QByteArrayView bytes);
    /// Empty when there is nothing to be remembered.
    [[nodiscard]] QByteArray bytes() const;

    [[nodiscard]] const Addon* find(qint64 key) const;
    /// Made when there is none.
    Addon& addonFor(qint64 key, const QByteArray& name);
    /// The lines of all add-ons but \a key.
    [[nodiscard]] QSet<QByteArray> linesOfOthers(qint64 key, TrafficKind kind) const;
    /// Whether any add-on has lines in the file.
    [[nodiscard]] bool hasAny(TrafficKind kind) const;
};

} // namespace vt
