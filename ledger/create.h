#pragma once

#include <QString>

/// Makes a ledger file of a schema: the only place where one may come into being. Every other ledger is a copy.
/// @param schema  statements in the engine's own language (`ledger/schema.sql`)
/// @param connect ";PWD=" and the password
/// @throws StoreError; nothing is left behind then. A file that is there already is an error.
void createLedger(const QString& path, const QString& schema, const QString& connect);
