// The configure pages of the installation wizard: what is done on a page stands in the plan at
// once, and is the same that the command line's options give.
#include "demo/StandIns.h"
#include "install/CAddonInstallationDetails.h"
#include "install/forms/InstallItemModel.h"
#include "install/forms/PictureBox.h"
#include "install/forms/frmAircraft_Variant_Add.h"
#include "install/forms/frmInstall_ConfigureAI.h"
#include "install/forms/frmInstall_ConfigureAircraft.h"
#include "install/forms/frmInstall_ConfigureMissions.h"
#include "install/forms/frmInstall_ConfigureOther.h"
#include "install/forms/frmInstall_ConfigurePanel.h"
#include "install/forms/frmInstall_ConfigureScenery.h"
#include "install/forms/frmInstall_ConfigureSound.h"
#include "install/forms/frmInstall_ConfigureTextures.h"
#include "install/forms/frmInstall_Wizard.h"
#include "platform/WinPath.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/FolderBox.h"
#include "support/TestMain.h"
#include "ui/WindowWorld.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::WindowWorld;

namespace {

/// Every item as "source -> target", "-" for one that is not installed.
QStringList planOf(const CAddonInstallationDetails& details)
{
    QStringList plan;
    for (const CAddon_Item& item : details.addon().colAddonItems())
        plan.append(
            item.sFolder_Current + item.sName + u" -> "_s +
            (item.boolProcess ? item.sFolder_Installation + item.sName_Installation : u"-"_s));
    return plan;
}

/// Shows a page of the wizard.
using Show = bool (frmInstall_Wizard::*)();

/// One page on a prepared add-on, in a window of the size in which the wizard shows it.
template <typename Page> struct OnPage
{
    OnPage(WindowWorld& world, const QString& source, const InstallOptions& options = {})
        : details(world.context()), state{*world.session, world.frame, nullptr}
    {
        const Result prepared = details.prepare(source, options);
        if (!prepared)
            qFatal("%s", qPrintable(prepared.text));
        state.details = &details;
        page = std::make_unique<Page>(state);
        page->resize(600, 420);
        page->enter();
        page->show();
        QApplication::processEvents();
    }

    template <typename Widget> Widget* child(const QString& name) const
    {
        return page->template findChild<Widget*>(name);
    }

    void chooseMethod(const QString& name, int place) const
    {
        page->template findChildren<QRadioButton*>(name).at(place)->click();
    }

    void type(const QString& folder) const
    {
        QLineEdit* line = child<QLineEdit>(u"txtFolder"_s);
        line->setFocus();
        line->selectAll();
        QTest::keyClicks(line, folder);
        QTest::keyClick(line, Qt::Key_Return);
    }

    /// Takes the tick of the first file of that name away.
    void untick(const QString& name) const
    {
        auto* list = child<ColumnView>(u"lvwItems"_s);
        QAbstractItemModel* model = list->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, InstallItemModel::TargetName).data().toString() == name)
                QVERIFY(model->setData(model->index(row, InstallItemModel::Install),
                                       Qt::Unchecked,
                                       Qt::CheckStateRole));
        }
    }

    CAddonInstallationDetails details;
    WizardState state;
    std::unique_ptr<Page> page;
};

} // namespace

