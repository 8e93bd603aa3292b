#include "shell/forms/WizardFrame.h"

#include "shell/forms/Frame.h"
#include "shell/forms/Icons.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Height of a window in which the hint takes no room from the page, in lines.
constexpr int comfortableLines = 36;
/// Size in which a wizard opens where there is room, in average characters and lines.
constexpr QSize roomySize(160, 46);

/// What scrolls: lists on a page may become as low as they can before that.
class Body final : public QWidget
{
public:
    [[nodiscard]] int heightForWidth(int width) const override
    {
        return layout()->minimumHeightForWidth(width);
    }
};

/// Else the page with the longest texts would say how high all of them want to be.
class Pages final : public QStackedWidget
{
public:
    [[nodiscard]] bool hasHeightForWidth() const override { return false; }
};

} // namespace

WizardFrame::WizardFrame(Context& context, Frame& frame, Section section, QWidget* parent)
    : ToolWindow(context, section, parent), m_frame(frame)
{
    buildBody();
    buildColumn();
    buildPageArea();
    buildButtons();
    buildShortcuts();
}

QString
WizardFrame::withCaption(const QString& before, const QString& caption, const QString& after)
{
    return before + QString(caption).remove(u'&') + after;
}

// The parts.

/// Steps and page; a window that is too small for them gets scroll bars, and keeps its buttons.
void WizardFrame::buildBody()
{
    auto* body = new Body;
    m_below = new QVBoxLayout(body); // no grid: that one never gets lower than it wants to be
    m_below->setContentsMargins({});
    m_beside = new QHBoxLayout;
    m_below->addLayout(m_beside, 1);
    auto* scroll = new QScrollArea;
    scroll->setObjectName(u"WizardBody"_s);
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);
    m_whole = new QVBoxLayout(this);
    m_whole->addWidget(scroll, 1);
}

void WizardFrame::buildColumn()
{
    auto* content = new QWidget;
    m_columnLayout = new QVBoxLayout(content);
    m_columnLayout->setContentsMargins({});
    m_columnLayout->setSpacing(0);
    m_column = new QScrollArea;
    m_column->setWidget(content);
    m_column->setWidgetResizable(true);
    m_column->setFrameShape(QFrame::NoFrame);
    m_column->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_column->setFocusPolicy(Qt::NoFocus);
    m_column->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    m_beside->addWidget(m_column);
}

void WizardFrame::buildPageArea()
{
    auto* area = new QVBoxLayout;
    m_header = new QLabel;
    m_header->setObjectName(u"lblHeader"_s);
    m_header->setWordWrap(true);
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.25);
    large.setBold(true);
    m_header->setFont(large);
    area->addWidget(m_header);

    m_pages = new Pages;
    area->addWidget(m_pages, 1);

    m_notice = new QWidget;
    auto* row = new QHBoxLayout(m_notice);
    row->setContentsMargins({});
    m_noticeIcon = new QLabel;
    row->addWidget(m_noticeIcon, 0, Qt::AlignTop);
    m_noticeText = new QLabel;
    m_noticeText->setObjectName(u"lblNotice"_s);
    m_noticeText->setWordWrap(true);
    m_noticeText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(m_noticeText, 1);
    m_notice->hide();
    area->addWidget(m_notice);
    m_beside->addLayout(area, 1);

    m_hint = new QLabel;
    m_hint->setObjectName(u"lblHint"_s);
    m_hint->setWordWrap(true);
    m_hint->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // Two lines always, so that the page keeps its height from step to step; below the column too,
    // so that two lines are enough in a small window.
    m_hint->setMinimumHeight(2 * m_hint->fontMetrics().lineSpacing());
    m_below->addWidget(m_hint);
}

