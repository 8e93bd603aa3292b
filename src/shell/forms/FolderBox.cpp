#include "shell/forms/FolderBox.h"

#include "platform/WinPath.h"
#include "shell/RecentFolders.h"
#include "shell/forms/Icons.h"
#include "shell/forms/WrappedLabel.h"

#include <QAction>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScopedValueRollback>
#include <QStyle>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// The longest text of a menu entry, in average characters.
constexpr int pickWidth = 70;

} // namespace

FolderBox::FolderBox(Context& context, const QString& label, QWidget* parent)
    : QWidget(parent), m_context(context)
{
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins({});
    makeLine(label, grid);
    makeButtons(grid);
    makeTexts(grid);
    setFocusProxy(m_line);
}

FolderBox::~FolderBox()
{
    m_line->disconnect(this); // with the focus in it, it ends its editing when it goes
}

void FolderBox::makeLine(const QString& label, QGridLayout* grid)
{
    auto* caption = new QLabel(label, this);
    m_line = new QLineEdit(this);
    m_line->setObjectName(u"txtFolder"_s);
    caption->setBuddy(m_line);
    grid->addWidget(caption, 0, 0);
    grid->addWidget(m_line, 0, 1);
    grid->setColumnStretch(1, 1);
    connect(m_line, &QLineEdit::editingFinished, this, [this] { (void)commit(); });
    connect(m_line, &QLineEdit::textEdited, this, [this] { showProblem({}); });
}

void FolderBox::makeButtons(QGridLayout* grid)
{
    m_choose = new QToolButton(this);
    m_choose->setObjectName(u"cmdChooseFolder"_s);
    m_choose->setIcon(icons::command(u"browse"_s));
    m_choose->setFocusPolicy(Qt::StrongFocus);
    m_choose->setAccessibleName(u"Choose folder"_s);
    m_choose->setToolTip(u"Choose a folder in a dialog"_s);
    m_buttons = new QHBoxLayout;
    m_buttons->addWidget(m_choose);
    grid->addLayout(m_buttons, 0, 2);
    connect(m_choose, &QToolButton::clicked, this, &FolderBox::choose);
    m_picks = new QMenu(this);
    m_picks->setToolTipsVisible(true);
    m_quickPicks = new QToolButton(this);
    m_quickPicks->setObjectName(u"cmdQuickPicks"_s);
    m_quickPicks->setText(u"&Quick Picks"_s);
    m_quickPicks->setToolTip(u"Folders that were chosen here before"_s);
    m_quickPicks->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_quickPicks->setPopupMode(QToolButton::InstantPopup);
    m_quickPicks->setFocusPolicy(Qt::StrongFocus);
    m_quickPicks->setMenu(m_picks);
    m_quickPicks->hide();
    m_buttons->addWidget(m_quickPicks);
    connect(m_picks, &QMenu::aboutToShow, this, &FolderBox::fillQuickPicks);
}

void FolderBox::makeTexts(QGridLayout* grid)
{
    m_problemIcon = new QLabel(this);
    m_problemText = new QLabel(this);
    m_problemText->setObjectName(u"lblFolderProblem"_s);
    wrap(m_problemText);
    auto* problem = new QHBoxLayout;
    problem->addWidget(m_problemIcon, 0, Qt::AlignTop);
    problem->addWidget(m_problemText, 1);
    grid->addLayout(problem, 1, 1, 1, 2);
    m_hint = new QLabel(this);
    m_hint->setObjectName(u"lblFolderHint"_s);
    wrap(m_hint);
    grid->addWidget(m_hint, 2, 1, 1, 2);
    m_problemIcon->hide();
    m_problemText->hide();
    m_hint->hide();
    showState();
}

void FolderBox::setChooser(const folderchooser::Request& chooser)
{
    m_chooser = chooser;
    m_choose->setToolTip(chooser.prompt.isEmpty() ? chooser.title : chooser.prompt);
}

void FolderBox::setQuickPicks(Section window)
{
    m_recent = window;
    m_quickPicks->show();
}

void FolderBox::addButton(QWidget* button)
{
    m_buttons->addWidget(button);
    setTabOrder(m_quickPicks, button);
}

