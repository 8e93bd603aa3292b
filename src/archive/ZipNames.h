// Names and stamps of ZIP entries as texts. The format leaves the code page open; see decode().
#pragma once

#include "archive/CZIPFileItem.h"

#include <QByteArrayView>
#include <QHash>
#include <QString>

namespace vt::zipnames {

enum class Page : quint8
{
    Utf8,
    Oem437,
    Ansi1252,
};

/// Which code page a stored name has. UTF-8 when flagged (and valid); also when written under Unix
/// or macOS, whose tools forget the flag, and valid. Otherwise the page of DOS (437) for what says
/// it was made there, and 1252 for the rest; the versions 2.5, 2.6 and 4.0 of a DOS maker and every
/// NTFS maker but 5.0 wrote Windows' page.
[[nodiscard]] Page pageOf(QByteArrayView name, quint16 madeBy, quint16 flags);
[[nodiscard]] QString decode(QByteArrayView bytes, Page page);

/// The name in a Unicode path extra field (0x7075) that was made for \a name; empty without one.
[[nodiscard]] QByteArrayView unicodePath(QByteArrayView extra, QByteArrayView name);

/// "/" and "\" both as "\"; "." parts and doubled separators left out. What leads out of the
/// archive ("..", a leading separator, a drive) is kept: it must be seen and refused.
[[nodiscard]] QString folderText(const QString& decoded);

/// Splits stored names, giving the same text object to all entries of a folder.
class Splitter
{
public:
    /// \a bytes must outlive this.
    void split(QByteArrayView bytes, Page page, QString& folder, QString& name);

private:
    struct Key
    {
        QByteArrayView bytes;
        Page page;

        friend bool operator==(const Key& a, const Key& b)
        {
            return a.page == b.page && a.bytes == b.bytes;
        }

        friend size_t qHash(const Key& key, size_t seed) { return qHash(key.bytes, seed); }
    };

    QHash<Key, QString> m_folders;
    Key m_last{{}, Page::Utf8};
    QString m_lastText;
};

/// Date and time of a DOS stamp (date << 16 | time); both null when it is no valid date.
void stampOf(quint32 stamp, QDate& date, QTime& time);

} // namespace vt::zipnames
