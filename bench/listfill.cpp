// How long the list of add-ons keeps its user waiting when it is opened over a real database of
// many rows: how long it takes, and the longest gaps between the beats of a timer meanwhile.
//
//   bench-listfill FOLDER [ADD-ONS FILES-OF-EACH]
//
// FOLDER (made, must be missing or empty) lies on the disk that is to be measured.
#include "DemoSession.h"
#include "Heart.h"
#include "addondb/AddonDatabase.h"
#include "addondb/Connection.h"
#include "shell/forms/frmControl.h"
#include "ui/forms/AddonListCommands.h"
#include "ui/forms/frmWorkWithAddons.h"

#include <QApplication>
#include <QDir>

using namespace Qt::StringLiterals;

namespace {

vt::Result fill(vt::Connection& database, int addons, int files)
{
    const QDateTime start(QDate(2020, 1, 1), QTime(8, 0));
    return database.together([&]() -> vt::Result {
        for (int i = 0; i < addons; ++i) {
            vt::AddonRecord addon;
            addon.name = u"Add-on "_s + QString::number((qint64(i) * 7919) % addons);
            addon.dateInstalled = start.addSecs(qint64(i) * 600);
            addon.categories = vt::Categories::fromInt(1 << (i % 13));
            addon.authors = u"Works "_s + QString::number(i % 97);
            addon.sourceName = u"C:\\Downloads\\"_s + QString::number(i) + u".zip"_s;
            addon.sourceSize = 1000 + i;
            addon.description = u"What it is, in a sentence."_s;
            if (vt::Result made = vt::modDatabase_Addon::createAddon(database, addon); !made)
                return made;
            QList<vt::DetailRecord> details;
            for (int n = 0; n < files; ++n) {
                vt::DetailRecord detail;
                detail.filename = detail.name = u"file"_s + QString::number(n) + u".bgl"_s;
                detail.location = u"C:\\FSX\\Addon Scenery\\"_s + QString::number(i) + u'\\';
                details.append(detail);
            }
            if (const auto added = vt::modDatabase_Addon::addDetails(database, addon.key, details);
                !added)
                return added.error();
        }
        return vt::Result::success();
    });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 4)
        return bench::failed(u"bench-listfill FOLDER [ADD-ONS FILES-OF-EACH]"_s);
    const QDir folder(arguments.at(1));
    bench::DemoSession demo(folder);
    if (const vt::Result ready = demo.prepare(folder); !ready)
        return bench::failed(ready.text);
    vt::Session& session = demo.session;
    const int addons = arguments.size() == 4 ? arguments.at(2).toInt() : 100'000;
    const int files = arguments.size() == 4 ? arguments.at(3).toInt() : 3;
    if (const vt::Result filled = fill(*session.database(), addons, files); !filled)
        return bench::failed(filled.text);
    vt::frmControl window(session.context(), demo.status);
    vt::wireAddonLists(window, session);
    window.resize(1280, 800);
    window.show();
    QApplication::processEvents();

    bench::Heart heart(demo.status);
    const auto phase = [&](const QString& name, auto&& work) {
        heart.begin();
        work();
        QApplication::processEvents();
        return heart.end(name);
    };
    phase(u"open the list"_s, [&] { window.command(u"mnuWorkWithAllAddons"_s); });
    phase(u"read it anew"_s, [&] { window.recordsChanged(); });
    auto* list = qobject_cast<vt::frmWorkWithAddons*>(window.tool(u"addons"_s));
    phase(u"sort by size"_s,
          [&] { list->list().sortByColumn(int(vt::AddonColumn::Size), Qt::DescendingOrder); });
    phase(u"select all"_s, [&] { list->list().selectAll(); });
    QTextStream(stdout) << list->manager().model().rowCount() << " rows\n";
    session.close();
    return 0;
}
