#include "addondb/Salvage.h"

#include "addondb/AddonDatabase.h"
#include "addondb/Collation.h"
#include "addondb/RawPages.h"
#include "addondb/Recordset.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

using rawpages::PageKind;
using rawpages::RawPages;
using rawpages::Row;
using rawpages::Value;

constexpr std::size_t tableCount = std::size_t(Table::Count_);
constexpr qsizetype dateLength = 19;
constexpr qsizetype hashLength = 16;

/// The fields of a table in the order of the damaged file; nothing for fields that are unknown.
using Columns = std::vector<std::optional<Field>>;

Columns presentColumns(Table table)
{
    return {info(table).fields.begin(), info(table).fields.end()};
}

std::optional<Table> tableNamed(QByteArrayView name)
{
    for (const TableInfo& table : allTables()) {
        if (name == QByteArrayView(table.name))
            return table.table;
    }
    return std::nullopt;
}

std::optional<Field> fieldNamed(Table table, QByteArrayView name)
{
    for (const Field field : info(table).fields) {
        if (name == QByteArrayView(info(field).name))
            return field;
    }
    return std::nullopt;
}

/// From the text that made the table: each field's name stands in quotes.
Columns columnsOf(Table table, const QByteArray& sql)
{
    Columns columns;
    for (const QByteArray& part : sql.mid(sql.indexOf('(') + 1).split(',')) {
        const QByteArray name = part.trimmed();
        const qsizetype end = name.indexOf('"', 1);
        if (name.startsWith('"') && end > 0)
            columns.push_back(fieldNamed(table, QByteArrayView(name).sliced(1, end - 1)));
    }
    return columns.empty() ? presentColumns(table) : columns;
}

bool isRowKey(Table table, Field field)
{
    const IndexInfo* primary = nullptr;
    for (const IndexInfo& index : allIndexes()) {
        if (index.table == table && primary == nullptr)
            primary = &index;
    }
    return primary != nullptr && primary->form == IndexForm::RowKey && primary->fields[0] == field;
}

/// Readable text: UTF-8 without control characters other than those of a description.
bool isText(const QByteArray& bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return text.toUtf8() == bytes && std::none_of(text.cbegin(), text.cend(), [](QChar c) {
               return c < u' ' && c != u'\n' && c != u'\r' && c != u'\t';
           });
}

bool fits(Field field, const Value& value)
{
    switch (info(field).type) {
    case FieldType::Boolean:
        return value.kind == Value::Integer && (value.number == 0 || value.number == 1);
    case FieldType::Long:
    case FieldType::Integer:
        return value.kind == Value::Integer;
    case FieldType::Date:
        return value.kind == Value::Text &&
               (value.bytes.isEmpty() || (value.bytes.size() == dateLength &&
                                          dateOf(QString::fromLatin1(value.bytes)).isValid()));
    case FieldType::Text:
        return value.kind == Value::Text && isText(value.bytes);
    case FieldType::Blob:
        return value.kind == Value::Blob &&
               ((field != Field::Hash && field != Field::LastWrittenHash) ||
                value.bytes.isEmpty() || value.bytes.size() == hashLength);
    }
    return false;
}

/// Whether the row can be one of this table. A row that was written before its table got its last
/// fields is shorter.
bool fits(Table table, const Columns& columns, const Row& row)
{
    if (row.values.size() > columns.size() || row.values.empty())
        return false;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (!columns[i])
            continue;
        const bool own = isRowKey(table, *columns[i]);
        if (own ? row.values[i].kind != Value::Null : !fits(*columns[i], row.values[i]))
            return false;
    }
    return true;
}

FieldValue fieldValue(Field field, const Value& value)
{
    switch (info(field).type) {
    case FieldType::Date:
    case FieldType::Text:
        return QString::fromUtf8(value.bytes);
    case FieldType::Blob:
        return value.bytes;
    default:
        return value.number;
    }
}

class Salvage
{
public:
    Salvage(const RawPages& pages, Connection& into, const QDateTime& now)
        : m_pages(pages), m_into(into), m_now(now)
    {}

