// Many paths, asked whether one of them lies at or above another path. Answered by walking up from
// that one, so that many failures against many files stay linear.
#pragma once

#include "platform/Text.h"

#include <QHash>
#include <QString>

namespace vt {

class PathIndex
{
public:
    /// A trailing "\" does not matter; of two texts for one path the first stays.
    void insert(const QString& path, const QString& text = {});

    [[nodiscard]] bool isEmpty() const { return m_texts.isEmpty(); }

    /// The text of the nearest path that is \a path or lies above it; null when there is none.
    [[nodiscard]] const QString* find(const QString& path) const;

    [[nodiscard]] bool covers(const QString& path) const { return find(path) != nullptr; }

private:
    QHash<NoCase, QString> m_texts; ///< paths without trailing "\"
};

} // namespace vt
