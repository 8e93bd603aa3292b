#include "simconfig/CSceneryCfgMgr.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/engine/INI_Lines.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt {

namespace {

constexpr QStringView areaStem = u"area.";
constexpr QStringView cacheStem = u"cache.";

/// The keys that an area's parameters are kept in.
enum AreaKey
{
    TitleKey,
    LocalKey,
    RemoteKey,
    ActiveKey,
    RequiredKey,
    LayerKey,
    AreaKeys,
    UnknownKey = AreaKeys,
};

constexpr std::array<QByteArrayView, 6> areaKeyNames = {
    "title", "local", "remote", "active", "required", "layer"};
static_assert(areaKeyNames.size() == AreaKeys);

AreaKey areaKeyOf(QByteArrayView key)
{
    for (size_t i = 0; i < areaKeyNames.size(); ++i) {
        if (ini::isKey(key, areaKeyNames[i]))
            return AreaKey(i);
    }
    return UnknownKey;
}

/// Titles and locations may hold what looks like a comment, so they are taken whole.
std::optional<ini::EntryView> areaEntry(QByteArrayView line)
{
    const QByteArrayView text = ini::trimmedBlanks(line);
    if (text.isEmpty() || text.front() == '[' || text.front() == '/' || text.front() == ';' ||
        text.front() == '\'')
        return std::nullopt;
    return ini::splitView(text);
}

/// One past the last entry line: what follows are blank lines and remarks on what comes next.
qsizetype bodyEnd(const QList<QByteArray>& lines)
{
    qsizetype end = lines.size();
    while (end > 1 && !areaEntry(lines.at(end - 1)))
        --end;
    return end;
}

bool isFlag(QByteArrayView value, QByteArrayView text)
{
    QByteArray room;
    return value.compare(text, Qt::CaseInsensitive) == 0 ||
           ini::strippedView(value, room).data.compare(text, Qt::CaseInsensitive) == 0;
}

/// Zero for what is no number or a negative one.
int layerOf(QByteArrayView value)
{
    bool ok = false;
    QByteArray room;
    const int plain = value.toInt(&ok);
    return std::max(0, ok ? plain : ini::strippedView(value, room).data.toInt());
}

qsizetype emptyAtEnd(const QList<QByteArray>& lines)
{
    qsizetype count = 0;
    while (count < lines.size() && lines.at(lines.size() - 1 - count).isEmpty())
        ++count;
    return count;
}

/// The digits at the beginning; no number comes near the bound.
int numberOf(QStringView text)
{
    int number = 0;
    for (const QChar c : text.trimmed()) {
        if (c < u'0' || c > u'9' || number > 9'999'999)
            break;
        number = number * 10 + c.digitValue();
    }
    return number;
}

QString describedArea(const CSceneryCfgItem& item)
{
    return u"\tArea="_s + QString::number(item.intArea) + u"\n\tTitle="_s + item.sTitle +
           u"\n\tLocal="_s + item.sLocal + u"\n\tActive="_s + sceneryFlagText(item.boolActive) +
           u"\n\tRequired="_s + sceneryFlagText(item.boolRequired) + u"\n\tLayer="_s +
           QString::number(item.intLayer);
}

} // namespace

CSceneryCfgMgr::CSceneryCfgMgr(ConfigAccess access, QString file, QString simulatorFolder)
    : m_access(access), m_file(std::move(file)),
      m_simulatorFolder(winpath::asFolder(simulatorFolder))
{
    parse({});
}

// --- loading -----------------------------------------------------------------------------------

Result CSceneryCfgMgr::SceneryCfg_Load()
{
    m_loaded.clear();
    parse({});
    if (!winpath::isAbsolute(m_file))
        return Result::failure(
            u"The scenery library's place is not known, because there is no drive C:; name the prefix that the simulator lives in, or the drive."_s,
            ErrorKind::Surroundings);
    m_stamp = FileStamp::of(m_access.actions, m_file);
    if (!m_stamp.exists())
        return Result::failure(u"Scenery configuration file '"_s + m_file + u"' was not found."_s,
                               ErrorKind::Surroundings);
    const ResultOf<QByteArray> bytes = ini::File_ReadAllText(m_access.actions, m_file);
    if (!bytes)
        return Result::failure(bytes.text, ErrorKind::Surroundings);
    if (Result editable = ini::checkEditable(*bytes, m_file); !editable)
        return editable;
    m_loaded = *bytes;
    parse(m_loaded);
    if (m_items.isEmpty())
        return Result::success(u"Scenery configuration file does not have any scenery areas."_s);
    return Result::success();
}

