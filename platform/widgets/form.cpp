#include "platform/widgets/form.h"

#include "platform/base/dialogs.h"
#include "platform/widgets/style.h"

#include <QActionEvent>
#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>

#include <exception>
#include <utility>

namespace {

constexpr auto captionProperty = "caption";
constexpr auto droppedProperty = "letterDropped";

QList<Form*>& loadedForms()
{
    static QList<Form*> forms;
    return forms;
}

QPointer<QMdiArea>& formArea()
{
    static QPointer<QMdiArea> area;
    return area;
}

std::function<void(const QString&)>& formHelp()
{
    static std::function<void(const QString&)> help;
    return help;
}

QString withoutLetter(const QString& caption)
{
    QString shown;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] != u'&')
            shown += caption[i];
        else if (i + 1 < caption.size() && caption[i + 1] == u'&')
            shown += caption.mid(i++, 2);
    }
    return shown;
}

void showCaption(QAction* action)
{
    const QString caption = commandCaption(action);
    const bool letterless = !action->isVisible() || action->property(droppedProperty).toBool();
    const QString shown = letterless ? withoutLetter(caption) : caption;
    if (action->text() != shown)
        action->setText(shown);
}

/// Without a window manager no window is active after a modal one has closed, and no shortcut works any more. The
/// closed one may still count as active until its window system has been heard.
void activateAgain(QWidget* owner)
{
    const QWidget* active = QApplication::activeWindow();
    if (owner && owner->isVisible() && (!active || !active->isVisible()))
        owner->activateWindow();
}

/// The content of a form. Where it needs more than there is, as with a large font on a small screen, it scrolls. It
/// asks for as much as the content, but a child window for little: the main window must fit the screen.
class Room : public QScrollArea
{
public:
    explicit Room(QWidget* inside)
    {
        setWidget(inside);
        setWidgetResizable(true);
        setFrameShape(QFrame::NoFrame);
        setFocusPolicy(Qt::NoFocus); // else Tab would stop here
        QSizePolicy policy = sizePolicy();
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
            if (now && widget() && widget()->isAncestorOf(now) && now->height() < viewport()->height())
                ensureWidgetVisible(now, style::spacing, style::spacing);
        });
    }

    QSize sizeHint() const override { return fitting(widget()->sizeHint().expandedTo(widget()->minimumSize())); }
    QSize minimumSizeHint() const override
    {
        constexpr QSize least(240, 120);
        const bool child = !parentWidget() || !parentWidget()->isWindow();
        return child ? least : fitting(widget()->minimumSizeHint().expandedTo(widget()->minimumSize()));
    }
    bool hasHeightForWidth() const override { return widget()->layout()->hasHeightForWidth(); }
    int heightForWidth(int width) const override { return widget()->heightForWidth(width); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == widget() && event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }

private:
    /// No more than a window may take of the screen.
    QSize fitting(QSize wanted) const
    {
        constexpr QSize around(60, 120); // frame, title and command bar
        const QSize all = screen()->availableGeometry().size();
        const QWidget* main = formArea() ? formArea()->window() : nullptr;
        const QSize most = (main ? all.expandedTo(main->size()) : all) - around;
        const QSize bars(wanted.height() > most.height() ? verticalScrollBar()->sizeHint().width() : 0, 0);
        return (wanted + bars).boundedTo(most);
    }
};

/// A change of mode shows, hides and renames a dozen commands, and for each change of each the toolkit would measure
/// all captions anew. Nobody sees the bar or presses a key before the loop turns, so once then is enough.
class CommandBar : public QMenuBar
{
public:
    using QMenuBar::QMenuBar;

protected:
    void actionEvent(QActionEvent* event) override
    {
        if (event->type() != QEvent::ActionChanged || !isVisible())
            return QMenuBar::actionEvent(event);
        if (!std::exchange(waiting_, true))
            QMetaObject::invokeMethod(this, &CommandBar::takeChanges, Qt::QueuedConnection);
    }

private:
    void takeChanges()
    {
        waiting_ = false;
        if (actions().isEmpty())
            return;
        QActionEvent changed(QEvent::ActionChanged, actions().constFirst()); // it heeds all of them
        QMenuBar::actionEvent(&changed);
    }

    bool waiting_ = false;
};

QWidget* windowInFront()
{
    // A window that was just closed may still count as active; a form that stood before it would die with it.
    QWidget* active = QApplication::activeWindow();
    auto* form = qobject_cast<Form*>(active);
    if (active && active->isVisible() && (!form || Form::all().contains(form)))
        return active;
    return formArea() ? formArea()->window() : nullptr;
}

} // namespace

