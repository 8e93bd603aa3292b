#include "remove/PartReferences.h"

#include "platform/Text.h"
#include "platform/WinPath.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt::partreferences {

namespace {

/// The texts in which panels and sounds differ; those of sounds name the add-on as well.
struct Words
{
    QString title;
    QString use;
    QString advice;
    QString choice;
    QString assign;
    QString shortForm;
    QString select;
    QString updating;
    QString updated;
    QString notUpdated;
};

const Words& wordsOf(Catalogue::Kind kind)
{
    static const Words sound = {
        u"Confirm Sound Removal"_s,
        u"The following addon(s) make use of the sound addon being removed:"_s,
        u"If you remove this sound addon, the addons listed above will no longer function properly. You can correct this problem by assigning new sound references for these addons."_s,
        u"Select Yes to remove the sound addon. Select No to abort."_s,
        u"Assign new sound references now"_s,
        u"Another addon uses the sound addon you are removing. Continue anyway?"_s,
        u"Select a sound to replace '"_s,
        u"Updating dependent sounds..."_s,
        u"Dependent sounds were updated to reference the replacement sound you selected."_s,
        u"Dependent sounds may NOT have been updated to reference the replacement sound you selected."_s};
    static const Words panel = {
        u"Confirm Panel Removal"_s,
        u"The following addon(s) make use of the panel being removed:"_s,
        u"If you remove this panel, the addons listed above will no longer function properly. You can correct this problem by assigning new panel references for these addons."_s,
        u"Select Yes to remove the panel. Select No to abort."_s,
        u"Assign new panel references now"_s,
        u"Another addon uses the panel you are removing. Continue anyway?"_s,
        u"Select a panel to replace '"_s,
        u"Updating dependent panels..."_s,
        u"Dependent panels were updated to reference the replacement panel you selected."_s,
        u"Dependent panels may NOT have been updated to reference the replacement panel you selected."_s};
    return kind == Catalogue::Kind::Sound ? sound : panel;
}

bool stays(const Catalogue& catalogue, ConfigIndex config, const Going& going)
{
    return !going.files.contains(NoCase{catalogue.file(config)});
}

/// The aircraft in whose folder the file lies, where one of its variations names the file's folder.
std::optional<ConfigIndex>
namingAircraft(const Catalogue& catalogue, ConfigIndex config, const Going& going)
{
    const auto aircraft = catalogue.find(catalogue.folder(config) + u"aircraft.cfg"_s);
    if (!aircraft || !stays(catalogue, *aircraft, going))
        return std::nullopt;
    for (const quint32 number : catalogue.variationsOf(*aircraft)) {
        if (catalogue.variation(number).addonKey != going.masterKey &&
            catalogue.configOf(number, catalogue.kind(config)) == config)
            return aircraft;
    }
    return std::nullopt;
}

} // namespace

QList<PartReference> find(const Catalogue& catalogue, Catalogue::Kind kind, const Going& going)
{
    QList<PartReference> out;
    for (const NoCase& part : going.parts) {
        const auto found = catalogue.find(part.text);
        if (!found || catalogue.kind(*found) != kind)
            continue;
        const ConfigIndex config = *found;
        PartReference reference;
        reference.file = catalogue.file(config);
        reference.name = catalogue.label(config);
        if (const auto aircraft = namingAircraft(catalogue, config, going)) {
            reference.direct = true;
            reference.users.append(catalogue.label(*aircraft));
        }
        for (const ConfigIndex alias : catalogue.aliasesOf(config)) {
            if (!stays(catalogue, alias, going))
                continue;
            reference.aliases.append(catalogue.file(alias));
            reference.users.append(catalogue.label(alias));
        }
        reference.users.removeDuplicates();
        if (!reference.users.isEmpty())
            out.append(reference);
    }
    std::sort(out.begin(), out.end(), [](const PartReference& a, const PartReference& b) {
        return a.file < b.file;
    });
    return out;
}

QList<StandIn> standIns(const Catalogue& catalogue, Catalogue::Kind kind, const Going& going)
{
    QList<StandIn> out;
    for (const ConfigIndex config : catalogue.configs(kind)) {
        // A sound without audio files can be no one's sound.
        const bool usable = catalogue.alias(config).isEmpty() &&
                            (kind == Catalogue::Kind::Panel || !catalogue.named(config).isEmpty());
        if (usable && stays(catalogue, config, going))
            out.append({catalogue.label(config), catalogue.file(config)});
    }
    std::stable_sort(out.begin(), out.end(), [](const StandIn& a, const StandIn& b) {
        return compareNoCase(a.name, b.name) < 0;
    });
    return out;
}

Prompt confirmRemoval(Catalogue::Kind kind, const QStringList& users, bool canAssign)
{
    const Words& words = wordsOf(kind);
    Prompt prompt =
        yesNo(words.title, canAssign ? words.use : words.shortForm, Button::No, Icon::Warning);
    prompt.list = users;
    if (!canAssign)
        return prompt;
    prompt.heading = u"One or more addons depend on the addon you are removing..."_s;
    prompt.advice = words.advice + u"\n\n"_s + words.choice;
    prompt.checkBox = words.assign;
    return prompt;
}

ChoicePrompt
selectStandIn(Catalogue::Kind kind, const QString& name, const QList<StandIn>& standIns)
{
    ChoicePrompt prompt{wordsOf(kind).select + name + u'\'', {}};
    for (const StandIn& one : standIns)
        prompt.choices.append(one.name);
    return prompt;
}

QString updatingText(Catalogue::Kind kind)
{
    return wordsOf(kind).updating;
}

QString updatedText(Catalogue::Kind kind, bool updated)
{
    return updated ? wordsOf(kind).updated : wordsOf(kind).notUpdated;
}

} // namespace vt::partreferences
