#include "tools/play_world.h"

#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "tools/play_script.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QGroupBox>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>

#include <algorithm>

namespace play::world {

namespace {

bool ended = false;

/// The objects of that name, exactly written ones if there are any.
template <class T>
QList<T*> named(const QList<T*>& all, const QString& name)
{
    QList<T*> exact, loose;
    for (T* object : all) {
        if (object->objectName() == name)
            exact += object;
        else if (object->objectName().compare(name, Qt::CaseInsensitive) == 0)
            loose += object;
    }
    return exact.isEmpty() ? loose : exact;
}

/// Oldest first.
QList<QWidget*> windowsNamed(const QString& name)
{
    if (ended)
        return {};
    QList<QWidget*> forms;
    for (Form* form : Form::all())
        forms += form;
    if (const auto found = named(forms, name); !found.isEmpty())
        return found;
    QList<QWidget*> others; // the main window and the background are no forms
    for (QWidget* widget : QApplication::allWidgets())
        if (!qobject_cast<Form*>(widget))
            others += widget;
    auto found = named(others, name);
    std::stable_partition(found.begin(), found.end(), [](QWidget* w) { return !w->isVisible(); });
    return found;
}

QWidget* windowOf(const ControlPath& path)
{
    const auto windows = windowsNamed(path.form);
    if (path.instance > windows.size())
        return nullptr;
    return path.instance ? windows.at(path.instance - 1) : windows.isEmpty() ? nullptr : windows.last();
}

/// Child forms are descendants of the main window, but their controls aren't the main window's.
bool belongsTo(const QObject* object, const QWidget* form)
{
    for (const QObject* o = object; o; o = o->parent()) {
        if (o == form)
            return true;
        if (qobject_cast<const Form*>(o))
            return false;
    }
    return false;
}

template <class T>
T* controlIn(QWidget* form, const QString& name)
{
    QList<T*> own;
    for (T* object : form->findChildren<T*>())
        if (belongsTo(object, form))
            own += object;
    const auto found = named(own, name);
    return found.isEmpty() ? nullptr : found.last();
}

/// Also what a menu shows but doesn't own, submenus included.
QAction* actionIn(const QMenu* menu, const QString& name)
{
    QList<QAction*> actions = menu->actions();
    for (qsizetype i = 0; i < actions.size(); ++i)
        if (const QMenu* sub = actions[i]->menu())
            actions += sub->actions();
    const auto found = named(actions, name);
    return found.isEmpty() ? nullptr : found.first();
}

QString itemText(const QAbstractItemView* view)
{
    return view->currentIndex().data().toString();
}

std::optional<QString> widgetText(const QWidget* widget)
{
    if (const auto* form = qobject_cast<const Form*>(widget))
        return form->Caption();
    if (const auto* edit = qobject_cast<const QLineEdit*>(widget))
        return edit->text();
    if (const auto* combo = qobject_cast<const QComboBox*>(widget))
        return combo->currentText();
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        return label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget))
        return button->text();
    if (const auto* picker = qobject_cast<const DatePicker*>(widget))
        return picker->text();
    if (const auto* spin = qobject_cast<const QAbstractSpinBox*>(widget))
        return spin->text();
    if (const auto* plain = qobject_cast<const QPlainTextEdit*>(widget))
        return plain->toPlainText();
    if (const auto* rich = qobject_cast<const QTextEdit*>(widget))
        return rich->toPlainText();
    if (const auto* box = qobject_cast<const QGroupBox*>(widget))
        return box->title();
    if (const auto* tabs = qobject_cast<const QTabWidget*>(widget))
        return tabs->tabText(tabs->currentIndex());
    if (const auto* strip = qobject_cast<const QTabBar*>(widget))
        return strip->tabText(strip->currentIndex());
    if (const auto* bar = qobject_cast<const QProgressBar*>(widget))
        return bar->text();
    if (const auto* list = qobject_cast<const QAbstractItemView*>(widget); list && !qobject_cast<const Grid*>(widget))
        return itemText(list);
    return {};
}

} // namespace

void setEnded()
{
    ended = true;
}

