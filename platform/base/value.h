#pragma once

#include "platform/base/number.h"

#include <QString>

#include <variant>

/// One field as the store returned it: Null, number or text. The conversions between them live here only.
class Value
{
public:
    Value() = default; ///< Null
    Value(double number)
        : held_(number)
    {}
    Value(QString text)
        : held_(std::move(text))
    {}

    bool isNull() const { return std::holds_alternative<std::monostate>(held_); }
    bool isNumber() const { return std::holds_alternative<double>(held_); }
    /// Null gives "", a number its `plainText`.
    QString text() const;
    /// Null gives 0, a text its `Val`: "3x" is 3, "NoFound" is 0.
    double number() const;

    bool operator==(const Value&) const = default;

private:
    std::variant<std::monostate, double, QString> held_;
};

inline QString Value::text() const
{
    if (const auto* text = std::get_if<QString>(&held_))
        return *text;
    const auto* number = std::get_if<double>(&held_);
    return number ? plainText(*number) : QString();
}

inline double Value::number() const
{
    if (const auto* number = std::get_if<double>(&held_))
        return *number;
    const auto* text = std::get_if<QString>(&held_);
    return text ? Val(*text) : 0;
}
