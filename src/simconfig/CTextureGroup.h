// One repaint as a plan describes it: the variation of an aircraft that it becomes, the section
// that came with it, the folders that it brings. A plain value; CAircraft::Variant_Add() carries it
// out.
#pragma once

#include "simconfig/engine/LineArray.h"

#include <QString>

#include <optional>

namespace vt {

struct CTextureGroup
{
    // The source block: the lines of a section that came with the add-on (header first), else a
    // copy of the aircraft's own section.
    std::optional<LineArray> sarraySectionLines;
    QString sSourceSection;

    QString sTitle;       ///< empty: the block's own
    QString sVariation;   ///< ui_variation; empty: the block's own
    QString sDescription; ///< as others are told of it: "'Blue' in 'texture.blue'"

    // Folder suffixes ("blue", "Landor\G-CIVB"; empty for the plain folder). Set: taken as they
    // are. Not set: determined from the name of the folder in the source ("texture.blue"); where
    // that is empty too the block's own value stays.
    std::optional<QString> sTexture;
    std::optional<QString> sPanel;
    std::optional<QString> sSound;
    QString sTextureSource;
    QString sPanelSource;
    QString sSoundSource;

    qint64 lngAddonMasterKey = 0; ///< the add-on that brings it, 0 for none
};

/// What is told of a variation that is to be added together with others.
struct NewVariation
{
    QString title;
    QString variation;
    QString description;
};

} // namespace vt
