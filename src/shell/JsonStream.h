// Writes one JSON document piece by piece, so that tens of thousands of entries never stand in
// memory together. Checks its own nesting by assertions; knows nothing of what it carries.
#pragma once

#include <QByteArrayView>
#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <concepts>
#include <functional>
#include <vector>

namespace vt {

class JsonStream
{
public:
    /// Takes the next piece of UTF-8.
    using Sink = std::function<void(QByteArrayView)>;

    /// Without a sink nobody reads the document: it is not written, and only its nesting is
    /// checked.
    explicit JsonStream(Sink sink);
    ~JsonStream();
    JsonStream(const JsonStream&) = delete;
    JsonStream& operator=(const JsonStream&) = delete;

    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    /// The name of the next value; only directly inside an object.
    void key(QStringView name);

    void value(QStringView text);

    void value(const QString& text) { value(QStringView(text)); }

    void value(const QStringList& texts);
    void value(const QJsonValue& tree);
    void value(const char*) = delete;

    template <std::same_as<bool> B> void value(B flag) { raw(flag ? "true" : "false"); }

    template <std::integral I>

    requires(!std::same_as<I, bool>) void value(I number) { integer(static_cast<qint64>(number)); }

    void value(double number);
    void null();

    /// key() and value().
    template <typename T> void field(QStringView name, const T& content)
    {
        key(name);
        value(content);
    }

    void beginObject(QStringView name)
    {
        key(name);
        beginObject();
    }

    void beginArray(QStringView name)
    {
        key(name);
        beginArray();
    }

    /// A member {"error": {"text", "kind"}} of the object that is open.
    void error(const QString& text, const QString& kind);

    /// Whether somebody reads the document.
    [[nodiscard]] bool wanted() const { return bool(m_sink); }

    /// Whether anything was written.
    [[nodiscard]] bool begun() const { return m_begun; }

    /// Whether the outermost value is complete.
    [[nodiscard]] bool complete() const { return m_begun && m_levels.empty(); }

    /// Closes what is open. When the outermost value is an object and \a errorText is not empty, it
    /// gets a last member {"error": {"text", "kind"}} first; true when it was written.
    bool close(const QString& errorText = {}, const QString& errorKind = {});

    /// Hands everything to the sink.
    void flush();

private:
    struct Level
    {
        bool object;
        bool empty = true;
    };

    /// Where at least so many bytes may be written behind what is there.
    char* room(qsizetype bytes);
    void put(char c);
    void before();
    void raw(QByteArrayView bytes);
    void integer(qint64 number);
    void quoted(QStringView text);
    void end(bool object, char closing);
    void tree(const QJsonValue& value);

    Sink m_sink;
    std::vector<char> m_buffer; ///< its first m_used bytes are not yet given away
    qsizetype m_used = 0;
    std::vector<Level> m_levels;
    bool m_begun = false;
    bool m_afterKey = false;
};

} // namespace vt
