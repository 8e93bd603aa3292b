#include "ui/CAddonPresentationManager.h"

#include "addondb/AddonDatabase.h"
#include "addondb/AddonFacts.h"
#include "install/InstallationEnd.h"
#include "platform/Text.h"
#include "remove/CAddonRemover.h"
#include "shell/Flying.h"
#include "shell/Settings.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Names that a question lists before it only counts.
constexpr qsizetype namesAsked = 10;

QStringList namesForQuestion(QStringList names)
{
    const qsizetype all = names.size();
    if (all <= namesAsked)
        return names;
    names.resize(namesAsked);
    names.append(u"and "_s + QString::number(all - namesAsked) + u" more"_s);
    return names;
}

QString addonWord(bool several)
{
    return several ? u"these addons?"_s : u"this addon?"_s;
}

/// What Yes will do, in one sentence.
QString consequence(const QList<AddonToRemove>& addons)
{
    const RemovalMethod method = addons.first().options.method;
    const bool same = std::all_of(addons.begin(), addons.end(), [method](const auto& addon) {
        return addon.options.method == method;
    });
    if (!same)
        return u"Each goes the way that was chosen for it."_s;
    const QString& folder = addons.first().options.toFolder;
    switch (method) {
    case RemovalMethod::Delete:
        return u"The files are deleted, and what they had replaced comes back."_s;
    case RemovalMethod::FileCabinet:
        return u"The files move to the File Cabinet, from where they can be reinstalled."_s;
    case RemovalMethod::Recreate:
        return u"The files move to '"_s + folder + u"'."_s;
    case RemovalMethod::RemoveRecords:
        return u"The files stay in the simulator; only the records go."_s;
    case RemovalMethod::Copy:
        return u"The files are copied to '"_s + folder + u"' and stay installed."_s;
    }
    Q_UNREACHABLE();
}

bool isCopy(const QList<AddonToRemove>& addons)
{
    return std::all_of(addons.begin(), addons.end(), [](const AddonToRemove& addon) {
        return addon.options.method == RemovalMethod::Copy;
    });
}

Prompt confirmReinstall(const QStringList& names)
{
    Prompt prompt = yesNo(u"Confirm Reinstall"_s,
                          u"Are you sure you want to reinstall "_s + addonWord(names.size() > 1),
                          Button::No);
    prompt.list = namesForQuestion(names);
    prompt.advice =
        u"The files are installed again from the File Cabinet or the source they came from."_s;
    return prompt;
}

QString reinstallEndText(bool several, bool good)
{
    if (several)
        return good ? u"The addons were reinstalled."_s
                    : u"At least one addon was not reinstalled properly."_s;
    return good ? u"The addon was reinstalled."_s : u"The addon was not reinstalled properly."_s;
}

} // namespace

Prompt confirmAddonRemoval(const QList<AddonToRemove>& addons)
{
    const bool copied = isCopy(addons);
    QStringList names;
    for (const AddonToRemove& addon : addons)
        names.append(addon.name);
    Prompt prompt = yesNo(copied ? u"Confirm Copy"_s : u"Confirm Removal"_s,
                          u"Are you sure you want to "_s + (copied ? u"copy "_s : u"remove "_s) +
                              addonWord(addons.size() > 1),
                          Button::No);
    prompt.list = namesForQuestion(names);
    prompt.advice = consequence(addons);
    return prompt;
}

QString removalEndText(bool copied, bool several, bool good)
{
    const QString verb = copied ? u"copied"_s : u"removed"_s;
    if (good)
        return (several ? u"The addons were "_s : u"The addon was "_s) + verb + u"."_s;
    return (several ? u"At least one addon was not "_s : u"The addon was not "_s) + verb +
           u" properly."_s;
}

void CAddonPresentationManager::say(const QString& text)
{
    m_session.services().status.text(u"Primary"_s, text);
}

/// "Removing 1 of 3..."; \a position from 0.
void CAddonPresentationManager::tellPlace(const QString& doing, qsizetype position, qsizetype count)
{
    say(doing + u' ' + QString::number(position + 1) + u" of "_s + QString::number(count) +
        u"..."_s);
}

void CAddonPresentationManager::announceEnd(const QString& caption,
                                            const AddonCommandEnd& end,
                                            const QStringList& causes)
{
    say(end.text);
    if (end.good)
        return;
    Prompt prompt = announcement(caption, end.text, Icon::Warning);
    prompt.list = namesForQuestion(causes);
    (void)m_session.services().prompts.ask(prompt);
}

