#include "simconfig/engine/LineArray.h"

#include "platform/AnsiCodec.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

QStringList LineArray::texts() const
{
    QStringList all;
    all.reserve(lines.size());
    for (const QByteArray& line : lines)
        all.push_back(decoded(line));
    return all;
}

QString LineArray::decoded(QByteArrayView bytes) const
{
    return m_ansi->decode(bytes);
}

ResultOf<QByteArray> LineArray::encoded(QStringView text) const
{
    for (const QChar c : text) {
        if (c == u'\n' || c == u'\r' || c.isNull())
            return Result::failure(
                u"A line of a configuration file cannot hold a line break or a NUL character: \""_s +
                text.toString().simplified().left(60) + u"\"."_s);
    }
    return m_ansi->encode(text);
}

Result LineArray::append(const QStringList& newLines)
{
    QList<QByteArray> bytes;
    bytes.reserve(newLines.size());
    for (const QString& line : newLines) {
        ResultOf<QByteArray> one = encoded(line);
        if (!one)
            return one.error();
        bytes.push_back(*one);
    }
    if (bytes.isEmpty())
        return Result::success();
    if (hasContent())
        lines += bytes;
    else
        lines = bytes;
    return Result::success();
}

LineArray LineArray::ofBytes(const QByteArray& bytes, const AnsiCodec& ansi)
{
    LineArray result(ansi);
    if (bytes.isEmpty())
        return result;
    result.lines.clear();
    constexpr qsizetype usualLength = 32;
    result.lines.reserve(bytes.size() / usualLength + 1);
    forEachLine(bytes, [&](QByteArrayView line, qsizetype) {
        result.lines.emplace_back(line.data(), line.size());
    });
    return result;
}

QByteArray LineArray::joined() const
{
    return lines.join("\r\n");
}

namespace {

using Lines = QList<QByteArray>;

struct DifferingRange
{
    Lines before;
    Lines after;
};

DifferingRange differingRange(const LineArray& before, const LineArray& after)
{
    Lines a = before.lines;
    Lines b = after.lines;
    for (Lines* side : {&a, &b}) {
        if (!side->isEmpty() && side->constLast().isEmpty())
            side->removeLast();
    }
    qsizetype front = 0;
    const qsizetype most = std::min(a.size(), b.size());
    while (front < most && a.at(front) == b.at(front))
        ++front;
    qsizetype back = 0;
    while (back < most - front && a.at(a.size() - 1 - back) == b.at(b.size() - 1 - back))
        ++back;
    return {a.sliced(front, a.size() - front - back), b.sliced(front, b.size() - front - back)};
}

/// Marks the lines of a longest common subsequence; sizes are bounded by the caller.
void markCommon(const DifferingRange& range, QList<bool>& inBefore, QList<bool>& inAfter)
{
    const qsizetype n = range.before.size();
    const qsizetype m = range.after.size();
    QList<int> length((n + 1) * (m + 1), 0);
    const auto at = [m](qsizetype i, qsizetype j) { return i * (m + 1) + j; };
    for (qsizetype i = n - 1; i >= 0; --i) {
        for (qsizetype j = m - 1; j >= 0; --j)
            length[at(i, j)] = range.before.at(i) == range.after.at(j)
                                   ? length.at(at(i + 1, j + 1)) + 1
                                   : std::max(length.at(at(i + 1, j)), length.at(at(i, j + 1)));
    }
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < n && j < m) {
        if (range.before.at(i) == range.after.at(j))
            inBefore[i++] = inAfter[j++] = true;
        else if (length.at(at(i + 1, j)) >= length.at(at(i, j + 1)))
            ++i;
        else
            ++j;
    }
}

/// For large ranges: equal lines pair up wherever they stand.
void markEqual(const DifferingRange& range, QList<bool>& inBefore, QList<bool>& inAfter)
{
    QHash<QByteArray, QList<qsizetype>> places;
    for (qsizetype i = range.before.size() - 1; i >= 0; --i)
        places[range.before.at(i)].push_back(i);
    for (qsizetype j = 0; j < range.after.size(); ++j) {
        const auto found = places.find(range.after.at(j));
        if (found == places.end() || found->isEmpty())
            continue;
        inBefore[found->takeLast()] = true;
        inAfter[j] = true;
    }
}

} // namespace

LineChanges lineChanges(const LineArray& before, const LineArray& after)
{
    constexpr qsizetype largestTable = 1'000'000;
    const DifferingRange range = differingRange(before, after);
    QList<bool> inBefore(range.before.size(), false);
    QList<bool> inAfter(range.after.size(), false);
    if (range.before.isEmpty() || range.after.size() <= largestTable / range.before.size())
        markCommon(range, inBefore, inAfter);
    else
        markEqual(range, inBefore, inAfter);

    LineChanges changes;
    for (qsizetype i = 0; i < range.before.size(); ++i) {
        if (!inBefore.at(i))
            changes.removed.push_back(before.decoded(range.before.at(i)));
    }
    for (qsizetype j = 0; j < range.after.size(); ++j) {
        if (!inAfter.at(j))
            changes.added.push_back(after.decoded(range.after.at(j)));
    }
    return changes;
}

} // namespace vt
