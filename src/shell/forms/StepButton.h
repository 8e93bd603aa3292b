// One step in a wizard's column: icon, caption with its access key, and the state as a word.
#pragma once

#include <QToolButton>

namespace vt {

enum class StepState
{
    Open, ///< may be visited, and nothing is known against it
    Done,
    NeedsAttention,
    Off,   ///< there is nothing of this kind
    Later, ///< what it is about is not chosen yet
};

class StepButton : public QToolButton
{
    Q_OBJECT

public:
    /// \a caption with its "&".
    explicit StepButton(const QString& caption, QWidget* parent = nullptr);

    [[nodiscard]] StepState state() const { return m_state; }

    /// \a why: one sentence for the tool tip and for screen readers; may be empty.
    void setState(StepState state, const QString& why);
    /// The step whose page is shown.
    void setCurrent(bool current);
    /// What the step is for, shown as the tool tip above its state.
    void setHint(const QString& hint);

    [[nodiscard]] QSize sizeHint() const override;

    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    [[nodiscard]] QString stateWord() const;
    void refresh();

    StepState m_state = StepState::Open;
    QString m_why;
    QString m_hint;
};

} // namespace vt
