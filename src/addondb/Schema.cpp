#include "addondb/Schema.h"

#include "addondb/Collation.h"

namespace vt::schema {

namespace {

const char* const installedPlace = "vt_place(\"Installed_To_Location\", \"Installed_To_FileName\")";
const char* const installedName = "vt_name(\"Installed_To_FileName\")";
const char* const preferredPlace =
    "vt_place(\"Preferred_Install_To_Location\", \"Preferred_Install_To_Filename\")";
/// Only such rows stand in the index of preferred places; the others are found by their place.
const char* const placedElsewhere =
    "(\"Preferred_Install_To_Location\" <> \"Installed_To_Location\""
    " OR \"Preferred_Install_To_Filename\" <> \"Installed_To_FileName\")";

QByteArray typeText(FieldType type)
{
    switch (type) {
    case FieldType::Long:
    case FieldType::Integer:
    case FieldType::Boolean:
        return " INTEGER NOT NULL DEFAULT 0";
    case FieldType::Date:
        return " TEXT NOT NULL DEFAULT ''";
    case FieldType::Text:
        return QByteArray(" TEXT COLLATE ") + collation::collationName + " NOT NULL DEFAULT ''";
    case FieldType::Blob:
        return " BLOB NOT NULL DEFAULT x''";
    }
    return {};
}

bool isRowKey(Table table, Field field)
{
    for (const IndexInfo& index : allIndexes()) {
        if (index.table == table && index.form == IndexForm::RowKey && index.fields[0] == field)
            return true;
    }
    return false;
}

QByteArray
fieldList(std::span<const Field> fields, const char* prefix = "", const char* suffix = "")
{
    QByteArray list;
    for (const Field field : fields) {
        if (!list.isEmpty())
            list += ", ";
        list += prefix + quoted(field) + suffix;
    }
    return list;
}

QByteArray parameter(std::size_t number)
{
    return "?" + QByteArray::number(qulonglong(number));
}

/// "field = ?n" for the fields and parameters from the first on.
QByteArray equals(std::span<const Field> fields)
{
    QByteArray text;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0)
            text += " AND ";
        text += quoted(fields[i]) + " = " + parameter(i + 1);
    }
    return text;
}

} // namespace

QByteArray quoted(Field field)
{
    return QByteArray("\"") + info(field).name + "\"";
}

QByteArray quoted(Table table)
{
    return QByteArray("\"") + info(table).name + "\"";
}

QByteArray createTable(Table table)
{
    QByteArray sql = "CREATE TABLE " + quoted(table) + " (";
    const char* separator = "";
    for (const Field field : info(table).fields) {
        sql += separator + quoted(field);
        sql += isRowKey(table, field) ? QByteArray(" INTEGER PRIMARY KEY")
                                      : typeText(info(field).type);
        separator = ", ";
    }
    return sql + ")";
}

QByteArray createIndex(Index index)
{
    const IndexInfo& about = info(index);
    const QByteArray head =
        QByteArray(about.unique ? "CREATE UNIQUE INDEX \"" : "CREATE INDEX \"") +
        info(about.table).name + "_" + about.name + "\" ON " + quoted(about.table) + " (";
    switch (about.form) {
    case IndexForm::RowKey:
        return {};
    case IndexForm::Ordered:
        return head + fieldList(about.fields) + ")";
    case IndexForm::InstalledPlace:
        return head + installedPlace + ")";
    case IndexForm::InstalledName:
        return head + installedName + ")";
    case IndexForm::PreferredPlace:
        return head + preferredPlace + ") WHERE " + placedElsewhere;
    }
    return {};
}

QByteArray addField(Table table, Field field)
{
    return "ALTER TABLE " + quoted(table) + " ADD COLUMN " + quoted(field) +
           typeText(info(field).type);
}

QByteArrayList marks()
{
    return {"PRAGMA application_id=" + QByteArray::number(applicationId),
            "PRAGMA user_version=" + QByteArray::number(structureVersion)};
}

QByteArrayList creation()
{
    QByteArrayList statements = marks();
    for (const TableInfo& table : allTables())
        statements.push_back(createTable(table.table));
    for (const IndexInfo& index : allIndexes()) {
        const QByteArray sql = createIndex(index.index);
        if (!sql.isEmpty())
            statements.push_back(sql);
    }
    return statements;
}

QByteArray fields(Table table)
{
    return fieldList(info(table).fields);
}

QByteArray columns(Table table)
{
    return "rowid, " + fields(table);
}

QByteArray equalTo(Index index, std::size_t keys)
{
    const IndexInfo& about = info(index);
    Q_ASSERT(keys >= 1 && keys <= about.fields.size());
    const QByteArray same = equals(about.fields.first(keys));
    const QByteArray sought = keys == 2
                                  ? QByteArray(" = vt_place(?1, ?2) AND ") + same
                                  : " BETWEEN vt_location(?1) AND vt_location(?1) + 4294967295"
                                    " AND " +
                                        same;
    switch (about.form) {
    case IndexForm::RowKey:
    case IndexForm::Ordered:
        return same;
    case IndexForm::InstalledName:
        return QByteArray(installedName) + " = vt_name(?1) AND " + same;
    case IndexForm::InstalledPlace:
        return installedPlace + sought;
    case IndexForm::PreferredPlace: {
        const QByteArray rows = "SELECT rowid FROM " + quoted(about.table) + " WHERE ";
        return "rowid IN (" + rows + installedPlace + sought + " UNION ALL " + rows +
               placedElsewhere + " AND " + preferredPlace + sought + ")";
    }
    }
    return {};
}

QByteArray atOrAfter(Index index, std::size_t keys)
{
    const IndexInfo& about = info(index);
    Q_ASSERT(keys >= 1 && keys <= about.fields.size());
    Q_ASSERT(about.form == IndexForm::RowKey || about.form == IndexForm::Ordered);
    QByteArray values;
    for (std::size_t i = 0; i < keys; ++i)
        values += (i > 0 ? ", " : "") + parameter(i + 1);
    return "(" + fieldList(about.fields.first(keys)) + ") >= (" + values + ")";
}

QByteArray order(Index index, const char* direction)
{
    const IndexInfo& about = info(index);
    const QByteArray byNumber = QByteArray("rowid") + direction;
    if (about.form != IndexForm::Ordered)
        return byNumber;
    return fieldList(about.fields, "", direction) + ", " + byNumber;
}

} // namespace vt::schema
