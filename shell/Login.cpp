#include "shell/Login.h"

#include "admin/AboutUS.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/clock.h"
#include "platform/base/desktop.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/base/lock_file.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/MForm.h"
#include "shell/rights.h"
#include "shell/session.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>

namespace {

/// A column of an operator's row, "NoFound" when there is none. Unlike `LookupValue` it raises a failure: a password
/// that can't be read must not count as an empty one.
QString operatorField(QStringView column, const QString& account)
{
    const Recordset row = gDB.OpenRecordset(u"select "_s + column + u" from TE1 where F1="_s + sqlText(account));
    return row.isEOF() ? u"NoFound"_s : row.Fields(0).text();
}

constexpr int pictureSize = 64;

} // namespace

Login::Login()
    : Form(formName(), u"登录帐本..."_s + todayText())
{
    // Read before any control is made: a ledger that can't be read ends the loading here.
    QStringList operators;
    for (Recordset rows = gDB.OpenRecordset(u"select F1+'.'+F2 as userN from TE1 order by F1"_s); !rows.isEOF();
         rows.MoveNext())
        operators += rows.Fields(0).text();
    const bool noPassword = LookupValue(gDB, u"SELECT F3 FROM TE1 WHERE F1='001'"_s).isEmpty();
    helpText_ =
        noPassword
            ? u"系统默认用户为“001”，默认密码为空。也就是不需要输入密码，直接按<登录>按钮登录。\n\n在系统中可以使用[操作员修改密码]功能为“001”或其它用户名设定密码。"_s
            : u"如果您忘记了最高管理员“001”的密码，请通过以下流程找回密码：\n\n请您准备好帐本文件的备份以及购买凭证，与软件供应商的服务台联系，核实身份之后由服务台协助您重设密码。"_s;
    helpText_ += u"\n\n关于如何使用本软件，您可以在登录系统后查看主菜单[使用说明]中的信息。"_s;

    Image1 = makeLabel(u"Image1"_s, QString());
    Image1->setPixmap(QApplication::windowIcon().pixmap(pictureSize));
    Image1->setToolTip(u"双击查看关于本软件"_s);
    Cmb = makeCombo(u"Cmb"_s);
    Txt[0] = makeEdit(u"Txt"_s, 0);
    Txt[1] = makeEdit(u"Txt"_s, 1, EditKind::Password);
    Cmd[0] = makeButton(
        u"Cmd"_s, u"登录"_s, [this] { logIn(); }, 0, ButtonLook::Primary);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"退出"_s, [] { endProcess(); }, 1);
    Cmd[2] = makeButton(
        u"Cmd"_s, u"帮助"_s, [this] { help(); }, 2);

    Cmb->addItems(operators);
    Cmb->setCurrentIndex(-1);
    if (noPassword)
        Txt[1]->setPlaceholderText(u"首次使用：帐号 001，密码为空"_s);

    auto* row = new QHBoxLayout;
    row->setSpacing(style::spacing * 2);
    row->addWidget(Image1, 0, Qt::AlignTop);
    auto* fields = new FieldLayout;
    fields->add(makeLabel(u"Lab"_s, u"操作员："_s, 0), Cmb);
    fields->add(makeLabel(u"Lab"_s, u"帐号："_s, 1), Txt[0]);
    fields->add(makeLabel(u"Lab"_s, u"密码："_s, 2), Txt[1]);
    row->addLayout(fields, 1);
    content()->addLayout(row);
    content()->addSpacing(style::spacing);
    content()->addLayout(makeRow({nullptr, Cmd[0], Cmd[1], Cmd[2]}));
    style::keepWidth(content()->parentWidget(), 440);

    onFocusOut(Cmb, [this] { takeAccount(); });
    connect(Cmb->lineEdit(), &QLineEdit::returnPressed, Txt[1], qOverload<>(&QWidget::setFocus));
    for (QLineEdit* edit : Txt) {
        enterMovesOn(edit);
        edit->installEventFilter(this);
    }
    onDoubleClick(Image1, [] { theForm<AboutUS>().ShowModal(); });
}

void Login::help()
{
    MsgBox(helpText_, u"帮助"_s);
}

void Login::logIn()
{
    const QString account = Trim(Txt[0]->text());
    if (account.isEmpty())
        return refuse(u"请输入或在下拉列表中选择用户帐号!"_s, Txt[0]);
    try {
        if (!proven(account))
            return;
        completeLogin(account);
        warnOfWeakLocks();
    } catch (const StoreError&) {
        logOut(); // half a login is none
        throw;
    }
    Unload();
}

bool Login::proven(const QString& account)
{
    const QString password = operatorField(u"F3", account);
    if (password == u"NoFound") {
        refuse(u"无效的用户帐号！建议您在下拉列表中选择！"_s, Txt[0]);
        return false;
    }
    if (Txt[1]->text() != password) {
        refuse(u"密码输入错误！"_s, Txt[1]);
        Txt[1]->clear();
        return false;
    }
    return true;
}

void Login::completeLogin(const QString& account)
{
    gOperId = account;
    gOperName = operatorField(u"F2", account);
    MForm::get().setOperator(gOperName);
    LoadSettings();
    ApplyRights();
    dressBackground();
}

/// Once for each folder: nothing else would tell before two operators have overwritten each other's figures.
void Login::warnOfWeakLocks()
{
    static QString folderTried;
    const QString folder = folderOf(gLedgerFile);
    if (folder == folderTried)
        return;
    folderTried = folder;
    if (!LockFile::worksIn(folder))
        MsgBox(u"帐本所在的文件夹“"_s + folder +
                   u"”不支持文件锁定，几个人同时使用这个帐本时数据可能会丢失！\n\n"
                   "请只由一个人使用，或者把帐本移到支持文件锁定的共享文件夹中。"_s,
               u"警告"_s, BoxIcon::Exclamation);
}

void Login::takeAccount()
{
    Txt[0]->setText(codeOf(Trim(Cmb->currentText())));
}

void Login::refuse(const QString& text, QLineEdit* where)
{
    MsgBox(text);
    where->setFocus();
    where->selectAll();
}

QWidget* Login::firstFocus()
{
    return Cmb;
}

bool Login::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress && (watched == Txt[0] || watched == Txt[1])) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_S && key->modifiers() == Qt::ControlModifier) {
            Txt[0]->setText(u"001"_s); // the short way in for the administrator; the password still counts
            Cmd[0]->click();
            return true;
        }
    }
    return Form::eventFilter(watched, event);
}
