#include "tools/play_acting.h"

#include "platform/base/date.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/grid.h"
#include "tools/play_player.h"
#include "tools/typing.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QGroupBox>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QStyleOptionButton>
#include <QTabWidget>
#include <QTest>
#include <QTextEdit>

#include <algorithm>

namespace play::acting {

using world::Found;

namespace {

QMdiSubWindow* childWindowOf(QWidget* form)
{
    return qobject_cast<QMdiSubWindow*>(form->parentWidget());
}

/// A menu that is open shows the item, itself or in a submenu.
bool isInPopup(const QAction* action)
{
    return std::ranges::any_of(world::menusAbove(action), &QWidget::isVisible);
}

void clickAt(QWidget* widget, QPoint at)
{
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, at);
}

/// The first click of the two acts as any click does.
void doubleClickAt(QWidget* widget, QPoint at)
{
    const QPointer<QWidget> kept = widget;
    clickAt(widget, at);
    if (kept)
        QTest::mouseDClick(widget, Qt::LeftButton, Qt::NoModifier, at);
}

/// A check box reacts to its sign and its words only, which may be far from the middle.
QPoint clickPoint(const QWidget* widget)
{
    QStyleOptionButton option;
    option.initFrom(widget);
    if (qobject_cast<const QCheckBox*>(widget))
        return widget->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, widget).center();
    if (qobject_cast<const QRadioButton*>(widget))
        return widget->style()->subElementRect(QStyle::SE_RadioButtonIndicator, &option, widget).center();
    return widget->rect().center();
}

/// From the outermost menu that is open inwards, as the pointer goes; the click closes all of them.
void clickInPopup(QAction* action)
{
    auto menus = world::menusAbove(action);
    std::ranges::reverse(menus);
    for (qsizetype i = 0; i < menus.size(); ++i) {
        if (!menus[i]->isVisible())
            continue;
        QAction* next = i + 1 < menus.size() ? menus[i + 1]->menuAction() : action;
        if (!next->menu()) {
            clickAt(menus[i], menus[i]->actionGeometry(next).center());
            return;
        }
        menus[i]->setActiveAction(next);
        if (!next->menu()->isVisible()) // a menu lets the pointer wait before it opens a submenu, but not this key
            QTest::sendKeyEvent(QTest::Click, menus[i], Qt::Key_Right, QString(), Qt::NoModifier);
    }
}

void clickAction(QAction* action)
{
    if (isInPopup(action)) {
        clickInPopup(action);
        return;
    }
    if (!action->menu()) {
        action->trigger();
        return;
    }
    for (QObject* object : action->associatedObjects())
        if (auto* bar = qobject_cast<QMenuBar*>(object))
            bar->setActiveAction(action);
}

QRect visibleItem(QAbstractItemView* view, const QModelIndex& index)
{
    view->scrollTo(index);
    return view->visualRect(index) & view->viewport()->rect();
}

/// The cell's index, after making sure that an operator could see it.
QModelIndex cellIndex(Grid* grid, const QString& name, int row, int column)
{
    if (row < 1 || row >= grid->Rows() || column >= grid->Cols())
        fail(u"a cell %1, %2 in %3"_s.arg(row).arg(column).arg(name),
             u"%1 rows and %2 columns"_s.arg(grid->Rows()).arg(grid->Cols()));
    if (grid->narrowed() && grid->isRowHidden(row - 1))
        fail(u"a row %1 in sight in %2"_s.arg(row).arg(name), u"one that the narrowing hides"_s);
    if (grid->isColumnHidden(column))
        fail(u"a visible column %1 in %2"_s.arg(column).arg(name), u"a hidden one"_s);
    return grid->model()->index(row - 1, column);
}

int firstVisibleColumn(const Grid* grid)
{
    int column = 0;
    while (column + 1 < grid->Cols() && grid->isColumnHidden(column))
        ++column;
    return column;
}

QModelIndex findItem(const QAbstractItemModel* model, const QString& text, const QModelIndex& parent)
{
    for (int row = 0; row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        if (index.data().toString() == text)
            return index;
        if (const QModelIndex below = findItem(model, text, index); below.isValid())
            return below;
    }
    return {};
}

} // namespace

