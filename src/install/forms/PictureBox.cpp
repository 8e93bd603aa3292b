#include "install/forms/PictureBox.h"

#include <QButtonGroup>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QRadioButton>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Of the preview, in lines of text: 4 to 3, as most pictures are.
constexpr int previewLines = 5;
constexpr int compactLines = 2;

QStringList filesOf(const QMimeData* data)
{
    QStringList files;
    const QList<QUrl> urls = data->urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    return files;
}

} // namespace

PictureBox::PictureBox(QWidget* parent) : QWidget(parent)
{
    setAcceptDrops(true);
    m_preview = new QLabel(this);
    m_preview->setObjectName(u"imgPicture"_s);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setAccessibleName(u"Preview of the picture"_s);
    auto* caption = new QLabel(u"&Picture:"_s, this);
    m_row = new QBoxLayout(QBoxLayout::TopToBottom);
    m_row->addWidget(caption);
    m_choices = new QButtonGroup(this);
    m_choices->setObjectName(u"optPicture"_s);
    const auto add = [&](GroupPicture::Kind kind, const QString& text, const QString& tip) {
        auto* button = new QRadioButton(text, this);
        button->setObjectName(u"optPicture"_s);
        button->setToolTip(tip);
        m_choices->addButton(button, int(kind));
        m_row->addWidget(button);
    };
    add(GroupPicture::Kind::None, u"None"_s, u"No picture is kept"_s);
    add(GroupPicture::Kind::File,
        u"Other picture file..."_s,
        u"Choose a picture file, or drop one here"_s);
    add(GroupPicture::Kind::Clipboard,
        u"Clipboard picture"_s,
        u"The picture that the clipboard holds now"_s);
    caption->setBuddy(m_choices->button(int(GroupPicture::Kind::None)));
    m_row->addStretch();
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->addWidget(m_preview, 0, Qt::AlignTop);
    row->addLayout(m_row);
    connect(m_choices, &QButtonGroup::idClicked, this, [this](int id) {
        if (id == int(GroupPicture::Kind::None))
            Q_EMIT noneWanted();
        else if (id == int(GroupPicture::Kind::File))
            Q_EMIT fileWanted();
        else
            Q_EMIT clipboardWanted();
    });
    m_row->setSpacing(m_row->spacing() / 2);
    drawPreview();
    m_wideWidth = sizeHint().width();
}

void PictureBox::setCompact(bool compact)
{
    if (m_compact == compact)
        return;
    m_compact = compact;
    m_row->setDirection(compact ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_row->setSpacing(compact ? -1 : m_row->spacing() / 2);
    drawPreview();
}

void PictureBox::show(const GroupPicture& picture)
{
    m_choices->button(int(picture.kind))->setChecked(true);
    m_image = QImage::fromData(picture.jpeg);
    m_preview->setToolTip(picture.file);
    drawPreview();
}

void PictureBox::drawPreview()
{
    const int height = fontMetrics().lineSpacing() * (m_compact ? compactLines : previewLines);
    const QSize size(height * 4 / 3, height);
    m_preview->setFixedSize(size + QSize(2, 2) * m_preview->frameWidth());
    if (m_image.isNull()) {
        m_preview->setText(m_compact ? QString() : u"No picture"_s);
        return;
    }
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap = QPixmap::fromImage(
        m_image.scaled(size * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(ratio);
    m_preview->setPixmap(pixmap);
}

void PictureBox::dragEnterEvent(QDragEnterEvent* event)
{
    if (!filesOf(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void PictureBox::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    Q_EMIT filesDropped(filesOf(event->mimeData()));
}

void PictureBox::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        drawPreview();
}

} // namespace vt
