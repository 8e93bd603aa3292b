// How far the running operation is: what it does, a bar, how much of how much, how long yet, and
// the button that cancels it. Shows itself while there is progress, and hides again.
#pragma once

#include "platform/Status.h"

#include <QWidget>

class QLabel;
class QProgressBar;

namespace vt {

class ElidedLabel;
class QtStatus;

class ProgressStrip : public QWidget
{
    Q_OBJECT

public:
    /// \a status must outlive this; only a QtStatus tells anything. Progress is counted in bytes.
    explicit ProgressStrip(StatusSink& status, QWidget* parent = nullptr);

private:
    void showProgress(qint64 done, qint64 total);

    QtStatus* m_status;
    ElidedLabel* m_text = nullptr;
    QProgressBar* m_bar = nullptr;
    QLabel* m_amount = nullptr;
};

} // namespace vt
