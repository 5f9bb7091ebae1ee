#include "platform/widgets/controls.h"

#include "platform/base/date.h"
#include "platform/base/width.h"
#include "platform/widgets/form.h"
#include "platform/widgets/style.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCalendarWidget>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTextCharFormat>

namespace {

constexpr auto lookProperty = "look";

void setLookProperty(QWidget* widget, const QString& look)
{
    if (widget->property(lookProperty).toString() == look)
        return;
    widget->setProperty(lookProperty, look);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
}

/// Attributes and hints don't keep an input method away from a field; only this answer does.
class NumberEdit : public QLineEdit
{
public:
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override
    {
        return query == Qt::ImEnabled ? QVariant(false) : QLineEdit::inputMethodQuery(query);
    }
};

/// The wheel scrolls the page that a closed combo stands on; it doesn't change the partner that was chosen.
class CalmCombo : public QComboBox
{
protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

/// Runs a command at one kind of event of a control.
class EventCommand : public QObject
{
public:
    EventCommand(QWidget* control, QEvent::Type type, std::function<void()> run)
        : QObject(control)
        , type_(type)
        , run_(std::move(run))
    {
        control->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == type_ && counts(static_cast<QWidget*>(watched), event)) {
            const auto run = run_; // the command may destroy the control, and this with it
            runCommand(run);
        }
        return false;
    }

private:
    static bool counts(const QWidget* control, QEvent* event)
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            return reason != Qt::PopupFocusReason && reason != Qt::ActiveWindowFocusReason &&
                   reason != Qt::MenuBarFocusReason;
        }
        const auto* mouse = static_cast<QMouseEvent*>(event);
        return mouse->button() == Qt::LeftButton && control->rect().contains(mouse->position().toPoint());
    }

    QEvent::Type type_;
    std::function<void()> run_;
};

/// Sends Tab for Enter. A small button beside a field is passed over: the next Enter would press it.
void moveOn(QWidget* widget)
{
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &tab);
    QWidget* reached = QApplication::focusWidget();
    if (reached && reached != widget && reached->property("look") == u"compact"_s)
        moveOn(reached);
}

class EnterAsTab : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key != Qt::Key_Return && key != Qt::Key_Enter)
            return false;
        moveOn(static_cast<QWidget*>(watched));
        return true;
    }
};

/// Asks before the operator's mouse or keys take a tab strip to another page.
class TabGuard : public QObject
{
public:
    TabGuard(QTabWidget* tabs, std::function<bool()> mayLeave)
        : QObject(tabs)
        , tabs_(tabs)
        , mayLeave_(std::move(mayLeave))
    {
        tabs->installEventFilter(this);
        tabs->tabBar()->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        bool leaving = false;
        if (event->type() == QEvent::MouseButtonPress && watched == tabs_->tabBar()) {
            const int tab = tabs_->tabBar()->tabAt(static_cast<QMouseEvent*>(event)->position().toPoint());
            leaving = tab >= 0 && tab != tabs_->currentIndex();
        } else if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            const bool control = static_cast<QKeyEvent*>(event)->modifiers() & Qt::ControlModifier;
            leaving = (control && (key == Qt::Key_Tab || key == Qt::Key_Backtab)) ||
                      (watched == tabs_->tabBar() && (key == Qt::Key_Left || key == Qt::Key_Right));
        } else if (event->type() == QEvent::Wheel && watched == tabs_->tabBar()) {
            return true;
        }
        if (!leaving)
            return false;
        bool may = false;
        runCommand([&] { may = mayLeave_(); });
        return !may;
    }

private:
    QTabWidget* tabs_;
    std::function<bool()> mayLeave_;
};

void prepareCalendar(QCalendarWidget* calendar)
{
    calendar->setLocale(QLocale(QLocale::Chinese, QLocale::China));
    calendar->setFirstDayOfWeek(Qt::Monday);
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    style::follow(calendar, [calendar] {
        QTextCharFormat header;
        header.setBackground(style::color(style::Role::Panel));
        header.setForeground(style::color(style::Role::MutedText));
        calendar->setHeaderTextFormat(header);
        QTextCharFormat weekend;
        weekend.setForeground(style::color(style::Role::Accent));
        calendar->setWeekdayTextFormat(Qt::Saturday, weekend);
        calendar->setWeekdayTextFormat(Qt::Sunday, weekend);
    });
}

} // namespace

