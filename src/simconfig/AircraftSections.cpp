#include "simconfig/AircraftSections.h"

#include "platform/Text.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/ConfigNormalizer.h"
#include "simconfig/engine/modRoutines_INI.h"

#include <QSet>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace ini = vt::modRoutines_INI;

namespace vt::aircraftsections {

namespace {

using ByteLines = QList<QByteArray>;

/// Lines [first, end) from one header to the next.
struct Block
{
    QString name;
    int number = -1; ///< of an aircraft section
    int hidden = -1; ///< of a hidden one
    qsizetype first = 0;
    qsizetype end = 0;
};

QList<Block> blocksOf(const LineArray& lines)
{
    QList<Block> blocks;
    for (qsizetype i = 0; i < lines.lines.size(); ++i) {
        const std::optional<QString> name = ini::sectionOfLine(lines, lines.lines.at(i));
        if (!name)
            continue;
        if (!blocks.isEmpty())
            blocks.last().end = i;
        blocks.append({*name,
                       configfacts::aircraftSectionNumber(*name),
                       configfacts::hiddenSectionNumber(*name),
                       i,
                       lines.lines.size()});
    }
    return blocks;
}

QStringList namesOf(const QList<Block>& blocks)
{
    QStringList names;
    for (const Block& block : blocks)
        names.append(block.name);
    return names;
}

bool isBlank(const QByteArray& line)
{
    return line.trimmed().isEmpty();
}

/// Behind the block's last entry.
qsizetype lastEntryEnd(const LineArray& lines, const Block& block)
{
    qsizetype end = block.end;
    while (end > block.first + 1 && ini::isCommentOrBlank(lines.lines.at(end - 1)))
        --end;
    return end;
}

/// Behind the block's last line of its own. Comments right behind the entries belong to them unless
/// the next header follows directly: those stand above it.
qsizetype ownEnd(const LineArray& lines, const Block& block)
{
    const qsizetype end = lastEntryEnd(lines, block);
    qsizetype behind = end;
    while (behind < block.end && !isBlank(lines.lines.at(behind)))
        ++behind;
    const bool headerFollows = behind == block.end && block.end < lines.lines.size();
    return headerFollows ? end : behind;
}

/// The header line with another name between its brackets; what surrounds the name stays.
ResultOf<QByteArray> renamed(const LineArray& lines, const QByteArray& header, const QString& name)
{
    QString text = lines.decoded(header);
    qsizetype from = text.indexOf(u'[') + 1;
    qsizetype to = text.indexOf(u']', from);
    const auto blank = [&](qsizetype at) { return text.at(at) == u' ' || text.at(at) == u'\t'; };
    while (from < to && blank(from))
        ++from;
    while (to > from && blank(to - 1))
        --to;
    return lines.encoded(text.replace(from, to - from, name));
}

/// Gives the block another name and notes it.
Result rename(LineArray& lines, const Block& block, const QString& name, Renames& renames)
{
    if (equalNoCase(block.name, name))
        return Result::success();
    const ResultOf<QByteArray> header = renamed(lines, lines.lines.at(block.first), name);
    if (!header)
        return header.error();
    lines.lines[block.first] = *header;
    renames.append({block.name, name});
    return Result::success();
}

/// "FltSim.7" and 3 give "FltSim.3".
QString withNumber(const QString& name, qsizetype number)
{
    return name.first(name.lastIndexOf(u'.') + 1) + QString::number(number);
}

/// Visible and hidden sections in one order: a hidden one keeps the place that its number names,
/// the visible ones fill the others. Indices into \a blocks.
QList<qsizetype> wholeOrder(const QList<Block>& blocks)
{
    QList<qsizetype> visible;
    QList<qsizetype> hidden;
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        if (blocks.at(i).number >= 0)
            visible.append(i);
        else if (blocks.at(i).hidden >= 0)
            hidden.append(i);
    }
    const auto by = [&blocks](int Block::*number) {
        return [&blocks, number](qsizetype a, qsizetype b) {
            return blocks.at(a).*number < blocks.at(b).*number;
        };
    };
    std::stable_sort(visible.begin(), visible.end(), by(&Block::number));
    std::stable_sort(hidden.begin(), hidden.end(), by(&Block::hidden));
    QList<qsizetype> order;
    qsizetype nextHidden = 0;
    for (qsizetype nextVisible = 0; order.size() < visible.size() + hidden.size();) {
        const bool takeHidden =
            nextHidden < hidden.size() && (nextVisible == visible.size() ||
                                           blocks.at(hidden.at(nextHidden)).hidden <= order.size());
        order.append(takeHidden ? hidden.at(nextHidden++) : visible.at(nextVisible++));
    }
    return order;
}

Result checkOrder(const QList<Block>& blocks)
{
    const CAircraft::SectionOrder order = CAircraft::sectionOrder(namesOf(blocks));
    if (order.good || order.sorted.isEmpty())
        return Result::success();
    return Result::failure(u"The aircraft sections are out of continuous order ("_s + order.chain +
                           u"). Repair the aircraft first, then try again."_s);
}

Result noSuchSection(const QString& section)
{
    return Result::failure(u"There is no section '"_s + section +
                           u"' in the aircraft configuration file."_s);
}

/// An entry as a text with instructions shows it: nothing for a sentence that holds an "=".
std::optional<QByteArray> tidyEntry(const QByteArray& line)
{
    const QByteArray text = line.trimmed();
    const qsizetype equals = text.indexOf('=');
    const QByteArray key = equals > 0 ? text.first(equals).trimmed() : QByteArray();
    const auto plain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '.';
    };
    if (key.isEmpty() || !std::all_of(key.cbegin(), key.cend(), plain))
        return std::nullopt;
    return key + '=' + text.sliced(equals + 1).trimmed();
}

