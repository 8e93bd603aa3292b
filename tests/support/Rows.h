// A table of cases inside one test: named rows that a loop takes apart.
//
//     const Rows<QString, int> rows = {{"plain", u"a"_s, 1}, {"empty", u""_s, 0}};
//     for (const auto& [text, length] : rows)
//         QCOMPARE(text.size(), length);
//
// A failed check leaves the test as ever; the row at which the loop stood is named then.
#pragma once

#include <QTest>

#include <initializer_list>
#include <tuple>
#include <vector>

namespace vt::test {

template <typename... Columns> class Rows
{
public:
    struct Row
    {
        Row(const char* rowName, Columns... values) : name(rowName), columns(std::move(values)...)
        {}

        QByteArray name;
        std::tuple<Columns...> columns;
    };

    class Iterator
    {
    public:
        Iterator(const Rows& rows, size_t at) : m_rows(rows), m_at(at) {}

        const std::tuple<Columns...>& operator*() const
        {
            m_rows.m_standing = m_at;
            return m_rows.m_all[m_at].columns;
        }

        void operator++()
        {
            ++m_at;
            m_rows.m_standing = none;
        }

        bool operator!=(const Iterator& other) const { return m_at != other.m_at; }

    private:
        const Rows& m_rows;
        size_t m_at;
    };

    Rows(std::initializer_list<Row> rows) : m_all(rows) {}

    ~Rows()
    {
        if (m_standing != none && QTest::currentTestFailed())
            qWarning("in the row '%s'", m_all[m_standing].name.constData());
    }

    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    /// For rows that are reckoned rather than listed.
    void add(const QByteArray& name, Columns... values)
    {
        m_all.push_back(Row(name.constData(), std::move(values)...));
    }

    [[nodiscard]] Iterator begin() const { return {*this, 0}; }

    [[nodiscard]] Iterator end() const { return {*this, m_all.size()}; }

private:
    static constexpr size_t none = ~size_t(0);

    std::vector<Row> m_all;
    mutable size_t m_standing = none;
};

} // namespace vt::test
