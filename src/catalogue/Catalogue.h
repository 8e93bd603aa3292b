// The installed aircraft, panels, sounds and effects, and who uses what: the one source for title
// checks, dependencies, choosers and lists. Knows files only; which add-on brought them is joined
// by others. What it hands out stays valid until the next refresh().
#pragma once

#include "catalogue/CatalogueScan.h"
#include "catalogue/CatalogueStore.h"
#include "platform/Services.h"
#include "simconfig/InstalledTitles.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace vt {

/// Number of a configuration file in the catalogue, from 0.
using ConfigIndex = quint32;

/// One variation as its section tells it; quotes and comments removed, "" for what is missing.
struct CatalogueVariation
{
    ConfigIndex config = 0; ///< its aircraft.cfg
    QStringView section;    ///< "fltsim.0", "hidden.fltsim.0"
    QStringView title;
    QStringView sim;
    QStringView model;
    QStringView panel;
    QStringView sound;
    QStringView texture;
    QStringView manufacturer;
    QStringView type;
    QStringView variation;
    QStringView typeRole;
    QStringView createdBy;
    qint64 addonKey = 0; ///< vt_texture_addon_master_key; 0: none
    /// The simulator does not show it: a section "hidden.fltsim.2", or a file "hidden.cfg". Its
    /// title is taken all the same.
    bool hidden = false;

    // What a list shows; never empty.
    [[nodiscard]] QString shownManufacturer() const; ///< "Unknown Manufacturer" when missing
    [[nodiscard]] QString shownType() const;         ///< the title when missing
    [[nodiscard]] QString shownVariation() const;    ///< the title, else the section
};

/// A configuration file that is not known whole, and why.
struct CatalogueProblem
{
    QString file;
    QString text; ///< one sentence that names the file
};

struct AircraftTypeGroup
{
    QString type;
    QList<quint32> variations; ///< numbers of variations, by name
};

struct ManufacturerGroup
{
    QString manufacturer;
    QList<AircraftTypeGroup> types;
};

class Catalogue final : public InstalledTitles
{
public:
    using Kind = catalogue::ConfigKind;

    /// \a global must outlive this.
    explicit Catalogue(const GlobalRecord& global) : m_global(global) {}

    /// What an earlier run saved, brought up to the disk. Writes nothing.
    void open(Services& services);
    /// Brings this up to the disk; changed files are read.
    catalogue::ScanCounts
    refresh(const Files& files, const AnsiCodec& ansi, qint64 nowNs = FolderReader::nowNs());
    /// For the next run, where something changed since open(). Only for whoever holds the program
    /// folder's lock.
    Result save(Services& services);

    // --- what is there ---

    [[nodiscard]] quint32 variationCount() const { return quint32(m_variations.size()); }

    /// In the order of folders, files and sections.
    [[nodiscard]] CatalogueVariation variation(quint32 number) const;

    [[nodiscard]] ConfigIndex configCount() const { return ConfigIndex(m_store.configs.size()); }

    [[nodiscard]] Kind kind(ConfigIndex config) const { return m_store.configs[config].kind; }

    /// Full path, spelled as on the disk.
    [[nodiscard]] QString file(ConfigIndex config) const;
    /// Full path of the aircraft's folder, ends in "\".
    [[nodiscard]] QString folder(ConfigIndex config) const;
    /// All of one kind, in the order of folders.
    [[nodiscard]] QList<ConfigIndex> configs(Kind kind) const;
    /// Without regard to case; nothing for a file that is not in the catalogue.
    [[nodiscard]] std::optional<ConfigIndex> find(QStringView file) const;
    /// Numbers of an aircraft.cfg's variations.
    [[nodiscard]] QList<quint32> variationsOf(ConfigIndex config) const;
    /// "Category" of an aircraft: "airplane", "helicopter".
    [[nodiscard]] QStringView category(ConfigIndex config) const;
    /// Manufacturer and type of the aircraft whose folder holds the file (the folder's name where
    /// they are missing), followed by the file's own folder: "Swift S2 (panel.ifr)".
    [[nodiscard]] QString label(ConfigIndex config) const;
    /// Sorted without regard to case.
    [[nodiscard]] QList<ManufacturerGroup> grouped() const;
    [[nodiscard]] QList<CatalogueProblem> problems() const;

    // --- titles ---

    [[nodiscard]] bool titleIsUsed(const QString& title,
                                   const QString& exceptFile,
                                   const QString& exceptSection) const override;
    [[nodiscard]] bool variationIsUsed(const QString& variation,
                                       const QString& exceptFile,
                                       const QString& exceptSection) const override;

    // --- references ---

    /// The "alias" of a panel, sound or model; empty for an original.
    [[nodiscard]] QStringView alias(ConfigIndex config) const;
    /// Where the alias leads; nothing for an original, and when nothing lies there.
    [[nodiscard]] std::optional<ConfigIndex> aliasTarget(ConfigIndex config) const;
    /// The files that are aliases of this one, directly.
    [[nodiscard]] QList<ConfigIndex> aliasesOf(ConfigIndex config) const;
    /// The panel.cfg, sound.cfg or model.cfg of a variation; nothing where there is none.
    [[nodiscard]] std::optional<ConfigIndex> configOf(quint32 variation, Kind kind) const;
    /// The variations that use a panel, sound or model, directly or over aliases.
    [[nodiscard]] QList<quint32> usersOf(ConfigIndex config) const;

    struct Named
    {
        catalogue::RefKind kind;
        QString name; ///< as catalogue::RefKind tells; of pictures and audio files the file
    };

    /// What a file names, in its order.
    [[nodiscard]] QList<Named> named(ConfigIndex config) const;

private:
    friend class UsedFiles;

    [[nodiscard]] QStringView text(catalogue::TextId id) const { return m_store.texts.text(id); }

    [[nodiscard]] const catalogue::FolderRow& folderRow(ConfigIndex config) const
    {
        return m_store.folders[m_store.configs[config].folder];
    }

    [[nodiscard]] bool isUsed(catalogue::TextId catalogue::VariationRow::*member,
                              const QString& value,
                              const QString& exceptFile,
                              const QString& exceptSection) const;
    void index();
    const QHash<NoCase, ConfigIndex>& byFile() const;
    /// Target of each file that is an alias, by alias.
    const QHash<ConfigIndex, ConfigIndex>& targets() const;

    const GlobalRecord& m_global;
    catalogue::Store m_store;
    bool m_unsaved = false;

    struct VariationPlace
    {
        quint32 row = 0;
        ConfigIndex config = 0;
    };

    std::vector<VariationPlace> m_variations;
    // Made when they are first asked for.
    mutable std::optional<QHash<NoCase, ConfigIndex>> m_byFile;
    mutable std::optional<QHash<ConfigIndex, ConfigIndex>> m_targets;
};

} // namespace vt
