// A session with windows' prompts and status over a demonstration simulator in a new folder.
#pragma once

#include "demo/DemoSimulator.h"
#include "session/Session.h"
#include "shell/forms/QtPrompts.h"
#include "shell/forms/QtStatus.h"

#include <QDir>
#include <QTextStream>

namespace bench {

inline int failed(const QString& why)
{
    QTextStream(stderr) << why << '\n';
    return 1;
}

inline vt::SessionOptions optionsIn(const QDir& folder)
{
    vt::SessionOptions options;
    options.home = folder.filePath(QStringLiteral("home"));
    options.prefix = folder.filePath(QStringLiteral("prefix"));
    return options;
}

struct DemoSession
{
    explicit DemoSession(const QDir& folder) : session(optionsIn(folder), prompts, status) {}

    /// Makes the folder with the simulator, and the session ready to write.
    vt::Result prepare(const QDir& folder)
    {
        if (!QDir().mkpath(folder.path()))
            return vt::Result::failure(QStringLiteral("cannot make ") + folder.path());
        if (const auto made = vt::writeDemoSimulator(optionsIn(folder).prefix); !made)
            return made.error();
        for (const vt::Result& ready :
             {session.prepare(), session.needSimulator(), session.needWriting()})
            if (!ready)
                return ready;
        return vt::Result::success();
    }

    vt::QtPrompts prompts;
    vt::QtStatus status{prompts};
    vt::Session session;
};

} // namespace bench
