#include "shell/forms/HelpTopics.h"

#include "shell/SettingsTable.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

/// A resource of a static library; cannot stand in a namespace.
static void bringHelpTopics()
{
    Q_INIT_RESOURCE(help);
}

namespace vt::helptopics {

namespace {

constexpr const char16_t* order[] = {
    u"contents",      u"how-to-use", u"install",      u"install-pages", u"install-options",
    u"remove",        u"addons",     u"file-cabinet", u"history",       u"browse",
    u"results",       u"optimize",   u"pictures",     u"flying",        u"way-back",
    u"traffic-tools", u"keyboard",   u"screen",       u"report",
};

struct About
{
    Section window;
    const char16_t* topic;
};

constexpr About windows[] = {
    {Section::InstallationWizard, u"install"},
    {Section::InstallSelectAddonFiles, u"install"},
    {Section::InstallConfigureAircraft, u"install-pages"},
    {Section::InstallConfigurePanel, u"install-pages"},
    {Section::InstallConfigureSound, u"install-pages"},
    {Section::InstallConfigureScenery, u"install-pages"},
    {Section::InstallConfigureTextures, u"install-pages"},
    {Section::InstallConfigureAITraffic, u"install-pages"},
    {Section::InstallConfigureMissions, u"install-pages"},
    {Section::InstallConfigureOther, u"install-pages"},
    {Section::InstallSetPicture, u"pictures"},
    {Section::AddAircraftVariant, u"install-pages"},
    {Section::InstallResolveConflicts, u"install-options"},
    {Section::InstallSetOptions, u"install-options"},
    {Section::InstallSummary, u"install-options"},
    {Section::RemovalWizard, u"remove"},
    {Section::RemoveSelectAddon, u"remove"},
    {Section::RemoveSetOptions, u"remove"},
    {Section::RemoveSummary, u"remove"},
    {Section::WorkWithAddons, u"addons"},
    {Section::AddonHistory, u"history"},
    {Section::SelectFSO, u"browse"},
    {Section::ProcessResults, u"results"},
    {Section::AITrafficManager, u"traffic-tools"},
    {Section::ProgramInfo, u"report"},
};

constexpr QStringView scheme = u"qrc";
constexpr QStringView folder = u"/vantrel/help/";
constexpr QStringView ending = u".md";

} // namespace

QList<HelpTopic> all()
{
    bringHelpTopics();
    QList<HelpTopic> topics;
    for (const char16_t* name : order) {
        HelpTopic topic{QString::fromUtf16(name), {}, {}};
        QFile file(u":"_s + address(topic.name).path());
        if (file.open(QIODevice::ReadOnly))
            topic.text = QString::fromUtf8(file.readAll());
        topic.title = topic.text.section(u'\n', 0, 0).mid(2);
        topics.append(topic);
    }
    return topics;
}

QString nameFor(const QString& wanted)
{
    for (const char16_t* name : order)
        if (wanted == QStringView(name))
            return wanted;
    const std::optional<Section> section = sectionNamed(wanted);
    for (const About& about : windows)
        if (section == about.window)
            return QString::fromUtf16(about.topic);
    return QString::fromUtf16(order[0]);
}

QUrl address(const QString& name)
{
    QUrl url;
    url.setScheme(scheme.toString());
    url.setPath(folder.toString() + name + ending.toString());
    return url;
}

QString nameOf(const QUrl& address)
{
    const QString path = address.path();
    return address.scheme() == scheme && path.startsWith(folder) && path.endsWith(ending)
               ? path.mid(folder.size(), path.size() - folder.size() - ending.size())
               : QString();
}

bool holds(const HelpTopic& topic, const QStringList& words)
{
    return std::all_of(words.begin(), words.end(), [&](const QString& word) {
        return topic.text.contains(word, Qt::CaseInsensitive);
    });
}

} // namespace vt::helptopics
