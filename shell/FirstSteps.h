#pragma once

#include <QFrame>

class QLabel;
class QPushButton;

/// What a new ledger still lacks until its first stock has come in, for "001" on the background of the main window: one
/// step a line, with the command that does it. It goes when all is done, when the operator puts it away, and while a
/// form is open; a ledger that is in use never shows it.
class FirstSteps : public QFrame
{
    Q_OBJECT

public:
    /// @param area what it stands in, behind the child forms
    explicit FirstSteps(QWidget* area);

    /// Looks at the ledger anew and shows or hides itself: a few look-ups, one once stock has moved, none behind a
    /// form.
    void refresh();
    /// In the middle of the area, right of the background's caption.
    void place();

    static constexpr int stepCount = 6;
    QLabel* LabStep[stepCount] = {};
    QPushButton* CmdStep[stepCount] = {}; ///< opens what does the step; the first open one has the focus
    QPushButton* CmdHide = nullptr;       ///< puts the steps away, for this user

private:
    void putAway();
};
