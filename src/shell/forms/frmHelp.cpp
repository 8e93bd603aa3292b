#include "shell/forms/frmHelp.h"

#include "shell/Settings.h"
#include "shell/forms/Icons.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTextTable>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt {

frmHelp::frmHelp(Context& context, QWidget* parent)
    : ToolWindow(context, Section::Help, parent), m_topics(helptopics::all())
{
    setObjectName(u"frmHelp"_s);
    setWindowTitle(u"Help"_s);
    setWindowIcon(icons::command(u"help"_s));
    auto* column = new QVBoxLayout(this);
    column->addLayout(buildBar());
    buildPanes();
    column->addWidget(m_panes, 1);
    buildShortcuts();
    filter();
}

QLayout* frmHelp::buildBar()
{
    const auto button = [this](Qt::ArrowType arrow, const QString& name, const QString& keys) {
        auto* made = new QToolButton;
        made->setArrowType(arrow);
        made->setObjectName(u"cmd"_s + name);
        made->setAccessibleName(name);
        made->setToolTip(name + u" ("_s + keys + u')');
        made->setAutoRaise(true);
        made->setEnabled(false);
        made->setFocusPolicy(Qt::TabFocus);
        return made;
    };
    m_back = button(Qt::LeftArrow, u"Back"_s, u"Alt+Left"_s);
    m_forward = button(Qt::RightArrow, u"Forward"_s, u"Alt+Right"_s);
    m_search = new QLineEdit;
    m_search->setObjectName(u"txtSearch"_s);
    m_search->setPlaceholderText(u"Words in any topic"_s);
    m_search->setClearButtonEnabled(true);
    auto* label = new QLabel(u"&Search:"_s);
    label->setBuddy(m_search);
    auto* row = new QHBoxLayout;
    row->addWidget(m_back);
    row->addWidget(m_forward);
    row->addWidget(label);
    row->addWidget(m_search, 1);
    connect(m_search, &QLineEdit::textChanged, this, &frmHelp::filter);
    connect(m_search, &QLineEdit::returnPressed, this, [this] {
        if (m_list->count() > 0)
            m_list->setCurrentRow(qMax(0, m_list->currentRow()));
        m_text->setFocus();
    });
    return row;
}

void frmHelp::buildPanes()
{
    m_list = new QListWidget;
    m_list->setObjectName(u"lstTopics"_s);
    m_list->setAccessibleName(u"Topics"_s);
    m_list->setTextElideMode(Qt::ElideRight);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_text = new QTextBrowser;
    m_text->setObjectName(u"txtTopic"_s);
    m_text->setAccessibleName(u"Topic"_s);
    m_text->setOpenExternalLinks(false);
    m_text->setFrameShape(m_list->frameShape());
    m_text->document()->setDocumentMargin(fontMetrics().averageCharWidth() * 2);
    m_panes = new QSplitter(Qt::Horizontal);
    m_panes->setObjectName(u"splPanes"_s);
    m_panes->addWidget(m_list);
    m_panes->addWidget(m_text);
    m_panes->setStretchFactor(1, 1);
    m_panes->setChildrenCollapsible(false);
    connect(m_list, &QListWidget::currentItemChanged, this, [this](const QListWidgetItem* item) {
        if (item && item->data(Qt::UserRole).toString() != m_shown)
            m_text->setSource(helptopics::address(item->data(Qt::UserRole).toString()));
    });
    connect(m_text, &QTextBrowser::sourceChanged, this, [this](const QUrl& source) {
        m_shown = helptopics::nameOf(source);
        follow();
    });
    connect(m_text, &QTextBrowser::backwardAvailable, m_back, &QWidget::setEnabled);
    connect(m_text, &QTextBrowser::forwardAvailable, m_forward, &QWidget::setEnabled);
    connect(m_back, &QToolButton::clicked, m_text, &QTextBrowser::backward);
    connect(m_forward, &QToolButton::clicked, m_text, &QTextBrowser::forward);
}

