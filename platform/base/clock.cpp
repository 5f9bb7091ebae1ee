#include "platform/base/clock.h"

#include "platform/base/date.h"

namespace {
std::optional<QDateTime> standingAt;
}

QDateTime Now()
{
    return standingAt.value_or(QDateTime::currentDateTime());
}

QDate Today()
{
    return Now().date();
}

QString todayText()
{
    return dateText(Today());
}

QString nowText()
{
    return momentText(Now());
}

void setClock(std::optional<QDateTime> moment)
{
    standingAt = std::move(moment);
}
