// "INSTALL.LOG": what an installation decided and did, file by file. Lines only; it decides
// nothing.
#pragma once

#include "platform/AppendFile.h"

#include <QByteArray>
#include <QString>

namespace vt {

class InstallLog
{
public:
    /// Begins the file anew; a log that cannot be written is given up.
    void open(Gate& gate, const QString& path);

    void line(QStringView text) { m_file.line(text); }

    /// The separator before a file, with its target's name in upper case, and what is installed.
    void fileBegin(const QString& name, const QString& source, const QString& target);
    /// The line after a file.
    void fileEnd();

    /// Lines noted earlier (each with its CR LF).
    void raw(const QByteArray& lines) { m_file.raw(lines); }

    void flush() { m_file.flush(); }

private:
    AppendFile m_file;
};

/// Collects lines to be logged later.
class LogLines
{
public:
    void line(QStringView text)
    {
        m_bytes += text.toUtf8();
        m_bytes += "\r\n";
    }

    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

} // namespace vt
