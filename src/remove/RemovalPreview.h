// What a removal would do, file by file, told before it is done: by the records, what lies on the
// disk, and what installed aircraft, panels and sounds use. Changes nothing.
#pragma once

#include "addondb/AddonRecords.h"
#include "addondb/Connection.h"
#include "remove/RemovalOptions.h"
#include "shell/Context.h"

#include <QList>
#include <QString>

namespace vt {

class Catalogue;

enum class RemovalFate : quint8
{
    Goes,      ///< or moves, as the method has it
    ComesBack, ///< what lay there before takes its place again
    Stays,     ///< for another add-on, for its users, or because only records go
    Missing,   ///< it is gone already
};

struct PreviewedFile
{
    QString path;
    RemovalFate fate = RemovalFate::Goes;
    QString text; ///< "stays: 'Harbour' has its version there", without an end
};

struct RemovalPreview
{
    AddonRecord addon;
    QString action; ///< "Move to C:\..."
    QList<PreviewedFile> files;

    [[nodiscard]] qsizetype count(RemovalFate fate) const;
};

/// The add-on \a masterKey with these options. \a catalogue is up to date.
[[nodiscard]] ResultOf<RemovalPreview> previewRemoval(const Context& context,
                                                      Connection& database,
                                                      const Catalogue& catalogue,
                                                      qint64 masterKey,
                                                      const RemovalOptions& options);

} // namespace vt
