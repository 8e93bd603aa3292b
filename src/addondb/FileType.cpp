#include "addondb/FileType.h"

#include "platform/Text.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct TypeRow
{
    const char16_t* name;
    Families families;
    TypeGroup group;
};

// By code, from 1.
constexpr std::array<TypeRow, fileTypeCount> typeRows = {{
    {u"Aircraft", FamilyAircraft, TypeGroup::Single},
    {u"Aircraft Animator Moving Parts", 0, TypeGroup::Single},
    {u"Aircraft Animator Model", 0, TypeGroup::Single},
    {u"Aircraft Model", FamilyAircraft, TypeGroup::Single},
    {u"Cached Weapon Damage Profile", 0, TypeGroup::Mission},
    {u"Global Campaign Information", 0, TypeGroup::Mission},
    {u"Adventure", 0, TypeGroup::Mission},
    {u"Adventure Source", 0, TypeGroup::Mission},
    {u"Bitmap Image", FamilyTexture, TypeGroup::Texture},
    {u"Briefing", 0, TypeGroup::Mission},
    {u"Panel Gauge", FamilyPanel, TypeGroup::PanelFile},
    {u"Situation", 0, TypeGroup::Mission},
    {u"Flight", 0, TypeGroup::Flight},
    {u"Flight Plan", 0, TypeGroup::Mission},
    {u"Dynamic Mission Elements", 0, TypeGroup::Mission},
    {u"Mission", 0, TypeGroup::Mission},
    {u"Scenery", FamilyScenery, TypeGroup::Scenery},
    {u"Sound", FamilySound, TypeGroup::Single},
    {u"Video", 0, TypeGroup::Single},
    {u"Document", 0, TypeGroup::DocumentAndOther},
    {u"Other", 0, TypeGroup::DocumentAndOther},
    {u"Dynamic Link Library", 0, TypeGroup::PanelFile},
    {u"Font", 0, TypeGroup::Single},
    {u"Cabinet Archive", FamilyPanel, TypeGroup::PanelFile},
    {u"XML File", FamilyPanel, TypeGroup::PanelFile},
    {u"Weather Theme Binary", 0, TypeGroup::Single},
    {u"Texture", FamilyTexture, TypeGroup::Texture},
    {u"Effects", FamilyAircraft, TypeGroup::Single},
    {u"Landing Lights Source", 0, TypeGroup::Single},
    {u"Weather Resource", 0, TypeGroup::Single},
    {u"Weapon Damage Profile", 0, TypeGroup::Mission},
    {u"Weather Theme", 0, TypeGroup::Single},
    {u"Aircraft Texture", FamilyAircraft | FamilyTexture, TypeGroup::Texture},
    {u"Aircraft Configuration", FamilyAircraft, TypeGroup::AircraftConfiguration},
    {u"Model Configuration", FamilyAircraft, TypeGroup::Single},
    {u"Panel Configuration", FamilyPanel, TypeGroup::PanelConfiguration},
    {u"Sound Configuration", FamilySound, TypeGroup::SoundConfiguration},
    {u"Movie", 0, TypeGroup::Single},
    {u"Sound A.I. Configuration", 0, TypeGroup::SoundConfiguration},
    {u"Texture Configuration", 0, TypeGroup::Texture},
    {u"Sim Configuration", FamilyAircraft, TypeGroup::AircraftConfiguration},
    {u"Reward", 0, TypeGroup::Mission},
}};
static_assert(typeRows.size() == size_t(fileTypeCount) && typeRows.back().name != nullptr);

struct SuffixRow
{
    char16_t suffix[5]; ///< compared with the last four characters of the name
    FileType type;
};

