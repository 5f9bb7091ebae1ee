#include "admin/clearing.h"

#include "admin/safety_copy.h"
#include "ledger/store.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/form.h"
#include "shell/session.h"

bool askBeforeClearing(const QString& question)
{
    return askYesNo(question, u"警告"_s, Answer::No); // one Enter too many must not clear anything
}

bool clearRecords(QStringView command, const std::function<void()>& statements)
{
    if (!safetyCopy(command))
        return false;
    try {
        const WriteRun run(gDB);
        statements();
    } catch (const StoreError&) {
        Form::tellRecordsChanged();
        throw;
    }
    Form::tellRecordsChanged();
    return true;
}
