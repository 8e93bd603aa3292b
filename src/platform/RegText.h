// The text form of registry files: value lines and escapes, as Wine keeps them and as exported
// registry files have them. Works on the bytes of a whole file; knows no hives.
#pragma once

#include "platform/Text.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt::regtext {

/// Names in the order of their first mention, each once without regard to case.
class NameList
{
public:
    void add(const QString& name)
    {
        if (m_known.contains({name}))
            return;
        m_known.insert({name});
        names += name;
    }

    void add(const QStringList& more)
    {
        for (const QString& name : more)
            add(name);
    }

    QStringList names;

private:
    QSet<NoCase> m_known;
};

/// One line "name"=data, or @=data for the name "".
struct ValueLine
{
    bool valid = false; ///< false for comments, blank and damaged lines
    QString name;
    std::optional<QString> text; ///< numbers as decimal text; nothing for bytes of other kinds
    qsizetype next = 0;          ///< offset of the first line behind it, continuation included
};

/// The line that begins at \a at.
[[nodiscard]] ValueLine readValue(QByteArrayView file, qsizetype at);

/// Offset of the line feed that ends the line at \a at, or the file's size.
[[nodiscard]] qsizetype lineEnd(QByteArrayView file, qsizetype at);

/// Wine's escapes (\\, \", \n, \0, octal, \x with up to four digits) resolved. Bytes above 0x7f
/// are UTF-8, or Latin-1 when they are not.
[[nodiscard]] QString unescaped(QByteArrayView text);

/// "name"="text" as one line without its end, in the form of exported files.
[[nodiscard]] QString writtenValue(const QString& name, const QString& text);

} // namespace vt::regtext
