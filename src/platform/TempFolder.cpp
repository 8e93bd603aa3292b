#include "platform/TempFolder.h"

#include "platform/Gate.h"
#include "platform/HostFile.h"
#include "platform/WinPath.h"

#include <QDeadlineTimer>
#include <QRandomGenerator>
#include <QThread>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr int patienceMs = 4000;
constexpr int pauseMs = 100;
/// Names tried before a pause; one is nearly always enough.
constexpr int namesAtOnce = 16;

QString numberedName(const QString& prefix, quint16 number)
{
    const QString digits = QString::number(number, 16).toUpper();
    return prefix + digits.rightJustified(4, u'0') + u".tmp"_s;
}

quint16 randomNumber()
{
    return quint16(QRandomGenerator::system()->bounded(0x10000));
}

Result removedTree(const QByteArray& host, const QString& path)
{
    const Result gone = hostfile::removeTree(host);
    return gone ? gone : Result::failure(u"'"_s + path + u"' could not be deleted: "_s + gone.text);
}

/// 0, or the error that the system gave.
int makeEntry(const QByteArray& host, bool folder)
{
    if (folder)
        return mkdir(host.constData(), 0777) == 0 ? 0 : errno;
    const hostfile::Descriptor file(
        open(host.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
    return file.valid() ? 0 : errno;
}

/// Names of a folder's entries, which may then be deleted one by one.
QList<QByteArray> entriesOf(int folder)
{
    QList<QByteArray> names;
    // The stream owns the descriptor that it is given.
    const int own = dup(folder);
    DIR* stream = own >= 0 ? fdopendir(own) : nullptr;
    if (!stream)
        return names;
    while (const dirent* entry = readdir(stream)) {
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..")
            names += name;
    }
    closedir(stream);
    return names;
}

} // namespace

TempFolder::TempFolder(Gate& gate, const QString& root, Numbers numbers)
    : m_gate(gate), m_root(winpath::asFolder(root)),
      m_numbers(numbers ? std::move(numbers) : Numbers(randomNumber))
{}

ResultOf<QByteArray> TempFolder::hostFolder(const QString& folder) const
{
    const QString clean = winpath::asFolder(folder);
    if (m_root.isEmpty() || !winpath::isBelow(clean, m_root))
        return Result::failure(u"'"_s + folder +
                               u"' was left alone: it does not lie in the temporary folder '"_s +
                               m_root + u"'."_s);
    return m_gate.hostPath(clean);
}

ResultOf<QString> TempFolder::makeUnique(const QString& base, const QString& prefix) const
{
    const ResultOf<QString> made = make(base, prefix, true);
    return made ? ResultOf<QString>(*made + u'\\') : made;
}

ResultOf<QString> TempFolder::makeUniqueFile(const QString& base, const QString& prefix) const
{
    return make(base, prefix, false);
}

ResultOf<QString> TempFolder::make(const QString& base, const QString& prefix, bool folder) const
{
    const ResultOf<QByteArray> host = hostFolder(base);
    if (!host)
        return host.error();
    const QDeadlineTimer deadline(patienceMs);
    int error = 0;
    while (true) {
        for (int i = 0; i < namesAtOnce; ++i) {
            const QString name = numberedName(prefix, m_numbers());
            if (Result fit = winpath::checkComponent(name); !fit)
                return fit;
            error = makeEntry(*host + '/' + name.toUtf8(), folder);
            if (error == 0) {
                const QString path = winpath::join(winpath::asFolder(base), name);
                m_gate.files().noteChanged(path);
                return path;
            }
            if (error != EEXIST)
                break;
        }
        if (error != EEXIST || deadline.hasExpired())
            break;
        QThread::msleep(pauseMs);
    }
    return Result::failure(u"No temporary "_s + (folder ? u"folder"_s : u"file"_s) +
                           u" could be made in '"_s + base + u"': "_s + hostfile::errorText(error));
}

Result TempFolder::empty(const QString& folder) const
{
    const ResultOf<QByteArray> host = hostFolder(folder);
    if (!host)
        return host.error();
    // The user may have put the temporary folder itself elsewhere by a link, nothing below it.
    const int follow = winpath::same(folder, m_root) ? 0 : O_NOFOLLOW;
    const hostfile::Descriptor open(
        ::open(host->constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | follow));
    if (!open.valid() && errno == ENOENT)
        return Result::success();
    if (!open.valid())
        return Result::failure(u"'"_s + folder + u"' could not be emptied: "_s +
                               hostfile::errorText(errno));
    Result first = Result::success();
    for (const QByteArray& name : entriesOf(open.get())) {
        struct stat status = {};
        Result gone = Result::success();
        if (fstatat(open.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (S_ISDIR(status.st_mode))
            gone = removedTree(*host + '/' + name, winpath::join(folder, QString::fromUtf8(name)));
        else if (unlinkat(open.get(), name.constData(), 0) != 0 && errno != ENOENT)
            gone = Result::failure(u"'"_s + folder + QString::fromUtf8(name) +
                                   u"' could not be deleted: "_s + hostfile::errorText(errno));
        if (!gone && first)
            first = gone;
        m_gate.files().noteChanged(winpath::join(folder, QString::fromUtf8(name)));
    }
    return first;
}

Result TempFolder::remove(const QString& folder) const
{
    if (winpath::same(folder, m_root))
        return Result::failure(u"The temporary folder '"_s + m_root + u"' itself is kept."_s);
    const ResultOf<QByteArray> host = hostFolder(folder);
    if (!host)
        return host.error();
    Result gone = removedTree(*host, folder);
    m_gate.files().noteChanged(folder);
    return gone;
}

} // namespace vt
