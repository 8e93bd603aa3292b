#include "shell/CReporting.h"
#include "support/TestMain.h"

#include <QLocale>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace vt;

class TestReporting : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void html_isEscapedAndWhole();
    void text_standsInColumns();
    void names();
};

namespace {

const ReportList& sample()
{
    static const ReportList list{
        u"Repair <A> & \"B\""_s,
        {u"Order"_s, u"Title"_s, u"Details"_s},
        {{u"Healthy"_s, {{u"1"_s, u"Été \u65e5"_s, {}}}},
         {u"Empty"_s, {}},
         {u"Repaired"_s, {{u"2"_s, u"<script>"_s, u"first:\n\tx.bmp\x01"_s}}}}};
    return list;
}

} // namespace

void TestReporting::html_isEscapedAndWhole()
{
    const QByteArray page =
        CReporting::ListViewToBasicReport(sample(), CReporting::Form::Html, QDate(2026, 11, 21));
    for (
        const char* part :
        {"charset=windows-1252",
         "<title>Report - Repair &lt;A&gt; &amp; &quot;B&quot; Report Saturday, 21 November 2026</title>",
         "<h2>Repair &lt;A&gt; &amp; &quot;B&quot; Report</h2>\r\n<h3>Saturday, 21 November 2026</h3>",
         "<table>\r\n<tr><th>Title</th><th>Details</th></tr>",
         "colspan=\"2\">Healthy</td></tr>\r\n<tr><td>\xc9t\xe9 &#26085;</td><td></td></tr>",
         "<td>&lt;script&gt;</td><td>first:<br>&nbsp;&nbsp;&nbsp;&nbsp;x.bmp</td>",
         "</table>\r\n<p>Total: 2 items</p>",
         "color-scheme: light dark"})
        QVERIFY2(page.contains(part), part);
    QVERIFY(!page.contains("Empty") && !page.contains("Order"));
}

void TestReporting::text_standsInColumns()
{
    const QString text = QString::fromUtf8(
        CReporting::ListViewToBasicReport(sample(), CReporting::Form::Text, QDate(2026, 11, 21)));
    const QStringList lines = text.split(u"\r\n"_s);
    QCOMPARE(lines.at(0), u"Repair <A> & \"B\" Report"_s);
    QCOMPARE(lines.at(2), u"Saturday, 21 November 2026"_s);
    QVERIFY(lines.contains(u"    Title     Details"_s));
    QVERIFY(lines.contains(u"    <script>  first:"_s));
    QVERIFY(lines.contains(u"                  x.bmp\x01"_s));
    QVERIFY(lines.contains(u"Total: 2 items"_s));
    QVERIFY(!lines.contains(u"Empty"_s));
}

void TestReporting::names()
{
    QCOMPARE(CReporting::reportName({}), u"Test Report"_s);
    QCOMPARE(CReporting::reportName(u"Scenery Areas"_s), u"Scenery Areas Report"_s);
    QCOMPARE(CReporting::reportName(u"Repair Summary Report for 2 Panels"_s),
             u"Repair Summary Report for 2 Panels"_s);
    QCOMPARE(CReporting::formOf(u"C:\\a.HTM"_s), CReporting::Form::Html);
    QCOMPARE(CReporting::formOf(u"C:\\a.html"_s), CReporting::Form::Html);
    QCOMPARE(CReporting::formOf(u"C:\\a"_s), CReporting::Form::Text);
}

VT_TEST_CLASS(TestReporting)

#include "test_reporting.moc"
