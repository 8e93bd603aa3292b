// The base of every page of the installation wizard. A page shows and changes the one
// CAddonInstallationDetails of the wizard; it keeps no decisions of its own.
#pragma once

#include "platform/Result.h"
#include "shell/SettingsTable.h"

#include <QString>
#include <QWidget>

namespace vt {

class CAddonInstallationDetails;
class Frame;
class Session;

/// What all pages of one wizard share.
struct WizardState
{
    Session& session;
    Frame& frame;
    /// Owned by the wizard; null until an add-on was chosen in step 1. Choosing another one
    /// replaces it, so no page keeps a pointer into it between enter() and the next one.
    CAddonInstallationDetails* details = nullptr;
};

/// Access keys: the main menu uses A F H O T W, the frame and the steps A B D E I L M N O S T U;
/// the pages have C G J K P Q R V X Y Z and the digits.
class WizardPage : public QWidget
{
    Q_OBJECT

public:
    /// \a state must outlive this.
    explicit WizardPage(WizardState& state, QWidget* parent = nullptr);

    /// The line above the page.
    [[nodiscard]] virtual QString header() const = 0;
    /// Where the page keeps its layout.
    [[nodiscard]] virtual Section section() const = 0;
    /// The page is about to be shown: fills it from the details, which other pages may have changed
    /// since.
    virtual void enter() = 0;
    /// Takes over what is not in the details yet, and validates. A failure keeps the page, and its
    /// text is shown below it, unless the page tells() it; what is wrong where is marked on the
    /// page. Called some time after each edited() too, so it must move no focus and ask nothing.
    virtual Result leave() = 0;

    /// Whether the page shows this text of leave() itself, at what it is about.
    [[nodiscard]] virtual bool tells(const QString& problem) const
    {
        Q_UNUSED(problem)
        return false;
    }

    /// The user is on the way to another page, by a step's button, Back, Next (\a forward) or
    /// Finish: takes what was typed and asks what has to be asked before. Called before leave();
    /// false keeps the page.
    virtual bool advance(bool forward)
    {
        Q_UNUSED(forward)
        return true;
    }

    /// Keeps the page's layout in its section; called before another page is shown and at the end.
    virtual void Form_Settings_Save() {}

Q_SIGNALS:
    /// Something was changed: the wizard validates shortly after and refreshes its steps.
    void edited();
    /// A change moved files of other families: "Other steps may have been updated to reflect the
    /// changes you just made."
    void othersChanged();

protected:
    /// Makes \a content the page. In a window that is too small for it, it is scrolled.
    void setContent(QWidget* content);

    [[nodiscard]] WizardState& state() const { return m_state; }

    /// The details; only between enter() and the page's end, when an add-on was chosen.
    [[nodiscard]] CAddonInstallationDetails& details() const { return *m_state.details; }

private:
    WizardState& m_state;
};

} // namespace vt
