#include "documents/line_entry.h"

#include "documents/goods_lookup.h"
#include "documents/new_goods_panel.h"
#include "documents/sufficiency.h"
#include "ledger/Module1.h"
#include "ledger/literal.h"
#include "platform/base/dialogs.h"
#include "platform/widgets/controls.h"
#include "platform/widgets/form.h"
#include "platform/widgets/grid.h"
#include "platform/widgets/style.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace {

const QString codeCaption = u"货品编码"_s;

double cellNumber(const Grid& grid, int row, int column)
{
    return Val(grid.TextMatrix(row, column));
}

} // namespace

LineEntry::LineEntry(const DocumentTraits& kind)
    : kind_(kind)
{
    build();
    GdMx->mayEdit = [this](int row, int column) { return mayEdit(row, column); };
    GdMx->endEditing = [this](int row, int column, const QString& before, const QString& after) {
        return finishCell(row, column, before, after);
    };
    GdMx->nextCell = [this](int row, int column) { return cellAfter(row, column); };
    connect(GdMx, &Grid::cellReached, this, [this](int row, int) { runCommand([&] { followCell(row); }); });
    connect(GdMx, &Grid::currentRowChanged, this, &LineEntry::rowReached);

    connect(TxtHPBM, &QLineEdit::returnPressed, TxtSL, qOverload<>(&QWidget::setFocus));
    onFocusIn(TxtSL, [this] {
        if (Val(TxtSL->text()) == 0)
            TxtSL->setText(u"1"_s);
        TxtSL->selectAll();
    });
    onFocusOut(TxtSL, [this] {
        if (Val(TxtSL->text()) < 0)
            TxtSL->setText(u"0"_s);
    });
    connect(TxtSL, &QLineEdit::returnPressed, this, [this] {
        runCommand([this] {
            if (Trim(TxtHPBM->text()).isEmpty())
                TxtHPBM->setFocus();
            else
                AddGoodsLine();
        });
    });
    TxtHPBM->installEventFilter(this);
    connect(lookup, &GoodsLookup::chosen, this, &LineEntry::takeGoods);
    connect(lookup, &GoodsLookup::left, TxtHPBM, qOverload<>(&QWidget::setFocus));
    if (newGoods) {
        connect(lookup, &GoodsLookup::newGoodsWanted, this, [this] {
            lookup->hide(); // both would leave no room for the lines
            newGoods->open(TxtHPBM->text());
        });
        connect(newGoods, &NewGoodsPanel::left, TxtHPBM, qOverload<>(&QWidget::setFocus));
        connect(newGoods, &NewGoodsPanel::added, this, [this](const QString& code, const QString& quantity) {
            TxtHPBM->setText(code);
            TxtSL->setText(quantity);
            AddGoodsLine();
        });
    }
    followSettings();
    setEntering(false);
}

void LineEntry::build()
{
    TxtHPBM = makeEdit(u"TxtHPBM"_s, -1, EditKind::Code);
    style::fixWidth(TxtHPBM, 150);
    TxtSL = makeEdit(u"TxtSL"_s, -1, EditKind::Number);
    style::fixWidth(TxtSL, 90);
    CmdQuery = makeButton(
        u"CmdQuery"_s, u"?"_s, [this] { lookUp(); }, -1, ButtonLook::Compact);
    CmdQuery->setToolTip(u"查找货品编码资料"_s);
    CmdEnter = makeButton(
        u"CmdEnter"_s, u"增加货品"_s, [this] { AddGoodsLine(); }, -1, ButtonLook::Primary);
    CmdDel = makeButton(u"CmdDel"_s, u"删除货品"_s, [this] { deleteLine(); });
    auto* hint = makeLabel(u"LabHint"_s, u"回车：下一格　Esc：放弃本格　F2：货品编码　F4：查找货品"_s);
    auto* codeLabel = makeLabel(u"LabHPBM"_s, codeCaption);
    auto* quantityLabel = makeLabel(u"LabSL"_s, u"数量"_s);
    for (QLabel* label : {hint, codeLabel, quantityLabel})
        setLook(label, LabelLook::Field);
    auto* row = makeRow({codeLabel, TxtHPBM, CmdQuery, quantityLabel, TxtSL, CmdEnter, CmdDel, nullptr, hint});

    lookup = new GoodsLookup(kind_.sheet->stockCaption.toString(), kind_.newGoods == NewGoods::Panel);
    PicLRQ = makePanel(u"PicLRQ"_s);
    auto* panel = new QVBoxLayout(PicLRQ);
    panel->setContentsMargins(style::spacing, style::spacing - 2, style::spacing, style::spacing - 2);
    panel->addLayout(row);
    panel->addWidget(lookup);
    if (kind_.newGoods == NewGoods::Panel) {
        newGoods = new NewGoodsPanel;
        panel->addWidget(newGoods);
    }

    const LineSheet& sheet = *kind_.sheet;
    const auto captionOf = [this](QStringView word, QStringView what) {
        return (word.isEmpty() ? kind_.word : word) + what.toString();
    };
    GdMx = new Grid(u"GdMx"_s);
    GdMx->setColumns({{codeCaption, 130},
                      {u"货品名称/规格"_s, 330},
                      {sheet.thirdCaption.toString(), sheet.counted ? 100 : 76,
                       sheet.counted ? ColumnKind::Number : ColumnKind::Centred},
                      {captionOf(sheet.quantityWord, u"数量"), 100, ColumnKind::Number},
                      {captionOf(sheet.priceWord, u"价格"), 100, ColumnKind::Number},
                      {sheet.amountCaption.toString(), 120, ColumnKind::Number},
                      {u"备注"_s, 160, ColumnKind::Text, false, true}});
    GdMx->rememberWidths(kind_.form + u"/GdMx"_s);
    GdMx->clearRows();
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(style::spacing);
    all->addWidget(PicLRQ);
    all->addWidget(GdMx, 1);
}