    Result run();

    SalvageReport report;

private:
    /// Whose rows a page holds, as far as the tables' trees tell.
    enum class Owner : quint8
    {
        Unknown,
        Nobody, ///< unused, or the list of tables itself
        Known,
    };

    struct Page
    {
        Owner owner = Owner::Unknown;
        Table table = Table::Count_;
    };

    void readTables();
    void claim(qint64 root, Owner owner, Table table, QList<qint64>* leaves = nullptr);
    [[nodiscard]] std::optional<Table> tableOfStray(qint64 page) const;
    Result takePage(Table table, qint64 page, bool sound);
    Result takeRow(Recordset& rows, Table table, const Row& row, bool sound);
    bool isConfirmed(const Columns& columns, const Row& row);
    void readIndexes();
    Result complete(const AddonRecord& addon);
    Result rebuildAddons();
    Result rebuildCounters();

    const RawPages& m_pages;
    Connection& m_into;
    QDateTime m_now;
    std::vector<Page> m_owners; ///< by page number
    std::array<Columns, tableCount> m_columns;
    std::array<QList<qint64>, tableCount> m_leaves; ///< in the order of their rows
    QSet<std::pair<qint64, qint64>> m_entries;      ///< of sound index pages: value, row
    QSet<qint64> m_entryRows;
    bool m_indexesRead = false;
};

/// Marks the pages of a tree, and lists its leaves.
void Salvage::claim(qint64 root, Owner owner, Table table, QList<qint64>* leaves)
{
    QList<qint64> open{root};
    while (!open.isEmpty()) {
        const qint64 page = open.takeLast();
        if (page < 1 || page > m_pages.count() || m_owners[size_t(page)].owner != Owner::Unknown)
            continue;
        m_owners[size_t(page)] = {owner, table};
        if (leaves != nullptr && (!m_pages.isSound(page) || m_pages.cells(page) > 0) &&
            m_pages.kind(page) == PageKind::TableLeaf)
            leaves->push_back(page);
        // What a broken page names below itself may belong to others.
        if (!m_pages.isSound(page))
            continue;
        QList<qint64> below = m_pages.children(page);
        std::reverse(below.begin(), below.end());
        open += below;
    }
}

/// The list of tables begins on page 1: type, name, table, first page, text.
void Salvage::readTables()
{
    m_owners.assign(size_t(m_pages.count()) + 1, {});
    for (const TableInfo& table : allTables())
        m_columns[std::size_t(table.table)] = presentColumns(table.table);
    for (const qint64 page : m_pages.freePages()) {
        if (page >= 1 && page <= m_pages.count())
            m_owners[size_t(page)].owner = Owner::Nobody;
    }
    if (!m_pages.isSound(1))
        return;
    QList<qint64> leaves;
    claim(1, Owner::Nobody, Table::Count_, &leaves);
    for (const qint64 page : std::as_const(leaves)) {
        for (int cell = 0; cell < m_pages.cells(page); ++cell) {
            const std::optional<Row> row = m_pages.row(page, cell);
            if (!row || row->values.size() != 5 || row->values[0].bytes != "table")
                continue;
            const std::optional<Table> table = tableNamed(row->values[1].bytes);
            if (!table)
                continue;
            m_columns[std::size_t(*table)] = columnsOf(*table, row->values[4].bytes);
            claim(row->values[3].number, Owner::Known, *table, &m_leaves[std::size_t(*table)]);
        }
    }
}

