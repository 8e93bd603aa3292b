#include "catalogue/ConfigParser.h"

#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/INI_Lines.h"

#include <cstring>
#include <unordered_set>

using namespace Qt::StringLiterals;

namespace vt::catalogue {

namespace {

/// Characters of a value that the simulator reads.
constexpr qsizetype valueLimit = 254;
/// No file has a longer name.
constexpr qsizetype nameLimit = 1024;

char lowerByte(char c)
{
    return c >= 'A' && c <= 'Z' ? char(c + 32) : c;
}

/// \a name is lower-case ASCII.
bool isWord(QByteArrayView text, QByteArrayView name)
{
    if (text.size() != name.size())
        return false;
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (lowerByte(text[i]) != name[i])
            return false;
    }
    return true;
}

QByteArrayView withoutBlanks(QByteArrayView text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    const char* from = text.data();
    const char* to = from + text.size();
    while (from < to && blank(*from))
        ++from;
    while (from < to && blank(to[-1]))
        --to;
    return {from, to - from};
}

/// The name of a header line; false for other lines.
bool headerOf(QByteArrayView line, QByteArrayView& name)
{
    if (line.isEmpty() || line.front() != '[')
        return false;
    const qsizetype close = line.indexOf(']');
    if (close < 0)
        return false;
    name = withoutBlanks(line.sliced(1, close - 1));
    return true;
}

/// Index of the "=" behind a key, -1 for lines without one.
qsizetype equalsIn(QByteArrayView line)
{
    const qsizetype equals = line.isEmpty() || line.front() == ';' ? -1 : line.indexOf('=');
    return equals > 0 ? equals : -1;
}

/// The line in front of its comment, by the engine's rules.
QByteArrayView dataOf(QByteArrayView line)
{
    const qsizetype comment = modRoutines_INI::commentStart(line);
    return comment < 0 ? line : withoutBlanks(line.first(comment));
}

quint32 hashOf(QByteArrayView bytes)
{
    quint64 hash = 0x9e3779b97f4a7c15ULL ^ quint64(bytes.size());
    const char* at = bytes.data();
    qsizetype left = bytes.size();
    while (left > 0) {
        quint64 piece = 0;
        std::memcpy(&piece, at, size_t(qMin<qsizetype>(left, 8)));
        hash = (hash ^ piece) * 0xff51afd7ed558ccdULL;
        hash ^= hash >> 32;
        at += 8;
        left -= 8;
    }
    return quint32(hash);
}

struct VariationKey
{
    QByteArrayView name;
    TextId VariationRow::*member;
};

constexpr VariationKey variationKeys[] = {
    {"title", &VariationRow::title},
    {"sim", &VariationRow::sim},
    {"model", &VariationRow::model},
    {"panel", &VariationRow::panel},
    {"sound", &VariationRow::sound},
    {"texture", &VariationRow::texture},
    {"ui_manufacturer", &VariationRow::manufacturer},
    {"ui_type", &VariationRow::type},
    {"ui_variation", &VariationRow::variation},
    {"ui_typerole", &VariationRow::typeRole},
    {"ui_createdby", &VariationRow::createdBy},
};
constexpr quint32 addonKeyBit = 1u << std::size(variationKeys);

/// Why a file is no text that can be read here; empty for one that is.
QString unreadable(QByteArrayView bytes)
{
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff"))
        return u"it is a UTF-16 text; save it as ANSI text."_s;
    if (bytes.contains('\0'))
        return u"it holds NUL characters, so it is no text."_s;
    return {};
}

} // namespace

// --- texts -------------------------------------------------------------------------------------

ByteTexts::ByteTexts(TextPool& pool, const AnsiCodec& ansi) : m_pool(pool), m_ansi(ansi) {}

TextId ByteTexts::idOf(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return 0;
    if (m_used * 2 >= m_slots.size())
        grow();
    const quint32 hash = hashOf(bytes);
    const size_t mask = m_slots.size() - 1;
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
        Slot& slot = m_slots[at];
        if (slot.id == 0) {
            slot = {hash,
                    m_pool.append(m_ansi.decode(bytes)),
                    quint32(m_bytes.size()),
                    quint32(bytes.size())};
            m_bytes.append(bytes);
            ++m_used;
            return slot.id;
        }
        if (slot.hash == hash && slot.size == bytes.size() &&
            std::memcmp(m_bytes.constData() + slot.from, bytes.data(), slot.size) == 0)
            return slot.id;
    }
}

