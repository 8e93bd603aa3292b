// Writes files into a fresh folder of the host, creating folders on the way, every file with one
// and the same old date. Not for the simulator's real folders: those are written by FileActions.
#pragma once

#include "platform/Result.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace vt {

class FreshTree
{
public:
    explicit FreshTree(QString hostFolder) : m_root(std::move(hostFolder)) {}

    /// \a relative uses "/"; the first failure is kept and later calls do nothing.
    void file(const QString& relative, const QByteArray& bytes);
    /// CR LF text, Latin-1.
    void text(const QString& relative, const QString& lines);
    void folder(const QString& relative);
    void link(const QString& relative, const QString& target);
    void executable(const QString& relative, const QByteArray& bytes);

    [[nodiscard]] const Result& result() const { return m_result; }

    /// The date of every file written here, 17 October 2006.
    [[nodiscard]] static QDateTime fileDate();

private:
    void fail(const QString& relative, const QString& why);

    QString m_root;
    Result m_result;
};

} // namespace vt
