#include "platform/PathIndex.h"

#include "platform/WinPath.h"

namespace vt {

void PathIndex::insert(const QString& path, const QString& text)
{
    const NoCase key{winpath::withoutTrailing(path)};
    if (!m_texts.contains(key))
        m_texts.insert(key, text);
}

const QString* PathIndex::find(const QString& path) const
{
    if (m_texts.isEmpty())
        return nullptr;
    QString at = winpath::withoutTrailing(path);
    while (true) {
        if (const auto known = m_texts.constFind(NoCase{at}); known != m_texts.cend())
            return &*known;
        const qsizetype cut = at.lastIndexOf(u'\\');
        if (cut < 0)
            return nullptr;
        at.truncate(cut);
    }
}

} // namespace vt
