// At a terminal questions are asked. "script" lends the program one.
#include "CliFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using vt::test::CliFixture;

class TestTerminal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void folder_isAskedForUntilItIsRight();
    void folder_notGivenEndsTheSearch();
    void answerOption_asksNothing();
};

namespace {

/// What appears on the terminal while \a typed is entered.
QByteArray atTerminal(const CliFixture& cli, const QStringList& arguments, const QByteArray& typed)
{
    QProcess terminal;
    terminal.setProcessEnvironment(cli.environment);
    terminal.setWorkingDirectory(cli.dir.path());
    QStringList words{u"stty -echo;"_s, QStringLiteral(VT_BIN "/vantrelctl")};
    terminal.start(
        u"script"_s,
        {u"-qec"_s, (words + arguments).join(u' ') + u"; echo status=$?"_s, u"/dev/null"_s});
    terminal.write(typed);
    if (!terminal.waitForFinished(20'000))
        return "hangs";
    return terminal.readAllStandardOutput().replace("\r\n", "\n");
}

} // namespace

void TestTerminal::folder_isAskedForUntilItIsRight()
{
    const CliFixture cli;
    cli.makeSimulator();
    QDir(cli.dir.path()).mkpath(u"empty"_s);
    const QByteArray shown =
        atTerminal(cli,
                   {u"doctor"_s},
                   (cli.dir.path() + u"/empty\n"_s + cli.dir.path() + u"/sim\ny\n"_s).toUtf8());
    QCOMPARE(shown.count("Please enter the folder where Flight Simulator X is installed:"), 2);
    QVERIFY2(shown.contains("(Error code=0)") && shown.contains("(Error code=2)"),
             shown.constData());
    QCOMPARE(shown.count("Update Registry?:"), 1);
    QVERIFY2(shown.contains("\\sim\\ (valid, by user)\n"), shown.constData());
    QVERIFY(shown.endsWith("status=0\n"));
    QVERIFY(cli.run({u"doctor"_s}).out.contains("(valid, by registry)"));
}

void TestTerminal::folder_notGivenEndsTheSearch()
{
    const CliFixture cli;
    const QByteArray shown = atTerminal(cli, {u"doctor"_s}, "\n");
    QCOMPARE(shown.count("Please enter the folder"), 1);
    QVERIFY2(shown.endsWith("status=3\n"), shown.constData());
}

void TestTerminal::answerOption_asksNothing()
{
    const CliFixture cli;
    const QByteArray shown = atTerminal(cli, {u"--answer"_s, u"yes"_s, u"doctor"_s}, "");
    QVERIFY(!shown.contains("Please enter the folder"));
    QVERIFY2(shown.endsWith("status=3\n"), shown.constData());
}

VT_TEST_CLASS(TestTerminal)

#include "test_terminal.moc"
