#include "shell/forms/folderchooser.h"

#include "platform/WinPath.h"

#include <QFile>
#include <QFileDialog>
#include <QGridLayout>
#include <QLabel>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace vt::folderchooser {

namespace {

QString hostFolderOf(const Files& files, QString folder)
{
    while (!folder.isEmpty() && !files.isFolder(folder))
        folder = winpath::parent(folder);
    return folder.isEmpty() ? QString() : QFile::decodeName(files.hostPath(folder));
}

/// The toolkit's own dialog has room for the sentence; a dialog of the desktop shows the title
/// alone.
void showPrompt(QFileDialog& dialog, const QString& prompt)
{
    auto* grid = qobject_cast<QGridLayout*>(dialog.layout());
    if (!grid || prompt.isEmpty())
        return;
    auto* label = new QLabel(prompt, &dialog);
    label->setObjectName(u"lblPrompt"_s);
    label->setWordWrap(true);
    grid->addWidget(label, grid->rowCount(), 0, 1, grid->columnCount());
}

void prepare(QFileDialog& dialog, const Files& files, const Request& request)
{
    dialog.setWindowTitle(request.title);
    dialog.setAccessibleDescription(request.prompt);
    const QString start =
        hostFolderOf(files, request.start.isEmpty() ? request.root : request.start);
    if (!start.isEmpty())
        dialog.setDirectory(start);
    QList<QUrl> places = {QUrl(u"file:"_s), QUrl::fromLocalFile(QDir::homePath())};
    if (const QString root = hostFolderOf(files, request.root); !root.isEmpty())
        places.prepend(QUrl::fromLocalFile(root));
    dialog.setSidebarUrls(places);
    if (!request.filters.isEmpty())
        dialog.setNameFilters(request.filters);
    showPrompt(dialog, request.prompt);
}

QStringList chosen(QFileDialog& dialog, const Files& files)
{
    QStringList out;
    if (dialog.exec() != QDialog::Accepted)
        return out;
    const QStringList hosts = dialog.selectedFiles();
    for (const QString& host : hosts)
        out.append(files.drives().toWindows(QDir::cleanPath(host)));
    return out;
}

std::optional<QString> firstOf(const QStringList& paths)
{
    return paths.isEmpty() ? std::nullopt : std::optional(paths.first());
}

} // namespace

std::optional<QString> chooseFolder(QWidget* parent, const Files& files, const Request& request)
{
    QFileDialog dialog(parent);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    prepare(dialog, files, request);
    const std::optional<QString> folder = firstOf(chosen(dialog, files));
    return folder ? std::optional(winpath::asFolder(*folder)) : folder;
}

std::optional<QString> chooseFile(QWidget* parent, const Files& files, const Request& request)
{
    QFileDialog dialog(parent);
    dialog.setFileMode(QFileDialog::ExistingFile);
    prepare(dialog, files, request);
    return firstOf(chosen(dialog, files));
}

QStringList chooseFiles(QWidget* parent, const Files& files, const Request& request)
{
    QFileDialog dialog(parent);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    prepare(dialog, files, request);
    return chosen(dialog, files);
}

std::optional<QString>
chooseFileToSave(QWidget* parent, const Files& files, const Request& request, const QString& name)
{
    QFileDialog dialog(parent);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    prepare(dialog, files, request);
    dialog.setDefaultSuffix(request.suffix);
    dialog.selectFile(name);
    return firstOf(chosen(dialog, files));
}

} // namespace vt::folderchooser
