#include "shell/OuterLinks.h"

#include "shell/ErrorLog.h"
#include "shell/Settings.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace vt::outerlinks {

namespace {

// Stored as "link|target|link|target"; no Windows name holds a "|", a folder behind a link may.

QString written(QString target)
{
    return target.replace(u'%', u"%25"_s).replace(u'|', u"%7C"_s);
}

QList<OuterLink> remembered(Settings& settings)
{
    QList<OuterLink> links;
    const QStringList parts = settings.text(SettingKey::ConfirmedLinks).split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString target = parts[i + 1];
        links.push_back({parts[i], target.replace(u"%7C"_s, u"|"_s).replace(u"%25"_s, u"%"_s)});
    }
    return links;
}

Result remember(Context& context, const OuterLink& link)
{
    QList<OuterLink> links = remembered(context.settings);
    links.removeIf([&](const OuterLink& old) { return equalNoCase(old.link, link.link); });
    links.push_back(link);
    QStringList parts;
    for (const OuterLink& each : std::as_const(links))
        parts << each.link << written(each.target);
    if (!context.settings.setText(SettingKey::ConfirmedLinks, parts.join(u'|')))
        return Result::failure(u"The link '"_s + link.link + u"' cannot be remembered."_s);
    return context.settings.store(context.services.actions);
}

} // namespace

void attach(Gate& gate, Settings& settings)
{
    gate.linkConfirmed = [&settings](const OuterLink& link) {
        const QList<OuterLink> links = remembered(settings);
        return std::any_of(links.cbegin(), links.cend(), [&](const OuterLink& known) {
            return equalNoCase(known.link, link.link) && known.target == link.target;
        });
    };
}

Prompt question(const OuterLink& link)
{
    return yesNo(
        u"Confirm Link"_s,
        u"'"_s + link.link + u"' is a link that leads out, to '"_s + link.target +
            u"'. Is it your own, and may files be installed, replaced and removed there?\n\n"_s +
            u"Select Yes to use the link now and from now on, as long as it leads there. Select No to leave out the files behind it."_s,
        Button::No,
        Icon::Warning);
}

QList<OuterLink> confirm(Context& context, const QStringList& folders)
{
    const Gate& gate = context.services.gate;
    QList<OuterLink> closed;
    QSet<QString> seen;
    for (const QString& folder : folders) {
        if (seen.contains(folder))
            continue;
        seen.insert(folder);
        // Behind one link there may be another.
        while (const auto link = gate.outerLink(folder)) {
            if (closed.contains(*link))
                break;
            if (link->target.isEmpty() ||
                context.services.prompts.ask(question(*link)) != Button::Yes) {
                closed.push_back(*link);
                break;
            }
            if (Result kept = remember(context, *link); !kept)
                context.errors.report(u"outerlinks::confirm"_s, kept.text);
            if (gate.outerLink(folder) == link) {
                closed.push_back(*link); // what cannot be remembered is not used
                break;
            }
        }
    }
    return closed;
}

QString closedText(const OuterLink& link)
{
    if (link.target.isEmpty())
        return u"The link '"_s + link.link +
               u"' leads nowhere at present, so nothing was changed behind it."_s;
    return u"The link '"_s + link.link + u"' leads out, to '"_s + link.target +
           u"', and its use was not confirmed, so nothing was changed behind it."_s;
}

} // namespace vt::outerlinks
