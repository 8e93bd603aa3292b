// Read-only sight of the registry files of a Wine or Proton prefix ("system.reg", "user.reg"), as a
// 32-bit program sees them. Never writes. A file is read at the first question about it, its keys
// are indexed in one pass, values are parsed only for keys that are asked for.
#pragma once

#include "platform/Text.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

/// The registry's trees.
enum class Hive : quint8
{
    ClassesRoot,
    CurrentUser,
    LocalMachine,
};

/// Without "\" at either end.
[[nodiscard]] QString registryKeyPath(QStringView key);

/// One registry file in Wine's text form.
class WineRegistryFile
{
public:
    /// \a hostPath may name a missing file: it then has no keys.
    explicit WineRegistryFile(QString hostPath) : m_hostPath(std::move(hostPath)) {}

    /// Key paths with "\" separators, below the file's own root. Links between keys are followed.
    [[nodiscard]] std::optional<QString> value(const QString& key, const QString& name) const;
    [[nodiscard]] bool hasKey(const QString& key) const;
    /// In the order of the file.
    [[nodiscard]] QStringList subKeys(const QString& key) const;
    [[nodiscard]] QStringList valueNames(const QString& key) const;
    /// "#arch=win64" stands in the file's head.
    [[nodiscard]] bool is64Bit() const;

private:
    struct Key
    {
        QString path;
        qsizetype body = 0; ///< offset of the first byte behind the key's line
    };

    struct Value
    {
        QString name;
        QString text;
    };

    void load() const;
    void addKey(qsizetype lineStart, qsizetype lineEnd) const;
    QString resolved(const QString& key) const;
    const QList<Value>& values(const QString& key) const;

    QString m_hostPath;
    mutable bool m_loaded = false;
    mutable bool m_is64Bit = false;
    mutable QByteArray m_bytes;
    mutable QList<Key> m_keys;
    mutable QHash<NoCase, qsizetype> m_index;
    mutable QHash<NoCase, QString> m_links;
    mutable QHash<NoCase, QList<Value>> m_values; ///< of the keys asked for so far
};

class WineRegistry
{
public:
    /// \a hostPrefix: the prefix's folder on the host; empty gives a registry without keys.
    explicit WineRegistry(const QString& hostPrefix = {});

    /// Texts as they stand; numbers as decimal text; other kinds of value are not there. In a
    /// 64-bit prefix "Software\..." of LocalMachine is looked up under "Software\Wow6432Node\"
    /// first. \a name "" is the key's default value.
    [[nodiscard]] std::optional<QString>
    value(Hive hive, const QString& key, const QString& name) const;
    [[nodiscard]] bool hasKey(Hive hive, const QString& key) const;
    [[nodiscard]] QStringList subKeys(Hive hive, const QString& key) const;
    [[nodiscard]] QStringList valueNames(Hive hive, const QString& key) const;

private:
    struct Spot
    {
        const WineRegistryFile* file;
        QString key;
    };

    /// Where a key may lie, best first.
    QList<Spot> spots(Hive hive, const QString& key) const;

    WineRegistryFile m_system;
    WineRegistryFile m_user;
};

} // namespace vt
