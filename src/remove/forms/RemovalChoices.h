// What the user decided in the removal wizard: which add-ons or files of them, and how each is
// removed. Plain data, shared by the wizard's pages; the removal itself knows nothing of it.
#pragma once

#include "remove/RemovalOptions.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace vt {

/// One add-on that was ticked.
struct SelectedAddon
{
    qint64 key = 0;
    QString name;
    bool inCabinet = false;
    /// Full paths, in the order of the records; empty: the whole add-on.
    QStringList files = {};

    friend bool operator==(const SelectedAddon&, const SelectedAddon&) = default;
};

/// How one add-on is removed.
struct RemovalWay
{
    RemovalMethod method = RemovalMethod::Delete;
    QString folder = {}; ///< Recreate: ends in "\"
    bool zip = false;

    friend bool operator==(const RemovalWay&, const RemovalWay&) = default;
};

struct RemovalChoices
{
    QList<SelectedAddon> addons;
    QHash<qint64, RemovalWay> ways; ///< by key; Delete where there is none

    [[nodiscard]] RemovalWay way(qint64 key) const { return ways.value(key); }

    /// For CAddonRemover, which takes the folder as one that may be written.
    [[nodiscard]] RemovalOptions options(const SelectedAddon& addon) const;
};

} // namespace vt
