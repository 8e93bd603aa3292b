#include "ui/forms/PictureCommands.h"

#include "catalogue/DefaultPictures.h"
#include "shell/ErrorLog.h"
#include "shell/Settings.h"

using namespace Qt::StringLiterals;

namespace vt {

namespace {

using defaultpictures::Outcome;

Outcome
work(Frame& frame, Session& session, Outcome (*run)(Context&, Connection&, const Catalogue&))
{
    Context& context = session.context();
    const Working working(frame);
    context.services.files.newOperation();
    Catalogue& catalogue = session.catalogue();
    catalogue.refresh(context.services.files, context.services.ansi);
    const Outcome outcome = run(context, *session.database(), catalogue);
    for (const QString& problem : outcome.problems)
        context.errors.report(u"Default pictures"_s, problem);
    return outcome;
}

/// The sentence stays in the status bar; a box only tells of pictures that could not be used.
void tell(Session& session, const Outcome& outcome, const QString& text)
{
    Context& context = session.context();
    context.services.status.text(u"Primary"_s, text);
    if (!outcome.problems.isEmpty())
        context.services.prompts.ask(announcement(context.global.names.productTitle,
                                                  text + u"\n\n"_s + outcome.problems.first() +
                                                      u"\n\nAll that failed stands in ERROR.LOG."_s,
                                                  Icon::Warning));
}

void reload(frmControl& window, Session& session)
{
    Context& context = session.context();
    if (context.services.prompts.ask(defaultpictures::confirmReload(context.global.names)) !=
        Button::Yes)
        return;
    const Outcome outcome = work(window, session, &defaultpictures::assign);
    tell(session, outcome, outcome.assignedText());
}

void clear(frmControl& window, Session& session)
{
    const Outcome outcome = work(window, session, &defaultpictures::clear);
    tell(session, outcome, outcome.clearedText());
}

} // namespace

void wirePictures(frmControl& window, Session& session)
{
    window.setCommand(u"mnuClearDefaultPictures"_s,
                      [&window, &session] { clear(window, session); });
    window.setCommand(u"mnuReloadDefaultPictures"_s,
                      [&window, &session] { reload(window, session); });
}

void assignDefaultPicturesOnce(Frame& frame, Session& session)
{
    Settings& settings = session.context().settings;
    if (settings.flag(SettingKey::DefaultPicturesLoaded) || !session.database())
        return;
    if (!work(frame, session, &defaultpictures::assign).stopped)
        (void)settings.setFlag(SettingKey::DefaultPicturesLoaded, true);
}

} // namespace vt
