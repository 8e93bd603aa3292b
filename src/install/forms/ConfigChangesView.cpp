#include "install/forms/ConfigChangesView.h"

#include "platform/Text.h"
#include "platform/WinPath.h"
#include "shell/forms/Icons.h"

#include <QEvent>
#include <QFontDatabase>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// "2 lines added, 1 removed"
QString countsOf(const LineChanges& lines)
{
    return countText(lines.added.size(), u"line added"_s, u"lines added"_s) +
           (lines.removed.isEmpty()
                ? QString()
                : u", "_s + QString::number(lines.removed.size()) + u" removed"_s);
}

void append(QTextCursor& cursor, QChar sign, const QString& line, const QColor& colour)
{
    QTextCharFormat format;
    format.setForeground(colour);
    if (!cursor.atStart())
        cursor.insertBlock();
    cursor.insertText(sign + u' ' + line, format);
}

} // namespace

ConfigChangesView::ConfigChangesView(QWidget* parent) : QWidget(parent)
{
    m_files = new QListWidget;
    m_files->setObjectName(u"lstConfigFiles"_s);
    m_files->setAccessibleName(u"Configuration files that change"_s);
    m_files->setTextElideMode(Qt::ElideMiddle);
    m_files->setAlternatingRowColors(true);
    m_lines = new QPlainTextEdit;
    m_lines->setObjectName(u"txtConfigLines"_s);
    m_lines->setAccessibleName(u"Lines that are added and removed"_s);
    m_lines->setReadOnly(true);
    m_lines->setTabChangesFocus(true);
    m_lines->setLineWrapMode(QPlainTextEdit::NoWrap);
    m_lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->addWidget(m_files);
    splitter->addWidget(m_lines);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    splitter->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(splitter);
    connect(m_files, &QListWidget::currentRowChanged, this, &ConfigChangesView::showChange);
}

void ConfigChangesView::setChanges(const QList<ConfigChange>& changes)
{
    m_changes = changes;
    m_files->clear();
    for (const ConfigChange& change : changes) {
        auto* item =
            new QListWidgetItem(winpath::name(change.file) + u" ("_s + countsOf(change.lines) +
                                    u") in "_s + winpath::parent(change.file),
                                m_files);
        item->setToolTip(change.file);
    }
    m_lines->clear();
    m_lines->setPlaceholderText(changes.isEmpty() ? u"No configuration file changes."_s
                                                  : QString());
    m_files->setCurrentRow(0);
}

void ConfigChangesView::showChange(int row)
{
    m_lines->clear();
    if (row < 0 || row >= m_changes.size())
        return;
    const LineChanges& lines = m_changes.at(row).lines;
    QTextCursor cursor(m_lines->document());
    for (const QString& line : lines.removed)
        append(cursor, u'-', line, icons::stateColour(icons::State::Missing));
    for (const QString& line : lines.added)
        append(cursor, u'+', line, icons::stateColour(icons::State::New));
    m_lines->moveCursor(QTextCursor::Start);
}

void ConfigChangesView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        showChange(m_files->currentRow()); // the lines' colours are the palette's
}

} // namespace vt
