// The ground on which the children of the main window lie; while there are none, it says how to
// begin.
#pragma once

#include <QMdiArea>

namespace vt {

class ControlArea : public QMdiArea
{
    Q_OBJECT

public:
    explicit ControlArea(QWidget* parent = nullptr);

    /// The colour of the setting. \a isDefault: the user chose none; where the desktop is dark, its
    /// own ground is taken then.
    void setGround(const QColor& colour, bool isDefault);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void paintHelp();
    void applyGround();

    QColor m_colour;
    bool m_isDefault = true;
};

} // namespace vt
