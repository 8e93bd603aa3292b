// When the first window is painted, from the start of main(): the program's own, with the list of
// all recorded add-ons open in it, against a QMainWindow with nothing in it. Offscreen; each in a
// process of its own.
//
//   bench-firstwindow fill HOME PREFIX COUNT   records made-up add-ons
//   bench-firstwindow vantrel HOME PREFIX      prints milliseconds
//   bench-firstwindow trivial                  prints milliseconds
#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "app/StartUp.h"
#include "shell/Settings.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int allAddons = 3; // of the setting "Open With"

/// Ends the event loop once a main window has been painted.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(const QElapsedTimer& sinceStart) : m_sinceStart(sinceStart) {}

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && qobject_cast<QMainWindow*>(watched) && m_ms < 0) {
            watched->event(event);
            m_ms = double(m_sinceStart.nsecsElapsed()) / 1e6;
            QTimer::singleShot(0, qApp, &QCoreApplication::quit);
            return true;
        }
        return false;
    }

    [[nodiscard]] int tell() const
    {
        std::printf("%.1f\n", m_ms);
        return m_ms < 0 ? 1 : 0;
    }

private:
    const QElapsedTimer& m_sinceStart;
    double m_ms = -1;
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
    QElapsedTimer sinceStart;
    sinceStart.start();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString mode = arguments.value(1);
    if (mode == u"fill")
        return fill(arguments);
    FirstPaint paint(sinceStart);
    QApplication::instance()->installEventFilter(&paint);
    if (mode == u"trivial") {
        QMainWindow window;
        window.resize(1024, 640);
        window.show();
        QApplication::exec();
        return paint.tell();
    }
    vt::app::StartUp start(optionsFor(arguments));
    if (!start.Main())
        return 1;
    QApplication::exec();
    return paint.tell();
}
