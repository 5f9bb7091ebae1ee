#include "admin/S2.h"

#include "admin/background.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/base/files.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/picture.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QDir>
#include <QPlainTextEdit>

namespace {

constexpr QSize previewSize(448, 252);

/// An apostrophe becomes the typographic one, as the memos and captions of old ledgers have it.
QString typographic(QString text)
{
    return text.replace(u'\'', u'’');
}

void tellUnusable(const QString& path, const QString& trouble)
{
    MsgBox(u"无法使用图片“%1”：%2！"_s.arg(fileNameOf(path), trouble));
}

/// A frame of the tab strip; its buttons stand in a row below `body`.
QWidget* makeFrame(const QString& name, QLayout* body, std::initializer_list<QWidget*> buttons)
{
    auto* frame = new QWidget;
    frame->setObjectName(name);
    auto* all = new QVBoxLayout(frame);
    all->setContentsMargins(style::spacing * 2, style::spacing * 2, style::spacing * 2, style::spacing + 2);
    all->setSpacing(style::spacing);
    all->addLayout(body, 1);
    all->addLayout(makeRow(buttons));
    return frame;
}

} // namespace

S2::S2(Background& background)
    : Form(formName(), u"操作员个人设置"_s)
    , background_(background)
{
    LabUser = makeLabel(u"LabUser"_s, u"帐号："_s + gOperId + u"  名称："_s + gOperName);
    setLook(LabUser, LabelLook::Heading);
    Frm1 = passwordPage();
    Frm2 = picturePage();
    Frm3 = memoPage();
    Frm4 = captionPage();
    TabS = makeTabs(u"TabS"_s);
    TabS->addTab(Frm1, u"修改密码"_s);
    TabS->addTab(Frm2, u"背景图片"_s);
    TabS->addTab(Frm3, u"备忘录"_s);
    TabS->addTab(Frm4, u"大字标题"_s);
    content()->addWidget(LabUser);
    content()->addWidget(TabS, 1);
    load();
}

QWidget* S2::passwordPage()
{
    const QString captions[] = {u"旧密码："_s, u"新密码："_s, u"再次输入新密码："_s};
    auto* fields = new FieldLayout;
    for (int i = 0; i < 3; ++i) {
        txt[i] = makeEdit(u"txt"_s, i, EditKind::Password);
        enterMovesOn(txt[i]);
        fields->add(makeLabel(u"Lab"_s, captions[i], i), txt[i]);
    }
    cmd[0] = makeButton(
        u"cmd"_s, u"确 定"_s, [this] { changePassword(); }, 0, ButtonLook::Primary);
    cmd[1] = makeButton(
        u"cmd"_s, u"取 消"_s, [this] { Unload(); }, 1);
    auto* body = new QVBoxLayout;
    body->addLayout(fields);
    body->addStretch(1);
    return makeFrame(u"Frm1"_s, body, {nullptr, cmd[0], cmd[1]});
}

QWidget* S2::picturePage()
{
    Img = new PictureBox(u"Img"_s);
    Img->setMinimumSize(previewSize);
    Img->setAccessibleName(u"背景图片"_s);
    const QString captions[] = {u"浏 览"_s, u"确 定"_s, u"取 消"_s, u"复 原"_s};
    void (S2::*const commands[])() = {&S2::browse, &S2::setPicture, &S2::dropChoice, &S2::restore};
    for (int i = 0; i < 4; ++i)
        CmdSet[i] = makeButton(
            u"CmdSet"_s, captions[i], [this, command = commands[i]] { (this->*command)(); }, i,
            i == 1 ? ButtonLook::Primary : ButtonLook::Plain);
    CmdSet[0]->setToolTip(u"选择一张图片作为系统主界面的背景"_s);
    CmdSet[3]->setToolTip(u"恢复为系统默认的背景图片"_s);
    CmdSet[1]->setEnabled(false);
    auto* body = new QVBoxLayout;
    body->addWidget(Img, 1);
    QWidget* frame = makeFrame(u"Frm2"_s, body, {CmdSet[0], CmdSet[3], nullptr, CmdSet[1], CmdSet[2]});
    setTabOrder(CmdSet[0], CmdSet[3]);
    setTabOrder(CmdSet[3], CmdSet[1]);
    setTabOrder(CmdSet[1], CmdSet[2]);
    return frame;
}

QWidget* S2::memoPage()
{
    TxtPad = new QPlainTextEdit;
    TxtPad->setObjectName(u"TxtPad"_s);
    TxtPad->setTabChangesFocus(true);
    TxtPad->setAccessibleName(u"备忘录"_s);
    CmdPad = makeButton(
        u"CmdPad"_s, u"返 回 系 统"_s, [this] { Unload(); }, -1, ButtonLook::Primary);
    auto* body = new QVBoxLayout;
    body->addWidget(TxtPad);
    return makeFrame(u"Frm3"_s, body, {nullptr, CmdPad});
}