class TestConfigurePages : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<WindowWorld> m_world;

    /// What the options of the command line make of the same source.
    QStringList planBy(const QString& source, const InstallOptions& options)
    {
        CAddonInstallationDetails details(m_world->context());
        const Result prepared = details.prepare(source, options);
        return prepared ? planOf(details) : QStringList{prepared.text};
    }

    QString lastSaid() const { return m_world->status.texts.last().section(u'|', 1); }

    /// A folder with flight plans and their aircraft.
    QString trafficPack() const
    {
        const QString folder = m_world->host(u"traffic"_s);
        test::writeHostFile(
            folder + u"/FlightPlans_ZET.txt"_s,
            "AC#1,G-ZET1,10%,WEEK,IFR,1/10:00,1/11:00,200,F,1,EGLL,1/13:00,1/14:00,210,F,2,LKAA\n"
            "AC#7,G-ZET7,100%,24Hr,VFR,10:00,11:00,60,R,7,LKAA,13:00,14:00,70,R,8,EGLL\n");
        test::writeHostFile(folder + u"/Aircraft_ZET.txt"_s, "AC#1,250,\"Zeta 5\"\n");
        m_world->session->services().files.newOperation();
        return m_world->windows(u"traffic"_s) + u'\\';
    }

    /// Texts of labels, buttons and tabs that have less room than they need.
    static QStringList cutTexts(QWidget* page)
    {
        QStringList cut;
        const auto widgets = page->findChildren<QWidget*>();
        for (QWidget* widget : widgets) {
            if (!widget->isVisible())
                continue;
            const auto* label = qobject_cast<QLabel*>(widget);
            const auto* button = qobject_cast<QAbstractButton*>(widget);
            const bool wraps = label && label->wordWrap();
            const int least = wraps ? widget->heightForWidth(widget->width()) : 0;
            if ((label && !wraps && widget->width() < widget->sizeHint().width()) ||
                (button && widget->width() < widget->minimumSizeHint().width()) ||
                widget->height() < least)
                cut.append((label    ? label->text()
                            : button ? button->text()
                                     : QString()) +
                           u" ("_s + widget->objectName() + u')');
        }
        return cut;
    }

    /// The page in the whole wizard, small and large: nothing is cut, and nothing has to be
    /// scrolled for.
    void look(frmInstall_Wizard& wizard, const QString& name)
    {
        WizardPage* page = nullptr;
        const auto pages = wizard.findChildren<WizardPage*>();
        for (WizardPage* one : pages)
            page = one->isVisible() ? one : page;
        QVERIFY(page);
        // The last is what a main window of 800x600 leaves.
        for (const QSize size : {QSize(1280, 800), QSize(800, 600), QSize(792, 474)}) {
            wizard.resize(size);
            QApplication::processEvents();
            QCOMPARE(wizard.size(), size);
            QCOMPARE(cutTexts(page), QStringList());
            const auto* area = page->findChild<QScrollArea*>();
            QTRY_VERIFY(!area->horizontalScrollBar()->isVisible());
            if (size.height() >= 600 || !name.endsWith(u"-refused"_s))
                QTRY_COMPARE(area->verticalScrollBar()->maximum(), 0);
            QCOMPARE(test::screenshot(
                         wizard, u"wizard-"_s + name + u'-' + QString::number(size.width()), size)
                         .size(),
                     2);
        }
    }

