#pragma once

#include <QtGlobal>

class Database;

/// Stands for a ledger as it is at one moment. Equal marks mean that nobody has written in between, this session
/// included; unequal ones that somebody may have. What was read and kept is tested by it without reading again.
struct ChangeMark
{
    const void* handle = nullptr; ///< of the open file, which a connection may change
    quint64 connection = 0;
    qint64 others = 0; ///< moves on with each commit of another session
    qint64 own = 0;    ///< rows changed by this one
    bool operator==(const ChangeMark&) const = default;
};

/// @throws StoreError
ChangeMark changeMark(Database& db);
