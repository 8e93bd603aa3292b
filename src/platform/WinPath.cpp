#include "platform/WinPath.h"

#include "platform/Text.h"

using namespace Qt::StringLiterals;

namespace vt::winpath {

namespace {

inline bool isSeparator(QChar c)
{
    return c == u'\\' || c == u'/';
}

bool hasDrive(QStringView path)
{
    return path.size() >= 2 && path[1] == u':' && path[0].isLetter() && path[0].unicode() < 0x80;
}

/// CON, PRN, AUX, NUL, COM1-9 and LPT1-9 name devices, with any extension behind them.
bool isDeviceName(QStringView component)
{
    QStringView stem = component;
    if (const qsizetype dot = component.indexOf(u'.'); dot >= 0)
        stem = component.first(dot);
    while (stem.endsWith(u' '))
        stem.chop(1);
    if (stem.size() != 3 && stem.size() != 4)
        return false;
    for (const QStringView device : {u"con"_s, u"prn"_s, u"aux"_s, u"nul"_s})
        if (equalNoCase(stem, device))
            return true;
    if (stem.size() != 4 || stem[3] < u'1' || stem[3] > u'9')
        return false;
    return startsWithNoCase(stem, u"com") || startsWithNoCase(stem, u"lpt");
}

bool isForbidden(QChar c)
{
    const char16_t u = c.unicode();
    return u < 0x20 || u == 0x7f || u == u':' || u == u'*' || u == u'?' || u == u'"' || u == u'<' ||
           u == u'>' || u == u'|';
}

} // namespace

QString normalised(QStringView path)
{
    QString out;
    out.reserve(path.size() + 1);
    qsizetype i = 0;
    if (hasDrive(path)) {
        out += path[0].toUpper();
        out += u":\\"_s;
        i = 2;
    } else if (path.size() >= 2 && isSeparator(path[0]) && isSeparator(path[1])) {
        out += u"\\\\"_s;
    } else if (!path.isEmpty() && isSeparator(path[0])) {
        out += u'\\';
    }
    const qsizetype rootSize = out.size();
    while (i < path.size()) {
        while (i < path.size() && isSeparator(path[i]))
            ++i;
        qsizetype end = i;
        while (end < path.size() && !isSeparator(path[end]))
            ++end;
        const QStringView part = path.sliced(i, end - i);
        i = end;
        if (part.isEmpty() || part == u".")
            continue;
        if (part == u"..") {
            QStringView sofar = QStringView(out).sliced(rootSize);
            const QStringView last =
                sofar.isEmpty() ? sofar
                                : sofar.chopped(1).sliced(sofar.chopped(1).lastIndexOf(u'\\') + 1);
            if (!last.isEmpty() && last != u"..") {
                out.chop(last.size() + 1);
                continue;
            }
            if (rootSize > 0)
                continue;
        }
        out += part;
        out += u'\\';
    }
    const bool folder = !path.isEmpty() && isSeparator(path.back());
    if (!folder && out.size() > rootSize)
        out.chop(1);
    return out;
}

QString asFolder(QStringView path)
{
    QString out = normalised(path);
    if (!out.isEmpty() && !out.endsWith(u'\\'))
        out += u'\\';
    return out;
}

QString withoutTrailing(QStringView folder)
{
    if (folder.endsWith(u'\\') && folder.size() > 1 && folder[folder.size() - 2] != u':')
        folder.chop(1);
    return folder.toString();
}

QString join(QStringView folder, QStringView relative)
{
    QString out;
    out.reserve(folder.size() + relative.size() + 1);
    out += folder;
    if (!out.isEmpty() && !out.endsWith(u'\\'))
        out += u'\\';
    while (!relative.isEmpty() && relative.front() == u'\\')
        relative = relative.sliced(1);
    out += relative;
    return out;
}

QString parent(QStringView path)
{
    if (path.endsWith(u'\\'))
        path.chop(1);
    return path.first(path.lastIndexOf(u'\\') + 1).toString();
}

QString name(QStringView path)
{
    if (path.endsWith(u'\\'))
        path.chop(1);
    return path.sliced(path.lastIndexOf(u'\\') + 1).toString();
}

QString baseName(QStringView path)
{
    const QString whole = name(path);
    const qsizetype dot = whole.lastIndexOf(u'.');
    return dot > 0 ? whole.first(dot) : whole;
}

QString extension(QStringView path)
{
    const QString whole = name(path);
    const qsizetype dot = whole.lastIndexOf(u'.');
    return dot >= 0 ? whole.sliced(dot + 1) : QString();
}

bool isAbsolute(QStringView path)
{
    return hasDrive(path) && (path.size() == 2 || isSeparator(path[2]));
}

QStringList components(QStringView path)
{
    QStringList out;
    for (const QStringView part : QStringView(path).split(u'\\', Qt::SkipEmptyParts))
        out += part.toString();
    return out;
}

bool isBelow(QStringView path, QStringView folder)
{
    if (folder.endsWith(u'\\'))
        folder.chop(1);
    if (!startsWithNoCase(path, folder))
        return false;
    return path.size() == folder.size() || path[folder.size()] == u'\\';
}

QString relativeTo(QStringView path, QStringView folder)
{
    if (folder.isEmpty() || !isBelow(path, folder))
        return path.toString();
    QStringView rest = path.sliced(qMin(path.size(), folder.size()));
    while (rest.startsWith(u'\\'))
        rest = rest.sliced(1);
    return rest.toString();
}

bool same(QStringView a, QStringView b)
{
    return equalNoCase(withoutTrailing(normalised(a)), withoutTrailing(normalised(b)));
}

Result checkComponent(QStringView component)
{
    const auto refuse = [&](const QString& why) {
        return Result::failure(u"The name '"_s + component.toString() + u"' cannot be used: "_s +
                               why);
    };
    if (component.isEmpty())
        return refuse(u"it is empty."_s);
    if (component.size() > 255)
        return refuse(u"it is longer than 255 characters."_s);
    QStringView stem = component;
    while (stem.endsWith(u' ') || stem.endsWith(u'.'))
        stem.chop(1);
    while (stem.startsWith(u' '))
        stem = stem.sliced(1);
    if (stem.isEmpty())
        return refuse(u"it leads out of its folder."_s);
    if (component.endsWith(u' ') || component.endsWith(u'.'))
        return refuse(u"it ends in a blank or a point."_s);
    for (const QChar c : component) {
        if (isSeparator(c) || isForbidden(c))
            return refuse(u"it holds a character that a file name may not hold."_s);
    }
    if (isDeviceName(component))
        return refuse(u"it is the name of a device."_s);
    return Result::success();
}

Result checkRelative(QStringView relative)
{
    if (relative.isEmpty())
        return Result::failure(u"An empty path cannot be used."_s);
    if (isSeparator(relative.front()) || hasDrive(relative))
        return Result::failure(u"The path '"_s + relative.toString() +
                               u"' cannot be used: it does not lie below its folder."_s);
    if (relative.endsWith(u'\\'))
        relative.chop(1);
    qsizetype from = 0;
    while (from <= relative.size()) {
        qsizetype to = relative.indexOf(u'\\', from);
        if (to < 0)
            to = relative.size();
        if (Result r = checkComponent(relative.sliced(from, to - from)); !r)
            return r;
        from = to + 1;
    }
    return Result::success();
}

QString safeName(QStringView text)
{
    QString out;
    for (const QChar c : text) {
        if (isSeparator(c) || isForbidden(c))
            continue;
        out += c;
    }
    out = out.trimmed();
    if (isDeviceName(out))
        out.prepend(u'_');
    out.truncate(120);
    while (!out.isEmpty() &&
           (out.back() == u'.' || out.back() == u' ' || out.back().isHighSurrogate()))
        out.chop(1);
    return out;
}

} // namespace vt::winpath
