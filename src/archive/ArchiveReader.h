// Reads the content of one listed archive, whatever its format. The key is CZIPFileItem::lngKey.
#pragma once

#include "platform/FileActions.h"
#include "platform/Result.h"

#include <QList>

#include <functional>

namespace vt {

class ArchiveReader
{
public:
    virtual ~ArchiveReader() = default;

    /// Whether the entry can be read as far as its header tells; a failure names archive, entry and
    /// cause (encrypted, a method that is not known, a link). Reads nothing.
    [[nodiscard]] virtual Result readable(int key) const = 0;

    /// Hands the entry's bytes to \a sink in order: up to 32 MiB in one piece after the check sum
    /// was compared, larger ones in pieces. Success means that exactly the declared number of bytes
    /// came with the right check sum; a failure names archive, entry and cause. A sink that refuses
    /// a piece ends the reading, which is then no failure of the archive: the sink knows why.
    virtual Result read(int key, const Content::Sink& sink) = 0;

    /// Keys of the encrypted entries that a password would open, as far as none did so yet.
    [[nodiscard]] virtual QList<int> locked() const { return {}; }

    /// Opens those of locked() whose password it is, which is seen by their headers and by reading
    /// one of them; false when there is none. An entry that is damaged counts as opened where its
    /// header can tell, so that reading it tells the damage.
    /// Strong encryption takes milliseconds for each entry: \a goOn is told how many of locked()
    /// are through, and ends the rest by false.
    virtual bool tryPassword(const QByteArray& password,
                             const std::function<bool(qint64 done)>& goOn)
    {
        Q_UNUSED(password)
        Q_UNUSED(goOn)
        return false;
    }

    /// Code of the last failure, as the library behind the format numbers them; 0 for none.
    [[nodiscard]] virtual int lastCode() const = 0;
};

} // namespace vt
