// Blocks of an aircraft.cfg: order, adding, taking out, hiding, as lines.
#include "platform/AnsiCodec.h"
#include "simconfig/AircraftSections.h"
#include "simconfig/CAircraft.h"
#include "simconfig/engine/modRoutines_INI.h"
#include "support/TestMain.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace vt;
namespace sections = vt::aircraftsections;

namespace {

const AnsiCodec ansi(932); // lead bytes whose partners look like brackets

LineArray linesOf(const QByteArray& text)
{
    return LineArray::ofBytes(text, ansi);
}

/// A file with aircraft sections \a numbers between comments, blanks and other sections.
QByteArray randomFile(QRandomGenerator& random, const QList<int>& numbers)
{
    const QByteArrayList between = {"",
                                    "\r\n",
                                    "\r\n\r\n",
                                    "; remark\r\n",
                                    "\r\n// above the next\r\n",
                                    "// own remark\r\n\r\n",
                                    "\t\r\n",
                                    "[General]\r\nCategory=x\r\n",
                                    "[ LIGHTS ] ; lights\r\nlight.0 = 1, fx_a\r\n\r\n"};
    const auto some = [&] { return between.at(random.bounded(between.size())); };
    QByteArray text = random.bounded(2) ? "// head\r\nloose=1\r\n" : "";
    for (const int number : numbers) {
        const QByteArray name =
            QByteArray(random.bounded(2) ? "fltsim." : "FltSim.") + QByteArray::number(number);
        const QByteArrayList headers = {
            "[" + name + "]", "[ " + name + " ] ; " + name, " [" + name + "]\t"};
        text += headers.at(random.bounded(headers.size())) + "\r\ntitle\t= Plane " +
                QByteArray::number(number) + " \x83\x5b\x81\x5d // " + name + "\r\n";
        if (random.bounded(2))
            text += "//kb=x\r\ntexture=" + QByteArray::number(number) + "\r\n";
        text += some();
    }
    return text + (random.bounded(2) ? some() : QByteArray());
}

QList<int> upTo(int count)
{
    QList<int> numbers;
    for (int i = 0; i < count; ++i)
        numbers.append(i);
    return numbers;
}

QStringList names(const LineArray& lines)
{
    return CAircraft::Headers_ReturnOnlyAircraftHeaders(
        modRoutines_INI::INI_Sections_GetNames(lines));
}

} // namespace