void frmHelp::buildShortcuts()
{
    const auto shortcut = [this](const QKeySequence& keys, auto&& run) {
        auto* made = new QShortcut(keys, this);
        made->setContext(Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, this, run);
    };
    shortcut(QKeySequence::Find, [this] {
        m_search->setFocus();
        m_search->selectAll();
    });
    shortcut(Qt::ALT | Qt::Key_Left, [this] { m_text->backward(); });
    shortcut(Qt::ALT | Qt::Key_Right, [this] { m_text->forward(); });
    shortcut(Qt::ALT | Qt::Key_Right, [this] { m_text->forward(); });
    shortcut(Qt::Key_Escape, [this] {
        if (m_search->text().isEmpty())
            (parentWidget() && !isWindow() ? parentWidget() : this)->close();
        else
            m_search->clear();
    });
}

QString frmHelp::helpTopic() const
{
    return u"keyboard"_s;
}

void frmHelp::Form_PrepareToShow()
{
    const int list = m_list->sizeHintForColumn(0) + fontMetrics().averageCharWidth() * 3;
    const int kept = context().settings.layoutText(section(), LayoutValue::FirstPaneWidth).toInt();
    m_panes->setSizes({kept > 0 ? kept : list, qMax(list, width() - list)});
    if (m_shown.isEmpty())
        showTopic({});
    m_text->setFocus();
}

void frmHelp::Form_Settings_Save()
{
    (void)context().settings.setLayoutText(
        section(), LayoutValue::FirstPaneWidth, QString::number(m_panes->sizes().constFirst()));
}

void frmHelp::showTopic(const QString& wanted)
{
    m_search->clear();
    m_text->setSource(helptopics::address(helptopics::nameFor(wanted)));
}

QStringList frmHelp::words() const
{
    return m_search->text().split(u' ', Qt::SkipEmptyParts);
}

/// The topics that hold every word that was typed; all of them at first.
void frmHelp::filter()
{
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    for (const HelpTopic& topic : m_topics) {
        if (!helptopics::holds(topic, words()))
            continue;
        auto* item = new QListWidgetItem(topic.title, m_list);
        item->setData(Qt::UserRole, topic.name);
        item->setToolTip(topic.title);
    }
    if (m_list->count() == 0)
        (new QListWidgetItem(u"No topic holds these words."_s, m_list))->setFlags(Qt::NoItemFlags);
    follow();
}

/// The list and the title follow what is shown, however it was reached.
void frmHelp::follow()
{
    const QSignalBlocker quiet(m_list);
    m_list->setCurrentRow(-1);
    for (int row = 0; row < m_list->count(); ++row)
        if (m_list->item(row)->data(Qt::UserRole).toString() == m_shown)
            m_list->setCurrentRow(row);
    for (const HelpTopic& topic : m_topics)
        if (topic.name == m_shown)
            setWindowTitle(u"Help - "_s + topic.title);
    roomInTables();
    markFound();
}

/// Tables come with a frame around each cell.
void frmHelp::roomInTables()
{
    for (QTextFrame* frame : m_text->document()->rootFrame()->childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (!table)
            continue;
        QTextTableFormat format = table->format();
        format.setCellSpacing(0);
        format.setCellPadding(fontMetrics().averageCharWidth() / 2.0);
        format.setBorderCollapse(true);
        format.setBorder(1);
        format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setBorderBrush(palette().brush(QPalette::Mid));
        table->setFormat(format);
    }
}

void frmHelp::markFound()
{
    QList<QTextEdit::ExtraSelection> found;
    for (const QString& word : words()) {
        for (QTextCursor at = m_text->document()->find(word); !at.isNull();
             at = m_text->document()->find(word, at)) {
            QTextEdit::ExtraSelection one;
            one.cursor = at;
            one.format.setBackground(palette().brush(QPalette::Highlight));
            one.format.setForeground(palette().brush(QPalette::HighlightedText));
            found.append(one);
        }
    }
    m_text->setExtraSelections(found);
}

/// A document keeps the colours with which it was made.
void frmHelp::changeEvent(QEvent* event)
{
    ToolWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_text) {
        m_text->reload();
        roomInTables();
        markFound();
    }
}

} // namespace vt