void LineEntry::followSettings()
{
    for (const int column : {Price, Amount})
        GdMx->setColumnVisible(column, gWithMoney != 0);
}

void LineEntry::load(const QString& number)
{
    const QString columns = u"select %1.F1,TA4.F2+'/'+TA4.F5 AS MC,"_s + kind_.sheet->storedThird + u",%1.F6,%1.F7,"_s +
                            kind_.sheet->storedAmount + u" AS JE,%1.F8 FROM %1,TA4 WHERE %1.F1=TA4.F1 AND %1.F0="_s;
    const QString lines = kind_.lineTable();
    Recordset rows = gDB.OpenRecordset(columns.arg(lines) + sqlText(number) + u" ORDER BY "_s + lines + u".F1"_s);
    QList<QStringList> cells;
    for (; !rows.isEOF(); rows.MoveNext()) {
        QStringList row;
        for (int column = Code; column <= Remark; ++column) {
            const Value& field = rows.Fields(column);
            const bool money = (column == Price || column == Amount) && !field.isNull();
            row += money ? Format(field.number(), gPriceFormat) : field.text();
        }
        cells += row;
    }
    if (cells.isEmpty())
        GdMx->clearRows();
    else
        GdMx->setRows(std::move(cells));
    emit changed();
}

void LineEntry::clear()
{
    GdMx->clearRows();
    TxtHPBM->clear();
    TxtSL->clear();
    emit changed();
}

void LineEntry::setEntering(bool entering, const QString& storedNumber)
{
    entering_ = entering;
    storedNumber_ = storedNumber;
    PicLRQ->setVisible(entering);
    lookup->hide();
    if (newGoods)
        newGoods->hide();
}

void LineEntry::openNextRow()
{
    keepEmptyRow();
    GdMx->setFocus();
    GdMx->edit(GdMx->Rows() - 1, Code);
}

void LineEntry::focusCode()
{
    TxtHPBM->setFocus();
    TxtHPBM->selectAll();
}

bool LineEntry::endEdit()
{
    return GdMx->endEdit();
}

void LineEntry::cancelEdit()
{
    GdMx->cancelEdit();
}

bool LineEntry::isEmpty() const
{
    return Trim(GdMx->TextMatrix(1, Code)).isEmpty();
}

QList<DocumentLine> LineEntry::lines() const
{
    QList<DocumentLine> result;
    for (int row = 1; row < GdMx->Rows(); ++row)
        if (const QString code = GdMx->TextMatrix(row, Code); !Trim(code).isEmpty())
            result.append({code, cellNumber(*GdMx, row, Quantity), cellNumber(*GdMx, row, Third),
                           cellNumber(*GdMx, row, Price), GdMx->TextMatrix(row, Remark)});
    return result;
}

