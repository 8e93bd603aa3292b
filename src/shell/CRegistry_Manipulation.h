// Values of the registry by key and subkey, and the program's own settings below its application
// name. Text in, text out; types and rules are Settings' matter. A failed read yields the default,
// a failed write is told by false and nothing else.
#pragma once

#include "platform/RegistryStore.h"

#include <QString>
#include <QStringList>

namespace vt {

class Prompts;

class CRegistry_Manipulation
{
public:
    /// An empty \a productName is warned about once and replaced by "TEST APPLICATION", when the
    /// application name is first asked for. Both objects must outlive this.
    CRegistry_Manipulation(RegistryStore& store, Prompts& prompts, QString productName);

    [[nodiscard]] QString AppName();
    void AppName(const QString& name);

    /// Deletes one value of "Software\" + key [+ "\" + subkey]; true when it is gone afterwards.
    bool DeleteKey(Hive hive, const QString& key, const QString& subkey, const QString& valueName);
    /// As DeleteKey(), with the key's path as given.
    bool DeleteKeyDirect(Hive hive, const QString& keyPath, const QString& valueName);
    /// The key at the path as given, with all its values and subkeys.
    bool DeleteKeyAndSubKeys(Hive hive, const QString& keyPath);
    bool DeleteSetting(const QString& section, const QString& valueName);
    /// The value of "Software\" + key [+ "\" + subkey], or empty. A hive other than classes root,
    /// current user and local machine is read as local machine. "*" is the key's default value.
    [[nodiscard]] QString
    GetKey(Hive hive, const QString& key, const QString& subkey, const QString& valueName) const;
    [[nodiscard]] QString
    GetKeyDirect(Hive hive, const QString& keyPath, const QString& valueName) const;
    /// Names of the subkeys of the key at the path as given, in the registry's order.
    [[nodiscard]] QStringList EnumerateSubKeys(Hive hive, const QString& keyPath) const;
    /// \a fallback when the value is missing or empty.
    [[nodiscard]] QString
    GetSetting(const QString& section, const QString& valueName, const QString& fallback = {});
    /// Missing keys are made.
    bool SaveKey(Hive hive,
                 const QString& key,
                 const QString& subkey,
                 const QString& valueName,
                 const QString& value);
    bool SaveKeyDirect(Hive hive,
                       const QString& keyPath,
                       const QString& valueName,
                       const QString& value);
    bool SaveSetting(const QString& section, const QString& valueName, const QString& value);

    /// Writes the store to its file; on failure the old file stands.
    Result Save(FileActions& actions);

private:
    RegistryStore& m_store;
    Prompts& m_prompts;
    QString m_appName;
    bool m_warned = false;
};

} // namespace vt
