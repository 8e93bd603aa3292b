#include "platform/WineRegistry.h"

#include "platform/RegText.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

constexpr QStringView software = u"Software\\";
constexpr QStringView software32 = u"Software\\Wow6432Node\\";

/// "\Registry\Machine\System\X" as "System\X".
QString linkTarget(const QString& absolute)
{
    QStringList parts = absolute.split(u'\\', Qt::SkipEmptyParts);
    const bool machine = parts.size() > 2 && equalNoCase(parts[1], u"Machine");
    parts.remove(0, qMin<qsizetype>(parts.size(), machine ? 2 : 3));
    return parts.join(u'\\');
}

} // namespace

QString registryKeyPath(QStringView key)
{
    while (key.startsWith(u'\\'))
        key = key.sliced(1);
    while (key.endsWith(u'\\'))
        key.chop(1);
    return key.toString();
}

void WineRegistryFile::load() const
{
    if (m_loaded)
        return;
    m_loaded = true;
    QFile file(m_hostPath);
    if (m_hostPath.isEmpty() || !file.open(QIODevice::ReadOnly))
        return;
    m_bytes = file.readAll();
    QList<qsizetype> links;
    for (qsizetype at = 0; at < m_bytes.size();) {
        const qsizetype end = regtext::lineEnd(m_bytes, at);
        const char first = m_bytes[at];
        if (first == '[') {
            addKey(at, end);
        } else if (first == '#') {
            const QByteArrayView line = QByteArrayView(m_bytes).sliced(at, end - at).trimmed();
            if (line == "#link" && !m_keys.isEmpty())
                links += m_keys.size() - 1;
            else if (line == "#arch=win64")
                m_is64Bit = true;
        }
        at = end + 1;
    }
    for (const qsizetype i : links) {
        for (const Value& value : values(m_keys[i].path)) {
            if (equalNoCase(value.name, u"SymbolicLinkValue"))
                m_links.insert({m_keys[i].path}, linkTarget(value.text));
        }
    }
}

void WineRegistryFile::addKey(qsizetype lineStart, qsizetype lineEnd) const
{
    qsizetype close = lineStart + 1;
    while (close < lineEnd && m_bytes[close] != ']')
        close += m_bytes[close] == '\\' ? 2 : 1;
    if (close >= lineEnd)
        return;
    Key key;
    key.path =
        regtext::unescaped(QByteArrayView(m_bytes).sliced(lineStart + 1, close - lineStart - 1));
    key.body = lineEnd + 1;
    if (m_index.contains({key.path}))
        return;
    m_index.insert({key.path}, m_keys.size());
    m_keys += key;
}

QString WineRegistryFile::resolved(const QString& key) const
{
    load();
    QString path = registryKeyPath(key);
    // A link may lead to a link; a ring of them must end.
    for (int hops = 0; hops < 8 && !m_links.isEmpty(); ++hops) {
        bool changed = false;
        for (qsizetype end = path.indexOf(u'\\'); !changed; end = path.indexOf(u'\\', end + 1)) {
            const qsizetype length = end < 0 ? path.size() : end;
            const auto link = m_links.constFind({path.first(length)});
            if (link != m_links.constEnd()) {
                path = *link + path.sliced(length);
                changed = true;
            }
            if (end < 0)
                break;
        }
        if (!changed)
            break;
    }
    return path;
}

const QList<WineRegistryFile::Value>& WineRegistryFile::values(const QString& key) const
{
    static const QList<Value> none;
    const auto known = m_values.constFind({key});
    if (known != m_values.constEnd())
        return *known;
    const qsizetype found = m_index.value({key}, -1);
    if (found < 0)
        return none;
    QList<Value> out;
    qsizetype at = m_keys[found].body;
    while (at < m_bytes.size() && m_bytes[at] != '[') {
        const regtext::ValueLine line = regtext::readValue(m_bytes, at);
        if (line.valid && line.text)
            out.push_back({line.name, *line.text});
        at = line.next;
    }
    return *m_values.insert({key}, out);
}