void FolderBox::setHint(const QString& hint)
{
    m_hint->setText(hint);
    m_line->setAccessibleDescription(hint);
    m_hint->setVisible(!hint.isEmpty() && !m_compact);
}

void FolderBox::setCompact(bool compact)
{
    m_compact = compact;
    m_hint->setVisible(!m_hint->text().isEmpty() && !m_compact);
}

void FolderBox::setFolder(const QString& folder)
{
    m_folder = folder;
    m_line->setText(folder);
    m_line->setToolTip(folder);
    m_line->setCursorPosition(0); // the drive and the simulator's folder tell most
    showProblem({});
}

/// A name alone, or a folder of the host, becomes the Windows folder that it stands for.
QString FolderBox::meant(const QString& typed) const
{
    const QString text = typed.trimmed();
    if (text.isEmpty())
        return {};
    if (winpath::isAbsolute(text) || text.startsWith(u'\\'))
        return winpath::asFolder(winpath::normalised(text));
    if (text.startsWith(u'/'))
        return winpath::asFolder(m_context.services.files.drives().toWindows(text));
    return m_chooser.root.isEmpty()
               ? text
               : winpath::asFolder(winpath::normalised(winpath::join(m_chooser.root, text)));
}

Result FolderBox::commit()
{
    const QString typed = m_line->text();
    if (typed == m_folder) {
        showProblem({});
        return Result::success();
    }
    return m_problem.isEmpty() ? takeFolder(typed) : Result::failure(m_problem);
}

Result FolderBox::takeFolder(const QString& typed)
{
    if (m_taking) // a question is open, and the line lost the focus to it
        return Result::success();
    const QScopedValueRollback taking(m_taking, true);
    const QString wanted = meant(typed);
    if (!winpath::isAbsolute(wanted)) {
        showProblem(u"Please select a valid folder first."_s);
        return Result::failure(m_problem);
    }
    const QString folder = m_context.services.files.spelled(wanted);
    const Result taken = take ? take(folder) : Result::success();
    if (!taken && taken.kind == ErrorKind::Declined) { // the user thought better of it
        setFolder(QString(m_folder));
        return Result::success();
    }
    if (!taken) {
        m_line->setText(typed);
        showProblem(taken.text);
        return taken;
    }
    setFolder(folder);
    if (m_recent)
        (void)recentfolders::add(m_context, *m_recent, folder); // a convenience that may be lost
    Q_EMIT folderTaken(folder);
    return Result::success();
}

void FolderBox::choose()
{
    folderchooser::Request request = m_chooser;
    request.start = m_folder.isEmpty() ? m_chooser.root : m_folder;
    const auto folder = folderchooser::chooseFolder(this, m_context.services.files, request);
    if (folder)
        (void)takeFolder(*folder);
}

void FolderBox::fillQuickPicks()
{
    m_picks->clear();
    const QStringList folders =
        m_recent ? recentfolders::list(m_context, *m_recent) : QStringList();
    const QFontMetrics metrics = m_picks->fontMetrics();
    const int width = metrics.averageCharWidth() * pickWidth;
    for (const QString& folder : folders) {
        QString text = metrics.elidedText(folder, Qt::ElideMiddle, width);
        QAction* pick = m_picks->addAction(text.replace(u'&', u"&&"_s));
        pick->setToolTip(folder);
        connect(pick, &QAction::triggered, this, [this, folder] { (void)takeFolder(folder); });
    }
    if (folders.isEmpty())
        m_picks->addAction(u"No Quick Picks available."_s)->setEnabled(false);
}

void FolderBox::showProblem(const QString& problem)
{
    if (problem == m_problem)
        return;
    m_problem = problem;
    m_problemText->setText(problem);
    m_problemText->setVisible(!problem.isEmpty());
    m_problemIcon->setVisible(!problem.isEmpty());
    m_line->setAccessibleDescription(problem);
    Q_EMIT problemChanged(problem);
}

void FolderBox::showState()
{
    const int extent = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    m_problemIcon->setPixmap(
        icons::state(icons::State::Attention).pixmap(QSize(extent, extent), devicePixelRatio()));
}

void FolderBox::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::FontChange)
        showState();
}

} // namespace vt