void ByteTexts::grow()
{
    std::vector<Slot> old(qMax<size_t>(m_slots.size() * 2, 4096));
    old.swap(m_slots);
    const size_t mask = m_slots.size() - 1;
    for (const Slot& slot : old) {
        if (slot.id == 0)
            continue;
        size_t at = slot.hash & mask;
        while (m_slots[at].id != 0)
            at = (at + 1) & mask;
        m_slots[at] = slot;
    }
}

// --- lines -------------------------------------------------------------------------------------

bool ConfigParser::Lines::next(QByteArrayView& line)
{
    if (rest.isEmpty())
        return false;
    const char* begin = rest.data();
    const auto* feed = static_cast<const char*>(std::memchr(begin, '\n', size_t(rest.size())));
    const qsizetype length = feed ? feed - begin : rest.size();
    line = withoutBlanks({begin, length});
    rest = rest.sliced(feed ? length + 1 : length);
    return true;
}

void ConfigParser::Lines::skipToHeader()
{
    const char* const begin = rest.data();
    const char* const end = begin + rest.size();
    for (const char* from = begin; from < end;) {
        const auto* bracket = static_cast<const char*>(std::memchr(from, '[', size_t(end - from)));
        if (!bracket)
            break;
        const char* before = bracket;
        while (before > begin && (before[-1] == ' ' || before[-1] == '\t'))
            --before;
        if (before == begin || before[-1] == '\n') {
            rest = rest.sliced(before - begin);
            return;
        }
        from = bracket + 1;
    }
    rest = {};
}

// --- files -------------------------------------------------------------------------------------

ConfigParser::ConfigParser(Store& store, const AnsiCodec& ansi)
    : m_store(store), m_ansi(ansi), m_values(store.texts, ansi), m_names(store.texts, ansi)
{}

void ConfigParser::parse(QByteArrayView bytes, ConfigRow& row)
{
    row.firstVariation = quint32(m_store.variations.size());
    row.firstRef = quint32(m_store.refs.size());
    m_lastCollection = {};
    ++m_file;
    if (const QString why = unreadable(bytes); !why.isEmpty()) {
        row.problem = m_store.texts.append(why);
        return;
    }
    const Lines lines{bytes.startsWith("\xef\xbb\xbf") ? bytes.sliced(3) : bytes};
    switch (row.kind) {
    case ConfigKind::Aircraft:
        parseAircraft(lines, row);
        break;
    case ConfigKind::Panel:
        parsePanel(lines, row);
        break;
    case ConfigKind::Sound:
        parseSound(lines, row);
        break;
    case ConfigKind::Model:
        parseModel(lines, row);
        break;
    case ConfigKind::Effect:
        parseEffect(bytes);
        break;
    case ConfigKind::Watched:
        break;
    }
    row.variations = quint32(m_store.variations.size()) - row.firstVariation;
    row.refs = quint32(m_store.refs.size()) - row.firstRef;
}

