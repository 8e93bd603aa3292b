// The keys are brought to a form that compares quickly before they are partitioned; every exchange
// is made in all arrays.
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

template <typename Key> class Partition
{
public:
    Partition(std::vector<Key> prepared,
              QList<QVariant>& keys,
              QList<qsizetype>& rows,
              bool descending)
        : m_prepared(std::move(prepared)), m_keys(keys), m_rows(rows), m_descending(descending)
    {}

    void run() { sort(0, qsizetype(m_prepared.size()) - 1); }

private:
    [[nodiscard]] bool before(const Key& a, const Key& b) const
    {
        return m_descending ? b < a : a < b;
    }

    void exchange(qsizetype a, qsizetype b)
    {
        if (a == b)
            return;
        std::swap(m_prepared[size_t(a)], m_prepared[size_t(b)]);
        m_keys.swapItemsAt(a, b);
        m_rows.swapItemsAt(a, b);
    }

    /// The median of first, middle and last: sorted arrays are the usual ones.
    [[nodiscard]] Key pivot(qsizetype first, qsizetype last) const
    {
        const Key* a = &m_prepared[size_t(first)];
        const Key* b = &m_prepared[size_t(first + (last - first) / 2)];
        const Key* c = &m_prepared[size_t(last)];
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
            const Key middle = pivot(first, last);
            qsizetype low = first;
            qsizetype high = last;
            while (low <= high) {
                while (before(m_prepared[size_t(low)], middle))
                    ++low;
                while (before(middle, m_prepared[size_t(high)]))
                    --high;
                if (low <= high)
                    exchange(low++, high--);
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

    std::vector<Key> m_prepared;
    QList<QVariant>& m_keys;
    QList<qsizetype>& m_rows;
    const bool m_descending;
};

template <typename Prepare>
void sortBy(QList<QVariant>& keys, QList<qsizetype>& rows, bool descending, Prepare&& prepare)
{
    std::vector<decltype(prepare(QVariant()))> prepared;
    prepared.reserve(size_t(keys.size()));
    for (const QVariant& key : std::as_const(keys))
        prepared.push_back(prepare(key));
    Partition(std::move(prepared), keys, rows, descending).run();
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
    const bool descending = lngSort_Direction == SortDirection::Descending;
    switch (lngSort_Column_DataType) {
    case SortDataType::General:
        sortBy(
            keys, rows, descending, [](const QVariant& key) { return foldCase(key.toString()); });
        break;
    case SortDataType::Number:
        sortBy(keys, rows, descending, numberOf);
        break;
    case SortDataType::Date:
        sortBy(keys, rows, descending, dateOf);
        break;
    }
    return true;
}

} // namespace vt
