#pragma once

#include <QString>

class Database;

/// What tells a ledger from another that once stood in its place: a random number in the engine's `application_id`,
/// given to a ledger the first time that it is asked for. Backups, compacted ones too, carry it along, so that a
/// restore brings it back; a copy that is meant as a new ledger has it as well, which its path then tells apart.
/// @return "" when the ledger has none and can't be given one just now
QString ledgerIdentity(Database& db);
