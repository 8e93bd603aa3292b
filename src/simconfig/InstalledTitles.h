// What is asked of the aircraft that are installed when a new title or variation name is chosen.
// The catalogue answers; whoever checks names knows only this.
#pragma once

#include <QString>

namespace vt {

class InstalledTitles
{
public:
    virtual ~InstalledTitles() = default;

    /// Whether a variation other than \a exceptSection of \a exceptFile has this title. Raw values
    /// ("... Intl / HS-TBA") are compared, without regard to case; both exceptions may be empty.
    [[nodiscard]] virtual bool titleIsUsed(const QString& title,
                                           const QString& exceptFile,
                                           const QString& exceptSection) const = 0;
    /// The same of "ui_variation".
    [[nodiscard]] virtual bool variationIsUsed(const QString& variation,
                                               const QString& exceptFile,
                                               const QString& exceptSection) const = 0;
};

} // namespace vt