void ConfigParser::parseAircraft(Lines lines, ConfigRow& row)
{
    enum class Inside
    {
        Other,
        Variation,
        General,
        Effects,
    };

    Inside inside = Inside::Other;
    std::unordered_set<quint64> names; ///< numbers with lengths: "fltsim.00" is another name
    VariationRow* variation = nullptr;
    quint32 seen = 0;
    bool generalSeen = false;
    bool tooMany = false;
    for (;;) {
        if (inside == Inside::Other)
            lines.skipToHeader();
        QByteArrayView line;
        if (!lines.next(line))
            break;
        QByteArrayView name;
        if (!headerOf(line, name)) {
            if (inside == Inside::Variation)
                seen = variationEntry(*variation, line, seen);
            else if (inside == Inside::Effects)
                effectEntry(line);
            else if (const qsizetype equals = equalsIn(line);
                     inside == Inside::General && row.category == 0 && equals > 0 &&
                     isWord(withoutBlanks(line.first(equals)), "category"))
                row.category = valueText(line.sliced(equals + 1));
            continue;
        }
        inside = Inside::Other;
        const int hidden = configfacts::hiddenSectionNumber(name);
        const int number = hidden >= 0 ? hidden : configfacts::aircraftSectionNumber(name);
        if (number >= 0) {
            const quint64 length = quint64(qMin<qsizetype>(name.size(), 255));
            if (!names.insert(quint64(number) << 9 | length << 1 | quint64(hidden >= 0)).second)
                continue;
            if (names.size() > variationLimit) {
                tooMany = true;
                continue;
            }
            inside = Inside::Variation;
            variation = &m_store.variations.emplace_back();
            variation->section = m_names.idOf(name);
            seen = 0;
        } else if (configfacts::isEffectSection(name)) {
            inside = Inside::Effects;
        } else if (!generalSeen && isWord(name, "general")) {
            inside = Inside::General;
            generalSeen = true;
        }
    }
    if (tooMany)
        row.problem =
            m_store.texts.append(u"it has more than "_s + QString::number(variationLimit) +
                                 u" aircraft sections; those beyond are left out."_s);
    else if (names.empty())
        row.problem = m_store.texts.append(u"it has no aircraft section, such as [fltsim.0]."_s);
}

void ConfigParser::parsePanel(Lines lines, ConfigRow& row)
{
    bool fltsim = false;
    bool fltsimSeen = false;
    QByteArrayView line;
    while (lines.next(line)) {
        if (line.isEmpty())
            continue;
        QByteArrayView name;
        switch (line.front()) {
        case '[':
            if (headerOf(line, name)) {
                fltsim = !fltsimSeen && isWord(name, "fltsim");
                fltsimSeen = fltsimSeen || fltsim;
            }
            break;
        case 'g':
        case 'G':
            if (configfacts::isGaugeKey(line))
                gaugeEntry(line);
            break;
        case 'f':
        case 'F':
        case 'p':
        case 'P':
            bitmapEntry(line);
            break;
        default:
            if (fltsim && row.alias == 0)
                row.alias = aliasOf(line);
        }
    }
}

void ConfigParser::parseSound(Lines lines, ConfigRow& row)
{
    bool fltsim = false;
    bool fltsimSeen = false;
    QByteArrayView line;
    while (lines.next(line)) {
        QByteArrayView name;
        if (headerOf(line, name)) {
            fltsim = !fltsimSeen && isWord(name, "fltsim");
            fltsimSeen = fltsimSeen || fltsim;
        } else if (!line.isEmpty() && lowerByte(line.front()) == 'f') {
            const QByteArrayView data = dataOf(line);
            const qsizetype equals = equalsIn(data);
            if (equals < 0 || !configfacts::isWaveKey(withoutBlanks(data.first(equals))))
                continue;
            const QByteArrayView value = withoutBlanks(data.sliced(equals + 1));
            if (value.size() <= nameLimit)
                addRef(RefKind::Wave, m_names.idOf(value));
        } else if (fltsim && row.alias == 0) {
            row.alias = aliasOf(line);
        }
    }
}

void ConfigParser::parseModel(Lines lines, ConfigRow& row)
{
    bool fltsim = false;
    bool fltsimSeen = false;
    QByteArrayView line;
    while (lines.next(line)) {
        QByteArrayView name;
        if (headerOf(line, name)) {
            fltsim = !fltsimSeen && isWord(name, "fltsim");
            fltsimSeen = fltsimSeen || fltsim;
        } else if (fltsim && row.alias == 0) {
            row.alias = aliasOf(line);
        }
    }
}

void ConfigParser::parseEffect(QByteArrayView bytes)
{
    const QStringList textures = configfacts::effectTexturesOf(bytes, m_ansi);
    for (const QString& texture : textures) {
        const ResultOf<QByteArray> encoded = m_ansi.encode(texture);
        addRef(RefKind::Texture, encoded ? m_names.idOf(*encoded) : m_store.texts.append(texture));
    }
}

// --- entries -----------------------------------------------------------------------------------