bool turnTo(const Found& found, const QString& name)
{
    if (found.action && isInPopup(found.action))
        return false;
    bool turned = false;
    for (QWidget* popup = QApplication::activePopupWidget(); popup && !popup->isAncestorOf(found.widget);
         popup = QApplication::activePopupWidget()) {
        if (!popup->close())
            fail(u"%1 within reach"_s.arg(name), u"a pop-up in front of it that stays open"_s);
        turned = true;
    }
    if (const QWidget* blocker = world::blockerOf(found.form))
        fail(u"%1 within reach"_s.arg(name), u"%1 in front of it"_s.arg(world::nameOf(blocker)));
    if (!world::showing(found.form))
        fail(u"%1 to be showing"_s.arg(world::nameOf(found.form)), u"a hidden window"_s);
    if (QMdiSubWindow* child = childWindowOf(found.form);
        child && child->mdiArea() && child->mdiArea()->activeSubWindow() != child) {
        child->mdiArea()->setActiveSubWindow(child);
        turned = true;
    }
    if (QWidget* top = found.form->window(); QApplication::activeWindow() != top) {
        top->activateWindow();
        turned = true;
    }
    return turned;
}

void needReachable(const Found& found, const QString& name)
{
    if (found.action) {
        const auto state = [&name](const QAction* action) {
            const QString what = name.section(u'.', 0, 0) + u'.' + action->objectName();
            if (!action->isVisible())
                fail(u"%1 to be visible"_s.arg(what), u"a hidden command"_s);
            if (!action->isEnabled())
                fail(u"%1 to be enabled"_s.arg(what), u"a disabled command"_s);
        };
        state(found.action);
        if (!isInPopup(found.action))
            for (const QMenu* menu : world::menusAbove(found.action))
                state(menu->menuAction());
        return;
    }
    if (const QWidget* blocker = world::blockerOf(found.form))
        fail(u"%1 within reach"_s.arg(name), u"%1 in front of it"_s.arg(world::nameOf(blocker)));
    if (!found.widget->isVisible())
        fail(u"%1 to be visible"_s.arg(name), u"a hidden control"_s);
    if (!found.widget->isEnabled())
        fail(u"%1 to be enabled"_s.arg(name), u"a disabled control"_s);
}

void focus(const Found& found)
{
    if (found.widget && !world::focused(found))
        found.widget->setFocus(Qt::TabFocusReason);
}

void needFocus(const Found& found, const QString& name)
{
    if (world::focused(found))
        return;
    const QWidget* focus = QApplication::focusWidget();
    fail(u"%1 to take the focus"_s.arg(name), focus ? u"it on "_s + world::nameOf(focus) : u"no focus"_s);
}

void selectAllAndType(const Found& found, const QString& text)
{
    if (auto* edit = qobject_cast<QLineEdit*>(found.widget))
        edit->selectAll();
    else if (auto* combo = qobject_cast<QComboBox*>(found.widget); combo && combo->lineEdit())
        combo->lineEdit()->selectAll();
    else if (auto* plain = qobject_cast<QPlainTextEdit*>(found.widget))
        plain->selectAll();
    else if (auto* rich = qobject_cast<QTextEdit*>(found.widget))
        rich->selectAll();
    else if (auto* spin = qobject_cast<QAbstractSpinBox*>(found.widget))
        spin->selectAll();
    if (text.isEmpty())
        pressKey(Qt::Key_Delete);
    else
        typeText(text);
}

void leave(const Found& found)
{
    if (!world::focused(found))
        return;
    for (QWidget* next = QApplication::focusWidget()->nextInFocusChain(); next && next != found.widget;
         next = next->nextInFocusChain()) {
        const bool takesTab = next->focusPolicy() & Qt::TabFocus && !next->focusProxy();
        if (takesTab && next->isVisible() && next->isEnabled() && found.form->isAncestorOf(next) &&
            !found.widget->isAncestorOf(next) && !next->isAncestorOf(found.widget)) {
            next->setFocus(Qt::TabFocusReason);
            return;
        }
        if (next == QApplication::focusWidget())
            break;
    }
    QApplication::focusWidget()->clearFocus();
}

void click(const Found& found, const QString& name)
{
    if (found.action)
        clickAction(found.action);
    else if (found.widget == found.form)
        fail(u"a control"_s, u"the window "_s + name);
    else
        clickAt(found.widget, clickPoint(found.widget));
}

