// An aircraft's panel: its panel.cfg, the gauges and bitmaps that it names, its window titles. What
// a panel shares with a sound (aliases, checking, mending) stands in AliasConfig.
#pragma once

#include "simconfig/AliasConfig.h"

namespace vt {

class CPanel final : public AliasConfig
{
public:
    /// Beside those of AliasConfig.
    enum State : int
    {
        NotValid = 5,
        NotBackedUp = 6,
    };

    /// \a files and \a global must outlive this.
    CPanel(ConfigAccess access, const Files& files, const GlobalRecord& global);

    /// "No target panel was provided.", ...; \a alias and \a simulatorName are named by some.
    [[nodiscard]] static QString
    State_GetMessage(int state, const QString& alias, const QString& simulatorName);
    using AliasConfig::State_GetMessage;

    struct Entry : NamedFile
    {
        bool isGauge = false;
        QString collection; ///< of a gauge: file or folder without extension, may hold folders
        QString gauge;      ///< name inside the collection; may be empty
        QString bitmap;     ///< relative to the panel folder; empty for what lies in no file
    };

    // Of the definition that is used, which for an alias is that of the panel it refers to.

    /// Gauges and bitmaps of all sections in file order.
    [[nodiscard]] QList<Entry> Entries_Get() const;
    /// Full paths of the gauge files that exist, each once; of a gauge that is a folder all of its
    /// files.
    [[nodiscard]] QStringList GaugeFiles_Existing_Get() const;
    /// The configuration file (its own too when it is an alias) and the bitmaps that exist.
    [[nodiscard]] QStringList PanelFiles_Get() const;

    struct Numbered
    {
        int number = 0;
        QString text;
    };

    /// "Window Titles": the two digits behind "window" and the title, in file order.
    [[nodiscard]] QList<Numbered> WindowTitles_Get() const;
    /// Sections "vcockpit" and two digits, with their "size_mm".
    [[nodiscard]] QList<Numbered> VCockpits_Get() const;

    /// Fails for an alias, whose pictures are those of another panel.
    [[nodiscard]] Result Pictures_CanBeCleared() const;

protected:
    [[nodiscard]] QString stateMessage(int state) const override;
    [[nodiscard]] bool defines(const LineArray& lines) const override;
    [[nodiscard]] QStringList missingLines(const LineArray& lines,
                                           const QString& folder) const override;
    [[nodiscard]] QList<StandIn> standIns(const LineArray& lines,
                                          const QString& folder) const override;
    [[nodiscard]] int unfitAsTarget(const Definition& target) const override;
    [[nodiscard]] int unfitAsAlias() const override;

private:
    static const Facts& facts();
    [[nodiscard]] static QList<Entry> entriesOf(const LineArray& lines);
    /// What lies at the place of a collection, by its full path without extension: a file, a folder
    /// (ends in "\"), or nothing. A panel names few collections and many gauges of each.
    using Collections = QHash<QString, QString>;

    [[nodiscard]] QString
    gaugePath(const QString& folder, const Entry& entry, Collections& collections) const;
    [[nodiscard]] QString collectionAt(const QString& place) const;
    [[nodiscard]] QString bitmapPath(const QString& folder, const QString& bitmap) const;
    [[nodiscard]] QString gaugeElsewhere(const QString& folder, const Entry& entry) const;
    [[nodiscard]] QString bitmapElsewhere(const QString& folder, const Entry& entry) const;
};

} // namespace vt
