// Turns a list of results into a report, as text or as an HTML page, and saves it where the user
// says. Knows nothing of what it reports on.
#pragma once

#include "platform/Result.h"
#include "platform/Services.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt {

class Settings;

/// What stands in a list: rows of texts below named groups.
struct ReportList
{
    struct Group
    {
        QString name;            ///< empty: the rows stand without a heading
        QList<QStringList> rows; ///< a cell each column; may hold line ends and tabs
    };

    QString title;       ///< "Repair Summary Report for 3 Panels"; may be empty
    QStringList columns; ///< one named "Order" is left out of reports
    QList<Group> groups; ///< in order; those without rows are left out
};

class CReporting
{
public:
    enum class Form
    {
        Text, ///< UTF-8 without a mark, CR LF
        Html, ///< windows-1252
    };

    CReporting(Services& services, Settings& settings);

    /// The list as a whole file.
    [[nodiscard]] static QByteArray
    ListViewToBasicReport(const ReportList& list, Form form, const QDate& date);
    /// HTML for ".htm" and ".html", text for all others.
    [[nodiscard]] static Form formOf(const QString& path);
    /// The title with " Report" behind it where it does not speak of one; "Test Report" without a
    /// title.
    [[nodiscard]] static QString reportName(const QString& title);

    /// Where the next report goes: as set, else "Report.htm" (".txt" by the user's choice) in the
    /// folder of the last one. The folder is empty at first.
    [[nodiscard]] QString ReportStorageFile_GetPath();
    /// Remembers the folder for later reports too.
    void ReportStorageFile_SetPath(const QString& path);
    /// Asks for the path, with the present one as proposal; false when the user gave none.
    bool ReportStorageFile_ShowDialog();
    /// What a file dialog is filled with: title, filter and name.
    static const QString dialogTitle;
    static const QString dialogFilter;
    static const QString defaultName;

    /// Writes to ReportStorageFile_GetPath(), whose folder must be one that may be written. A
    /// success carries "Report saved to '...'." as remark.
    [[nodiscard]] Result save(const ReportList& list);

private:
    Services& m_services;
    Settings& m_settings;
    QString m_path;
};

} // namespace vt
