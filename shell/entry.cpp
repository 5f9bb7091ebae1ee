#include "shell/entry.h"

#include "admin/frmTip.h"
#include "ledger/Module1.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "reports/C1.h"
#include "shell/Login.h"
#include "shell/MForm.h"
#include "shell/ZbSet.h"
#include "shell/session.h"

namespace {

void tellUnopened(const StoreError& error)
{
    MsgBox(u"无法打开帐本！系统返回如下信息：\n\n"_s + error.description() + u"\n\n请重新设置帐本"_s, u"提示"_s,
           BoxIcon::Exclamation);
}

/// Opens the ledger that the command line names. A file that can't be opened or isn't a ledger of this program is told
/// and dropped; one that doesn't exist keeps its name, and the login then meets the failure.
void openNamedLedger()
{
    if (!fileExists(gLedgerFile))
        return;
    QString reason; // where it is one that passes
    try {
        gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
        // A text here marks a database that is not a ledger of this program; so does an empty table.
        if (LookupValue(gDB, u"select Versn from theVer"_s).isEmpty()) {
            gLedgerName = gLedgerFile;
            return;
        }
        gDB.Close();
    } catch (const StoreError& error) { // told by the box below, whatever it was
        if (error.kind() == StoreError::Kind::Locked || error.kind() == StoreError::Kind::Disk)
            reason = error.description();
    }
    MsgBox(u"文件["_s + gLedgerFile + u"]不是恒仓宁"_s + gVersion + u"帐本文件！"_s, QString());
    if (!reason.isEmpty()) // the box above knows one reason only
        errorBox(u"也可能帐本没有问题，只是现在打不开：\n"_s + reason);
    gLedgerFile.clear();
}

/// The template beside the program is the ledger of a fresh installation.
void takeTemplate()
{
    gLedgerFile = gAppPath + u"vemaro.dat"_s;
    gLedgerName = u"货品进出存帐本"_s;
}

void openListedLedger()
{
    takeTemplate();
    auto& directory = theForm<ZbSet>();
    if (directory.LoadLedgerList()) {
        directory.ShowModal();
    } else {
        directory.allowClosing();
        directory.Unload();
        gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
    }
}

void chooseAnotherLedger(const StoreError& error)
{
    tellUnopened(error);
    takeTemplate(); // what the list shows when there is no dbsetup.dat yet
    auto& directory = theForm<ZbSet>();
    directory.LoadLedgerList();
    directory.ShowModal();
}

/// The main window and the login. A ledger that turns out not to be readable is told and chosen anew.
void showAndLogin()
{
    for (;;) {
        MForm::get().show();
        LedgerStatus();
        try {
            theForm<Login>().ShowModal();
            return;
        } catch (const StoreError& error) {
            chooseAnotherLedger(error);
        }
    }
}

/// Whether the operator wants to see the goods that the statement finds one of.
bool wantsAlarm(int setting, const QString& statement, const QString& title, QStringView found)
{
    if (setting != 1)
        return false;
    const QString code = LookupValue(gDB, statement);
    return !code.isEmpty() && code != u"NoFound" &&
           askYesNo(found + u"您要查看详细内容吗？\n\n如果希望系统不再自动报警，\n"
                            "您可以在主界面[系统管理]->[系统设置]->[系统功能设置]中关闭本功能。"_s,
                    title);
}

/// For operators who may see the stock. Each alarm has a window of its own.
void offerAlarms()
{
    if (!MForm::get().menuItem(u"Menu_C"_s)->isEnabled())
        return;
    if (wantsAlarm(gHighAlarm, u"select top 1 TA4.F1 from TA4  where TA4.F8>TA4.V2 and TA4.V2<>0 "_s,
                   u" 库存自动报警--超出最高存量"_s, u"库存中发现超过最高存量的货品！"))
        C1::theWindow(C1::Mode::HighAlarm).Show();
    if (wantsAlarm(gLowAlarm, u"select top 1 TA4.F1 from TA4  where TA4.F8<TA4.V1 "_s, u" 库存自动报警--低于安全存量"_s,
                   u"库存中发现低于安全存量的货品！"))
        C1::newWindow(C1::Mode::LowAlarm).Show();
}

} // namespace

QString programFileName()
{
#ifdef Q_OS_WIN
    return gProgramName + u".exe"_s;
#else
    return gProgramName;
#endif
}

void setProgramFolder(const QString& folder)
{
    gAppPath = withSeparator(folder);
}

QString commandLineOf(const QStringList& arguments)
{
    QStringList parts;
    for (const QString& argument : arguments)
        parts += argument.contains(u' ') ? u'"' + argument + u'"' : argument;
    return parts.join(u' ');
}

QString ledgerOf(const QString& commandLine)
{
    const QString text = Trim(commandLine);
    if (text.startsWith(u'"')) {
        const qsizetype end = text.indexOf(u'"', 1);
        return end < 0 ? QString() : text.sliced(1, end - 1);
    }
    const qsizetype blank = text.indexOf(u' ');
    return blank < 0 ? text : text.first(blank);
}

void runEntry(const QString& commandLine)
{
    resetSession();
    Form::setHelp(openManual);
    gLedgerFile = ledgerOf(commandLine);
    if (!gLedgerFile.isEmpty())
        openNamedLedger();
    if (gLedgerFile.isEmpty()) {
        try {
            openListedLedger();
        } catch (const StoreError& error) {
            chooseAnotherLedger(error);
        }
    }
    showAndLogin();
    LoadYearStart();
    if (GetSetting(gProgramName, u"Options"_s, frmTip::showAtStart, u"1"_s) != u"0")
        theForm<frmTip>().ShowModal();
    offerAlarms();
}

void RegisterFileType()
{
    const QString kind = u"Hengcangning"_s;
    registerClass(kind, QString(), u"恒仓宁帐本文件"_s);
    registerClass(kind + u"\\DefaultIcon"_s, QString(), gAppPath + u"zb.ico"_s);
    registerClass(u".hcn"_s, QString(), kind);
    registerClass(kind, u"shell\\open\\command"_s, gAppPath + programFileName() + u" %1"_s);
}

void openManual(const QString& form)
{
    Shell(u"hh.exe "_s + gAppPath + u"使用说明.chm"_s + (form.isEmpty() ? QString() : u"::/%1.htm"_s.arg(form)));
}