Found find(const QString& name)
{
    const auto path = controlPath(name);
    Found found;
    found.form = path ? windowOf(*path) : nullptr;
    if (!found.form)
        return {};
    if (path->control.isEmpty()) {
        found.widget = found.form;
        return found;
    }
    // A pop-up menu that is open is in front of everything else. One made for the moment belongs to no window.
    for (QWidget* window : QApplication::topLevelWidgets())
        if (auto* menu = qobject_cast<QMenu*>(window); menu && menu->isVisible())
            if (QAction* action = actionIn(menu, path->control);
                action && (belongsTo(action, found.form) || !menu->parent())) {
                found.action = action;
                return found;
            }
    if (!(found.widget = controlIn<QWidget>(found.form, path->control)))
        found.action = controlIn<QAction>(found.form, path->control);
    return found;
}

QString missing(const QString& name)
{
    const auto path = controlPath(name);
    if (!path || !windowOf(*path))
        return u"no form "_s + name.section(u'.', 0, 0);
    return u"no control %1 in %2"_s.arg(path->control, path->form);
}

bool showing(const QWidget* form)
{
    const auto* child = qobject_cast<const QMdiSubWindow*>(form->parentWidget());
    return !form->isHidden() && form->window()->isVisible() && (child ? !child->isHidden() : form->isVisible());
}

bool visible(const Found& found)
{
    if (found.action)
        return found.action->isVisible();
    if (found.widget == found.form)
        return showing(found.form);
    return showing(found.form) && found.widget->isVisibleTo(found.form);
}

bool enabled(const Found& found)
{
    return found.action ? found.action->isEnabled() : found.widget->isEnabled();
}

bool focused(const Found& found)
{
    const QWidget* focus = QApplication::focusWidget();
    return focus && found.widget && (focus == found.widget || found.widget->isAncestorOf(focus));
}

std::optional<bool> on(const Found& found)
{
    if (found.action)
        return found.action->isChecked();
    if (const auto* button = qobject_cast<const QAbstractButton*>(found.widget); button && button->isCheckable())
        return button->isChecked();
    if (const auto* box = qobject_cast<const QGroupBox*>(found.widget); box && box->isCheckable())
        return box->isChecked();
    return {};
}

bool secret(const QWidget* widget)
{
    const auto* edit = qobject_cast<const QLineEdit*>(widget);
    // A cost that may be typed and not read shows stars as well; a password's field never shows anything else.
    return edit && edit->echoMode() != QLineEdit::Normal;
}

std::optional<QString> text(const Found& found)
{
    if (found.action) {
        const QString whole = commandCaption(found.action);
        return whole.isEmpty() ? found.action->text() : whole;
    }
    if (auto own = widgetText(found.widget))
        return own;
    if (found.widget != found.form)
        return {};
    // The toolkit rewrites a main window's title while a child is maximised; the window keeps its own caption.
    const QVariant caption = found.form->property("caption");
    return caption.isValid() ? caption.toString() : found.form->windowTitle();
}

std::optional<QStringList> items(const Found& found)
{
    const QAbstractItemModel* model = nullptr;
    QModelIndex root;
    int column = 0;
    if (const auto* combo = qobject_cast<const QComboBox*>(found.widget)) {
        model = combo->model();
        root = combo->rootModelIndex();
        column = combo->modelColumn();
    } else if (const auto* view = qobject_cast<const QAbstractItemView*>(found.widget)) {
        if (qobject_cast<const Grid*>(view))
            return {};
        model = view->model();
        root = view->rootIndex();
    }
    if (!model)
        return {};
    QStringList texts;
    for (int i = 0; i < model->rowCount(root); ++i)
        texts += model->index(i, column, root).data().toString();
    return texts;
}

QList<QMenu*> menusAbove(const QAction* action)
{
    QList<QMenu*> menus;
    for (bool found = true; found;) {
        found = false;
        for (QObject* object : action->associatedObjects())
            if (auto* menu = qobject_cast<QMenu*>(object); menu && !menus.contains(menu)) {
                menus += menu;
                action = menu->menuAction();
                found = true;
                break;
            }
    }
    return menus;
}

QWidget* blockerOf(const QWidget* window)
{
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal)
        return nullptr;
    for (const QWidget* w = window->window(); w; w = w->parentWidget() ? w->parentWidget()->window() : nullptr)
        if (w == modal)
            return nullptr;
    return modal;
}

QWidget* windowInFront()
{
    if (QWidget* modal = QApplication::activeModalWidget(); modal && modal->isVisible())
        return modal;
    const auto mains = windowsNamed(u"MForm"_s);
    return mains.isEmpty() || !mains.last()->isVisible() ? nullptr : mains.last();
}

QString nameOf(const QWidget* window)
{
    return window->objectName().isEmpty() ? QString::fromLatin1(window->metaObject()->className())
                                          : window->objectName();
}

} // namespace play::world