/// Whether a variation's section has entries of that key (lower case); others behind an empty line
/// of a text are its prose.
bool isVariationKey(const QByteArray& key)
{
    static const QSet<QByteArray> plain = {
        "title", "sim", "model", "panel", "sound", "texture", "description", "editable"};
    return plain.contains(key) || key.contains('_');
}

LineArray tidyBlock(const LineArray& lines, const Block& block)
{
    LineArray out(lines.ansi());
    out.lines = {lines.ansi().encode(u'[' + block.name + u']').value.value_or(QByteArray())};
    QSet<QByteArray> keys;
    bool prose = false;
    for (qsizetype i = block.first + 1; i < block.end; ++i) {
        prose = prose || (!keys.isEmpty() && isBlank(lines.lines.at(i)));
        const std::optional<QByteArray> entry = tidyEntry(lines.lines.at(i));
        const QByteArray key = entry ? entry->first(entry->indexOf('=')).toLower() : QByteArray();
        if (!entry || keys.contains(key) || (prose && !isVariationKey(key)))
            continue;
        keys.insert(key);
        out.lines.append(*entry);
    }
    return out;
}

LineArray linesOf(const LineArray& lines, const Block& block)
{
    LineArray out(lines.ansi());
    out.lines = lines.lines.sliced(block.first, lastEntryEnd(lines, block) - block.first);
    return out;
}

} // namespace

void follow(QString& section, const Renames& renames)
{
    for (const Rename& rename : renames) {
        if (!equalNoCase(rename.before, section))
            continue;
        section = rename.after;
        return;
    }
}

ResultOf<Renames> reorder(LineArray& lines)
{
    Renames renames;
    const QList<Block> blocks = blocksOf(lines);
    const CAircraft::SectionOrder order = CAircraft::sectionOrder(namesOf(blocks));
    if (order.good || order.sorted.isEmpty())
        return renames;
    LineArray edited = lines;
    QList<Block> aircraft;
    std::copy_if(blocks.cbegin(), blocks.cend(), std::back_inserter(aircraft), [](const Block& b) {
        return b.number >= 0;
    });
    std::stable_sort(aircraft.begin(), aircraft.end(), [](const Block& a, const Block& b) {
        return a.number < b.number;
    });
    for (qsizetype i = 0; i < aircraft.size(); ++i) {
        if (!rename(edited, aircraft.at(i), configfacts::aircraftSectionName(i), renames))
            return Result::failure(u"Error retrieving fltsim INI section."_s);
    }
    const bool closed = edited.lines.constLast().isEmpty(); // the last line has its end
    const qsizetype size = edited.lines.size() - (closed ? 1 : 0);
    ByteLines ordered = edited.lines.first(blocks.constFirst().first);
    const auto take = [&](const Block& block) {
        const qsizetype end = qMin(block.end, size);
        ordered += edited.lines.sliced(block.first, end - block.first);
        return end == size;
    };
    for (const Block& block : std::as_const(aircraft)) {
        // What ended the file has no empty line behind it yet.
        if (take(block) && !isBlank(ordered.constLast()))
            ordered.append(QByteArray());
    }
    for (const Block& block : blocks) {
        if (block.number < 0)
            take(block);
    }
    if (closed)
        ordered.append(QByteArray());
    lines.lines = ordered;
    return renames;
}

ResultOf<Renames> numberMeantOnes(LineArray& lines)
{
    Renames renames;
    const QList<Block> blocks = blocksOf(lines);
    const auto isAircraft = [](const Block& block) { return block.number >= 0; };
    if (std::any_of(blocks.cbegin(), blocks.cend(), isAircraft))
        return renames;
    LineArray edited = lines;
    for (const Block& block : blocks) {
        if (!startsWithNoCase(block.name, u"fltsim"))
            continue;
        const LineArray own = linesOf(lines, block);
        const auto has = [&](const QString& key) {
            return !ini::INI_Entry_Get(own, block.name, key).value_or(QString()).isEmpty();
        };
        if (!has(u"title"_s) && !has(u"sim"_s))
            continue;
        const QString name = configfacts::aircraftSectionName(renames.size());
        if (const Result done = rename(edited, block, name, renames); !done)
            return done;
    }
    lines = edited;
    return renames;
}

