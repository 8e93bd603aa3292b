#include "simconfig/VariationEdits.h"

#include "addondb/AddonDatabase.h"
#include "addondb/JournalTable.h"
#include "platform/FileTransaction.h"
#include "platform/FolderListing.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "simconfig/ConfigFacts.h"
#include "simconfig/engine/modRoutines_INI.h"

using namespace Qt::StringLiterals;

namespace vt::variationedits {

namespace {

constexpr qsizetype textureFilesLimit = 10'000;

using Changed = CAircraft::VariantsChanged;

/// What an edit does: stages its changes, telling what else is to be known; then records them.
struct Work
{
    std::function<ResultOf<Changed>(CAircraft&, FileActions&, QStringList& notes)> change;
    std::function<Result(const CAircraft&, const Changed&)> record;
};

/// The variation in the file as \a access sees it; one without "sim=" too.
ResultOf<CAircraft> variation(const ConfigAccess& access,
                              const Files& files,
                              const QString& file,
                              const QString& section)
{
    if (!files.isFile(file))
        return Result::failure(u"The aircraft configuration file '"_s + file +
                                   u"' was not found."_s,
                               ErrorKind::Surroundings);
    const bool isOne = configfacts::aircraftSectionNumber(section) >= 0 ||
                       configfacts::hiddenSectionNumber(section) >= 0;
    if (!isOne ||
        !modRoutines_INI::profileOf(access.actions, access.ansi, file).hasSection(section))
        return Result::failure(u"There is no variation '"_s + section + u"' in '"_s + file +
                               u"'."_s);
    CAircraft aircraft(access);
    (void)aircraft.Load(files.spelled(file), section);
    return aircraft;
}

ResultOf<Edited>
carryOut(const Surroundings& around, const QString& file, const QString& section, const Work& work)
{
    JournalTable journal(around.database, around.services.gate);
    FileTransaction transaction(around.services.gate, journal);
    const QString label = u"variations of '"_s + winpath::name(winpath::parent(file)) + u'\'';
    if (const Result begun = transaction.begin(OperationKind::Configuration, label); !begun)
        return begun;
    const ConfigAccess access(transaction, around.services.prompts, around.services.ansi);
    ResultOf<CAircraft> aircraft = variation(access, around.services.files, file, section);
    if (!aircraft)
        return aircraft.error();
    Edited edited;
    const ResultOf<Changed> changed = work.change(*aircraft, transaction, edited.notes);
    if (!changed)
        return changed.error();
    const ResultOf<QList<StepFailure>> applied =
        transaction.apply({}, [&] { return work.record(*aircraft, *changed); });
    if (!applied)
        return applied.error();
    if (!applied->isEmpty())
        return Result::failure(applied->constFirst().text);
    edited.file = aircraft->sConfigurationFile;
    edited.section = changed->sections.constFirst();
    edited.title = changed->titles.constFirst();
    for (const aircraftsections::Rename& rename : changed->renamed)
        edited.notes.append(u'[' + rename.before + u"] is ["_s + rename.after + u"] now."_s);
    if (!transaction.closingFailure().isEmpty())
        edited.notes.append(transaction.closingFailure());
    return edited;
}

/// Every file of a folder into another one.
Result copyFolder(FileActions& actions, const Files& files, const QString& from, const QString& to)
{
    const ResultOf<FolderListing> listing = listFolder(files, from, textureFilesLimit);
    if (!listing)
        return listing.error();
    if (listing->files.empty())
        return Result::failure(u"The folder '"_s + from + u"' holds no files to be copied."_s,
                               ErrorKind::Surroundings);
    for (const ListedFile& file : listing->files) {
        const QString relative = file.folder + file.name;
        const ResultOf<Fingerprint> placed =
            actions.place(to + relative, contentOfFile(files, from + relative, file));
        if (!placed)
            return placed.error();
    }
    return Result::success();
}

/// A whole aircraft may have been hidden by the name of its file. It comes back as aircraft.cfg.
ResultOf<Edited> showFile(const Surroundings& around, const QString& file)
{
    FileActions& actions = around.services.actions;
    const QString shown = winpath::parent(file) + u"aircraft.cfg"_s;
    if (around.services.files.exists(shown))
        return Result::failure(u"'"_s + file + u"' cannot be shown again, because there is an '"_s +
                               shown + u"' already."_s);
    if (const Result copied = actions.copy(file, shown); !copied)
        return copied;
    if (const Result gone = actions.remove(file); !gone)
        return gone;
    return Edited{shown, {}, winpath::name(winpath::parent(file)), {}};
}

} // namespace

ResultOf<Edited> add(const Surroundings& around,
                     const QString& file,
                     CTextureGroup group,
                     const QString& textureFolder,
                     const CAircraft::VariantSwitches& switches)
{
    if (!textureFolder.isEmpty() && group.sTextureSource.isEmpty()) {
        const QString name = winpath::name(textureFolder);
        group.sTextureSource =
            configfacts::isPartFolder(name, u"texture") ? name : u"texture."_s + name;
    }
    const auto change =
        [&](CAircraft& aircraft, FileActions& actions, QStringList& notes) -> ResultOf<Changed> {
        QList<CTextureGroup> groups = {group};
        ResultOf<Changed> added = aircraft.Variant_Add(groups, switches, around.global);
        if (!added || textureFolder.isEmpty())
            return added;
        const QString target =
            CAircraft::folderFor(aircraft.Folder_Aircraft_Get(),
                                 u"Texture"_s,
                                 groups.constFirst().sTexture.value_or(QString()));
        if (const Result copied = copyFolder(actions, around.services.files, textureFolder, target);
            !copied)
            return copied;
        notes.append(u"Its textures are in '"_s + target + u"'."_s);
        return added;
    };
    const auto record = [&](const CAircraft& aircraft, const Changed& added) {
        return aircraft.Variant_Add_UpdateDatabase(around.database, added);
    };
    return carryOut(around, file, group.sSourceSection, {change, record});
}

ResultOf<Edited> remove(const Surroundings& around,
                        const QString& file,
                        const QString& section,
                        const CAircraft::VariantRemoval& removal)
{
    const auto isRecorded = [&](const QString& path) {
        const auto owners = modDatabase_Addon::ownersOf(
            around.database, winpath::parent(path), winpath::name(path));
        return !owners || !owners->isEmpty(); // when it cannot be told, the file stays
    };
    const auto change =
        [&](CAircraft& aircraft, FileActions&, QStringList& notes) -> ResultOf<Changed> {
        CAircraft::VariantRemoval asked = removal;
        // What an add-on brought is not the simulator's, though its aircraft is.
        asked.original = asked.original && aircraft.LoadVTTextureAddonMasterKey() &&
                         aircraft.lngVTTextureAddonMasterKey <= 0;
        ResultOf<Changed> removed = aircraft.Variant_Remove(asked, around.global);
        if (removed)
            notes +=
                aircraft.Variant_Remove_DeleteCfgFilesAndFolder(around.services.files, isRecorded);
        return removed;
    };
    const auto record = [&](const CAircraft& aircraft, const Changed& removed) {
        return aircraft.Variant_Remove_UpdateDatabase(around.database, removed);
    };
    return carryOut(around, file, section, {change, record});
}

ResultOf<Edited>
setVisible(const Surroundings& around, const QString& file, const QString& section, bool visible)
{
    if (visible && equalNoCase(winpath::name(file), u"hidden.cfg") &&
        around.services.files.isFile(file))
        return showFile(around, file);
    const bool hiddenName = configfacts::hiddenSectionNumber(section) >= 0;
    if (!visible && hiddenName)
        return Result::failure(u"The variation '"_s + section + u"' is hidden already."_s);
    const auto change = [&](CAircraft& aircraft, FileActions&, QStringList&) {
        return visible ? aircraft.ShowAgain(around.global) : aircraft.Hide(around.global);
    };
    const auto record = [&](const CAircraft& aircraft, const Changed& changed) {
        return aircraft.Variants_Renamed_UpdateDatabase(around.database, changed.renamed);
    };
    return carryOut(around,
                    file,
                    visible && !hiddenName ? configfacts::hiddenStem.toString() + section : section,
                    {change, record});
}

} // namespace vt::variationedits
