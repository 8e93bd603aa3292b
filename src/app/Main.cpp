// The desktop program.
#include "app/Options.h"
#include "app/StartUp.h"
#include "platform/EndSignals.h"
#include "shell/forms/Icons.h"

#include <QApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    using namespace Qt::StringLiterals;
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"vantrel"_s);
    QApplication::setDesktopFileName(u"vantrel"_s);
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
    if (!start.Main())
        return start.exitStatus();
    // As the window's own end; one that must not close now (it installs) stays.
    const vt::EndSignals asked([&start] { start.window()->close(); });
    return QApplication::exec();
}
