// A configuration file in memory: one element a line, in ANSI bytes, without line ends.
// Byte-preserving: no operation here changes a line that it was not asked to change. Text appears
// only at the border, decoded and encoded by the code page.
#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <cstring>

namespace vt {

class AnsiCodec;

struct LineArray
{
    /// Never without elements: a fresh array holds one empty line (indices 0 to 0).
    QList<QByteArray> lines = {QByteArray()};

    /// \a ansi must outlive this and its copies.
    explicit LineArray(const AnsiCodec& ansi) : m_ansi(&ansi) {}

    /// False for the fresh state: one element, and that one empty.
    [[nodiscard]] bool hasContent() const { return lines.size() > 1 || !lines.value(0).isEmpty(); }

    void clear() { lines = {QByteArray()}; }

    /// Zero-based.
    [[nodiscard]] QString text(qsizetype index) const { return decoded(lines.at(index)); }

    [[nodiscard]] QStringList texts() const;

    [[nodiscard]] QString decoded(QByteArrayView bytes) const;
    /// Refuses line breaks, NULs and characters that the code page lacks; the text names which.
    [[nodiscard]] ResultOf<QByteArray> encoded(QStringView text) const;
    /// Appends lines given as text; nothing is appended on failure. A fresh array is filled, not
    /// appended to.
    [[nodiscard]] Result append(const QStringList& newLines);

    [[nodiscard]] const AnsiCodec& ansi() const { return *m_ansi; }

    /// Split exactly at CR LF; a text with bare LF ends is one line. Empty text: fresh state.
    [[nodiscard]] static LineArray ofBytes(const QByteArray& bytes, const AnsiCodec& ansi);
    /// The lines with CR LF between them: the exact inverse of ofBytes().
    [[nodiscard]] QByteArray joined() const;

private:
    const AnsiCodec* m_ansi;
};

/// Calls visit(line, offset) for every line of \a bytes, split exactly at CR LF, without copying.
/// Empty bytes have no line; a line end at the very end is followed by one more, empty line.
template <typename Visit> void forEachLine(QByteArrayView bytes, Visit visit)
{
    const char* const begin = bytes.data();
    const char* const end = begin + bytes.size();
    const char* start = begin;
    for (const char* from = begin; from < end;) {
        const auto* cr = static_cast<const char*>(std::memchr(from, '\r', size_t(end - from)));
        if (!cr || cr + 1 == end)
            break;
        from = cr + 1;
        if (*from != '\n')
            continue;
        visit(QByteArrayView(start, cr - start), start - begin);
        start = ++from;
    }
    if (begin != end)
        visit(QByteArrayView(start, end - start), start - begin);
}

/// Which lines an edit takes away and which it brings, each in file order.
struct LineChanges
{
    QStringList added;
    QStringList removed;

    [[nodiscard]] bool isEmpty() const { return added.isEmpty() && removed.isEmpty(); }
};

/// What a plan shows of one edited configuration file.
struct ConfigChange
{
    QString file;
    LineChanges lines;
};

/// Smallest difference where few lines changed; beyond that by counting equal lines. The empty
/// element behind a last line end does not count as a line.
[[nodiscard]] LineChanges lineChanges(const LineArray& before, const LineArray& after);

} // namespace vt
