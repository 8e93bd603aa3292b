#include "support/TestMain.h"

#ifdef VT_TEST_WINDOWS
#include <QApplication>
#include <QStyleFactory>
#else
#include <QCoreApplication>
#endif

namespace vt::test {

std::vector<Factory>& factories()
{
    static std::vector<Factory> all;
    return all;
}

} // namespace vt::test

/// Runs every registered class; the exit status is the number of failed tests, 1 when none ran.
int main(int argc, char** argv)
{
#ifdef VT_TEST_WINDOWS
    // The same look on every machine.
    QApplication::setDesktopSettingsAware(false);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    if (vt::test::factories().empty())
        return 1;
    int failed = 0;
    for (const vt::test::Factory& make : vt::test::factories())
        failed += QTest::qExec(make().get(), argc, argv);
    return failed > 127 ? 127 : failed;
}