int LineEntry::count() const
{
    int count = 0;
    for (int row = 1; row < GdMx->Rows(); ++row)
        count += Trim(GdMx->TextMatrix(row, Code)).isEmpty() ? 0 : 1;
    return count;
}

int LineEntry::currentRow() const
{
    return GdMx->Row();
}

QString LineEntry::totalText() const
{
    double total = 0;
    for (int row = 1; row < GdMx->Rows(); ++row)
        total += gWithMoney != 0 ? cellNumber(*GdMx, row, Amount) : weight(row);
    return gWithMoney != 0 ? Format(total, gPriceFormat) : NumText(total);
}

void LineEntry::AddGoodsLine()
{
    if (!GdMx->endEdit())
        return;
    const QString code = Trim(TxtHPBM->text());
    const double quantity = qMax(Val(TxtSL->text()), 0.0);
    if (code.isEmpty() || quantity == 0)
        return;
    if (const int row = findRow(code)) {
        const double sum = cellNumber(*GdMx, row, Quantity) + quantity;
        if (!stockCovers(code, sum))
            return;
        GdMx->SetTextMatrix(row, Quantity, NumText(sum));
        updateAmount(row);
        GdMx->select(row, Quantity);
        emit changed();
        focusCode(); // the next code overwrites it
        return;
    }
    // The quantity stands in the select list, so that the record has the grid's columns in order.
    const Recordset goods =
        gDB.OpenRecordset(u"select F1,(F2+'/'+F5) AS MC,"_s + kind_.sheet->third + u',' + NumText(quantity) +
                          u" as sl,"_s + kind_.newLinePrice + u" from TA4 where F1="_s + sqlText(code));
    if (goods.isEOF()) {
        MsgBox(u"货品资料库中不存在“%1”这个%1！\n请点击“？”按钮查找系统中存在的%1，\n或在基础数据中增加新的货品资料！"_s
                   .arg(codeCaption));
        return;
    }
    if (!stockCovers(code, quantity))
        return;
    keepEmptyRow();
    const int row = GdMx->Rows() - 1;
    for (int column = Code; column <= Quantity; ++column)
        GdMx->SetTextMatrix(row, column, goods.Fields(column).text());
    GdMx->SetTextMatrix(row, Price, offeredPrice(goods.Fields(Price)));
    updateAmount(row);
    keepEmptyRow();
    GdMx->select(row, Code);
    emit changed();
    TxtHPBM->clear();
    TxtHPBM->setFocus();
}

void LineEntry::deleteLine()
{
    if (!GdMx->endEdit())
        return;
    const QString code = Trim(TxtHPBM->text());
    if (code.isEmpty())
        return MsgBox(u"请输入要删除的货品编码或点击要删除的行！"_s);
    const int row = findRow(code);
    if (!row)
        return MsgBox(u"此"_s + kind_.statusName + u"中没有指定的货品编码："_s + code + u"！"_s);
    if (!askYesNo(u"真的要删除货品["_s + code + u"]吗？"_s))
        return;
    removeRow(row);
    TxtHPBM->setFocus();
}

void LineEntry::lookUp()
{
    if (!GdMx->endEdit())
        return;
    if (newGoods)
        newGoods->hide();
    lookup->fill(TxtHPBM->text());
}

void LineEntry::takeGoods(const QString& code)
{
    TxtHPBM->setText(code);
    TxtSL->setFocus();
}

bool LineEntry::mayEdit(int row, int column) const
{
    if (!entering_)
        return false;
    switch (column) {
    case Code:
        return true;
    case Price:
        if (gNoPriceEdit == 1 || kind_.sheet->counted)
            return false;
        [[fallthrough]];
    case Quantity:
    case Remark:
        return !Trim(GdMx->TextMatrix(row, Code)).isEmpty();
    default:
        return false;
    }
}

QPoint LineEntry::cellAfter(int row, int column) const
{
    switch (column) {
    case Code:
        return {Trim(GdMx->TextMatrix(row, Code)).isEmpty() ? Code : Quantity, row};
    case Quantity:
        return {mayEdit(row, Price) && gWithMoney != 0 ? Price : Remark, row};
    case Price:
        return {Remark, row};
    default:
        return {Code, row + 1};
    }
}

void LineEntry::followCell(int row)
{
    if (!entering_)
        return;
    TxtHPBM->setText(GdMx->TextMatrix(row, Code));
    TxtSL->setText(GdMx->TextMatrix(row, Quantity));
}