/// A page that no tree leads to any more is told by the form of its rows.
std::optional<Table> Salvage::tableOfStray(qint64 page) const
{
    std::vector<Row> rows;
    for (int cell = 0; cell < m_pages.cells(page); ++cell) {
        if (std::optional<Row> row = m_pages.row(page, cell))
            rows.push_back(std::move(*row));
    }
    std::vector<Table> possible;
    for (const TableInfo& table : allTables()) {
        const Columns& columns = m_columns[std::size_t(table.table)];
        const bool all = std::all_of(rows.cbegin(), rows.cend(), [&](const Row& row) {
            return row.values.size() == columns.size() && fits(table.table, columns, row);
        });
        if (all && !rows.empty())
            possible.push_back(table.table);
    }
    if (possible.empty())
        return std::nullopt;
    // Panels and sounds have rows of one form; their first text names a file or folder of theirs.
    const bool sounds = rows[0].values[0].bytes.contains("sound");
    const auto sound = std::find(possible.begin(), possible.end(), Table::Sound_Details);
    return sounds && sound != possible.end() ? *sound : possible.front();
}

/// The values and rows that the indexes of Addon_Details know.
void Salvage::readIndexes()
{
    m_indexesRead = true;
    for (qint64 page = 1; page <= m_pages.count(); ++page) {
        if (!m_pages.isSound(page) || m_owners[size_t(page)].owner != Owner::Unknown)
            continue;
        const PageKind kind = m_pages.kind(page);
        if (kind != PageKind::IndexLeaf && kind != PageKind::IndexInterior)
            continue;
        for (int cell = 0; cell < m_pages.cells(page); ++cell) {
            const std::optional<Row> entry = m_pages.entry(page, cell);
            if (!entry || entry->values.size() != 2 || entry->values[0].kind != Value::Integer)
                continue;
            m_entries.insert({entry->values[0].number, entry->number});
            m_entryRows.insert(entry->number);
        }
    }
}

/// Whether the indexes agree with a file's row from a broken page; they have to when they know it.
bool Salvage::isConfirmed(const Columns& columns, const Row& row)
{
    if (!m_indexesRead)
        readIndexes();
    if (!m_entryRows.contains(row.number))
        return true;
    QByteArray location;
    QByteArray name;
    qint64 master = 0;
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (columns[i] == Field::Installed_To_Location)
            location = row.values[i].bytes;
        else if (columns[i] == Field::Installed_To_FileName)
            name = row.values[i].bytes;
        else if (columns[i] == Field::Addon_Master_Key)
            master = row.values[i].number;
    }
    const auto place = qint64(quint64(collation::hash(location)) << 32 | collation::hash(name));
    return m_entries.contains({place, row.number}) && m_entries.contains({master, row.number});
}

Result Salvage::takeRow(Recordset& rows, Table table, const Row& row, bool sound)
{
    const Columns& columns = m_columns[std::size_t(table)];
    if (!fits(table, columns, row) ||
        (!sound && table == Table::Addon_Details && !isConfirmed(columns, row)))
        return Result::success();
    rows.addNew();
    for (std::size_t i = 0; i < row.values.size(); ++i) {
        if (columns[i])
            rows.set(*columns[i],
                     isRowKey(table, *columns[i]) ? FieldValue(row.number)
                                                  : fieldValue(*columns[i], row.values[i]));
    }
    const Result added = rows.update();
    if (!added)
        return added.kind == ErrorKind::Failed ? Result::success() : added; // there already
    ++report.rows;
    if (!sound)
        ++report.doubtful;
    return Result::success();
}

Result Salvage::takePage(Table table, qint64 page, bool sound)
{
    Recordset rows(m_into, table);
    for (int cell = 0; cell < m_pages.cells(page); ++cell) {
        const std::optional<Row> row = m_pages.row(page, cell);
        if (!row)
            continue;
        if (Result taken = takeRow(rows, table, *row, sound); !taken)
            return taken;
    }
    return Result::success();
}

