#include "admin/S1.h"

#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/style.h"

namespace {

constexpr QStringView topAccount = u"001";

} // namespace

S1::S1()
    : RecordForm(
          {formName(), u"系统操作员管理"_s, u"操作员列表"_s, u"操作员权限"_s, u"TE1"_s, OperatorRight::Admin, {}})
{
    addEditCommands();
    addEndCommands();
    setListColumns({{u"帐号"_s, 160}, {u"姓名"_s, 320, ColumnKind::Text, false, true}});
    buildDetail();
    couple();
    loadList();
    updateState();
}

void S1::buildDetail()
{
    addField(u"操作员帐号"_s);
    addField(u"姓名"_s);
    auto* fields = new FieldLayout(2);
    fields->setContentsMargins(0, 0, 0, 0);
    for (int i = 0; i < Txt.size(); ++i)
        fields->add(Lab[i], Txt[i]);
    auto* rights = makePanel(u"PanelRights"_s);
    auto* boxes = new QGridLayout(rights);
    boxes->setSpacing(style::spacing);
    constexpr int boxesInRow = 3;
    for (int i = 0; i < int(rightCount); ++i) {
        Chk[i] = makeCheck(u"Chk"_s, rightName(OperatorRight(i)), i);
        boxes->addWidget(Chk[i], i / boxesInRow, i % boxesInRow);
    }
    auto* rightsLabel = makeLabel(u"LabRights"_s, u"权限"_s);
    fields->add(rightsLabel, rights, 2);
    note_ = makeLabel(u"LabNote"_s, QString());
    setLook(note_, LabelLook::Field);
    note_->setWordWrap(true);
    fields->addUnlabelled(note_, 2);

    constexpr int widest = 640;
    auto* block = new QWidget;
    block->setLayout(fields);
    style::follow(block, [block] { block->setMaximumWidth(style::scaled(widest)); });
    auto* row = makeRow({block, nullptr});
    row->setStretch(0, widest);
    detailPage()->addLayout(row);
    detailPage()->addStretch(1);
}

/// Who books goods in types their cost, and so must see it. One way each; a record that is shown stays as it is.
void S1::couple()
{
    QCheckBox* inbound = Chk[size_t(OperatorRight::In)];
    QCheckBox* cost = Chk[size_t(OperatorRight::Cost)];
    connect(inbound, &QCheckBox::toggled, this, [this, cost](bool on) {
        if (on && Edstu != Viewing)
            cost->setChecked(true);
    });
    connect(cost, &QCheckBox::toggled, this, [this, inbound](bool on) {
        if (!on && Edstu != Viewing)
            inbound->setChecked(false);
    });
}

void S1::showRecord()
{
    for (int i = 0; i < Txt.size(); ++i)
        Txt[i]->setText(listCell(i));
    Recordset rights =
        gDB.OpenRecordset(u"select F61,F62,F63,F64,F65,F66 FROM TE1 WHERE F1="_s + sqlText(listCell(CodeField)));
    for (int i = 0; i < int(rightCount); ++i)
        Chk[i]->setChecked(!rights.isEOF() && rights.Fields(i).number() != 0);
}

void S1::clearRecord()
{
    RecordForm::clearRecord();
    for (QCheckBox* box : Chk)
        box->setChecked(false);
}

void S1::updateState()
{
    RecordForm::updateState();
    for (QCheckBox* box : Chk)
        box->setEnabled(Edstu != Viewing);
    note_->setText(Edstu == Editing ? u"保存后，该操作员的密码、大标题和备忘录将被清空；权限在下次登录时生效。"_s
                                    : u"权限在下次登录时生效。帐号“001”始终拥有全部权限。"_s);
}

bool S1::codeFixed(const QString& code)
{
    return code == topAccount;
}

bool S1::deletable(const QString& code)
{
    if (code != topAccount)
        return true;
    MsgBox(u"001是本系统最高权限管理员专用帐号，不能删除！"_s);
    return false;
}

void S1::insert()
{
    QString rights;
    for (const QCheckBox* box : Chk)
        rights += u',' + sqlNumber(box->isChecked() ? 1.0 : 0.0);
    gDB.Execute(u"insert into TE1 (F1,F2,F61,F62,F63,F64,F65,F66) VALUES ("_s + sqlTexts(savedRow()) + rights + u')');
}

QStringList S1::savedRow() const
{
    return {Txt[CodeField]->text(), Txt[NameField]->text()};
}
