#include "demo/FreshTree.h"

#include "demo/StandIns.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace vt {

QDateTime FreshTree::fileDate()
{
    return QDateTime(QDate(2006, 10, 17), QTime(12, 0), Qt::UTC);
}

void FreshTree::fail(const QString& relative, const QString& why)
{
    if (m_result.ok)
        m_result = Result::failure(u"'"_s + m_root + u'/' + relative +
                                   u"' could not be written: "_s + why + u"."_s);
}

void FreshTree::folder(const QString& relative)
{
    if (m_result.ok && !QDir(m_root).mkpath(relative))
        fail(relative, u"the folder could not be created"_s);
}

void FreshTree::file(const QString& relative, const QByteArray& bytes)
{
    folder(QFileInfo(relative).path());
    if (!m_result.ok)
        return;
    QFile out(m_root + u'/' + relative);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.flush() ||
        !out.setFileTime(fileDate(), QFileDevice::FileModificationTime))
        fail(relative, out.errorString());
}

void FreshTree::text(const QString& relative, const QString& lines)
{
    file(relative, standins::text(lines));
}

void FreshTree::executable(const QString& relative, const QByteArray& bytes)
{
    file(relative, bytes);
    const QString path = m_root + u'/' + relative;
    if (m_result.ok && !QFile::setPermissions(path, QFile::permissions(path) | QFile::ExeOwner))
        fail(relative, u"it could not be made executable"_s);
}

void FreshTree::link(const QString& relative, const QString& target)
{
    folder(QFileInfo(relative).path());
    if (m_result.ok && !QFile::link(target, m_root + u'/' + relative))
        fail(relative, u"the link could not be created"_s);
}

} // namespace vt
