// The sort of list rows: keys and rows stay together, whatever the values.
#include "platform/Text.h"
#include "shell/CSuperSort.h"
#include "support/ScriptedPrompts.h"
#include "support/TestMain.h"

#include <QDateTime>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace vt;
using namespace vt::test;

class TestSuperSort : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void keysAndRows_areSortedTogether_data()
    {
        QTest::addColumn<SortDataType>("type");
        QTest::addColumn<int>("values"); ///< how many different ones
        QTest::newRow("texts") << SortDataType::General << 400;
        QTest::newRow("numbers") << SortDataType::Number << 1'000'000;
        QTest::newRow("dates") << SortDataType::Date << 90;
        QTest::newRow("all equal") << SortDataType::Number << 1;
    }

    void keysAndRows_areSortedTogether()
    {
        QFETCH(const SortDataType, type);
        QFETCH(const int, values);
        QRandomGenerator random(7);
        const QDateTime start(QDate(2000, 1, 1), QTime(0, 0));
        for (const SortDirection direction :
             {SortDirection::Ascending, SortDirection::Descending}) {
            for (const int count : {0, 1, 2, 3, 4000}) {
                QList<QVariant> keys;
                QList<qsizetype> rows;
                for (int i = 0; i < count; ++i) {
                    const int value = random.bounded(values);
                    rows += i;
                    if (type == SortDataType::General)
                        keys += (i % 2 ? u"Name %1"_s : u"nAME %1"_s).arg(value);
                    else if (type == SortDataType::Number)
                        keys += i % 50 ? QVariant(value) : QVariant(u"none"_s);
                    else
                        keys += i % 50 ? QVariant(start.addDays(value)) : QVariant(QDateTime());
                }
                const QList<QVariant> before = keys;
                ScriptedPrompts prompts;
                CSuperSort sort(prompts);
                sort.lngSort_Column_DataType = type;
                sort.lngSort_Direction = direction;
                QVERIFY(sort.Sort(keys, rows));
                // A second run starts from what is sorted already.
                QVERIFY(sort.Sort(keys, rows));
                QCOMPARE(QSet<qsizetype>(rows.cbegin(), rows.cend()).size(), count);
                const auto less = [type](const QVariant& a, const QVariant& b) {
                    if (type == SortDataType::General)
                        return compareNoCase(a.toString(), b.toString()) < 0;
                    if (type == SortDataType::Number)
                        return (a.userType() == QMetaType::Int ? a.toInt() : -1) <
                               (b.userType() == QMetaType::Int ? b.toInt() : -1);
                    return b.toDateTime().isValid() &&
                           (!a.toDateTime().isValid() || a.toDateTime() < b.toDateTime());
                };
                for (qsizetype i = 0; i < count; ++i) {
                    QCOMPARE(keys[i], before[rows[i]]);
                    if (i > 0)
                        QVERIFY(direction == SortDirection::Ascending
                                    ? !less(keys[i], keys[i - 1])
                                    : !less(keys[i - 1], keys[i]));
                }
            }
        }
    }

    void unequalArrays_areToldAndLeftAlone()
    {
        ScriptedPrompts prompts;
        prompts.expect(u"Parallel array sort error: array upper bounds are unequal."_s, Button::Ok);
        QList<QVariant> keys = {2, 1};
        QList<qsizetype> rows = {0};
        QVERIFY(!CSuperSort(prompts).Sort(keys, rows));
        QCOMPARE(keys, (QList<QVariant>{2, 1}));
        QCOMPARE(rows, QList<qsizetype>{0});
    }
};

VT_TEST_CLASS(TestSuperSort)
#include "test_supersort.moc"
