#include "shell/CReporting.h"

#include "platform/AnsiCodec.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/Settings.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Wider cells do not push the columns behind them away.
constexpr qsizetype widestCell = 60;

QString longDate(const QDate& date)
{
    return QLocale().toString(date, QLocale::LongFormat);
}

/// Indexes of the columns that a report shows.
QList<qsizetype> shownColumns(const ReportList& list)
{
    QList<qsizetype> shown;
    for (qsizetype i = 0; i < list.columns.size(); ++i) {
        if (list.columns.at(i) != u"Order")
            shown.append(i);
    }
    return shown;
}

qsizetype rowCount(const ReportList& list)
{
    qsizetype count = 0;
    for (const ReportList::Group& group : list.groups)
        count += group.rows.size();
    return count;
}

QString totalOf(const ReportList& list)
{
    return u"Total: "_s + QString::number(rowCount(list)) + u" items"_s;
}

// --- HTML --------------------------------------------------------------------------------------

void appendReference(QByteArray& out, char32_t code)
{
    out += "&#" + QByteArray::number(quint32(code)) + ';';
}

/// Text as it stands in a page: escaped, line ends and tabs kept visible, characters that the page
/// lacks as references, control characters left out.
QByteArray htmlText(const QString& text)
{
    static const AnsiCodec page(1252);
    QByteArray out;
    for (const char32_t code : text.toUcs4()) {
        if (code == U'&')
            out += "&amp;";
        else if (code == U'<')
            out += "&lt;";
        else if (code == U'>')
            out += "&gt;";
        else if (code == U'"')
            out += "&quot;";
        else if (code == U'\n')
            out += "<br>";
        else if (code == U'\t')
            out += "&nbsp;&nbsp;&nbsp;&nbsp;";
        else if (code >= 0x20 && code < 0x7F)
            out += char(code);
        else if (code < 0xA0 || (code >= 0xD800 && code < 0xE000) || (code & 0xFFFE) == 0xFFFE)
            continue;
        else if (const auto bytes = page.encode(QString::fromUcs4(&code, 1));
                 bytes && (code < 0xE000 || code > 0xF8FF))
            out += *bytes;
        else
            appendReference(out, code);
    }
    return out;
}

constexpr const char* htmlHead =
    R"(<!DOCTYPE HTML PUBLIC "-//W3C//DTD HTML 4.01//EN" "http://www.w3.org/TR/html4/strict.dtd">