QString controlName(const QString& name, int index)
{
    return index < 0 ? name : u"%1(%2)"_s.arg(name).arg(index);
}

QLineEdit* makeEdit(const QString& name, int index, EditKind kind)
{
    QLineEdit* edit = kind == EditKind::Number ? new NumberEdit : new QLineEdit;
    edit->setObjectName(controlName(name, index));
    switch (kind) {
    case EditKind::Number:
        edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        break;
    case EditKind::Code:
        QObject::connect(edit, &QLineEdit::textEdited, edit, [edit](const QString& typed) {
            QString text = plainWidth(typed);
            for (QChar& c : text)
                c = c.toUpper(); // one for one, so that the cursor keeps its place
            if (text == edit->text())
                return;
            const int cursor = edit->cursorPosition();
            edit->setText(text);
            edit->setCursorPosition(cursor);
        });
        break;
    case EditKind::Password:
        edit->setEchoMode(QLineEdit::Password);
        break;
    case EditKind::Text:
        break;
    }
    return edit;
}

QComboBox* makeCombo(const QString& name, int index, bool editable)
{
    auto* combo = new CalmCombo;
    combo->setObjectName(controlName(name, index));
    combo->setEditable(editable);
    combo->setInsertPolicy(QComboBox::NoInsert);
    if (editable)
        combo->setCompleter(nullptr);
    // A long name in the list must not widen the form.
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(8);
    constexpr int visibleItems = 20;
    combo->setMaxVisibleItems(visibleItems);
    return combo;
}

QLabel* makeLabel(const QString& name, const QString& caption, int index)
{
    auto* label = new QLabel(caption);
    label->setObjectName(controlName(name, index));
    label->setTextFormat(Qt::PlainText);
    return label;
}

QPushButton* makeButton(const QString& name, const QString& caption, std::function<void()> run, int index,
                        ButtonLook look)
{
    auto* button = new QPushButton(caption);
    button->setObjectName(controlName(name, index));
    button->setAutoDefault(true); // Enter presses the one that has the focus
    if (look != ButtonLook::Plain)
        setLookProperty(button, look == ButtonLook::Primary ? u"primary"_s : u"compact"_s);
    QObject::connect(button, &QPushButton::clicked, button, [run = std::move(run)] {
        const auto held = run; // the command may destroy the button, and with it what the connection holds
        runCommand(held);
    });
    return button;
}

QCheckBox* makeCheck(const QString& name, const QString& caption, int index)
{
    auto* check = new QCheckBox(caption);
    check->setObjectName(controlName(name, index));
    return check;
}

QRadioButton* makeOption(const QString& name, const QString& caption, int index)
{
    auto* option = new QRadioButton(caption);
    option->setObjectName(controlName(name, index));
    return option;
}

void setLook(QLabel* label, LabelLook look)
{
    static const QString names[] = {QString(), u"field"_s, u"total"_s, u"heading"_s};
    setLookProperty(label, names[static_cast<size_t>(look)]);
}

QLabel* makeBadge(const QString& name)
{
    QLabel* badge = makeLabel(name, {});
    badge->setAlignment(Qt::AlignCenter);
    badge->setContentsMargins(11, 4, 11, 4); // not padding of the stylesheet, which a hidden label doesn't count yet
    return badge;
}

void setBadge(QLabel* badge, const QString& text, BadgeLook look)
{
    const QString shown = look == BadgeLook::Good ? u"good"_s : u"warning"_s;
    setLookProperty(badge, text.isEmpty() ? QString() : shown);
    badge->setText(text);
}

