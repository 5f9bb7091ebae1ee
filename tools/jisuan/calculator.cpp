#include "tools/jisuan/calculator.h"

namespace jisuan {

namespace {

constexpr qsizetype mostTypedDigits = 16;

QString sign(char operation)
{
    switch (operation) {
    case '*':
        return u" × "_s;
    case '/':
        return u" ÷ "_s;
    case '-':
        return u" − "_s;
    default:
        return u" + "_s;
    }
}

} // namespace

bool Calculator::press(char key)
{
    if (failed_ && key != 'L')
        clear();
    switch (key) {
    case '+':
    case '-':
    case '*':
    case '/':
        operation(key);
        return true;
    case '=':
        equals();
        return true;
    case '%':
        percent();
        return true;
    case 'n':
        if (typing_)
            entry_ = entry_.startsWith(u'-') ? entry_.mid(1) : u'-' + entry_;
        else
            show(result_.negated());
        operandGiven_ = true;
        return true;
    case 'b':
        back();
        return true;
    case 'e':
        show(Decimal());
        return true;
    case 'c':
        clear();
        return true;
    case 'L':
    case 'R':
    case 'P':
    case 'M':
        memory(key);
        return true;
    default:
        if (key != '.' && (key < '0' || key > '9'))
            return false;
        digit(key);
        return true;
    }
}

bool Calculator::enter(QStringView number)
{
    const auto parsed = Decimal::parse(number);
    if (!parsed)
        return false;
    if (failed_)
        clear();
    show(parsed);
    operandGiven_ = true;
    return true;
}

void Calculator::digit(char key)
{
    if (!typing_) {
        entry_ = u"0"_s;
        if (pending_ == 0)
            tape_.clear();
    }
    typing_ = true;
    operandGiven_ = true;
    const QChar typed = QLatin1Char(key);
    if (typed == u'.') {
        if (!entry_.contains(u'.'))
            entry_ += u'.';
        return;
    }
    const qsizetype digits = entry_.size() - entry_.count(u'.') - entry_.count(u'-');
    if (entry_ == u"0" || entry_ == u"-0")
        entry_.replace(u'0', typed);
    else if (digits < mostTypedDigits)
        entry_ += typed;
}

void Calculator::back()
{
    if (!typing_)
        return; // a result isn't taken apart
    entry_.chop(1);
    if (entry_.isEmpty() || entry_ == u"-")
        entry_ = u"0"_s;
}

void Calculator::operation(char key)
{
    if (pending_ != 0 && operandGiven_)
        apply(pending_, value());
    if (failed_)
        return;
    left_ = value();
    show(left_);
    pending_ = key; // pressed again without a number between, the later one counts
    operandGiven_ = false;
    tape_ = left_.text() + sign(key).chopped(1);
}

void Calculator::equals()
{
    if (pending_ != 0) {
        lastOperation_ = pending_;
        lastOperand_ = value();
    } else {
        show(value());
        if (lastOperation_ == 0)
            return;
        left_ = result_;
    }
    const QString left = left_.text();
    pending_ = 0;
    apply(lastOperation_, lastOperand_);
    if (failed_)
        return;
    tape_ = left + sign(lastOperation_) + lastOperand_.text() + u" ="_s;
    operandGiven_ = false;
}

/// Behind + and - the part of the left side: 200 + 5 % is 210. Else the hundredth.
void Calculator::percent()
{
    const auto hundredth = Decimal::quotient(value(), *Decimal::parse(u"100"));
    const bool ofLeft = pending_ == '+' || pending_ == '-';
    show(hundredth && ofLeft ? Decimal::product(left_, *hundredth) : hundredth);
    operandGiven_ = true;
}

void Calculator::memory(char key)
{
    if (key == 'L') {
        memory_ = Decimal();
    } else if (key == 'R') {
        show(memory_);
        operandGiven_ = true;
    } else {
        const auto total = Decimal::sum(memory_, key == 'P' ? value() : value().negated());
        memory_ = total.value_or(memory_);
        show(value());
    }
}

void Calculator::apply(char operation, const Decimal& operand)
{
    switch (operation) {
    case '+':
        return show(Decimal::sum(left_, operand));
    case '-':
        return show(Decimal::sum(left_, operand.negated()));
    case '*':
        return show(Decimal::product(left_, operand));
    default:
        if (!operand.isZero())
            return show(Decimal::quotient(left_, operand));
        clear();
        failed_ = true;
        entry_ = u"除数不能为零"_s;
    }
}

Decimal Calculator::value() const
{
    return typing_ ? Decimal::parse(entry_).value_or(Decimal()) : result_;
}

void Calculator::show(const std::optional<Decimal>& result)
{
    if (!result) {
        clear();
        failed_ = true;
        entry_ = u"数字太大"_s;
        return;
    }
    result_ = *result;
    entry_ = result->text();
    typing_ = false;
}

void Calculator::clear()
{
    const Decimal kept = memory_;
    *this = Calculator();
    memory_ = kept;
}

QString Calculator::display() const
{
    return entry_;
}

QString Calculator::tape() const
{
    return failed_ ? QString() : tape_;
}

QString Calculator::number() const
{
    return failed_ ? QString() : value().text();
}

} // namespace jisuan
