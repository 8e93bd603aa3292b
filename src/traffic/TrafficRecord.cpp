#include "traffic/TrafficRecord.h"

#include "traffic/SourceLines.h"

#include <algorithm>

namespace vt {

namespace {

constexpr QByteArrayView heading =
    "; Flight plans, aircraft and airports that were added for addons. By this file\r\n"
    "; they are found again when an addon is removed: please leave it as it is.\r\n";
constexpr QByteArrayView filesSection = "Source Files";
constexpr QByteArrayView createdKey = "Created";
constexpr QByteArrayView unendedPrefix = "NoLineEnd.";

std::optional<TrafficKind> kindOf(QByteArrayView name)
{
    for (const TrafficKind kind : trafficKinds) {
        if (name == trafficBaseName(kind).toLatin1())
            return kind;
    }
    return std::nullopt;
}

/// "FlightPlans12" without its number. Earlier versions wrote none.
QByteArrayView withoutNumber(QByteArrayView key)
{
    while (!key.isEmpty() && key.back() >= '0' && key.back() <= '9')
        key.chop(1);
    return key;
}

void readFileEntry(TrafficRecord& record, QByteArrayView key, QByteArrayView value)
{
    if (key == createdKey) {
        if (const auto kind = kindOf(value))
            record.files[int(*kind)].created = true;
    } else if (key.startsWith(unendedPrefix)) {
        if (const auto kind = kindOf(key.sliced(unendedPrefix.size())))
            record.files[int(*kind)].unended = value.toByteArray();
    }
}

void writeEntry(QByteArray& out, QByteArrayView key, const QByteArray& value)
{
    out.append(key);
    out += '=' + value + "\r\n";
}

} // namespace

TrafficRecord TrafficRecord::ofBytes(QByteArrayView bytes)
{
    TrafficRecord out;
    bool inFiles = false;
    const QList<QByteArray> lines = SourceLines::ofBytes(bytes).texts();
    for (const QByteArray& line : lines) {
        if (line.startsWith('[') && line.endsWith(']')) {
            const QByteArray section = line.sliced(1, line.size() - 2);
            inFiles = section == filesSection;
            bool ok = false;
            const qint64 key = section.toLongLong(&ok);
            if (ok)
                out.addons.append({key, {}, {}});
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (equals < 1 || line.startsWith(';'))
            continue;
        const QByteArrayView key = QByteArrayView(line).first(equals);
        const QByteArrayView value = QByteArrayView(line).sliced(equals + 1);
        if (inFiles) {
            readFileEntry(out, key, value);
        } else if (!out.addons.isEmpty()) {
            if (const auto kind = kindOf(withoutNumber(key)))
                out.addons.last().lines[int(*kind)].append(value.toByteArray());
            else if (key == "Name")
                out.addons.last().name = value.toByteArray();
        }
    }
    return out;
}

QByteArray TrafficRecord::bytes() const
{
    QByteArray fileEntries;
    for (const TrafficKind kind : trafficKinds) {
        const QByteArray base = trafficBaseName(kind).toLatin1();
        const File& file = files[int(kind)];
        if (file.created)
            writeEntry(fileEntries, createdKey, base);
        if (file.unended)
            writeEntry(fileEntries, unendedPrefix.toByteArray() + base, *file.unended);
    }
    if (addons.isEmpty() && fileEntries.isEmpty())
        return {};
    QByteArray out = heading.toByteArray();
    if (!fileEntries.isEmpty())
        out += '[' + filesSection.toByteArray() + "]\r\n" + fileEntries;
    for (const Addon& addon : addons) {
        out += '[' + QByteArray::number(addon.key) + "]\r\n";
        writeEntry(out, "Name", addon.name);
        for (const TrafficKind kind : trafficKinds) {
            const QByteArray base = trafficBaseName(kind).toLatin1();
            qsizetype number = 0;
            for (const QByteArray& line : addon.lines[int(kind)])
                writeEntry(out, base + QByteArray::number(++number), line);
        }
    }
    return out;
}

const TrafficRecord::Addon* TrafficRecord::find(qint64 key) const
{
    const auto found = std::find_if(
        addons.cbegin(), addons.cend(), [key](const Addon& addon) { return addon.key == key; });
    return found == addons.cend() ? nullptr : &*found;
}

TrafficRecord::Addon& TrafficRecord::addonFor(qint64 key, const QByteArray& name)
{
    for (Addon& addon : addons) {
        if (addon.key == key)
            return addon;
    }
    addons.append({key, name, {}});
    return addons.last();
}

QSet<QByteArray> TrafficRecord::linesOfOthers(qint64 key, TrafficKind kind) const
{
    QSet<QByteArray> out;
    for (const Addon& addon : addons) {
        const QList<QByteArray>& lines = addon.lines[int(kind)];
        if (addon.key != key)
            out.unite(QSet<QByteArray>(lines.cbegin(), lines.cend()));
    }
    return out;
}

bool TrafficRecord::hasAny(TrafficKind kind) const
{
    return std::any_of(addons.cbegin(), addons.cend(), [kind](const Addon& addon) {
        return !addon.lines[int(kind)].isEmpty();
    });
}

} // namespace vt