// The order of comparison. ".me" can only equal a whole name, and there is no row for ".mpeg" that
// a longer name could match: both are as they have always been.
constexpr SuffixRow suffixRows[] = {
    {u".air", FileType::Aircraft},
    {u".mpi", FileType::AnimatorMovingParts},
    {u".nmp", FileType::AnimatorModel},
    {u".mdl", FileType::AircraftModel},
    {u".cdp", FileType::CachedWeaponDamageProfile},
    {u".adv", FileType::Adventure},
    {u".fsp", FileType::AdventureSource},
    {u".bmp", FileType::BitmapImage},
    {u".brf", FileType::Briefing},
    {u".gau", FileType::PanelGauge},
    {u".stn", FileType::Situation},
    {u".flt", FileType::Flight},
    {u".pln", FileType::FlightPlan},
    {u".bgl", FileType::Scenery},
    {u".xcl", FileType::Scenery},
    {u".wav", FileType::Sound},
    {u".mp3", FileType::Sound},
    {u".wma", FileType::Sound},
    {u".vid", FileType::Video},
    {u".fsr", FileType::Video},
    {u".doc", FileType::Document},
    {u".txt", FileType::Document},
    {u".diz", FileType::Document},
    {u".me", FileType::Document},
    {u".wri", FileType::Document},
    {u".1st", FileType::Document},
    {u".rtf", FileType::Document},
    {u".wps", FileType::Document},
    {u".2nd", FileType::Document},
    {u".now", FileType::Document},
    {u".htm", FileType::Document},
    {u"html", FileType::Document},
    {u".hlp", FileType::Document},
    {u".pdf", FileType::Document},
    {u".cfg", FileType::Document},
    {u".log", FileType::Document},
    {u".css", FileType::Document},
    {u".asf", FileType::Movie},
    {u".avi", FileType::Movie},
    {u".mov", FileType::Movie},
    {u".mpg", FileType::Movie},
    {u".wmv", FileType::Movie},
    {u".flv", FileType::Movie},
    {u".swf", FileType::Movie},
    {u".zip", FileType::Other},
    {u".rar", FileType::Other},
    {u".arc", FileType::Other},
    {u".arj", FileType::Other},
    {u".com", FileType::Other},
    {u".bat", FileType::Other},
    {u".exe", FileType::Other},
    {u".bas", FileType::Other},
    {u".ini", FileType::Other},
    {u".gif", FileType::Other},
    {u".tif", FileType::Other},
    {u".jpg", FileType::Other},
    {u".xls", FileType::Other},
    {u".mid", FileType::Other},
    {u".mp2", FileType::Other},
    {u".pic", FileType::Other},
    {u".wk1", FileType::Other},
    {u".lst", FileType::Other},
    {u".pcx", FileType::Other},
    {u".url", FileType::Other},
    {u".lnk", FileType::Other},
    {u".vtb", FileType::Other},
    {u".png", FileType::Other},
    {u".dll", FileType::DynamicLinkLibrary},
    {u".ttf", FileType::Font},
    {u".cab", FileType::CabinetArchive},
    {u".xml", FileType::XmlFile},
    {u".wtb", FileType::WeatherThemeBinary},
    {u".dds", FileType::Texture},
};

/// Up to four characters as one number; shorter texts never equal longer ones.
constexpr quint64 packedSuffix(const char16_t* text, qsizetype length)
{
    quint64 packed = 0;
    for (qsizetype i = 0; i < length; ++i)
        packed = packed << 16 | text[i];
    return packed;
}

constexpr qsizetype lengthOf(const char16_t* text)
{
    qsizetype length = 0;
    while (text[length] != u'\0')
        ++length;
    return length;
}

struct PackedRow
{
    quint64 packed;
    FileType type;
};

// No two rows share a suffix, so the sorted table answers as the ordered one would.
constexpr auto sortedSuffixes = [] {
    std::array<PackedRow, std::size(suffixRows)> rows{};
    for (size_t i = 0; i < rows.size(); ++i)
        rows[i] = {packedSuffix(suffixRows[i].suffix, lengthOf(suffixRows[i].suffix)),
                   suffixRows[i].type};
    std::sort(rows.begin(), rows.end(), [](const PackedRow& a, const PackedRow& b) {
        return a.packed < b.packed;
    });
    return rows;
}();
static_assert(std::adjacent_find(sortedSuffixes.begin(),
                                 sortedSuffixes.end(),
                                 [](const PackedRow& a, const PackedRow& b) {
                                     return a.packed == b.packed;
                                 }) == sortedSuffixes.end());

struct NameRow
{
    QStringView name;
    FileType type;
};

constexpr NameRow wholeNames[] = {
    {u"aircraft.cfg", FileType::AircraftConfiguration},
    {u"model.cfg", FileType::ModelConfiguration},
    {u"panel.cfg", FileType::PanelConfiguration},
    {u"sound.cfg", FileType::SoundConfiguration},
    {u"texture.cfg", FileType::TextureConfiguration},
    {u"soundai.cfg", FileType::SoundAIConfiguration},
    {u"sim.cfg", FileType::SimConfiguration},
    {u"hidden.cfg", FileType::AircraftConfiguration},
};