bool runCommand(const std::function<void()>& command)
{
    try {
        command();
        return true;
    } catch (const std::exception& failure) {
        errorBox(QString::fromUtf8(failure.what()));
        return false;
    }
}

int execModal(QDialog& dialog)
{
    beforeAsking();
    const QPointer<QWidget> owner = windowInFront();
    const int result = dialog.exec();
    activateAgain(owner);
    return result;
}

Form::Form(const QString& name, const QString& caption)
    : bar_(new CommandBar(this))
{
    setObjectName(name);
    setCaption(caption);
    setAutoFillBackground(true);
    setAttribute(Qt::WA_QuitOnClose, false); // a form before the main window, closed, doesn't end the program
    bar_->setNativeMenuBar(false);
    bar_->hide(); // a form without commands has no empty bar
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(bar_);
    notice_ = new QLabel;
    notice_->setObjectName(u"notice"_s);
    notice_->setProperty("look", u"warning"_s);
    notice_->setWordWrap(true);
    notice_->setMargin(style::spacing);
    notice_->hide();
    outer->addWidget(notice_);
    auto* inside = new QWidget;
    content_ = new QVBoxLayout(inside);
    content_->setContentsMargins(style::spacing + 2, style::spacing, style::spacing + 2, style::spacing);
    content_->setSpacing(style::spacing);
    outer->addWidget(new Room(inside), 1);
    loadedForms().append(this);
}

Form::~Form()
{
    loadedForms().removeOne(this);
    if (modal_)
        modal_->quit();
}

void Form::setCaption(const QString& caption)
{
    caption_ = caption;
    setWindowTitle(caption);
}

void Form::showNotice()
{
    const QString text = notice();
    notice_->setText(text);
    notice_->setVisible(!text.isEmpty());
}

void Form::Show()
{
    if (released_)
        return;
    showNotice();
    if (!formArea()) {
        show();
        activateWindow();
        focusInside();
        return;
    }
    if (!child_) {
        child_ = formArea()->addSubWindow(this);
        child_->setWindowIcon(QApplication::windowIcon());
    }
    child_->showMaximized();
    formArea()->setActiveSubWindow(child_);
    focusInside();
}

void Form::ShowModal()
{
    if (released_ || modal_)
        return;
    beforeAsking();
    showNotice();
    const QPointer<QWidget> owner = windowInFront();
    setParent(owner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint);
    setWindowModality(Qt::ApplicationModal);
    if (layout())
        layout()->activate();
    if (!testAttribute(Qt::WA_Resized))
        adjustSize();
    if (owner) {
        const QRect frame = owner->frameGeometry();
        move(frame.center() - rect().center());
    }
    const QPointer<Form> self = this;
    QEventLoop loop;
    modal_ = &loop;
    show();
    activateWindow();
    focusInside();
    loop.exec(QEventLoop::DialogExec);
    if (self) {
        modal_ = nullptr;
        hide();
        if (released_)
            deleteLater(); // only from here: earlier the loop above might have destroyed it before its caller looks at
                           // it
        else
            setParent(nullptr); // hidden but loaded: it must not end with the window that it stood before
    }
    activateAgain(owner);
}

bool Form::Unload()
{
    if (!release())
        return false;
    if (child_)
        child_->close(); // takes the tab away and destroys the child window with the form in it
    else
        close();
    return true;
}

/// Asks, tells the form, and takes it off the list of loaded forms. True once the form is on its way out.
bool Form::release()
{
    if (released_)
        return true;
    if (unloading_)
        return false;
    unloading_ = true;
    bool agreed = false;
    const bool asked = runCommand([&] { agreed = queryUnload(); });
    unloading_ = false;
    if (!asked || !agreed)
        return false;
    released_ = true;
    loadedForms().removeOne(this);
    runCommand([this] { unloaded(); });
    if (modal_)
        modal_->quit();
    else if (!child_)
        deleteLater();
    return true;
}

void Form::closeEvent(QCloseEvent* event)
{
    event->setAccepted(release());
}

void Form::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    if (modal_ && !event->spontaneous())
        modal_->quit();
}

void Form::focusInside()
{
    // The area has put the focus somewhere before the form is asked.
    QWidget* current = std::exchange(entered_, true) ? focusWidget() : nullptr;
    if (current && current != this && isAncestorOf(current) && current->isEnabled() && !bar_->isAncestorOf(current)) {
        current->setFocus();
        return;
    }
    QWidget* target = firstFocus();
    for (QWidget* next = nextInFocusChain(); !target && next != this; next = next->nextInFocusChain())
        if (isAncestorOf(next) && (next->focusPolicy() & Qt::TabFocus) && next->isEnabled() && next->isVisibleTo(this))
            target = next;
    if (!target) {
        // Something inside must have the focus, else the commands' letters don't work.
        setFocusPolicy(Qt::StrongFocus);
        target = this;
    }
    target->setFocus();
}

