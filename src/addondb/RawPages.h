// The rows in the pages of a database file, read without the engine: for files that the engine
// refuses. Nothing in the file is believed: every number is checked against the file's own bounds.
// Format: sqlite.org/fileformat.html, "B-tree Pages" and "Record Format".
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QList>

#include <optional>
#include <vector>

namespace vt::rawpages {

struct Value
{
    enum Kind : quint8
    {
        Null,
        Integer,
        Real,
        Text,
        Blob,
    };

    Kind kind = Null;
    qint64 number = 0; ///< Integer alone
    QByteArray bytes;  ///< Text (UTF-8) and Blob
};

struct Row
{
    qint64 number = 0;
    std::vector<Value> values;
};

/// What a page says that it is.
enum class PageKind : quint8
{
    Other, ///< overflow, unused, or nothing that can be told
    TableLeaf,
    TableInterior,
    IndexLeaf,
    IndexInterior,
};

class RawPages
{
public:
    /// Opens the file for reading; false when that fails or it holds no page.
    bool open(const QByteArray& hostFile);

    [[nodiscard]] qint64 count() const { return m_count; }

    /// Whether its pages have checksums at all. Decided by the pages themselves, since the header
    /// may be what is damaged.
    [[nodiscard]] bool checked() const { return m_checked; }

    /// By its checksum; in a file without checksums every page that is there. Numbers begin at 1.
    [[nodiscard]] bool isSound(qint64 page) const;

    [[nodiscard]] qint64 brokenPages() const { return m_broken; }

    [[nodiscard]] PageKind kind(qint64 page) const;
    /// The pages below an interior page of a table.
    [[nodiscard]] QList<qint64> children(qint64 page) const;
    /// Cells of a page, readable or not; 0 when the page cannot be one of a table or index.
    [[nodiscard]] int cells(qint64 page) const;
    /// A row of a TableLeaf; nothing when a part of it cannot be read.
    [[nodiscard]] std::optional<Row> row(qint64 page, int cell) const;
    /// An entry of an index page (its last value is the row's number).
    [[nodiscard]] std::optional<Row> entry(qint64 page, int cell) const;
    /// Pages that nothing uses, as far as their list can be followed.
    [[nodiscard]] QList<qint64> freePages() const;

private:
    [[nodiscard]] const unsigned char* at(qint64 page) const;
    [[nodiscard]] std::optional<QByteArrayView> cellBytes(qint64 page, int cell) const;
    [[nodiscard]] std::optional<QByteArray>
    payload(QByteArrayView cell, qint64 size, qint64 most, qint64 least) const;

    QFile m_file;
    const unsigned char* m_bytes = nullptr; ///< the whole file, mapped
    int m_pageSize = 0;
    int m_usable = 0; ///< bytes of a page that the engine uses
    qint64 m_count = 0;
    qint64 m_broken = 0;
    bool m_checked = false;
    std::vector<bool> m_sound;
};

} // namespace vt::rawpages
