// What an operation says about its own end. Nothing is thrown across a module: the world's errors
// are results, the programmer's errors are assertions.
#pragma once

#include <QString>

#include <optional>
#include <utility>

namespace vt {

/// Why something failed, as far as a front end must know it (it decides the exit status).
enum class ErrorKind
{
    None,
    Failed,       ///< the operation itself failed or was refused by a rule
    Usage,        ///< wrong arguments
    Surroundings, ///< no valid simulator, database unusable, folder held by another, source
                  ///< unreadable
    Declined,     ///< a question was answered with No or Cancel
    DiskFull,     ///< there is no room for what is to be written
    DiskFailed,   ///< the disk did not confirm that it has written
};

/// Success, or one sentence for a person: what, where, why, what next.
struct [[nodiscard]] Result
{
    bool ok = true;
    QString text; ///< set on failure; may hold a remark on success
    ErrorKind kind = ErrorKind::None;

    static Result success(QString remark = {})
    {
        return {true, std::move(remark), ErrorKind::None};
    }

    static Result failure(QString why, ErrorKind kind = ErrorKind::Failed)
    {
        return {false, std::move(why), kind};
    }

    explicit operator bool() const { return ok; }
};

/// A value, or the reason why there is none.
template <typename T> struct [[nodiscard]] ResultOf
{
    std::optional<T> value;
    QString text;
    ErrorKind kind = ErrorKind::None;

    ResultOf(T v) : value(std::move(v)) {} // NOLINT: a value is a success

    ResultOf(const Result& failed) : text(failed.text), kind(failed.kind) // NOLINT: as is a failure
    {
        Q_ASSERT(!failed.ok);
    }

    [[nodiscard]] bool ok() const { return value.has_value(); }

    explicit operator bool() const { return ok(); }

    T& operator*() { return *value; }

    const T& operator*() const { return *value; }

    T* operator->() { return &*value; }

    const T* operator->() const { return &*value; }

    /// The failure as a plain result, to be passed on.
    [[nodiscard]] Result error() const { return {ok(), text, kind}; }
};

} // namespace vt