void doubleClick(const Found& found, const QString& name, std::optional<int> row)
{
    auto* grid = qobject_cast<Grid*>(found.widget);
    auto* view = qobject_cast<QAbstractItemView*>(found.widget);
    if (!found.widget || (row && !view))
        fail(u"a grid or list"_s, name);
    if (!view) {
        doubleClickAt(found.widget, clickPoint(found.widget));
        return;
    }
    QModelIndex index = view->currentIndex();
    if (row && grid)
        index = cellIndex(grid, name, *row, firstVisibleColumn(grid));
    else if (row)
        index = view->model()->index(*row, 0, view->rootIndex());
    if (!index.isValid())
        fail(u"a row to double click in %1"_s.arg(name), row ? u"no row %1"_s.arg(*row) : u"no current row"_s);
    doubleClickAt(view->viewport(), visibleItem(view, index).center());
}

void clickCell(const Found& found, const QString& name, int row, int column)
{
    auto* grid = qobject_cast<Grid*>(found.widget);
    if (!grid)
        fail(u"a grid"_s, name);
    clickAt(grid->viewport(), visibleItem(grid, cellIndex(grid, name, row, column)).center());
}

void choose(const Found& found, const QString& name, const QString& text)
{
    QAbstractItemView* view = qobject_cast<QAbstractItemView*>(found.widget);
    auto* combo = qobject_cast<QComboBox*>(found.widget);
    if (combo) {
        combo->showPopup();
        view = combo->view();
    }
    if (!view || qobject_cast<Grid*>(view))
        fail(u"a combo box or list"_s, name);
    const QModelIndex index =
        combo ? view->model()->index(combo->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive),
                                     combo->modelColumn(), combo->rootModelIndex())
              : findItem(view->model(), text, view->rootIndex());
    if (!index.isValid())
        fail(u"an item \"%1\" in %2"_s.arg(text, name),
             u"\"%1\""_s.arg(world::items(found).value_or(QStringList()).join(u"\", \""_s)));
    if (combo) {
        view->setCurrentIndex(index);
        const QPointer<QWidget> window = combo->window();
        QTest::sendKeyEvent(QTest::Click, view, Qt::Key_Return, u"\r"_s, Qt::NoModifier);
        // Without a window manager nobody gives the window back what its list had, and keys would go nowhere.
        const QWidget* modal = QApplication::activeModalWidget();
        if (window && window->isVisible() && (!modal || modal == window))
            window->activateWindow();
    } else {
        clickAt(view->viewport(), visibleItem(view, index).center());
    }
}

void setDate(const Found& found, const QString& name, const QString& date)
{
    auto* picker = qobject_cast<QDateEdit*>(found.widget);
    if (!picker)
        fail(u"a date picker"_s, name);
    // By sections, as a person types it. The day comes last: a day that the month in between hasn't got would be cut.
    const QDate wanted = *parseDate(date);
    const std::pair<QDateTimeEdit::Section, int> parts[] = {{QDateTimeEdit::YearSection, wanted.year()},
                                                            {QDateTimeEdit::MonthSection, wanted.month()},
                                                            {QDateTimeEdit::DaySection, wanted.day()}};
    for (const auto& [section, number] : parts) {
        picker->setSelectedSection(section);
        typeText(QString::number(number));
    }
    if (!picker->isReadOnly() && picker->date() != wanted)
        fail(u"%1 to take %2"_s.arg(name, date), dateText(picker->date()));
    leave(found);
}

void selectTab(const Found& found, const QString& name, int index)
{
    auto* strip = qobject_cast<QTabBar*>(found.widget);
    if (auto* tabs = qobject_cast<QTabWidget*>(found.widget))
        strip = tabs->tabBar();
    if (!strip)
        fail(u"a tab strip"_s, name);
    if (index >= strip->count())
        fail(u"a tab %1 in %2"_s.arg(index).arg(name), u"%1 tabs"_s.arg(strip->count()));
    if (!strip->isTabVisible(index) || !strip->isTabEnabled(index))
        fail(u"tab %1 in %2 to be visible and enabled"_s.arg(index).arg(name), u"one that isn't"_s);
    clickAt(strip, strip->tabRect(index).center());
}

void selectRow(const Found& found, const QString& name, int row)
{
    auto* grid = qobject_cast<Grid*>(found.widget);
    if (!grid)
        fail(u"a grid"_s, name);
    if (row >= grid->Rows())
        fail(u"a row %1 in %2"_s.arg(row).arg(name), u"%1 rows"_s.arg(grid->Rows()));
    if (grid->endEdit())
        grid->select(row, firstVisibleColumn(grid));
}

void closeWindow(QWidget* form)
{
    if (QMdiSubWindow* child = childWindowOf(form))
        child->close();
    else
        form->close();
}

} // namespace play::acting
