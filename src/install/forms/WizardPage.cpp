#include "install/forms/WizardPage.h"

#include <QScrollArea>
#include <QVBoxLayout>

namespace vt {

WizardPage::WizardPage(WizardState& state, QWidget* parent) : QWidget(parent), m_state(state) {}

void WizardPage::setContent(QWidget* content)
{
    auto* scroll = new QScrollArea(this);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins({});
    whole->addWidget(scroll);
}

} // namespace vt