quint32 ConfigParser::variationEntry(VariationRow& row, QByteArrayView line, quint32 seen)
{
    const qsizetype equals = equalsIn(line);
    if (equals < 0)
        return seen;
    const QByteArrayView key = withoutBlanks(line.first(equals));
    for (quint32 i = 0; i < std::size(variationKeys); ++i) {
        if (!isWord(key, variationKeys[i].name))
            continue;
        if ((seen & 1u << i) == 0)
            row.*variationKeys[i].member = valueText(line.sliced(equals + 1));
        return seen | 1u << i;
    }
    if ((seen & addonKeyBit) != 0 || !isWord(key, "vt_texture_addon_master_key"))
        return seen;
    row.addonKey = configfacts::plainValue(line.sliced(equals + 1)).toByteArray().toUInt();
    return seen | addonKeyBit;
}

void ConfigParser::effectEntry(QByteArrayView line)
{
    if (line.isEmpty() || line.front() == '/' || line.front() == ';')
        return;
    const QByteArrayView data = dataOf(line);
    const qsizetype equals = equalsIn(data);
    if (equals < 0)
        return;
    const QByteArrayView effect = configfacts::effectOf(data.sliced(equals + 1));
    if (!effect.isEmpty() && effect.size() <= nameLimit)
        addRef(RefKind::Effect, m_names.idOf(effect));
}

void ConfigParser::gaugeEntry(QByteArrayView line)
{
    qsizetype equals = equalsIn(line);
    if (equals < 0)
        return;
    // A comment matters only where it begins in front of the first comma.
    const qsizetype comma = line.indexOf(',', equals);
    QByteArrayView named = comma < 0 ? line : line.first(comma);
    const auto marks = [](QByteArrayView text) {
        for (const char c : text) {
            if (c == '/' || c == ';' || c == '\'')
                return true;
        }
        return false;
    };
    if (marks(named)) {
        named = dataOf(line);
        equals = equalsIn(named);
        if (equals < 0)
            return;
    }
    const auto gauge = configfacts::gaugeOf(named.sliced(equals + 1));
    if (gauge.collection.size() > nameLimit || gauge.collection == m_lastCollection)
        return;
    m_lastCollection = gauge.collection;
    addRef(RefKind::Gauge, m_names.idOf(gauge.collection));
}

void ConfigParser::bitmapEntry(QByteArrayView line)
{
    const QByteArrayView data = dataOf(line);
    const qsizetype equals = equalsIn(data);
    if (equals < 0 || !configfacts::isBitmapKey(withoutBlanks(data.first(equals))))
        return;
    const QByteArrayView value = withoutBlanks(data.sliced(equals + 1));
    if (value.size() <= nameLimit)
        addRef(RefKind::Bitmap, m_names.idOf(value));
}

TextId ConfigParser::aliasOf(QByteArrayView line)
{
    const qsizetype equals = equalsIn(line);
    if (equals < 0 || !isWord(withoutBlanks(line.first(equals)), "alias"))
        return 0;
    const QByteArrayView value = configfacts::plainValue(line.sliced(equals + 1));
    return value.size() <= nameLimit ? m_names.idOf(value) : 0;
}

TextId ConfigParser::valueText(QByteArrayView value)
{
    value = withoutBlanks(value);
    if (value.size() > 1 && value.front() == '\'' && value.back() == '\'') // as profiles are read
        value = value.sliced(1, value.size() - 2);
    value = configfacts::plainValue(value);
    return m_values.idOf(value.size() <= valueLimit ? value : value.first(valueLimit));
}

void ConfigParser::addRef(RefKind kind, TextId name)
{
    if (name == 0)
        return;
    if (name >= m_namedInFile.size())
        m_namedInFile.resize(qMax<size_t>(name + 1, m_namedInFile.size() * 2), 0);
    // A panel's picture and its gauge of one name are two.
    const quint32 stamp = m_file << 3 | quint32(kind);
    if (m_namedInFile[name] == stamp)
        return;
    m_namedInFile[name] = stamp;
    m_store.refs.push_back({name, kind, {}});
}

} // namespace vt::catalogue
