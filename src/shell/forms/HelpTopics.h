// The topics of the help: texts in Markdown, brought along as a resource, and which window each is
// about.
#pragma once

#include <QList>
#include <QString>
#include <QUrl>

namespace vt {

struct HelpTopic
{
    QString name;  ///< of its file, without ".md": "file-cabinet"
    QString title; ///< its first heading
    QString text;  ///< Markdown
};

namespace helptopics {

/// In the order of reading; the first is the contents.
[[nodiscard]] QList<HelpTopic> all();
/// The name of the topic about a window, told by the topic's name or by the name of the window's
/// section ("Work With Addons"); the first topic for anything else.
[[nodiscard]] QString nameFor(const QString& wanted);
/// Where the text lies for a browser.
[[nodiscard]] QUrl address(const QString& name);
/// The name in an address; empty for one that is no topic.
[[nodiscard]] QString nameOf(const QUrl& address);
/// Whether every word stands in the topic, without regard to case.
[[nodiscard]] bool holds(const HelpTopic& topic, const QStringList& words);

} // namespace helptopics
} // namespace vt