void showAsTotal(QLineEdit* edit)
{
    setLookProperty(edit, u"total"_s);
    edit->setReadOnly(true);
    edit->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

QFrame* makePanel(const QString& name)
{
    auto* panel = new QFrame;
    panel->setObjectName(name);
    setLookProperty(panel, u"panel"_s);
    return panel;
}

QTabWidget* makeTabs(const QString& name, std::function<bool()> mayLeave)
{
    auto* tabs = new QTabWidget;
    tabs->setObjectName(name);
    tabs->tabBar()->setDrawBase(false);
    if (mayLeave)
        new TabGuard(tabs, std::move(mayLeave));
    return tabs;
}

// ---- layout

FieldLayout::FieldLayout(int columns)
    : pairs_(columns)
{
    setHorizontalSpacing(style::spacing);
    setVerticalSpacing(style::spacing - 2);
    for (int pair = 0; pair < columns; ++pair) {
        setColumnStretch(2 * pair + 1, 1);
        setColumnMinimumWidth(2 * pair + 1, 100);
    }
}

int FieldLayout::place(int span)
{
    if (next_ > 0 && next_ + span > pairs_)
        newRow();
    const int at = next_;
    next_ += span;
    return at;
}

void FieldLayout::add(QLabel* label, QWidget* field, int span)
{
    const int at = place(span);
    setLook(label, LabelLook::Field);
    label->setBuddy(field);
    if (field->accessibleName().isEmpty())
        field->setAccessibleName(label->text());
    addWidget(label, row_, 2 * at, Qt::AlignRight | Qt::AlignVCenter);
    addWidget(field, row_, 2 * at + 1, 1, 2 * span - 1);
}

void FieldLayout::add(const QString& caption, QWidget* field, int span)
{
    add(new QLabel(caption), field, span);
}

void FieldLayout::add(QLabel* label, std::initializer_list<QWidget*> controls, int span)
{
    const int at = place(span);
    setLook(label, LabelLook::Field);
    QHBoxLayout* row = makeRow(controls);
    if (QWidget* first = controls.size() > 0 ? *controls.begin() : nullptr) {
        label->setBuddy(first);
        if (first->accessibleName().isEmpty())
            first->setAccessibleName(label->text());
        row->setStretch(0, 1);
    }
    addWidget(label, row_, 2 * at, Qt::AlignRight | Qt::AlignVCenter);
    addLayout(row, row_, 2 * at + 1, 1, 2 * span - 1);
}

void FieldLayout::addUnlabelled(QWidget* widget, int span)
{
    const int at = place(span);
    addWidget(widget, row_, 2 * at + 1, 1, 2 * span - 1);
}

void FieldLayout::newRow()
{
    ++row_;
    next_ = 0;
}

QHBoxLayout* makeRow(std::initializer_list<QWidget*> widgets)
{
    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(style::spacing - 2);
    for (QWidget* widget : widgets)
        if (widget)
            row->addWidget(widget);
        else
            row->addStretch(1);
    return row;
}

// ---- dates

DatePicker::DatePicker(const QString& name, int index)
{
    setObjectName(controlName(name, index));
    setDisplayFormat(u"yyyy-M-d"_s);
    setLocale(QLocale(QLocale::Chinese, QLocale::China));
    setCalendarPopup(true);
    prepareCalendar(calendarWidget());
    connect(calendarWidget(), &QCalendarWidget::clicked, this, &DatePicker::pick);
    connect(calendarWidget(), &QCalendarWidget::activated, this, &DatePicker::pick);
}

void DatePicker::showAsButton()
{
    constexpr int buttonWidth = 24;
    setLookProperty(this, u"button"_s);
    lineEdit()->hide();
    style::fixWidth(this, buttonWidth);
    setFocusPolicy(Qt::ClickFocus); // Tab goes from the field beside it to the next one
}

DatePicker::~DatePicker()
{
    delete dropDown_;
}

QString DatePicker::text() const
{
    return dateText(date());
}

void DatePicker::setText(const QString& dateText)
{
    if (const auto parsed = parseDate(dateText))
        setDate(*parsed);
}

void DatePicker::pick()
{
    runCommand([this] { emit picked(); });
}

void DatePicker::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        QDateEdit::keyPressEvent(event);
        setCurrentSection(DaySection); // the last one: a Tab from the others would only lead to the next
        return moveOn(this);
    }
    const bool drops =
        event->key() == Qt::Key_F4 || (event->key() == Qt::Key_Down && event->modifiers().testFlag(Qt::AltModifier));
    if (!drops) {
        QDateEdit::keyPressEvent(event);
        return;
    }
    // The toolkit drops the calendar down by the mouse only.
    QStyleOptionComboBox option;
    option.initFrom(this);
    option.subControls = QStyle::SC_All;
    const QPointF arrow =
        style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, this).center();
    QMouseEvent press(QEvent::MouseButtonPress, arrow, mapToGlobal(arrow), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(this, &press);
}

void DatePicker::focusOutEvent(QFocusEvent* event)
{
    QDateEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason &&
        event->reason() != Qt::MenuBarFocusReason)
        pick();
}

void DatePicker::wheelEvent(QWheelEvent* event)
{
    event->ignore();
}