void WizardFrame::buildButtons()
{
    auto* line = new QFrame;
    line->setFrameStyle(QFrame::HLine | QFrame::Sunken);
    m_whole->addWidget(line);

    auto* row = new QHBoxLayout;
    m_footerRow = new QHBoxLayout;
    m_footer = new QLabel;
    m_footer->setObjectName(u"lblFooter"_s);
    m_footer->setWordWrap(true);
    m_footerRow->addWidget(m_footer, 1);
    row->addLayout(m_footerRow, 1);
    const auto button = [this, row](const QString& text, const QString& name) {
        auto* made = new QPushButton(text);
        made->setObjectName(name);
        made->setAutoDefault(false);
        row->addWidget(made);
        return made;
    };
    cmdHelp = button(u"Help"_s, u"cmdHelp"_s);
    cmdPrevious = button(u"< &Back"_s, u"cmdPrevious"_s);
    cmdNext = button(u"&Next >"_s, u"cmdNext"_s);
    cmdOK = button(u"Finish"_s, u"cmdOK"_s);
    cmdCancel = button(u"Cancel"_s, u"cmdCancel"_s);
    cmdHelp->setToolTip(u"F1"_s);
    cmdCancel->setToolTip(u"Esc"_s);
    cmdPrevious->setAccessibleName(u"Back"_s);
    cmdNext->setAccessibleName(u"Next"_s);
    connect(cmdHelp, &QPushButton::clicked, this, [this] { m_frame.showHelp(helpTopic()); });
    connect(cmdPrevious, &QPushButton::clicked, this, [this] { go(-1); });
    connect(cmdNext, &QPushButton::clicked, this, [this] { go(1); });
    connect(cmdOK, &QPushButton::clicked, this, [this] { finishChosen(); });
    connect(cmdCancel, &QPushButton::clicked, this, &QWidget::close);
    m_whole->addLayout(row);
}

void WizardFrame::buildShortcuts()
{
    const auto shortcut = [this](const QKeySequence& keys, QPushButton* button) {
        auto* made = new QShortcut(keys, this);
        made->setContext(Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, button, &QPushButton::click);
    };
    shortcut(Qt::CTRL | Qt::Key_PageUp, cmdPrevious);
    shortcut(Qt::CTRL | Qt::Key_PageDown, cmdNext);
    shortcut(Qt::Key_Escape, cmdCancel);
}

QSize WizardFrame::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return ToolWindow::sizeHint().expandedTo({metrics.averageCharWidth() * roomySize.width(),
                                              metrics.lineSpacing() * roomySize.height()});
}

/// In a low window the hint, which the step's button tells too, gives its lines to the page.
void WizardFrame::resizeEvent(QResizeEvent* event)
{
    ToolWindow::resizeEvent(event);
    m_hint->setVisible(height() >= fontMetrics().lineSpacing() * comfortableLines);
}

// The steps.

void WizardFrame::Steps_Build(const QList<WizardStep>& steps)
{
    for (const WizardStep& step : steps) {
        auto* button = new StepButton(step.caption);
        button->setObjectName(step.objectName);
        button->setHint(step.hint);
        button->setState(StepState::Off, {});
        const int index = int(m_steps.size());
        connect(button, &QToolButton::clicked, this, [this, index] {
            // A click toggles the button; which one is marked is Step_SetCurrent()'s matter.
            m_steps.at(index)->setCurrent(index == m_current);
            stepChosen(index);
        });
        m_columnLayout->addWidget(button);
        m_steps.append(button);
        m_hints.append(step.hint);
    }
    m_finishStep = new StepButton(u"F&inish"_s);
    m_finishStep->setObjectName(u"cmdFinish"_s);
    m_finishStep->setCheckable(false);
    connect(m_finishStep, &QToolButton::clicked, this, [this] { finishChosen(); });
    m_columnLayout->addWidget(m_finishStep);
    m_columnLayout->addStretch(1);
    m_column->setFixedWidth(m_column->widget()->sizeHint().width() +
                            m_column->verticalScrollBar()->sizeHint().width());
    setFinishEnabled(false);
}

StepState WizardFrame::stepState(int step) const
{
    return m_steps.at(step)->state();
}

StepButton* WizardFrame::cmdCurrentStep() const
{
    return m_current < 0 ? nullptr : m_steps.at(m_current);
}

void WizardFrame::Step_SetCurrent(int step)
{
    m_current = step;
    for (int i = 0; i < m_steps.size(); ++i)
        m_steps.at(i)->setCurrent(i == step);
    m_hint->setText(m_hints.at(step));
    m_column->ensureWidgetVisible(m_steps.at(step), 0, 0);
    refreshButtons();
}

