#include "shell/forms/ResultsModel.h"

#include "platform/WinPath.h"
#include "shell/CSuperSort.h"
#include "shell/forms/Icons.h"

#include <QFont>
#include <QLocale>
#include <QStringMatcher>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

bool namesFile(const Results::Entry& entry)
{
    return !entry.phrase.isEmpty() && winpath::isAbsolute(entry.subject);
}

QIcon stateIcon(bool problem)
{
    return icons::state(problem ? icons::State::Problem : icons::State::Done);
}

/// Of an entry that names no file all is its file.
QString cell(const Results::Entry& entry, int column)
{
    if (!namesFile(entry))
        return column == ResultsModel::FileColumn ? entry.text() : QString();
    switch (column) {
    case ResultsModel::FileColumn:
        return winpath::name(entry.subject);
    case ResultsModel::ResultColumn:
        return entry.phrase.trimmed();
    default:
        return winpath::parent(entry.subject);
    }
}

/// Entries that hold every word somewhere.
class WordFilter
{
public:
    explicit WordFilter(const QString& words)
    {
        for (const QString& word : words.split(u' ', Qt::SkipEmptyParts))
            m_words.emplace_back(word, Qt::CaseInsensitive);
    }

    [[nodiscard]] bool fits(const Results::Entry& entry) const
    {
        return std::all_of(m_words.begin(), m_words.end(), [&entry](const QStringMatcher& word) {
            return word.indexIn(entry.subject) >= 0 || word.indexIn(entry.phrase) >= 0;
        });
    }

    [[nodiscard]] bool everything() const { return m_words.empty(); }

private:
    std::vector<QStringMatcher> m_words;
};

} // namespace

ResultsModel::ResultsModel(Results results, QObject* parent)
    : QAbstractItemModel(parent), m_results(std::move(results))
{
    for (const Results::Group& one : m_results.groups()) {
        const auto count = qsizetype(one.entries.size());
        m_entryCount += count;
        if (resultgroup::tellsProblems(one.name))
            m_problemCount += count;
    }
    setFilter({}, false);
}

void ResultsModel::setFilter(const QString& words, bool problemsOnly)
{
    const WordFilter filter(words);
    beginResetModel();
    m_shown.clear();
    m_shownCount = 0;
    for (size_t i = 0; i < m_results.groups().size(); ++i) {
        const Results::Group& all = m_results.groups()[i];
        if (problemsOnly && !resultgroup::tellsProblems(all.name))
            continue;
        ShownGroup shown{i, {}};
        for (quint32 entry = 0; entry < all.entries.size(); ++entry)
            if (filter.fits(all.entries[entry]))
                shown.entries.push_back(entry);
        m_shownCount += qsizetype(shown.entries.size());
        sortEntries(shown);
        // An empty group says that there was nothing of its kind; a filter leaves it out.
        if (!shown.entries.empty() || (filter.everything() && !problemsOnly))
            m_shown.push_back(std::move(shown));
    }
    endResetModel();
}

QString ResultsModel::longestResult() const
{
    QString longest;
    for (const Results::Group& one : m_results.groups()) {
        for (const Results::Entry& entry : one.entries) {
            if (entry.phrase.size() > longest.size() && namesFile(entry))
                longest = entry.phrase;
        }
    }
    return longest;
}

ReportList ResultsModel::report(const QString& title) const
{
    ReportList list{title, {u"Result"_s}, {}};
    for (const ShownGroup& shown : m_shown) {
        ReportList::Group rows{group(shown).name, {}};
        for (const quint32 entry : shown.entries)
            rows.rows.append({group(shown).entries[entry].text()});
        list.groups.append(rows);
    }
    return list;
}

const Results::Group& ResultsModel::group(const ShownGroup& shown) const
{
    return m_results.groups()[shown.group];
}

// The internal number of an entry is its group's row + 1, that of a group 0.

QModelIndex ResultsModel::index(int row, int column, const QModelIndex& parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    return createIndex(row, column, parent.isValid() ? quintptr(parent.row()) + 1 : 0);
}

QModelIndex ResultsModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return {};
    return createIndex(int(child.internalId() - 1), 0, quintptr(0));
}

int ResultsModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_shown.size());
    if (parent.internalId() != 0 || parent.column() != 0)
        return 0;
    return int(m_shown[size_t(parent.row())].entries.size());
}

int ResultsModel::columnCount(const QModelIndex&) const
{
    return ColumnCount;
}

QVariant ResultsModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (index.internalId() == 0)
        return groupData(m_shown[size_t(index.row())], index.column(), role);
    const ShownGroup& shown = m_shown[index.internalId() - 1];
    const Results::Group& all = group(shown);
    return entryData(all.entries[shown.entries[size_t(index.row())]],
                     resultgroup::tellsProblems(all.name),
                     index.column(),
                     role);
}

QVariant ResultsModel::groupData(const ShownGroup& shown, int column, int role) const
{
    const Results::Group& all = group(shown);
    if (role == SpansRow)
        return true;
    if (column != 0)
        return {};
    if (role == Qt::DisplayRole || role == Sentence) {
        const QLocale locale;
        const size_t count = shown.entries.size();
        const QString number = locale.toString(qulonglong(count));
        return QString(
            all.name + u" ("_s +
            (count == all.entries.size()
                 ? number
                 : number + u" of "_s + locale.toString(qulonglong(all.entries.size()))) +
            u')');
    }
    if (role == Qt::FontRole) {
        QFont font;
        font.setBold(true);
        return font;
    }
    if (role == Qt::DecorationRole && !all.entries.empty())
        return stateIcon(resultgroup::tellsProblems(all.name));
    return {};
}

QVariant
ResultsModel::entryData(const Results::Entry& entry, bool problem, int column, int role) const
{
    const bool file = namesFile(entry);
    switch (role) {
    case SpansRow:
        return !file;
    case Sentence:
    case Qt::ToolTipRole:
        return entry.text();
    case Path:
        return file ? entry.subject : QString();
    case Qt::DecorationRole:
        return column == 0 ? QVariant(stateIcon(problem)) : QVariant();
    case Qt::DisplayRole:
        break;
    default:
        return {};
    }
    return cell(entry, column);
}

QVariant ResultsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case FileColumn:
        return u"File"_s;
    case ResultColumn:
        return u"Result"_s;
    default:
        return u"Folder"_s;
    }
}

void ResultsModel::sortEntries(ShownGroup& shown) const
{
    if (m_sortBy < 0) {
        std::sort(shown.entries.begin(), shown.entries.end());
        return;
    }
    const std::vector<Results::Entry>& all = group(shown).entries;
    QList<QVariant> keys;
    keys.reserve(qsizetype(shown.entries.size()));
    for (const quint32 entry : shown.entries)
        keys.append(cell(all[entry], m_sortBy));
    const std::vector<qsizetype> order = CSuperSort::Order(
        keys,
        SortDataType::General,
        m_order == Qt::DescendingOrder ? SortDirection::Descending : SortDirection::Ascending);
    const std::vector<quint32> before = shown.entries;
    std::transform(order.begin(), order.end(), shown.entries.begin(), [&](qsizetype place) {
        return before[size_t(place)];
    });
}

void ResultsModel::sort(int column, Qt::SortOrder order)
{
    if (column >= ColumnCount)
        return;
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<quint32> entries;
    for (const QModelIndex& index : before)
        entries.push_back(index.internalId() == 0
                              ? 0
                              : m_shown[index.internalId() - 1].entries[size_t(index.row())]);
    m_sortBy = column;
    m_order = order;
    for (ShownGroup& shown : m_shown)
        sortEntries(shown);
    for (qsizetype i = 0; i < before.size(); ++i) {
        const QModelIndex& old = before.at(i);
        if (old.internalId() == 0)
            continue;
        const std::vector<quint32>& now = m_shown[old.internalId() - 1].entries;
        const auto row = std::find(now.begin(), now.end(), entries[size_t(i)]) - now.begin();
        changePersistentIndex(old, createIndex(int(row), old.column(), old.internalId()));
    }
    Q_EMIT layoutChanged({}, VerticalSortHint);
}

} // namespace vt
