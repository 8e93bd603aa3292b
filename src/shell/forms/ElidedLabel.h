// A line of text, usually a path, that is shortened in the middle where the window is too narrow;
// the whole stands in the tool tip.
#pragma once

#include <QFrame>
#include <QString>

namespace vt {

class ElidedLabel : public QFrame
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);
    explicit ElidedLabel(const QString& text, QWidget* parent = nullptr);

    [[nodiscard]] QString text() const { return m_text; }

    void setText(const QString& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};

} // namespace vt
