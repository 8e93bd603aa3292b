// Traffic Tools, the outside programs that turn a traffic file into three text source files and
// back: locating and running them, reading and writing the source files, merging an add-on's flight
// plans into them and taking them out again, checking plans and telling them in words.
#pragma once

#include "platform/Processes.h"
#include "shell/Context.h"
#include "simconfig/engine/SaveProtocol.h"
#include "traffic/CAIAircraft.h"
#include "traffic/CAIFlightPlan.h"
#include "traffic/TrafficSources.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt {

struct OutsideTool;

/// Names and switches by the simulator's generation. The tool knows one generation alone: for the
/// others its source files have no stamp, and it is run without its switches.
struct TrafficNames
{
    QString stamp;                   ///< "030528", or empty
    QString files[trafficKindCount]; ///< by TrafficKind: "FlightPlans030528.txt"
    QString collectedAirports;       ///< "Airports_FS2004.txt", or empty
    QString convertSwitch;           ///< " /t4", or empty
    QString collectSwitch;           ///< " /c4", or empty

    [[nodiscard]] static TrafficNames of(int generation);

    [[nodiscard]] const QString& file(TrafficKind kind) const { return files[int(kind)]; }
};

/// " /fp /t4 /co030528" and " /fp /t4 /de030528".
[[nodiscard]] QString compileArguments(const TrafficNames& names);
[[nodiscard]] QString decompileArguments(const TrafficNames& names);

/// What plans are compared with.
struct PlanSurroundings
{
    QHash<qint64, CAIAircraft> aircraft; ///< by number
    AirportList airports;
    QSet<QByteArray> plans; ///< CAIFlightPlan::identity() of those that are there already
    QString aircraftFile;   ///< how the files are called in what is said
    QString airportsFile;
};

class CTrafficTools
{
public:
    /// Both must outlive this; \a processes may be null where no program is run.
    explicit CTrafficTools(Context& context, const Processes* processes = nullptr);

    // The tool.

    [[nodiscard]] static OutsideTool tool(const Context& context);
    /// Looks without asking; folder() is empty when there is none.
    bool Tool_Find();
    /// Finds it, or asks the user where it is, and checks that it is whole.
    [[nodiscard]] Result Tool_Locate();

    [[nodiscard]] const QString& folder() const { return m_folder; }

    [[nodiscard]] const TrafficNames& names() const { return m_names; }

    // The source files, after one of the above.

    /// Full path.
    [[nodiscard]] QString sourceFile(TrafficKind kind) const;
    [[nodiscard]] QString dataFile() const;

    /// How a source file that is missing is treated.
    enum class Missing
    {
        Ask,    ///< "File Not Found"
        Create, ///< as if the answer were yes
        Ignore, ///< it stays missing
    };

    /// Reads the three files and the record of what was added to them.
    [[nodiscard]] Result Sources_Read(FileActions& actions, Missing missing);
    /// Writes what differs from what was read, the record first. A file that somebody changed since
    /// is asked about ("Confirm Action"), kind Declined after a No; nothing was written then.
    [[nodiscard]] Result Sources_Write(FileActions& actions);

    [[nodiscard]] const TrafficSources& sources() const { return m_sources; }

    /// Into and out of the files in memory; what they say of files that stay as they are goes to
    /// the status and to \a told.
    TrafficSources::Change FlightPlans_Add(qint64 addonKey,
                                           const QString& addonName,
                                           const QList<TrafficSet>& sets,
                                           QStringList& told);
    TrafficSources::Change FlightPlans_Remove(qint64 addonKey, QStringList& told);

    // Running the tool, which must have been located.

    /// Source files to traffic file.
    [[nodiscard]] Result Sources_Compile();
    /// Traffic file to source files.
    [[nodiscard]] Result Sources_Create();
    /// A list of all airports of the simulator; one that is longer than the airports file may take
    /// its place, if the user wants it to.
    [[nodiscard]] Result Airports_Collect();

    /// Longest waits, in milliseconds.
    int compileTimeoutMs = 120'000;
    int createTimeoutMs = 60'000;
    int collectTimeoutMs = 60'000;

    // Plans.

    /// The plans of a file in its order, lines that are none passed over.
    [[nodiscard]] QList<CAIFlightPlan> FlightPlans_Read(const QList<QByteArray>& lines) const;
    /// What stands in a plan's way, a sentence each; empty when nothing was found.
    [[nodiscard]] static QStringList FlightPlan_Validate(const CAIFlightPlan& plan,
                                                         const PlanSurroundings& around);
    /// The surroundings that these lines make.
    [[nodiscard]] PlanSurroundings surroundings(const QList<QByteArray>& aircraft,
                                                const QList<QByteArray>& airports,
                                                const QList<QByteArray>& plans) const;

    /// "There are no flight plans to validate." and "No problems were detected."
    [[nodiscard]] static QString nothingToValidate();
    [[nodiscard]] static QString noProblems();

private:
    struct ReadFile
    {
        FileStamp stamp;
        QByteArray bytes;
    };

    [[nodiscard]] ResultOf<ReadFile> read(FileActions& actions, const QString& path) const;
    [[nodiscard]] Result readSource(FileActions& actions, TrafficKind kind, Missing missing);
    [[nodiscard]] Result writeSource(FileActions& actions, TrafficKind kind);
    [[nodiscard]] Result writeData(FileActions& actions);
    [[nodiscard]] Result confirmChanged(FileActions& actions);
    void takeBack(FileActions& actions, const QList<TrafficKind>& kinds) const;
    [[nodiscard]] bool differs(TrafficKind kind) const;
    [[nodiscard]] Result
    run(const QString& program, const QString& arguments, int timeoutMs, const QString& failure);
    [[nodiscard]] Result failed(const QString& text, const QString& cause);
    [[nodiscard]] Result replaceAirports(const QString& list);
    void status(const QString& text);

    Context& m_context;
    const Processes* m_processes;
    TrafficNames m_names;
    QString m_folder;
    TrafficSources m_sources;
    ReadFile m_read[trafficKindCount];
    ReadFile m_readData;
};

} // namespace vt
