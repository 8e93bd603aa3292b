#include "remove/BulkRepair.h"

#include "shell/RunStep.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

void goThrough(Repairable& object, BulkOutcome& outcome)
{
    if (object.suppressed()) {
        outcome.skipped.append(object.title());
        return;
    }
    BulkOutcome::Damage damage{object.title(), object.file(), object.verify(), {}};
    if (damage.problems.isEmpty()) {
        outcome.healthy.append(damage.title);
        return;
    }
    if (outcome.repairing)
        damage.repair = object.repair();
    outcome.damaged.append(damage);
}

QString shownTitle(const BulkOutcome::Damage& damage)
{
    const bool partly = damage.repair.code == RepairResult::PartlyRepaired;
    return partly ? damage.title + u" (partial)"_s : damage.title;
}

bool isRepaired(const BulkOutcome::Damage& damage)
{
    return damage.repair.code == RepairResult::FullyRepaired ||
           damage.repair.code == RepairResult::PartlyRepaired;
}

QString withoutMark(const QString& line)
{
    return line.startsWith(u"- ") ? line.sliced(2) : line;
}

/// What a report says of a damaged one beside its title.
QString detailsOf(const BulkOutcome::Damage& damage, bool repairing)
{
    QStringList lines = damage.repair.done;
    for (const QString& problem : repairing ? damage.repair.left : damage.problems)
        lines.append(withoutMark(problem));
    return lines.join(u'\n');
}

/// The groups of a report, its rows numbered through.
class ReportGroups
{
public:
    explicit ReportGroups(ReportList& list) : m_list(list) {}

    void begin(QStringView name) { m_list.groups.append({name.toString(), {}}); }

    void add(const QString& title, const QString& details = {})
    {
        m_list.groups.last().rows.append({QString::number(++m_order), title, details});
    }

private:
    ReportList& m_list;
    qsizetype m_order = 0;
};

} // namespace

QStringList BulkOutcome::repaired() const
{
    QStringList titles;
    for (const Damage& damage : damaged) {
        if (isRepaired(damage))
            titles.append(shownTitle(damage));
    }
    return titles;
}

QStringList BulkOutcome::notRepaired() const
{
    QStringList titles;
    for (const Damage& damage : damaged) {
        if (repairing && !isRepaired(damage))
            titles.append(damage.title);
    }
    return titles;
}

bool BulkOutcome::allWell() const
{
    return !cancelled && std::all_of(damaged.cbegin(), damaged.cend(), [](const Damage& damage) {
        return damage.repair.code == RepairResult::FullyRepaired;
    });
}

ReportList BulkOutcome::report() const
{
    ReportList list;
    list.title =
        (repairing ? u"Repair Summary Report for "_s : u"Verification Summary Report for "_s) +
        QString::number(healthy.size() + damaged.size() + skipped.size()) + u' ' + heading;
    list.columns = {u"Order"_s, u"Title"_s, u"Details"_s};
    ReportGroups groups(list);
    const auto addDamaged = [&](QStringView name, const auto& belongs) {
        groups.begin(name);
        for (const Damage& damage : damaged) {
            if (belongs(damage))
                groups.add(shownTitle(damage), detailsOf(damage, repairing));
        }
    };
    groups.begin(bulkgroup::healthy);
    for (const QString& title : healthy)
        groups.add(title);
    if (repairing) {
        addDamaged(bulkgroup::repaired, isRepaired);
        addDamaged(bulkgroup::notRepaired, [](const Damage& one) { return !isRepaired(one); });
    } else {
        addDamaged(bulkgroup::damaged, [](const Damage&) { return true; });
    }
    groups.begin(bulkgroup::skipped);
    for (const QString& title : skipped)
        groups.add(title);
    return list;
}

BulkOutcome runBulkRepair(Context& context, const BulkList& list, bool repair)
{
    StatusSink& status = context.services.status;
    status.text(u"Primary"_s,
                (repair ? u"Repairing "_s : u"Verifying "_s) + QString::number(list.count) + u' ' +
                    list.noun + u"..."_s);
    BulkOutcome outcome;
    outcome.heading = list.heading;
    outcome.repairing = repair;
    for (qsizetype i = 0; i < list.count && !outcome.cancelled; ++i) {
        status.progress(i, list.count);
        std::unique_ptr<Repairable> object;
        const Result gone = runStep(context, u"BulkRepair"_s, [&] {
            object = list.open(i);
            goThrough(*object, outcome);
        });
        if (!gone) {
            const QString title = object ? object->title() : QString::number(i + 1);
            outcome.damaged.append(
                {title, {}, {u"- "_s + gone.text}, {RepairResult::NotRepaired, {}, {gone.text}}});
        }
        outcome.cancelled = status.cancelled() && i + 1 < list.count;
    }
    status.progress(list.count, list.count);
    return outcome;
}

} // namespace vt
