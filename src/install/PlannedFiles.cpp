#include "install/PlannedFiles.h"

#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

struct Known
{
    const CAddonInstallationDetails& details;
    const Files& files;
    QSet<QString> closed; ///< folders that are not written to
    QSet<qint32> doubled; ///< items that share their target with another one
    QHash<qint32, PlanProblem> problems;
};

PlannedFile skipped(const CAddon_Item& item, QString why)
{
    return {item.lngKey, PlannedState::Skipped, std::move(why)};
}

/// What becomes of an item whose target exists.
PlannedState stateOver(const CAddon_Item& item, const Known& known)
{
    if (known.details.mergesInto(item))
        return PlannedState::Merges;
    const auto existing = known.files.info(item.sFolder_Installation + item.sName_Installation);
    const bool same = existing && existing->size == item.size &&
                      known.details.compareDates(item, *existing) == DateOrder::Same;
    return same ? PlannedState::Same : PlannedState::Replaces;
}

PlannedFile planned(const CAddon_Item& item, const Known& known)
{
    const auto problem = known.problems.constFind(item.lngKey);
    const QString remark = problem == known.problems.constEnd() ? QString() : problem->text;
    if (!item.boolProcess)
        return skipped(item, {});
    if (!item.boolExtractable)
        return skipped(item, u"It cannot be extracted from the archive."_s);
    if (item.sFolder_Installation.isEmpty())
        return {item.lngKey,
                PlannedState::Problem,
                remark.isEmpty() ? plantext::noValidTargetFolder({}) : remark};
    if (known.doubled.contains(item.lngKey))
        return {item.lngKey,
                PlannedState::Problem,
                u"Another file has the same name and target folder."_s};
    if (problem != known.problems.constEnd() && problem->blocks)
        return {item.lngKey, PlannedState::Problem, remark};
    if (known.details.existingIsKept(item))
        return skipped(item, u"The file that stands there is kept."_s);
    if (known.closed.contains(item.sFolder_Installation))
        return skipped(
            item,
            remark.isEmpty()
                ? u"Its folder lies behind a link that leads out of the simulator's folder."_s
                : remark);
    return {
        item.lngKey, item.boolTargetExists ? stateOver(item, known) : PlannedState::New, remark};
}

} // namespace

QString plannedStateWord(PlannedState state)
{
    switch (state) {
    case PlannedState::New:
        return u"new"_s;
    case PlannedState::Replaces:
        return u"replaces"_s;
    case PlannedState::Same:
        return u"same"_s;
    case PlannedState::Merges:
        return u"adds to"_s;
    case PlannedState::Skipped:
        return u"not installed"_s;
    case PlannedState::Problem:
        break;
    }
    return u"problem"_s;
}

std::vector<PlannedFile>
plannedFiles(const CAddonInstallationDetails& details, const PlanFacts& facts, const Files& files)
{
    Known known{details, files, details.closedFolders(), {}, {}};
    for (const QList<qint32>& keys : details.addon().duplicateTargets())
        known.doubled.unite({keys.cbegin(), keys.cend()});
    for (const PlanProblem& problem : facts.problems) {
        // One that blocks tells more than a remark.
        const auto told = known.problems.constFind(problem.item);
        if (problem.item > 0 && (told == known.problems.constEnd() || !told->blocks))
            known.problems.insert(problem.item, problem);
    }
    std::vector<PlannedFile> out;
    out.reserve(details.addon().colAddonItems().size());
    for (const CAddon_Item& item : details.addon().colAddonItems())
        out.push_back(planned(item, known));
    return out;
}

PlannedTotals plannedTotals(const CAddonInstallationDetails& details)
{
    PlannedTotals totals;
    const QSet<QString> closed = details.closedFolders();
    for (const CAddon_Item& item : details.addon().colAddonItems()) {
        if (!details.willBePlaced(item, closed))
            continue;
        ++totals.files;
        totals.bytes += item.size;
    }
    return totals;
}

} // namespace vt
