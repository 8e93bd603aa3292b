// Ends when the first window has been painted: the program's own, with the list of all recorded
// add-ons opening in it, or a QMainWindow with nothing in it. Offscreen; whole processes are timed.
//
//   bench-firstwindow fill HOME PREFIX COUNT   records made-up add-ons
//   bench-firstwindow vantrel HOME PREFIX
//   bench-firstwindow trivial
#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "app/StartUp.h"
#include "shell/Settings.h"

#include <QApplication>
#include <QMainWindow>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int allAddons = 3; // of the setting "Open With"

/// Ends the process once a main window has been painted.
class FirstPaint : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Paint || !qobject_cast<QMainWindow*>(watched))
            return false;
        watched->event(event);
        std::_Exit(0);
    }
};

vt::app::Options optionsFor(const QStringList& arguments)
{
    vt::app::Options options;
    options.session.home = arguments.value(2);
    options.session.prefix = arguments.value(3);
    return options;
}

int fill(const QStringList& arguments)
{
    vt::QtPrompts prompts;
    vt::QtStatus status(prompts);
    vt::Session session(optionsFor(arguments).session, prompts, status);
    vt::Result done = session.prepare();
    if (done)
        done = session.needWriting();
    if (done)
        done = session.database()->together([&] {
            vt::Result added = vt::Result::success();
            for (int i = 0; added && i < arguments.value(4).toInt(); ++i) {
                vt::AddonRecord addon;
                addon.name = u"Add-on "_s + QString::number(i);
                addon.description = u"Made up for a measurement."_s;
                addon.dateInstalled = QDateTime(QDate(2020, 1, 1), QTime(8, 0)).addSecs(i * 60);
                addon.sourceSize = i * 1000;
                added = vt::modDatabase_Addon::createAddon(*session.database(), addon);
            }
            return added;
        });
    vt::Settings& settings = session.context().settings;
    settings.setNumber(vt::SettingKey::OpenWith, allAddons);
    settings.setFlag(vt::SettingKey::ShowSplashScreen, false);
    session.close();
    if (!done)
        std::fprintf(stderr, "%s\n", qPrintable(done.text));
    return done ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString mode = arguments.value(1);
    if (mode == u"fill")
        return fill(arguments);
    FirstPaint paint;
    QApplication::instance()->installEventFilter(&paint);
    QMainWindow window;
    vt::app::StartUp start(optionsFor(arguments));
    if (mode == u"trivial") {
        window.resize(1024, 640);
        window.show();
    } else if (!start.Main()) {
        return 1;
    }
    return QApplication::exec();
}
