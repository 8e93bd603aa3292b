#include "ShellFixture.h"
#include "shell/JsonStream.h"
#include "shell/Results.h"
#include "shell/RunStep.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>

#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace vt;
using vt::test::ShellFixture;

namespace {

QJsonValue randomTree(QRandomGenerator& random, int depth)
{
    switch (random.bounded(depth > 0 ? 7 : 5)) {
    case 0:
        return random.bounded(2) == 1;
    case 1:
        return static_cast<qint64>(random.generate64() >> 11) - (qint64(1) << 52);
    case 2:
        return random.generateDouble() - 0.5;
    case 3:
        return QJsonValue::Null;
    case 4: {
        QString text;
        for (int i = random.bounded(12); i > 0; --i)
            text += QChar::fromUcs4(i % 3 == 0 ? 0x1f6e9u : random.bounded(0xd800u));
        return text;
    }
    case 5: {
        QJsonArray array;
        for (int i = random.bounded(5); i > 0; --i)
            array.append(randomTree(random, depth - 1));
        return array;
    }
    default: {
        QJsonObject object;
        for (int i = random.bounded(5); i > 0; --i)
            object.insert(u"k\"\\"_s + QString::number(i), randomTree(random, depth - 1));
        return object;
    }
    }
}

struct Written
{
    QByteArray bytes;
    JsonStream stream{[this](QByteArrayView piece) { bytes += piece; }};

    QJsonDocument document()
    {
        stream.flush();
        return QJsonDocument::fromJson(bytes);
    }
};

} // namespace

class TestResults : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void json_anyTreeReadsBackEqual()
    {
        QRandomGenerator random(20260301);
        for (int round = 0; round < 300; ++round) {
            const QJsonArray tree{randomTree(random, 5), randomTree(random, 5)};
            Written written;
            written.stream.value(QJsonValue(tree));
            QVERIFY(written.stream.complete());
            QCOMPARE(written.document().array(), tree);
        }
    }

    void json_loneSurrogatesAndControlsStayValid()
    {
        Written written;
        const QString text = u"a\x01\x1f\t\r\n\"\\/"_s + QChar(0xd800) + u"b"_s + QChar(0xdc00);
        written.stream.beginArray();
        written.stream.value(text);
        written.stream.endArray();
        const QString back = written.document().array().first().toString();
        QCOMPARE(back, u"a\x01\x1f\t\r\n\"\\/\xfffd"_s + u"b\xfffd"_s);
    }

    void json_closeEndsEveryLevelWithTheError()
    {
        Written written;
        JsonStream& stream = written.stream;
        stream.beginObject();
        stream.beginArray(u"items");
        stream.beginObject();
        stream.key(u"half");
        QVERIFY(stream.close(u"The disk is full."_s, u"failed"_s));
        QVERIFY(stream.complete());
        QCOMPARE(written.document().object(),
                 QJsonDocument::fromJson("{\"items\":[{\"half\":null}],\"error\":{\"text\":"
                                         "\"The disk is full.\",\"kind\":\"failed\"}}")
                     .object());
        Written array; // holds no error
        array.stream.beginArray();
        array.stream.value(1);
        QVERIFY(!array.stream.close(u"No."_s, u"failed"_s));
        QCOMPARE(array.document().array(), QJsonArray{1});
    }

    void results_keepGroupOrderAndTexts()
    {
        Results results = Results::forInstallation();
        QVERIFY(results.empty());
        results.add(resultgroup::specialActions, u"Scenery library was updated."_s);
        const QString phrase = u" was installed."_s;
        for (const QString& file : {u"b.bgl"_s, u"a.bgl"_s})
            results.add(resultgroup::installed, file, phrase);
        results.add(u"Remarks", u"x"_s);
        QCOMPARE(results.texts(resultgroup::installed),
                 (QStringList{u"b.bgl was installed."_s, u"a.bgl was installed."_s}));
        QCOMPARE(results.count(resultgroup::notInstalled), 0);

        Written written;
        results.write(written.stream);
        written.stream.flush();
        QCOMPARE(written.bytes,
                 QByteArray("{\"Installed\":[\"b.bgl was installed.\",\"a.bgl was installed.\"],"
                            "\"Not Installed\":[],"
                            "\"Special Actions\":[\"Scenery library was updated.\"],"
                            "\"Failed Special Actions\":[],\"Remarks\":[\"x\"]}\n"));
    }

    void results_appendJoinsGroupsByName()
    {
        Results first = Results::forRemoval();
        first.add(resultgroup::processed, u"1"_s);
        Results second({u"More"_s, resultgroup::processed.toString()});
        second.add(resultgroup::processed, u"2"_s);
        second.add(u"More", u"3"_s);
        first.append(std::move(second));
        QCOMPARE(first.texts(resultgroup::processed), (QStringList{u"1"_s, u"2"_s}));
        QCOMPARE(first.groups().back().name, u"More"_s);
    }

    void errorLog_isWrittenByWritingCallsAlone()
    {
        ShellFixture shell;
        shell.write(u"Vantrel/ERROR.LOG"_s, "old");
        shell.global.currentProcedure = u"Private Sub InstallFiles"_s;
        shell.errors.report(u"it broke"_s);
        shell.errors.flush();
        QCOMPARE(shell.read(u"Vantrel/ERROR.LOG"_s), "old"_ba);
        QCOMPARE(shell.errors.lines(),
                 QStringList{u"2026-03-01 12:30:15  Private Sub InstallFiles: it broke"_s});
        auto writing = std::make_unique<ErrorLog>(shell.services, shell.global);
        writing->startWriting();
        QVERIFY(!shell.exists(u"Vantrel/ERROR.LOG"_s));
        writing->report(u"A"_s, u"one"_s);
        writing->report(u"B"_s, u"zw\u00f6lf"_s);
        const QByteArray two =
            "2026-03-01 12:30:15  A: one\r\n2026-03-01 12:30:15  B: zw\xc3\xb6lf\r\n";
        QCOMPARE(shell.read(u"Vantrel/ERROR.LOG"_s), two);
        for (int i = 0; i < 2500; ++i)
            writing->report(u"Step"_s, QString(60, u'x') + QString::number(i));
        writing.reset(); // what it held back is written at the latest now
        const QByteArray text = shell.read(u"Vantrel/ERROR.LOG"_s);
        QVERIFY(text.startsWith(two) && text.endsWith("x2499\r\n"));
        QCOMPARE(text.count("\r\n"), 2502);
    }

    void runStep_namesCatchesAndLogs()
    {
        ShellFixture shell;
        Context& context = shell.context;
        QString inside;
        QVERIFY(runStep(context, u"First"_s, [&] { inside = context.global.currentProcedure; }));
        QCOMPARE(inside, u"First"_s);
        const Result failed = runStep(
            context, u"Second"_s, [] { return Result::failure(u"no"_s, ErrorKind::Declined); });
        QCOMPARE(failed.kind, ErrorKind::Declined);
        const Result thrown =
            runStep(context, u"Third"_s, [] { throw std::runtime_error("out of order"); });
        QVERIFY(!thrown && thrown.text == u"out of order"_s);
        QCOMPARE(shell.errors.lines().size(), 2);
        QVERIFY(shell.errors.lines().last().endsWith(u"Third: out of order"_s));
    }
};

VT_TEST_CLASS(TestResults)

#include "test_results.moc"
