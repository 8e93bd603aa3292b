// The help window: contents with a search at the left, a topic at the right, a way back and
// forward.
#pragma once

#include "shell/forms/HelpTopics.h"
#include "shell/forms/ToolWindow.h"

class QLayout;
class QLineEdit;
class QListWidget;
class QSplitter;
class QTextBrowser;
class QToolButton;

namespace vt {

class frmHelp : public ToolWindow
{
    Q_OBJECT

public:
    /// \a context must outlive this.
    explicit frmHelp(Context& context, QWidget* parent = nullptr);

    void Form_PrepareToShow() override;
    void Form_Settings_Save() override;

    [[nodiscard]] QString helpTopic() const override;

    /// As helptopics::nameFor() takes it.
    void showTopic(const QString& wanted);

    [[nodiscard]] const QString& shownTopic() const { return m_shown; }

protected:
    void changeEvent(QEvent* event) override;

private:
    QLayout* buildBar();
    void buildPanes();
    void buildShortcuts();
    void filter();
    void follow();
    void roomInTables();
    void markFound();
    [[nodiscard]] QStringList words() const;

    const QList<HelpTopic> m_topics;
    QString m_shown; ///< the browser's own source() lags behind while it changes
    QToolButton* m_back = nullptr;
    QToolButton* m_forward = nullptr;
    QLineEdit* m_search = nullptr;
    QListWidget* m_list = nullptr;
    QTextBrowser* m_text = nullptr;
    QSplitter* m_panes = nullptr;
};

} // namespace vt
