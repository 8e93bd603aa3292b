#include "shell/Results.h"

#include "platform/Text.h"
#include "shell/JsonStream.h"

#include <algorithm>
#include <iterator>

namespace vt {

namespace {

template <typename Groups> auto groupNamed(Groups& groups, QStringView name)
{
    return std::find_if(groups.begin(), groups.end(), [name](const Results::Group& group) {
        return group.name == name;
    });
}

} // namespace

bool resultgroup::tellsProblems(QStringView group)
{
    return group.startsWith(u"Not ") || group.startsWith(u"Failed ") || group == u"Missing" ||
           group == u"Changed";
}

Results::Results(const QStringList& groups)
{
    for (const QString& name : groups)
        m_groups.push_back({name, {}});
}

Results Results::forInstallation()
{
    return Results({resultgroup::installed.toString(),
                    resultgroup::notInstalled.toString(),
                    resultgroup::specialActions.toString(),
                    resultgroup::failedSpecialActions.toString()});
}

Results Results::forRemoval()
{
    return Results({resultgroup::processed.toString(),
                    resultgroup::notProcessed.toString(),
                    resultgroup::specialActions.toString(),
                    resultgroup::failedSpecialActions.toString()});
}

void Results::add(QStringView group, QString subject, QString phrase)
{
    auto found = groupNamed(m_groups, group);
    if (found == m_groups.end())
        found = m_groups.insert(found, Group{group.toString(), {}});
    found->entries.push_back({std::move(subject), std::move(phrase)});
}

void Results::addCause(const QString& path, const QString& why)
{
    add(resultgroup::failedSpecialActions, textAbout(path, why));
}

void Results::append(Results other)
{
    for (Group& group : other.m_groups) {
        auto found = groupNamed(m_groups, group.name);
        if (found == m_groups.end())
            m_groups.push_back(std::move(group));
        else
            std::move(
                group.entries.begin(), group.entries.end(), std::back_inserter(found->entries));
    }
}

qsizetype Results::count(QStringView group) const
{
    const auto found = groupNamed(m_groups, group);
    return found == m_groups.end() ? 0 : static_cast<qsizetype>(found->entries.size());
}

QStringList Results::texts(QStringView group) const
{
    QStringList all;
    const auto found = groupNamed(m_groups, group);
    if (found == m_groups.end())
        return all;
    all.reserve(static_cast<qsizetype>(found->entries.size()));
    for (const Entry& entry : found->entries)
        all.append(entry.text());
    return all;
}

bool Results::empty() const
{
    return std::all_of(
        m_groups.begin(), m_groups.end(), [](const Group& group) { return group.entries.empty(); });
}

void Results::write(JsonStream& json) const
{
    json.beginObject();
    for (const Group& group : m_groups) {
        json.beginArray(group.name);
        if (json.wanted()) {
            for (const Entry& entry : group.entries)
                json.value(entry.text());
        }
        json.endArray();
    }
    json.endObject();
}

} // namespace vt
