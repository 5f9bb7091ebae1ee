#pragma once

#include "platform/base/text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include <functional>
#include <initializer_list>

class QCalendarWidget;
class QHBoxLayout;

/// Makers of controls. Each sets the objectName that the control is known by, index in round brackets for a member of a
/// control array: ("Txt", 0) is "Txt(0)". Clicks run through `runCommand`.

QString controlName(const QString& name, int index = -1);

enum class EditKind { Text, Number, Code, Password };

/// Number: right-aligned, takes no input method; digits in full width stay as typed, since `Val` reads them. Code: what
/// is typed turns to capitals, and from full width to plain letters and digits.
QLineEdit* makeEdit(const QString& name, int index = -1, EditKind kind = EditKind::Text);
/// Editable combos neither complete what is typed nor insert what they don't know: either would turn a new code into
/// another partner's.
QComboBox* makeCombo(const QString& name, int index = -1, bool editable = true);
QLabel* makeLabel(const QString& name, const QString& caption, int index = -1);
enum class ButtonLook { Plain, Primary, Compact };
QPushButton* makeButton(const QString& name, const QString& caption, std::function<void()> run, int index = -1,
                        ButtonLook look = ButtonLook::Plain);
QCheckBox* makeCheck(const QString& name, const QString& caption, int index = -1);
QRadioButton* makeOption(const QString& name, const QString& caption, int index = -1);

/// Field: the muted caption of a field. Total: a sum, large and bold. Heading: the title of a box or of a part.
enum class LabelLook { Plain, Field, Total, Heading };
void setLook(QLabel* label, LabelLook look);
/// A sum as a field that is only shown, large and bold at the right.
void showAsTotal(QLineEdit* edit);

/// A small label that shows a document's state: Good for what is audited, Warning for drafts and entries under way.
enum class BadgeLook { Good, Warning };
QLabel* makeBadge(const QString& name);
/// An empty text shows no badge.
void setBadge(QLabel* badge, const QString& text, BadgeLook look);

/// A framed strip for controls that belong together, such as the entry of a document's lines.
QFrame* makePanel(const QString& name);

/// A tab strip whose pages have no frames of their own. `mayLeave` is asked before the operator leaves a page (an edit
/// in a grid ends there); false keeps it.
QTabWidget* makeTabs(const QString& name, std::function<bool()> mayLeave = {});

/// Labels and fields in columns: labels at the right of their column, fields aligned and of equal width.
///
///     auto* fields = new FieldLayout(4);
///     fields->add(Lab[0], Txt[0]);
///     fields->add(Lab[2], CmbLB, 2);   // a field as wide as two columns with the label between
///     content()->addLayout(fields);
class FieldLayout : public QGridLayout
{
public:
    /// @param columns label-and-field pairs side by side
    explicit FieldLayout(int columns = 1);
    /// The next free place; goes to a new row when the pair doesn't fit. The field gets the label's text as its
    /// accessible name.
    void add(QLabel* label, QWidget* field, int span = 1);
    void add(const QString& caption, QWidget* field, int span = 1);
    /// A field made of several controls in a row, such as an edit with its look-up button; the first takes what width
    /// is left.
    void add(QLabel* label, std::initializer_list<QWidget*> controls, int span = 1);
    /// Without a label, in the field's place: a check box, a note.
    void addUnlabelled(QWidget* widget, int span = 1);
    void newRow();

private:
    int place(int span);

    int pairs_;
    int row_ = 0;
    int next_ = 0; ///< pair
};

/// Controls side by side on the common spacing; a null stands for the stretch.
QHBoxLayout* makeRow(std::initializer_list<QWidget*> widgets);

/// A date picker. F4 drops its calendar down, a click on a day picks it; Enter takes what was typed and moves on.
class DatePicker : public QDateEdit
{
    Q_OBJECT

public:
    explicit DatePicker(const QString& name, int index = -1);
    ~DatePicker() override;
    /// The date as stored text ("2004-1-1"); setting a text that is no date changes nothing.
    QString text() const;
    void setText(const QString& dateText);
    /// Shows only the arrow: the date itself stands in the field beside it.
    void showAsButton();
    /// Shows the calendar under `anchor` without taking the focus, so that typing goes on there; it follows a date
    /// typed there, and goes away when the anchor loses the focus, at Esc, or when a day is clicked, which `picked`
    /// tells.
    void dropDownFor(QWidget* anchor);
    /// The calendar shown by `dropDownFor`, or null.
    QCalendarWidget* droppedCalendar() const;

signals:
    void picked(); ///< a day was chosen in the calendar, or the picker was left

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void pick();
    void closeDropDown();

    QPointer<QFrame> dropDown_;
    QPointer<QWidget> anchor_;
};

/// Enter in the control moves on as Tab would, but past a compact button (not while an input method composes).
void enterMovesOn(QLineEdit* edit);
void enterMovesOn(QComboBox* combo);

/// Runs when the control gets or loses the focus, through `runCommand`, within the change of focus: what may show a box
/// on leaving is better done by the command that uses the field. A menu, a box or another program that comes in front
/// for a while is neither.
void onFocusIn(QWidget* control, std::function<void()> run);
void onFocusOut(QWidget* control, std::function<void()> run);
/// For labels and pictures, through `runCommand`.
void onClick(QWidget* control, std::function<void()> run);
void onDoubleClick(QWidget* control, std::function<void()> run);

/// A field that is only shown: takes the focus and lets its text be copied, typing leaves it as it is.
void setLocked(QLineEdit* edit, bool locked);
/// Gives the control the focus, its text selected: what is typed next replaces it.
void focusText(QWidget* control);

/// The busy pointer for the time of its life.
class BusyPointer
{
public:
    BusyPointer();
    ~BusyPointer();
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
};
