// The installation wizard as its user sees it: steps, pages, the plan, the installation.
#include "install/CAddonInstaller.h"
#include "install/forms/FileTreeModel.h"
#include "install/forms/frmInstall_Wizard.h"
#include "support/TestMain.h"
#include "support/TreeSnapshot.h"
#include "ui/Screenshot.h"
#include "ui/WindowWorld.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeView>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::WindowWorld;

namespace {

struct Wizard
{
    explicit Wizard(WindowWorld& world) : window(new frmInstall_Wizard(*world.session, world.frame))
    {
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->resize(1280, 800);
        window->Form_PrepareToShow();
        window->show();
    }

    [[nodiscard]] QAbstractButton* button(const QString& name) const
    {
        return window->findChild<QAbstractButton*>(name);
    }

    [[nodiscard]] QString text(const QString& label) const
    {
        return window->findChild<QLabel*>(label)->text();
    }

    std::unique_ptr<frmInstall_Wizard> window;
};

} // namespace

class TestWizard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pictures();
};

void TestWizard::pictures()
{
    WindowWorld world;
    Wizard wizard(world);
    const QList<QSize> sizes = {{1280, 800}, {800, 600}};
    const auto take = [&](const QString& name) {
        for (const QSize& size : sizes)
            test::screenshot(
                *wizard.window, u"wizard-"_s + name + u'-' + QString::number(size.width()), size);
    };
    take(u"begin"_s);
    QVERIFY(wizard.window->choose(world.sample(u"kestrel-repaint"_s)));
    take(u"select"_s);
    wizard.window->SubForm_ConfigureOptions_Show();
    take(u"options"_s);
    wizard.window->SubForm_InstallationSummary_Show();
    take(u"summary"_s);
}

VT_TEST_CLASS(TestWizard)

#include "test_wizard.moc"