void CSceneryCfgMgr::parse(const QByteArray& bytes)
{
    m_blocks = {Block()};
    m_items.clear();
    m_ids.clear();
    m_byFolder.clear();
    m_foldersIndexed = false;
    m_source = bytes;
    const LineArray names(m_access.ansi);
    qsizetype start = 0;
    quint32 seen = 0;
    const auto closeBlock = [&](qsizetype end) {
        m_blocks.last().text = QByteArray::fromRawData(m_source.constData() + start, end - start);
    };
    forEachLine(m_source, [&](QByteArrayView line, qsizetype offset) {
        const std::optional<QString> name = ini::sectionOfLine(names, line);
        if (!name) {
            m_blocks.last().empty = false;
            if (m_blocks.constLast().kind == BlockKind::Area)
                readParameter(line, m_items.last(), seen);
            return;
        }
        if (!m_blocks.constLast().empty)
            closeBlock(offset - 2);
        start = offset;
        Block block;
        block.empty = false;
        if (startsWithNoCase(*name, areaStem)) {
            block.kind = BlockKind::Area;
            seen = 0;
            CSceneryCfgItem item;
            item.intArea = numberOf(QStringView(*name).sliced(areaStem.size()));
            m_items.push_back(item);
            m_ids.push_back(m_nextId++);
        } else if (startsWithNoCase(*name, cacheStem)) {
            block.kind = BlockKind::Cache;
        } else if (equalNoCase(*name, u"GENERAL")) {
            block.kind = BlockKind::General;
        }
        m_blocks.push_back(block);
    });
    if (!m_blocks.constLast().empty)
        closeBlock(m_source.size());
    recount();
}

/// Of a key that stands twice the first counts.
void CSceneryCfgMgr::readParameter(QByteArrayView line, CSceneryCfgItem& item, quint32& seen) const
{
    const std::optional<ini::EntryView> entry = areaEntry(line);
    const AreaKey key = entry ? areaKeyOf(entry->key) : UnknownKey;
    if (key == UnknownKey || (seen & (1U << key)) != 0)
        return;
    seen |= 1U << key;
    const auto text = [&] { return m_access.ansi.decode(ini::trimmedBlanks(entry->value)); };
    switch (key) {
    case TitleKey:
        item.sTitle = text();
        break;
    case LocalKey:
        item.sLocal = text();
        break;
    case RemoteKey:
        item.sRemote = text();
        break;
    case ActiveKey:
        item.boolActive = !isFlag(entry->value, "FALSE");
        break;
    case RequiredKey:
        item.boolRequired = isFlag(entry->value, "TRUE");
        break;
    case LayerKey:
        item.intLayer = layerOf(entry->value);
        break;
    case UnknownKey:
        break;
    }
}

// --- blocks ------------------------------------------------------------------------------------

CSceneryCfgMgr::ByteLines CSceneryCfgMgr::linesOf(const Block& block) const
{
    return block.empty ? ByteLines() : LineArray::ofBytes(block.text, m_access.ansi).lines;
}

void CSceneryCfgMgr::setLines(Block& block, const ByteLines& lines)
{
    block.empty = lines.isEmpty();
    block.text = lines.join("\r\n");
}

QByteArray CSceneryCfgMgr::joined() const
{
    QByteArray bytes;
    bytes.reserve(m_source.size() + 256 * (m_items.size() + 1));
    bool first = true;
    for (const Block& block : m_blocks) {
        if (block.empty)
            continue;
        if (!first)
            bytes.append("\r\n");
        first = false;
        bytes.append(block.text);
    }
    return bytes;
}

void CSceneryCfgMgr::recount()
{
    m_highestArea = 0;
    m_highestLayer = 0;
    for (const CSceneryCfgItem& item : std::as_const(m_items)) {
        m_highestArea = std::max(m_highestArea, item.intArea);
        m_highestLayer = std::max(m_highestLayer, item.intLayer);
    }
}

// --- looking up --------------------------------------------------------------------------------

qsizetype CSceneryCfgMgr::indexOfArea(int area) const
{
    const auto found = std::find_if(
        m_items.cbegin(), m_items.cend(), [&](const auto& item) { return item.intArea == area; });
    return found == m_items.cend() ? -1 : std::distance(m_items.cbegin(), found);
}

QString CSceneryCfgMgr::formOf(const QString& location) const
{
    if (location.isEmpty())
        return {};
    const bool rooted = winpath::isAbsolute(location) || location.startsWith(u"\\\\"_s);
    const QString whole = rooted ? location : winpath::join(m_simulatorFolder, location);
    return foldCase(winpath::asFolder(whole));
}

