// A tool that opens as a child of the main window: its section of remembered layout, and what the
// frame tells it.
#pragma once

#include "shell/Context.h"
#include "shell/SettingsTable.h"

#include <QWidget>

namespace vt {

class ToolWindow : public QWidget
{
    Q_OBJECT

public:
    /// \a context must outlive this. \a section is where the window keeps its layout.
    ToolWindow(Context& context, Section section, QWidget* parent = nullptr);

    [[nodiscard]] Section section() const { return m_section; }

    /// Fills the window and restores its layout; called once, before it is first shown.
    virtual void Form_PrepareToShow() {}

    /// Keeps the layout in the window's section; called when the window closes.
    virtual void Form_Settings_Save() {}

    /// Called before the window closes; false keeps it open.
    virtual bool mayClose() { return true; }

    /// What F1 shows: a topic of the help, or the name of a section that has one.
    [[nodiscard]] virtual QString helpTopic() const { return sectionName(m_section); }

    /// An add-on came, went or was edited.
    virtual void recordsChanged() {}

protected:
    [[nodiscard]] Context& context() const { return m_context; }

    /// The status panel "Primary".
    void say(const QString& text) const;

    void closeEvent(QCloseEvent* event) override;

private:
    Context& m_context;
    Section m_section;
};

} // namespace vt