<html lang="en">
<head>
<meta http-equiv="Content-Type" content="text/html; charset=windows-1252">
<style type="text/css">
:root { color-scheme: light dark; }
body { margin: 2em; font-family: sans-serif; line-height: 1.4; color: #1b1b1b; background: #ffffff; }
h2, h3 { text-align: center; }
h3 { font-weight: normal; }
table { width: 100%; border: none; border-collapse: collapse; }
th, td { padding: 0.2em 0.6em 0.2em 0; text-align: left; vertical-align: top; }
th { font-weight: bold; }
td.group { padding-top: 0.8em; font-style: italic; }
@media (prefers-color-scheme: dark) { body { color: #e4e4e4; background: #1b1b1b; } }
@media print { body { color: #000000; background: #ffffff; } }
</style>
)";

QByteArray htmlRow(const QStringList& cells, const QList<qsizetype>& shown, const char* tag)
{
    QByteArray out = "<tr>";
    for (const qsizetype column : shown)
        out += QByteArray("<") + tag + '>' + htmlText(cells.value(column)) + "</" + tag + '>';
    return out + "</tr>\n";
}

QByteArray htmlReport(const ReportList& list, const QDate& date)
{
    const QList<qsizetype> shown = shownColumns(list);
    const QByteArray title = htmlText(CReporting::reportName(list.title));
    const QByteArray day = htmlText(longDate(date));
    QByteArray out = htmlHead;
    out += "<title>Report - " + title + ' ' + day + "</title>\n</head>\n<body>\n<h2>" + title +
           "</h2>\n<h3>" + day + "</h3>\n<table>\n" + htmlRow(list.columns, shown, "th");
    for (const ReportList::Group& group : list.groups) {
        if (!group.rows.isEmpty() && !group.name.isEmpty())
            out += "<tr><td class=\"group\" colspan=\"" + QByteArray::number(shown.size()) + "\">" +
                   htmlText(group.name) + "</td></tr>\n";
        for (const QStringList& row : group.rows)
            out += htmlRow(row, shown, "td");
    }
    out += "</table>\n<p>" + htmlText(totalOf(list)) + "</p>\n</body>\n</html>\n";
    return out.replace("\n", "\r\n");
}

// --- text --------------------------------------------------------------------------------------

using Widths = QList<qsizetype>;

QStringList cellLines(const QString& cell)
{
    return QString(cell).replace(u'\t', u"    "_s).split(u'\n');
}

Widths widthsOf(const ReportList& list, const QList<qsizetype>& shown)
{
    Widths widths;
    for (const qsizetype column : shown) {
        qsizetype width = list.columns.at(column).size();
        for (const ReportList::Group& group : list.groups) {
            for (const QStringList& row : group.rows) {
                for (const QString& line : cellLines(row.value(column)))
                    width = std::max(width, line.size());
            }
        }
        widths.append(std::min(width, widestCell));
    }
    return widths;
}

/// Cells beside each other, those of several lines downwards.
void appendRow(QStringList& out,
               const QStringList& cells,
               const QList<qsizetype>& shown,
               const Widths& widths,
               const QString& indent)
{
    QList<QStringList> columns;
    qsizetype height = 1;
    for (const qsizetype column : shown) {
        columns.append(cellLines(cells.value(column)));
        height = std::max(height, columns.constLast().size());
    }
    for (qsizetype line = 0; line < height; ++line) {
        QString text = indent;
        for (qsizetype i = 0; i < columns.size(); ++i)
            text += columns.at(i).value(line).leftJustified(widths.at(i)) + u"  "_s;
        while (text.endsWith(u' '))
            text.chop(1);
        out.append(text);
    }
}

QByteArray textReport(const ReportList& list, const QDate& date)
{
    const QList<qsizetype> shown = shownColumns(list);
    const Widths widths = widthsOf(list, shown);
    const QString title = CReporting::reportName(list.title);
    QStringList out{title, QString(title.size(), u'='), longDate(date), QString()};
    appendRow(out, list.columns, shown, widths, u"    "_s);
    for (const ReportList::Group& group : list.groups) {
        if (group.rows.isEmpty())
            continue;
        out.append(QString());
        if (!group.name.isEmpty())
            out.append(group.name);
        for (const QStringList& row : group.rows)
            appendRow(out, row, shown, widths, u"    "_s);
    }
    out.append(QString());
    out.append(totalOf(list));
    return (out.join(u"\r\n"_s) + u"\r\n"_s).toUtf8();
}

} // namespace

const QString CReporting::dialogTitle = u"Save Report As"_s;
const QString CReporting::dialogFilter = u"Text Files (*.txt)|*.txt|HTML (*.htm)|*.htm"_s;
const QString CReporting::defaultName = u"Report.htm"_s;

CReporting::CReporting(Services& services, Settings& settings)
    : m_services(services), m_settings(settings)
{}

QByteArray CReporting::ListViewToBasicReport(const ReportList& list, Form form, const QDate& date)
{
    return form == Form::Html ? htmlReport(list, date) : textReport(list, date);
}

CReporting::Form CReporting::formOf(const QString& path)
{
    const QString extension = winpath::extension(path);
    return equalNoCase(extension, u"htm") || equalNoCase(extension, u"html") ? Form::Html
                                                                             : Form::Text;
}

QString CReporting::reportName(const QString& title)
{
    if (title.isEmpty())
        return u"Test Report"_s;
    return containsNoCase(title, u"report") ? title : title + u" Report"_s;
}

QString CReporting::ReportStorageFile_GetPath()
{
    if (!m_path.isEmpty())
        return m_path;
    const bool text = m_settings.number(SettingKey::ReportMethod) == 1;
    const QString name = text ? winpath::baseName(defaultName) + u".txt"_s : defaultName;
    const QString folder = m_settings.text(SettingKey::ReportFolder);
    return folder.isEmpty() ? name : winpath::join(folder, name);
}

void CReporting::ReportStorageFile_SetPath(const QString& path)
{
    m_path = path;
    m_settings.setText(SettingKey::ReportFolder, winpath::parent(path));
}

bool CReporting::ReportStorageFile_ShowDialog()
{
    const std::optional<QString> path = m_services.prompts.askText(
        {dialogTitle, u"Name the file of the report."_s, ReportStorageFile_GetPath()});
    if (!path || path->isEmpty())
        return false;
    ReportStorageFile_SetPath(*path);
    return true;
}

Result CReporting::save(const ReportList& list)
{
    const QString path = ReportStorageFile_GetPath();
    const Result written = m_services.actions.replace(
        path, ListViewToBasicReport(list, formOf(path), m_services.clock.now().date()));
    return written ? Result::success(u"Report saved to '"_s + path + u"'."_s) : written;
}

} // namespace vt