bool LineEntry::finishCell(int row, int column, const QString& before, const QString& after)
{
    bool accepted = true;
    if (column == Code)
        accepted = finishCode(row, before, after);
    else if (column == Remark)
        GdMx->SetTextMatrix(row, Remark, after);
    else
        accepted = finishNumber(row, column, after);
    if (accepted)
        emit changed();
    return accepted;
}

bool LineEntry::finishCode(int row, const QString& before, const QString& after)
{
    if (after.isEmpty()) {
        if (!askYesNo(u"真的要删除货品["_s + before + u']' + kind_.sheet->removal))
            return false;
        removeRow(row);
        return true;
    }
    const QString code = after.toUpper();
    if (findRow(code, row)) {
        MsgBox(u"相同的"_s + codeCaption + u"已经存在！"_s);
        return false;
    }
    const Recordset goods = gDB.OpenRecordset(u"select F1,(F2+'/'+F5) AS MC ,"_s + kind_.sheet->third + u',' +
                                              kind_.newLinePrice + u" from TA4 where F1="_s + sqlText(code));
    if (goods.isEOF()) {
        if (kind_.wording == Wording::Inbound)
            MsgBox(
                u"货品资料库中不存在这个%1！\n请在顶部“货品编码”栏输入模糊查找条件，并点击“？”按钮查找系统中存在的%1，\n或在基础数据中增加新的货品资料！"_s
                    .arg(codeCaption));
        else
            MsgBox(u"无效的"_s + codeCaption + u"!"_s);
        return false;
    }
    const QString present = GdMx->TextMatrix(row, Quantity);
    const QString quantity = present.isEmpty() ? u"1"_s : present;
    if (!stockCovers(code, Val(quantity)))
        return false;
    GdMx->SetTextMatrix(row, Code, code);
    GdMx->SetTextMatrix(row, Name, goods.Fields(1).text());
    GdMx->SetTextMatrix(row, Third, goods.Fields(2).text());
    GdMx->SetTextMatrix(row, Quantity, quantity);
    GdMx->SetTextMatrix(row, Price, offeredPrice(goods.Fields(3)));
    updateAmount(row);
    followCell(row);
    keepEmptyRow();
    return true;
}

bool LineEntry::finishNumber(int row, int column, const QString& after)
{
    double number = Val(after);
    if (gNoNegativeQty == 1)
        number = qAbs(number);
    if (column == Quantity && !stockCovers(GdMx->TextMatrix(row, Code), number))
        return false;
    GdMx->SetTextMatrix(row, column, NumText(number));
    updateAmount(row);
    followCell(row);
    return true;
}

int LineEntry::findRow(const QString& code, int except) const
{
    for (int row = 1; row < GdMx->Rows(); ++row)
        if (row != except && sameText(Trim(GdMx->TextMatrix(row, Code)), Trim(code)))
            return row;
    return 0;
}

void LineEntry::removeRow(int row)
{
    if (GdMx->Rows() > 2) {
        GdMx->RemoveItem(row);
    } else {
        for (int column = Code; column <= Remark; ++column)
            GdMx->SetTextMatrix(1, column, QString());
    }
    keepEmptyRow();
    followCell(GdMx->Row());
    emit changed();
}

void LineEntry::keepEmptyRow()
{
    const int last = GdMx->Rows() - 1;
    if (last < 1 || !Trim(GdMx->TextMatrix(last, Code)).isEmpty())
        GdMx->AddItem(QString());
}

double LineEntry::weight(int row) const
{
    return cellNumber(*GdMx, row, Quantity) - (kind_.sheet->counted ? cellNumber(*GdMx, row, Third) : 0);
}

void LineEntry::updateAmount(int row)
{
    const double amount = weight(row) * cellNumber(*GdMx, row, Price);
    GdMx->SetTextMatrix(row, Amount, Format(amount, gPriceFormat));
}

bool LineEntry::stockCovers(const QString& code, double quantity) const
{
    return kind_.entry == Entry::Free || CheckStockEnough(code, quantity, storedNumber_);
}

QString LineEntry::offeredPrice(const Value& price) const
{
    const bool shown = kind_.priceOffer == PriceOffer::Everybody || gCanSeeCost;
    return Format(shown ? price.number() : 0, gPriceFormat);
}

bool LineEntry::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == TxtHPBM && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_F4) {
        runCommand([this] { lookUp(); });
        return true;
    }
    return QWidget::eventFilter(watched, event);
}