QWidget* S2::captionPage()
{
    TxtBgCpt = makeEdit(u"TxtBgCpt"_s);
    enterMovesOn(TxtBgCpt);
    CmdCptSet = makeButton(
        u"CmdCptSet"_s, u"返 回 系 统"_s, [this] { Unload(); }, -1, ButtonLook::Primary);
    auto* when = makeLabel(u"LabCpt"_s, u"背景图片非默认图片时"_s, 0);
    setLook(when, LabelLook::Field);
    auto* fields = new FieldLayout;
    fields->addUnlabelled(when);
    fields->add(makeLabel(u"LabCpt"_s, u"系统主界面大字显示"_s, 1), TxtBgCpt);
    auto* body = new QVBoxLayout;
    body->addLayout(fields);
    body->addStretch(1);
    return makeFrame(u"Frm4"_s, body, {nullptr, CmdCptSet});
}

void S2::load()
{
    TxtPad->setPlainText(storedField(u"pad"));
    memo_ = TxtPad->toPlainText(); // the field has its own line ends
    TxtBgCpt->setText(background_.bigCaption());
    showPresentPicture();
}

/// A column of the operator's row, Null when the row is gone.
QString S2::storedField(QStringView column) const
{
    const Recordset row = gDB.OpenRecordset(u"select "_s + column + u" from TE1 where F1="_s + sqlText(gOperId));
    return row.isEOF() ? QString() : row.Fields(0).text();
}

// Password ------------------------------------------------------------------------------------------------------------

void S2::changePassword()
{
    if (txt[1]->text() != txt[2]->text())
        return refuse(u"新密码两次输入不同，请重新输入！"_s, txt[1]);
    const Recordset row = gDB.OpenRecordset(u"select F3 from TE1 WHERE F1="_s + sqlText(gOperId));
    if (row.isEOF() ||
        row.Fields(0).text() != txt[0]->text()) // an operator who is gone has no password, not an empty one
        return refuse(u"旧密码错误，你无权修改该用户密码！"_s, txt[0]);
    gDB.Execute(u"update TE1 set F3="_s + sqlText(txt[1]->text()) + u" WHERE F1="_s + sqlText(gOperId));
    MsgBox(u"密码修改成功！"_s);
    Unload();
}

void S2::refuse(const QString& text, QLineEdit* where)
{
    MsgBox(text);
    where->setFocus();
    where->selectAll();
}

// Picture -------------------------------------------------------------------------------------------------------------

void S2::browse()
{
    const QString folder = gAppPath + u"image\\"_s;
    QDir().mkpath(localPath(folder)); // an existing or refused folder is no matter: the dialog then starts elsewhere
    if (const auto chosen =
            openFileDialog(u"打开图片文件"_s, u"*.jpg|*.jpg|*.bmp|*.bmp|*.gif|*.gif|*.*|*.*"_s, localPath(folder)))
        choose(*chosen);
}

void S2::restore()
{
    choice_ = commonPicture(); // counts even where that file is missing: one's own picture is taken away
    showPicture(choice_);
    CmdSet[1]->setEnabled(true);
}

/// A file that is no picture is refused, and the choice before stays.
void S2::choose(const QString& path)
{
    if (const QString trouble = readPicture(path).trouble; !trouble.isEmpty())
        return tellUnusable(path, trouble);
    choice_ = path;
    showPicture(path);
    CmdSet[1]->setEnabled(true);
}

void S2::setPicture()
{
    if (resolvedPath(choice_) == resolvedPath(commonPicture())) {
        if (!dropOperatorPicture(gOperId))
            return MsgBox(
                u"无法删除图片文件“%1”！请检查文件夹是否可以写入。"_s.arg(localPath(operatorPicture(gOperId))));
    } else {
        if (const QString trouble = readPicture(choice_).trouble; !trouble.isEmpty()) // it may have gone since
            return tellUnusable(choice_, trouble);
        if (!keepOperatorPicture(gOperId, choice_))
            return MsgBox(u"无法保存图片文件“%1”！请检查文件夹是否可以写入、磁盘是否已满。"_s.arg(
                localPath(operatorPicture(gOperId))));
    }
    dressFor(background_, gOperId);
    MsgBox(gOperName + u"，您的背景图片设置成功！"_s);
    dropChoice();
}

void S2::dropChoice()
{
    choice_.clear();
    CmdSet[1]->setEnabled(false);
    showPresentPicture();
}

void S2::showPresentPicture()
{
    const QString own = operatorPicture(gOperId);
    showPicture(fileExists(own) ? own : commonPicture());
}

void S2::showPicture(const QString& path)
{
    Img->showPicture(readPicture(path));
    Img->setToolTip(localPath(path));
}

// Memo and big caption ------------------------------------------------------------------------------------------------

void S2::saveTexts()
{
    const QString memo = TxtPad->toPlainText();
    const QString caption = TxtBgCpt->text();
    const bool memoChanged = memo != memo_;
    const bool captionChanged = caption != background_.bigCaption();
    if (!memoChanged && !captionChanged)
        return;
    {
        const WriteRun run(gDB);
        const QString where = u" where F1="_s + sqlText(gOperId);
        if (memoChanged)
            gDB.Execute(u"update TE1 set pad="_s + sqlText(typographic(memo)) + where);
        if (captionChanged)
            gDB.Execute(u"update TE1 set F75="_s + sqlText(typographic(caption)) + where);
    }
    memo_ = memo;
    if (captionChanged)
        background_.setBigCaption(typographic(caption));
}

bool S2::queryUnload()
{
    saveTexts(); // a failure is told and keeps the form open, so that what was typed isn't lost
    return true;
}

QWidget* S2::firstFocus()
{
    return txt[0];
}
