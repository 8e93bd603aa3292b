// The catalogue's facts as plain rows over one pool of texts: what a scan fills, the cache file
// holds and the catalogue answers from. Rows refer to texts and to ranges of other rows by number;
// ranges and texts that nothing refers to any more stay until compacted().
#pragma once

#include "platform/FolderReader.h"

#include <QByteArrayView>
#include <QString>
#include <QStringView>

#include <vector>

namespace vt::catalogue {

/// Number of a text; 0 is the empty one.
using TextId = quint32;

/// Stored in the cache file: never renumber.
enum class ConfigKind : quint8
{
    Aircraft = 1, ///< aircraft.cfg
    Panel = 2,    ///< panel.cfg
    Sound = 3,    ///< sound.cfg, soundai.cfg
    Model = 4,    ///< model.cfg
    Effect = 5,   ///< an effects file
    Watched = 6,  ///< no file: a folder that may come to hold one
};

/// Stored in the cache file: never renumber.
enum class RefKind : quint8
{
    Effect = 1,  ///< of an aircraft: base name of an effects file
    Gauge = 2,   ///< of a panel: collection, a gauge file or folder without its extension
    Bitmap = 3,  ///< of a panel: value as written (configfacts::bitmapOf)
    Wave = 4,    ///< of a sound: value as written (configfacts::waveOf)
    Texture = 5, ///< of an effect: file in "Effects\Texture\"
};

struct AreaRow
{
    TextId folder = 0;    ///< full path, ends in "\"
    quint32 effects = 0;  ///< 1: the effects folder, one FolderRow with an empty name
    quint32 settled = 0;  ///< 1: what changes later shows in the stamp
    quint32 reserved = 0; ///< 0
    DiskStamp stamp;
};

/// A folder that holds configuration files, such as one aircraft's.
struct FolderRow
{
    quint32 area = 0;
    TextId name = 0;
    quint32 firstConfig = 0;
    quint32 configs = 0;
    quint32 settled = 0;
    quint32 reserved = 0;
    DiskStamp stamp;
};

struct ConfigRow
{
    quint32 folder = 0;
    TextId name = 0; ///< relative to the folder, as on the disk: "panel.x\Panel.cfg"
    TextId alias = 0;
    TextId category = 0; ///< of an aircraft: "airplane"
    TextId problem = 0;  ///< why nothing, or not all, of it is known; the end of a sentence
    quint32 firstVariation = 0;
    quint32 variations = 0;
    quint32 firstRef = 0;
    quint32 refs = 0;
    ConfigKind kind = ConfigKind::Aircraft;
    quint8 settled = 0;
    quint16 reserved = 0;
    DiskStamp stamp;
};

struct VariationRow
{
    TextId section = 0;
    TextId title = 0;
    TextId sim = 0;
    TextId model = 0;
    TextId panel = 0;
    TextId sound = 0;
    TextId texture = 0;
    TextId manufacturer = 0;
    TextId type = 0;
    TextId variation = 0;
    TextId typeRole = 0;
    TextId createdBy = 0;
    quint32 addonKey = 0; ///< vt_texture_addon_master_key
};

/// A name in a configuration file, once however often it stands there in the same spelling.
struct RefRow
{
    TextId name = 0;
    RefKind kind = RefKind::Effect;
    quint8 reserved[3] = {};
};

/// Texts behind each other, known by their numbers.
class TextPool
{
public:
    TextPool() { clear(); }

    void clear();

    [[nodiscard]] QStringView text(TextId id) const
    {
        const quint32 from = m_starts[id];
        return QStringView(m_units.data() + from, qsizetype(m_starts[id + 1] - from));
    }

    [[nodiscard]] quint32 size() const { return quint32(m_starts.size() - 1); }

    /// A new text, though an equal one may be there.
    TextId append(QStringView text);

    [[nodiscard]] const std::vector<char16_t>& units() const { return m_units; }

    [[nodiscard]] const std::vector<quint32>& starts() const { return m_starts; }

    /// Takes over what units() and starts() gave; false, and nothing changes, when they do not fit.
    bool restore(std::vector<char16_t> units, std::vector<quint32> starts);

private:
    std::vector<char16_t> m_units;
    std::vector<quint32> m_starts; ///< one more than there are texts
};

struct Store
{
    TextPool texts;
    std::vector<AreaRow> areas;
    std::vector<FolderRow> folders;
    std::vector<ConfigRow> configs;
    std::vector<VariationRow> variations;
    std::vector<RefRow> refs;

    /// Whether every number points to something.
    [[nodiscard]] bool consistent() const;
    /// The same facts without what nothing refers to.
    [[nodiscard]] Store compacted() const;
};

} // namespace vt::catalogue
