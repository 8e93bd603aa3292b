// A text file that grows line by line (a log): begun anew through the gate, buffered, UTF-8 without
// a mark, CR LF. A log that cannot be written is given up without a word.
#pragma once

#include "platform/Gate.h"
#include "platform/HostFile.h"

#include <QByteArray>
#include <QStringView>

#include <initializer_list>

namespace vt {

class AppendFile
{
public:
    AppendFile() = default;
    /// Writes what is buffered.
    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    /// An existing file is begun anew.
    Result open(Gate& gate, const QString& path);

    void line(QStringView text) { line({text}); }

    /// A line that is told in pieces, which need not be joined first.
    void line(std::initializer_list<QStringView> pieces);
    /// Lines that end in CR LF already, UTF-8.
    void raw(QByteArrayView lines);
    void flush();

private:
    hostfile::Descriptor m_file;
    QByteArray m_buffer;
};

} // namespace vt
