// The splash window: drawn over the main window while the first tool opens; gone after a while or
// at a click.
#pragma once

#include "shell/Context.h"

#include <QWidget>

namespace vt {

class frmSplashFSX : public QWidget
{
    Q_OBJECT

public:
    /// Shows it over the middle of \a window for as long as the setting says; deletes itself.
    static void showOver(QWidget* window, Context& context);

    frmSplashFSX(const DisplayNames& names, QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void toMiddle();

    QString m_title;
    QString m_simulator;
};

} // namespace vt
