// How long windows keep their user waiting: a large add-on is chosen and installed through the
// wizard in the main window, offscreen, while a timer beats. The gaps between beats are what the
// user would feel; the longest are told with what the program was saying.
//
//   bench-heartbeat FOLDER [FILES BYTES-MIN BYTES-MAX]
//
// FOLDER (made, must be missing or empty) lies on the disk that is to be measured.
#include "DemoSession.h"
#include "Heart.h"
#include "demo/BenchmarkPack.h"
#include "install/forms/frmInstall_Wizard.h"
#include "shell/forms/frmControl.h"

#include <QApplication>
#include <QDir>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

int measure(bench::DemoSession& demo, const QString& archive)
{
    vt::Session& session = demo.session;
    vt::frmControl window(session.context(), demo.status);
    window.resize(1280, 800);
    window.show();
    auto* wizard = static_cast<vt::frmInstall_Wizard*>(window.openTool(
        u"wizard"_s, {}, [&] { return new vt::frmInstall_Wizard(session, window); }));
    QApplication::processEvents();

    bench::Heart heart(demo.status);
    heart.begin();
    const vt::Result chosen = wizard->choose(session.userPath(archive));
    QApplication::processEvents();
    heart.end(u"choose"_s);
    if (!chosen)
        return bench::failed(chosen.text);
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
        return bench::failed(u"bench-heartbeat FOLDER [FILES BYTES-MIN BYTES-MAX]"_s);
    const QDir folder(arguments.at(1));
    bench::DemoSession demo(folder);
    if (const vt::Result ready = demo.prepare(folder); !ready)
        return bench::failed(ready.text);
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
        return bench::failed(made.text);
    QTextStream(stdout) << pack.files << " files, " << (made->bytes >> 20) << " MB\n";
    return measure(demo, pack.out);
}