QString CSceneryCfgMgr::folderOf(const CSceneryCfgItem& item) const
{
    const QString& location = item.sLocal.isEmpty() ? item.sRemote : item.sLocal;
    if (location.isEmpty())
        return {};
    const bool rooted = winpath::isAbsolute(location) || location.startsWith(u"\\\\"_s);
    return winpath::asFolder(rooted ? location : winpath::join(m_simulatorFolder, location));
}

void CSceneryCfgMgr::indexFolders() const
{
    if (m_foldersIndexed)
        return;
    m_byFolder.clear();
    m_byFolder.reserve(m_items.size());
    for (qsizetype i = 0; i < m_items.size(); ++i)
        m_byFolder.insert(formOf(m_items.at(i).sLocal), m_ids.at(i));
    m_foldersIndexed = true;
}

QList<qsizetype> CSceneryCfgMgr::areasOfFolder(const QString& folder) const
{
    const QString form = formOf(folder);
    QList<qsizetype> found;
    if (form.isEmpty())
        return found;
    indexFolders();
    for (auto at = m_byFolder.constFind(form); at != m_byFolder.cend() && at.key() == form; ++at) {
        if (const qsizetype index = m_ids.indexOf(at.value()); index >= 0)
            found.push_back(index);
    }
    std::sort(found.begin(), found.end());
    return found;
}

qsizetype CSceneryCfgMgr::areaForFolder(const QString& folder, int recordedArea) const
{
    const QList<qsizetype> candidates = areasOfFolder(folder);
    for (const qsizetype index : candidates) {
        if (recordedArea > 0 && m_items.at(index).intArea == recordedArea)
            return index;
    }
    return candidates.isEmpty() ? -1 : candidates.constLast();
}

qsizetype CSceneryCfgMgr::blockOf(qsizetype index) const
{
    qsizetype areas = -1;
    for (qsizetype i = 0; i < m_blocks.size(); ++i) {
        if (m_blocks.at(i).kind == BlockKind::Area && ++areas == index)
            return i;
    }
    return -1;
}

// --- adding ------------------------------------------------------------------------------------

Prompt CSceneryCfgMgr::addQuestion(const CSceneryCfgItem& existing, const CSceneryCfgItem& proposed)
{
    return yesNo(
        u"Confirm Scenery Area Update"_s,
        u"An existing scenery area already covers the path of the files you are adding. Add the scenery area anyway?"_s +
            u"\n\n"_s + u"Existing area:"_s + u"\n"_s + describedArea(existing) + u"\n\n"_s +
            u"Proposed new area:"_s + u"\n"_s + describedArea(proposed) + u"\n\n"_s +
            u"Press Yes to add the proposed new scenery area or press No to leave the scenery library configuration as it is."_s,
        Button::No);
}

CSceneryCfgMgr::AddResult CSceneryCfgMgr::SceneryCfg_AddArea(
    const QString& title, const QString& folder, bool ask, bool active, bool required)
{
    AddResult result;
    result.code = NotAdded;
    CSceneryCfgItem item;
    item.intArea = m_highestArea + 1;
    item.intLayer = m_highestLayer + 1;
    item.sTitle = title.trimmed();
    item.sLocal = winpath::withoutTrailing(
        winpath::relativeTo(winpath::normalised(folder.trimmed()), m_simulatorFolder));
    item.boolActive = active;
    item.boolRequired = required;
    if (item.sTitle.isEmpty()) {
        result.text = u"Please provide a title for this scenery area."_s;
        return result;
    }
    if (item.sLocal.isEmpty()) {
        result.text = u"Please provide a location for this scenery area."_s;
        return result;
    }
    if (m_highestArea >= 99'999'999 || m_highestLayer == INT_MAX) {
        result.text =
            u"'"_s + m_file + u"' has no free number left above its highest area or layer."_s;
        return result;
    }
    const ResultOf<ByteLines> head = headLines(item);
    if (!head) {
        result.text = head.text;
        return result;
    }
    if (ask) {
        const qsizetype covering = areaForFolder(item.sLocal);
        if (covering >= 0 &&
            m_access.prompts.ask(addQuestion(m_items.at(covering), item)) != Button::Yes) {
            result.code = UserDeclined;
            return result;
        }
    }
    insertArea(item, *head);
    return {true, Added, QString(), item.intArea, item.intLayer};
}

