#include "shell/forms/ToolWindow.h"

#include <QCloseEvent>

using namespace Qt::StringLiterals;

namespace vt {

ToolWindow::ToolWindow(Context& context, Section section, QWidget* parent)
    : QWidget(parent), m_context(context), m_section(section)
{
    setAttribute(Qt::WA_DeleteOnClose);
}

void ToolWindow::say(const QString& text) const
{
    m_context.services.status.text(u"Primary"_s, text);
}

void ToolWindow::closeEvent(QCloseEvent* event)
{
    if (!mayClose()) {
        event->ignore();
        return;
    }
    Form_Settings_Save();
    event->accept();
}

} // namespace vt
