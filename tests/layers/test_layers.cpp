// The source tree keeps its own rules: arrows between folders point down, nothing is left out of
// the build, no data slot is without its test. Each rule is also shown a fault that it must find.
#include "Guards.h"
#include "support/TestMain.h"

#include <QDir>

using namespace Qt::StringLiterals;
using namespace vt::test;

namespace {

/// Lexical: the folder of the data need not exist.
const QString projectRoot = QDir::cleanPath(QStringLiteral(VT_TEST_DATA "/../.."));

QString joined(const QStringList& faults)
{
    return faults.join(u'\n');
}

} // namespace

class TestLayers : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void includes_followTheArrows()
    {
        const SourceTexts sources = readSources(projectRoot, {u"src"_s}, {u".h"_s, u".cpp"_s});
        QVERIFY(sources.contains(u"src/platform/Result.h"_s));
        const QStringList faults = wrongIncludes(sources);
        QVERIFY2(faults.isEmpty(), qPrintable(joined(faults)));
    }

    void includes_faultIsNamed_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("included");
        QTest::addColumn<QString>("fault");
        QTest::newRow("down") << u"src/install/A.cpp"_s << u"platform/Files.h"_s << QString();
        QTest::newRow("own folder") << u"src/cli/A.h"_s << u"cli/World.h"_s << QString();
        QTest::newRow("longest folder counts")
            << u"src/simconfig/engine/A.cpp"_s << u"simconfig/engine/B.h"_s << QString();
        QTest::newRow("up") << u"src/platform/A.cpp"_s << u"shell/Context.h"_s
                            << u"src/platform/A.cpp:2: platform may not use shell "_s
                               u"(\"shell/Context.h\")"_s;
        QTest::newRow("engine knows no objects")
            << u"src/simconfig/engine/A.cpp"_s << u"simconfig/CAircraft.h"_s
            << u"src/simconfig/engine/A.cpp:2: simconfig/engine may not use simconfig "_s
               u"(\"simconfig/CAircraft.h\")"_s;
        QTest::newRow("siblings") << u"src/install/A.cpp"_s << u"remove/B.h"_s
                                  << u"src/install/A.cpp:2: install may not use remove "_s
                                     u"(\"remove/B.h\")"_s;
        QTest::newRow("no folder") << u"src/cli/A.cpp"_s << u"World.h"_s
                                   << u"src/cli/A.cpp:2: \"World.h\" is included without its "_s
                                      u"folder"_s;
        QTest::newRow("unknown folder")
            << u"src/odd/A.cpp"_s << u"platform/Files.h"_s
            << u"src/odd/A.cpp:1: its folder has no place among the layers"_s;
    }

    void includes_faultIsNamed()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, included);
        QFETCH(const QString, fault);
        const QString text = u"// head\n#include \""_s + included + u"\"\n#include <QString>\n"_s;
        QCOMPARE(joined(wrongIncludes({{path, text}})), fault);
    }

    void build_listsEveryFile()
    {
        const SourceTexts sources = readSources(projectRoot, {u"src"_s, u"tests"_s}, {u".cpp"_s});
        const SourceTexts buildFiles = readSources(
            projectRoot, {u"src"_s, u"tests"_s, u"cmake"_s}, {u"CMakeLists.txt"_s, u".cmake"_s});
        QVERIFY(sources.contains(u"tests/layers/test_layers.cpp"_s));
        const QStringList faults = unlistedSources(sources, buildFiles);
        QVERIFY2(faults.isEmpty(), qPrintable(joined(faults)));
    }

    void build_leftOutFileIsNamed()
    {
        const SourceTexts sources{{u"tests/a/test_in.cpp"_s, {}},
                                  {u"tests/a/test_out.cpp"_s, {}},
                                  {u"tests/m.cpp"_s, {}}};
        const SourceTexts buildFiles{
            {u"tests/a/CMakeLists.txt"_s, u"vt_test(x SOURCES test_in.cpp) # test_out.cpp\n"_s},
            {u"cmake/common.cmake"_s, u"add(${PROJECT_SOURCE_DIR}/tests/m.cpp)\n"_s}};
        QCOMPARE(joined(unlistedSources(sources, buildFiles)),
                 u"tests/a/test_out.cpp:1: no CMakeLists.txt lists this file"_s);
    }

    void tests_areAlive()
    {
        SourceTexts tests = readSources(projectRoot, {u"tests"_s}, {u".cpp"_s});
        QVERIFY(tests.remove(u"tests/layers/test_layers.cpp"_s) == 1); // shows faults on purpose
        QVERIFY(!tests.isEmpty());
        const QStringList faults = deadTests(tests);
        QVERIFY2(faults.isEmpty(), qPrintable(joined(faults)));
    }

    void tests_deadOneIsNamed()
    {
        const QString text = u"void good_data()\nvoid good()\nvoid bad_data()\nQSKIP(\"x\");\n"_s;
        QCOMPARE(joined(deadTests({{u"tests/t.cpp"_s, text}})),
                 u"tests/t.cpp:4: a test may not skip itself\n"_s
                 u"tests/t.cpp:3: bad_data() has no test of its name"_s);
    }
};

VT_TEST_CLASS(TestLayers)
#include "test_layers.moc"