ResultOf<CSceneryCfgMgr::ByteLines> CSceneryCfgMgr::headLines(const CSceneryCfgItem& item) const
{
    QStringList texts = {u"[Area."_s + QString::number(item.intArea).rightJustified(3, u'0') +
                             u"]"_s,
                         u"Title="_s + item.sTitle,
                         u"Active="_s + sceneryFlagText(item.boolActive)};
    if (item.intLayer > 0)
        texts.push_back(u"Layer="_s + QString::number(item.intLayer));
    texts.push_back(u"Required="_s + sceneryFlagText(item.boolRequired));
    if (!item.sRemote.isEmpty())
        texts.push_back(u"Remote="_s + item.sRemote);
    if (!item.sLocal.isEmpty())
        texts.push_back(u"Local="_s + item.sLocal);
    LineArray head(m_access.ansi);
    if (const Result appended = head.append(texts); !appended)
        return appended;
    return head.lines;
}

void CSceneryCfgMgr::insertArea(const CSceneryCfgItem& item, const ByteLines& head)
{
    ByteLines lines = head;
    lines.push_back(QByteArray());
    qsizetype place = m_blocks.size();
    while (place > 0 && m_blocks.at(place - 1).kind != BlockKind::Area)
        --place;
    if (place == 0) // no area yet
        place = m_blocks.size();
    // At the end of the file the new block must leave no trace when it goes again: each block owns
    // exactly one empty line behind it. A file that ends in an empty line keeps its line end last;
    // after any other the block's own empty line becomes the file's line end.
    if (place == m_blocks.size()) {
        ByteLines before = linesOf(m_blocks.constLast());
        if (emptyAtEnd(before) > 1) {
            before.removeLast();
            setLines(m_blocks.last(), before);
            lines.push_back(QByteArray());
        }
    }
    Block added;
    added.kind = BlockKind::Area;
    setLines(added, lines);
    m_blocks.insert(place, added);
    const int id = m_nextId++;
    if (m_foldersIndexed)
        m_byFolder.insert(formOf(item.sLocal), id);
    m_items.push_back(item);
    m_ids.push_back(id);
    m_highestArea = std::max(m_highestArea, item.intArea);
    m_highestLayer = std::max(m_highestLayer, item.intLayer);
}

// --- removing and changing ---------------------------------------------------------------------

bool CSceneryCfgMgr::SceneryCfg_RemoveArea(qsizetype index)
{
    if (index < 0 || index >= m_items.size())
        return false;
    const qsizetype place = blockOf(index);
    const ByteLines lines = linesOf(m_blocks.at(place));
    qsizetype end = bodyEnd(lines);
    if (end < lines.size() && lines.at(end).isEmpty())
        ++end;
    m_blocks.removeAt(place);
    if (end < lines.size()) {
        Block& before = m_blocks[place - 1];
        setLines(before, linesOf(before) + lines.sliced(end));
    }
    m_items.removeAt(index);
    m_ids.removeAt(index); // m_byFolder may keep the id: nothing is found by it any more
    recount();
    return true;
}

bool CSceneryCfgMgr::SceneryCfg_RemoveArea(const QString& folder, int recordedArea)
{
    return SceneryCfg_RemoveArea(areaForFolder(folder, recordedArea));
}

CSceneryCfgMgr::ByteLines CSceneryCfgMgr::rewritten(const Block& block, const ByteLines& head) const
{
    const ByteLines old = linesOf(block);
    const qsizetype end = bodyEnd(old);
    ByteLines lines = head;
    for (qsizetype i = 1; i < end; ++i) {
        const std::optional<ini::EntryView> entry = areaEntry(old.at(i));
        if (!entry || areaKeyOf(entry->key) == UnknownKey)
            lines.push_back(old.at(i));
    }
    return lines + old.sliced(end);
}

Result CSceneryCfgMgr::setArea(qsizetype index, const CSceneryCfgItem& item)
{
    if (index < 0 || index >= m_items.size())
        return Result::failure(u"The scenery library has no such scenery area."_s);
    if (m_items.at(index) == item)
        return Result::success();
    const ResultOf<ByteLines> head = headLines(item);
    if (!head)
        return head.error();
    Block& block = m_blocks[blockOf(index)];
    setLines(block, rewritten(block, *head));
    m_items[index] = item;
    m_foldersIndexed = false;
    recount();
    return Result::success();
}

Result CSceneryCfgMgr::setActive(qsizetype index, bool active)
{
    CSceneryCfgItem item = m_items.value(index);
    item.boolActive = active;
    return setArea(index, item);
}

// --- the whole file ----------------------------------------------------------------------------

LineArray CSceneryCfgMgr::lines() const
{
    return LineArray::ofBytes(joined(), m_access.ansi);
}

bool CSceneryCfgMgr::modified() const
{
    return joined() != m_loaded;
}

ConfigChange CSceneryCfgMgr::changes() const
{
    return {m_file, lineChanges(LineArray::ofBytes(m_loaded, m_access.ansi), lines())};
}

} // namespace vt