AddonCommandEnd CAddonPresentationManager::Addons_Remove(const QList<AddonToRemove>& addons)
{
    AddonCommandEnd end;
    end.results = Results::forRemoval();
    if (addons.isEmpty())
        return end;
    Context& context = m_session.context();
    if (context.settings.flag(SettingKey::RemovalConfirm) &&
        context.services.prompts.ask(confirmAddonRemoval(addons)) != Button::Yes)
        return end;
    end.begun = true;
    const bool copied = isCopy(addons);
    QStringList causes;
    for (qsizetype i = 0; i < addons.size(); ++i) {
        if (context.services.status.cancelled()) {
            causes.append(u"'"_s + addons.at(i).name +
                          u"' and what follows it were left alone, because it was cancelled."_s);
            for (; i < addons.size(); ++i)
                end.failed.append(addons.at(i).key);
            break;
        }
        tellPlace(copied ? u"Copying"_s : u"Removing"_s, i, addons.size());
        RemovedAddon removed =
            removeAddon(context, *m_session.database(), addons.at(i).key, addons.at(i).options);
        if (!removed.result) {
            causes.append(removed.result.text);
            if (modDatabase_Addon::addon(*m_session.database(), removed.key))
                end.failed.append(removed.key);
        }
        if (removed.ended && addons.at(i).options.method != RemovalMethod::Copy)
            end.changed.append(removed.key);
        end.results.append(std::move(removed.results));
    }
    const bool several = addons.size() > 1;
    end.good = causes.isEmpty();
    end.text = removalEndText(copied, several, end.good);
    end.caption = several ? u"Removal Results"_s : removalResultsCaption(addons.first().name);
    announceEnd(copied ? u"Copy"_s : u"Removal"_s, end, causes);
    return end;
}

AddonCommandEnd CAddonPresentationManager::Addons_Reinstall(const QList<qint64>& keys)
{
    AddonCommandEnd end;
    end.results = Results::forInstallation();
    Context& context = m_session.context();
    QStringList names;
    for (const qint64 key : keys) {
        const auto addon = modDatabase_Addon::addon(*m_session.database(), key);
        names.append(addon ? addon->name : QString::number(key));
    }
    if (keys.isEmpty() || (context.settings.flag(SettingKey::ConfirmReinstall) &&
                           context.services.prompts.ask(confirmReinstall(names)) != Button::Yes))
        return end;
    end.begun = true;
    QStringList causes;
    for (qsizetype i = 0; i < keys.size() && !context.services.status.cancelled(); ++i) {
        tellPlace(u"Reinstalling"_s, i, keys.size());
        InstallationEnd one =
            reinstallAddon(context, *m_session.database(), keys.at(i), {}, {}, [this, &context] {
                return isSimulatorRunning(context, m_session.processes());
            });
        if (!one.result) {
            causes.append(textAbout(names.at(i), one.result.text));
            end.failed.append(keys.at(i));
        }
        if (one.recorded)
            end.changed.append(keys.at(i));
        end.results.append(std::move(one.results));
    }
    end.good = causes.isEmpty();
    end.text = reinstallEndText(keys.size() > 1, end.good);
    end.caption =
        keys.size() > 1 ? u"Reinstallation Results"_s : reinstallationResultsCaption(names.first());
    announceEnd(u"Reinstallation"_s, end, causes);
    return end;
}

void CAddonPresentationManager::validateOne(qint64 key, AddonCommandEnd& end)
{
    Context& context = m_session.context();
    const auto facts = AddonFacts::load(context, *m_session.database(), key);
    if (!facts) {
        end.good = false;
        end.results.add(u"Missing", facts.text);
        return;
    }
    const QList<DetailRecord>& files = facts->items.details();
    bool whole = true;
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i % 64 == 0)
            context.services.status.progress(i, files.size());
        const DetailRecord& file = files.at(i);
        const ItemState state = facts->state(context, *m_session.database(), file);
        whole = whole && state == ItemState::Ok;
        const QString path = file.location + file.name;
        if (state == ItemState::Missing)
            end.results.add(u"Missing", path, u" is missing."_s);
        else if (state == ItemState::Changed)
            end.results.add(u"Changed", path, u" was changed since it was installed."_s);
        else
            end.results.add(u"As Recorded", path, u" is as recorded."_s);
    }
    const Result verdict = facts->verdict(whole);
    end.text = verdict.text;
    end.good = end.good && whole;
    if (!whole)
        end.failed.append(key);
}

AddonCommandEnd CAddonPresentationManager::Addons_Validate(const QList<qint64>& keys)
{
    AddonCommandEnd end;
    end.results = Results({u"Missing"_s, u"Changed"_s, u"As Recorded"_s});
    if (keys.isEmpty())
        return end;
    end.begun = true;
    m_session.services().files.newOperation();
    for (qsizetype i = 0; i < keys.size() && !m_session.services().status.cancelled(); ++i) {
        tellPlace(u"Validating"_s, i, keys.size());
        validateOne(keys.at(i), end);
    }
    end.caption = u"Validation Results"_s;
    if (keys.size() > 1)
        end.text = end.good ? u"The addons are whole."_s : u"At least one addon is not whole."_s;
    say(end.text);
    return end;
}

bool CAddonPresentationManager::Addon_Change(qint64 key, const AddonChanges& changes)
{
    const Result done = changeAddon(m_session.context(), *m_session.database(), key, changes);
    if (!done)
        (void)m_session.services().prompts.ask(
            announcement(u"Edit Addon"_s, done.text, Icon::Warning));
    return done.ok;
}

} // namespace vt
