// Passwords of encrypted entries. Each entry's header holds one or two bytes by which a wrong
// password is seen, which is quick and nearly always right; the content says the rest.
#include "archive/ZipReader.h"
#include "archive/ZipStream.h"

#include <algorithm>
#include <zip.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Entries read to confirm a password: more than one for the sake of those that are damaged.
constexpr qsizetype mostConfirmed = 8;
/// Of so many entries that could be of the password one passes its header check at least. A wrong
/// one gets past one in a hundred.
constexpr qsizetype trustedShare = 16;

} // namespace

Result ZipReader::decrypt(const ZipEntry& entry, bool whole, const Content::Sink& sink)
{
    if (!whole)
        return streamPacked(entry, sink);
    QByteArray bytes;
    const Result read = streamPacked(entry, [&bytes](QByteArrayView piece) {
        bytes.append(piece);
        return true;
    });
    if (read && !bytes.isEmpty())
        (void)sink(bytes);
    return read;
}

/// What the entry's header says of the password: ZIP_ER_OK, ZIP_ER_WRONGPASSWD, or the fault that
/// keeps any password from being tried.
int ZipReader::headerCode(const ZipEntry& entry, const QByteArray& password)
{
    qint64 offset = 0;
    if (!findData(entry, offset))
        return m_code;
    return streamBeginning(m_directory->source(), entry, offset, password).code;
}

/// Whether one of the smaller ones of \a keys can be read. One that is larger than what is ever
/// read whole is taken at its header's word.
bool ZipReader::confirmed(QList<int> keys, const QByteArray& password)
{
    std::sort(keys.begin(), keys.end(), [this](int a, int b) {
        return entryOf(a).packed < entryOf(b).packed;
    });
    for (const int key : std::as_const(keys).first(qMin(keys.size(), mostConfirmed))) {
        const ZipEntry& entry = entryOf(key);
        if (entry.packed > ziplimits::wholeEntryBytes ||
            streamWith(entry, password, [](QByteArrayView) { return true; }))
            return true;
    }
    return false;
}

bool ZipReader::tryPassword(const QByteArray& password,
                            const std::function<bool(qint64 done)>& goOn)
{
    if (password.isEmpty())
        return false;
    QList<int> opened;
    QList<int> faulty;
    QList<int> still;
    qint64 done = 0;
    for (const int key : std::as_const(m_locked)) {
        if (!goOn(done++)) {
            still += key;
            continue;
        }
        const int code = headerCode(entryOf(key), password);
        (code == ZIP_ER_OK ? opened : code == ZIP_ER_WRONGPASSWD ? still : faulty) += key;
    }
    m_code = ZIP_ER_OK;
    // When all that were read are damaged, chance tells: a wrong password opens hardly any.
    const bool right = !opened.isEmpty() && (confirmed(opened, password) ||
                                             opened.size() * trustedShare >= m_locked.size());
    m_code = ZIP_ER_OK;
    if (right) {
        m_passwords += password;
    } else {
        still += opened;
        std::sort(still.begin(), still.end());
    }
    m_locked = still;
    return right;
}

/// The one of the known passwords that is the entry's; the first that its header lets pass when
/// none can read it to its end.
QByteArray ZipReader::passwordOf(const ZipEntry& entry)
{
    if (m_passwords.size() == 1)
        return m_passwords.first();
    QList<QByteArray> passing;
    for (const QByteArray& password : std::as_const(m_passwords))
        if (headerCode(entry, password) == ZIP_ER_OK)
            passing += password;
    if (passing.size() > 1) {
        for (const QByteArray& password : std::as_const(passing))
            if (streamWith(entry, password, [](QByteArrayView) { return true; }))
                return password;
    }
    // Where none passes, the fault shows before a password matters: any will do.
    return passing.isEmpty() ? m_passwords.value(0, "-") : passing.first();
}

} // namespace vt
