#include "archive/CUnRAR.h"

namespace vt {

bool CUnRAR::List()
{
    const bool listed = m_unrar.ListRarFiles(sRARFile);
    m_names.clear();
    if (!m_unrar.directory())
        return listed;
    for (const RarEntry& entry : m_unrar.directory()->entries())
        m_names += entry.fullName();
    return listed;
}

bool CUnRAR::Test()
{
    return m_unrar.TestRarFiles(sRARFile);
}

bool CUnRAR::Extract(const QString& folder, FileActions& actions)
{
    return m_unrar.ExtractRarFiles(sRARFile, folder, actions);
}

} // namespace vt
