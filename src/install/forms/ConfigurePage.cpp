#include "install/forms/ConfigurePage.h"

#include "install/CAddonInstallationDetails.h"
#include "install/forms/PictureBox.h"
#include "platform/WinPath.h"
#include "session/Session.h"
#include "shell/Settings.h"
#include "shell/forms/FolderBox.h"
#include "shell/forms/WrappedLabel.h"

#include <QBuffer>
#include <QButtonGroup>
#include <QClipboard>
#include <QGroupBox>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace vt {

namespace {

/// Height of a page on which nothing has to move closer, in lines.
constexpr int comfortableLines = 34;
/// Below that, in a small main window, the folder's hint goes too and the methods stand close.
constexpr int narrowLines = 28;

/// How a page makes room.
enum Closeness
{
    AtEase,
    Closer,
    Narrow,
    WithoutTitle, ///< of the folder's frame
};

/// At once, not when the layouts come to it.
void measureAnew(QWidget* part)
{
    part->layout()->activate();
    part->updateGeometry();
}

} // namespace

ConfigurePage::ConfigurePage(WizardState& state, const ConfigurePageLook& look, QWidget* parent)
    : WizardPage(state, parent), m_look(look)
{
    m_manager = new CInstallWizardSubFormManager(state, {look.family}, look.section, this);
    connect(m_manager, &CInstallWizardSubFormManager::placeShown, this, [this] {
        m_pending = false;
        m_folderWanted = false;
        showAll();
    });
    connect(m_manager, &CInstallWizardSubFormManager::decided, this, [this](bool others) {
        showAll();
        Q_EMIT edited();
        if (others)
            Q_EMIT othersChanged();
    });
}

void ConfigurePage::build(QLabel* title, const std::function<QWidget*()>& extra)
{
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins({});
    m_column = column;
    m_spacing = column->spacing();
    if (title)
        column->addWidget(title);
    setFocusProxy(m_manager->addTabs(column));
    if (!m_look.prompt.isEmpty()) {
        m_prompt = new QLabel(m_look.prompt, content);
        m_prompt->setObjectName(u"lblPrompt"_s);
        wrap(m_prompt);
        column->addWidget(m_prompt);
    }
    m_methodRow = new QBoxLayout(QBoxLayout::LeftToRight);
    if (!m_look.methodName.isEmpty())
        m_methodRow->addWidget(methods(), 1);
    if (takesPicture(m_look.family))
        m_methodRow->addWidget(pictureFrame());
    column->addLayout(m_methodRow);
    if (!m_look.folderLabel.isEmpty())
        column->addWidget(folderFrame());
    if (extra)
        column->addWidget(extra());
    m_manager->addList(column);
    setContent(content);
}

/// On a low page everything stands closer, as close as it must so that nothing has to be scrolled
/// for.
void ConfigurePage::fitHeight()
{
    const int line = fontMetrics().lineSpacing();
    int closeness = height() < line * narrowLines        ? Narrow
                    : height() < line * comfortableLines ? Closer
                                                         : AtEase;
    setCloseness(closeness);
    const auto needed = [this] {
        return qMax(m_column->totalMinimumSize().height(),
                    m_column->hasHeightForWidth() ? m_column->totalHeightForWidth(width()) : 0);
    };
    while (closeness < WithoutTitle && needed() > height())
        setCloseness(++closeness);
}

/// The prompt gives way first, which the frames say again; then the folder's hint and title.
void ConfigurePage::setCloseness(int closeness)
{
    const bool low = closeness > AtEase;
    const bool lowest = closeness >= Narrow;
    if (m_prompt)
        m_prompt->setVisible(!low);
    m_column->setSpacing(lowest ? m_spacing / 3 : low ? m_spacing / 2 : m_spacing);
    if (m_folderBox) {
        m_folderBox->setCompact(lowest);
        measureAnew(m_folderBox);
        m_folderFrame->setTitle(closeness == WithoutTitle ? QString()
                                                          : m_folderFrame->accessibleName());
    }
    if (m_methodFrame)
        m_methodFrame->layout()->setSpacing(lowest ? 0 : m_spacing / 2);
    const auto frames = findChildren<QGroupBox*>();
    for (QGroupBox* frame : frames) {
        const int margin = style()->pixelMetric(QStyle::PM_LayoutTopMargin, nullptr, frame);
        QMargins margins = frame->layout()->contentsMargins();
        margins.setTop(lowest ? 0 : low ? margin / 3 : margin);
        margins.setBottom(margins.top());
        frame->layout()->setContentsMargins(margins);
        measureAnew(frame);
    }
}

