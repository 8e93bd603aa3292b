#include "shell/forms/frmAbout.h"

#include "shell/GlobalRecord.h"
#include "shell/forms/Icons.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

frmAbout::frmAbout(const DisplayNames& names, const QString& version, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(u"frmAbout"_s);
    setWindowTitle(u"About Vantrel"_s);
    auto* picture = new QLabel;
    const int side = fontMetrics().lineSpacing() * 4;
    picture->setPixmap(icons::program().pixmap(QSize(side, side), devicePixelRatio()));
    auto* title = new QLabel(names.productTitle);
    QFont large = title->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setBold(true);
    title->setFont(large);
    auto* text = new QLabel(
        u"Version "_s + version + u"\n\nInstalls add-ons for "_s + names.simFullTitle +
        u", keeps what they replace, and takes them out again whole.\n\nFree software under the terms of the file LICENSE."_s);
    text->setWordWrap(true);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text->setMinimumWidth(fontMetrics().averageCharWidth() * 48);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* texts = new QVBoxLayout;
    texts->addWidget(title);
    texts->addWidget(text);
    texts->addStretch();
    auto* row = new QHBoxLayout;
    row->addWidget(picture, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    auto* column = new QVBoxLayout(this);
    column->addLayout(row);
    column->addWidget(buttons);
}

} // namespace vt
