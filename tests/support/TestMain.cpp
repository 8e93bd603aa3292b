#include "support/TestMain.h"

#ifdef VT_TEST_WINDOWS
#include <QApplication>
#else
#include <QCoreApplication>
#endif

namespace vt::test {

std::vector<Factory>& factories()
{
    static std::vector<Factory> all;
    return all;
}

namespace {

/// Whether an argument ("name" or "name:row") is a test function of this class.
bool isFunctionOf(const QObject& test, const char* argument)
{
    const QByteArray name = QByteArray(argument).split(':').constFirst();
    return test.metaObject()->indexOfMethod(name + "()") >= 0;
}

/// Runs a class with the functions among the arguments that are its own; not at all when those that
/// are named (of any class) are all of others.
int run(QObject& test, const QList<char*>& named, int argc, char** argv)
{
    QList<char*> arguments;
    bool isNamed = named.isEmpty();
    for (int i = 0; i < argc; ++i) {
        const bool own = named.contains(argv[i]) && isFunctionOf(test, argv[i]);
        isNamed = isNamed || own;
        if (own || !named.contains(argv[i]))
            arguments.append(argv[i]);
    }
    return isNamed ? QTest::qExec(&test, int(arguments.size()), arguments.data()) : 0;
}

} // namespace

} // namespace vt::test

/// Runs every registered class, or the functions that are named, whatever class they are of; the
/// exit status is the number of failed tests, 1 when none ran.
int main(int argc, char** argv)
{
#ifdef VT_TEST_WINDOWS
    // The same look on every machine.
    QApplication::setDesktopSettingsAware(false);
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
#else
    QCoreApplication app(argc, argv);
#endif
    if (vt::test::factories().empty())
        return 1;
    QList<char*> named;
    for (int i = 1; i < argc; ++i)
        for (const vt::test::Factory& make : vt::test::factories())
            if (vt::test::isFunctionOf(*make(), argv[i]) && !named.contains(argv[i]))
                named.append(argv[i]);
    int failed = 0;
    for (const vt::test::Factory& make : vt::test::factories())
        failed += vt::test::run(*make(), named, argc, argv);
    return failed > 127 ? 127 : failed;
}
