#pragma once

#include "tools/jisuan/decimal.h"

namespace jisuan {

/// The working of a desk calculator, without a window: keys go in, texts come out. Operations run one after the other
/// as they are pressed, 2 + 3 × 4 is 20.
class Calculator
{
public:
    /// '0' to '9', '.', '+', '-', '*', '/', '=', '%', 'n' sign, 'b' last digit back, 'e' this entry away, 'c' all away
    /// but the memory; 'L' memory clear, 'R' recall, 'P' add to it, 'M' subtract from it. Others do nothing.
    /// @return whether the key means anything
    bool press(char key);
    /// A number from elsewhere takes the place of the entry. @return false when the text is no number
    bool enter(QStringView number);

    QString display() const; ///< the entry or the result, or why there is none
    QString tape() const;    ///< what is being worked out, "12 × 3 ="
    QString number() const;  ///< the number shown, "" when there is none
    bool hasMemory() const { return !memory_.isZero(); }

private:
    void digit(char key);
    void back();
    void operation(char key);
    void equals();
    void percent();
    void memory(char key);
    void apply(char operation, const Decimal& operand);
    Decimal value() const;
    void show(const std::optional<Decimal>& result);
    void clear();

    QString entry_ = u"0"_s;
    bool typing_ = false; ///< the next digit goes on with the entry
    Decimal result_;      ///< what is shown while nothing is typed, with its hidden digits
    bool failed_ = false;
    Decimal left_;
    char pending_ = 0;          ///< the operation that waits for its right side
    bool operandGiven_ = false; ///< something was entered behind it
    char lastOperation_ = 0;    ///< what "=" repeats
    Decimal lastOperand_;
    Decimal memory_;
    QString tape_;
};

} // namespace jisuan