std::optional<LineArray> ownLines(const LineArray& lines, const QString& section)
{
    for (const Block& block : blocksOf(lines)) {
        if (equalNoCase(block.name, section))
            return linesOf(lines, block);
    }
    return std::nullopt;
}

void append(LineArray& lines, const QList<LineArray>& blocks)
{
    if (blocks.isEmpty())
        return;
    const QList<Block> present = blocksOf(lines);
    const Block* last = nullptr;
    for (const Block& block : present) {
        if (block.number >= 0 || block.hidden >= 0)
            last = &block;
    }
    ByteLines added;
    for (const LineArray& block : blocks) {
        if (last || !added.isEmpty())
            added.append(QByteArray());
        added += block.lines;
    }
    qsizetype at = last ? ownEnd(lines, *last) : 0;
    if (!last) {
        // Before all other sections, or behind a file of comments alone.
        added.append(QByteArray());
        const qsizetype end = lines.lines.size() - (lines.lines.constLast().isEmpty() ? 1 : 0);
        at = present.isEmpty() ? end : present.constFirst().first;
    }
    lines.lines = lines.lines.first(at) + added + lines.lines.sliced(at);
}

bool take(LineArray& lines, const QStringList& sections)
{
    QSet<NoCase> wanted;
    for (const QString& section : sections)
        wanted.insert(NoCase{section});
    ByteLines kept;
    qsizetype from = 0; // lines before this one are kept or gone already
    for (const Block& block : blocksOf(lines)) {
        if (!wanted.contains(NoCase{block.name}))
            continue;
        qsizetype first = block.first;
        qsizetype end = ownEnd(lines, block);
        if (first > from && isBlank(lines.lines.at(first - 1)))
            --first;
        else if (end + 1 < lines.lines.size() && isBlank(lines.lines.at(end)))
            ++end;
        kept += lines.lines.sliced(from, first - from);
        from = end;
    }
    if (from == 0)
        return false;
    kept += lines.lines.sliced(from);
    lines.lines = kept.isEmpty() ? ByteLines{QByteArray()} : kept;
    return true;
}

ResultOf<Renames> hide(LineArray& lines, const QString& section)
{
    const QList<Block> blocks = blocksOf(lines);
    if (const Result good = checkOrder(blocks); !good)
        return good;
    Renames renames;
    LineArray edited = lines;
    const QList<qsizetype> order = wholeOrder(blocks);
    bool found = false;
    for (qsizetype place = 0; place < order.size(); ++place) {
        const Block& block = blocks.at(order.at(place));
        Result done;
        if (!found && block.number >= 0 && equalNoCase(block.name, section)) {
            found = true;
            done = rename(edited,
                          block,
                          configfacts::hiddenStem.toString() + withNumber(block.name, place),
                          renames);
        } else if (found && block.number >= 0) {
            done = rename(edited, block, withNumber(block.name, block.number - 1), renames);
        }
        if (!done)
            return done;
    }
    if (!found)
        return noSuchSection(section);
    lines = edited;
    return renames;
}

ResultOf<Renames> show(LineArray& lines, const QString& section)
{
    const QList<Block> blocks = blocksOf(lines);
    if (const Result good = checkOrder(blocks); !good)
        return good;
    Renames renames;
    LineArray edited = lines;
    int visible = 0;
    bool found = false;
    for (const qsizetype index : wholeOrder(blocks)) {
        const Block& block = blocks.at(index);
        Result done;
        if (!found && block.hidden >= 0 && equalNoCase(block.name, section)) {
            found = true;
            done = rename(edited,
                          block,
                          withNumber(block.name.sliced(configfacts::hiddenStem.size()), visible),
                          renames);
        } else if (found && block.number >= 0) {
            done = rename(edited, block, withNumber(block.name, block.number + 1), renames);
        }
        if (!done)
            return done;
        visible += block.number >= 0 ? 1 : 0;
    }
    if (!found)
        return noSuchSection(section);
    lines = edited;
    return renames;
}

ResultOf<QList<LineArray>> blocksIn(const QByteArray& bytes, const AnsiCodec& ansi, Source source)
{
    const ResultOf<NormalizedConfig> normal = normalizeConfig(bytes, ansi);
    if (!normal)
        return normal.error();
    const LineArray lines = LineArray::ofBytes(normal->bytes, ansi);
    QList<LineArray> found;
    for (const Block& block : blocksOf(lines)) {
        constexpr QStringView stem = u"fltsim.";
        if (block.name.size() <= stem.size() || !startsWithNoCase(block.name, stem))
            continue;
        found.append(source == Source::Prose ? tidyBlock(lines, block) : linesOf(lines, block));
    }
    return found;
}

} // namespace vt::aircraftsections
