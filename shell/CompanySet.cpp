#include "shell/CompanySet.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/style.h"
#include "shell/rights.h"
#include "shell/session.h"

namespace {

struct CompanyField
{
    QStringView column;
    QStringView caption;
};

constexpr CompanyField companyFields[] = {
    {u"F1", u"公司名称："}, {u"F2", u"英文名称："}, {u"F3", u"地址："}, {u"F4", u"电话："}, {u"F5", u"传真："}};

} // namespace

CompanySet::CompanySet()
    : Form(formName(), u"公司资料设置"_s)
{
    const Recordset company = gDB.OpenRecordset(u"select F1,F2,F3,F4,F5 from reginfo"_s);
    auto* fields = new FieldLayout;
    for (int i = 0; i < int(std::size(companyFields)); ++i) {
        Txt[i] = makeEdit(u"Txt"_s, i);
        Txt[i]->setText(company.isEOF() ? QString() : company.Fields(i).text());
        fields->add(makeLabel(u"Lab"_s, companyFields[i].caption.toString(), i), Txt[i]);
        enterMovesOn(Txt[i]);
    }
    saved_ = typed();
    content()->addLayout(fields);

    auto* note = makeLabel(u"LabNote"_s, u"名称显示在主界面上，名称、地址和电话打印在单据和报表的表头。"_s);
    setLook(note, LabelLook::Field);
    content()->addWidget(note);
    Cmd[0] = makeButton(
        u"Cmd"_s, u"保 存"_s, [this] { save(); }, 0, ButtonLook::Primary);
    Cmd[1] = makeButton(
        u"Cmd"_s, u"取 消"_s, [this] { Unload(); }, 1);
    content()->addLayout(makeRow({nullptr, Cmd[0], Cmd[1]}));
    style::keepWidth(content()->parentWidget(), 520);
}

QStringList CompanySet::typed() const
{
    QStringList texts;
    for (const QLineEdit* field : Txt)
        texts += Trim(field->text());
    return texts;
}

void CompanySet::write(const QStringList& texts)
{
    QStringList values;
    for (qsizetype i = 0; i < texts.size(); ++i)
        values += companyFields[i].column + u"="_s + sqlText(texts[i]);
    WriteRun run(gDB);
    // A ledger that has lost its row gets one, without a date: the accounting year falls back to its default.
    if (gDB.OpenRecordset(u"select F1 from reginfo"_s).isEOF())
        gDB.Execute(u"insert into reginfo (F1) values ('')"_s);
    gDB.Execute(u"update reginfo set "_s + values.join(u','));
}

void CompanySet::save()
{
    const QStringList texts = typed();
    if (texts.first().isEmpty()) {
        MsgBox(u"请填写公司名称！"_s);
        Txt[0]->setFocus();
        return;
    }
    if (texts != saved_) {
        write(texts);
        saved_ = texts;
        showCompany();
        dressBackground();
    }
    Unload();
}

bool CompanySet::queryUnload()
{
    return typed() == saved_ || askYesNo(u"公司资料已经修改，还没有保存。真的要放弃修改吗？"_s);
}