/// On a narrow page the picture lies below the methods instead of beside them.
void ConfigurePage::resizeEvent(QResizeEvent* event)
{
    WizardPage::resizeEvent(event);
    if (m_picture && m_methodFrame) {
        const int beside = m_methodFrame->minimumSizeHint().width() + m_picture->wideWidth() +
                           m_methodRow->spacing();
        const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
        const bool narrow = beside + bar > width();
        m_picture->setCompact(narrow);
        m_methodRow->setDirection(narrow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    }
    fitHeight();
}

QWidget* ConfigurePage::methods()
{
    m_methodFrame = new QGroupBox(u"Select Installation Method"_s, this);
    auto* column = new QVBoxLayout(m_methodFrame);
    column->setSpacing(column->spacing() / 2);
    m_methods = new QButtonGroup(this);
    const QList<MethodLabel> offered =
        methodLabels(m_look.family, state().session.context().global.names);
    for (const MethodLabel& label : offered) {
        auto* button = new QRadioButton(label.label, m_methodFrame);
        button->setObjectName(m_look.methodName);
        m_methods->addButton(button, int(label.method));
        column->addWidget(button);
    }
    column->addStretch();
    connect(m_methods, &QButtonGroup::idClicked, this, &ConfigurePage::methodChosen);
    return m_methodFrame;
}

QWidget* ConfigurePage::folderFrame()
{
    const GlobalRecord& global = state().session.context().global;
    m_folderFrame = new QGroupBox(u"Set Installation Folder"_s, this);
    m_folderFrame->setAccessibleName(m_folderFrame->title());
    auto* column = new QVBoxLayout(m_folderFrame);
    m_folderBox = new FolderBox(state().session.context(), m_look.folderLabel, m_folderFrame);
    m_folderBox->setChooser(m_look.chooser);
    m_folderBox->setQuickPicks(m_look.section);
    m_folderBox->setHint(folderHint(m_look.family, global.names, global.generation));
    connect(m_folderBox, &FolderBox::problemChanged, this, &ConfigurePage::fitHeight);
    m_folderBox->take = [this](const QString& folder) { return takeFolder(folder); };
    column->addWidget(m_folderBox);
    return m_folderFrame;
}

QWidget* ConfigurePage::pictureFrame()
{
    m_picture = new PictureBox(this);
    connect(m_picture, &PictureBox::noneWanted, this, &ConfigurePage::clearPicture);
    connect(m_picture, &PictureBox::fileWanted, this, &ConfigurePage::choosePicture);
    connect(m_picture, &PictureBox::clipboardWanted, this, &ConfigurePage::takeClipboard);
    connect(m_picture, &PictureBox::filesDropped, this, &ConfigurePage::takeDropped);
    return m_picture;
}

int ConfigurePage::group() const
{
    return state().details ? m_manager->current().group : -1;
}

const InstallationGroup* ConfigurePage::shownGroup() const
{
    const int index = group();
    return index < 0 ? nullptr : &details().groups(m_look.family)[size_t(index)];
}

void ConfigurePage::say(const QString& text) const
{
    if (!text.isEmpty())
        state().session.services().status.text(u"Primary"_s, text);
}

void ConfigurePage::enter()
{
    m_pending = false;
    m_folderWanted = false;
    m_manager->enter();
    showAll();
}

void ConfigurePage::showAll()
{
    const InstallationGroup* shown = shownGroup();
    showMethod(shown);
    showPicture(shown);
    showGroup();
    fitHeight();
}

void ConfigurePage::showMethod(const InstallationGroup* group)
{
    if (m_methodFrame)
        m_methodFrame->setEnabled(group != nullptr);
    if (m_methods && group && !m_pending) {
        if (QAbstractButton* button = m_methods->button(int(group->method)))
            button->setChecked(true);
    }
    if (!m_folderFrame)
        return;
    const bool chosen = group && (m_pending || group->method == InstallationMethod::ChosenFolder ||
                                  group->method == InstallationMethod::NewRepaint);
    m_folderFrame->setEnabled(chosen);
    if (!m_pending)
        m_folderBox->setFolder(!group               ? QString()
                               : group->asRepaint() ? group->aircraftFolder
                                                    : group->targetFolder);
}

void ConfigurePage::showPicture(const InstallationGroup* group)
{
    if (!m_picture)
        return;
    m_picture->setEnabled(group != nullptr);
    m_picture->show(group ? group->picture : GroupPicture());
}

void ConfigurePage::methodChosen(int id)
{
    if (group() < 0)
        return;
    const auto method = InstallationMethod(id);
    m_pending = false;
    m_folderWanted = false;
    const bool takesFolder = method == InstallationMethod::ChosenFolder;
    const Result changed = m_manager->decide([&] { return takeMethod(method); }, takesFolder);
    if (changed || !takesFolder || changed.kind == ErrorKind::Declined) {
        showAll();
        return;
    }
    // A folder is missing yet: the line waits for it.
    m_pending = true;
    m_folderWanted = true;
    m_folderBox->setFolder({});
    showAll();
    m_folderBox->setFocus();
    Q_EMIT edited();
}

Result ConfigurePage::takeMethod(InstallationMethod method)
{
    return details().InstallationDetails_ModifyPerInstallationMethod(
        m_look.family, group(), method);
}

Result ConfigurePage::takeFolder(const QString& folder)
{
    const bool pending = std::exchange(m_pending, false);
    const Result taken = m_manager->decide(
        [&] { return details().InstallationDetails_Modify(m_look.family, group(), folder); }, true);
    m_pending = pending && !taken;
    m_folderWanted = m_folderWanted && !taken;
    if (!taken)
        Q_EMIT edited();
    return taken;
}

bool ConfigurePage::tells(const QString& problem) const
{
    return m_folderBox && m_folderBox->problem() == problem;
}

Result ConfigurePage::leave()
{
    if (m_folderBox && !m_folderBox->problem().isEmpty())
        return Result::failure(m_folderBox->problem());
    if (m_pending)
        return Result::failure(u"Please select a valid folder first."_s);
    return m_manager->validate();
}

bool ConfigurePage::advance(bool forward)
{
    if (m_folderBox && m_folderBox->isEnabled() && !m_folderBox->commit())
        return false;
    if (forward && m_folderWanted)
        m_folderBox->choose();
    return !m_pending && !(forward && m_folderWanted);
}

void ConfigurePage::Form_Settings_Save()
{
    m_manager->saveLayout();
}

// The picture.

void ConfigurePage::picture(const std::function<Result()>& decision)
{
    (void)m_manager->decide(decision);
    showPicture(shownGroup());
}

void ConfigurePage::clearPicture()
{
    picture([this] { return details().Picture_Clear(m_look.family, group()); });
}

void ConfigurePage::choosePicture()
{
    Session& session = state().session;
    Settings& settings = session.context().settings;
    const auto file = folderchooser::chooseFile(
        this,
        session.services().files,
        {u"Select Picture File"_s,
         u"Select a picture file."_s,
         settings.text(SettingKey::ViewImageFolder),
         details().source().path().endsWith(u'\\') ? details().source().path() : QString(),
         {u"Pictures (*.bmp *.gif *.jpg *.jpeg *.png *.tif *.tiff *.tga *.dds *.pcx)"_s,
          u"All files (*)"_s}});
    if (!file) {
        showPicture(shownGroup());
        return;
    }
    (void)settings.setText(SettingKey::ViewImageFolder, winpath::parent(*file));
    takePictureFile(*file);
}

void ConfigurePage::takePictureFile(const QString& file)
{
    picture([&] { return details().Picture_SetFromFile(m_look.family, group(), file); });
}

void ConfigurePage::takeDropped(const QStringList& hostFiles)
{
    if (hostFiles.size() == 1)
        takePictureFile(state().session.userPath(hostFiles.first()));
    else
        picture([] { return Result::failure(u"Select a single file."_s); });
}

void ConfigurePage::takeClipboard()
{
    const QImage image = QGuiApplication::clipboard()->image();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!image.isNull())
        image.save(&buffer, "PNG");
    picture([&]() -> Result {
        if (bytes.isEmpty())
            return Result::failure(
                u"The clipboard holds no picture. Copy one in another program first."_s);
        return details().Picture_SetFromClipboard(m_look.family, group(), bytes);
    });
}

} // namespace vt