Form* Form::loaded(const QString& name)
{
    const auto& forms = loadedForms();
    const auto found = std::find_if(forms.rbegin(), forms.rend(), [&](Form* form) { return form->Name() == name; });
    return found == forms.rend() ? nullptr : *found;
}

const QList<Form*>& Form::all()
{
    return loadedForms();
}

void Form::setArea(QMdiArea* area)
{
    formArea() = area;
    if (!area)
        return;
    area->setViewMode(QMdiArea::TabbedView);
    area->setDocumentMode(true);
    area->setTabsClosable(true);
    area->setTabsMovable(true);
    area->setFrameShape(QFrame::NoFrame);
    if (auto* tabs = area->findChild<QTabBar*>()) {
        tabs->setExpanding(false);
        tabs->setDrawBase(false);
    }
}

void Form::setHelp(std::function<void(const QString& form)> help)
{
    formHelp() = std::move(help);
}

/// What no control has taken ends up here.
void Form::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_F1 || event->modifiers() != Qt::NoModifier || !formHelp())
        return QWidget::keyPressEvent(event);
    runCommand([this] { formHelp()(Name()); });
}

void Form::tellRecordsChanged()
{
    QList<Form*> forms = all();
    if (Form* front = activeChild())
        forms.append(forms.takeAt(forms.indexOf(front)));
    for (Form* form : forms)
        runCommand([form] { form->recordsChanged(); });
}

Form* Form::activeChild()
{
    if (!formArea())
        return nullptr;
    // `currentSubWindow` also answers while another window of the program is active.
    QMdiSubWindow* child = formArea()->currentSubWindow();
    return child ? qobject_cast<Form*>(child->widget()) : nullptr;
}

namespace {

/// A letter with Alt that no command has is a mistaken command; the toolkit's fields would take it as text.
class StrayLetters : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const auto* key = static_cast<QKeyEvent*>(event);
        const auto* combo = qobject_cast<QComboBox*>(watched);
        return key->modifiers() == Qt::AltModifier && !key->text().isEmpty() && key->text().at(0).isPrint() &&
               (qobject_cast<QLineEdit*>(watched) || (combo && combo->isEditable()));
    }
};

} // namespace

void Form::shareLetters(QMenuBar* mainMenu)
{
    qApp->installEventFilter(new StrayLetters(mainMenu));
    QObject::connect(qApp, &QApplication::focusChanged, mainMenu, [mainMenu] {
        // The area without a form may have the focus too, and a form gets it before its child window counts as active.
        const QWidget* focus = QApplication::focusWidget();
        bool inChild = false;
        if (focus && formArea() && formArea()->isAncestorOf(focus))
            for (; focus && focus != formArea() && !inChild; focus = focus->parentWidget())
                inChild = qobject_cast<const Form*>(focus);
        for (QAction* action : mainMenu->actions())
            setCommandLetterDropped(action, inChild);
    });
}

QAction* Form::addCommand(const QString& name, const QString& caption, std::function<void()> run)
{
    return addCommand(nullptr, name, caption, std::move(run));
}

QAction* Form::addCommand(QMenu* menu, const QString& name, const QString& caption, std::function<void()> run)
{
    auto* action = new QAction(this);
    action->setObjectName(name);
    setCommandCaption(action, caption);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { runCommand(run); });
    if (menu)
        menu->addAction(action);
    else
        bar_->addAction(action);
    bar_->show();
    return action;
}

QMenu* Form::addCommandMenu(const QString& name, const QString& caption)
{
    auto* menu = new QMenu(this);
    menu->menuAction()->setObjectName(name);
    setCommandCaption(menu->menuAction(), caption);
    bar_->addMenu(menu);
    bar_->show();
    return menu;
}

QAction* Form::command(const QString& name) const
{
    return findChild<QAction*>(name);
}

QString commandCaption(const QAction* action)
{
    const QVariant caption = action->property(captionProperty);
    return caption.isValid() ? caption.toString() : action->text();
}

void setCommandCaption(QAction* action, const QString& caption)
{
    action->setProperty(captionProperty, caption);
    showCaption(action);
}

void setCommandVisible(QAction* action, bool visible)
{
    if (!action->property(captionProperty).isValid())
        action->setProperty(captionProperty, action->text());
    action->setVisible(visible);
    showCaption(action);
}

void setCommandLetterDropped(QAction* action, bool dropped)
{
    if (!action->property(captionProperty).isValid())
        action->setProperty(captionProperty, action->text());
    action->setProperty(droppedProperty, dropped);
    showCaption(action);
}
