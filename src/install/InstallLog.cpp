#include "install/InstallLog.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

const QByteArray& separatorBefore()
{
    static const QByteArray line(44, '-');
    return line;
}

const QByteArray& separatorAfter()
{
    static const QByteArray line = QByteArray(136, '-') + "\r\n";
    return line;
}

} // namespace

void InstallLog::open(Gate& gate, const QString& path)
{
    (void)m_file.open(gate, path); // an installation does not fail for want of a log
}

void InstallLog::fileBegin(const QString& name, const QString& source, const QString& target)
{
    QByteArray lines;
    lines.reserve(160 + 2 * target.size() + source.size());
    lines += separatorBefore();
    lines += ' ';
    lines += name.toUpper().toUtf8();
    lines += "\r\n     Installing file ";
    lines += source.toUtf8();
    lines += " to ";
    lines += target.toUtf8();
    lines += "\r\n";
    m_file.raw(lines);
}

void InstallLog::fileEnd()
{
    m_file.raw(separatorAfter());
}

} // namespace vt