std::optional<QString> WineRegistryFile::value(const QString& key, const QString& name) const
{
    for (const Value& value : values(resolved(key))) {
        if (equalNoCase(value.name, name))
            return value.text;
    }
    return std::nullopt;
}

bool WineRegistryFile::hasKey(const QString& key) const
{
    const QString path = resolved(key);
    return m_index.contains({path}) || !subKeys(path).isEmpty();
}

QStringList WineRegistryFile::subKeys(const QString& key) const
{
    const QString folder = resolved(key) + u'\\';
    regtext::NameList out;
    for (const Key& other : m_keys) {
        if (folder.size() > 1 && !startsWithNoCase(other.path, folder))
            continue;
        const QStringView rest =
            QStringView(other.path).sliced(folder.size() > 1 ? folder.size() : 0);
        const qsizetype end = rest.indexOf(u'\\');
        const QStringView name = end < 0 ? rest : rest.first(end);
        // Keys below one another stand together.
        if (out.names.isEmpty() || out.names.constLast() != name)
            out.add(name.toString());
    }
    return out.names;
}

QStringList WineRegistryFile::valueNames(const QString& key) const
{
    QStringList names;
    for (const Value& value : values(resolved(key)))
        names += value.name;
    return names;
}

bool WineRegistryFile::is64Bit() const
{
    load();
    return m_is64Bit;
}

WineRegistry::WineRegistry(const QString& hostPrefix)
    : m_system(hostPrefix.isEmpty() ? QString() : hostPrefix + u"/system.reg"_s),
      m_user(hostPrefix.isEmpty() ? QString() : hostPrefix + u"/user.reg"_s)
{}

QList<WineRegistry::Spot> WineRegistry::spots(Hive hive, const QString& key) const
{
    const QString path = registryKeyPath(key);
    switch (hive) {
    case Hive::CurrentUser:
        return {{&m_user, path}};
    case Hive::LocalMachine:
        break;
    case Hive::ClassesRoot: {
        QList<Spot> out = {{&m_user, u"Software\\Classes\\"_s + path}};
        if (m_system.is64Bit()) {
            out.push_back({&m_system, u"Software\\Classes\\Wow6432Node\\"_s + path});
            out.push_back({&m_system, u"Software\\Wow6432Node\\Classes\\"_s + path});
        }
        out.push_back({&m_system, u"Software\\Classes\\"_s + path});
        return out;
    }
    }
    const bool redirected = startsWithNoCase(path, software) &&
                            !startsWithNoCase(path, software32) && m_system.is64Bit();
    if (!redirected)
        return {{&m_system, path}};
    return {{&m_system, software32.toString() + path.sliced(software.size())}, {&m_system, path}};
}

std::optional<QString> WineRegistry::value(Hive hive, const QString& key, const QString& name) const
{
    for (const Spot& spot : spots(hive, key)) {
        if (std::optional<QString> text = spot.file->value(spot.key, name))
            return text;
    }
    return std::nullopt;
}

bool WineRegistry::hasKey(Hive hive, const QString& key) const
{
    const QList<Spot> all = spots(hive, key);
    return std::any_of(
        all.cbegin(), all.cend(), [](const Spot& spot) { return spot.file->hasKey(spot.key); });
}

QStringList WineRegistry::subKeys(Hive hive, const QString& key) const
{
    regtext::NameList out;
    for (const Spot& spot : spots(hive, key))
        out.add(spot.file->subKeys(spot.key));
    return out.names;
}

QStringList WineRegistry::valueNames(Hive hive, const QString& key) const
{
    regtext::NameList out;
    for (const Spot& spot : spots(hive, key))
        out.add(spot.file->valueNames(spot.key));
    return out.names;
}

} // namespace vt
