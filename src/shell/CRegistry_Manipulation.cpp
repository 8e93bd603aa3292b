#include "shell/CRegistry_Manipulation.h"

#include "platform/Prompt.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

QString softwareKey(const QString& key, const QString& subkey)
{
    const QString path = u"Software\\"_s + key;
    return subkey.isEmpty() ? path : path + u'\\' + subkey;
}

/// The store calls a key's default value "".
QString storedName(const QString& valueName)
{
    return valueName == u"*" ? QString() : valueName;
}

Hive readableHive(Hive hive)
{
    switch (hive) {
    case Hive::ClassesRoot:
    case Hive::CurrentUser:
    case Hive::LocalMachine:
        return hive;
    }
    return Hive::LocalMachine;
}

} // namespace

CRegistry_Manipulation::CRegistry_Manipulation(RegistryStore& store,
                                               Prompts& prompts,
                                               QString productName)
    : m_store(store), m_prompts(prompts), m_appName(std::move(productName))
{}

QString CRegistry_Manipulation::AppName()
{
    if (!m_appName.isEmpty())
        return m_appName;
    if (!m_warned) {
        m_warned = true;
        m_prompts.ask(announcement(
            u"Registry Class Warning"_s,
            u"Project has no Product Name defined in Options. Registry functions will assume 'TEST APPLICATION'."_s,
            Icon::Warning));
    }
    return u"TEST APPLICATION"_s;
}

void CRegistry_Manipulation::AppName(const QString& name)
{
    m_appName = name;
}

bool CRegistry_Manipulation::DeleteKey(Hive hive,
                                       const QString& key,
                                       const QString& subkey,
                                       const QString& valueName)
{
    return DeleteKeyDirect(hive, softwareKey(key, subkey), valueName);
}

bool CRegistry_Manipulation::DeleteKeyDirect(Hive hive,
                                             const QString& keyPath,
                                             const QString& valueName)
{
    return m_store.removeValue(hive, keyPath, storedName(valueName)).ok;
}

bool CRegistry_Manipulation::DeleteKeyAndSubKeys(Hive hive, const QString& keyPath)
{
    return m_store.removeKeyAndSubKeys(hive, keyPath).ok;
}

bool CRegistry_Manipulation::DeleteSetting(const QString& section, const QString& valueName)
{
    return DeleteKey(Hive::CurrentUser, AppName(), section, valueName);
}

QString CRegistry_Manipulation::GetKey(Hive hive,
                                       const QString& key,
                                       const QString& subkey,
                                       const QString& valueName) const
{
    return GetKeyDirect(readableHive(hive), softwareKey(key, subkey), valueName);
}

QString CRegistry_Manipulation::GetKeyDirect(Hive hive,
                                             const QString& keyPath,
                                             const QString& valueName) const
{
    return m_store.value(hive, keyPath, storedName(valueName)).value_or(QString());
}

QStringList CRegistry_Manipulation::EnumerateSubKeys(Hive hive, const QString& keyPath) const
{
    return m_store.subKeys(hive, keyPath);
}

QString CRegistry_Manipulation::GetSetting(const QString& section,
                                           const QString& valueName,
                                           const QString& fallback)
{
    const QString text = GetKey(Hive::CurrentUser, AppName(), section, valueName);
    return text.isEmpty() ? fallback : text;
}

bool CRegistry_Manipulation::SaveKey(Hive hive,
                                     const QString& key,
                                     const QString& subkey,
                                     const QString& valueName,
                                     const QString& value)
{
    return SaveKeyDirect(hive, softwareKey(key, subkey), valueName, value);
}

bool CRegistry_Manipulation::SaveKeyDirect(Hive hive,
                                           const QString& keyPath,
                                           const QString& valueName,
                                           const QString& value)
{
    return m_store.setValue(hive, keyPath, storedName(valueName), value).ok;
}

Result CRegistry_Manipulation::Save(FileActions& actions)
{
    return m_store.save(actions);
}

bool CRegistry_Manipulation::SaveSetting(const QString& section,
                                         const QString& valueName,
                                         const QString& value)
{
    return SaveKey(Hive::CurrentUser, AppName(), section, valueName, value);
}

} // namespace vt
