#include "catalogue/CatalogueStore.h"

#include <algorithm>

namespace vt::catalogue {

namespace {

/// Carries texts from one pool to another, each once.
class TextMover
{
public:
    TextMover(const TextPool& from, TextPool& to) : m_from(from), m_to(to), m_new(from.size(), 0) {}

    void move(TextId& id)
    {
        if (id == 0)
            return;
        TextId& known = m_new[id];
        if (known == 0)
            known = m_to.append(m_from.text(id));
        id = known;
    }

private:
    const TextPool& m_from;
    TextPool& m_to;
    std::vector<TextId> m_new;
};

constexpr TextId VariationRow::*variationTexts[] = {
    &VariationRow::section,
    &VariationRow::title,
    &VariationRow::sim,
    &VariationRow::model,
    &VariationRow::panel,
    &VariationRow::sound,
    &VariationRow::texture,
    &VariationRow::manufacturer,
    &VariationRow::type,
    &VariationRow::variation,
    &VariationRow::typeRole,
    &VariationRow::createdBy,
};
constexpr TextId ConfigRow::*configTexts[] = {
    &ConfigRow::name, &ConfigRow::alias, &ConfigRow::category, &ConfigRow::problem};

bool inside(quint32 first, quint32 count, size_t size)
{
    return size_t(first) + count <= size;
}

} // namespace

void TextPool::clear()
{
    m_units.clear();
    m_starts = {0, 0};
}

TextId TextPool::append(QStringView text)
{
    if (text.isEmpty())
        return 0;
    m_units.insert(m_units.end(), text.utf16(), text.utf16() + text.size());
    m_starts.push_back(quint32(m_units.size()));
    return size() - 1;
}

bool TextPool::restore(std::vector<char16_t> units, std::vector<quint32> starts)
{
    if (starts.size() < 2 || starts[0] != 0 || starts[1] != 0 || starts.back() != units.size() ||
        !std::is_sorted(starts.begin(), starts.end()))
        return false;
    m_units = std::move(units);
    m_starts = std::move(starts);
    return true;
}

bool Store::consistent() const
{
    const quint32 known = texts.size();
    const auto areaFits = [&](const AreaRow& row) { return row.folder < known; };
    const auto folderFits = [&](const FolderRow& row) {
        return row.area < areas.size() && row.name < known &&
               inside(row.firstConfig, row.configs, configs.size());
    };
    const auto configFits = [&](const ConfigRow& row) {
        return row.folder < folders.size() && row.kind >= ConfigKind::Aircraft &&
               row.kind <= ConfigKind::Watched &&
               inside(row.firstVariation, row.variations, variations.size()) &&
               inside(row.firstRef, row.refs, refs.size()) &&
               std::all_of(std::begin(configTexts), std::end(configTexts), [&](auto text) {
                   return row.*text < known;
               });
    };
    const auto variationFits = [&](const VariationRow& row) {
        return std::all_of(std::begin(variationTexts), std::end(variationTexts), [&](auto text) {
            return row.*text < known;
        });
    };
    const auto refFits = [&](const RefRow& row) {
        return row.name < known && row.kind >= RefKind::Effect && row.kind <= RefKind::Texture;
    };
    return std::all_of(areas.begin(), areas.end(), areaFits) &&
           std::all_of(folders.begin(), folders.end(), folderFits) &&
           std::all_of(configs.begin(), configs.end(), configFits) &&
           std::all_of(variations.begin(), variations.end(), variationFits) &&
           std::all_of(refs.begin(), refs.end(), refFits);
}

Store Store::compacted() const
{
    Store out;
    out.areas = areas;
    out.folders = folders;
    out.configs = configs;
    TextMover mover(texts, out.texts);
    for (AreaRow& row : out.areas)
        mover.move(row.folder);
    for (FolderRow& row : out.folders)
        mover.move(row.name);
    for (ConfigRow& row : out.configs) {
        for (const auto text : configTexts)
            mover.move(row.*text);
        const auto firstVariation = variations.begin() + row.firstVariation;
        row.firstVariation = quint32(out.variations.size());
        out.variations.insert(
            out.variations.end(), firstVariation, firstVariation + row.variations);
        const auto firstRef = refs.begin() + row.firstRef;
        row.firstRef = quint32(out.refs.size());
        out.refs.insert(out.refs.end(), firstRef, firstRef + row.refs);
    }
    for (VariationRow& row : out.variations) {
        for (const auto text : variationTexts)
            mover.move(row.*text);
    }
    for (RefRow& row : out.refs)
        mover.move(row.name);
    return out;
}

} // namespace vt::catalogue
