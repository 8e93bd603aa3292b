// One template a rule, over QStringView and QByteArrayView. Every mark that is looked for is below
// 0x40, so it is never the second byte of a double-byte character; "\" may be, which is why bytes
// are taken apart at it only where the name is plain ASCII.
#include "simconfig/ConfigFacts.h"

#include "platform/Text.h"

#include <algorithm>
#include <climits>

using namespace Qt::StringLiterals;

namespace vt::configfacts {

namespace {

template <typename Unit> constexpr char16_t unitOf(Unit unit)
{
    if constexpr (std::is_same_v<Unit, char>)
        return quint8(unit);
    else
        return unit.unicode();
}

constexpr char16_t lower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
}

constexpr bool isBlank(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\r';
}

template <typename View> View trimmedOf(View text)
{
    while (!text.isEmpty() && isBlank(unitOf(text.front())))
        text = text.sliced(1);
    while (!text.isEmpty() && isBlank(unitOf(text.back())))
        text.chop(1);
    return text;
}

/// \a beginning is lower-case ASCII.
template <typename View> bool beginsWith(View text, QLatin1StringView beginning)
{
    if (text.size() < beginning.size())
        return false;
    for (qsizetype i = 0; i < beginning.size(); ++i) {
        if (lower(unitOf(text[i])) != uchar(beginning[i].toLatin1()))
            return false;
    }
    return true;
}

template <typename View> bool isName(View text, QLatin1StringView name)
{
    return text.size() == name.size() && beginsWith(text, name);
}

template <typename View> bool endsIn(View text, QLatin1StringView end)
{
    return text.size() >= end.size() && isName(text.sliced(text.size() - end.size()), end);
}

template <typename View> qsizetype positionOf(View text, char16_t mark)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (unitOf(text[i]) == mark)
            return i;
    }
    return -1;
}

/// Without surrounding blanks and quotes, a lone quote at either end included.
template <typename View> View unquoted(View text)
{
    text = trimmedOf(text);
    if (!text.isEmpty() && unitOf(text.front()) == u'"')
        text = text.sliced(1);
    if (!text.isEmpty() && unitOf(text.back()) == u'"')
        text.chop(1);
    return trimmedOf(text);
}

/// A ";" or a "//" that stands free ends what is said.
template <typename View> View withoutComment(View value)
{
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char16_t c = unitOf(value[i]);
        const bool slashes = c == u'/' && i + 1 < value.size() && unitOf(value[i + 1]) == u'/' &&
                             (i == 0 || isBlank(unitOf(value[i - 1])));
        if (c == u';' || slashes)
            return value.first(i);
    }
    return value;
}

template <typename View> View plainIn(View value)
{
    value = trimmedOf(withoutComment(value));
    // A comment may have taken the closing quote.
    return !value.isEmpty() && unitOf(value.front()) == u'"' ? unquoted(value) : value;
}

template <typename View> bool isNumber(View part)
{
    bool digit = false;
    for (qsizetype i = 0; i < part.size(); ++i) {
        const char16_t c = unitOf(part[i]);
        digit = digit || (c >= u'0' && c <= u'9');
        if ((c < u'0' || c > u'9') && c != u'.' && c != u'-' && c != u'+' &&
            !(digit && lower(c) == u'e'))
            return false;
    }
    return digit;
}

template <typename View> bool isAscii(View text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (unitOf(text[i]) >= 0x80)
            return false;
    }
    return true;
}

/// What follows the last separator. Bytes beyond ASCII are left whole.
template <typename View> View fileNameOf(View path)
{
    if (std::is_same_v<View, QByteArrayView> && !isAscii(path))
        return path;
    for (qsizetype i = path.size(); i > 0; --i) {
        const char16_t c = unitOf(path[i - 1]);
        if (c == u'\\' || c == u'/')
            return path.sliced(i);
    }
    return path;
}

template <typename View> View effectIn(View value)
{
    value = withoutComment(value);
    while (!value.isEmpty()) {
        const qsizetype comma = positionOf(value, u',');
        View part = unquoted(comma < 0 ? value : value.first(comma));
        value = comma < 0 ? View() : value.sliced(comma + 1);
        if (part.isEmpty() || isNumber(part))
            continue;
        part = fileNameOf(part);
        return endsIn(part, ".fx"_L1) ? part.chopped(3) : part;
    }
    return {};
}

template <typename View> GaugeOf<View> gaugeIn(View value)
{
    value = withoutComment(value);
    const qsizetype comma = positionOf(value, u',');
    value = unquoted(comma < 0 ? value : value.first(comma));
    const qsizetype mark = positionOf(value, u'!');
    GaugeOf<View> out{unquoted(mark < 0 ? value : value.first(mark)),
                      mark < 0 ? View() : unquoted(value.sliced(mark + 1))};
    const qsizetype stem = out.collection.size() - 4;
    if (stem < 1 || unitOf(out.collection[stem]) != u'.')
        return out;
    for (const QLatin1StringView type : {".gau"_L1, ".cab"_L1, ".xml"_L1, ".dll"_L1}) {
        if (isName(out.collection.sliced(stem), type)) {
            out.collection = out.collection.first(stem);
            break;
        }
    }
    return out;
}

