// One call of vantrelctl: the session behind it, and what the terminal gets to see.
#pragma once

#include "cli/TerminalPrompts.h"
#include "cli/TerminalStatus.h"
#include "session/Session.h"
#include "shell/JsonStream.h"

#include <QJsonObject>
#include <QString>
#include <QStringView>

#include <initializer_list>

namespace vt {
class Results;
} // namespace vt

namespace vt::cli {

struct GlobalOptions
{
    SessionOptions session;
    bool json = false;
    QString answer = QStringLiteral("default");
    bool quiet = false;
};

/// What a session at a terminal is built over: questions, progress, output.
class Terminal
{
protected:
    explicit Terminal(GlobalOptions options);

    /// Writes what was said, and takes the progress bar off the screen.
    void beforeOutput();

    GlobalOptions m_options;
    TerminalStatus m_status;
    TerminalPrompts m_prompts;
    JsonStream m_stream;
    QByteArray m_said;
};

class World : private Terminal, public Session
{
public:
    explicit World(const GlobalOptions& options);

    [[nodiscard]] const GlobalOptions& options() const;

    /// The one JSON document on standard output, to be written piece by piece; without --json it
    /// goes nowhere. A command uses either this or json().
    [[nodiscard]] JsonStream& out();
    /// One whole JSON document on standard output (only with --json).
    void json(const QJsonValue& document);
    /// Text for people on standard output (nothing with --json).
    void say(const QString& line);
    /// The groups that are not empty with their texts, for people (nothing with --json).
    void say(const Results& results);
    /// One sentence on standard error; with --json also {"error": {...}} merged into \a done, or
    /// into the document that out() has begun (an array is closed without it).
    /// Returns the exit status that belongs to the kind of failure.
    int fail(const Result& failed, const QJsonObject& done = {});
    /// The same for one element of a list: {"error": {...}} goes into the object that out() has
    /// open, and the command goes on.
    int failElement(const Result& failed);
    /// After the command: completes the JSON document, clears the progress bar.
    void finish();

private:
    /// One line.
    void sayPieces(std::initializer_list<QStringView> pieces);
};

} // namespace vt::cli
