// Which picture a group gets: none, another file, or the one in the clipboard, with a preview. Says
// what the user wants; whoever owns it decides and shows the outcome.
#pragma once

#include "install/InstallationGroup.h"

#include <QImage>
#include <QWidget>

class QBoxLayout;
class QButtonGroup;
class QLabel;

namespace vt {

class PictureBox : public QWidget
{
    Q_OBJECT

public:
    explicit PictureBox(QWidget* parent = nullptr);

    /// \a picture as it is now.
    void show(const GroupPicture& picture);
    /// Everything in one low row, for narrow pages.
    void setCompact(bool compact);

    [[nodiscard]] int wideWidth() const { return m_wideWidth; }

Q_SIGNALS:
    void noneWanted();
    /// Another file is to be chosen.
    void fileWanted();
    /// These files of the host were dropped.
    void filesDropped(const QStringList& hostFiles);
    void clipboardWanted();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void drawPreview();

    QImage m_image;
    bool m_compact = false;
    int m_wideWidth = 0; ///< that it wants when it is not compact
    QBoxLayout* m_row = nullptr;
    QLabel* m_preview = nullptr;
    QButtonGroup* m_choices = nullptr;
};

} // namespace vt
