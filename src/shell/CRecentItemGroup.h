// An ordered list of remembered items, by path without regard to case, and its text file: one line
// an item, "path",#2026-03-01 18:30:00#, ended by CR LF. Lines that are none of these are kept and
// written back behind the others.
#pragma once

#include "platform/AnsiCodec.h"
#include "platform/Files.h"
#include "shell/CRecentItem.h"

#include <QByteArray>
#include <QList>
#include <QString>

namespace vt {

class CRecentItemGroup
{
public:
    [[nodiscard]] const QList<CRecentItem>& colRecentItems() const { return m_items; }

    /// An item that is there already is left as it is: false. Otherwise the oldest makes room when
    /// there would be more than \a maximum (0: no maximum).
    bool Add(const QString& path, const QDateTime& now, qsizetype maximum = 0);
    /// As it was saved; without a maximum. False when its path is there already.
    bool AddExisting(const CRecentItem& item);
    void Clear();
    /// False when there is no such item.
    bool Remove(const QString& path);
    /// Of equal dates the first in the list goes. Does nothing to an empty list.
    void RemoveOldest();
    void trim(qsizetype maximum);
    /// Null when there is no such item; good until the next change.
    [[nodiscard]] const CRecentItem* Search(const QString& path) const;
    /// Removes the items whose drive or folder (of a file: its folder) does not exist.
    void removeInvalid(const Files& files);

    /// In the code page, or in UTF-8 with its mark where a path needs a character that it lacks.
    [[nodiscard]] QByteArray toBytes(const AnsiCodec& ansi) const;
    /// Never fails: what cannot be understood is kept aside.
    [[nodiscard]] static CRecentItemGroup fromBytes(const QByteArray& bytes, const AnsiCodec& ansi);

private:
    QList<CRecentItem> m_items;
    QList<QString> m_otherLines;
};

} // namespace vt
