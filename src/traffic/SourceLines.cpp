#include "traffic/SourceLines.h"

#include <QHash>

namespace vt {

SourceLines SourceLines::ofBytes(QByteArrayView bytes)
{
    SourceLines out;
    while (!bytes.isEmpty()) {
        const qsizetype lf = bytes.indexOf('\n');
        if (lf < 0) {
            out.m_lines.append({bytes.toByteArray(), {}});
            break;
        }
        const qsizetype cut = lf > 0 && bytes[lf - 1] == '\r' ? lf - 1 : lf;
        out.m_lines.append(
            {bytes.first(cut).toByteArray(), bytes.sliced(cut, lf + 1 - cut).toByteArray()});
        bytes = bytes.sliced(lf + 1);
    }
    return out;
}

QByteArray SourceLines::joined() const
{
    QByteArray out;
    for (const Line& line : m_lines)
        out += line.text + line.end;
    return out;
}

QList<QByteArray> SourceLines::texts() const
{
    QList<QByteArray> out;
    out.reserve(m_lines.size());
    for (const Line& line : m_lines)
        out.append(line.text);
    return out;
}

bool SourceLines::lacksLastEnd() const
{
    return !m_lines.isEmpty() && m_lines.constLast().end.isEmpty();
}

QByteArray SourceLines::usualEnd() const
{
    qsizetype bare = 0;
    qsizetype ended = 0;
    for (const Line& line : m_lines) {
        ended += line.end.isEmpty() ? 0 : 1;
        bare += line.end.size() == 1 ? 1 : 0;
    }
    return bare * 2 > ended ? "\n" : "\r\n";
}

QByteArray SourceLines::endLastLine()
{
    m_lines.last().end = usualEnd();
    return m_lines.constLast().text;
}

void SourceLines::dropLastEnd(QByteArrayView text)
{
    if (!m_lines.isEmpty() && m_lines.constLast().text == text)
        m_lines.last().end.clear();
}

void SourceLines::append(const QByteArray& text)
{
    Q_ASSERT(!lacksLastEnd() && !text.contains('\n'));
    m_lines.append({text, usualEnd()});
}

qsizetype SourceLines::remove(const QList<QByteArray>& texts)
{
    QHash<QByteArray, qsizetype> going;
    for (const QByteArray& text : texts)
        ++going[text];
    return m_lines.removeIf([&](const Line& line) {
        const auto found = going.find(line.text);
        return found != going.end() && (*found)-- > 0;
    });
}

} // namespace vt
