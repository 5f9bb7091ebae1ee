#pragma once

#include "platform/base/text.h"

#include <QAction>
#include <QEventLoop>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <functional>

class QDialog;
class QLabel;
class QMdiArea;
class QMdiSubWindow;

/// The one place that runs commands: every action, click, key and focus event of a form goes through it, since an
/// exception must not cross the event loop. A failure is told in the error box and ends that command only.
/// @return false when the command failed
bool runCommand(const std::function<void()>& command);

/// Shows a dialog of the toolkit's modally: an open write run is committed first, and the window before it gets the
/// activation back (some window systems leave none active). The result is the dialog's.
int execModal(QDialog& dialog);

/// A window of the program: a command bar at its top, its content below. It is named as the rules name it; the name is
/// its objectName. It stands as a tab of the main window's area or as a modal window in front of the active one.
/// A form is made at first use and destroyed when it is unloaded.
class Form : public QWidget
{
    Q_OBJECT

public:
    /// The caption is the window's title and what `Caption` gives, whatever the toolkit makes of a title.
    Form(const QString& name, const QString& caption);
    ~Form() override;

    QString Name() const { return objectName(); }
    QString Caption() const { return caption_; }
    void setCaption(const QString& caption);

    /// As a child window of the area, or brings it forward when it is there; the focus goes inside.
    void Show();
    /// Blocks the other windows and returns when the form has been hidden or unloaded. An unloaded form's members can
    /// be read until control returns to the event loop; a hidden one stays loaded.
    void ShowModal();
    /// Asks `queryUnload`; when it agrees, runs `unloaded`, closes the window and destroys the form. The form is no
    /// longer `loaded` then, but lives until control returns to the event loop, so that its own command may unload it.
    /// @return false when the form stays
    bool Unload();

    /// The newest loaded form of that name, or null.
    static Form* loaded(const QString& name);
    /// All loaded forms, oldest first.
    static const QList<Form*>& all();
    /// Where `Show` puts child windows, as tabs; the main window sets it. Without one they are windows of their own.
    static void setArea(QMdiArea* area);
    /// The form in front in the area, or null.
    static Form* activeChild();
    /// While the focus is inside a child window, Alt with a letter is its command bar's: the menu of the main window
    /// drops its letters then, and takes them back with Alt alone or the mouse.
    static void shareLetters(QMenuBar* mainMenu);

    /// What F1 does: it gets the name of the form that the focus is in.
    static void setHelp(std::function<void(const QString& form)> help);

    QMenuBar* commandBar() { return bar_; }
    /// A command at the end of the bar, or of a menu in it. `name` becomes the action's objectName, "Menu_prn(0)"
    /// included; the caption with its "&" is kept whole for `commandCaption`.
    QAction* addCommand(const QString& name, const QString& caption, std::function<void()> run);
    QAction* addCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run);
    QMenu* addCommandMenu(const QString& name, const QString& caption);
    /// The action of that name in this form's bar and menus, or null.
    QAction* command(const QString& name) const;
    /// The form's content goes in here.
    QVBoxLayout* content() { return content_; }

    /// The operator or what they may do has changed while the form is open.
    virtual void sessionChanged() {}
    /// Another command has removed or replaced records that this form may be showing.
    virtual void recordsChanged() {}
    /// Tells all loaded forms; the form in front comes last, as the status panel is its own.
    static void tellRecordsChanged();

protected:
    /// False keeps the form open, and so does a failure in it. Called on every road to closing: command, close box,
    /// tab.
    virtual bool queryUnload() { return true; }
    /// Last act before the form is gone.
    virtual void unloaded() {}
    /// A warning that stands in plain sight above the content, asked for each time the form is shown; "" for none.
    virtual QString notice() const { return {}; }
    /// Which widget takes the focus when the form is first shown; null for the first in the tab order.
    virtual QWidget* firstFocus() { return nullptr; }
    void closeEvent(QCloseEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool release();
    void focusInside();
    void showNotice();

    QString caption_;
    QMenuBar* bar_ = nullptr;
    QLabel* notice_ = nullptr;
    QVBoxLayout* content_ = nullptr;
    QPointer<QMdiSubWindow> child_;
    QEventLoop* modal_ = nullptr;
    bool unloading_ = false; ///< the question is being asked
    bool entered_ = false;   ///< has had the focus where `firstFocus` wants it
    bool released_ = false;  ///< no longer loaded, the object waits for its end
};

/// The single instance of a form, made at first use.
template <class F>
F& theForm()
{
    if (auto* form = Form::loaded(F::formName()))
        return *static_cast<F*>(form);
    return *new F;
}

/// The caption as it was given, "&" and all: what is shown changes, since a hidden command must give its letter up and
/// the main menu drops its letters while the focus is in a child.
QString commandCaption(const QAction* action);
void setCommandCaption(QAction* action, const QString& caption);
/// A hidden action of a menu bar would still own its letter: hiding takes the "&" out of its text, showing puts it
/// back.
void setCommandVisible(QAction* action, bool visible);
/// While `dropped`, the action shows its caption without a letter.
void setCommandLetterDropped(QAction* action, bool dropped);
