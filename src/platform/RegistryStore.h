// The system's own registry: string values by hive, key and name, kept as one text file in the form
// of exported registry files. Reads look here first, then into the prefix's registry; writes never
// leave this store. Nothing reaches the disk before save().
#pragma once

#include "platform/FileActions.h"
#include "platform/Files.h"
#include "platform/Result.h"
#include "platform/WineRegistry.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt {

/// Keys are paths such as "Software\Maker\Product" (no hive, no "\" at either end needed); names
/// compare without regard to case and keep the spelling of their first writing. The name "" is a
/// key's default value.
class RegistryStore
{
public:
    /// \a wine may be null; it must outlive this.
    explicit RegistryStore(const WineRegistry* wine = nullptr) : m_wine(wine) {}

    /// Replaces the content by what \a file holds and makes it the file of save(). A missing file
    /// is an empty store and a success. Lines without meaning are skipped. On failure (unreadable)
    /// the store is empty and save() will refuse to overwrite the file.
    Result load(const Files& files, const QString& file);
    /// Writes the file when something changed since load() or save(). On failure the old file
    /// stands, and the next save() tries again.
    Result save(FileActions& actions);

    [[nodiscard]] bool changed() const { return m_changed; }

    [[nodiscard]] std::optional<QString>
    value(Hive hive, const QString& key, const QString& name) const;
    [[nodiscard]] bool hasKey(Hive hive, const QString& key) const;
    /// Own keys in the order in which they were made, then the prefix's.
    [[nodiscard]] QStringList subKeys(Hive hive, const QString& key) const;
    [[nodiscard]] QStringList valueNames(Hive hive, const QString& key) const;

    /// Makes missing keys. Refuses an empty key and control characters in key or name.
    Result setValue(Hive hive, const QString& key, const QString& name, const QString& text);
    /// In the own store only: a value of the prefix shows again. A missing one is a success.
    Result removeValue(Hive hive, const QString& key, const QString& name);
    /// Refused while the key has sub-keys of this store. A missing one is a success.
    Result removeKey(Hive hive, const QString& key);
    Result removeKeyAndSubKeys(Hive hive, const QString& key);

    /// The store as the text of its file (UTF-8, CR LF).
    [[nodiscard]] QByteArray toBytes() const;

private:
    struct Value
    {
        QString name;
        QString text;
    };

    struct Key
    {
        Hive hive;
        QString path;
        QList<Value> values;
    };

    qsizetype find(Hive hive, QStringView key) const;
    qsizetype make(Hive hive, const QString& key);
    QStringList ownSubKeys(Hive hive, const QString& key) const;
    void reindex();
    void readBytes(QByteArrayView bytes);
    qsizetype readKey(QByteArrayView line);

    const WineRegistry* m_wine;
    QString m_file;
    QList<Key> m_keys;
    QHash<NoCase, qsizetype> m_index; ///< by hive letter + path
    bool m_changed = false;
    bool m_unreadable = false;
};

} // namespace vt
