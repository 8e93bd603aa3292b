// The tool's three source files in memory, with the record of what was added to them: add-ons'
// lines go in and come out again, exactly. Knows no tool and asks nothing.
#pragma once

#include "traffic/SourceLines.h"
#include "traffic/TrafficRecord.h"

#include <QList>
#include <QStringList>

namespace vt {

class AnsiCodec;

class TrafficSources
{
public:
    /// \a ansi must outlive this.
    explicit TrafficSources(const AnsiCodec& ansi) : m_ansi(&ansi) {}

    SourceLines files[trafficKindCount]; ///< by TrafficKind
    TrafficRecord record;

    /// Lines that went into, or out of, each file.
    struct Change
    {
        QList<QByteArray> lines[trafficKindCount]; ///< by TrafficKind
        QStringList remarks;                       ///< aircraft that were given another number

        [[nodiscard]] bool isEmpty(TrafficKind kind) const { return lines[int(kind)].isEmpty(); }

        [[nodiscard]] bool isEmpty() const;
    };

    /// Adds what is not there yet, at the ends of the files. An aircraft whose number is taken by
    /// another one gets a free number, and the plans follow it. The add-on is recorded in any case,
    /// with the lines of other add-ons that it would have brought too.
    Change add(qint64 addonKey, const QByteArray& addonName, const QList<TrafficSet>& sets);
    /// Takes the add-on's lines out, but for those that another add-on brought too. Once no add-on
    /// has lines in a file, its last line ends as it did before.
    Change remove(qint64 addonKey);
    /// The airports file has become another one: nothing in it is an add-on's any more.
    void forgetAirports();

    /// Whether a file that did not exist before the first add-on is of no use any more: to be
    /// asked after remove(), and forgotten with forgetCreated().
    [[nodiscard]] bool isNeedless(TrafficKind kind) const;

    void forgetCreated(TrafficKind kind) { record.files[int(kind)].created = false; }

private:
    using Numbers = QHash<qint64, qint64>;

    /// One add-on on its way in.
    struct Adding
    {
        TrafficRecord::Addon& addon;
        Change change;
        QSet<QByteArray> own[trafficKindCount];    ///< its recorded lines
        QSet<QByteArray> others[trafficKindCount]; ///< those of other add-ons
    };

    Numbers addAircraft(Adding& adding, const TrafficSet& set);
    void addPlans(Adding& adding, const TrafficSet& set, const Numbers& numbers);
    void addAirports(Adding& adding, const TrafficSet& set);
    void put(Adding& adding, TrafficKind kind, const QByteArray& line);
    static void share(Adding& adding, TrafficKind kind, const QByteArray& line);

    const AnsiCodec* m_ansi;
};

} // namespace vt
