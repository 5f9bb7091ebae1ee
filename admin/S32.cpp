#include "admin/S32.h"

#include "admin/backup_folder.h"
#include "admin/safety_copy.h"
#include "admin/sysDBbak.h"
#include "ledger/alone.h"
#include "ledger/store.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

S32::S32()
    : Form(formName(), u"数据恢复"_s)
{
    LabWarning = makeLabel(u"LabWarning"_s, u"警告：数据恢复操作危险！建议在恢复前先备份数据，以防造成数据丢失！"_s);
    setLook(LabWarning, LabelLook::Heading);
    LabWarning->setWordWrap(true);
    auto* fields = new FieldLayout;
    for (const auto& [name, caption, text] : {std::tuple(u"Lab(0)"_s, u"当前帐本："_s, gLedgerName),
                                              std::tuple(u"Lab(1)"_s, u"帐本文件："_s, gLedgerFile)}) {
        auto* value = makeLabel(name, text);
        value->setTextFormat(Qt::PlainText);
        value->setWordWrap(true);
        fields->add(caption, value);
    }
    auto* note = makeLabel(u"Labinfo"_s, u"恢复之后，当前帐本的全部数据由备份文件中的数据代替，并且需要重新登录。"_s);
    setLook(note, LabelLook::Field);
    note->setWordWrap(true);

    Command1 = makeButton(u"Command1"_s, u"恢复数据"_s, [this] { restore(); });
    Command3 = makeButton(u"Command3"_s, u"备份数据"_s, [] { theForm<sysDBbak>().ShowModal(); });
    Command2 = makeButton(u"Command2"_s, u"返回系统"_s, [this] { Unload(); });

    content()->addWidget(LabWarning);
    content()->addLayout(fields);
    content()->addWidget(note);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({Command3, nullptr, Command1, Command2}));
    style::keepWidth(content()->parentWidget(), 500);
}

void S32::restore()
{
    if (!backupIsLocal())
        return MsgBox(u"数据恢复只能在数据库本地电脑上执行！"_s);
    const auto chosen =
        openFileDialog(u"从备份文件中恢复数据到现在的系统"_s, backupFilter.toString(), makeBackupFolder() + u"*.hcn"_s);
    if (!chosen)
        return;
    try {
        gDB.Close();
    } catch (const StoreError&) { // what it held is to be replaced
    }
    try {
        restored_ = replaceLedger(localPath(*chosen));
        gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
    } catch (const StoreError& error) {
        restored_ = false;
        MsgBox(u"系统数据恢复失败！原因如下：\n"_s + error.description());
        try {
            gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
        } catch (const StoreError&) { // there is no ledger to go on with
            endProcess();
        }
    }
    if (!restored_)
        return;
    Form::tellRecordsChanged();
    MsgBox(u"数据恢复成功！为了数据安全，请重新登录！"_s);
    Unload();
}

/// False when the operator thinks better of it: for a backup that is damaged, or without a safety copy.
bool S32::replaceLedger(const QString& backup)
{
    // What would refuse the backup comes before the safety copy, which else would push out a useful one.
    const bool sound = DBEngine::checkLedger(backup, ledgerConnect.toString());
    {
        const LedgerAlone probe(resolvedPath(gLedgerFile));
    }
    if (!sound && !askYesNo(u"备份文件有部分损坏，恢复之后有些数据可能不完整或者无法使用。\n仍然要用它恢复吗？"_s))
        return false;
    if (!safetyCopy(u"恢复", backup))
        return false;
    const BusyPointer busy;
    DBEngine::replaceDatabase(backup, gLedgerFile, ledgerConnect.toString());
    return true;
}

QWidget* S32::firstFocus()
{
    return Command2;
}
