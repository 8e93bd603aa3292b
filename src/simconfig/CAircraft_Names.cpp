// Titles and variation names of an aircraft: shown, checked, made unique.
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/CAircraft.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/InstalledTitles.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The other new variation that has the name already, or null.
const NewVariation*
otherWith(const NameChecks& checks, QString NewVariation::*name, const QString& value)
{
    if (!checks.others)
        return nullptr;
    const auto found = std::find_if(
        checks.others->cbegin(), checks.others->cend(), [&](const NewVariation& other) {
            return equalNoCase((other.*name).trimmed(), value.trimmed());
        });
    return found == checks.others->cend() ? nullptr : &*found;
}

} // namespace

QString CAircraft::Name_Get() const
{
    QStringList parts;
    if (!startsWithNoCase(sType, sManufacturer))
        parts.append(sManufacturer);
    if (!sType.isEmpty())
        parts.append(sType);
    if (!parts.isEmpty() && !sVariation.isEmpty())
        parts.append(sVariation);
    parts.removeAll(QString());
    if (!parts.isEmpty())
        return parts.join(u' ');
    return sTitle.isEmpty() ? winpath::name(Folder_Aircraft_Get()) : sTitle;
}

bool CAircraft::IsHidden() const
{
    return configfacts::hiddenSectionNumber(sSection) >= 0 ||
           equalNoCase(winpath::name(sConfigurationFile), u"hidden.cfg");
}

Result CAircraft::Title_Validate(const QString& title, const NameChecks& checks) const
{
    if (title.trimmed().isEmpty())
        return Result::failure(u"Please provide an aircraft title."_s);
    if (checks.installed &&
        checks.installed->titleIsUsed(title.trimmed(), checks.exceptFile, checks.exceptSection))
        return Result::failure(
            u"Specified title is used by another aircraft. Please enter a unique title name."_s);
    if (const NewVariation* other = otherWith(checks, &NewVariation::title, title))
        return Result::failure(other->description + u" already uses that title."_s);
    return Result::success();
}

Result CAircraft::Variation_Validate(const QString& variation, const NameChecks& checks) const
{
    if (variation.trimmed().isEmpty())
        return Result::failure(u"Please provide a variation name."_s);
    if (checks.installed && checks.installed->variationIsUsed(
                                variation.trimmed(), checks.exceptFile, checks.exceptSection))
        return Result::success(u"Warning: another aircraft variant uses this variation name."_s);
    if (const NewVariation* other = otherWith(checks, &NewVariation::variation, variation))
        return Result::success(u"Warning: "_s + other->description +
                               u" already uses that variation name."_s);
    return Result::success();
}

QString CAircraft::Title_FixDuplicate(const QString& title, const NameChecks& checks) const
{
    // Many new variations may have the same title: the others are not walked for each number.
    QSet<NoCase> taken;
    if (checks.others) {
        for (const NewVariation& other : *checks.others)
            taken.insert(NoCase{other.title.trimmed()});
    }
    NameChecks installedOnly = checks;
    installedOnly.others = nullptr;
    QString unique = title.trimmed();
    for (int number = 2; !unique.isEmpty() &&
                         (taken.contains(NoCase{unique}) || !Title_Validate(unique, installedOnly));
         ++number)
        unique = title.trimmed() + u' ' + QString::number(number);
    return unique;
}

} // namespace vt
