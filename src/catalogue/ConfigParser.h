// Takes from one configuration file's bytes what the catalogue knows of it, in one pass. Any line
// ends, any bytes: what cannot be understood gives fewer facts or a problem, never a failure.
// Sections and keys count as they do for the profile functions: the first of a name.
#pragma once

#include "catalogue/CatalogueStore.h"
#include "platform/AnsiCodec.h"

#include <QByteArrayView>

#include <vector>

namespace vt::catalogue {

/// Larger files are not read.
inline constexpr qint64 configLimit = 16 * 1024 * 1024;
/// Aircraft sections of one file; those beyond are left out, and a problem tells so.
inline constexpr quint32 variationLimit = 10'000;

/// Numbers of texts by their undecoded bytes, so that a name that stands in a thousand files is
/// decoded once.
class ByteTexts
{
public:
    ByteTexts(TextPool& pool, const AnsiCodec& ansi);

    [[nodiscard]] TextId idOf(QByteArrayView bytes);

private:
    struct Slot
    {
        quint32 hash = 0;
        TextId id = 0; ///< 0: free
        quint32 from = 0;
        quint32 size = 0;
    };

    void grow();

    TextPool& m_pool;
    const AnsiCodec& m_ansi;
    std::vector<Slot> m_slots;
    QByteArray m_bytes;
    quint32 m_used = 0;
};

class ConfigParser
{
public:
    /// Appends to \a store; both must outlive this.
    ConfigParser(Store& store, const AnsiCodec& ansi);

    /// Fills everything of \a row but its place, stamp and kind; the kind decides what is looked
    /// for.
    void parse(QByteArrayView bytes, ConfigRow& row);

private:
    /// Lines of a file, taken from the front.
    struct Lines
    {
        QByteArrayView rest;

        /// Without surrounding blanks; false at the end.
        bool next(QByteArrayView& line);
        /// Passes over what stands in front of the next line that may be a header.
        void skipToHeader();
    };

    void parseAircraft(Lines lines, ConfigRow& row);
    void parsePanel(Lines lines, ConfigRow& row);
    void parseSound(Lines lines, ConfigRow& row);
    void parseModel(Lines lines, ConfigRow& row);
    void parseEffect(QByteArrayView bytes);

    quint32 variationEntry(VariationRow& row, QByteArrayView line, quint32 seen);
    void effectEntry(QByteArrayView line);
    void gaugeEntry(QByteArrayView line);
    void bitmapEntry(QByteArrayView line);
    /// The value of an entry "alias", 0 for any other line.
    TextId aliasOf(QByteArrayView line);

    TextId valueText(QByteArrayView value);
    /// Once for each name in the file in hand.
    void addRef(RefKind kind, TextId name);

    Store& m_store;
    const AnsiCodec& m_ansi;
    ByteTexts m_values; ///< mostly each once
    ByteTexts m_names;  ///< few, over and over: a small table that stays in the processor's cache
    QByteArrayView m_lastCollection;    ///< neighbours mostly name the same one
    std::vector<quint32> m_namedInFile; ///< by text: number of the last file that named it
    quint32 m_file = 0;
};

} // namespace vt::catalogue
