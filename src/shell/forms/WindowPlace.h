// Where a window lies, as a setting's text.
#pragma once

#include <QRect>
#include <QString>
#include <QStringList>

#include <optional>

namespace vt::windowplace {

/// "left,top,width,height"
[[nodiscard]] inline QString toText(const QRect& place)
{
    return QStringLiteral("%1,%2,%3,%4")
        .arg(place.x())
        .arg(place.y())
        .arg(place.width())
        .arg(place.height());
}

/// Nothing when the text is no place of some size.
[[nodiscard]] inline std::optional<QRect> fromText(const QString& text)
{
    const QStringList parts = text.split(u',');
    if (parts.size() != 4)
        return std::nullopt;
    int values[4] = {};
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        values[i] = parts[i].toInt(&ok);
        if (!ok)
            return std::nullopt;
    }
    const QRect place(values[0], values[1], values[2], values[3]);
    return place.isEmpty() ? std::nullopt : std::optional(place);
}

/// \a place moved and, where it must be, made smaller, so that all of it lies in \a area.
[[nodiscard]] inline QRect inside(QRect place, const QRect& area)
{
    place.setSize(place.size().boundedTo(area.size()));
    place.moveLeft(qBound(area.left(), place.left(), area.right() - place.width() + 1));
    place.moveTop(qBound(area.top(), place.top(), area.bottom() - place.height() + 1));
    return place;
}

} // namespace vt::windowplace
