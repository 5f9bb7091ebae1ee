#include "documents/new_goods_panel.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/form.h"
#include "platform/widgets/style.h"
#include "shell/session.h"

#include <QVBoxLayout>

namespace {

constexpr QStringView fieldCaptions[] = {u"货品编码", u"货品名称", u"所属类别", u"计量单位", u"规格型号",
                                         u"入库价格", u"销售价格", u"备注信息", u"货品图片", u"入库数量"};

constexpr qsizetype captionLength = 4; // what of a caption the refusals name

} // namespace

NewGoodsPanel::NewGoodsPanel()
{
    setObjectName(u"FrmNewGoods"_s);
    CmbHPLB = makeCombo(u"CmbHPLB"_s);
    CmdOpenPic = makeButton(
        u"CmdOpenPic"_s, u"…"_s, [this] { choosePicture(); }, -1, ButtonLook::Compact);
    CmdNew[0] = makeButton(
        u"CmdNew"_s, u"保 存"_s, [this] { save(); }, 0, ButtonLook::Primary);
    CmdNew[1] = makeButton(
        u"CmdNew"_s, u"返 回"_s, [this] { leave(); }, 1);

    auto* fields = new FieldLayout(4);
    for (int i = 0; i < FieldCount; ++i) {
        TxtN[i] = makeEdit(u"TxtN"_s, i, editKindOf(i));
        LabN[i] = makeLabel(u"LabN"_s, fieldCaptions[i].toString(), i);
        enterMovesOn(TxtN[i]);
        if (i == Category) {
            fields->add(LabN[i], CmbHPLB);
            TxtN[i]->setParent(this);
            TxtN[i]->hide(); // holds the code that the list entry stands for
        } else if (i == Picture) {
            fields->add(LabN[i], {TxtN[i], CmdOpenPic});
        } else {
            fields->add(LabN[i], TxtN[i]);
        }
    }
    enterMovesOn(CmbHPLB);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, style::spacing / 2, 0, 0);
    all->addLayout(fields);
    all->addLayout(makeRow({nullptr, CmdNew[0], CmdNew[1]}));
}

EditKind NewGoodsPanel::editKindOf(int field)
{
    if (field == Code)
        return EditKind::Code;
    return field == InPrice || field == SalePrice || field == Quantity ? EditKind::Number : EditKind::Text;
}

void NewGoodsPanel::open(const QString& code)
{
    const bool again = !code.isEmpty() && sameText(TxtN[Code]->text(), code);
    const QString category = CmbHPLB->currentText();
    CmbHPLB->clear();
    Recordset categories = gDB.OpenRecordset(u"select * from TA3 order by F1"_s);
    for (; !categories.isEOF(); categories.MoveNext())
        CmbHPLB->addItem(entryOf(categories.Fields(u"F1").text(), categories.Fields(u"F2").text()));
    if (again) {
        CmbHPLB->setEditText(category);
    } else {
        for (QLineEdit* edit : TxtN)
            edit->clear();
        TxtN[Code]->setText(code);
    }
    show();
    focusText(TxtN[Code]);
}

QStringList NewGoodsPanel::texts() const
{
    QStringList texts;
    for (int i = 0; i < FieldCount && !isHidden(); ++i)
        texts += i == Category ? CmbHPLB->currentText() : TxtN[i]->text();
    return texts;
}

void NewGoodsPanel::show(const QStringList& texts)
{
    open(texts.value(Code));
    for (int i = 0; i < FieldCount; ++i)
        TxtN[i]->setText(i == Category ? QString() : texts.value(i));
    CmbHPLB->setEditText(texts.value(Category));
}

void NewGoodsPanel::drop()
{
    hide();
    for (QLineEdit* edit : TxtN)
        edit->clear();
}

void NewGoodsPanel::choosePicture()
{
    if (const auto file =
            openFileDialog(u"选择货品图片"_s, u"图片文件(*.jpg;*.gif;*.bmp)|*.jpg;*.gif;*.bmp"_s, QString()))
        TxtN[Picture]->setText(*file);
}

void NewGoodsPanel::save()
{
    const auto caption = [this](int field) { return Left(LabN[field]->text(), captionLength); };
    for (const int field : {Code, Name})
        if (Trim(TxtN[field]->text()).isEmpty())
            return refuse(caption(field) + u"不能为空！"_s, TxtN[field]);
    if (Val(TxtN[Quantity]->text()) == 0)
        return refuse(caption(Quantity) + u"不能为0！"_s, TxtN[Quantity]);
    if (Trim(CmbHPLB->currentText()).isEmpty())
        return refuse(caption(Category) + u"不能为空！"_s, CmbHPLB);

    TxtN[Category]->setText(Trim(codeOf(CmbHPLB->currentText())));
    const QString code = Trim(TxtN[Code]->text()).toUpper();
    {
        const WriteRun run(gDB); // from the test of the code on, so that nobody else takes it meanwhile
        const QString category = LookupValue(gDB, u"select F2 from TA3 where F1="_s + sqlText(TxtN[Category]->text()));
        if (category.isEmpty() || category == u"NoFound")
            return refuse(u"编码输入错误！"_s, CmbHPLB);
        TxtN[Code]->setText(code);
        const QString name = LookupValue(gDB, u"select F2 from TA4 where F1="_s + sqlText(code));
        if (name != u"NoFound")
            return refuse(u'[' + name + u"]已经使用了"_s + caption(Code) + u"这个编码，请重新设置编码!"_s, TxtN[Code]);

        QString values;
        for (const int field : {Code, Name, Category, Unit, Model, Remark, Picture})
            values += sqlText(TxtN[field]->text()) + u',';
        gDB.Execute(u"insert into TA4 (F1,F2,F3,F4,F5,F6,F9,F11,F7,F71,F8) VALUES ("_s + values + sqlText(code) + u',' +
                    sqlNumber(Val(TxtN[InPrice]->text())) + u',' + sqlNumber(Val(TxtN[SalePrice]->text())) + u",0)"_s);
    }
    const QString quantity = TxtN[Quantity]->text();
    drop();
    emit added(code, quantity);
}

void NewGoodsPanel::refuse(const QString& text, QWidget* where)
{
    MsgBox(text);
    focusText(where);
}
