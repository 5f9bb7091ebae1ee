#include "masterdata/A4.h"

#include "ledger/Module1.h"
#include "ledger/document_tables.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/picture.h"
#include "platform/widgets/style.h"
#include "reports/GoodsCard.h"
#include "reports/GoodsChart.h"
#include "reports/printing.h"

#include <QPainter>

#include <limits>

namespace {

constexpr QStringView noPicture = u"无图片";
constexpr QStringView pictureHint = u"双击此处导入图片";

constexpr QStringView goodsCaptions[] = {u"货品编码", u"货品名称", u"所属类别", u"计量单位", u"规格型号", u"成本价格",
                                         u"备注",     u"销售价格", u"最低库存", u"最高库存", u"年初数量", u"年初价格"};

constexpr QStringView goodsColumns = u"select TA4.F1,TA4.F2,TA3.F2 AS LB,TA4.F4,TA4.F5,TA4.F7,TA4.F6,TA4.F3,TA4.F71 ";

/// A path in one line, shortened in its middle; the text stays whole.
class PathLabel : public QLabel
{
public:
    explicit PathLabel(const QString& name)
    {
        setObjectName(name);
        setTextFormat(Qt::PlainText);
    }
    QSize minimumSizeHint() const override { return {0, QLabel::minimumSizeHint().height()}; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(rect(), Qt::AlignCenter, fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
    }
};

/// Two controls that take turns in one place of the layout.
void shareThePlace(QGridLayout* layout, QWidget* there, QWidget* other)
{
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    layout->getItemPosition(layout->indexOf(there), &row, &column, &rows, &columns);
    layout->addWidget(other, row, column, rows, columns);
    other->setAccessibleName(there->accessibleName());
}

/// A saved report and the documents hold a code; a stock-take doesn't.
QStringList goodsUseTests()
{
    QStringList tests{u"select hpbm from jxc where hpbm="_s};
    for (const DocumentTables& kind : documentTables)
        if (kind.movesGoods())
            tests += u"select F1 from %1 where F1="_s.arg(kind.lines);
    return tests;
}

} // namespace

QString compositeKey(const QString& category, const QString& code)
{
    constexpr int categoryLength = 4;
    constexpr int codeLength = 8;
    QString a = Trim(category);
    const QString b = Trim(code);
    const QString lengths = plainText(double(a.size() + categoryLength)) + plainText(double(b.size()));
    a = Left(a, categoryLength);
    if (b.size() > codeLength)
        a = Left(b, codeLength);
    return a.leftJustified(categoryLength, u'0') + lengths + b.leftJustified(codeLength, u'0');
}

A4::A4()
    : RecordForm(
          {formName(), u"货品编码"_s, u"货品列表"_s, u"货品明细"_s, u"TA4"_s, OperatorRight::Base, goodsUseTests()})
{
    addEditCommands();
    addListCommands();
    addModeCommand(u"Menu_Txm"_s, u"&T.打印条码"_s, Shown::Never, {});
    addEndCommands();
    QMenu* views = addModeMenu(u"Menu_V"_s, u"&V.查看"_s, Shown::Viewing);
    addModeCommand(views, u"Menu_card"_s, u"&1.货品卡片"_s, Shown::Viewing, [this] { Menu_card(); });
    addModeCommand(views, u"Menu_flow"_s, u"&2.货品进出图"_s, Shown::Viewing, [this] { Menu_flow(); });
    buildList();
    buildDetail();
    fillCategories();
    fillUnits();
    loadList();
    updateState();
}

void A4::buildList()
{
    setListColumns({{u"货品编码"_s, 120},
                    {u"货品名称"_s, 200},
                    {u"所属类别"_s, 110},
                    {u"计量单位"_s, 76},
                    {u"规格型号"_s, 150},
                    {u"价格"_s, 130, ColumnKind::Number},
                    {u"备注"_s, 160, ColumnKind::Text, false, true},
                    {u"类别编码"_s, 84},
                    {u"销售价格"_s, 96, ColumnKind::Number}});
}

void A4::buildDetail()
{
    for (int i = 0; i < int(std::size(goodsCaptions)); ++i) {
        const bool number = i == CostPrice || i >= SalePrice;
        addField(goodsCaptions[i].toString(), i == CodeField ? EditKind::Code
                                              : number       ? EditKind::Number
                                                             : EditKind::Text);
    }
    CmbLB = makeCombo(u"CmbLB"_s);
    CmbDW = makeCombo(u"CmbDW"_s);
    for (QComboBox* combo : {CmbLB, CmbDW}) {
        combo->lineEdit()->setMaxLength(std::numeric_limits<int>::max());
        enterMovesOn(combo);
    }
    TxtSL = makeEdit(u"TxtSL"_s, -1, EditKind::Number);
    enterMovesOn(TxtSL);
    LabSL = makeLabel(u"LabSL"_s, u"初始库存"_s);
    LabPrice = makeLabel(u"LabPrice"_s, QString());
    LabPrice->setWordWrap(true);
    setLook(LabPrice, LabelLook::Field);
    Frame = new QFrame;
    Frame->setObjectName(u"Frame"_s);
    auto* hint = makeLabel(u"LabFrame"_s, u"  录入库存数量后，可以在[库存管埋]-->仓库存货统计中查看。  "_s);
    setLook(hint, LabelLook::Field);
    Frame->setLayout(makeRow({hint, nullptr}));

    auto* fields = new FieldLayout(3);
    fields->add(Lab[CodeField], Txt[CodeField]);
    fields->add(Lab[NameField], Txt[NameField], 2);
    for (const Field field : {Category, Unit, Model})
        fields->add(Lab[field], Txt[field]);
    shareThePlace(fields, Txt[Category], CmbLB);
    shareThePlace(fields, Txt[Unit], CmbDW);
    fields->add(Lab[CostPrice], Txt[CostPrice]);
    fields->add(Lab[SalePrice], Txt[SalePrice]);
    fields->newRow();
    fields->addUnlabelled(LabPrice, 3);
    fields->newRow();
    fields->add(Lab[Remark], Txt[Remark], 3);
    fields->add(Lab[LowestStock], Txt[LowestStock]);
    fields->add(Lab[HighestStock], Txt[HighestStock]);
    fields->newRow();
    fields->add(Lab[OpeningQuantity], Txt[OpeningQuantity]);
    fields->add(Lab[OpeningPrice], Txt[OpeningPrice]);
    fields->newRow();
    fields->add(LabSL, TxtSL);
    fields->addUnlabelled(Frame, 2);

    constexpr int pictureWidth = 300;
    constexpr int pictureHeight = 240;
    Img = new PictureBox(u"Img"_s);
    setLook(Img, LabelLook::Field);
    LabInfo = new PathLabel(u"LabInfo"_s);
    setLook(LabInfo, LabelLook::Field);
    auto* picture = makePanel(u"PanelPicture"_s);
    auto* inside = new QVBoxLayout(picture);
    inside->addWidget(Img, 1);
    picture->setFixedSize(pictureWidth, pictureHeight);
    auto* right = new QVBoxLayout;
    right->setSpacing(style::spacing / 2);
    right->addWidget(picture);
    right->addWidget(LabInfo);
    right->addStretch(1);
    LabInfo->setFixedWidth(pictureWidth);

    auto* left = new QVBoxLayout;
    left->addLayout(fields);
    left->addStretch(1);
    auto* columns = new QHBoxLayout;
    columns->setSpacing(2 * style::spacing);
    columns->addLayout(left, 1);
    columns->addLayout(right);
    detailPage()->addLayout(columns);

    QWidget* const order[] = {
        Txt[CodeField],       Txt[NameField],    Txt[Category],  CmbLB,       Txt[Unit],        CmbDW,
        Txt[Model],           Txt[CostPrice],    Txt[SalePrice], Txt[Remark], Txt[LowestStock], Txt[HighestStock],
        Txt[OpeningQuantity], Txt[OpeningPrice], TxtSL};
    for (size_t i = 1; i < std::size(order); ++i)
        setTabOrder(order[i - 1], order[i]);

    for (QWidget* place : {static_cast<QWidget*>(Img), static_cast<QWidget*>(LabInfo)})
        onDoubleClick(place, [this] { choosePicture(); });
    connect(Txt[CostPrice], &QLineEdit::textChanged, this, [this](const QString& cost) {
        if (Edstu != Viewing && gSalePriceFactor != 0)
            Txt[SalePrice]->setText(Format(gSalePriceFactor * Val(cost), u"#0.00"));
    });
}

void A4::fillCategories()
{
    const QString typed = CmbLB->currentText();
    CmbLB->clear();
    Recordset categories = gDB.OpenRecordset(u"select * from TA3 order by F1"_s);
    for (; !categories.isEOF(); categories.MoveNext())
        CmbLB->addItem(entryOf(categories.Fields(u"F1").text(), categories.Fields(u"F2").text()));
    CmbLB->setEditText(typed);
}

void A4::fillUnits()
{
    CmbDW->clear();
    Recordset units = gDB.OpenRecordset(u"select F4 from TA4 where F4<>'' group by F4 order by F4"_s);
    for (; !units.isEOF(); units.MoveNext())
        CmbDW->addItem(units.Fields(0).text());
    CmbDW->setCurrentIndex(-1);
    CmbDW->clearEditText();
}

// What the settings and the operator's rights let see -----------------------------------------------------------------

bool A4::stockEditable() const
{
    return Edstu == Adding || (Edstu == Editing && isTopAdministrator() && gStockEdit001 == 1);
}

bool A4::openingEditable() const
{
    return Edstu == Editing && isTopAdministrator() && gOpeningEdit001 == 1;
}

QString A4::priceNote() const
{
    const QString cost = Lab[CostPrice]->text();
    const QString sale = Lab[SalePrice]->text();
    if (gSalePriceFactor == 0)
        return u"当前设置："_s + cost + u"与"_s + sale + u"无关联"_s;
    return u"当前设置：修改"_s + cost + u"会影响"_s + sale + u'(' + sale + u'=' + cost + u" x "_s +
           plainText(gSalePriceFactor) + u") 修改"_s + sale + u"不会影响"_s + cost;
}

void A4::followSettings()
{
    const bool prices = gWithMoney != 0;
    const bool costs = prices && gCanSeeCost;
    GD->setColumnVisible(CostColumn, costs);
    GD->setColumnVisible(SaleColumn, prices);
    for (const Field field : {CostPrice, SalePrice}) {
        Lab[field]->setVisible(prices);
        Txt[field]->setVisible(prices);
    }
    // Without the right a cost can be typed, but not read.
    Txt[CostPrice]->setEchoMode(gCanSeeCost ? QLineEdit::Normal : QLineEdit::Password);
    Txt[CostPrice]->setStyleSheet(gCanSeeCost ? QString() : u"QLineEdit { lineedit-password-character: 42 }"_s);
    LabPrice->setText(prices ? priceNote() : QString());
}

void A4::updateState()
{
    RecordForm::updateState();
    followSettings();
    const bool entering = Edstu != Viewing;
    CmbLB->setVisible(entering);
    CmbDW->setVisible(entering);
    Txt[Category]->setVisible(!entering);
    Txt[Unit]->setVisible(!entering);
    LabPrice->setVisible(entering && gWithMoney != 0);
    Img->setToolTip(entering ? u"双击导入图片"_s : QString());
    for (QWidget* stock : {static_cast<QWidget*>(LabSL), static_cast<QWidget*>(TxtSL), static_cast<QWidget*>(Frame)})
        stock->setVisible(stockEditable());
    for (const Field field : {OpeningQuantity, OpeningPrice}) {
        Lab[field]->setVisible(openingEditable());
        Txt[field]->setVisible(openingEditable());
    }
    if (stockEditable())
        LabSL->setText(Edstu == Adding ? u"原始库存"_s : u"库存数量"_s);
}

/// A search by cost would tell it to an operator who may not see it.
void A4::sessionChanged()
{
    const bool lost = sawCost_ && !gCanSeeCost;
    sawCost_ = gCanSeeCost;
    RecordForm::sessionChanged();
    if (lost && searched())
        dropSearch();
}

// The list and the record ---------------------------------------------------------------------------------------------

/// Goods whose category has vanished are listed by a search only.
QString A4::listStatement() const
{
    if (!searched())
        return goodsColumns + u"from TA4,TA3 WHERE TA4.F3=TA3.F1 order by TA4.F1"_s;
    return goodsColumns + u"from TA4 left join TA3 on TA4.F3=TA3.F1  "_s + condition() + u" order by TA4.F1"_s;
}

QList<QueryField> A4::queryFields() const
{
    QList<QueryField> fields;
    const auto offer = [&](ListColumn column, QStringView field, QueryType type = QueryType::Text) {
        fields += {GD->TextMatrix(0, column), u"TA4."_s + field, type};
    };
    offer(CodeColumn, u"F1");
    offer(NameColumn, u"F2");
    offer(CategoryColumn, u"F3"); // compares the category's code
    offer(UnitColumn, u"F4");
    offer(ModelColumn, u"F5");
    if (GD->columnVisible(CostColumn)) // conditions would tell the cost bit by bit
        offer(CostColumn, u"F7", QueryType::Number);
    offer(RemarkColumn, u"F6");
    return fields;
}

/// Who may not see the cost gets the sale price in its place.
RecordPrint A4::printed() const
{
    return {u"PrnTa4.rpt"_s,
            u"prnTa4.rpt"_s,
            u"报表文件prnTa4.rpt丢失！"_s,
            {formula(u"Cpt", u"货品编码资料"), formula(u"regname", gCompanyName),
             formula(u"regaddr", u"地址："_s + gCompanyAddr), formula(u"regtel", u"电话："_s + gCompanyTel)},
            {CodeColumn, NameColumn, CategoryColumn, UnitColumn, ModelColumn, gCanSeeCost ? CostColumn : SaleColumn,
             RemarkColumn}};
}

void A4::refresh()
{
    fillCategories();
    fillUnits();
    RecordForm::refresh();
}

/// Audits move prices while the list stands; an edit must not write the old ones back.
void A4::rereadRow()
{
    Recordset record = gDB.OpenRecordset(goodsColumns + u"from TA4 left join TA3 on TA4.F3=TA3.F1 where TA4.F1="_s +
                                         sqlText(listCell(CodeColumn)));
    if (record.isEOF()) // deleted by another operator
        return;
    for (int column = 0; column < GD->Cols(); ++column)
        GD->SetTextMatrix(listRow(), column, record.Fields(column).text());
}

void A4::showRecord()
{
    if (listEmpty()) {
        RecordForm::clearRecord();
        LabInfo->setText(noPicture.toString());
        return showPicture();
    }
    const ReadRun reads(gDB); // one moment, and no field is empty only because its look-up failed
    requireReadable(gDB);
    rereadRow();
    for (int i = CodeField; i <= Remark; ++i)
        Txt[i]->setText(listCell(i));
    Txt[SalePrice]->setText(listCell(SaleColumn));
    const QString code = sqlText(listCell(CodeColumn));
    const QString path = LookupValue(gDB, u"select F9 from TA4 where F1="_s + code);
    LabInfo->setText(path.isEmpty() || path == u"NoFound" ? noPicture.toString() : path);
    for (const auto& [field, column] : {std::pair(LowestStock, u"V1"_s), {HighestStock, u"V2"_s}})
        Txt[field]->setText(plainText(Val(LookupValue(gDB, u"select "_s + column + u" from TA4 where F1="_s + code))));
    showPicture();
}

void A4::showPicture()
{
    const QString path = LabInfo->text();
    LabInfo->setToolTip(path);
    if (path.isEmpty() || path == noPicture || path == pictureHint)
        Img->showWords(QString());
    else
        Img->showPicture(readPicture(path));
}

void A4::choosePicture()
{
    if (Edstu == Viewing)
        return;
    const auto file = openFileDialog(u"导入货品图片"_s, u"图片文件(*.jpg;*.gif;*.bmp)|*.jpg;*.gif;*.bmp"_s, QString());
    if (!file)
        return;
    LabInfo->setText(*file);
    showPicture();
}

void A4::clearRecord()
{
    RecordForm::clearRecord();
    fillCategories();
    CmbLB->setCurrentIndex(CmbLB->count() > 0 ? 0 : -1);
    CmbDW->setCurrentIndex(-1);
    CmbDW->clearEditText();
    TxtSL->clear();
    LabInfo->setText(pictureHint.toString());
    showPicture();
}

void A4::beginEdit()
{
    fillCategories();
    CmbLB->setEditText(entryOf(listCell(CategoryCodeColumn), listCell(CategoryColumn)));
    CmbDW->setEditText(Txt[Unit]->text());
    Recordset balance = gDB.OpenRecordset(u"select F8,V3,V4 from TA4 where F1="_s + sqlText(listCell(CodeColumn)));
    const auto text = [&](qsizetype column) {
        return plainText(balance.isEOF() ? 0 : balance.Fields(column).number());
    };
    TxtSL->setText(text(0));
    Txt[OpeningQuantity]->setText(text(1));
    Txt[OpeningPrice]->setText(text(2));
}

// Saving --------------------------------------------------------------------------------------------------------------

bool A4::complete()
{
    Txt[Unit]->setText(Trim(CmbDW->currentText()));
    if (!Txt[Unit]->text().isEmpty() &&
        CmbDW->findText(Txt[Unit]->text(), Qt::MatchExactly | Qt::MatchCaseSensitive) < 0)
        CmbDW->addItem(Txt[Unit]->text());
    return RecordForm::complete() && findCategory();
}

bool A4::findCategory()
{
    const QString entry = Trim(CmbLB->currentText());
    if (entry.isEmpty()) {
        refuse(Lab[Category]->text() + u"不能为空！"_s, CmbLB);
        return false;
    }
    const QString code = Trim(codeOf(entry));
    const ReadRun reads(gDB);
    requireReadable(gDB); // a look-up that failed would refuse a code that is right
    const QString name = LookupValue(gDB, u"select F2 from TA3 where F1="_s + sqlText(code));
    if (name.isEmpty() || name == u"NoFound") {
        refuse(Lab[Category]->text() + u"编码输入错误！"_s, CmbLB);
        return false;
    }
    Txt[Category]->setText(name);
    categoryCode_ = code;
    return true;
}

/// An audit by another operator during the edit has moved stock and prices; what this operator didn't touch stays as
/// the audit left it.
void A4::keepChanges(const QString& oldCode)
{
    Recordset now = gDB.OpenRecordset(u"select F7,F71,F8,V3,V4 from TA4 where F1="_s + sqlText(oldCode));
    if (now.isEOF())
        return;
    const auto keep = [&](QLineEdit* edit, bool untouched, qsizetype column) {
        const QSignalBlocker quiet(edit); // the sale price must not follow here
        if (untouched)
            edit->setText(plainText(now.Fields(column).number()));
    };
    keep(Txt[CostPrice], Txt[CostPrice]->text() == listCell(CostColumn), 0);
    keep(Txt[SalePrice], Txt[SalePrice]->text() == listCell(SaleColumn), 1);
    keep(TxtSL, !stockEditable(), 2);
    keep(Txt[OpeningQuantity], !openingEditable(), 3);
    keep(Txt[OpeningPrice], !openingEditable(), 4);
}

void A4::insert()
{
    const auto text = [this](Field field) { return Trim(Txt[field]->text()); };
    const auto number = [](const QLineEdit* edit) { return sqlNumber(Val(edit->text())); };
    const QString code = Txt[CodeField]->text();
    gDB.Execute(u"insert into TA4 (F1,F2,F3,F4,F5,F7,F6,F71,F11,F9,F8) VALUES ("_s +
                sqlTexts({code, Trim(Txt[NameField]->text()), categoryCode_, text(Unit), text(Model)}) + u',' +
                number(Txt[CostPrice]) + u',' + sqlText(text(Remark)) + u',' + number(Txt[SalePrice]) + u',' +
                sqlTexts({compositeKey(CmbLB->currentText(), code), LabInfo->text()}) + u',' + number(TxtSL) + u')');
    const QString where = u" where F1="_s + sqlText(code);
    gDB.Execute(u"update TA4 set V1="_s + number(Txt[LowestStock]) + u",V2="_s + number(Txt[HighestStock]) + u",V3="_s +
                number(Txt[OpeningQuantity]) + u",V4="_s + number(Txt[OpeningPrice]) + where);
    if (Edstu == Adding) // what it starts with is its opening balance
        gDB.Execute(u"update TA4 set V3="_s + number(TxtSL) + u",V4="_s + number(Txt[CostPrice]) + where);
}

QStringList A4::savedRow() const
{
    const auto text = [this](int field) { return Trim(Txt[field]->text()); };
    const auto number = [this](Field field) { return plainText(Val(Txt[field]->text())); };
    return {Txt[CodeField]->text(), text(NameField), text(Category), text(Unit),       text(Model),
            number(CostPrice),      text(Remark),    categoryCode_,  number(SalePrice)};
}

void A4::Menu_card()
{
    if (requireRight(table_.right))
        GoodsCard::open(listCell(CodeColumn));
}

void A4::Menu_flow()
{
    if (requireRight(table_.right))
        GoodsChart::open(listCell(CodeColumn));
}

bool A4::queryUnload()
{
    if (Edstu == Viewing)
        return true;
    EditingNotice();
    return false;
}