private Q_SLOTS:

    void init() { m_world = std::make_unique<WindowWorld>(); }

    void cleanup() { m_world.reset(); }

    void aircraft_folderAndTick_areThoseOfTheOptions()
    {
        const QString source = m_world->sample(u"heron-h2-main"_s);
        OnPage<frmInstall_ConfigureAircraft> on(*m_world, source);
        const QSignalSpy edited(on.page.get(), &WizardPage::edited);
        const QSignalSpy others(on.page.get(), &WizardPage::othersChanged);
        on.chooseMethod(u"optAircraftMethod"_s, 1);
        on.type(u"Airplanes\\Heron of mine"_s); // below the folder that the chooser begins in
        on.untick(u"aircraft.cfg"_s);
        InstallOptions options;
        const QString folder =
            m_world->context().global.simObjectsFolder + u"Airplanes\\Heron of mine\\"_s;
        options.methods = {{MappedGroup::Aircraft, InstallationMethod::ChosenFolder, folder}};
        options.skip = {u"aircraft.cfg"_s};
        QCOMPARE(planOf(on.details), planBy(source, options));
        QCOMPARE(on.child<QLineEdit>(u"txtFolder"_s)->text(), folder);
        QVERIFY(edited.size() >= 2);
        QVERIFY(!others.isEmpty()); // panel and sound moved along
        QVERIFY(on.page->leave().ok);
    }

    void badFolder_isToldAtTheLine_andKeepsThePage()
    {
        OnPage<frmInstall_ConfigurePanel> on(*m_world, m_world->sample(u"swift-aircraft"_s));
        const QStringList before = planOf(on.details);
        on.chooseMethod(u"optPanelMethod"_s, 1);
        on.type(u"D:\\nowhere"_s);
        auto* told = on.child<QLabel>(u"lblFolderProblem"_s);
        QVERIFY(told->isVisible());
        QCOMPARE(told->text(), u"Please select a valid folder first."_s);
        QCOMPARE(on.page->leave().text, u"Please select a valid folder first."_s);
        QVERIFY(!on.page->advance(true));
        on.chooseMethod(u"optPanelMethod"_s, 0);
        QVERIFY(!told->isVisible());
        QVERIFY(on.page->leave().ok);
        QCOMPARE(planOf(on.details), before);
    }

    void quickPicks_offerWhatWasChosenBefore()
    {
        const QString source = m_world->sample(u"barograph-gauges"_s);
        const QString folder = m_world->context().global.gaugesFolder + u"Mine\\"_s;
        {
            OnPage<frmInstall_ConfigurePanel> on(*m_world, source);
            auto* picks = on.child<QToolButton>(u"cmdQuickPicks"_s)->menu();
            Q_EMIT picks->aboutToShow();
            QCOMPARE(picks->actions().first()->text(), u"No Quick Picks available."_s);
            QVERIFY(!picks->actions().first()->isEnabled());
            on.chooseMethod(u"optPanelMethod"_s, 1);
            on.type(folder);
        }
        OnPage<frmInstall_ConfigurePanel> on(*m_world, source);
        on.chooseMethod(u"optPanelMethod"_s, 1);
        auto* picks = on.child<QToolButton>(u"cmdQuickPicks"_s)->menu();
        Q_EMIT picks->aboutToShow();
        picks->actions().first()->trigger();
        InstallOptions options;
        options.methods = {{MappedGroup::Panel, InstallationMethod::ChosenFolder, folder}};
        QCOMPARE(planOf(on.details), planBy(source, options));
    }

    void sound_everyMethod_isThatOfTheOptions_data()
    {
        QTest::addColumn<int>("place");
        const auto offered = methodLabels(MappedGroup::Sound, {});
        for (int i = 0; i < offered.size(); ++i)
            QTest::newRow(qPrintable(methodWord(offered.at(i).method))) << i;
    }

    void sound_everyMethod_isThatOfTheOptions()
    {
        QFETCH(const int, place);
        const InstallationMethod method = methodLabels(MappedGroup::Sound, {}).at(place).method;
        const QString source = m_world->sample(u"nested-set"_s);
        OnPage<frmInstall_ConfigureSound> on(*m_world, source);
        on.chooseMethod(u"optSoundMethod"_s, place);
        InstallOptions options;
        options.methods = {{MappedGroup::Sound, method, {}}};
        if (method == InstallationMethod::ChosenFolder) {
            options.methods[0].folder = m_world->context().global.soundFolder + u"Mine\\"_s;
            on.type(options.methods[0].folder);
        }
        QCOMPARE(planOf(on.details), planBy(source, options));
        QCOMPARE(on.child<QLabel>(u"lblFolderHint"_s)->text(),
                 u"Select a folder beneath Flight Simulator X's SimOjbects folder."_s);
    }

    void missions_nextChoosesTheFolder_orACategory()
    {
        const QString source = m_world->sample(u"fog-mission"_s);
        const QString missions = m_world->context().global.missionsFolder;
        OnPage<frmInstall_ConfigureMissions> on(*m_world, source);
        on.chooseMethod(u"optMissionMethod"_s, 1);
        QCOMPARE(lastSaid(), u"Press Next to select the mission folder."_s);
        QString title;
        QString prompt;
        QTimer::singleShot(0, on.page.get(), [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            title = dialog->windowTitle();
            prompt = dialog->findChild<QLabel*>(u"lblPrompt"_s)->text();
            dialog->reject();
        });
        QVERIFY(!on.page->advance(true));
        QCOMPARE(title, u"Select Mission Folder"_s);
        QCOMPARE(prompt, u"Select a folder under the Missions folder."_s);
        on.type(m_world->context().global.effectsFolder);
        QCOMPARE(on.page->leave().text, u"Select a folder under the Missions folder."_s);
        auto* categories = on.child<QToolButton>(u"cmdChangeCategory"_s)->menu();
        Q_EMIT categories->aboutToShow();
        const QString category = categories->actions().first()->text();
        categories->actions().first()->trigger();
        QVERIFY(on.page->advance(true));
        InstallOptions options;
        options.methods = {{MappedGroup::Missions,
                            InstallationMethod::ChosenFolder,
                            missions + category + u"\\Fog over the Lake\\"_s}};
        QCOMPARE(planOf(on.details), planBy(source, options));
        QVERIFY(on.page->leave().ok);
    }

    void scenery_libraryIsKeptByGroup()
    {
        const QString source = m_world->sample(u"harbour-scenery"_s);
        OnPage<frmInstall_ConfigureScenery> on(*m_world, source);
        auto* tabs = on.child<QTabBar>(u"tabGroups"_s);
        QCOMPARE(tabs->count(), 3); // two areas, and all files
        QVERIFY(tabs->height() >= tabs->fontMetrics().height());
        on.page->manager().setCurrent({MappedGroup::Scenery, 1});
        on.child<QCheckBox>(u"chkUpdateSceneryLibrary"_s)->click();
        on.page->manager().setCurrent({MappedGroup::Scenery, 0});
        auto* title = on.child<QLineEdit>(u"txtSceneryTitle"_s);
        title->clear();
        QVERIFY(on.page->leave().text.endsWith(u"Scenery library title is not specified."_s));
        title->setFocus();
        QTest::keyClicks(title, u"By the water"_s);
        QVERIFY(on.page->leave().ok);
        const QList<SceneryAreaToAdd> areas = on.details.facts().sceneryAreas();
        QCOMPARE(areas.size(), 1);
        QCOMPARE(areas.first().title, u"By the water"_s);
        on.chooseMethod(u"optSceneryMethod"_s, 3);
        QVERIFY(on.details.groups(MappedGroup::Scenery)[0].method ==
                InstallationMethod::GlobalFolder);
        QVERIFY(on.details.groups(MappedGroup::Scenery)[1].method ==
                InstallationMethod::Determined);
    }

    void repaint_getsItsAircraftAndVariantDetails()
    {
        const QString source = m_world->sample(u"kestrel-repaint"_s);
        OnPage<frmInstall_ConfigureTextures> on(*m_world, source);
        on.chooseMethod(u"optTextureMethod"_s, 0);
        on.chooseMethod(u"optTextureMethod"_s, 5);
        QCOMPARE(lastSaid(), u"Press Next to specify aircraft variant details."_s);
        const auto inDialog = [&](const std::function<void(frmAircraft_Variant_Add*)>& act) {
            QTimer::singleShot(0, on.page.get(), [act] {
                auto* dialog =
                    qobject_cast<frmAircraft_Variant_Add*>(QApplication::activeModalWidget());
                QVERIFY(dialog);
                act(dialog);
            });
        };
        inDialog([](auto* dialog) { dialog->reject(); });
        QVERIFY(!on.page->advance(true));
        QCOMPARE(lastSaid(), u"Operation canceled."_s);
        inDialog([](auto* dialog) {
            auto* title = dialog->template findChild<QLineEdit*>(u"txtTitle"_s);
            title->selectAll();
            QTest::keyClicks(title, u"Kestrel K2 Blue"_s); // installed already
            dialog->accept();
            QVERIFY(dialog->isVisible());
            QCOMPARE(
                dialog->template findChild<QLabel*>(u"lblProblem"_s)->text(),
                u"Specified title is used by another aircraft. Please enter a unique title name."_s);
            title->selectAll();
            QTest::keyClicks(title, u"Kestrel K2 Regatta"_s);
            dialog->accept();
        });
        QVERIFY(on.page->advance(true));
        QCOMPARE(lastSaid(), u"Aircraft variant details were updated."_s);
        QCOMPARE(on.details.variants().value(0).title, u"Kestrel K2 Regatta"_s);
        QVERIFY(on.page->advance(true)); // asked once
        QVERIFY(on.page->leave().ok);
    }

    void traffic_toolFolderIsChecked()
    {
        OnPage<frmInstall_ConfigureAI> on(*m_world, trafficPack());
        QVERIFY(on.details.holds(MappedGroup::TrafficTools));
        // Without the tool the page says what becomes of the files.
        auto* tools = on.child<QWidget>(u"fraTrafficTools"_s);
        QVERIFY(tools->findChild<FolderBox*>()->isVisible());
        QVERIFY(tools->findChild<QLabel*>()->text().contains(on.details.storageFolder()));
        // The plans in words, and what stands in the way of one of them at its file.
        const QString words = on.child<QPlainTextEdit>(u"txtFlightPlans"_s)->toPlainText();
        QVERIFY2(words.contains(u"Zeta 5 (AC#1, 250 knots, tail number G-ZET1) flies"_s),
                 qPrintable(words));
        QVERIFY2(words.contains(u"The aircraft 'AC#7' is not listed in "_s), qPrintable(words));
        const QAbstractItemModel* files = on.child<ColumnView>(u"lvwItems"_s)->model();
        QStringList remarks;
        for (int row = 0; row < files->rowCount(); ++row)
            remarks.append(files->index(row, InstallItemModel::ProblemDetails).data().toString());
        QCOMPARE(remarks.filter(u"Flight plan #2: The aircraft 'AC#7'"_s).size(), 1);
        QCOMPARE(remarks.filter(QString()).size(), 2);
        QVERIFY(on.page->leave().ok);
        const Result other = on.details.AI_InstallationChoices_ValidateFolder(
            MappedGroup::TrafficTools, m_world->context().global.effectsFolder);
        QVERIFY2(other.text.startsWith(u"Traffic Tools program configuration is not valid."_s),
                 qPrintable(other.text));
    }

    void list_renamesFollowsAndPastes()
    {
        const QString source = m_world->sample(u"kestrel-manuals"_s);
        OnPage<frmInstall_ConfigureOther> on(*m_world, source);
        auto* list = on.child<ColumnView>(u"lvwItems"_s);
        const auto select = [&](const QString& name) {
            for (int row = 0; row < list->model()->rowCount(); ++row) {
                const QModelIndex index = list->model()->index(row, 0);
                if (index.data().toString().endsWith(name))
                    list->setCurrentIndex(index);
            }
        };
        list->setFocus();
        select(u"index.html"_s);
        m_world->prompts.expectText(u"Rename File"_s, u"first.html"_s);
        QTest::keyClick(list, Qt::Key_F2);
        QCOMPARE(lastSaid(), u"Filename was updated."_s);
        QApplication::clipboard()->setText(m_world->context().global.fontsFolder);
        QTest::keyClick(list, Qt::Key_V, Qt::ControlModifier | Qt::ShiftModifier);
        select(u"handbook.txt"_s);
        QTest::keyClick(list, Qt::Key_Delete);
        InstallOptions options;
        options.renamings = {{u"index.html"_s, u"first.html"_s}};
        options.targets = {{u"index.html"_s, m_world->context().global.fontsFolder}};
        options.skip = {u"Kestrel K2 handbook.txt"_s};
        QCOMPARE(planOf(on.details), planBy(source, options));
    }

    void sameTargets_areHintedAt_andResolved()
    {
        for (const QString& folder : {u"one"_s, u"two"_s})
            test::writeHostFile(m_world->host(u"docs/"_s + folder + u"/notes.pdf"_s),
                                "%PDF " + folder.toLatin1());
        m_world->session->services().files.newOperation();
        OnPage<frmInstall_ConfigureOther> on(*m_world, m_world->windows(u"docs"_s) + u'\\');
        for (const CAddon_Item& item : on.details.addon().colAddonItems())
            QVERIFY(
                on.details.AddonItem_InstallationFolder_Set(item.lngKey, on.details.storageFolder())
                    .ok);
        on.page->enter();
        auto* hint = on.child<QLabel>(u"lblProblemHint"_s);
        QVERIFY(hint->isVisible());
        QCOMPARE(hint->text(),
                 u"Some names and target folders are identical. See Problem Details column."_s);
        QVERIFY(!on.page->leave());
        on.child<QPushButton>(u"cmdResolveProblems"_s)->click();
        QVERIFY(!hint->isVisible());
        QVERIFY(on.page->leave().ok);
    }

    void pages_showEverything_atEverySize_data()
    {
        using W = frmInstall_Wizard;
        QTest::addColumn<QString>("sample");
        QTest::addColumn<Show>("show");
        const auto add = [](const char* page, const QString& sample, Show show) {
            QTest::newRow(page) << sample << show;
        };
        add("aircraft", u"swift-aircraft"_s, &W::SubForm_ConfigureAircraft_Show);
        add("panel", u"swift-aircraft"_s, &W::SubForm_ConfigurePanel_Show);
        add("sound", u"swift-aircraft"_s, &W::SubForm_ConfigureSound_Show);
        add("missions", u"fog-mission"_s, &W::SubForm_ConfigureMissions_Show);
        add("scenery", u"harbour-scenery"_s, &W::SubForm_ConfigureScenery_Show);
        add("textures", u"kestrel-repaint"_s, &W::SubForm_ConfigureTextures_Show);
        add("ai", {}, &W::SubForm_ConfigureAI_Show);
        add("other", u"swift-aircraft"_s, &W::SubForm_ConfigureOther_Show);
        add("options", u"swift-aircraft"_s, &W::SubForm_ConfigureOptions_Show);
    }

    void pages_showEverything_atEverySize()
    {
        QFETCH(const QString, sample);
        QFETCH(const Show, show);
        frmInstall_Wizard wizard(*m_world->session, m_world->frame);
        wizard.setAttribute(Qt::WA_DeleteOnClose, false);
        wizard.resize(1280, 800);
        wizard.Form_PrepareToShow();
        wizard.show();
        const Result chosen =
            wizard.choose(sample.isEmpty() ? trafficPack() : m_world->sample(sample));
        QVERIFY2(chosen.ok, qPrintable(chosen.text));
        QVERIFY((wizard.*show)());
        QApplication::processEvents();
        look(wizard, QString::fromLatin1(QTest::currentDataTag()));
        // With a folder that is refused, there is more to show.
        const auto boxes = wizard.findChildren<FolderBox*>();
        const auto radios =
            wizard.findChildren<QRadioButton*>(QRegularExpression(u"^opt.*Method$"_s));
        for (QRadioButton* radio : radios) {
            if (radio->isVisible() && radio->text().startsWith(u"An existing"_s))
                radio->click();
        }
        for (FolderBox* box : boxes) {
            if (box->isVisible() && box->isEnabled())
                QVERIFY(!box->give(u"D:\\nowhere"_s));
        }
        if (!radios.isEmpty())
            look(wizard, QString::fromLatin1(QTest::currentDataTag()) + u"-refused"_s);
    }

    void variantDetails_showEverything()
    {
        OnPage<frmInstall_ConfigureTextures> on(*m_world, m_world->sample(u"kestrel-repaint"_s));
        QTimer::singleShot(0, on.page.get(), [] {
            QWidget* dialog = QApplication::activeModalWidget();
            QCOMPARE(cutTexts(dialog), QStringList());
            QCOMPARE(test::screenshot(*dialog, u"wizard-variant-details"_s).size(), 2);
            dialog->close();
        });
        on.child<QPushButton>(u"cmdVariantDetails"_s)->click();
        QCOMPARE(lastSaid(), u"Operation canceled."_s);
    }

    void picture_isShownAndPlanned()
    {
        test::writeHostFile(m_world->host(u"shot.bmp"_s), standins::picture(400, 300, 7));
        m_world->session->services().files.newOperation();
        OnPage<frmInstall_ConfigureAircraft> on(*m_world, m_world->sample(u"swift-aircraft"_s));
        auto* preview = on.child<QLabel>(u"imgPicture"_s);
        const auto picture = [&]() -> const GroupPicture& {
            return on.details.groups(MappedGroup::Aircraft)[0].picture;
        };
        QTimer::singleShot(0, on.page.get(), [this] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            QCOMPARE(dialog->windowTitle(), u"Select Picture File"_s);
            dialog->selectFile(m_world->host(u"shot.bmp"_s));
            // The dialog's list fills later than its line, which decides.
            dialog->findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(m_world->host(u"shot.bmp"_s));
            QMetaObject::invokeMethod(dialog, "accept");
        });
        on.chooseMethod(u"optPicture"_s, 1);
        QCOMPARE(lastSaid(), u"Other picture assigned to aircraft."_s);
        QVERIFY(!preview->pixmap(Qt::ReturnByValue).isNull());
        QCOMPARE(picture().file, m_world->windows(u"shot.bmp"_s));
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::red);
        QApplication::clipboard()->setImage(image);
        on.chooseMethod(u"optPicture"_s, 2);
        QCOMPARE(lastSaid(),
                 u"Clipboard picture assigned to "_s +
                     on.details.groups(MappedGroup::Aircraft)[0].name);
        QVERIFY(picture().kind == GroupPicture::Kind::Clipboard);
        on.chooseMethod(u"optPicture"_s, 0);
        QCOMPARE(lastSaid(), u"Picture was cleared."_s);
        QVERIFY(picture().jpeg.isEmpty() && preview->pixmap(Qt::ReturnByValue).isNull());
        m_world->prompts.expect(u"Select a single file."_s, Button::Ok);
        Q_EMIT on.page->findChild<PictureBox*>()->filesDropped({u"a"_s, u"b"_s});
    }

    void pageWithoutGroups_saysSo()
    {
        OnPage<frmInstall_ConfigureSound> on(*m_world, m_world->sample(u"kestrel-manuals"_s));
        auto* none = on.child<QLabel>(u"lblNoCategories"_s);
        QVERIFY(none->isVisible());
        QCOMPARE(none->text(), u"No categories are available."_s);
        QVERIFY(on.page->leave().ok);
    }
};

VT_TEST_CLASS(TestConfigurePages)
#include "test_configure_pages.moc"