void WizardFrame::Step_SetGraphic(int step, StepState state, const QString& why)
{
    m_steps.at(step)->setState(state, why);
    refreshButtons();
}

void WizardFrame::setFinishEnabled(bool enabled)
{
    m_finishStep->setEnabled(enabled);
    cmdOK->setEnabled(enabled);
}

int WizardFrame::neighbour(int from, int direction) const
{
    for (int step = from + direction; step >= 0 && step < m_steps.size(); step += direction)
        if (m_steps.at(step)->isEnabled())
            return step;
    return -1;
}

void WizardFrame::go(int direction)
{
    if (const int step = neighbour(m_current, direction); step >= 0)
        stepChosen(step);
}

void WizardFrame::refreshButtons()
{
    const bool last = m_current == m_steps.size() - 1;
    cmdPrevious->setEnabled(m_current > 0 && neighbour(m_current, -1) >= 0);
    cmdNext->setEnabled(neighbour(m_current, 1) >= 0);
    // Next's place is Finish's at the end, as in every wizard.
    cmdNext->setVisible(!last);
    cmdOK->setVisible(last);
    cmdNext->setDefault(!last);
    cmdOK->setDefault(last);
}

// The texts and pages.

void WizardFrame::setHeader(const QString& text)
{
    m_header->setText(text);
}

void WizardFrame::setFooter(const QString& text)
{
    m_footer->setText(text);
}

void WizardFrame::setNotice(const QString& text, bool problem)
{
    const int extent = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    const QIcon icon = problem ? icons::state(icons::State::Attention) : icons::command(u"info"_s);
    m_noticeIcon->setPixmap(icon.pixmap(extent, extent));
    m_noticeText->setText(text);
    m_notice->setVisible(!text.isEmpty());
}

void WizardFrame::showPage(QWidget* page)
{
    if (m_pages->indexOf(page) < 0)
        m_pages->addWidget(page);
    m_pages->setCurrentWidget(page);
}

void WizardFrame::addToFooter(QWidget* widget)
{
    m_footerRow->addWidget(widget, 2);
}

// The keys.

/// The step whose caption has this access key, for two of one letter the next of them; -1: none.
int WizardFrame::stepOfKey(const QKeyEvent& event) const
{
    if (event.modifiers() != Qt::AltModifier)
        return -1;
    const QKeySequence keys(event.keyCombination());
    for (int i = 1; i <= m_steps.size(); ++i) {
        const int step = int((m_current + i) % m_steps.size());
        if (m_steps.at(step)->isEnabled() &&
            QKeySequence::mnemonic(m_steps.at(step)->text()) == keys)
            return step;
    }
    return -1;
}

/// Some of the steps' letters are those of the main menu. In front is the wizard, so they are its
/// own; a menu whose letter no step takes opens as ever.
bool WizardFrame::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && QApplication::focusWidget() &&
        stepOfKey(*static_cast<QKeyEvent*>(event)) >= 0) {
        m_keyTarget = QApplication::focusWidget();
        m_keyTarget->installEventFilter(this); // a line would take the letter for text
        event->accept();
        return true;
    }
    return ToolWindow::event(event);
}

bool WizardFrame::eventFilter(QObject* watched, QEvent* event)
{
    if (watched != m_keyTarget || event->type() != QEvent::KeyPress)
        return ToolWindow::eventFilter(watched, event);
    m_keyTarget->removeEventFilter(this);
    m_keyTarget = nullptr;
    const int step = stepOfKey(*static_cast<QKeyEvent*>(event));
    if (step >= 0)
        stepChosen(step);
    return step >= 0;
}

void WizardFrame::keyPressEvent(QKeyEvent* event)
{
    // Enter goes on, as in a dialog. In a list it belongs to the list's row.
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const QWidget* focus = QApplication::focusWidget();
    if (enter && !qobject_cast<const QAbstractItemView*>(focus) && cmdNext->isVisible())
        cmdNext->click();
    else
        ToolWindow::keyPressEvent(event);
}

} // namespace vt
