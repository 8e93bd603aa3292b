// Sorts the rows of a list: a key array and a parallel array of row references together.
#pragma once

#include "platform/Prompt.h"

#include <QList>
#include <QVariant>

#include <vector>

namespace vt {

/// How the values of a column compare.
enum class SortDataType : qint32
{
    General = 0, ///< texts without regard to case
    Number = 1,  ///< what is no number comes first
    Date = 2,    ///< what is no date comes first
};

enum class SortDirection : qint32
{
    Ascending = 0,
    Descending = 1,
};

class CSuperSort
{
public:
    /// Must outlive this.
    explicit CSuperSort(Prompts& prompts) : m_prompts(prompts) {}

    qint32 lngSort_Column = 0; ///< zero-based
    SortDataType lngSort_Column_DataType = SortDataType::General;
    SortDirection lngSort_Direction = SortDirection::Ascending;

    /// The places of \a keys in the order that Sort() would give them: what a list keeps that sorts
    /// references to its rows. Equal keys stay as they stand.
    [[nodiscard]] static std::vector<qsizetype>
    Order(const QList<QVariant>& keys, SortDataType type, SortDirection direction);

    /// Arrays of unequal length are told ("Error") and left alone: false.
    bool Sort(QList<QVariant>& keys, QList<qsizetype>& rows);

private:
    Prompts& m_prompts;
};

} // namespace vt