Result Salvage::run()
{
    report.pages = m_pages.count();
    report.brokenPages = m_pages.brokenPages();
    readTables();
    std::vector<std::pair<Table, qint64>> strays;
    for (qint64 page = 1; page <= m_pages.count(); ++page) {
        if (m_owners[size_t(page)].owner != Owner::Unknown ||
            m_pages.kind(page) != PageKind::TableLeaf)
            continue;
        if (const std::optional<Table> table = tableOfStray(page))
            strays.emplace_back(*table, page);
    }
    // What is certain comes first: of two rows with one key the first stays.
    for (const bool sound : {true, false}) {
        for (std::size_t table = 0; table < tableCount; ++table) {
            for (const qint64 page : std::as_const(m_leaves[table])) {
                if (m_pages.isSound(page) != sound)
                    continue;
                if (Result taken = takePage(Table(table), page, sound); !taken)
                    return taken;
            }
        }
        for (const auto& [table, page] : strays) {
            if (m_pages.isSound(page) != sound)
                continue;
            if (Result taken = takePage(table, page, sound); !taken)
                return taken;
        }
    }
    if (Result rebuilt = rebuildAddons(); !rebuilt)
        return rebuilt;
    Recordset journal(m_into, Table::Vantrel_Journal);
    report.journal = journal.count() > 0;
    return rebuildCounters();
}

// --- what one table can tell about another ---

Result Salvage::complete(const AddonRecord& addon)
{
    const ResultOf<int> added = modDatabase_Addon::completeAddon(m_into, addon);
    if (added)
        report.rebuilt += *added;
    return added.error();
}

Result Salvage::rebuildAddons()
{
    const ResultOf<QList<AddonRecord>> present = modDatabase_Addon::addons(m_into, true);
    const ResultOf<QList<HistoryRecord>> history = modDatabase_Addon::history(m_into);
    if (!present || !history)
        return present ? history.error() : present.error();
    QHash<qint64, AddonRecord> addons;
    // An add-on that was never removed has lost its row when it stands in the history alone.
    for (const HistoryRecord& record : *history) {
        AddonRecord addon = record.addon;
        if (addon.sourceType == SourceType::Imported)
            addon.status = InstallationStatus::Imported;
        if (!record.dateUninstalled.isValid())
            addons.insert(addon.key, addon);
    }
    for (const AddonRecord& addon : *present)
        addons.insert(addon.key, addon);
    for (const AddonRecord& addon : std::as_const(addons)) {
        if (Result completed = complete(addon); !completed)
            return completed;
    }
    // Files whose add-on no table tells belong to one that is named after its key.
    Recordset details(m_into, Table::Addon_Details);
    details.setIndex(Index::Addon_Details_Addon_Master_Key);
    AddonRecord nameless;
    nameless.dateInstalled = m_now;
    while (details.seekFrom({nameless.key + 1})) {
        nameless.key = details.number(Field::Addon_Master_Key);
        nameless.name = u"Recovered add-on "_s + QString::number(nameless.key);
        if (addons.contains(nameless.key))
            continue;
        if (Result completed = complete(nameless); !completed)
            return completed;
    }
    return details.error();
}

/// Numbers are never used twice, also when the row that counts them is lost.
Result Salvage::rebuildCounters()
{
    const QString detail = u"Addon_Details_Key"_s;
    qint64 highest = modDatabase_Addon::counter(m_into, detail);
    for (const Table table :
         {Table::Addon_Details, Table::Vantrel_Checks, Table::Vantrel_Originals}) {
        Recordset rows(m_into, table);
        if (rows.moveLast())
            highest = qMax(highest, rows.number(Field::Addon_Details_Key));
    }
    if (Result counted = modDatabase_Addon::setCounter(m_into, detail, highest); !counted)
        return counted;
    const QString operation = u"Operation"_s;
    if (modDatabase_Addon::counter(m_into, operation) > 0)
        return Result::success();
    return modDatabase_Addon::setCounter(m_into, operation, m_now.toSecsSinceEpoch());
}

} // namespace

ResultOf<SalvageReport>
salvageRows(const QByteArray& hostFile, Connection& into, const QDateTime& now)
{
    RawPages pages;
    if (!pages.open(hostFile))
        return Result::failure(u"There is nothing in the file that could be saved."_s);
    Salvage salvage(pages, into, now);
    if (Result done = into.together([&] { return salvage.run(); }); !done)
        return done;
    return salvage.report;
}

} // namespace vt
