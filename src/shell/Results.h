// The result groups of a multi-step operation: ordered, named groups of texts. A text is kept as
// subject and phrase, because tens of thousands of them share their phrases.
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

namespace vt {

class JsonStream;

/// Names of the groups, as shown.
namespace resultgroup {
inline constexpr QStringView installed = u"Installed";
inline constexpr QStringView notInstalled = u"Not Installed";
inline constexpr QStringView processed = u"Processed";
inline constexpr QStringView notProcessed = u"Not Processed";
inline constexpr QStringView specialActions = u"Special Actions";
inline constexpr QStringView failedSpecialActions = u"Failed Special Actions";

/// Whether the group of that name tells what was not done.
[[nodiscard]] bool tellsProblems(QStringView group);
} // namespace resultgroup

class Results
{
public:
    struct Entry
    {
        QString subject; ///< "C:\FSX\Effects\fx_a.fx"
        QString phrase;  ///< " was installed."; shared between entries

        [[nodiscard]] QString text() const { return subject + phrase; }
    };

    struct Group
    {
        QString name;
        std::vector<Entry> entries;
    };

    Results() = default;
    explicit Results(const QStringList& groups);
    /// "Installed", "Not Installed", "Special Actions", "Failed Special Actions"
    [[nodiscard]] static Results forInstallation();
    /// "Processed", "Not Processed", "Special Actions", "Failed Special Actions"
    [[nodiscard]] static Results forRemoval();

    /// A group that is not there yet is put behind the others.
    void add(QStringView group, QString subject, QString phrase = {});
    /// Why something at \a path failed, among the failed special actions; the path stands before a
    /// text that does not name it.
    void addCause(const QString& path, const QString& why);
    /// Appends every entry of \a other, group by group.
    void append(Results other);

    [[nodiscard]] const std::vector<Group>& groups() const { return m_groups; }

    [[nodiscard]] qsizetype count(QStringView group) const;
    [[nodiscard]] QStringList texts(QStringView group) const;
    /// Nothing was added to any group.
    [[nodiscard]] bool empty() const;

    /// An object from group name to list of texts, all groups, in order.
    void write(JsonStream& json) const;

private:
    std::vector<Group> m_groups;
};

} // namespace vt
