// The frame of a wizard: a column of step buttons with their states, the header, the pages, a hint,
// a footer line and the buttons. Knows nothing of what the steps do.
#pragma once

#include "shell/forms/StepButton.h"
#include "shell/forms/ToolWindow.h"

#include <QList>
#include <QPointer>
#include <QString>

class QBoxLayout;
class QLabel;
class QPushButton;
class QScrollArea;
class QStackedWidget;

namespace vt {

class Frame;

/// One step that has a page.
struct WizardStep
{
    QString objectName; ///< of its button: "cmdConfigureOptions"
    QString caption;    ///< with its access key: "Installation &Options"
    QString hint;       ///< whole, with the button's caption put in
};

/// Steps are counted from 0. "F&inish" stands below them and is none of them. Access keys B and N
/// are taken, and I; Escape is Cancel, Ctrl+PgUp and Ctrl+PgDown go back and on. A step's access
/// key goes before one of the main menu while the wizard has the focus.
class WizardFrame : public ToolWindow
{
    Q_OBJECT

public:
    /// All must outlive this. \a section is where the wizard keeps its layout.
    WizardFrame(Context& context, Frame& frame, Section section, QWidget* parent = nullptr);

    [[nodiscard]] int currentStep() const { return m_current; }

    [[nodiscard]] StepState stepState(int step) const;

    [[nodiscard]] bool mayVisit(int step) const { return m_steps.at(step)->isEnabled(); }

    /// The button of the step that is shown; null before the first.
    [[nodiscard]] StepButton* cmdCurrentStep() const;

    /// Puts the caption of a step's button, without its "&", between two halves of a text.
    [[nodiscard]] static QString
    withCaption(const QString& before, const QString& caption, const QString& after);

    /// Room for every page.
    [[nodiscard]] QSize sizeHint() const override;

protected:
    /// Makes the column; every step is off at first. Called once.
    void Steps_Build(const QList<WizardStep>& steps);
    /// Marks the step as the one that is shown, with its hint. The page is showPage()'s matter.
    void Step_SetCurrent(int step);
    /// \a why: one sentence that tells what is to be done; may be empty.
    void Step_SetGraphic(int step, StepState state, const QString& why = {});
    /// Whether "F&inish" may be pressed.
    void setFinishEnabled(bool enabled);

    void setHeader(const QString& text);
    void setFooter(const QString& text);
    /// Shows something that the page or the wizard has to say, above the hint; empty: nothing.
    void setNotice(const QString& text, bool problem);
    /// Shows \a page; one that is new here belongs to the frame from now on.
    void showPage(QWidget* page);
    /// A widget of the wizard's own at the left of the buttons.
    void addToFooter(QWidget* widget);
    /// The next step before or after \a from that may be visited; -1 when there is none.
    [[nodiscard]] int neighbour(int from, int direction) const;

    [[nodiscard]] Frame& frame() const { return m_frame; }

    /// A step's button, Back or Next was pressed: show the page of \a step, or refuse.
    virtual void stepChosen(int step) = 0;
    virtual void finishChosen() = 0;

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildBody();
    void buildColumn();
    void buildPageArea();
    void buildButtons();
    void buildShortcuts();
    void go(int direction);
    void refreshButtons();
    [[nodiscard]] int stepOfKey(const QKeyEvent& event) const;

    Frame& m_frame;
    QBoxLayout* m_whole = nullptr;
    QBoxLayout* m_beside = nullptr; ///< column and page
    QBoxLayout* m_below = nullptr;  ///< those, and the hint
    QPointer<QWidget> m_keyTarget;  ///< whose next key goes to a step
    QList<StepButton*> m_steps;
    QList<QString> m_hints;
    int m_current = -1;
    QScrollArea* m_column = nullptr;
    QBoxLayout* m_columnLayout = nullptr;
    StepButton* m_finishStep = nullptr;
    QLabel* m_header = nullptr;
    QStackedWidget* m_pages = nullptr;
    QWidget* m_notice = nullptr;
    QLabel* m_noticeIcon = nullptr;
    QLabel* m_noticeText = nullptr;
    QLabel* m_hint = nullptr;
    QLabel* m_footer = nullptr;
    QBoxLayout* m_footerRow = nullptr;
    QPushButton* cmdHelp = nullptr;
    QPushButton* cmdPrevious = nullptr;
    QPushButton* cmdNext = nullptr;
    QPushButton* cmdOK = nullptr; ///< Finish
    QPushButton* cmdCancel = nullptr;
};

} // namespace vt
