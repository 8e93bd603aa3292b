// The status bar of the main window: what is being done, totals, and how far a long operation is.
// Its panels are permanent: an opened menu does not clear them.
#pragma once

#include <QStatusBar>
#include <QString>

class QLabel;
class QProgressBar;
class QToolButton;

namespace vt {

class ElidedLabel;

class ControlStatusBar : public QStatusBar
{
    Q_OBJECT

public:
    explicit ControlStatusBar(QWidget* parent = nullptr);

    /// "Primary" or "Secondary"; any other is ignored.
    void setPanel(const QString& panel, const QString& text);
    [[nodiscard]] QString panel(const QString& panel) const;

    /// Shows the bar; \a total 0: only that something is done. \a timeLeft may be empty.
    void showProgress(qint64 done, qint64 total, const QString& timeLeft);
    void hideProgress();
    /// Whether the work can be cancelled.
    void offerCancel(bool on);

Q_SIGNALS:
    void cancelClicked();

private:
    ElidedLabel* m_primary;
    QLabel* m_secondary;
    QLabel* m_timeLeft;
    QProgressBar* m_progress;
    QToolButton* m_cancel;
    bool m_mayCancel = false;
};

} // namespace vt
