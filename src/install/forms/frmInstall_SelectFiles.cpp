#include "install/forms/frmInstall_SelectFiles.h"

#include "archive/forms/frmSelectFSO.h"
#include "install/CAddonInstallationDetails.h"
#include "install/forms/SourceContentsModel.h"
#include "platform/Text.h"
#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/ColumnView.h"
#include "shell/forms/Icons.h"

#include <QDragEnterEvent>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace vt {

frmInstall_SelectFiles::frmInstall_SelectFiles(WizardState& state, QWidget* parent)
    : WizardPage(state, parent), m_recent(state.session.context(), section())
{
    setAcceptDrops(true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    buildPath();
    buildProblem();
    buildContents();
    (void)m_recent.Build(); // a list that cannot be read is an empty one
}

QString frmInstall_SelectFiles::header() const
{
    return state().details
               ? u"Customize the configuration then press Finish to install the addon."_s
               : u"Select addon files to install."_s;
}

// The parts.

void frmInstall_SelectFiles::buildPath()
{
    auto* grid = new QGridLayout;
    auto* label = new QLabel(u"&Path of the add-on:"_s);
    m_path = new QLineEdit;
    m_path->setObjectName(u"txtSource"_s);
    m_path->setPlaceholderText(u"Drop an archive here, type its path or choose it"_s);
    m_path->setClearButtonEnabled(true);
    m_path->installEventFilter(this);
    label->setBuddy(m_path);
    grid->addWidget(label, 0, 0);
    grid->addWidget(m_path, 0, 1);
    auto* row = new QHBoxLayout;
    const auto button = [row](const QString& text, const QString& name) {
        auto* made = new QPushButton(text);
        made->setObjectName(name);
        made->setAutoDefault(false);
        row->addWidget(made);
        return made;
    };
    connect(button(u"&Choose File or Folder..."_s, u"cmdChoose"_s),
            &QPushButton::clicked,
            this,
            &frmInstall_SelectFiles::chooseInWindow);
    m_recentButton = new QToolButton;
    m_recentButton->setObjectName(u"cmdRecent"_s);
    m_recentButton->setText(u"&Recent"_s);
    m_recentButton->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_recentButton->setPopupMode(QToolButton::InstantPopup);
    m_recentButton->setFocusPolicy(Qt::StrongFocus);
    m_recentMenu = new QMenu(m_recentButton);
    m_recentButton->setMenu(m_recentMenu);
    connect(m_recentMenu, &QMenu::aboutToShow, this, &frmInstall_SelectFiles::fillRecent);
    row->addWidget(m_recentButton);
    row->addStretch(1);
    grid->addLayout(row, 1, 1);
    qobject_cast<QVBoxLayout*>(layout())->addLayout(grid);
    connect(m_path, &QLineEdit::textEdited, this, [this] { showProblem({}); });
    setFocusProxy(m_path);
}

void frmInstall_SelectFiles::buildProblem()
{
    m_problem = new QWidget;
    auto* row = new QHBoxLayout(m_problem);
    row->setContentsMargins({});
    auto* icon = new QLabel;
    const int extent = style()->pixelMetric(QStyle::PM_SmallIconSize);
    icon->setPixmap(icons::state(icons::State::Attention).pixmap(extent, extent));
    row->addWidget(icon, 0, Qt::AlignTop);
    m_problemText = new QLabel;
    m_problemText->setObjectName(u"lblProblem"_s);
    m_problemText->setWordWrap(true);
    m_problemText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    row->addWidget(m_problemText, 1);
    m_problem->hide();
    layout()->addWidget(m_problem);
}

void frmInstall_SelectFiles::buildContents()
{
    m_summary = new QLabel;
    m_summary->setObjectName(u"lblContents"_s);
    m_summary->setWordWrap(true);
    layout()->addWidget(m_summary);
    m_model = new SourceContentsModel(this);
    m_contents = new ColumnView;
    m_contents->setObjectName(u"tvwContents"_s);
    m_contents->setAccessibleName(u"Files of the add-on"_s);
    m_contents->setRootIsDecorated(true);
    m_contents->setModel(m_model);
    m_contents->setEmptyText(
        u"The files of the add-on are listed here before anything is installed."_s,
        u"Choose File or Folder..."_s);
    m_contents->restoreLayout(state().session.context().settings, section(), ViewPrefix::Zip);
    // The names get what the others leave.
    m_contents->header()->setSectionResizeMode(SourceContentsModel::NameColumn,
                                               QHeaderView::Stretch);
    connect(
        m_contents, &ColumnView::emptyButtonClicked, this, &frmInstall_SelectFiles::chooseInWindow);
    qobject_cast<QVBoxLayout*>(layout())->addWidget(m_contents, 1);
}

// What is chosen.

void frmInstall_SelectFiles::enter()
{
    Form_Addon_Selections_Restore();
    showContents();
}

void frmInstall_SelectFiles::Form_Addon_Selections_Restore()
{
    if (!state().details)
        return;
    m_shown = state().details->source().path();
    m_path->setText(m_shown);
    showProblem({});
}

bool frmInstall_SelectFiles::isPending() const
{
    return m_path->text().trimmed() != m_shown;
}

Result frmInstall_SelectFiles::leave()
{
    if (isPending() && !m_path->text().trimmed().isEmpty()) {
        if (Result chosen = choose(m_path->text()); !chosen)
            return Result::failure({}); // told on the page already
    }
    if (!state().details) {
        const Result none =
            Result::failure(u"Choose the archive or the folder of an add-on first."_s);
        showProblem(none.text);
        return Result::failure({});
    }
    return Result::success();
}

Result frmInstall_SelectFiles::choose(const QString& typed)
{
    const QString text = typed.trimmed();
    m_path->setText(text);
    m_shown = text;
    showProblem({});
    const QString source = state().session.userPath(text);
    Result result = Result::success();
    Q_EMIT sourceChosen(source, result);
    if (!result) {
        m_shown.clear(); // what was refused is tried again
        showProblem(result.text);
        m_path->setFocus();
        m_path->selectAll();
        return result;
    }
    (void)m_recent.Add(source); // a list that cannot be written is no reason to stop
    enter();
    return result;
}

void frmInstall_SelectFiles::showProblem(const QString& text)
{
    m_problemText->setText(text);
    m_problem->setVisible(!text.isEmpty());
}

void frmInstall_SelectFiles::showContents()
{
    const CAddonInstallationDetails* details = state().details;
    m_model->setDetails(details);
    m_summary->setVisible(details);
    if (!details)
        return;
    const AddonSource& source = details->source();
    QString text = u"'"_s + winpath::name(source.path()) + u"' holds "_s +
                   countText(source.files(), u"file"_s, u"files"_s) + u", "_s +
                   sizeText(source.bytes()) + u'.';
    for (const QString& remark : source.remarks())
        text += u'\n' + remark;
    m_summary->setText(text);
    if (m_model->fileCount() <= expandsUpTo)
        m_contents->expandAll();
    else
        m_contents->expandToDepth(0);
    m_contents->autoSizeAtFirst();
    m_contents->setCurrentIndex(m_model->index(0, 0));
}

void frmInstall_SelectFiles::Form_Settings_Save()
{
    m_contents->saveLayout(state().session.context().settings, section(), ViewPrefix::Zip);
}

// Ways to choose.

void frmInstall_SelectFiles::chooseInWindow()
{
    const auto chosen = frmSelectFSO::choose(this, state().session, u"Select Addon Files"_s);
    if (chosen)
        (void)choose(*chosen); // told on the page
}

void frmInstall_SelectFiles::fillRecent()
{
    m_recentMenu->clear();
    (void)m_recent.Build(); // other windows add to it
    for (const CRecentItem& item : m_recent.items().colRecentItems()) {
        QString text = m_recentMenu->fontMetrics().elidedText(
            item.sRecentItem, Qt::ElideMiddle, width() * 2 / 3);
        QAction* action = m_recentMenu->addAction(text.replace(u'&', u"&&"_s));
        action->setToolTip(item.sRecentItem);
        connect(action, &QAction::triggered, this, [this, path = item.sRecentItem] {
            (void)choose(path); // told on the page
        });
    }
    if (m_recentMenu->isEmpty())
        m_recentMenu->addAction(u"Nothing was installed yet."_s)->setEnabled(false);
}

bool frmInstall_SelectFiles::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_path && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (enter && isPending() && !m_path->text().trimmed().isEmpty()) {
            (void)choose(m_path->text()); // told on the page
            return true;                  // what was chosen is shown before Enter goes on
        }
    }
    return WizardPage::eventFilter(watched, event);
}

void frmInstall_SelectFiles::dragEnterEvent(QDragEnterEvent* event)
{
    const QList<QUrl> urls = event->mimeData()->urls();
    if (urls.size() == 1 && urls.first().isLocalFile())
        event->acceptProposedAction();
}

void frmInstall_SelectFiles::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    (void)choose(event->mimeData()->urls().first().toLocalFile()); // told on the page
}

} // namespace vt
