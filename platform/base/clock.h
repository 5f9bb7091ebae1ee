#pragma once

#include <QDateTime>

#include <optional>

/// The only source of the present. Tests and `play` make it stand still.

QDateTime Now();
QDate Today();
/// The present day and moment as they are stored.
QString todayText();
QString nowText();

/// The clock stands still at that moment from now on; nothing lets it run with the machine again.
void setClock(std::optional<QDateTime> moment);
