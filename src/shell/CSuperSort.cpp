// The keys are brought to a form that compares quickly before they are partitioned, together with
// their places, by which both arrays are put in order in the end.
#include "shell/CSuperSort.h"

#include "platform/Text.h"

#include <QDateTime>

#include <limits>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

double numberOf(const QVariant& value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    return ok && number == number ? number : -std::numeric_limits<double>::infinity();
}

qint64 dateOf(const QVariant& value)
{
    const QDateTime date = value.toDateTime();
    return date.isValid() ? date.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
}

/// A text without regard to case, by its first characters as one number where these decide.
struct TextKey
{
    explicit TextKey(const QVariant& value) : text(foldCase(value.toString()))
    {
        for (qsizetype i = 0; i < 4; ++i)
            beginning = beginning << 16 | (i < text.size() ? text.at(i).unicode() : 0);
    }

    friend bool operator<(const TextKey& a, const TextKey& b)
    {
        return a.beginning != b.beginning ? a.beginning < b.beginning : a.text < b.text;
    }

    quint64 beginning = 0;
    QString text;
};

template <typename Key> class Partition
{
public:
    struct Entry
    {
        const Key* key;
        qsizetype place;
    };

    Partition(std::vector<Entry>& entries, bool descending)
        : m_entries(entries), m_descending(descending)
    {}

    void run() { sort(0, qsizetype(m_entries.size()) - 1); }

private:
    [[nodiscard]] bool before(const Entry& a, const Entry& b) const
    {
        if (*a.key < *b.key)
            return !m_descending;
        if (*b.key < *a.key)
            return m_descending;
        return a.place < b.place;
    }

    /// The median of first, middle and last: sorted arrays are the usual ones.
    [[nodiscard]] Entry pivot(qsizetype first, qsizetype last) const
    {
        const Entry* a = &m_entries[size_t(first)];
        const Entry* b = &m_entries[size_t(first + (last - first) / 2)];
        const Entry* c = &m_entries[size_t(last)];
        if (before(*b, *a))
            std::swap(a, b);
        if (before(*c, *b))
            b = before(*c, *a) ? a : c;
        return *b;
    }

    /// The shorter part by recursion, the longer by the loop: the stack stays small.
    void sort(qsizetype first, qsizetype last)
    {
        while (first < last) {
            const Entry middle = pivot(first, last);
            qsizetype low = first;
            qsizetype high = last;
            while (low <= high) {
                while (before(m_entries[size_t(low)], middle))
                    ++low;
                while (before(middle, m_entries[size_t(high)]))
                    --high;
                if (low <= high)
                    std::swap(m_entries[size_t(low++)], m_entries[size_t(high--)]);
            }
            if (high - first < last - low) {
                sort(first, high);
                first = low;
            } else {
                sort(low, last);
                last = high;
            }
        }
    }

    std::vector<Entry>& m_entries;
    const bool m_descending;
};

template <typename Key, typename Prepare>
std::vector<qsizetype> orderBy(const QList<QVariant>& keys, bool descending, const Prepare& prepare)
{
    std::vector<Key> prepared;
    prepared.reserve(size_t(keys.size()));
    for (const QVariant& key : keys)
        prepared.push_back(prepare(key));
    std::vector<typename Partition<Key>::Entry> entries;
    entries.reserve(prepared.size());
    for (const Key& key : prepared)
        entries.push_back({&key, qsizetype(entries.size())});
    Partition<Key>(entries, descending).run();
    std::vector<qsizetype> order;
    order.reserve(entries.size());
    for (const auto& entry : entries)
        order.push_back(entry.place);
    return order;
}

} // namespace

bool CSuperSort::Sort(QList<QVariant>& keys, QList<qsizetype>& rows)
{
    if (keys.size() != rows.size()) {
        (void)m_prompts.ask(announcement(
            u"Error"_s,
            u"Parallel array sort error: array upper bounds are unequal. Please contact the developer."_s,
            Icon::Critical));
        return false;
    }
    const std::vector<qsizetype> order = Order(keys, lngSort_Column_DataType, lngSort_Direction);
    const QList<QVariant> keysBefore = keys;
    const QList<qsizetype> rowsBefore = rows;
    for (qsizetype i = 0; i < keys.size(); ++i) {
        keys[i] = keysBefore.at(order[size_t(i)]);
        rows[i] = rowsBefore.at(order[size_t(i)]);
    }
    return true;
}

std::vector<qsizetype>
CSuperSort::Order(const QList<QVariant>& keys, SortDataType type, SortDirection direction)
{
    const bool descending = direction == SortDirection::Descending;
    switch (type) {
    case SortDataType::General:
        return orderBy<TextKey>(keys, descending, [](const QVariant& key) { return TextKey(key); });
    case SortDataType::Number:
        return orderBy<double>(keys, descending, numberOf);
    case SortDataType::Date:
        return orderBy<qint64>(keys, descending, dateOf);
    }
    Q_UNREACHABLE();
}

} // namespace vt