FileType bySuffix(QStringView lastFour)
{
    const quint64 packed = packedSuffix(lastFour.utf16(), lastFour.size());
    const auto row = std::lower_bound(sortedSuffixes.begin(),
                                      sortedSuffixes.end(),
                                      packed,
                                      [](const PackedRow& a, quint64 b) { return a.packed < b; });
    return row != sortedSuffixes.end() && row->packed == packed ? row->type : FileType::Unknown;
}

FileType byThreeCharacters(QStringView lastThree)
{
    if (lastThree == u".fx")
        return FileType::Effects;
    if (lastThree == u".ll")
        return FileType::LandingLightsSource;
    if (lastThree == u".wx")
        return FileType::WeatherResource;
    if (lastThree == u".dp")
        return FileType::WeaponDamageProfile;
    if (lastThree == u".wt")
        return FileType::WeatherTheme;
    return FileType::Unknown;
}

} // namespace

FileType classify(QStringView name, int generation)
{
    char16_t buffer[4] = {};
    const QStringView tail = name.last(qMin<qsizetype>(4, name.size()));
    for (qsizetype i = 0; i < tail.size(); ++i)
        buffer[i] = tail[i].toLower().unicode();
    const QStringView last(buffer, tail.size());

    FileType type = bySuffix(last);
    if (type == FileType::Unknown && last == u".rwd")
        type = generation == 4 ? FileType::Texture : FileType::Reward;
    else if (type == FileType::Unknown)
        type = isThumbnailBrowserFile(name) ? FileType::Other : FileType::Texture;

    if (const FileType replaced = byThreeCharacters(last.last(qMin<qsizetype>(3, last.size())));
        replaced != FileType::Unknown)
        type = replaced;
    if (last.size() == 4 && last[0] == u'.' && last.endsWith(u"af"))
        return FileType::AircraftTexture;

    if (last == u".cfg") {
        for (const NameRow& row : wholeNames) {
            if (row.name.size() == name.size() && equalNoCase(row.name, name))
                return row.type;
        }
    }
    return type;
}

QString fileTypeName(int code)
{
    if (code < 1 || code > fileTypeCount)
        return u"(Unknown)"_s;
    return QString::fromUtf16(typeRows[size_t(code) - 1].name);
}

Families familiesOf(FileType type)
{
    return type == FileType::Unknown ? Families(0) : typeRows[size_t(type) - 1].families;
}

const QStringList& familyNames(Families families)
{
    static const std::array<QStringList, 32> names = [] {
        const QStringList single = {
            u"aircraft"_s, u"panel"_s, u"texture"_s, u"scenery"_s, u"sound"_s};
        std::array<QStringList, 32> all;
        for (size_t bits = 0; bits < all.size(); ++bits) {
            for (int i = 0; i < single.size(); ++i) {
                if (bits & (size_t(1) << i))
                    all[bits].append(single.at(i));
            }
        }
        return all;
    }();
    return names[families & 31];
}

TypeGroup typeGroupOf(FileType type)
{
    return type == FileType::Unknown ? TypeGroup::Single : typeRows[size_t(type) - 1].group;
}

bool isSimulatorConfiguration(FileType type)
{
    switch (type) {
    case FileType::AircraftConfiguration:
    case FileType::ModelConfiguration:
    case FileType::PanelConfiguration:
    case FileType::SoundConfiguration:
    case FileType::SoundAIConfiguration:
    case FileType::TextureConfiguration:
    case FileType::SimConfiguration:
        return true;
    default:
        return false;
    }
}

bool isSimulatorModule(QStringView name)
{
    static constexpr QStringView modules[] = {
        u"FSSound.dll",
        u"FSUIPC.dll",
        u"ACSGPSda.dll",
        u"GaugeSound.dll",
        u"SOARRec.dll",
        u"TrafficInfo.dll",
        u"Autosave.dll",
        u"TCAS2v7.dll",
        u"ActiGate.dll",
    };
    return std::any_of(std::begin(modules), std::end(modules), [name](QStringView module) {
        return equalNoCase(module, name);
    });
}

bool isThumbnailBrowserFile(QStringView name)
{
    return equalNoCase(name, u"thumbs.db") || equalNoCase(name, u"pspbrwse.jbf");
}

} // namespace vt