QCalendarWidget* DatePicker::droppedCalendar() const
{
    return dropDown_ ? dropDown_->findChild<QCalendarWidget*>() : nullptr;
}

void DatePicker::dropDownFor(QWidget* anchor)
{
    closeDropDown();
    QWidget* window = anchor->window();
    // A plain child of the window, not a popup: it blocks no input, and the keys stay the anchor's.
    auto* frame = new QFrame(window);
    frame->setProperty(lookProperty, u"panel"_s);
    frame->setObjectName(u"DateDropDown"_s);
    auto* layout = new QVBoxLayout(frame);
    layout->setContentsMargins(1, 1, 1, 1);
    auto* calendar = new QCalendarWidget(frame);
    layout->addWidget(calendar);
    prepareCalendar(calendar);
    for (QWidget* part : frame->findChildren<QWidget*>())
        part->setFocusPolicy(Qt::NoFocus);
    const auto* edit = qobject_cast<QLineEdit*>(anchor);
    const auto typed = edit ? parseDate(edit->text()) : std::nullopt;
    calendar->setSelectedDate(typed.value_or(date()));
    connect(calendar, &QCalendarWidget::clicked, this, [this](QDate day) {
        setDate(day);
        closeDropDown();
        pick();
    });
    if (edit)
        connect(edit, &QLineEdit::textEdited, calendar, [calendar](const QString& text) {
            if (const auto day = parseDate(text))
                calendar->setSelectedDate(*day);
        });

    frame->adjustSize();
    const QRect place(anchor->mapTo(window, QPoint(0, 0)), anchor->size());
    int top = place.bottom() + 2;
    if (top + frame->height() > window->height() && place.top() - 1 - frame->height() >= 0)
        top = place.top() - 1 - frame->height();
    frame->move(std::clamp(place.left(), 0, std::max(window->width() - frame->width(), 0)), top);
    frame->show();
    frame->raise();
    dropDown_ = frame;
    anchor_ = anchor;
    anchor->installEventFilter(this);
}

void DatePicker::closeDropDown()
{
    if (anchor_)
        anchor_->removeEventFilter(this);
    anchor_ = nullptr;
    if (!dropDown_)
        return;
    dropDown_->hide();
    dropDown_->deleteLater(); // a click in its calendar may be under way
    dropDown_ = nullptr;
}

bool DatePicker::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == anchor_) {
        const bool left = event->type() == QEvent::FocusOut &&
                          static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason; // its own month menu
        const bool escape = (event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride) &&
                            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
        if (escape && event->type() == QEvent::ShortcutOverride) {
            event->accept(); // Esc closes the calendar, not the window that a shortcut would close
            return true;
        }
        if (left || escape || event->type() == QEvent::Hide)
            closeDropDown();
        if (escape)
            return true;
    }
    return QDateEdit::eventFilter(watched, event);
}

// ---- habits

void enterMovesOn(QLineEdit* edit)
{
    QObject::connect(edit, &QLineEdit::returnPressed, edit, [edit] { moveOn(edit); });
}

void enterMovesOn(QComboBox* combo)
{
    if (combo->lineEdit())
        QObject::connect(combo->lineEdit(), &QLineEdit::returnPressed, combo, [combo] { moveOn(combo); });
    else
        combo->installEventFilter(new EnterAsTab(combo));
}

void onFocusIn(QWidget* control, std::function<void()> run)
{
    new EventCommand(control, QEvent::FocusIn, std::move(run));
}

void onFocusOut(QWidget* control, std::function<void()> run)
{
    new EventCommand(control, QEvent::FocusOut, std::move(run));
}

void onClick(QWidget* control, std::function<void()> run)
{
    new EventCommand(control, QEvent::MouseButtonRelease, std::move(run));
}

void onDoubleClick(QWidget* control, std::function<void()> run)
{
    new EventCommand(control, QEvent::MouseButtonDblClick, std::move(run));
}

void setLocked(QLineEdit* edit, bool locked)
{
    edit->setReadOnly(locked);
}

void focusText(QWidget* control)
{
    control->setFocus();
    auto* combo = qobject_cast<QComboBox*>(control);
    if (auto* edit = combo ? combo->lineEdit() : qobject_cast<QLineEdit*>(control))
        edit->selectAll();
}

BusyPointer::BusyPointer()
{
    QApplication::setOverrideCursor(Qt::WaitCursor);
}

BusyPointer::~BusyPointer()
{
    QApplication::restoreOverrideCursor();
}
