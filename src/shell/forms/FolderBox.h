// A line for one Windows folder: typed, chosen in a dialog or picked from the recent ones. What is
// refused stays in the line with the reason below it, so that it can be mended.
#pragma once

#include "platform/Result.h"
#include "shell/Context.h"
#include "shell/SettingsTable.h"
#include "shell/forms/folderchooser.h"

#include <QWidget>

#include <functional>
#include <optional>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QLineEdit;
class QMenu;
class QToolButton;

namespace vt {

class FolderBox : public QWidget
{
    Q_OBJECT

public:
    /// \a context must outlive this. \a label with its access key.
    FolderBox(Context& context, const QString& label, QWidget* parent = nullptr);
    ~FolderBox() override;

    /// Asked to take a folder (ends in "\", spelled as on the disk) that the user gave; the text of
    /// a refusal is shown at the line. Without it every folder is taken.
    std::function<Result(const QString& folder)> take;

    /// Title, prompt and root of the chooser. What is typed without a drive lies below the root.
    void setChooser(const folderchooser::Request& chooser);
    /// The window whose recent folders are offered; without it there is no "Quick Picks" button.
    void setQuickPicks(Section window);
    /// A line below the box; empty: none.
    void setHint(const QString& hint);
    /// Without the hint, which the button beside the line tells too.
    void setCompact(bool compact);

    /// Shows a folder without taking it; whatever was refused before is forgotten.
    void setFolder(const QString& folder);

    /// The folder that was shown or taken last.
    [[nodiscard]] const QString& folder() const { return m_folder; }

    /// Takes what was typed and not taken yet. A failure says why the line cannot be left.
    Result commit();

    /// Why the folder that was given last was refused; empty when none was.
    [[nodiscard]] const QString& problem() const { return m_problem; }

    /// Opens the dialog, as the button does.
    void choose();

    /// As if the user had typed it.
    Result give(const QString& folder) { return takeFolder(folder); }

    /// Puts a button of the window's own behind the others.
    void addButton(QWidget* button);

    [[nodiscard]] QLineEdit* line() const { return m_line; }

Q_SIGNALS:
    /// The user's folder was taken.
    void folderTaken(const QString& folder);
    /// One was refused, or the refused one was mended or given up; \a problem empty: all is well.
    void problemChanged(const QString& problem);

protected:
    void changeEvent(QEvent* event) override;

private:
    void makeLine(const QString& label, QGridLayout* grid);
    void makeButtons(QGridLayout* grid);
    void makeTexts(QGridLayout* grid);
    void fillQuickPicks();
    Result takeFolder(const QString& typed);
    void showProblem(const QString& problem);
    void showState();
    [[nodiscard]] QString meant(const QString& typed) const;

    Context& m_context;
    folderchooser::Request m_chooser;
    std::optional<Section> m_recent;
    QString m_folder;
    QString m_problem;
    bool m_taking = false;
    bool m_compact = false;
    QLineEdit* m_line = nullptr;
    QToolButton* m_choose = nullptr;
    QToolButton* m_quickPicks = nullptr;
    QMenu* m_picks = nullptr;
    QBoxLayout* m_buttons = nullptr;
    QLabel* m_problemIcon = nullptr;
    QLabel* m_problemText = nullptr;
    QLabel* m_hint = nullptr;
};

} // namespace vt
