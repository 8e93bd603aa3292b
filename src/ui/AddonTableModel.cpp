#include "ui/AddonTableModel.h"

#include "platform/Text.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool isNumber(AddonColumn column)
{
    return addonColumnDataType(column) == SortDataType::Number;
}

bool isDate(AddonColumn column)
{
    return addonColumnDataType(column) == SortDataType::Date;
}

} // namespace

QString totalsText(const AddonTotals& totals)
{
    return QLocale().toString(totals.addons) +
           (totals.addons == 1 ? u" add-on, "_s : u" add-ons, "_s) + sizeText(totals.bytes);
}

// --- rows and filter ---

AddonTableModel::Ready AddonTableModel::ready(QList<AddonListRow> rows,
                                              const std::function<void()>& breathe)
{
    constexpr size_t breathEvery = 2048;
    Ready made;
    made.begins.reserve(size_t(rows.size()) + 1);
    for (const AddonListRow& row : std::as_const(rows)) {
        made.begins.push_back(made.searched.size());
        made.searched += searchedText(row.addon).toStdString();
        made.searched += '\n';
        if (breathe && made.begins.size() % breathEvery == 0)
            breathe();
    }
    made.begins.push_back(made.searched.size());
    made.rows = std::move(rows);
    return made;
}

void AddonTableModel::setRows(Ready ready)
{
    beginResetModel();
    m_searched = std::move(ready.searched);
    m_searchedBegins = std::move(ready.begins);
    m_rows.assign(std::make_move_iterator(ready.rows.begin()),
                  std::make_move_iterator(ready.rows.end()));
    m_dated.assign(m_rows.size(), false);
    m_leftOut.clear();
    for (Places& places : m_ascending)
        places.clear();
    passWithoutSearch();
    m_shown = passing();
    endResetModel();
}

void AddonTableModel::setFilter(const ListFilter& filter)
{
    const bool onlySearch = filter.status == m_filter.status &&
                            filter.category == m_filter.category && filter.since == m_filter.since;
    m_filter = filter;
    if (!onlySearch)
        passWithoutSearch();
    showPassing();
}

void AddonTableModel::showPassing()
{
    Places shown = passing();
    if (shown == m_shown)
        return;
    beginResetModel();
    m_shown = std::move(shown);
    endResetModel();
}

void AddonTableModel::leaveOut(const QList<qint64>& masterKeys)
{
    for (const qint64 key : masterKeys)
        m_leftOut.insert(key);
    passWithoutSearch();
    showPassing();
}

void AddonTableModel::passWithoutSearch()
{
    m_passing.resize(m_rows.size());
    for (size_t place = 0; place < m_rows.size(); ++place) {
        const AddonRecord& addon = m_rows[place].addon;
        m_passing[place] = passesWithoutSearch(addon, m_filter) &&
                           (m_leftOut.isEmpty() || !m_leftOut.contains(addon.key));
    }
}

/// Takes those out that do not hold the text.
void AddonTableModel::passSearch(std::vector<char>& passes) const
{
    const std::string wanted = foldCase(m_filter.search).toStdString();
    size_t place = 0;
    for (size_t at = m_searched.find(wanted); at != std::string::npos;) {
        const size_t begin = place;
        while (m_searchedBegins[place + 1] <= at)
            ++place;
        std::fill(passes.begin() + qsizetype(begin), passes.begin() + qsizetype(place), 0);
        ++place; // one hit is enough
        if (place == passes.size())
            break;
        at = m_searched.find(wanted, m_searchedBegins[place]);
    }
    std::fill(passes.begin() + qsizetype(place), passes.end(), 0);
}

AddonTableModel::Places AddonTableModel::inOrder(const std::vector<char>& passes)
{
    Places shown;
    shown.reserve(passes.size());
    for (const int place : ascending(m_sortColumn))
        if (passes[size_t(place)])
            shown.push_back(place);
    if (m_sortOrder == Qt::DescendingOrder)
        std::reverse(shown.begin(), shown.end());
    return shown;
}

AddonTableModel::Places AddonTableModel::passing()
{
    if (m_filter.search.isEmpty())
        return inOrder(m_passing);
    std::vector<char> passes = m_passing;
    passSearch(passes);
    return inOrder(passes);
}

// --- sorting ---

const AddonTableModel::Places& AddonTableModel::ascending(AddonColumn column)
{
    Places& places = m_ascending[size_t(column)];
    if (places.size() == m_rows.size())
        return places;
    places.resize(m_rows.size());
    if (column == AddonColumn::Order) {
        for (size_t place = 0; place < places.size(); ++place)
            places[place] = int(place);
        return places;
    }
    QList<QVariant> keys;
    keys.reserve(qsizetype(m_rows.size()));
    for (size_t place = 0; place < m_rows.size(); ++place) {
        const AddonListRow& row =
            column == AddonColumn::FolderDate ? withFolderDate(int(place)) : m_rows[place];
        keys.append(row.key(column, qsizetype(place)));
    }
    const std::vector<qsizetype> order =
        CSuperSort::Order(keys, addonColumnDataType(column), SortDirection::Ascending);
    std::copy(order.begin(), order.end(), places.begin());
    return places;
}

void AddonTableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= int(AddonColumn::Count))
        return;
    m_sortColumn = static_cast<AddonColumn>(column);
    m_sortOrder = order;
    if (m_shown.empty())
        return;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList kept = persistentIndexList();
    std::vector<int> keptPlaces;
    for (const QModelIndex& index : kept)
        keptPlaces.push_back(m_shown[size_t(index.row())]);
    m_shown = passing();
    if (!kept.isEmpty()) {
        std::vector<int> rowAt(m_rows.size(), -1);
        for (size_t row = 0; row < m_shown.size(); ++row)
            rowAt[size_t(m_shown[row])] = int(row);
        QModelIndexList moved;
        for (qsizetype i = 0; i < kept.size(); ++i)
            moved.append(index(rowAt[size_t(keptPlaces[size_t(i)])], kept.at(i).column()));
        changePersistentIndexList(kept, moved);
    }
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

// --- what is shown ---

const AddonListRow& AddonTableModel::at(int row) const
{
    return m_rows[size_t(m_shown[size_t(row)])];
}

int AddonTableModel::rowOf(qint64 masterKey) const
{
    for (size_t row = 0; row < m_shown.size(); ++row)
        if (m_rows[size_t(m_shown[row])].addon.key == masterKey)
            return int(row);
    return -1;
}

AddonTotals AddonTableModel::totals() const
{
    AddonTotals totals;
    for (const int place : m_shown) {
        const AddonListRow& row = m_rows[size_t(place)];
        ++totals.addons;
        totals.files += row.files;
        totals.bytes += row.addon.sourceSize;
    }
    return totals;
}

AddonListRow& AddonTableModel::withFolderDate(int place) const
{
    AddonListRow& row = m_rows[size_t(place)];
    if (!m_dated[size_t(place)] && folderDate) {
        row.folderDate = folderDate(row.addon.key);
        m_dated[size_t(place)] = true;
    }
    return row;
}

int AddonTableModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_shown.size());
}

int AddonTableModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(AddonColumn::Count);
}

bool AddonTableModel::hasChildren(const QModelIndex& parent) const
{
    return !parent.isValid() && !m_shown.empty();
}

QString AddonTableModel::shownText(int row, AddonColumn column) const
{
    const int place = m_shown[size_t(row)];
    if (isDate(column)) {
        const AddonListRow& shown =
            column == AddonColumn::FolderDate ? withFolderDate(place) : m_rows[size_t(place)];
        const QDateTime date = shown.key(column, row).toDateTime();
        return date.isValid() ? QLocale().toString(date, QLocale::ShortFormat) : QString();
    }
    // By the order itself, the numbers run with it.
    const bool backwards = m_sortColumn == AddonColumn::Order && m_sortOrder == Qt::DescendingOrder;
    return m_rows[size_t(place)].text(column, backwards ? rowCount() - 1 - row : row);
}

QVariant AddonTableModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const auto column = static_cast<AddonColumn>(index.column());
    switch (role) {
    case Qt::DisplayRole:
        return shownText(index.row(), column);
    case Qt::EditRole:
        return at(index.row()).key(column, index.row());
    case Qt::DecorationRole:
        if (column == AddonColumn::AddonName && picture)
            return picture(at(index.row()).icon());
        return {};
    case Qt::TextAlignmentRole:
        if (isNumber(column) && column != AddonColumn::Rating)
            return int(Qt::AlignRight | Qt::AlignVCenter);
        return {};
    default:
        return {};
    }
}

QVariant AddonTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= int(AddonColumn::Count))
        return {};
    const auto column = static_cast<AddonColumn>(section);
    if (role == Qt::DisplayRole)
        return addonColumnTitle(column);
    if (role == Qt::TextAlignmentRole)
        return int(
            (isNumber(column) && column != AddonColumn::Rating ? Qt::AlignRight : Qt::AlignLeft) |
            Qt::AlignVCenter);
    return {};
}

// --- editing ---

Qt::ItemFlags AddonTableModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const auto column = static_cast<AddonColumn>(index.column());
    if (change && (column == AddonColumn::AddonName || column == AddonColumn::Authors))
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool AddonTableModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (role != Qt::EditRole || !index.isValid() || !(flags(index) & Qt::ItemIsEditable))
        return false;
    AddonRecord& addon = m_rows[size_t(m_shown[size_t(index.row())])].addon;
    const bool name = static_cast<AddonColumn>(index.column()) == AddonColumn::AddonName;
    QString& text = name ? addon.name : addon.authors;
    const QString wanted = value.toString().trimmed();
    if (wanted == text)
        return true;
    AddonChanges changes;
    (name ? changes.name : changes.authors) = wanted;
    if (!change(addon.key, changes))
        return false;
    text = wanted;
    m_ascending[size_t(index.column())].clear();
    Q_EMIT dataChanged(index, index);
    return true;
}

} // namespace vt
