#include "platform/DriveTable.h"

#include "platform/WinPath.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace vt {

DriveTable::DriveTable()
{
    m_roots.insert(u'Z', u""_s);
}

void DriveTable::set(QChar letter, const QString& hostFolder)
{
    letter = letter.toUpper();
    if (letter == u'Z')
        return;
    QString clean = QDir::cleanPath(hostFolder);
    if (clean == u"/")
        clean = u""_s;
    m_roots.insert(letter, clean);
}

QString DriveTable::hostRoot(QChar letter) const
{
    return m_roots.value(letter.toUpper());
}

QString DriveTable::toHost(QStringView windowsPath) const
{
    if (!winpath::isAbsolute(windowsPath))
        return {};
    const QString root = m_roots.value(windowsPath[0].toUpper());
    if (root.isNull())
        return {};
    QString out = root;
    out.reserve(root.size() + windowsPath.size());
    QStringView rest = windowsPath.sliced(2);
    while (rest.endsWith(u'\\'))
        rest.chop(1);
    for (const QChar c : rest)
        out += c == u'\\' ? QChar(u'/') : c;
    return out.isEmpty() ? u"/"_s : out;
}

QString DriveTable::toWindows(const QString& hostPath) const
{
    const QString clean = QDir::cleanPath(hostPath);
    QChar best = u'Z';
    qsizetype length = 0;
    for (auto it = m_roots.cbegin(); it != m_roots.cend(); ++it) {
        const QString& root = it.value();
        const bool covers =
            clean.startsWith(root) && (clean.size() == root.size() || clean[root.size()] == u'/');
        if (covers && root.size() > length) {
            best = it.key();
            length = root.size();
        }
    }
    QString out = QString(best) + u':' + clean.sliced(length);
    out.replace(u'/', u'\\');
    if (out.size() == 2 || (hostPath.endsWith(u'/') && !out.endsWith(u'\\')))
        out += u'\\';
    return out;
}

QString DriveTable::fromUser(const QString& typed, const QString& currentHostFolder) const
{
    if (winpath::isAbsolute(typed))
        return winpath::normalised(typed);
    if (typed.isEmpty())
        return {};
    QString host = typed.startsWith(u'/') ? typed : currentHostFolder + u'/' + typed;
    return toWindows(host);
}

} // namespace vt
