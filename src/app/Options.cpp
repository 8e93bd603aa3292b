#include "app/Options.h"

using namespace Qt::StringLiterals;

namespace vt::app {

namespace {

Result wrong(const QString& text)
{
    return Result::failure(text + u"; see 'vantrel --help'."_s, ErrorKind::Usage);
}

void take(SessionOptions& session, const QString& name, const QString& value)
{
    if (name == u"--home")
        session.home = value;
    else if (name == u"--sim")
        session.sim = value;
    else if (name == u"--prefix")
        session.prefix = value;
    else
        session.drives.append(value);
}

} // namespace

QStringList optionsWithValue()
{
    return {u"--home"_s, u"--sim"_s, u"--prefix"_s, u"--drive"_s};
}

ResultOf<Options> optionsOf(const QStringList& arguments)
{
    Options options;
    options.arguments = arguments;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& word = arguments[i];
        if (word.startsWith(u"-file"_s, Qt::CaseInsensitive))
            break;
        const QString name = word.section(u'=', 0, 0);
        if (word == u"--help" || word == u"-h") {
            options.help = true;
        } else if (word == u"--version") {
            options.version = true;
        } else if (!optionsWithValue().contains(name)) {
            return wrong(u"There is no option '"_s + word + u'\'');
        } else if (name != word) {
            take(options.session, name, word.mid(name.size() + 1));
        } else if (++i < arguments.size()) {
            take(options.session, name, arguments[i]);
        } else {
            return wrong(u"The option '"_s + name + u"' needs a value"_s);
        }
    }
    return options;
}

QString usage()
{
    return uR"(Usage: vantrel [OPTIONS] [-file=PATH]

Vantrel: add-ons for Flight Simulator X, installed, kept and removed whole.

  -file=PATH      install this archive or folder; to the end of the line
  --home DIR      program folder; made when missing
  --sim DIR       simulator folder for this run
  --prefix DIR    Wine or Proton prefix to work with
  --drive X=DIR   a further drive letter; repeatable
  --version       say the version and end
  --help          say this and end
)"_s;
}

} // namespace vt::app
