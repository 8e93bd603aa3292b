// The desktop program.
#include "app/Options.h"
#include "app/StartUp.h"
#include "platform/EndSignals.h"
#include "shell/forms/DarkMarks.h"
#include "shell/forms/Icons.h"

#include <QApplication>
#include <QTextStream>
#include <QTimer>

int main(int argc, char** argv)
{
    using namespace Qt::StringLiterals;
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"vantrel"_s);
    QApplication::setDesktopFileName(u"vantrel"_s);
    vt::DarkMarks::install();
    QApplication::setWindowIcon(vt::icons::program());
    const vt::ResultOf<vt::app::Options> options =
        vt::app::optionsOf(QApplication::arguments().mid(1));
    if (!options) {
        QTextStream(stderr) << options.text << u'\n';
        return 2;
    }
    if (options->help || options->version) {
        QTextStream(stdout) << (options->help
                                    ? vt::app::usage()
                                    : u"vantrel "_s + QStringLiteral(VANTREL_VERSION) + u'\n');
        return 0;
    }
    vt::app::StartUp start(*options);
    bool started = false;
    bool ends = false;
    // As the window's own end, once what runs has ended; a start, too, so that nothing is closed
    // below it.
    const vt::EndSignals asked([&] {
        ends = true;
        if (started)
            start.leave();
    });
    if (!start.Main())
        return start.exitStatus();
    started = true;
    if (ends)
        QTimer::singleShot(0, start.window(), [&start] { start.leave(); });
    return QApplication::exec();
}
