#include "platform/RegistryStore.h"

#include "platform/RegText.h"
#include "platform/Text.h"

#include <QStringDecoder>

#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr qint64 registryFileLimit = 64LL * 1024 * 1024;

/// By the number of the hive.
constexpr std::array<QStringView, 3> hiveNames = {
    u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER", u"HKEY_LOCAL_MACHINE"};
static_assert(hiveNames.size() == size_t(Hive::LocalMachine) + 1);

NoCase indexKey(Hive hive, QStringView key)
{
    return {QChar(u'0' + int(hive)) + registryKeyPath(key)};
}

bool hasControls(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c < u' '; });
}

/// Exported files are UTF-16 when they come from Windows.
QByteArray asUtf8(const QByteArray& bytes)
{
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff")) {
        QStringDecoder decoder(QStringDecoder::Utf16);
        const QString text = decoder(bytes);
        return text.toUtf8();
    }
    return bytes.startsWith("\xef\xbb\xbf") ? bytes.sliced(3) : bytes;
}

} // namespace

Result RegistryStore::load(const Files& files, const QString& file)
{
    m_file = file;
    m_keys.clear();
    m_index.clear();
    m_changed = false;
    m_unreadable = false;
    if (!files.exists(file))
        return Result::success();
    const ResultOf<QByteArray> bytes = files.read(file, registryFileLimit);
    if (!bytes) {
        m_unreadable = true;
        return Result::failure(u"The settings in '"_s + file +
                               u"' could not be read, so defaults are used. "_s + bytes.text);
    }
    readBytes(asUtf8(*bytes));
    m_changed = false;
    return Result::success();
}

void RegistryStore::readBytes(QByteArrayView bytes)
{
    qsizetype current = -1;
    for (qsizetype at = 0; at < bytes.size();) {
        if (bytes[at] == '[') {
            const qsizetype end = regtext::lineEnd(bytes, at);
            current = readKey(bytes.sliced(at, end - at));
            at = end + 1;
            continue;
        }
        const regtext::ValueLine line = regtext::readValue(bytes, at);
        at = line.next;
        if (current < 0 || !line.valid || !line.text || hasControls(line.name))
            continue;
        (void)setValue(m_keys[current].hive, m_keys[current].path, line.name, *line.text);
    }
}

/// "[HKEY_CURRENT_USER\Software\...]"; the key's place, or -1.
qsizetype RegistryStore::readKey(QByteArrayView line)
{
    const qsizetype close = line.lastIndexOf(']');
    if (close < 0)
        return -1;
    const QString whole = QString::fromUtf8(line.sliced(1, close - 1));
    for (size_t i = 0; i < hiveNames.size(); ++i) {
        if (!startsWithNoCase(whole, hiveNames[i]))
            continue;
        const QStringView rest = QStringView(whole).sliced(hiveNames[i].size());
        if (!rest.startsWith(u'\\') || registryKeyPath(rest).isEmpty() || hasControls(rest))
            return -1;
        return make(Hive(i), registryKeyPath(rest));
    }
    return -1;
}

Result RegistryStore::save(FileActions& actions)
{
    if (!m_changed)
        return Result::success();
    if (m_file.isEmpty())
        return Result::failure(u"The settings could not be saved: no file was named for them."_s);
    if (m_unreadable)
        return Result::failure(u"The settings were not saved: '"_s + m_file +
                               u"' could not be read before and is left as it is."_s);
    const Result written = actions.replace(m_file, toBytes());
    if (!written)
        return Result::failure(u"The settings could not be saved to '"_s + m_file + u"'. "_s +
                               written.text);
    m_changed = false;
    return Result::success();
}

QByteArray RegistryStore::toBytes() const
{
    QString text = u"Windows Registry Editor Version 5.00\r\n"_s;
    for (const Key& key : m_keys) {
        text += u"\r\n["_s + hiveNames[size_t(key.hive)].toString() + u'\\' + key.path + u"]\r\n"_s;
        for (const Value& value : key.values)
            text += regtext::writtenValue(value.name, value.text) + u"\r\n"_s;
    }
    return text.toUtf8();
}

qsizetype RegistryStore::find(Hive hive, QStringView key) const
{
    return m_index.value(indexKey(hive, key), -1);
}

