// Boxes and circles to tick that are seen on dark grounds: the style "Fusion" draws them dark
// there, so that an empty one in a list cannot be told from the ground.
#pragma once

#include <QProxyStyle>

namespace vt {

/// Fusion, with a light line around what can be ticked wherever the ground is dark.
class DarkMarks final : public QProxyStyle
{
    Q_OBJECT

public:
    /// Puts itself over the application's style when that is Fusion; every other style stays.
    static void install();

    void drawPrimitive(PrimitiveElement element,
                       const QStyleOption* option,
                       QPainter* painter,
                       const QWidget* widget) const override;

private:
    DarkMarks();
};

} // namespace vt
