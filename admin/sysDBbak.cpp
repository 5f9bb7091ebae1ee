#include "admin/sysDBbak.h"

#include "ledger/store.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/number.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QGroupBox>
#include <QScopedValueRollback>

namespace {

constexpr int notesWidth = 520;

/// Wrapped, with room for all of it: a window is laid out by what its texts need in one line.
void showNote(QLabel* note, const QString& text)
{
    note->setText(text);
    note->ensurePolished();
    note->setFixedHeight(qMax(0, note->heightForWidth(style::scaled(notesWidth))));
}

QLabel* makeNote(const QString& name, const QString& text)
{
    auto* note = makeLabel(name, QString());
    note->setTextFormat(Qt::PlainText); // the texts begin with blanks
    note->setWordWrap(true);
    note->setText(text);
    style::follow(note, [note] {
        note->setFixedWidth(style::scaled(notesWidth));
        showNote(note, note->text());
    });
    return note;
}

QString automaticNote(const QString& last)
{
    return u"    "
           u"上面框中如果填0，则每次退出软件时都会自动备份。否则，系统只会在指定周期日第一次退出系统时自动备份数据。"
           "\n\n    自动备份的文件夹："_s +
           backupFolder() +
           u"\n\n     注意：如果是在局域网上运行本软件，备份操作只在数据库本地电脑上有效！上次自动备份的时间为："_s +
           last;
}

/// Without its ledger the session can do nothing. Another operator may be backing it up just now.
void reopenLedger()
{
    for (;;) {
        try {
            gDB = DBEngine::OpenDatabase(gLedgerFile, ledgerConnect.toString());
            return;
        } catch (const StoreError& error) {
            if (!askYesNo(u"现在不能重新打开帐本！原因如下：\n"_s + error.description() +
                          u"\n\n要再试一次吗？选“否”退出系统。"_s))
                return endProcess();
        }
    }
}

} // namespace

sysDBbak::sysDBbak()
    : Form(formName(), u"系统数据备份"_s)
    , settings_(BackupSettings::read().value_or(BackupSettings()))
{
    Txt = makeEdit(u"Txt"_s, -1, EditKind::Number);
    style::fixWidth(Txt, 80);
    Txt->setText(settings_.interval);
    Txt->setPlaceholderText(u"未启用"_s); // nothing was ever saved: no backup is made at exit
    Txt->setAccessibleName(u"自动备份的周期天数"_s);
    Command2 = makeButton(u"Command2"_s, u"保存设置"_s, [this] { saveSettings(); });
    Labinfo = makeNote(u"Labinfo"_s, automaticNote(settings_.last));
    auto* automatic = new QGroupBox(u"自动备份设定"_s);
    automatic->setObjectName(u"Frame1"_s);
    auto* automaticRows = new QVBoxLayout(automatic);
    automaticRows->setSpacing(style::spacing);
    automaticRows->addLayout(makeRow(
        {makeLabel(u"Label1"_s, u"自动备份周期："_s), Txt, makeLabel(u"Label2"_s, u"天"_s), nullptr, Command2}));
    automaticRows->addWidget(Labinfo);

    auto* manualNote =
        makeNote(u"Labmanual"_s, u"    自动备份只保留最近一次的备份文件。如果要长期保存某一时刻的数据，请"
                                 "使用手工备份，并把备份文件存放到U盘等安全的地方。"_s);
    LabTrouble = makeNote(u"LabTrouble"_s, {});
    LabTrouble->hide();
    Command3 = makeButton(
        u"Command3"_s, u"开始备份"_s, [this] { backUpNow(); }, -1, ButtonLook::Primary);
    auto* manual = new QGroupBox(u"立即手工备份"_s);
    manual->setObjectName(u"Frame2"_s);
    auto* manualRows = new QVBoxLayout(manual);
    manualRows->setSpacing(style::spacing);
    manualRows->addWidget(manualNote);
    manualRows->addWidget(LabTrouble);
    manualRows->addLayout(makeRow({nullptr, Command3}));

    Command1 = makeButton(u"Command1"_s, u"返回系统"_s, [this] { Unload(); });
    enterMovesOn(Txt);
    content()->addWidget(automatic);
    content()->addWidget(manual);
    content()->addLayout(makeRow({nullptr, Command1}));
}

void sysDBbak::saveSettings()
{
    if (Val(Txt->text()) < 0)
        Txt->setText(u"0"_s);
    settings_.interval = plainText(Fix(Val(Txt->text())));
    if (settings_.write())
        MsgBox(u"保存成功！"_s);
    else
        MsgBox(u"无法保存备份设置！请检查文件夹“%1”是否可以写入。"_s.arg(gAppPath), u"提示"_s, BoxIcon::Exclamation);
}

std::optional<QString> sysDBbak::askTarget()
{
    QString offered = manualBackupFile();
    for (;;) {
        const auto chosen = saveFileDialog(u"系统数据备份至......"_s, backupFilter.toString(), offered);
        if (!chosen)
            return {};
        offered = localPath(*chosen);
        if (!fileExists(offered))
            return offered;
        MsgBox(u"目标位置已备份的同名文件，请删除目标文件或更换备份位置！"_s);
    }
}

void sysDBbak::backUpNow()
{
    if (working_)
        return;
    if (!backupIsLocal())
        return MsgBox(u"对不起，备份数据只能在数据库本地电脑上完成！"_s);
    const auto target = askTarget();
    if (!target)
        return;
    tellOutcome({});
    const QScopedValueRollback working(working_, true); // what is clicked meanwhile finds no ledger
    bool done = false;
    {
        const BusyPointer busy;
        try {
            gDB.Close();
            DoEvents();
            DBEngine::CompactDatabase(gLedgerFile, *target, ledgerConnect.toString());
            done = true;
        } catch (const StoreError& error) {
            if (error.kind() != StoreError::Kind::Locked) // the box knows that reason only
                tellOutcome(u"    没有完成的原因："_s + error.details().what);
        }
    }
    reopenLedger();
    if (!done)
        return MsgBox(u"无法完成备份！其它用户正在使用此帐本。\n请其它用户停止操作并退出系统后才可以备份！"_s);
    tellOutcome(u"    已备份到："_s + *target);
    MsgBox(u"备份完成！请妥善保存备份文件！"_s);
}

void sysDBbak::tellOutcome(const QString& text)
{
    showNote(LabTrouble, text);
    LabTrouble->setVisible(!text.isEmpty());
    layout()->activate();
    adjustSize();
}

QWidget* sysDBbak::firstFocus()
{
    return Txt;
}
