#include "cli/World.h"

#include "cli/Command.h"
#include "cli/Console.h"
#include "platform/Utf8.h"
#include "shell/Results.h"

using namespace Qt::StringLiterals;

namespace vt::cli {

namespace {

constexpr qsizetype sayPiece = 64 * 1024;

QString kindName(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::Usage:
        return u"usage"_s;
    case ErrorKind::Surroundings:
    case ErrorKind::DiskFull:
    case ErrorKind::DiskFailed:
        return u"surroundings"_s;
    case ErrorKind::Declined:
        return u"declined"_s;
    case ErrorKind::None:
    case ErrorKind::Failed:
        break;
    }
    return u"failed"_s;
}

int exitOf(ErrorKind kind)
{
    switch (kind) {
    case ErrorKind::Usage:
        return WrongUsage;
    case ErrorKind::Surroundings:
    case ErrorKind::DiskFull:
    case ErrorKind::DiskFailed:
        return NotFit;
    case ErrorKind::Declined:
        return Declined;
    case ErrorKind::None:
    case ErrorKind::Failed:
        break;
    }
    return Partly;
}

} // namespace

Terminal::Terminal(GlobalOptions options)
    : m_options(std::move(options)), m_status(console::errorIsTerminal() && !m_options.quiet),
      m_prompts(console::inputIsTerminal() && console::errorIsTerminal(),
                m_options.answer,
                [this] { beforeOutput(); }),
      m_stream(m_options.json ? JsonStream::Sink(&console::output) : JsonStream::Sink())
{}

void Terminal::beforeOutput()
{
    console::output(m_said);
    m_said.clear();
    m_status.clear();
}

World::World(const GlobalOptions& options)
    : Terminal(options), Session(options.session, m_prompts, m_status)
{
    remark = [](const QString& sentence) { console::error(sentence + u'\n'); };
}

const GlobalOptions& World::options() const
{
    return m_options;
}

JsonStream& World::out()
{
    return m_stream;
}

void World::json(const QJsonValue& document)
{
    if (m_options.json)
        m_stream.value(document);
}

void World::say(const QString& line)
{
    if (m_options.json)
        return;
    sayPieces({line});
}

void World::sayPieces(std::initializer_list<QStringView> pieces)
{
    for (const QStringView piece : pieces)
        appendUtf8(m_said, piece);
    m_said += '\n';
    if (m_said.size() >= sayPiece)
        beforeOutput();
}

void World::say(const Results& results)
{
    if (m_options.json)
        return;
    for (const Results::Group& group : results.groups()) {
        if (group.entries.empty())
            continue;
        say(group.name + u':');
        for (const Results::Entry& entry : group.entries)
            sayPieces({u"  ", entry.subject, entry.phrase});
    }
}

int World::failElement(const Result& failed)
{
    const Result failure = withCause(failed);
    beforeOutput();
    console::error(failure.text + u'\n');
    m_stream.error(failure.text, kindName(failure.kind));
    return exitOf(failure.kind);
}

int World::fail(const Result& failed, const QJsonObject& done)
{
    const Result failure = withCause(failed);
    beforeOutput();
    console::error(failure.text + u'\n');
    if (m_stream.begun()) {
        m_stream.close(failure.text, kindName(failure.kind));
    } else {
        QJsonObject document = done;
        document.insert(
            u"error"_s,
            QJsonObject{{u"text"_s, failure.text}, {u"kind"_s, kindName(failure.kind)}});
        json(document);
    }
    return exitOf(failure.kind);
}

void World::finish()
{
    beforeOutput();
    if (m_options.json && !m_stream.begun())
        m_stream.value(QJsonValue(QJsonObject()));
    m_stream.close();
    m_stream.flush();
    close();
    beforeOutput();
}

} // namespace vt::cli
