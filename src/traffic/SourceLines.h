// A text file of an outside tool in memory, line by line with each line's own end. Byte-preserving:
// what no edit touches comes back as it was, whatever line ends it has.
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QSet>

namespace vt {

class SourceLines
{
public:
    [[nodiscard]] static SourceLines ofBytes(QByteArrayView bytes);
    [[nodiscard]] QByteArray joined() const;

    /// The lines without their ends.
    [[nodiscard]] QList<QByteArray> texts() const;

    [[nodiscard]] bool isEmpty() const { return m_lines.isEmpty(); }

    /// Whether the last line has no end. Such a line must be ended before another is appended.
    [[nodiscard]] bool lacksLastEnd() const;
    /// Gives the last line the end that most lines have (CR LF where none has one); the text of the
    /// line, by which dropLastEnd() knows it again.
    QByteArray endLastLine();
    /// Takes the end of the last line away when that line is \a text.
    void dropLastEnd(QByteArrayView text);

    /// \a text holds no line break; the last line must have an end.
    void append(const QByteArray& text);
    /// Of each text the first line that equals it; the number of lines that went.
    qsizetype remove(const QList<QByteArray>& texts);

private:
    struct Line
    {
        QByteArray text;
        QByteArray end; ///< CR LF, LF, or nothing on the last line
    };

    [[nodiscard]] QByteArray usualEnd() const;

    QList<Line> m_lines;
};

} // namespace vt