class TestAircraftSections : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void appendedAndTaken_isTheSame()
    {
        QRandomGenerator random(7);
        for (int round = 0; round < 400; ++round) {
            const int present = 1 + random.bounded(4);
            const LineArray before = linesOf(randomFile(random, upTo(present)));
            LineArray lines = before;
            QList<LineArray> blocks;
            QStringList added;
            for (int i = random.bounded(4); i >= 0; --i) {
                added.append(u"fltsim."_s + QString::number(present + blocks.size()));
                blocks.append(linesOf("[" + added.last().toLatin1() +
                                      "]\r\ntitle=x\r\n; in between\r\ntexture=y"));
            }
            sections::append(lines, blocks);
            QCOMPARE(names(lines).size(), present + added.size());
            std::shuffle(added.begin(), added.end(), random);
            for (const QString& one : std::as_const(added))
                QVERIFY(sections::take(lines, {one, u"fltsim.99"_s}));
            QCOMPARE(lines.joined(), before.joined());
            sections::append(lines, blocks);
            QVERIFY(sections::take(lines, added));
            QCOMPARE(lines.joined(), before.joined());
            QVERIFY(!sections::take(lines, added));
            QCOMPARE(lines.joined(), before.joined());
        }
    }

    void append_standsBehindTheLast()
    {
        LineArray lines =
            linesOf("[fltsim.0]\r\na=1\r\n//own\r\n\r\n// general\r\n[General]\r\nb=2\r\n");
        sections::append(lines, {linesOf("[fltsim.1]\r\nc=3"), linesOf("[fltsim.2]\r\nd=4")});
        QCOMPARE(
            lines.joined(),
            "[fltsim.0]\r\na=1\r\n//own\r\n\r\n[fltsim.1]\r\nc=3\r\n\r\n[fltsim.2]\r\nd=4\r\n\r\n"
            "// general\r\n[General]\r\nb=2\r\n"_ba);
        LineArray none = linesOf("; only this\r\n[General]\r\n");
        sections::append(none, {linesOf("[fltsim.0]\r\nc=3")});
        QCOMPARE(none.joined(), "; only this\r\n[fltsim.0]\r\nc=3\r\n\r\n[General]\r\n"_ba);
    }

    void reorder_movesWholeBlocks()
    {
        LineArray lines =
            linesOf("loose=1\r\n; head\r\n[fltsim.2]\r\na=2\r\n\r\n[General]\r\nx=1\r\n"
                    "[ FltSim.0 ] ; first\r\na=0\r\n[fltsim.5]\r\na=5\r\n");
        const auto renames = sections::reorder(lines);
        QVERIFY(renames.ok());
        QCOMPARE(
            *renames,
            (sections::Renames{{u"fltsim.2"_s, u"fltsim.1"_s}, {u"fltsim.5"_s, u"fltsim.2"_s}}));
        QCOMPARE(lines.joined(),
                 "loose=1\r\n; head\r\n[ FltSim.0 ] ; first\r\na=0\r\n[fltsim.1]\r\na=2\r\n\r\n"
                 "[fltsim.2]\r\na=5\r\n\r\n[General]\r\nx=1\r\n"_ba);
    }

    void reorder_losesNoLine()
    {
        QRandomGenerator random(8);
        for (int round = 0; round < 300; ++round) {
            QList<int> numbers;
            for (int i = 1 + random.bounded(5); i > 0; --i)
                numbers.append(random.bounded(6));
            const LineArray before = linesOf(randomFile(random, numbers));
            LineArray lines = before;
            const auto renames = sections::reorder(lines);
            QVERIFY(renames.ok());
            QVERIFY(CAircraft::sectionOrder(modRoutines_INI::INI_Sections_GetNames(lines)).good);
            if (CAircraft::sectionOrder(modRoutines_INI::INI_Sections_GetNames(before)).good)
                QCOMPARE(lines.joined(), before.joined());
            const auto contents = [](const LineArray& of) {
                QByteArrayList kept;
                for (const QByteArray& line : of.lines) {
                    if (!line.trimmed().isEmpty() && !line.trimmed().startsWith("["))
                        kept.append(line);
                }
                std::sort(kept.begin(), kept.end());
                return kept;
            };
            QCOMPARE(contents(lines), contents(before));
            QVERIFY(sections::reorder(lines)->isEmpty());
        }
    }

    void hiddenAndShown_isTheSame()
    {
        QRandomGenerator random(9);
        for (int round = 0; round < 300; ++round) {
            const int count = 1 + random.bounded(5);
            const LineArray before = linesOf(randomFile(random, upTo(count)));
            LineArray lines = before;
            QStringList hidden;
            for (int i = random.bounded(count + 1); i > 0; --i) {
                const QString section =
                    u"fltsim."_s + QString::number(random.bounded(count - hidden.size()));
                const auto renames = sections::hide(lines, section);
                QVERIFY2(renames.ok(), qPrintable(renames.text));
                QString now = section;
                sections::follow(now, *renames);
                hidden.append(now);
                const auto order =
                    CAircraft::sectionOrder(modRoutines_INI::INI_Sections_GetNames(lines));
                QVERIFY(order.good || hidden.size() == count);
            }
            std::shuffle(hidden.begin(), hidden.end(), random);
            for (const QString& section : std::as_const(hidden))
                QVERIFY(sections::show(lines, section).ok());
            QCOMPARE(lines.joined(), before.joined());
        }
    }

    void hide_closesTheGap()
    {
        LineArray lines = linesOf("[fltsim.0]\r\n[fltsim.1]\r\n[fltsim.2]\r\n");
        QCOMPARE(*sections::hide(lines, u"FLTSIM.1"_s),
                 (sections::Renames{{u"fltsim.1"_s, u"hidden.fltsim.1"_s},
                                    {u"fltsim.2"_s, u"fltsim.1"_s}}));
        QCOMPARE(names(lines), (QStringList{u"fltsim.0"_s, u"fltsim.1"_s}));
        // One more, and one less: what is shown again still finds a place.
        sections::append(lines, {linesOf("[fltsim.2]\r\nnew=1")});
        QVERIFY(sections::take(lines, {u"fltsim.0"_s}));
        QVERIFY(sections::reorder(lines).ok());
        QVERIFY(sections::show(lines, u"hidden.fltsim.1"_s).ok());
        QCOMPARE(names(lines).size(), 3);
        QVERIFY(CAircraft::sectionOrder(names(lines)).good);
    }

    void hide_refusesDisorder()
    {
        const LineArray before = linesOf("[fltsim.0]\r\n[fltsim.2]\r\n");
        LineArray lines = before;
        const auto refused = sections::hide(lines, u"fltsim.2"_s);
        QVERIFY(refused.text.contains(u"fltsim.0->fltsim.2"_s));
        lines = linesOf("[fltsim.0]\r\n");
        QVERIFY(!sections::hide(lines, u"fltsim.1"_s).ok());
        QVERIFY(!sections::show(lines, u"fltsim.0"_s).ok());
        QCOMPARE(lines.joined(), "[fltsim.0]\r\n"_ba);
    }

    void blocks_fromProse()
    {
        const auto blocks = sections::blocksIn(
            "Copy = paste this into the file:\n\n[fltsim.xx]  <- your number\n"
            "\ttitle\t=\tIntl / HS-TBA ; best\nsim=plane\nTo finish = save the file.\n"
            "texture=blue\ntitle=second\n\n----\n[fltsim]\nno=1\n[FLTSIM.1]\nui_variation = \"B\"\n",
            ansi,
            sections::Source::Prose);
        QVERIFY(blocks.ok());
        QCOMPARE(blocks->size(), 2);
        QCOMPARE(blocks->first().joined(),
                 "[fltsim.xx]\r\ntitle=Intl / HS-TBA ; best\r\nsim=plane\r\ntexture=blue"_ba);
        QCOMPARE(blocks->last().joined(), "[FLTSIM.1]\r\nui_variation=\"B\""_ba);
        QVERIFY(!sections::blocksIn("\xef\xbb\xbf[fltsim.x]\ntitle=\xe6\x97\xa5\n",
                                    AnsiCodec(1252),
                                    sections::Source::Prose)
                     .ok());
    }

    void blocks_fromConfigurations()
    {
        const auto blocks =
            sections::blocksIn("[fltsim.0]\n; mine\ntitle=a\n\n// general\n[General]\nx=1\n",
                               ansi,
                               sections::Source::Configuration);
        QVERIFY(blocks.ok());
        QCOMPARE(blocks->size(), 1);
        QCOMPARE(blocks->first().joined(), "[fltsim.0]\r\n; mine\r\ntitle=a"_ba);
    }
};

VT_TEST_CLASS(TestAircraftSections)
#include "test_aircraftsections.moc"