template <typename View> int sectionNumber(View name)
{
    constexpr QLatin1StringView stem = "fltsim."_L1;
    if (name.size() <= stem.size() || !beginsWith(name, stem))
        return -1;
    qint64 number = 0;
    for (qsizetype i = stem.size(); i < name.size(); ++i) {
        const char16_t c = unitOf(name[i]);
        if (c < u'0' || c > u'9')
            return -1;
        number = number * 10 + (c - u'0');
        if (number > INT_MAX)
            return -1;
    }
    return int(number);
}

template <typename View> bool namesEffects(View section)
{
    return isName(section, "lights"_L1) || isName(section, "effects"_L1) ||
           isName(section, "smokesystem"_L1);
}

/// The file that a value names, "\" as separator.
QString fileOf(QStringView value)
{
    return unquoted(withoutComment(value)).toString().replace(u'/', u'\\');
}

bool hasExtension(const QString& file)
{
    return file.lastIndexOf(u'.') > file.lastIndexOf(u'\\') + 1;
}

} // namespace

QStringView plainValue(QStringView value)
{
    return plainIn(value);
}

QByteArrayView plainValue(QByteArrayView value)
{
    return plainIn(value);
}

int aircraftSectionNumber(QStringView name)
{
    return sectionNumber(name);
}

int aircraftSectionNumber(QByteArrayView name)
{
    return sectionNumber(name);
}

bool isAircraftSection(QStringView name)
{
    return sectionNumber(name) >= 0;
}

QString aircraftSectionName(qsizetype number)
{
    return u"fltsim."_s + QString::number(number);
}

int hiddenSectionNumber(QStringView name)
{
    return startsWithNoCase(name, hiddenStem) ? sectionNumber(name.sliced(hiddenStem.size())) : -1;
}

int hiddenSectionNumber(QByteArrayView name)
{
    return beginsWith(name, "hidden."_L1) ? sectionNumber(name.sliced(hiddenStem.size())) : -1;
}

bool isPartFolder(QStringView name, QStringView stem)
{
    if (!startsWithNoCase(name, stem))
        return false;
    return name.size() == stem.size() || name.at(stem.size()) == u'.';
}

QString partSuffix(QStringView name)
{
    const qsizetype point = name.indexOf(u'.');
    return point < 0 ? QString() : name.sliced(point + 1).toString();
}

bool isRealTexture(QStringView name)
{
    const QStringView ending = name.sliced(name.lastIndexOf(u'.') + 1);
    if (ending.size() == name.size())
        return false;
    if (ending.size() == 3 && endsWithNoCase(ending, u"af"))
        return true;
    constexpr QStringView endings[] = {u"dds", u"bmp", u"r8", u"tga", u"agn", u"psd"};
    return std::any_of(std::begin(endings), std::end(endings), [ending](QStringView one) {
        return equalNoCase(ending, one);
    });
}

bool isEffectSection(QStringView section)
{
    return namesEffects(section);
}

bool isEffectSection(QByteArrayView section)
{
    return namesEffects(section);
}

QStringView effectOf(QStringView section, QStringView value)
{
    return namesEffects(section) ? effectIn(value) : QStringView();
}

QByteArrayView effectOf(QByteArrayView value)
{
    return effectIn(value);
}

GaugeOf<QStringView> gaugeOf(QStringView value)
{
    return gaugeIn(value);
}

GaugeOf<QByteArrayView> gaugeOf(QByteArrayView value)
{
    return gaugeIn(value);
}

bool isGaugeKey(QStringView key)
{
    return beginsWith(key, "gauge"_L1);
}

bool isGaugeKey(QByteArrayView key)
{
    return beginsWith(key, "gauge"_L1);
}

bool isBitmapKey(QStringView key)
{
    return isName(key, "file"_L1) || isName(key, "palette"_L1);
}

bool isBitmapKey(QByteArrayView key)
{
    return isName(key, "file"_L1) || isName(key, "palette"_L1);
}

QString bitmapOf(QStringView value)
{
    const QString file = fileOf(value);
    return file.isEmpty() || hasExtension(file) ? file : file + u".bmp"_s;
}

bool isWaveKey(QStringView key)
{
    return isName(key, "filename"_L1);
}

bool isWaveKey(QByteArrayView key)
{
    return isName(key, "filename"_L1);
}

QString waveOf(QStringView value)
{
    const QString file = fileOf(value);
    for (const QStringView type : {u".wav", u".mp3", u".wma"}) {
        if (endsWithNoCase(file, type))
            return file;
    }
    return file.isEmpty() ? file : file + u".wav"_s;
}

QStringList effectTexturesOf(QByteArrayView fx, const AnsiCodec& ansi)
{
    QStringList textures;
    for (qsizetype at = 0; at < fx.size();) {
        const qsizetype feed = fx.indexOf('\n', at);
        const qsizetype end = feed < 0 ? fx.size() : feed;
        const QByteArrayView line = trimmedOf(fx.sliced(at, end - at));
        at = end + 1;
        const qsizetype equals = beginsWith(line, "texture"_L1) ? line.indexOf('=') : -1;
        if (equals < 0 || !isName(trimmedOf(line.first(equals)), "texture"_L1))
            continue;
        const QString file = bitmapOf(ansi.decode(line.sliced(equals + 1)));
        if (!file.isEmpty() && !textures.contains(file, Qt::CaseInsensitive))
            textures.append(file);
    }
    return textures;
}

} // namespace vt::configfacts
