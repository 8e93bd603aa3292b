#include "support/TestMain.h"

#include <QCoreApplication>

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
    QCoreApplication app(argc, argv);
    if (vt::test::factories().empty())
        return 1;
    int failed = 0;
    for (const vt::test::Factory& make : vt::test::factories())
        failed += QTest::qExec(make().get(), argc, argv);
    return failed > 127 ? 127 : failed;
}
