#pragma once

#include "tools/jisuan/calculator.h"

#include <QWidget>

class QLabel;

namespace jisuan {

/// The calculator as the operator sees it; all of it can be worked by the keyboard.
class CalculatorWindow : public QWidget
{
public:
    CalculatorWindow();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void press(char key);
    void copy() const;
    void paste();
    void showState();
    bool command(const QKeyEvent& event);

    Calculator calculator_;
    QLabel* tape_ = nullptr;
    QLabel* memory_ = nullptr;
    QLabel* display_ = nullptr;
};

} // namespace jisuan