qsizetype RegistryStore::make(Hive hive, const QString& key)
{
    const qsizetype known = find(hive, key);
    if (known >= 0)
        return known;
    m_index.insert(indexKey(hive, key), m_keys.size());
    m_keys.push_back({hive, registryKeyPath(key), {}});
    m_changed = true;
    return m_keys.size() - 1;
}

void RegistryStore::reindex()
{
    m_index.clear();
    for (qsizetype i = 0; i < m_keys.size(); ++i)
        m_index.insert(indexKey(m_keys[i].hive, m_keys[i].path), i);
    m_changed = true;
}

std::optional<QString>
RegistryStore::value(Hive hive, const QString& key, const QString& name) const
{
    const qsizetype found = find(hive, key);
    if (found >= 0) {
        for (const Value& value : m_keys[found].values) {
            if (equalNoCase(value.name, name))
                return value.text;
        }
    }
    return m_wine ? m_wine->value(hive, key, name) : std::nullopt;
}

QStringList RegistryStore::ownSubKeys(Hive hive, const QString& key) const
{
    const QString folder = registryKeyPath(key) + u'\\';
    regtext::NameList out;
    for (const Key& other : m_keys) {
        if (other.hive != hive || (folder.size() > 1 && !startsWithNoCase(other.path, folder)))
            continue;
        const QString rest = other.path.sliced(folder.size() > 1 ? folder.size() : 0);
        out.add(rest.section(u'\\', 0, 0));
    }
    return out.names;
}

bool RegistryStore::hasKey(Hive hive, const QString& key) const
{
    return find(hive, key) >= 0 || !ownSubKeys(hive, key).isEmpty() ||
           (m_wine && m_wine->hasKey(hive, key));
}

QStringList RegistryStore::subKeys(Hive hive, const QString& key) const
{
    regtext::NameList out;
    out.add(ownSubKeys(hive, key));
    if (m_wine)
        out.add(m_wine->subKeys(hive, key));
    return out.names;
}

QStringList RegistryStore::valueNames(Hive hive, const QString& key) const
{
    regtext::NameList out;
    const qsizetype found = find(hive, key);
    if (found >= 0) {
        for (const Value& value : m_keys[found].values)
            out.add(value.name);
    }
    if (m_wine)
        out.add(m_wine->valueNames(hive, key));
    return out.names;
}

Result
RegistryStore::setValue(Hive hive, const QString& key, const QString& name, const QString& text)
{
    if (registryKeyPath(key).isEmpty() || hasControls(key) || hasControls(name))
        return Result::failure(u"The setting '"_s + name + u"' below '"_s + key +
                               u"' was not stored: its key or name is not valid."_s);
    QList<Value>& values = m_keys[make(hive, key)].values;
    for (Value& value : values) {
        if (!equalNoCase(value.name, name))
            continue;
        m_changed = m_changed || value.text != text;
        value.text = text;
        return Result::success();
    }
    values.push_back({name, text});
    m_changed = true;
    return Result::success();
}

Result RegistryStore::removeValue(Hive hive, const QString& key, const QString& name)
{
    const qsizetype found = find(hive, key);
    if (found < 0)
        return Result::success();
    const qsizetype removed = m_keys[found].values.removeIf(
        [&](const Value& value) { return equalNoCase(value.name, name); });
    m_changed = m_changed || removed > 0;
    return Result::success();
}

Result RegistryStore::removeKey(Hive hive, const QString& key)
{
    if (!ownSubKeys(hive, key).isEmpty())
        return Result::failure(u"The registry key '"_s + key +
                               u"' was not deleted: it has keys below it."_s);
    const qsizetype found = find(hive, key);
    if (found >= 0) {
        m_keys.removeAt(found);
        reindex();
    }
    return Result::success();
}

Result RegistryStore::removeKeyAndSubKeys(Hive hive, const QString& key)
{
    const QString path = registryKeyPath(key);
    if (path.isEmpty())
        return Result::failure(u"A whole tree of the registry cannot be deleted."_s);
    const qsizetype removed = m_keys.removeIf([&](const Key& other) {
        return other.hive == hive && startsWithNoCase(other.path, path) &&
               (other.path.size() == path.size() || other.path[path.size()] == u'\\');
    });
    if (removed > 0)
        reindex();
    return Result::success();
}

} // namespace vt
