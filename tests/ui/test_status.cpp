// Progress appears once work takes a while, windows stay drawn, and a click stops it after a
// question.
#include "shell/forms/QtStatus.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace vt;

class TestQtStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void progress_appearsAfterAWhile();
    void cancel_asksOnceForEachClick();
};

void TestQtStatus::progress_appearsAfterAWhile()
{
    test::ScriptedPrompts prompts;
    QtStatus status(prompts);
    QSignalSpy shown(&status, &QtStatus::progressChanged);
    QSignalSpy idle(&status, &QtStatus::idle);
    QElapsedTimer timer;
    timer.start();
    status.beginWork();
    qint64 files = 0;
    while (shown.isEmpty() && timer.elapsed() < 5000)
        status.progress(++files, 1'000'000'000);
    QVERIFY2(timer.elapsed() >= 300 && timer.elapsed() < 1000,
             qPrintable(QString::number(timer.elapsed())));
    QVERIFY(status.timeLeft().isEmpty());
    status.endWork();
    QCOMPARE(idle.count(), 1);
    QVERIFY(!status.working());
}

void TestQtStatus::cancel_asksOnceForEachClick()
{
    test::ScriptedPrompts prompts;
    QtStatus status(prompts);
    status.beginWork();
    QVERIFY(!status.cancelled());
    status.requestCancel();
    prompts.expect(u"Confirm Abort"_s, Button::No);
    QVERIFY(!status.cancelled());
    QVERIFY(!status.cancelled());
    status.requestCancel();
    prompts.expect(u"Confirm Abort"_s, Button::Yes);
    QVERIFY(status.cancelled());
    QVERIFY(status.cancelled());
    QCOMPARE(prompts.asked.size(), 2);
    status.endWork();
    status.beginWork(); // another one
    QVERIFY(!status.cancelled());
    status.endWork();
}

VT_TEST_CLASS(TestQtStatus)

#include "test_status.moc"
