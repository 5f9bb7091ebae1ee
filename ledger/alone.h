#pragma once

#include "ledger/store_error.h"
#include "platform/base/lock_file.h"

/// Keeps a ledger for one command alone, which replaces or compacts it. The ledger must not be open in this process;
/// it need not exist, since one that was lost can be restored.
class LedgerAlone
{
public:
    /// @throws StoreError (Locked) while any session has the ledger open, (Disk) when its folder can't be written
    explicit LedgerAlone(const QString& path);
    ~LedgerAlone();
    LedgerAlone(const LedgerAlone&) = delete;
    LedgerAlone& operator=(const LedgerAlone&) = delete;

private:
    LockFile lock_;
    QString path_;
};
