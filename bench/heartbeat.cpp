// How long windows keep their user waiting: a large add-on is chosen and installed through the
// wizard in the main window, offscreen, while a timer beats. The gaps between beats are what the
// user would feel; the longest are told with what the program was saying.
//
//   bench-heartbeat FOLDER [FILES BYTES-MIN BYTES-MAX]
//
// FOLDER (made, must be missing or empty) lies on the disk that is to be measured.
#include "Heart.h"
#include "demo/BenchmarkPack.h"
#include "demo/DemoSimulator.h"
#include "install/forms/frmInstall_Wizard.h"
#include "session/Session.h"
#include "shell/forms/QtPrompts.h"
#include "shell/forms/QtStatus.h"
#include "shell/forms/frmControl.h"

#include <QApplication>
#include <QDir>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

int failed(const QString& why)
{
    QTextStream(stderr) << why << '\n';
    return 1;
}

int measure(const QDir& folder, const QString& archive)
{
    vt::QtPrompts prompts;
    vt::QtStatus status(prompts);
    vt::SessionOptions options;
    options.home = folder.filePath(u"home"_s);
    options.prefix = folder.filePath(u"prefix"_s);
    vt::Session session(options, prompts, status);
    for (const vt::Result& ready :
         {session.prepare(), session.needSimulator(), session.needWriting()}) {
        if (!ready)
            return failed(ready.text);
    }
    vt::frmControl window(session.context(), status);
    window.resize(1280, 800);
    window.show();
    auto* wizard = static_cast<vt::frmInstall_Wizard*>(window.openTool(
        u"wizard"_s, {}, [&] { return new vt::frmInstall_Wizard(session, window); }));
    QApplication::processEvents();

    bench::Heart heart(status);
    heart.begin();
    const vt::Result chosen = wizard->choose(session.userPath(archive));
    QApplication::processEvents();
    heart.end(u"choose"_s);
    if (!chosen)
        return failed(chosen.text);
    heart.begin();
    wizard->SubForm_InstallationSummary_Show();
    QApplication::processEvents();
    heart.end(u"summary"_s);
    heart.begin();
    wizard->Install_Finish();
    QApplication::processEvents();
    heart.end(u"install"_s);
    session.close();
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 5)
        return failed(u"bench-heartbeat FOLDER [FILES BYTES-MIN BYTES-MAX]"_s);
    const QDir folder(arguments.at(1));
    if (!QDir().mkpath(folder.path()))
        return failed(u"cannot make "_s + folder.path());
    const auto simulator = vt::writeDemoSimulator(folder.filePath(u"prefix"_s));
    if (!simulator)
        return failed(simulator.text);
    vt::BenchmarkPack pack;
    pack.out = folder.filePath(u"pack.zip"_s);
    pack.files = 1500;
    pack.bytesMin = 200 << 10;
    pack.bytesMax = 600 << 10;
    pack.folders = 10;
    if (arguments.size() == 5) {
        pack.files = arguments.at(2).toInt();
        pack.bytesMin = arguments.at(3).toLongLong();
        pack.bytesMax = arguments.at(4).toLongLong();
    }
    const auto made = vt::writeBenchmarkPack(pack);
    if (!made)
        return failed(made.text);
    QTextStream(stdout) << pack.files << " files, " << (made->bytes >> 20) << " MB\n";
    return measure(folder, pack.out);
}
