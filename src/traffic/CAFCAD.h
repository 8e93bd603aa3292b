// AFCAD, the outside airport editor with its installer: locating it, handing it airport files to
// install, and putting back what it replaced.
#pragma once

#include "platform/FileTransaction.h"
#include "platform/Processes.h"
#include "shell/Context.h"
#include "traffic/CAFCADMetaGroup.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace vt {

struct OutsideTool;

class CAFCAD
{
public:
    /// Both must outlive this; \a processes may be null where no program is run.
    explicit CAFCAD(Context& context, const Processes* processes = nullptr);

    [[nodiscard]] static OutsideTool tool(const Context& context);

    /// Whether the simulator at hand keeps airport files in the way of the tool at all.
    [[nodiscard]] bool isOfUse() const;
    /// Looks for a whole tool without asking.
    bool Tool_Find();
    /// Finds it, or asks the user where it is, and checks that it is whole.
    [[nodiscard]] Result Tool_Locate();

    [[nodiscard]] const QString& folder() const { return m_folder; }

    /// Hands the files (full paths) to the installer and waits for it. The tool must have been
    /// located. Nothing of it is left behind but what the installer did.
    [[nodiscard]] Result AirportFiles_Install(const QStringList& files);
    /// "\"C:\AFCAD2\VTListFile.lst\" /W0"; with \a prompting the tool opens its window (" /W").
    [[nodiscard]] QString installArguments(bool prompting) const;

    /// Full path of the installed file of that name, and of what it replaced.
    [[nodiscard]] QString installedFile(const QString& name) const;
    [[nodiscard]] QString savedFile(const QString& name) const;
    /// Moves the saved copy back over the installed file. Without one the installed file stays, and
    /// the result says so.
    [[nodiscard]] Result AirportFile_Restore(FileTransaction& actions, const QString& name) const;

    /// The airport that a file of the tool tells in its comment lines; empty when it tells none.
    [[nodiscard]] QString AirportName_Get(QByteArrayView bytes) const;

    /// Longest wait, in milliseconds.
    int installTimeoutMs = 60'000;

private:
    Context& m_context;
    const Processes* m_processes;
    QString m_folder;
};

} // namespace vt
